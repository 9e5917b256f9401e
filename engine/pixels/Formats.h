// Formats.h - how pixels lie in rows. Pixel values are indices or colours in the layout of their surface; the leftmost pixel
// of a byte is in its highest bits.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "engine/Objects.h"

namespace morvil::engine {

// Bits of a pixel in a BMF_ format; 0 for formats without fixed rows.
int bitsOfFormat(ULONG format);
// The BMF_ format of a bit count; 0 when there is none.
ULONG formatOfBits(int bits);
inline int bitsOf(const SURFOBJ& surface) { return bitsOfFormat(surface.iBitmapFormat); }

// Bytes that the pixels of a row need, without padding. REQUIRES: pixels >= 0.
inline std::int64_t packedRowBytes(LONG pixels, int bits) { return (static_cast<std::int64_t>(pixels) * bits + 7) / 8; }
// The same, rounded up to a multiple of four.
inline std::int64_t alignedRowBytes(LONG pixels, int bits) { return (static_cast<std::int64_t>(pixels) * bits + 31) / 32 * 4; }

inline std::uint8_t* rowOf(const SURFOBJ& surface, LONG y) {
    return static_cast<std::uint8_t*>(surface.pvScan0) + static_cast<std::ptrdiff_t>(y) * surface.lDelta;
}
// Position in its row of the byte that holds the beginning of pixel x.
inline std::size_t byteOfPixel(LONG x, int bits) { return static_cast<std::size_t>(static_cast<std::int64_t>(x) * bits / 8); }

inline RECTL boundsOf(const SURFOBJ& surface) { return {0, 0, surface.sizlBitmap.cx, surface.sizlBitmap.cy}; }
RECTL intersection(const RECTL& a, const RECTL& b);
inline bool isEmpty(const RECTL& r) { return r.left >= r.right || r.top >= r.bottom; }

// Values of `count` pixels of a row, from pixel x on.
void unpackPixels(const std::uint8_t* row, int bits, LONG x, LONG count, ULONG* values);
// Writes the pixels so that out[0] is the byte that holds pixel x of a row; bits of it before x and after the last pixel are 0.
void packPixels(const ULONG* values, int bits, LONG x, LONG count, std::uint8_t* out);

// Where red, green and blue lie in a pixel of direct colour.
class DirectLayout {
  public:
    explicit DirectLayout(const std::array<ULONG, 3>& masks);

    [[nodiscard]] COLORREF colourOf(ULONG value) const {
        if (m_usual) return ((value & 0xFFU) << 16) | (value & 0xFF00U) | ((value >> 16) & 0xFFU);
        return widen(value, 0) | (widen(value, 1) << 8) | (widen(value, 2) << 16);
    }
    [[nodiscard]] ULONG valueOf(COLORREF colour) const {
        if (m_usual) return ((colour & 0xFFU) << 16) | (colour & 0xFF00U) | ((colour >> 16) & 0xFFU);
        return narrow(colour & 0xFFU, 0) | narrow((colour >> 8) & 0xFFU, 1) | narrow((colour >> 16) & 0xFFU, 2);
    }
    [[nodiscard]] bool operator==(const DirectLayout& other) const { return m_masks == other.m_masks; }

  private:
    [[nodiscard]] ULONG widen(ULONG value, std::size_t channel) const;
    [[nodiscard]] ULONG narrow(ULONG level, std::size_t channel) const;

    std::array<ULONG, 3> m_masks;
    std::array<int, 3> m_shift{};
    std::array<ULONG, 3> m_most{};  // largest level of each channel
    bool m_usual = false;           // blue in the low byte, eight bits each
};

// The layout of a surface whose pixels are colours; none for 1, 4 and 8 bits.
std::optional<DirectLayout> directLayoutOf(const EngineSurface& surface);

}  // namespace morvil::engine
