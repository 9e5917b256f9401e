// Bitmaps of metafiles: depths, row orders, palettes, run lengths, and broken ones.
#include <gtest/gtest.h>

#include "engine/ImageColours.h"
#include "engine/metafile/Objects.h"
#include "engine/metafile/Record.h"
#include "support/MetafileBuilder.h"

namespace morvil::test {
namespace {

using engine::DamagedRecord;
using engine::Image;

Image readDib(const Bytes& header, const Bytes& bits, ULONG usage = 0, const engine::PaletteObject& palette = {}) {
    return engine::readDib(header.data(), bits.data(), usage, palette);
}

TEST(Dib, depths_giveTheSameTwoPixels) {
    Bytes core;
    core.u32(12).u16(2).u16(1).u16(1).u16(1).u8(0x33).u8(0x22).u8(0x11).u8(0xFF).u8(0xFF).u8(0xFF);
    Bytes fields16 = dibHeader(2, 1, 16, {}, 3);
    fields16.u32(0xF800).u32(0x07E0).u32(0x001F);
    Bytes fields32 = dibHeader(2, 1, 32, {}, 3);
    fields32.u32(0xFF000000).u32(0x00FF0000).u32(0x0000FF00);
    Bytes version5;
    version5.u32(124).i32(2).i32(1).u16(1).u16(32).u32(3).zeros(20).u32(0x0000FF).u32(0x00FF00).u32(0xFF0000).zeros(124 - 52);
    const struct {
        const char* name;
        Bytes header;
        Bytes bits;
        std::vector<COLORREF> expected;
    } cases[] = {
        {"1 bit", dibHeader(2, 1, 1, {0x112233, 0xFFFFFF}), Bytes().u32(0x40), {0x332211, 0xFFFFFF}},
        {"1 bit, old header", core, Bytes().u32(0x40), {0x332211, 0xFFFFFF}},
        {"4 bits", dibHeader(2, 1, 4, {0, 0x112233, 0xFFFFFF}), Bytes().u32(0x12), {0x332211, 0xFFFFFF}},
        {"8 bits", dibHeader(2, 1, 8, {0, 0x112233, 0xFFFFFF}), Bytes().u32(0x0201), {0x332211, 0xFFFFFF}},
        {"16 bits", dibHeader(2, 1, 16), Bytes().u16(0x7C00).u16(0x001F), {0x0000FF, 0xFF0000}},
        {"16 bits with fields", fields16, Bytes().u16(0x07E0).u16(0xFFFF), {0x00FF00, 0xFFFFFF}},
        {"24 bits", dibHeader(2, 1, 24), Bytes().u8(3).u8(2).u8(1).u8(0).u8(0).u8(0).u16(0), {0x030201, 0}},
        {"24 bits without the padding", dibHeader(2, 1, 24), Bytes().u8(3).u8(2).u8(1).u8(6).u8(5).u8(4), {0x030201, 0x060504}},
        {"32 bits", dibHeader(2, 1, 32), Bytes().u32(0x00112233).u32(0xFF445566), {0x332211, 0x665544}},
        {"32 bits with fields", fields32, Bytes().u32(0x11223344).u32(0), {0x332211, 0}},
        {"32 bits, long header", version5, Bytes().u32(0x00332211).u32(0), {0x332211, 0}},
    };
    for (const auto& c : cases) EXPECT_EQ(colours(readDib(c.header, c.bits)), c.expected) << c.name;
}

TEST(Dib, rowOrder_upperRowFirstWhenNegative) {
    const Bytes bits = Bytes().u32(0x00).u32(0x80);
    EXPECT_EQ(colours(readDib(dibHeader(1, 2, 1, {0, 0xFFFFFF}), bits)), (std::vector<COLORREF>{0xFFFFFF, 0}));
    EXPECT_EQ(colours(readDib(dibHeader(1, -2, 1, {0, 0xFFFFFF}), bits)), (std::vector<COLORREF>{0, 0xFFFFFF}));
}

TEST(Dib, paletteIndexes_areResolvedInTheSelectedPalette) {
    const engine::PaletteObject palette{{0x111111, 0x222222, 0x333333}};
    Bytes header = dibHeader(2, 1, 1);
    header.u16(2).u16(1);
    EXPECT_EQ(colours(readDib(header, Bytes().u32(0x40), DIB_PAL_COLORS, palette)), (std::vector<COLORREF>{0x333333, 0x222222}));
    EXPECT_EQ(colours(readDib(dibHeader(2, 1, 1), Bytes().u32(0x40), 2, palette)), (std::vector<COLORREF>{0x111111, 0x222222}));
}

TEST(Dib, runLengths_areDecoded) {
    const std::initializer_list<std::uint32_t> four = {0x000000, 0x000001, 0x000002, 0x000003};
    // Lower row: two of 1, end of line. Upper row: skip one, literals 2 3 3 (and their padding).
    const Bytes eight = Bytes().u8(2).u8(1).u8(0).u8(0).u8(0).u8(2).u8(1).u8(0).u8(0).u8(3).u8(2).u8(3).u8(3).u8(0).u8(0).u8(1);
    EXPECT_EQ(colours(readDib(dibHeader(4, 2, 8, four, 1), eight)),
              (std::vector<COLORREF>{0, 0x20000, 0x30000, 0x30000, 0x10000, 0x10000, 0, 0}));
    const Bytes nibbles = Bytes().u8(3).u8(0x12).u8(0).u8(0).u8(0).u8(3).u8(0x32).u8(0x10).u8(0).u8(1);
    EXPECT_EQ(colours(readDib(dibHeader(3, 2, 4, four, 2), nibbles)),
              (std::vector<COLORREF>{0x30000, 0x20000, 0x10000, 0x10000, 0x20000, 0x10000}));
    // Runs that leave the bitmap, and data that ends early, stop at its edges.
    EXPECT_EQ(colours(readDib(dibHeader(2, 1, 8, four, 1), Bytes().u8(200).u8(1).u8(0).u8(0).u8(9).u8(2).u8(0))),
              (std::vector<COLORREF>{0x10000, 0x10000}));
    EXPECT_EQ(colours(readDib(dibHeader(2, 1, 8, four, 1), Bytes().u8(0).u8(2).u8(255).u8(255).u8(9).u8(2))),
              (std::vector<COLORREF>{0, 0}));
    EXPECT_EQ(colours(readDib(dibHeader(2, 1, 8, four, 1), Bytes())), (std::vector<COLORREF>{0, 0}));
}

TEST(Dib, broken_isDamage) {
    const auto put = [](Bytes bytes, std::size_t at, unsigned value) {
        bytes.data()[at] = static_cast<std::uint8_t>(value);
        return bytes;
    };
    const Bytes plain = dibHeader(2, 2, 24);
    const struct {
        const char* reason;
        Bytes header;
        std::size_t bits;
    } cases[] = {
        {"do not fit", Bytes().u16(40), 16},
        {"a bitmap header of 16 bytes", put(plain, 0, 16), 16},
        {"a bitmap header of 41 bytes", put(plain, 0, 41), 16},
        {"a bitmap without width or height", dibHeader(0, 2, 24), 16},
        {"a bitmap without width or height", dibHeader(-2, 2, 24), 16},
        {"a bitmap without width or height", dibHeader(2, INT32_MIN, 24), 16},
        {"a bitmap of 7 bits per pixel", dibHeader(2, 2, 7), 16},
        {"a bitmap of 2 x 2 pixels in 13 bytes", plain, 13},
        {"in 16 bytes", dibHeader(0x7FFFFFFF, 1, 1, {0, 0}), 16},
        {"a bitmap row of 8589934588 bytes", dibHeader(0x7FFFFFFF, 1, 32), 16},
        {"in 16 bytes", dibHeader(4, 0x7FFFFFFF, 8, {0}), 16},
        {"256 colours from byte 40 do not fit", dibHeader(2, 2, 8), 16},
        {"a bitmap of compression 4", dibHeader(2, 2, 24, {}, 4), 16},
        {"a bitmap of compression 1", dibHeader(2, 2, 24, {}, 1), 16},
        {"do not fit", dibHeader(2, 2, 32, {}, 3), 16},
        {"bit fields in a bitmap of another depth", dibHeader(2, 2, 24, {0, 0, 0}, 3), 16},
        {"a compressed bitmap of 1073741824 pixels", dibHeader(32768, 32768, 8, {0}, 1), 16},
    };
    for (const auto& c : cases) {
        try {
            readDib(c.header, Bytes().zeros(c.bits));
            ADD_FAILURE() << c.reason;
        } catch (const DamagedRecord& damaged) {
            EXPECT_NE(std::string(damaged.what()).find(c.reason), std::string::npos) << damaged.what();
        }
    }
    EXPECT_NO_THROW(readDib(plain, Bytes().zeros(14)));
}

}  // namespace
}  // namespace morvil::test
