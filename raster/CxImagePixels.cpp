// CxImagePixels.cpp - single pixels, the palette, and the conversion to grey.
#include <algorithm>
#include <cstring>

#include "raster/CxImage.h"

namespace morvil {

std::span<const RGBQUAD> CxImage::GetPalette() const {
    if (!m_block) return {};
    return {palette(), m_colours};
}

std::span<const std::uint8_t> CxImage::GetDIB() const {
    if (!m_block) return {};
    return m_block.span().first(pixelOffset());
}

std::span<const std::uint8_t> CxImage::GetBits() const {
    if (!m_block) return {};
    return {pixels(), m_effWidth * GetHeight()};
}

std::uint8_t CxImage::GetPixelIndex(std::uint32_t x, std::uint32_t y) const {
    if (!m_block) return 0;
    if (!isInside(x, y)) return m_background != -1 ? static_cast<std::uint8_t>(m_background) : *pixels();
    const std::uint8_t* const line = row(y);
    switch (GetBpp()) {
        case 1: return line[x / 8] >> (7 - x % 8) & 1;
        case 4: return x % 2 == 0 ? line[x / 2] >> 4 : line[x / 2] & 15;
        case 8: return line[x];
        default: return 0;  // colours have no index
    }
}

void CxImage::SetPixelIndex(std::uint32_t x, std::uint32_t y, std::uint8_t index) {
    if (!isInside(x, y)) return;
    std::uint8_t* const line = row(y);
    const auto put = [](std::uint8_t& byte, unsigned mask, unsigned value) {
        byte = static_cast<std::uint8_t>((byte & ~mask) | (value & mask));
    };
    switch (GetBpp()) {
        case 1: put(line[x / 8], 0x80U >> x % 8, index != 0 ? 0xFF : 0); break;
        case 4: put(line[x / 2], x % 2 == 0 ? 0xF0 : 0x0F, index * 0x11U); break;
        case 8: line[x] = index; break;
        default: break;
    }
}

RGBQUAD CxImage::GetPixelColor(std::uint32_t x, std::uint32_t y) const {
    if (!m_block) return {};
    if (GetBpp() < 24) {
        const std::uint8_t index = GetPixelIndex(x, y);
        return index < m_colours ? palette()[index] : RGBQUAD{};
    }
    const std::uint8_t* const pixel = isInside(x, y) ? row(y) + std::size_t{x} * 3 : pixels();
    return {pixel[0], pixel[1], pixel[2], 0};
}

void CxImage::SetPixelColor(std::uint32_t x, std::uint32_t y, RGBQUAD colour) {
    if (!isInside(x, y) || GetBpp() < 24) return;
    std::uint8_t* const pixel = row(y) + std::size_t{x} * 3;
    pixel[0] = colour.rgbBlue;
    pixel[1] = colour.rgbGreen;
    pixel[2] = colour.rgbRed;
}

void CxImage::SetGrayPalette() {
    if (!m_block || m_colours == 0) return;
    for (std::size_t i = 0; i < m_colours; ++i) {
        const auto grey = static_cast<BYTE>(255 / (m_colours - 1) * i);
        palette()[i] = {grey, grey, grey, 0};
    }
}

void CxImage::SetPaletteColor(std::uint8_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    if (m_block && index < m_colours) palette()[index] = {blue, green, red, 0};
}

bool CxImage::GrayScale() {
    if (!m_block) return false;
    GreyRows grey(source());
    CxImage result;
    if (!grey.reserve(1) || result.Create(GetWidth(), GetHeight(), 8, m_type) == nullptr) {
        m_lastError = TEXT("CxImage::Create can't allocate memory");
        return false;
    }
    result.SetGrayPalette();
    for (std::uint32_t y = 0; y < GetHeight(); ++y) std::copy_n(grey.take(y, 1).pixels, GetWidth(), result.row(y));
    const auto entry = static_cast<std::size_t>(m_background);
    if (m_background != -1 && entry < m_colours) {
        const RGBQUAD colour = palette()[entry];
        result.m_background = greyOf(colour.rgbBlue, colour.rgbGreen, colour.rgbRed);
    }
    takeOver(result);
    return true;
}

}  // namespace morvil
