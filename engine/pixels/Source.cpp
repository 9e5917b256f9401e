// Source.cpp - bitmaps made from images, with run lengths decoded. Every size comes from a file, so it is checked first.
#include <algorithm>
#include <span>

#include "engine/Pixels.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/MakeSurface.h"

namespace morvil::engine {
namespace {

// Decodes BI_RLE8 and BI_RLE4 into a bottom-up surface. What runs over a row or the picture is dropped; decoding ends at the
// end mark or where the data ends. Pixels that no run names stay 0.
class RunLengthDecoder {
  public:
    RunLengthDecoder(EngineSurface& surface, int bits) : m_surface(surface), m_bits(bits) {}

    void decode(std::span<const std::uint8_t> data) {
        std::size_t at = 0;
        while (at + 2 <= data.size() && m_line < m_surface.sizlBitmap.cy) {
            const unsigned count = data[at];
            const unsigned value = data[at + 1];
            at += 2;
            if (count > 0) {
                putRun(count, value);
                continue;
            }
            constexpr unsigned kEndOfLine = 0;
            constexpr unsigned kEndOfPicture = 1;
            constexpr unsigned kMove = 2;
            if (value == kEndOfPicture) return;
            if (value == kEndOfLine) {
                m_x = 0;
                ++m_line;
            } else if (value == kMove) {
                if (at + 2 > data.size()) return;
                m_x = std::min<LONG>(m_x + data[at], m_surface.sizlBitmap.cx);
                m_line = std::min<LONG>(m_line + data[at + 1], m_surface.sizlBitmap.cy);
                at += 2;
            } else {
                const std::size_t bytes = m_bits == 8 ? value : (value + 1) / 2;
                if (at + bytes > data.size()) return;
                putLiteral(data.subspan(at, bytes), value);
                at += (bytes + 1) & ~std::size_t{1};  // literals are padded to whole words
            }
        }
    }

  private:
    void putRun(unsigned count, unsigned value) {
        for (unsigned i = 0; i < count; ++i) put(m_bits == 8 ? value : (i % 2 == 0 ? value >> 4 : value & 0x0FU));
    }
    void putLiteral(std::span<const std::uint8_t> data, unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            const unsigned byte = m_bits == 8 ? data[i] : data[i / 2];
            put(m_bits == 8 ? byte : (i % 2 == 0 ? byte >> 4 : byte & 0x0FU));
        }
    }
    void put(unsigned value) {
        if (m_x >= m_surface.sizlBitmap.cx) return;
        std::uint8_t* const row = rowOf(m_surface, m_surface.sizlBitmap.cy - 1 - m_line);
        if (m_bits == 8) {
            row[m_x] = static_cast<std::uint8_t>(value);
        } else {
            const unsigned shift = m_x % 2 == 0 ? 4 : 0;
            std::uint8_t& byte = row[m_x / 2];
            byte = static_cast<std::uint8_t>((byte & ~(0x0FU << shift)) | (value << shift));
        }
        ++m_x;
    }

    EngineSurface& m_surface;
    int m_bits;
    LONG m_x = 0;
    LONG m_line = 0;  // counted from the bottom
};

std::unique_ptr<EngineSurface> plainSource(const Image& image) {
    if (image.rowBytes <= 0 || image.height <= 0) return nullptr;
    const std::uint64_t bytes = static_cast<std::uint64_t>(image.rowBytes) * static_cast<std::uint64_t>(image.height);
    // The last row may lack its padding.
    const std::int64_t lastRow = packedRowBytes(std::max<LONG>(image.width, 0), image.bitsPerPixel);
    if (lastRow > image.rowBytes || bytes - static_cast<std::uint64_t>(image.rowBytes - lastRow) > image.bits.size()) return nullptr;
    auto surface = makeSurface({.width = image.width,
                                .height = image.height,
                                .rowBytes = image.rowBytes,
                                .format = formatOfBits(image.bitsPerPixel),
                                .flags = image.topDown ? BMF_TOPDOWN : 0U,
                                .bits = nullptr});
    if (surface == nullptr) return nullptr;
    std::copy_n(image.bits.begin(), std::min<std::size_t>(image.bits.size(), bytes), surface->storage.get());
    return surface;
}

std::unique_ptr<EngineSurface> runLengthSource(const Image& image) {
    const int bits = image.compression == BI_RLE8 ? 8 : 4;
    if (image.bitsPerPixel != bits || image.topDown) return nullptr;  // the form exists from the bottom up only
    auto surface = makeSurface(
        {.width = image.width, .height = image.height, .rowBytes = 0, .format = formatOfBits(bits), .flags = 0, .bits = nullptr});
    if (surface != nullptr) RunLengthDecoder(*surface, bits).decode(image.bits);
    return surface;
}

}  // namespace

std::unique_ptr<EngineSurface> makeSource(const Image& image) {
    const bool runLengths = image.compression == BI_RLE8 || image.compression == BI_RLE4;
    if (!runLengths && image.compression != BI_RGB && image.compression != BI_BITFIELDS) return nullptr;
    std::unique_ptr<EngineSurface> surface = runLengths ? runLengthSource(image) : plainSource(image);
    if (surface == nullptr) return nullptr;
    if (image.bitsPerPixel <= 8 && !image.palette.empty()) {
        auto palette = std::make_shared<Palette>();
        palette->entries = image.palette;
        surface->palette = std::move(palette);
    }
    if (image.bitsPerPixel == 16 || image.bitsPerPixel == 32) surface->masks = image.masks;
    return surface;
}

}  // namespace morvil::engine
