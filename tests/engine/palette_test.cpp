// Palettes: making and deleting, nearest colours and dither cells.
#include "engine/pixels/Colours.h"
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class Palettes : public EngineTest {};

}  // namespace

TEST_F(Palettes, requestsWithoutSense_areRefused) {
    ULONG entries[2] = {0, 0xFFFFFF};
    EXPECT_EQ(EngCreatePalette(PAL_INDEXED, 0, entries, 0, 0, 0), nullptr);
    EXPECT_EQ(EngCreatePalette(PAL_INDEXED, 2, nullptr, 0, 0, 0), nullptr);
    EXPECT_EQ(EngCreatePalette(PAL_INDEXED, 257, entries, 0, 0, 0), nullptr);
    EXPECT_EQ(EngCreatePalette(0, 2, entries, 0, 0, 0), nullptr);
    EXPECT_EQ(EngCreatePalette(PAL_BITFIELDS, 0, nullptr, 0xF800, 0, 0x1F), nullptr);
    EXPECT_FALSE(EngDeletePalette(nullptr));
    EXPECT_EQ(livePalettes(), 0U);
}

TEST_F(Palettes, entries_loseTheirFourthByte) {
    ULONG entries[2] = {0xFF000000, 0xFFFFFFFF};
    const HPALETTE handle = EngCreatePalette(PAL_INDEXED, 2, entries, 0, 0, 0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(paletteOf(handle)->entries, (std::vector<COLORREF>{0, 0xFFFFFF}));
    EXPECT_EQ(livePalettes(), 1U);
    EXPECT_TRUE(EngDeletePalette(handle));
    EXPECT_FALSE(EngDeletePalette(handle));
    EXPECT_EQ(paletteOf(handle), nullptr);
}

TEST_F(Palettes, directColours_followThePalettesOrder) {
    EngineSurface& surface = makeBitmap(2, 2, BMF_24BPP);
    EXPECT_EQ(nearestPixel(surface, RGB(1, 2, 3)), 0x010203U);
    surface.palette = paletteOf(EngCreatePalette(PAL_BGR, 0, nullptr, 0, 0, 0));
    EXPECT_EQ(nearestPixel(surface, RGB(1, 2, 3)), 0x010203U);
    surface.palette = paletteOf(EngCreatePalette(PAL_RGB, 0, nullptr, 0, 0, 0));
    EXPECT_EQ(nearestPixel(surface, RGB(1, 2, 3)), 0x030201U);
    EXPECT_TRUE(hasExactColour(surface, RGB(1, 2, 3)));
    EngineSurface& small = makeBitmap(2, 2, BMF_16BPP);
    EXPECT_EQ(nearestPixel(small, RGB(255, 128, 0)), 0x7C00U | (16U << 5));
    small.palette = paletteOf(EngCreatePalette(PAL_BITFIELDS, 0, nullptr, 0xF800, 0x07E0, 0x001F));
    EXPECT_EQ(nearestPixel(small, RGB(255, 128, 0)), 0xF800U | (32U << 5));
}

TEST_F(Palettes, nearest_takesTheLowestOfEquals) {
    const std::vector<COLORREF> entries = {0x000000, 0xFFFFFF, 0x0000FF, 0xFFFFFF, 0x0000FF};
    EXPECT_EQ(nearestIndex(entries, 0xFFFFFE), 1U);
    EXPECT_EQ(nearestIndex(entries, 0x0000FF), 2U);
    const std::vector<COLORREF> equal = {0x00000A, 0x000014};
    EXPECT_EQ(nearestIndex(equal, 0x00000F), 0U);
    EXPECT_EQ(nearestIndex({}, 0x123456), 0U);
}

TEST_F(Palettes, rememberedNearest_agreesWithTheSearch) {
    Random random(3);
    std::vector<COLORREF> entries;
    for (int i = 0; i < 200; ++i) entries.push_back(random.next() & 0xFFFFFF);
    NearestColour nearest(entries);
    for (int i = 0; i < 20000; ++i) {
        const COLORREF colour = random.next() & 0xFCF8F0;
        ASSERT_EQ(nearest(colour), nearestIndex(entries, colour)) << std::hex << colour;
    }
}

TEST_F(Palettes, ditheredGrey_hasTheRightNumberOfWhitePlaces) {
    const std::vector<COLORREF> entries = {0x000000, 0xFFFFFF};
    for (unsigned grey = 0; grey < 256; ++grey) {
        int white = 0;
        for (const std::uint8_t index : ditherCell(entries, RGB(grey, grey, grey))) white += index;
        EXPECT_NEAR(white, grey * 64.0 / 255.0, 0.5 + 1e-9) << grey;
    }
    // Half of the places, evenly: the finest checkerboard.
    const DitherCell half = ditherCell(entries, RGB(128, 128, 128));
    for (std::size_t i = 0; i < half.size(); ++i) EXPECT_EQ(half[i], ((i % 8 + i / 8) % 2 == 0) ? 1 : 0) << i;
}

TEST_F(Palettes, ditheredColour_averagesToTheColour) {
    const std::vector<COLORREF> entries = {0x000000, 0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF, 0xFFFF00, 0xFF00FF};
    Random random(8);
    for (int i = 0; i < 200; ++i) {
        const COLORREF colour = random.next() & 0xFFFFFF;
        int sums[3] = {0, 0, 0};
        for (const std::uint8_t index : ditherCell(entries, colour)) {
            sums[0] += GetRValue(entries[index]);
            sums[1] += GetGValue(entries[index]);
            sums[2] += GetBValue(entries[index]);
        }
        EXPECT_NEAR(sums[0] / 64.0, GetRValue(colour), 8.0);
        EXPECT_NEAR(sums[1] / 64.0, GetGValue(colour), 8.0);
        EXPECT_NEAR(sums[2] / 64.0, GetBValue(colour), 8.0);
    }
}

TEST_F(Palettes, exactColours_areNotDithered) {
    std::vector<COLORREF> ramp;
    for (unsigned i = 0; i < 256; ++i) ramp.push_back(RGB(i, i, i));
    DitheredColour dithered(ramp);
    for (unsigned i = 0; i < 256; ++i) {
        for (LONG x = 0; x < 8; ++x) EXPECT_EQ(dithered(RGB(i, i, i), x, x * 3), i);
    }
    // Of equal entries the lowest is taken.
    DitheredColour twice({0x000000, 0xFFFFFF, 0xFFFFFF});
    EXPECT_EQ(twice(0xFFFFFF, -1, -9), 1U);
}

TEST_F(Palettes, sharedCells_areThoseOfTheColourItself) {
    // On greys colours of one sum share a cell, and that is no approximation.
    Random random(12);
    const std::vector<COLORREF> greys = {0x000000, 0x404040, 0xFFFFFF, 0x909090, 0x404040};
    DitheredColour dithered(greys);
    for (int i = 0; i < 3000; ++i) {
        const COLORREF colour = random.next() & 0xFFFFFF;
        EXPECT_EQ(dithered.cell(colour), ditherCell(greys, colour)) << std::hex << colour;
    }
    // Few colours: each has its own cell.
    const std::vector<COLORREF> few = {0x000000, 0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF};
    DitheredColour fewDithered(few);
    for (int i = 0; i < 3000; ++i) {
        const COLORREF colour = random.next() & 0xFFFFFF;
        EXPECT_EQ(fewDithered.cell(colour), ditherCell(few, colour)) << std::hex << colour;
    }
}

TEST_F(Palettes, manyColours_shareCellsWithNeighboursButAreExactWhereTheyCan) {
    Random random(13);
    std::vector<COLORREF> entries;
    for (unsigned i = 0; i < 200; ++i) entries.push_back(random.next() & 0xFFFFFF);
    DitheredColour dithered(entries);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(dithered(entries[i], 3, 5), nearestIndex(entries, entries[i]));
    }
    for (int i = 0; i < 300; ++i) {
        const COLORREF colour = random.next() & 0xFCFCFC;
        const COLORREF neighbour = colour | 0x010203;
        EXPECT_EQ(dithered.cell(colour), dithered.cell(neighbour));
        const COLORREF middle = colour | ((colour >> 6) & 0x030303);
        EXPECT_EQ(dithered.cell(colour), ditherCell(entries, middle));
    }
}
