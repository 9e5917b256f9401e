// Dib.h - reads device-independent bitmaps, with header, colours and bits each checked, and looks at single pixels of them.
#pragma once

#include <cstdint>
#include <span>

#include "engine/Drawing.h"
#include "platform/platform.h"

namespace morvil::engine {

struct PaletteObject;

// Pixels that a bitmap may have when it takes more room decoded than it takes in the file.
inline constexpr std::int64_t kLargestDecodedImage = std::int64_t{1} << 26;

// `usage` is DIB_RGB_COLORS, or DIB_PAL_COLORS for colours that index `palette`. `lines` other than 0: the bits hold only so
// many rows of the bitmap, and the image has that height. Throws DamagedRecord.
Image readDib(std::span<const std::uint8_t> info, std::span<const std::uint8_t> bits, ULONG usage, const PaletteObject& palette,
              LONG lines = 0);

// The height that the header gives (positive), whatever part of it the bits hold, and whether the upper row comes first.
struct DibHeight {
    LONG rows = 0;
    bool topDown = false;
};
DibHeight readDibHeight(std::span<const std::uint8_t> info);

// Value of the pixel as stored (an index, or packed colour); x and y count from the upper left and lie inside.
std::uint32_t pixelAt(const Image& image, LONG x, LONG y);
COLORREF colourOf(const Image& image, std::uint32_t pixel);

// A 32-bit image (blue in the low byte) of zeros, upper row first.
Image makeColourImage(LONG width, LONG height);
// A one-bit image of zeros, upper row first.
Image makeMask(LONG width, LONG height);
void setColour(Image& image, LONG x, LONG y, COLORREF colour);
void setMask(Image& mask, LONG x, LONG y);

}  // namespace morvil::engine
