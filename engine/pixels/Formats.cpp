// Formats.cpp - packing and unpacking rows.
#include "engine/pixels/Formats.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace morvil::engine {
namespace {

constexpr std::array<ULONG, 3> kMasks888{0xFF0000, 0x00FF00, 0x0000FF};
constexpr std::array<ULONG, 3> kMasks888RedLow{0x0000FF, 0x00FF00, 0xFF0000};
constexpr std::array<ULONG, 3> kMasks555{0x7C00, 0x03E0, 0x001F};

std::array<ULONG, 3> masksOf(const EngineSurface& surface, int bits) {
    if (surface.masks != std::array<ULONG, 3>{}) return surface.masks;
    const Palette* palette = surface.palette.get();
    if (palette != nullptr && (palette->mode & PAL_BITFIELDS) != 0 && palette->masks != std::array<ULONG, 3>{}) return palette->masks;
    if (bits == 16) return kMasks555;
    return palette != nullptr && (palette->mode & PAL_RGB) != 0 ? kMasks888RedLow : kMasks888;
}

// Formats with several pixels in a byte.
template <int kBits>
void unpackParts(const std::uint8_t* row, LONG x, LONG count, ULONG* values) {
    constexpr unsigned kPerByte = 8 / kBits;
    constexpr unsigned kMask = (1U << kBits) - 1U;
    const auto first = static_cast<std::size_t>(x);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const std::size_t pixel = first + i;
        const unsigned shift = static_cast<unsigned>(kPerByte - 1U - pixel % kPerByte) * kBits;
        values[i] = (static_cast<unsigned>(row[pixel / kPerByte]) >> shift) & kMask;
    }
}

template <int kBits>
void packParts(const ULONG* values, LONG x, LONG count, std::uint8_t* out) {
    constexpr unsigned kPerByte = 8 / kBits;
    constexpr unsigned kMask = (1U << kBits) - 1U;
    unsigned filled = static_cast<unsigned>(x) % kPerByte;
    unsigned byte = 0;
    for (LONG i = 0; i < count; ++i) {
        byte |= (values[i] & kMask) << ((kPerByte - 1U - filled) * kBits);
        if (++filled < kPerByte) continue;
        *out++ = static_cast<std::uint8_t>(byte);
        byte = 0;
        filled = 0;
    }
    if (filled != 0) *out = static_cast<std::uint8_t>(byte);
}

}  // namespace

int bitsOfFormat(ULONG format) {
    switch (format) {
        case BMF_1BPP: return 1;
        case BMF_4BPP: return 4;
        case BMF_8BPP: return 8;
        case BMF_16BPP: return 16;
        case BMF_24BPP: return 24;
        case BMF_32BPP: return 32;
        default: return 0;
    }
}

ULONG formatOfBits(int bits) {
    switch (bits) {
        case 1: return BMF_1BPP;
        case 4: return BMF_4BPP;
        case 8: return BMF_8BPP;
        case 16: return BMF_16BPP;
        case 24: return BMF_24BPP;
        case 32: return BMF_32BPP;
        default: return 0;
    }
}

RECTL intersection(const RECTL& a, const RECTL& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

void unpackPixels(const std::uint8_t* row, int bits, LONG x, LONG count, ULONG* values) {
    const std::uint8_t* in = row + byteOfPixel(x, bits);
    switch (bits) {
        case 1: unpackParts<1>(row, x, count, values); return;
        case 4: unpackParts<4>(row, x, count, values); return;
        case 8: std::copy(in, in + count, values); return;
        case 16:
            for (LONG i = 0; i < count; ++i, in += 2) values[i] = static_cast<ULONG>(in[0] | (in[1] << 8));
            return;
        case 24:
            for (LONG i = 0; i < count; ++i, in += 3) values[i] = static_cast<ULONG>(in[0] | (in[1] << 8) | (in[2] << 16));
            return;
        default: std::memcpy(values, in, static_cast<std::size_t>(count) * sizeof(ULONG)); return;
    }
}

void packPixels(const ULONG* values, int bits, LONG x, LONG count, std::uint8_t* out) {
    switch (bits) {
        case 1: packParts<1>(values, x, count, out); return;
        case 4: packParts<4>(values, x, count, out); return;
        case 8:
            for (LONG i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>(values[i]);
            return;
        case 16:
            for (LONG i = 0; i < count; ++i, out += 2) {
                out[0] = static_cast<std::uint8_t>(values[i]);
                out[1] = static_cast<std::uint8_t>(values[i] >> 8);
            }
            return;
        case 24:
            for (LONG i = 0; i < count; ++i, out += 3) {
                out[0] = static_cast<std::uint8_t>(values[i]);
                out[1] = static_cast<std::uint8_t>(values[i] >> 8);
                out[2] = static_cast<std::uint8_t>(values[i] >> 16);
            }
            return;
        default: std::memcpy(out, values, static_cast<std::size_t>(count) * sizeof(ULONG)); return;
    }
}

DirectLayout::DirectLayout(const std::array<ULONG, 3>& masks) : m_masks(masks), m_usual(masks == kMasks888) {
    for (std::size_t i = 0; i < 3; ++i) {
        if (masks[i] == 0) continue;
        m_shift[i] = std::countr_zero(masks[i]);
        m_most[i] = masks[i] >> m_shift[i];
    }
}

ULONG DirectLayout::widen(ULONG value, std::size_t channel) const {
    const std::uint64_t most = m_most[channel];
    if (most == 0) return 0;
    const std::uint64_t level = (value & m_masks[channel]) >> m_shift[channel];
    return static_cast<ULONG>((level * 255 + most / 2) / most);
}

ULONG DirectLayout::narrow(ULONG level, std::size_t channel) const {
    const std::uint64_t scaled = (static_cast<std::uint64_t>(level) * m_most[channel] + 127) / 255;
    return static_cast<ULONG>(scaled << m_shift[channel]) & m_masks[channel];
}

std::optional<DirectLayout> directLayoutOf(const EngineSurface& surface) {
    const int bits = bitsOf(surface);
    if (bits < 16) return std::nullopt;
    return DirectLayout(masksOf(surface, bits));
}

}  // namespace morvil::engine
