// Colour translation between surfaces of all kinds.
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class Translation : public EngineTest {};

ULONG translated(EngineSurface& to, EngineSurface& from, ULONG value, COLORREF foreground = 0, COLORREF background = 0xFFFFFF) {
    setPixel(from, 0, 0, value);
    EngineXlate translation = makeTranslation(to, from, foreground, background);
    RECTL target{0, 0, 1, 1};
    POINTL origin{0, 0};
    EXPECT_TRUE(EngCopyBits(&to, &from, nullptr, &translation, &target, &origin));
    return pixelAt(to, 0, 0);
}

}  // namespace

TEST_F(Translation, paletteQuestions_withoutAnswerGiveZero) {
    ULONG entries[4] = {0x55, 0x55, 0x55, 0x55};
    EXPECT_EQ(XLATEOBJ_cGetPalette(nullptr, XO_SRCPALETTE, 4, entries), 0U);
    EngineSurface& direct = makeBitmap(1, 1, BMF_24BPP);
    EngineXlate translation = makeTranslation(makeBitmap(1, 1, BMF_24BPP), direct, 0, 0xFFFFFF);
    EXPECT_EQ(XLATEOBJ_cGetPalette(&translation, XO_SRCPALETTE, 4, entries), 0U);
    EXPECT_EQ(XLATEOBJ_cGetPalette(&translation, XO_DESTPALETTE, 4, entries), 0U);
    EXPECT_EQ(XLATEOBJ_cGetPalette(&translation, 77, 4, entries), 0U);
    EXPECT_EQ(entries[0], 0x55U);
}

TEST_F(Translation, sourcePalette_isCopiedUpToTheCount) {
    EngineSurface& from = makeBitmap(1, 1, BMF_4BPP);
    givePalette(from, {0x111111, 0x222222, 0x333333});
    EngineXlate translation = makeTranslation(makeBitmap(1, 1, BMF_8BPP), from, 0, 0xFFFFFF);
    ULONG entries[4] = {0, 0, 0x55, 0x55};
    EXPECT_EQ(XLATEOBJ_cGetPalette(&translation, XO_SRCPALETTE, 2, entries), 2U);
    EXPECT_EQ(entries[1], 0x222222U);
    EXPECT_EQ(entries[2], 0x55U);
    EXPECT_EQ(XLATEOBJ_cGetPalette(&translation, XO_SRCPALETTE, 100, entries), 3U);
    EXPECT_EQ(entries[3], 0x55U);
    ULONG all[256];
    EXPECT_EQ(XLATEOBJ_cGetPalette(&translation, XO_DESTPALETTE, 256, all), 256U);
}

TEST_F(Translation, sameColours_areTrivial) {
    EngineSurface& a = makeBitmap(1, 1, BMF_8BPP);
    EngineSurface& b = makeBitmap(1, 1, BMF_8BPP);
    EXPECT_EQ(makeTranslation(a, b, 0, 0xFFFFFF).flXlate, XO_TRIVIAL);
    EXPECT_EQ(makeTranslation(makeBitmap(1, 1, BMF_24BPP), makeBitmap(1, 1, BMF_24BPP), 0, 0).flXlate, XO_TRIVIAL);
    givePalette(b, {0xFFFFFF, 0x000000});
    const EngineXlate table = makeTranslation(a, b, 0, 0xFFFFFF);
    EXPECT_EQ(table.flXlate, XO_TABLE);
    ASSERT_EQ(table.cEntries, 2U);
    EXPECT_EQ(table.pulXlate[0], 255U);
    EXPECT_EQ(table.pulXlate[1], 0U);
}

TEST_F(Translation, moving_keepsTheTableInPlace) {
    EngineSurface& from = makeBitmap(1, 1, BMF_4BPP);
    EngineXlate first = makeTranslation(makeBitmap(1, 1, BMF_8BPP), from, 0, 0xFFFFFF);
    const EngineXlate second = std::move(first);
    EXPECT_EQ(second.pulXlate, second.table.data());
}

TEST_F(Translation, monochromeSource_takesTextAndBackground) {
    EngineSurface& from = makeBitmap(1, 1, BMF_1BPP);
    EngineSurface& to = makeBitmap(1, 1, BMF_24BPP);
    EXPECT_EQ(translated(to, from, 0, RGB(1, 2, 3), RGB(4, 5, 6)), 0x010203U);
    EXPECT_EQ(translated(to, from, 1, RGB(1, 2, 3), RGB(4, 5, 6)), 0x040506U);
    givePalette(from, {RGB(7, 8, 9), RGB(10, 11, 12)});
    EXPECT_EQ(translated(to, from, 0, RGB(1, 2, 3), RGB(4, 5, 6)), 0x070809U);
    EngineSurface& mono = makeBitmap(1, 1, BMF_1BPP);
    EXPECT_EQ(translated(mono, makeBitmap(1, 1, BMF_1BPP), 1), 1U);
    givePalette(from, {0xFFFFFF, 0x000000});
    EXPECT_EQ(translated(mono, from, 1), 0U);
    EXPECT_EQ(translated(mono, from, 0), 1U);
}

TEST_F(Translation, colourOnTwoColours_keepsTheBackgroundApart) {
    EngineSurface& to = makeBitmap(1, 1, BMF_1BPP);
    EngineSurface& direct = makeBitmap(1, 1, BMF_24BPP);
    EXPECT_EQ(makeTranslation(to, direct, 0, 0xFFFFFF).flXlate, XO_TO_MONO);
    EXPECT_EQ(translated(to, direct, 0xFFFFFF), 1U);
    EXPECT_EQ(translated(to, direct, 0xFFFFFE), 0U);
    EXPECT_EQ(translated(to, direct, 0x0000FF, 0, RGB(0, 0, 255)), 1U);
    EngineSurface& indexed = makeBitmap(1, 1, BMF_8BPP);
    givePalette(indexed, {0xFFFFFF, 0x000000, 0xF0F0F0});
    EXPECT_EQ(translated(to, indexed, 0), 1U);
    EXPECT_EQ(translated(to, indexed, 2), 0U);
    EXPECT_EQ(translated(to, indexed, 200), 0U);  // beyond the table: its last entry
}

// A page of one bit has the device's palette: pictures keep their lights and darks.
TEST_F(Translation, colourOnTwoColoursOfAPalette_takesTheNearer) {
    EngineSurface& to = makeBitmap(1, 1, BMF_1BPP);
    givePalette(to, {0x000000, 0xFFFFFF});
    EngineSurface& direct = makeBitmap(1, 1, BMF_24BPP);
    EXPECT_EQ(translated(to, direct, 0xE0E0E0), 1U);
    EXPECT_EQ(translated(to, direct, 0x202020), 0U);
    EngineSurface& indexed = makeBitmap(1, 1, BMF_8BPP);
    givePalette(indexed, {0xF0F0F0, 0x101010});
    EXPECT_EQ(translated(to, indexed, 0), 1U);
    EXPECT_EQ(translated(to, indexed, 1), 0U);
}

TEST_F(Translation, directToIndexed_takesTheNearestEntry) {
    EngineSurface& to = makeBitmap(1, 1, BMF_8BPP);
    givePalette(to, {0x000000, 0xFFFFFF, RGB(255, 0, 0), RGB(255, 0, 0)});
    EngineSurface& from = makeBitmap(1, 1, BMF_24BPP);
    EXPECT_EQ(translated(to, from, 0xF01010), 2U);
    EXPECT_EQ(translated(to, from, 0xF0F0F0), 1U);
    EXPECT_EQ(translated(to, from, 0x101010), 0U);
}

TEST_F(Translation, directLayouts_areConverted) {
    EngineSurface& to = makeBitmap(1, 1, BMF_24BPP);
    EngineSurface& small = makeBitmap(1, 1, BMF_16BPP);
    EXPECT_EQ(translated(to, small, 0x7FFF), 0xFFFFFFU);
    EXPECT_EQ(translated(to, small, 0x7C00), 0xFF0000U);
    small.masks = {0xF800, 0x07E0, 0x001F};
    EXPECT_EQ(translated(to, small, 0x07E0), 0x00FF00U);
    EXPECT_EQ(translated(to, small, 0x8000), 0x840000U);  // 16 of 31 parts of 255 are 131.6
    EngineSurface& wide = makeBitmap(1, 1, BMF_32BPP);
    EXPECT_EQ(translated(to, wide, 0xAB123456), 0x123456U);
    wide.masks = {0x000000FF, 0x0000FF00, 0x00FF0000};
    EXPECT_EQ(translated(to, wide, 0xAB123456), 0x563412U);
}

TEST_F(Translation, oneWayThroughRowsAndThroughPixels_givesTheSame) {
    // A whole row at once must do what single pixels do, for every pair of formats.
    Random random(31);
    const ULONG formats[] = {BMF_1BPP, BMF_4BPP, BMF_8BPP, BMF_16BPP, BMF_24BPP, BMF_32BPP};
    for (const ULONG fromFormat : formats) {
        for (const ULONG toFormat : formats) {
            EngineSurface& from = makeBitmap(67, 1, fromFormat);
            fillRandomly(from, random);
            EngineSurface& whole = makeBitmap(67, 1, toFormat);
            EngineXlate translation = makeTranslation(whole, from, RGB(10, 20, 30), RGB(200, 210, 220));
            RECTL target{0, 0, 67, 1};
            POINTL origin{0, 0};
            ASSERT_TRUE(EngCopyBits(&whole, &from, nullptr, &translation, &target, &origin));
            EngineSurface& single = makeBitmap(67, 1, toFormat);
            for (LONG x = 0; x < 67; ++x) {
                RECTL one{x, 0, x + 1, 1};
                POINTL place{x, 0};
                ASSERT_TRUE(EngCopyBits(&single, &from, nullptr, &translation, &one, &place));
            }
            for (LONG x = 0; x < 67; ++x)
                ASSERT_EQ(pixelAt(whole, x, 0), pixelAt(single, x, 0)) << fromFormat << " to " << toFormat << " at " << x;
        }
    }
}
