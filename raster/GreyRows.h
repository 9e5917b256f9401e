// GreyRows.h - rows of an image as grey values (0 black, 255 white), whatever the image's depth. Rows of 8 bits that hold grey
// values already are handed out where they lie; others are converted, a few rows at a time, so that a page is never copied whole.
// Borrows the pixels; they must stay as they are until the rows were taken.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/common/LocalBlock.h"
#include "platform/platform.h"

namespace morvil {

constexpr std::uint8_t greyOf(std::uint32_t blue, std::uint32_t green, std::uint32_t red) {
    return static_cast<std::uint8_t>((blue * 117 + green * 601 + red * 306) >> 10);
}

// Where pixels lie. Row i begins i * rowBytes behind the first; 4-bit rows have the even pixel in the high nibble.
struct PixelRows {
    const std::uint8_t* pixels;
    std::uint32_t width;
    std::uint32_t height;
    unsigned bitsPerPixel;                 // 1, 4, 8, 24, or 32 whose fourth byte is passed over
    std::size_t rowBytes;
    std::span<const RGBQUAD> palette;  // none for 24 and 32 bits
};

struct GreyBand {
    const std::uint8_t* pixels;
    std::size_t rowBytes;
};

class GreyRows {
  public:
    explicit GreyRows(const PixelRows& image);

    [[nodiscard]] std::uint32_t width() const { return m_image.width; }
    [[nodiscard]] std::uint32_t height() const { return m_image.height; }
    // Makes room for taking up to `count` rows at once; false when there is no memory.
    bool reserve(std::uint32_t count);
    // Rows first to first + count - 1, which the image has. They last until the next call.
    GreyBand take(std::uint32_t first, std::uint32_t count);

  private:
    void convert(std::uint32_t row, std::uint8_t* out) const;

    PixelRows m_image;
    std::array<std::uint8_t, 256> m_greys{};  // of the palette's entries
    bool m_asTheyLie;
    LocalBlock<std::uint8_t> m_converted;
};

}  // namespace morvil
