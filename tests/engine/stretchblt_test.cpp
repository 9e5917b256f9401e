// Stretching: which source pixels a target pixel takes, the four modes, mirroring, masks, clips, dithering and adjustment.
#include "engine/pixels/Colours.h"
#include "engine/pixels/Stretch.h"
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class StretchBltTest : public EngineTest {
  protected:
    static BOOL stretch(EngineSurface& to, EngineSurface& from, RECTL target, RECTL source, ULONG mode, CLIPOBJ* clip = nullptr,
                        COLORADJUSTMENT* adjustment = nullptr, COLORREF background = 0xFFFFFF) {
        EngineXlate translation = makeTranslation(to, from, 0, background);
        POINTL origin{0, 0};
        return EngStretchBlt(&to, &from, nullptr, clip, &translation, adjustment, &origin, &target, &source, nullptr, mode);
    }
    static void giveGreys(EngineSurface& surface) {
        std::vector<COLORREF> ramp;
        for (unsigned i = 0; i < 256; ++i) ramp.push_back(RGB(i, i, i));
        givePalette(surface, ramp);
    }
};

COLORADJUSTMENT neutral() {
    COLORADJUSTMENT a{};
    a.caSize = sizeof a;
    a.caRedGamma = a.caGreenGamma = a.caBlueGamma = 10000;
    a.caReferenceWhite = 10000;
    return a;
}

}  // namespace

TEST_F(StretchBltTest, requestsWithoutSense_areRefused) {
    EngineSurface& to = makeBitmap(8, 8, BMF_8BPP);
    EngineSurface& from = makeBitmap(8, 8, BMF_8BPP);
    RECTL area{0, 0, 4, 4};
    RECTL empty{2, 0, 2, 4};
    RECTL reversed{4, 0, 0, 4};
    POINTL origin{0, 0};
    EXPECT_FALSE(EngStretchBlt(nullptr, &from, nullptr, nullptr, nullptr, nullptr, &origin, &area, &area, nullptr, COLORONCOLOR));
    EXPECT_FALSE(EngStretchBlt(&to, nullptr, nullptr, nullptr, nullptr, nullptr, &origin, &area, &area, nullptr, COLORONCOLOR));
    EXPECT_FALSE(EngStretchBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, nullptr, &area, nullptr, COLORONCOLOR));
    EXPECT_FALSE(EngStretchBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, &area, nullptr, nullptr, COLORONCOLOR));
    EXPECT_FALSE(EngStretchBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, &empty, &area, nullptr, COLORONCOLOR));
    EXPECT_FALSE(EngStretchBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, &area, &reversed, nullptr, COLORONCOLOR));
    EXPECT_FALSE(EngStretchBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, &area, &area, nullptr, 0));
    EXPECT_FALSE(EngStretchBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, &area, &area, nullptr, 5));
    EXPECT_FALSE(EngStretchBlt(&to, &from, &from, nullptr, nullptr, nullptr, &origin, &area, &area, &origin, COLORONCOLOR));
    EXPECT_FALSE(
        EngStretchBlt(&to, &from, &makeBitmap(8, 8, BMF_1BPP), nullptr, nullptr, nullptr, &origin, &area, &area, nullptr, COLORONCOLOR));
}

TEST(StretchAxis, shares_coverTheSourceOnceInOrder) {
    for (LONG source = 1; source < 40; ++source) {
        for (LONG target = 1; target <= source; ++target) {
            const StretchAxis axis(5, 5 + target, 3, 3 + source);
            LONG next = 3;
            for (LONG x = 5; x < 5 + target; ++x) {
                EXPECT_EQ(axis.share(x).begin, next);
                EXPECT_GT(axis.share(x).end, next);
                next = axis.share(x).end;
                std::int64_t sum = 0;
                for (LONG s = axis.touched(x).begin; s < axis.touched(x).end; ++s) {
                    EXPECT_GT(axis.weight(x, s), 0);
                    sum += axis.weight(x, s);
                }
                EXPECT_EQ(sum, axis.whole());
            }
            EXPECT_EQ(next, 3 + source);
        }
    }
}

TEST(StretchAxis, mirrored_isTheReverse) {
    const StretchAxis straight(2, 9, 0, 17);
    const StretchAxis mirrored(9, 2, 0, 17);
    EXPECT_EQ(mirrored.low(), 2);
    EXPECT_EQ(mirrored.high(), 9);
    for (LONG x = 2; x < 9; ++x) {
        EXPECT_EQ(mirrored.middle(x), straight.middle(2 + 9 - 1 - x));
        EXPECT_EQ(mirrored.share(x).begin, straight.share(2 + 9 - 1 - x).begin);
    }
}

TEST_F(StretchBltTest, enlarging_repeatsInEveryModeButHalftone) {
    for (const ULONG mode : std::initializer_list<ULONG>{BLACKONWHITE, WHITEONBLACK, COLORONCOLOR, HALFTONE}) {
        EngineSurface& from = makeBitmap(2, 2, BMF_8BPP);
        draw(from, {"12", "34"});
        EngineSurface& to = makeBitmap(7, 5, BMF_8BPP);
        ASSERT_TRUE(stretch(to, from, {1, 1, 7, 5}, {0, 0, 2, 2}, mode));
        EXPECT_EQ(picture(to), ".......\n.111222\n.111222\n.333444\n.333444\n") << mode;
    }
}

TEST_F(StretchBltTest, mirroredTargets_turnTheRows) {
    EngineSurface& from = makeBitmap(3, 2, BMF_8BPP);
    draw(from, {"123", "456"});
    EngineSurface& horizontal = makeBitmap(4, 2, BMF_8BPP);
    ASSERT_TRUE(stretch(horizontal, from, {3, 0, 0, 2}, {0, 0, 3, 2}, COLORONCOLOR));
    EXPECT_EQ(picture(horizontal), "321.\n654.\n");
    EngineSurface& vertical = makeBitmap(4, 2, BMF_8BPP);
    ASSERT_TRUE(stretch(vertical, from, {0, 2, 3, 0}, {0, 0, 3, 2}, COLORONCOLOR));
    EXPECT_EQ(picture(vertical), "456.\n123.\n");
    EngineSurface& both = makeBitmap(6, 4, BMF_8BPP);
    ASSERT_TRUE(stretch(both, from, {6, 4, 0, 0}, {0, 0, 3, 2}, COLORONCOLOR));
    EXPECT_EQ(picture(both), "665544\n665544\n332211\n332211\n");
}

TEST_F(StretchBltTest, shrinking_dropsCombinesOrAverages) {
    EngineSurface& from = makeBitmap(4, 4, BMF_8BPP);
    giveGreys(from);
    const ULONG pixels[4][4] = {{0xF0, 0x0F, 0x33, 0x11}, {0xFF, 0x3C, 0x55, 0x22}, {1, 2, 3, 4}, {5, 6, 7, 8}};
    for (LONG y = 0; y < 4; ++y) {
        for (LONG x = 0; x < 4; ++x) setPixel(from, x, y, pixels[y][x]);
    }
    const auto shrunk = [&](ULONG mode) {
        EngineSurface& to = makeBitmap(2, 2, BMF_8BPP);
        giveGreys(to);
        EXPECT_TRUE(stretch(to, from, {0, 0, 2, 2}, {0, 0, 4, 4}, mode));
        return std::vector<ULONG>{pixelAt(to, 0, 0), pixelAt(to, 1, 0), pixelAt(to, 0, 1), pixelAt(to, 1, 1)};
    };
    EXPECT_EQ(shrunk(COLORONCOLOR), (std::vector<ULONG>{0x3C, 0x22, 6, 8}));
    EXPECT_EQ(shrunk(BLACKONWHITE), (std::vector<ULONG>{0x00, 0x00, 0, 0}));
    EXPECT_EQ(shrunk(WHITEONBLACK), (std::vector<ULONG>{0xFF, 0x77, 7, 15}));
    EXPECT_EQ(shrunk(HALFTONE), (std::vector<ULONG>{(0xF0 + 0x0F + 0xFF + 0x3C + 2) / 4, (0x33 + 0x11 + 0x55 + 0x22 + 2) / 4, 4, 6}));
}

TEST_F(StretchBltTest, averages_weighPartlyCoveredPixels) {
    // Three pixels on two: each target pixel takes one and a half.
    EngineSurface& from = makeBitmap(3, 1, BMF_24BPP);
    setPixel(from, 0, 0, 0x000000);
    setPixel(from, 1, 0, 0x909090);
    setPixel(from, 2, 0, 0xF0F0F0);
    EngineSurface& to = makeBitmap(2, 1, BMF_24BPP);
    ASSERT_TRUE(stretch(to, from, {0, 0, 2, 1}, {0, 0, 3, 1}, HALFTONE));
    EXPECT_EQ(pixelAt(to, 0, 0), 0x303030U);
    EXPECT_EQ(pixelAt(to, 1, 0), 0xD0D0D0U);
}

TEST_F(StretchBltTest, monochromeShrinking_keepsBlackOrWhite) {
    EngineSurface& from = makeBitmap(16, 4, BMF_1BPP);
    draw(from, {"1111111111111111", "1111.11111111111", "................", "..........1....."});
    EngineSurface& black = makeBitmap(4, 2, BMF_1BPP);
    ASSERT_TRUE(stretch(black, from, {0, 0, 4, 2}, {0, 0, 16, 4}, BLACKONWHITE));
    EXPECT_EQ(picture(black), "1.11\n....\n");
    EngineSurface& white = makeBitmap(4, 2, BMF_1BPP);
    ASSERT_TRUE(stretch(white, from, {0, 0, 4, 2}, {0, 0, 16, 4}, WHITEONBLACK));
    EXPECT_EQ(picture(white), "1111\n..1.\n");
    // Colours count, not bits: with the palette turned around black is 1.
    givePalette(from, {0xFFFFFF, 0x000000});
    EngineSurface& turned = makeBitmap(4, 2, BMF_1BPP);
    ASSERT_TRUE(stretch(turned, from, {0, 0, 4, 2}, {0, 0, 16, 4}, BLACKONWHITE));
    EXPECT_EQ(picture(turned), "....\n11.1\n");
}

TEST_F(StretchBltTest, halftoneOnTwoColours_keepsTheMeanGrey) {
    EngineSurface& from = makeBitmap(1, 1, BMF_24BPP);
    for (const unsigned grey : {0U, 10U, 64U, 128U, 200U, 255U}) {
        setPixel(from, 0, 0, RGB(grey, grey, grey));
        EngineSurface& to = makeBitmap(64, 64, BMF_1BPP);
        ASSERT_TRUE(stretch(to, from, {0, 0, 64, 64}, {0, 0, 1, 1}, HALFTONE));
        double white = 0;
        for (LONG y = 0; y < 64; ++y) {
            for (LONG x = 0; x < 64; ++x) white += pixelAt(to, x, y);
        }
        EXPECT_NEAR(white / 4096.0, grey / 255.0, 0.5 / 64.0 + 1e-9) << grey;
    }
}

TEST_F(StretchBltTest, halftoneOnAGreyRamp_isExact) {
    Random random(2);
    EngineSurface& from = makeBitmap(40, 30, BMF_24BPP);
    for (LONG y = 0; y < 30; ++y) {
        for (LONG x = 0; x < 40; ++x) {
            const unsigned grey = random.next() & 0xFF;
            setPixel(from, x, y, RGB(grey, grey, grey));
        }
    }
    EngineSurface& to = makeBitmap(40, 30, BMF_8BPP);
    giveGreys(to);
    ASSERT_TRUE(stretch(to, from, {0, 0, 40, 30}, {0, 0, 40, 30}, HALFTONE));
    for (LONG y = 0; y < 30; ++y) {
        for (LONG x = 0; x < 40; ++x) ASSERT_EQ(pixelAt(to, x, y), pixelAt(from, x, y) & 0xFF);
    }
}

TEST_F(StretchBltTest, indexedAndDirectSources_ditherAlike) {
    Random random(14);
    EngineSurface& indexed = makeBitmap(13, 9, BMF_4BPP);
    std::vector<COLORREF> entries;
    for (int i = 0; i < 16; ++i) entries.push_back(random.next() & 0xFFFFFF);
    givePalette(indexed, entries);
    fillRandomly(indexed, random);
    EngineSurface& direct = makeBitmap(13, 9, BMF_24BPP);
    for (LONG y = 0; y < 9; ++y) {
        for (LONG x = 0; x < 13; ++x) setPixel(direct, x, y, nearestPixel(direct, entries[pixelAt(indexed, x, y)]));
    }
    const std::vector<COLORREF> palette = {0x000000, 0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000};
    for (const RECTL target : {RECTL{3, 2, 60, 50}, RECTL{0, 0, 13, 9}, RECTL{1, 1, 6, 5}, RECTL{60, 50, 3, 2}, RECTL{0, 0, 40, 4}}) {
        EngineSurface& a = makeBitmap(64, 64, BMF_8BPP);
        EngineSurface& b = makeBitmap(64, 64, BMF_8BPP, 0);
        givePalette(a, palette);
        givePalette(b, palette);
        ASSERT_TRUE(stretch(a, indexed, target, {0, 0, 13, 9}, HALFTONE));
        ASSERT_TRUE(stretch(b, direct, target, {0, 0, 13, 9}, HALFTONE));
        EXPECT_EQ(picture(a), picture(b));
    }
}

TEST_F(StretchBltTest, clip_changesNoPixelInside) {
    Random random(77);
    EngineSurface& from = makeBitmap(30, 30, BMF_24BPP);
    fillRandomly(from, random);
    const RECTL parts[] = {{5, 4, 30, 22}, {20, 15, 50, 36}};
    for (const ULONG mode : std::initializer_list<ULONG>{BLACKONWHITE, WHITEONBLACK, COLORONCOLOR, HALFTONE}) {
        for (const RECTL target : {RECTL{2, 2, 60, 39}, RECTL{3, 3, 24, 22}, RECTL{55, 38, -4, -3}}) {
            EngineSurface& whole = makeBitmap(64, 40, BMF_8BPP);
            EngineSurface& clipped = makeBitmap(64, 40, BMF_8BPP);
            const std::vector<COLORREF> palette = {0x000000, 0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000};
            givePalette(whole, palette);
            givePalette(clipped, palette);
            EngineClip clip = makeClip(Region(parts), {0, 0, 64, 40}, {0, 0, 64, 40});
            ASSERT_TRUE(stretch(whole, from, target, {0, 0, 30, 30}, mode));
            ASSERT_TRUE(stretch(clipped, from, target, {0, 0, 30, 30}, mode, &clip));
            for (LONG y = 0; y < 40; ++y) {
                for (LONG x = 0; x < 64; ++x) {
                    ASSERT_EQ(pixelAt(clipped, x, y), clip.region.contains(x, y) ? pixelAt(whole, x, y) : 0)
                        << mode << " at " << x << ',' << y;
                }
            }
        }
    }
}

TEST_F(StretchBltTest, mask_letsThroughWhereItIsOne) {
    EngineSurface& from = makeBitmap(2, 2, BMF_8BPP);
    draw(from, {"12", "34"});
    EngineSurface& mask = makeBitmap(3, 3, BMF_1BPP);
    draw(mask, {"...", ".1.", "..1"});
    EngineSurface& to = makeBitmap(4, 4, BMF_8BPP);
    RECTL target{0, 0, 4, 4};
    RECTL source{0, 0, 2, 2};
    POINTL maskOrigin{1, 1};
    ASSERT_TRUE(EngStretchBlt(&to, &from, &mask, nullptr, nullptr, nullptr, nullptr, &target, &source, &maskOrigin, COLORONCOLOR));
    EXPECT_EQ(picture(to), "11..\n11..\n..44\n..44\n");
}

TEST_F(StretchBltTest, sourceOutsideItsSurface_leavesThoseTargetPixels) {
    EngineSurface& from = makeBitmap(2, 2, BMF_8BPP);
    draw(from, {"12", "34"});
    EngineSurface& to = makeBitmap(8, 4, BMF_8BPP);
    ASSERT_TRUE(stretch(to, from, {0, 0, 8, 4}, {-1, 0, 3, 2}, COLORONCOLOR));
    EXPECT_EQ(picture(to), "..1122..\n..1122..\n..3344..\n..3344..\n");
    EngineSurface& none = makeBitmap(4, 4, BMF_8BPP);
    EXPECT_TRUE(stretch(none, from, {0, 0, 4, 4}, {50, 50, 52, 52}, HALFTONE));
    EXPECT_EQ(picture(none), "....\n....\n....\n....\n");
}

TEST_F(StretchBltTest, surfaceOntoItself_readsBeforeItWrites) {
    EngineSurface& surface = makeBitmap(6, 1, BMF_8BPP);
    draw(surface, {"123456"});
    ASSERT_TRUE(stretch(surface, surface, {6, 0, 0, 1}, {0, 0, 6, 1}, COLORONCOLOR));
    EXPECT_EQ(picture(surface), "654321\n");
}

TEST_F(StretchBltTest, rasterOperation_combinesWithTheTarget) {
    EngineSurface& from = makeBitmap(1, 1, BMF_8BPP);
    draw(from, {"5"});
    EngineSurface& to = makeBitmap(2, 1, BMF_8BPP);
    draw(to, {"36"});
    StretchRequest request;
    request.target = &to;
    request.source = &from;
    request.targetRectangle = {0, 0, 2, 1};
    request.sourceRectangle = {0, 0, 1, 1};
    request.rop4 = 0x6666;
    ASSERT_TRUE(stretchRop(request));
    EXPECT_EQ(picture(to), "63\n");
    request.rop4 = 0xC0C0;  // source and pattern
    EXPECT_FALSE(stretchRop(request));
    const EngineBrush brush = solidBrush(4);
    request.brush = &brush;
    ASSERT_TRUE(stretchRop(request));
    EXPECT_EQ(picture(to), "44\n");
}

TEST_F(StretchBltTest, ditherCell_followsTheBrushOrigin) {
    // The same picture drawn into a band: the origin moves with the band, so the dots stay where they are on the page.
    EngineSurface& from = makeBitmap(1, 1, BMF_24BPP);
    setPixel(from, 0, 0, 0x505050);
    EngineSurface& page = makeBitmap(16, 16, BMF_1BPP);
    ASSERT_TRUE(stretch(page, from, {0, 0, 16, 16}, {0, 0, 1, 1}, HALFTONE));
    EngineSurface& band = makeBitmap(16, 5, BMF_1BPP);
    EngineXlate translation = makeTranslation(band, from, 0, 0xFFFFFF);
    RECTL target{0, -3, 16, 13};
    RECTL source{0, 0, 1, 1};
    POINTL origin{0, -3};
    ASSERT_TRUE(EngStretchBlt(&band, &from, nullptr, nullptr, &translation, nullptr, &origin, &target, &source, nullptr, HALFTONE));
    for (LONG y = 0; y < 5; ++y) {
        for (LONG x = 0; x < 16; ++x) ASSERT_EQ(pixelAt(band, x, y), pixelAt(page, x, y + 3));
    }
}

TEST_F(StretchBltTest, adjustment_changesColoursInHalftoneModeOnly) {
    EngineSurface& from = makeBitmap(1, 1, BMF_24BPP);
    COLORADJUSTMENT negative = neutral();
    negative.caFlags = CA_NEGATIVE;
    setPixel(from, 0, 0, 0x102030);
    EngineSurface& to = makeBitmap(1, 1, BMF_24BPP);
    ASSERT_TRUE(stretch(to, from, {0, 0, 1, 1}, {0, 0, 1, 1}, COLORONCOLOR, nullptr, &negative));
    EXPECT_EQ(pixelAt(to, 0, 0), 0x102030U);
    ASSERT_TRUE(stretch(to, from, {0, 0, 1, 1}, {0, 0, 1, 1}, HALFTONE, nullptr, &negative));
    EXPECT_EQ(pixelAt(to, 0, 0), 0xEFDFCFU);
}
