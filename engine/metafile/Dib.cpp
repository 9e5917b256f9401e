// Dib.cpp - bitmap headers of all ages (12 to 124 bytes), colour tables, bit fields and run-length compression.
#include "engine/metafile/Dib.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <utility>

#include "engine/metafile/Objects.h"
#include "engine/metafile/Record.h"

namespace morvil::engine {

namespace {

constexpr std::size_t kCoreHeader = 12;
constexpr std::size_t kInfoHeader = 40;
constexpr std::size_t kHeaderWithMasks = 52;
constexpr ULONG kOpaqueIndexes = 2;  // the bits index the palette without a table

struct Header {
    std::size_t size = 0;
    LONG width = 0;
    LONG height = 0;
    bool topDown = false;
    int bitsPerPixel = 0;
    ULONG compression = BI_RGB;
    ULONG coloursUsed = 0;
};

Header readHeader(const Record& info) {
    Header header;
    header.size = info.u32(0);
    if (header.size == kCoreHeader) {
        header.width = info.u16(4);
        header.height = info.u16(6);
        header.bitsPerPixel = info.u16(10);
    } else {
        if (header.size < kInfoHeader || header.size > info.size()) {
            throw DamagedRecord("a bitmap header of " + std::to_string(header.size) + " bytes");
        }
        header.width = info.i32(4);
        const std::int64_t height = info.i32(8);
        header.topDown = height < 0;
        header.height = height == INT32_MIN ? 0 : static_cast<LONG>(std::abs(height));
        header.bitsPerPixel = info.u16(14);
        header.compression = info.u32(16);
        header.coloursUsed = info.u32(32);
    }
    if (header.width <= 0 || header.height <= 0) throw DamagedRecord("a bitmap without width or height");
    static constexpr int kDepths[] = {1, 4, 8, 16, 24, 32};
    if (std::ranges::find(kDepths, header.bitsPerPixel) == std::end(kDepths)) {
        throw DamagedRecord("a bitmap of " + std::to_string(header.bitsPerPixel) + " bits per pixel");
    }
    return header;
}

bool hasOwnMasks(const Header& header) { return header.compression == BI_BITFIELDS; }

// Bytes between header and colours.
std::size_t colourTableStart(const Header& header) {
    return header.size + (hasOwnMasks(header) && header.size == kInfoHeader ? 3 * sizeof(DWORD) : 0);
}

std::vector<COLORREF> readColours(const Record& info, const Header& header, ULONG usage, const PaletteObject& palette) {
    if (header.bitsPerPixel > 8) return {};
    const std::size_t all = std::size_t{1} << header.bitsPerPixel;
    const std::size_t count = header.coloursUsed == 0 ? all : std::min<std::size_t>(header.coloursUsed, all);
    const std::size_t start = colourTableStart(header);
    std::vector<COLORREF> colours(all, 0);
    if (usage == kOpaqueIndexes) {
        for (std::size_t i = 0; i < all && i < palette.entries.size(); ++i) colours[i] = palette.entries[i];
        return colours;
    }
    if (usage == DIB_PAL_COLORS) {
        info.require(start, count, 2, "colour indexes");
        for (std::size_t i = 0; i < count; ++i) colours[i] = resolveColour(0x01000000U | info.u16(start + 2 * i), palette);
        return colours;
    }
    const std::size_t entry = header.size == kCoreHeader ? 3 : 4;
    info.require(start, count, entry, "colours");
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = start + entry * i;
        colours[i] = RGB(info.u8(at + 2), info.u8(at + 1), info.u8(at));
    }
    return colours;
}

std::array<std::uint32_t, 3> readMasks(const Record& info, const Header& header) {
    if (hasOwnMasks(header)) {
        if (header.bitsPerPixel != 16 && header.bitsPerPixel != 32)
            throw DamagedRecord("bit fields in a bitmap of another depth than 16 or 32");
        // In longer headers the masks are members; behind the 40-byte one they follow. The place is the same.
        return {info.u32(kInfoHeader), info.u32(kInfoHeader + 4), info.u32(kHeaderWithMasks - 4)};
    }
    if (header.bitsPerPixel == 16) return {0x7C00, 0x03E0, 0x001F};
    if (header.bitsPerPixel == 32) return {0xFF0000, 0x00FF00, 0x0000FF};
    return {};
}

// Checked so that neither the row nor the whole image leaves the range that `bits` can have.
void copyRows(Image& image, std::span<const std::uint8_t> bits) {
    const std::int64_t rowBits = static_cast<std::int64_t>(image.width) * image.bitsPerPixel;
    const std::int64_t usedBytes = (rowBits + 7) / 8;
    const std::int64_t rowBytes = (rowBits + 31) / 32 * 4;
    if (rowBytes > INT32_MAX) throw DamagedRecord("a bitmap row of " + std::to_string(rowBytes) + " bytes");
    const auto available = static_cast<std::int64_t>(bits.size());
    // The padding behind the last row may be missing.
    if (usedBytes > available || image.height - 1 > (available - usedBytes) / rowBytes) {
        throw DamagedRecord("a bitmap of " + std::to_string(image.width) + " x " + std::to_string(image.height) + " pixels in " +
                            std::to_string(available) + " bytes");
    }
    image.rowBytes = static_cast<LONG>(rowBytes);
    const auto needed = static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(image.height);
    image.bits.assign(bits.begin(), bits.begin() + static_cast<std::ptrdiff_t>(std::min(needed, bits.size())));
    image.bits.resize(needed, 0);
}

// Run-length compressed rows, lower row first. Pixels outside are dropped, missing ones are 0.
class RunLengthDecoder {
  public:
    RunLengthDecoder(Image& image, std::span<const std::uint8_t> bits) : m_image(image), m_bits(bits) {}

    void run() {
        std::uint8_t first = 0;
        std::uint8_t second = 0;
        while (!m_ended && next(first) && next(second)) {
            if (first != 0) {
                for (int i = 0; i < first; ++i) put(nibbleOrByte(second, i));
            } else if (second < 3) {
                escape(second);
            } else {
                literals(second);
            }
        }
    }

  private:
    bool next(std::uint8_t& value) {
        if (m_next >= m_bits.size()) return false;
        value = m_bits[m_next++];
        return true;
    }

    [[nodiscard]] std::uint8_t nibbleOrByte(std::uint8_t value, int i) const {
        if (m_image.bitsPerPixel == 8) return value;
        return i % 2 == 0 ? value >> 4 : value & 0xF;
    }

    void put(std::uint8_t value) {
        if (m_x < m_image.width && m_y < m_image.height) {
            const auto row = static_cast<std::size_t>(m_y) * static_cast<std::size_t>(m_image.rowBytes);
            if (m_image.bitsPerPixel == 8) {
                m_image.bits[row + static_cast<std::size_t>(m_x)] = value;
            } else {
                std::uint8_t& pair = m_image.bits[row + static_cast<std::size_t>(m_x / 2)];
                pair = static_cast<std::uint8_t>(m_x % 2 == 0 ? (pair & 0x0F) | value << 4 : (pair & 0xF0) | value);
            }
            ++m_x;
        }
    }

    void escape(std::uint8_t code) {
        std::uint8_t right = 0;
        std::uint8_t up = 0;
        switch (code) {
            case 0:
                m_x = 0;
                m_y = std::min(m_y + 1, m_image.height);
                break;
            case 1: m_ended = true; break;
            default:
                if (!next(right) || !next(up)) return;
                m_x = std::min(m_x + right, m_image.width);
                m_y = std::min(m_y + up, m_image.height);
        }
    }

    void literals(int count) {
        const int bytes = m_image.bitsPerPixel == 8 ? count : (count + 1) / 2;
        std::uint8_t value = 0;
        int left = count;
        for (int i = 0; i < bytes; ++i) {
            if (!next(value)) return;
            const int inByte = m_image.bitsPerPixel == 8 ? 1 : std::min(2, left);
            for (int k = 0; k < inByte; ++k) put(nibbleOrByte(value, k));
            left -= inByte;
        }
        if (bytes % 2 != 0) next(value);  // runs of literals end on a word
    }

    Image& m_image;
    std::span<const std::uint8_t> m_bits;
    std::size_t m_next = 0;
    LONG m_x = 0;
    LONG m_y = 0;
    bool m_ended = false;
};

void decodeRunLength(Image& image, std::span<const std::uint8_t> bits) {
    const std::int64_t pixels = static_cast<std::int64_t>(image.width) * image.height;
    if (pixels > kLargestDecodedImage) throw DamagedRecord("a compressed bitmap of " + std::to_string(pixels) + " pixels");
    const std::int64_t rowBytes = (static_cast<std::int64_t>(image.width) * image.bitsPerPixel + 31) / 32 * 4;
    image.rowBytes = static_cast<LONG>(rowBytes);
    image.bits.assign(static_cast<std::size_t>(rowBytes * image.height), 0);
    RunLengthDecoder(image, bits).run();
}

// The value of a channel as eight bits, by its mask.
std::uint8_t channel(std::uint32_t pixel, std::uint32_t mask) {
    if (mask == 0) return 0;
    const std::uint64_t largest = mask >> std::countr_zero(mask);
    const std::uint64_t value = (pixel & mask) >> std::countr_zero(mask);
    return static_cast<std::uint8_t>((value * 255 + largest / 2) / largest);
}

std::size_t rowStart(const Image& image, LONG y) {
    const LONG stored = image.topDown ? y : image.height - 1 - y;
    return static_cast<std::size_t>(stored) * static_cast<std::size_t>(image.rowBytes);
}

Image emptyImage(LONG width, LONG height, int bitsPerPixel) {
    Image image;
    image.width = width;
    image.height = height;
    image.bitsPerPixel = bitsPerPixel;
    image.topDown = true;
    image.rowBytes = static_cast<LONG>((static_cast<std::int64_t>(width) * bitsPerPixel + 31) / 32 * 4);
    image.bits.assign(static_cast<std::size_t>(image.rowBytes) * static_cast<std::size_t>(height), 0);
    return image;
}

}  // namespace

Image readDib(std::span<const std::uint8_t> info, std::span<const std::uint8_t> bits, ULONG usage, const PaletteObject& palette,
              LONG lines) {
    const Record record(info);
    const Header header = readHeader(record);
    Image image;
    image.width = header.width;
    image.height = lines == 0 ? header.height : lines;
    image.bitsPerPixel = header.bitsPerPixel;
    image.topDown = header.topDown;
    image.palette = readColours(record, header, usage, palette);
    image.masks = readMasks(record, header);
    const bool runLength =
        (header.compression == BI_RLE8 && header.bitsPerPixel == 8) || (header.compression == BI_RLE4 && header.bitsPerPixel == 4);
    if (runLength) {
        image.topDown = false;
        decodeRunLength(image, bits);
    } else if (header.compression == BI_RGB || hasOwnMasks(header)) {
        copyRows(image, bits);
    } else {
        throw DamagedRecord("a bitmap of compression " + std::to_string(header.compression));
    }
    return image;
}

DibHeight readDibHeight(std::span<const std::uint8_t> info) {
    const Header header = readHeader(Record(info));
    return {header.height, header.topDown};
}

std::uint32_t pixelAt(const Image& image, LONG x, LONG y) {
    const std::size_t row = rowStart(image, y);
    const auto column = static_cast<std::size_t>(x);
    const auto byte = [&image](std::size_t at) { return static_cast<std::uint32_t>(image.bits[at]); };
    switch (image.bitsPerPixel) {
        case 1: return byte(row + column / 8) >> (7 - column % 8) & 1U;
        case 4: return column % 2 == 0 ? byte(row + column / 2) >> 4 : byte(row + column / 2) & 0xFU;
        case 8: return byte(row + column);
        case 16: return byte(row + 2 * column) | byte(row + 2 * column + 1) << 8;
        case 24: return byte(row + 3 * column) | byte(row + 3 * column + 1) << 8 | byte(row + 3 * column + 2) << 16;
        default: {
            std::uint32_t pixel = 0;
            for (std::size_t i = 0; i < 4; ++i) pixel |= byte(row + 4 * column + i) << (8 * i);
            return pixel;
        }
    }
}

COLORREF colourOf(const Image& image, std::uint32_t pixel) {
    if (image.bitsPerPixel <= 8) return pixel < image.palette.size() ? image.palette[pixel] : 0;
    if (image.bitsPerPixel == 24) return RGB(pixel >> 16, pixel >> 8, pixel);
    return RGB(channel(pixel, image.masks[0]), channel(pixel, image.masks[1]), channel(pixel, image.masks[2]));
}

Image makeColourImage(LONG width, LONG height) {
    Image image = emptyImage(width, height, 32);
    image.masks = {0xFF0000, 0x00FF00, 0x0000FF};
    return image;
}

Image makeMask(LONG width, LONG height) {
    Image image = emptyImage(width, height, 1);
    image.palette = {0x000000, 0xFFFFFF};
    return image;
}

void setColour(Image& image, LONG x, LONG y, COLORREF colour) {
    const std::size_t at = rowStart(image, y) + 4 * static_cast<std::size_t>(x);
    image.bits[at] = GetBValue(colour);
    image.bits[at + 1] = GetGValue(colour);
    image.bits[at + 2] = GetRValue(colour);
}

void setMask(Image& mask, LONG x, LONG y) {
    std::uint8_t& byte = mask.bits[rowStart(mask, y) + static_cast<std::size_t>(x) / 8];
    byte = static_cast<std::uint8_t>(byte | 0x80 >> (x % 8));
}

}  // namespace morvil::engine
