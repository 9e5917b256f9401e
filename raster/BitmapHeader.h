// BitmapHeader.h - the leading bytes of the bitmap section: file header, information header and palette, as one block to be
// written at once. Numbers are little-endian. Pure; no state.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace morvil {

inline constexpr std::uint32_t kBitmapHeaderBytes = 54;  // 14 of the file header, 40 of the information header

// Measures of an image of `bitsPerPixel` 1, 8 or 24.
struct BitmapGeometry {
    std::uint32_t width;
    std::uint32_t height;
    int bitsPerPixel;
    std::uint32_t rowBytes;   // that the pixels of one row need
    std::uint32_t stride;     // rowBytes rounded up to a multiple of 4
    std::uint32_t imageSize;  // stride * height
};

// Nothing when the image exceeds 2^31 - 1 bytes.
std::optional<BitmapGeometry> measureBitmap(std::uint32_t width, std::uint32_t height, int bitsPerPixel);

// Header and palette; each palette entry is a 0x00BBGGRR colour and becomes blue, green, red, 0.
std::vector<std::uint8_t> bitmapHeader(const BitmapGeometry& geometry, std::span<const std::uint32_t> palette);

}  // namespace morvil
