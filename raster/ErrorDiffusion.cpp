// ErrorDiffusion.cpp - the plain form: pixel by pixel, with the shares of every grey value in tables.
#include "raster/ErrorDiffusion.h"

#include <algorithm>
#include <array>
#include <optional>

#include "raster/DiffusionKernels.h"

namespace morvil {

namespace {

constexpr std::size_t kMargin = 4;  // columns on either side of a row that take what falls outside the image

// share[cell][v]: what cell gets from a pixel of value v. Truncated toward zero, like the division.
template <std::size_t Cells>
using Shares = std::array<std::array<std::int8_t, 256>, Cells>;

template <std::size_t Cells>
constexpr Shares<Cells> sharesOf(const DiffusionKernel<Cells>& kernel) {
    Shares<Cells> shares{};
    for (std::size_t cell = 0; cell < Cells; ++cell) {
        for (int value = 0; value < 256; ++value) {
            const int error = value > kLastBlack ? value - 255 : value;
            shares[cell][static_cast<std::size_t>(value)] =
                static_cast<std::int8_t>(error * kernel.cells[cell].weight / kernel.divisor);
        }
    }
    return shares;
}

// The row at work and those below it that it reaches, as grey values with what was diffused into them so far.
template <const auto& kKernel>
class Diffuser {
  public:
    Diffuser(GreyRows& grey, const BitRows& out) : m_grey(grey), m_out(out), m_rowBytes(grey.width() + 2 * kMargin) {}

    bool run(HalftoneRun& control) {
        m_block = LocalBlock<std::uint8_t>(m_rowBytes * m_rows.size());
        if (!m_block || !m_grey.reserve(1)) return false;
        for (std::size_t i = 0; i < m_rows.size(); ++i) m_rows[i] = m_block.get() + i * m_rowBytes + kMargin;
        for (std::uint32_t y = 0; y + 1 < m_rows.size() && y < m_grey.height(); ++y) fetch(y, m_rows[y]);
        for (std::uint32_t y = 0; y < m_grey.height(); ++y) {
            if (!control.enterRow(y, m_grey.height())) return false;
            const std::size_t lowest = y + m_rows.size() - 1;
            if (lowest < m_grey.height()) fetch(static_cast<std::uint32_t>(lowest), m_rows.back());
            diffuseRow(m_out.row(y));
            std::rotate(m_rows.begin(), m_rows.begin() + 1, m_rows.end());
        }
        return true;
    }

  private:
    static constexpr auto kShares = sharesOf(kKernel);
    static_assert(kKernel.reach() <= static_cast<int>(kMargin));

    void fetch(std::uint32_t y, std::uint8_t* row) { std::copy_n(m_grey.take(y, 1).pixels, m_grey.width(), row); }

    void diffuseRow(std::uint8_t* bits) {
        std::fill_n(bits, m_out.rowBytes, std::uint8_t{0});
        for (std::uint32_t x = 0; x < m_grey.width(); ++x) {
            const std::uint8_t value = m_rows[0][x];
            if (value > kLastBlack) bits[x / 8] = static_cast<std::uint8_t>(bits[x / 8] | 0x80U >> (x % 8));
            for (std::size_t cell = 0; cell < kShares.size(); ++cell) {
                std::uint8_t* const target = m_rows[static_cast<std::size_t>(kKernel.cells[cell].dy)] + x + kKernel.cells[cell].dx;
                *target = static_cast<std::uint8_t>(std::clamp(*target + kShares[cell][value], 0, 255));
            }
        }
    }

    GreyRows& m_grey;
    const BitRows& m_out;
    std::size_t m_rowBytes;
    LocalBlock<std::uint8_t> m_block;
    std::array<std::uint8_t*, static_cast<std::size_t>(kKernel.rowsBelow()) + 1> m_rows{};
};

template <const auto& kKernel>
bool diffusePlain(GreyRows& grey, const BitRows& out, HalftoneRun& run) {
    return Diffuser<kKernel>(grey, out).run(run);
}

std::optional<WideKernel> wideKernelOf(Diffusion kernel) {
    switch (kernel) {
        case Diffusion::FloydSteinberg: return WideKernel::FloydSteinberg;
        case Diffusion::JarvisJudiceNinke: return WideKernel::JarvisJudiceNinke;
        case Diffusion::Stucki: return WideKernel::Stucki;
        case Diffusion::Burkes: return WideKernel::Burkes;
        case Diffusion::Sierra:
        case Diffusion::StevensonArce: break;
    }
    return std::nullopt;
}

}  // namespace

bool diffuseErrors(GreyRows& grey, Diffusion kernel, const BitRows& out, HalftoneRun& run, CpuLevel level) {
    const WideHalftone* const wide = wideHalftone(level);
    const std::optional<WideKernel> wideKernel = wideKernelOf(kernel);
    if (wide != nullptr && wideKernel) return diffuseWavefront(grey, *wideKernel, out, run, *wide);
    switch (kernel) {
        case Diffusion::FloydSteinberg: return diffusePlain<kFloydSteinberg>(grey, out, run);
        case Diffusion::Burkes: return diffusePlain<kBurkes>(grey, out, run);
        case Diffusion::Stucki: return diffusePlain<kStucki>(grey, out, run);
        case Diffusion::JarvisJudiceNinke: return diffusePlain<kJarvisJudiceNinke>(grey, out, run);
        case Diffusion::Sierra: return diffusePlain<kSierra>(grey, out, run);
        case Diffusion::StevensonArce: return diffusePlain<kStevensonArce>(grey, out, run);
    }
    return false;
}

}  // namespace morvil
