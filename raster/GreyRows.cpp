#include "raster/GreyRows.h"

#include <algorithm>

namespace morvil {

namespace {

constexpr std::array<std::uint8_t, 256> kRamp = [] {
    std::array<std::uint8_t, 256> ramp{};
    for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<std::uint8_t>(i);
    return ramp;
}();

std::array<std::uint8_t, 256> greysOf(std::span<const RGBQUAD> palette) {
    std::array<std::uint8_t, 256> greys{};
    for (std::size_t i = 0; i < std::min(palette.size(), greys.size()); ++i) {
        greys[i] = greyOf(palette[i].rgbBlue, palette[i].rgbGreen, palette[i].rgbRed);
    }
    return greys;
}

template <std::size_t PixelBytes>
void convertColours(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out) {
    for (std::uint32_t x = 0; x < width; ++x, in += PixelBytes) out[x] = greyOf(in[0], in[1], in[2]);
}

}  // namespace

GreyRows::GreyRows(const PixelRows& image)
    : m_image(image), m_greys(greysOf(image.palette)), m_asTheyLie(image.bitsPerPixel == 8 && m_greys == kRamp) {}

bool GreyRows::reserve(std::uint32_t count) {
    if (m_asTheyLie) return true;
    m_converted = LocalBlock<std::uint8_t>(std::size_t{count} * m_image.width);
    return static_cast<bool>(m_converted);
}

GreyBand GreyRows::take(std::uint32_t first, std::uint32_t count) {
    if (m_asTheyLie) return {m_image.pixels + std::size_t{first} * m_image.rowBytes, m_image.rowBytes};
    for (std::uint32_t i = 0; i < count; ++i) convert(first + i, m_converted.get() + std::size_t{i} * m_image.width);
    return {m_converted.get(), m_image.width};
}

void GreyRows::convert(std::uint32_t row, std::uint8_t* out) const {
    const std::uint8_t* const in = m_image.pixels + std::size_t{row} * m_image.rowBytes;
    const std::uint32_t width = m_image.width;
    switch (m_image.bitsPerPixel) {
        case 1:
            for (std::uint32_t x = 0; x < width; ++x) out[x] = m_greys[in[x / 8] >> (7 - x % 8) & 1U];
            break;
        case 4:
            for (std::uint32_t x = 0; x < width; ++x) out[x] = m_greys[in[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15U];
            break;
        case 8:
            for (std::uint32_t x = 0; x < width; ++x) out[x] = m_greys[in[x]];
            break;
        case 24: convertColours<3>(in, width, out); break;
        default: convertColours<4>(in, width, out); break;
    }
}

}  // namespace morvil
