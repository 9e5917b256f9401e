// CxImageDither.cpp - the reduction to one bit. It reads the image's pixels as grey, whatever they are, writes the rows of the result
// beside it, and puts the result in the image's place.
#include <array>
#include <utility>

#include "driver/log/Log.h"
#include "raster/CxImage.h"

namespace morvil {

namespace {

constexpr std::array<RGBQUAD, 256> kGreyPalette = [] {
    std::array<RGBQUAD, 256> palette{};
    for (std::size_t i = 0; i < palette.size(); ++i) palette[i] = {static_cast<BYTE>(i), static_cast<BYTE>(i), static_cast<BYTE>(i), 0};
    return palette;
}();
constexpr std::array<RGBQUAD, 16> kGreyPalette16 = [] {
    std::array<RGBQUAD, 16> palette{};
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const auto grey = static_cast<BYTE>(17 * i);
        palette[i] = {grey, grey, grey, 0};
    }
    return palette;
}();

const Thresholds& thresholdsOf(std::uint32_t patternSize) {
    switch (patternSize) {
        case 0: return kThresholds2x2;
        case 2: return kThresholds4x4;
        default: return kThresholds8x8;
    }
}

const WCHAR* nameOf(std::uint32_t patternSize) {
    switch (patternSize) {
        case 0: return TEXT("CxImage::DitherOrdered, 2x2\n");
        case 2: return TEXT("CxImage::DitherOrdered, 4x4\n");
        default: return TEXT("CxImage::DitherOrdered, 8x8\n");
    }
}

Diffusion diffusionOf(unsigned method) {
    switch (method) {
        case 2: return Diffusion::Burkes;
        case 3: return Diffusion::Stucki;
        case 4: return Diffusion::JarvisJudiceNinke;
        case 5: return Diffusion::Sierra;
        case 6: return Diffusion::StevensonArce;
        default: return Diffusion::FloydSteinberg;
    }
}

}  // namespace

PixelRows CxImage::source() const {
    if (m_attached.pixels == nullptr) return {pixels(), GetWidth(), GetHeight(), GetBpp(), m_effWidth, GetPalette()};
    std::span<const RGBQUAD> palette;
    if (m_attached.bitsPerPixel == 8) palette = kGreyPalette;
    if (m_attached.bitsPerPixel == 4) palette = kGreyPalette16;
    return {m_attached.pixels, GetWidth(), GetHeight(), m_attached.bitsPerPixel, m_attached.scanLine, palette};
}

// A one-bit image of the same size, black and white.
bool CxImage::reserveResult(CxImage& result) {
    if (m_reserved) {
        result.describe(GetWidth(), GetHeight(), 1);
        result.m_block = std::move(m_reserved);
        result.m_rows = m_attached.rowsOut;
    } else if (result.Create(GetWidth(), GetHeight(), 1) == nullptr) {
        m_lastError = result.m_lastError;
        return false;
    }
    result.SetPaletteColor(0, 0, 0, 0);
    result.SetPaletteColor(1, 255, 255, 255);
    return true;
}

void CxImage::takeOver(CxImage& other) {
    m_header = other.m_header;
    m_colours = other.m_colours;
    m_effWidth = other.m_effWidth;
    m_block = std::move(other.m_block);
    m_rows = other.m_rows;
    m_background = other.m_background;
    m_type = other.m_type;
    m_attached = {};
}

template <typename Method>
bool CxImage::reduce(Method method) {
    if (!hasSource()) return false;
    if (GetBpp() == 1) return true;
    m_run.begin();
    CxImage result;
    if (!reserveResult(result)) return false;
    GreyRows grey(source());
    if (!method(grey, BitRows{result.pixels(), result.m_effWidth})) {
        if (!m_run.escape) m_lastError = TEXT("CxImage::Create can't allocate memory");
        if (m_attached.pixels != nullptr) Destroy();  // the memory of its result is gone
        return false;
    }
    takeOver(result);
    return true;
}

bool CxImage::DitherOrdered(std::uint32_t patternSize) {
    return reduce([&](GreyRows& grey, const BitRows& out) {
        debugPrint(nameOf(patternSize));
        return ditherOrdered(grey, thresholdsOf(patternSize), out, m_run, m_level);
    });
}

bool CxImage::Dither(unsigned method) {
    return reduce([&](GreyRows& grey, const BitRows& out) {
        if (method == 1) return ditherOrdered(grey, kThresholds4x4, out, m_run, m_level);
        if (method == 7) return ditherOrdered(grey, kThresholdsAbove4x4, out, m_run, m_level);
        return diffuseErrors(grey, diffusionOf(method), out, m_run, m_level);
    });
}

}  // namespace morvil
