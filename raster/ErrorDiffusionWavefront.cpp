// ErrorDiffusionWavefront.cpp - error diffusion with as many rows at once as a register has bytes. A band of rows runs together, each
// row a few columns behind the one above it, so that every pixel still gets its shares in the order of the plain form. Between bands
// stand only the rows that the band above has diffused into. One-bit rows are gathered beside the image and copied out when their
// band is done.
#include <algorithm>
#include <array>
#include <cstring>

#include "raster/ErrorDiffusion.h"

namespace morvil {

namespace {

constexpr unsigned kMostLanes = 64;
constexpr std::uint8_t kBias = 0x80;

std::uint32_t rowsBelow(WideKernel kernel) {
    return kernel == WideKernel::JarvisJudiceNinke || kernel == WideKernel::Stucki ? 2 : 1;
}

class Wavefront {
  public:
    Wavefront(GreyRows& grey, WideKernel kernel, const BitRows& out, const WideHalftone& wide)
        : m_grey(grey), m_out(out), m_wide(wide), m_below(rowsBelow(kernel)), m_diffuse(wide.diffuseBand[static_cast<std::size_t>(kernel)]) {}

    bool run(HalftoneRun& control) {
        if (!reserve()) return false;
        for (std::uint32_t i = 0; i < m_below && i < m_grey.height(); ++i) startCarrying(i);
        for (std::uint32_t first = 0; first < m_grey.height(); first += m_wide.lanes) {
            if (!control.enterRow(first, m_grey.height())) return false;
            const std::uint32_t rows = std::min(m_wide.lanes, m_grey.height() - first);
            fetch(first + m_below);
            m_diffuse(m_band);
            for (std::uint32_t i = 0; i < rows; ++i) copyOut(i, m_out.row(first + i));
            control.enterRow(first + rows - 1, m_grey.height());
        }
        return true;
    }

  private:
    bool reserve() {
        const std::uint32_t width = m_grey.width();
        const std::size_t carryBytes = kCarryBefore + width + kCarryBehind;
        m_band.skewedBytes = width / 8 + kSkewedBesides;
        m_band.stagedBytes = width / 8 + kStagedBesides;
        const std::size_t skewed = m_wide.lanes * m_band.skewedBytes;
        const std::size_t staged = m_wide.lanes * m_band.stagedBytes;
        m_block = LocalBlock<std::uint8_t>(2 * carryBytes + skewed + staged + width);
        if (!m_block || !m_grey.reserve(m_wide.lanes)) return false;
        m_band.carried = m_block.get() + kCarryBefore;
        m_band.carriedBelow = m_band.carried + carryBytes;
        m_band.skewed = m_block.get() + 2 * carryBytes;
        m_band.bits = m_band.skewed + skewed;
        m_noRow = m_band.bits + staged;
        m_band.fresh = m_fresh.data();
        m_band.width = width;
        return true;
    }

    void startCarrying(std::uint32_t row) {
        const std::uint8_t* const grey = m_grey.take(row, 1).pixels;
        std::uint8_t* const carried = row == 0 ? m_band.carried : m_band.carriedBelow;
        for (std::uint32_t x = 0; x < m_grey.width(); ++x) carried[x] = grey[x] ^ kBias;
    }

    // Lanes whose row lies below the image work on nothing; nobody asks for what they make.
    void fetch(std::uint32_t first) {
        const std::uint32_t rows = first < m_grey.height() ? std::min(m_wide.lanes, m_grey.height() - first) : 0;
        const GreyBand band = rows == 0 ? GreyBand{} : m_grey.take(first, rows);
        for (std::uint32_t i = 0; i < m_wide.lanes; ++i) m_fresh[i] = i < rows ? band.pixels + i * band.rowBytes : m_noRow;
    }

    void copyOut(std::uint32_t lane, std::uint8_t* out) const {
        const std::uint8_t* const bits = m_band.bits + lane * m_band.stagedBytes + kStagedBefore;
        const std::size_t whole = m_grey.width() / 8;
        const unsigned rest = m_grey.width() % 8;
        std::memcpy(out, bits, whole);
        std::fill_n(out + whole, m_out.rowBytes - whole, std::uint8_t{0});
        if (rest != 0) out[whole] = static_cast<std::uint8_t>(bits[whole] & ~(0xFFU >> rest));
    }

    GreyRows& m_grey;
    const BitRows& m_out;
    const WideHalftone& m_wide;
    std::uint32_t m_below;
    void (*m_diffuse)(const DiffusionBand&);
    LocalBlock<std::uint8_t> m_block;
    const std::uint8_t* m_noRow = nullptr;
    std::array<const std::uint8_t*, kMostLanes> m_fresh{};
    DiffusionBand m_band{};
};

}  // namespace

bool diffuseWavefront(GreyRows& grey, WideKernel kernel, const BitRows& out, HalftoneRun& run, const WideHalftone& wide) {
    return Wavefront(grey, kernel, out, wide).run(run);
}

}  // namespace morvil
