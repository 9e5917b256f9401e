#include "raster/OrderedDither.h"

#include <algorithm>

#include "raster/WideHalftone.h"

namespace morvil {

namespace {

constexpr std::uint32_t kRowsAtOnce = 16;  // of those that must be converted

void ditherRow(const std::uint8_t* grey, std::uint32_t width, const std::uint8_t* thresholds, std::uint8_t* bits) {
    unsigned byte = 0;
    for (std::uint32_t x = 0; x < width; ++x) {
        byte |= (grey[x] >= thresholds[x % Thresholds::kColumns] ? 0x80U : 0U) >> (x % 8);
        if (x % 8 != 7 && x + 1 != width) continue;
        bits[x / 8] = static_cast<std::uint8_t>(byte);
        byte = 0;
    }
    for (std::uint32_t behind = (width + 7) / 8; behind % 4 != 0; ++behind) bits[behind] = 0;
}

}  // namespace

bool ditherOrdered(GreyRows& grey, const Thresholds& thresholds, const BitRows& out, HalftoneRun& run, CpuLevel level) {
    const WideHalftone* const wide = wideHalftone(level);
    const auto row = wide == nullptr ? &ditherRow : wide->orderedRow;
    if (!grey.reserve(kRowsAtOnce)) return false;
    for (std::uint32_t first = 0; first < grey.height(); first += kRowsAtOnce) {
        const std::uint32_t rows = std::min(kRowsAtOnce, grey.height() - first);
        const GreyBand band = grey.take(first, rows);
        for (std::uint32_t i = 0; i < rows; ++i) {
            const std::uint32_t y = first + i;
            if (!run.enterRow(y, grey.height())) return false;
            row(band.pixels + i * band.rowBytes, grey.width(), thresholds.row(y), out.row(y));
        }
    }
    return true;
}

}  // namespace morvil
