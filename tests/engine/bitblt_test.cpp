// Blits at the same size: every ternary code against its truth table, masks, clips, formats and surfaces onto themselves.
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class BitBlt : public EngineTest {};

ULONG ropByTruthTable(unsigned rop, ULONG pattern, ULONG source, ULONG target, int bits) {
    ULONG result = 0;
    for (int i = 0; i < bits; ++i) {
        const unsigned row = ((pattern >> i & 1U) << 2) | ((source >> i & 1U) << 1) | (target >> i & 1U);
        result |= ((rop >> row) & 1U) << i;
    }
    return result;
}

EngineBrush randomBrush(Random& random, LONG width, LONG height, int bits) {
    EngineBrush brush{};
    brush.solid = false;
    brush.iSolidColor = 0xFFFFFFFF;
    brush.patternWidth = width;
    brush.patternHeight = height;
    const ULONG mask = bits == 32 ? 0xFFFFFFFFU : (1U << bits) - 1U;
    for (LONG i = 0; i < width * height; ++i) brush.pattern.push_back(random.next() & mask);
    return brush;
}

std::vector<ULONG> pixelsOf(const SURFOBJ& surface) {
    std::vector<ULONG> pixels;
    for (LONG y = 0; y < surface.sizlBitmap.cy; ++y) {
        for (LONG x = 0; x < surface.sizlBitmap.cx; ++x) pixels.push_back(pixelAt(surface, x, y));
    }
    return pixels;
}

}  // namespace

TEST_F(BitBlt, missingOperands_areRefused) {
    EngineSurface& to = makeBitmap(8, 8, BMF_8BPP);
    EngineSurface& from = makeBitmap(8, 8, BMF_8BPP);
    EngineSurface& mask = makeBitmap(8, 8, BMF_1BPP);
    EngineBrush brush = solidBrush(3);
    RECTL target{0, 0, 4, 4};
    POINTL origin{0, 0};
    EXPECT_FALSE(EngBitBlt(nullptr, &from, nullptr, nullptr, nullptr, &target, &origin, nullptr, nullptr, nullptr, 0xCCCC));
    EXPECT_FALSE(EngBitBlt(&to, nullptr, nullptr, nullptr, nullptr, &target, &origin, nullptr, nullptr, nullptr, 0xCCCC));
    EXPECT_FALSE(EngBitBlt(&to, &from, nullptr, nullptr, nullptr, nullptr, &origin, nullptr, nullptr, nullptr, 0xCCCC));
    EXPECT_FALSE(EngBitBlt(&to, &from, nullptr, nullptr, nullptr, &target, nullptr, nullptr, nullptr, nullptr, 0xCCCC));
    EXPECT_FALSE(EngBitBlt(&to, nullptr, nullptr, nullptr, nullptr, &target, nullptr, nullptr, nullptr, nullptr, 0xF0F0));
    EXPECT_FALSE(EngBitBlt(&to, &from, &mask, nullptr, nullptr, &target, &origin, nullptr, &brush, nullptr, 0xAACC));
    EXPECT_FALSE(EngBitBlt(&to, &from, &from, nullptr, nullptr, &target, &origin, &origin, &brush, nullptr, 0xAACC));
    EXPECT_TRUE(EngBitBlt(&to, nullptr, nullptr, nullptr, nullptr, &target, nullptr, nullptr, nullptr, nullptr, 0xFFFF));
    EXPECT_EQ(pixelAt(to, 3, 3), 0xFFU);
    EXPECT_EQ(pixelAt(to, 4, 3), 0U);
}

TEST_F(BitBlt, everyTernaryCode_agreesWithItsTruthTable) {
    Random random(21);
    for (const ULONG format : {BMF_1BPP, BMF_4BPP, BMF_8BPP, BMF_24BPP}) {
        const int bits = bitsPerPixel(format);
        for (unsigned rop = 0; rop < 256; ++rop) {
            EngineSurface& to = makeBitmap(43, 9, format, rop % 2 == 0 ? BMF_TOPDOWN : 0);
            EngineSurface& from = makeBitmap(50, 12, format, rop % 3 == 0 ? BMF_TOPDOWN : 0);
            fillRandomly(to, random);
            fillRandomly(from, random);
            EngineBrush brush = randomBrush(random, 5, 3, bits);
            RECTL target{random.below(20), random.below(4), 0, 0};
            target.right = target.left + 1 + random.below(43 - target.left);
            target.bottom = target.top + 1 + random.below(9 - target.top);
            POINTL source{random.below(8), random.below(4)};
            POINTL origin{random.below(9) - 4, random.below(9) - 4};
            const std::vector<ULONG> before = pixelsOf(to);
            ASSERT_TRUE(EngBitBlt(&to, &from, nullptr, nullptr, nullptr, &target, &source, nullptr, &brush, &origin, rop | rop << 8));
            // Codes that need no source do not end where the source ends.
            const bool needsSource = ((rop >> 2) & 0x33U) != (rop & 0x33U);
            int wrong = 0;
            for (LONG y = 0; y < 9; ++y) {
                for (LONG x = 0; x < 43; ++x) {
                    ULONG expected = before[static_cast<std::size_t>(y * 43 + x)];
                    const LONG sx = source.x + x - target.left;
                    const LONG sy = source.y + y - target.top;
                    const bool inside = x >= target.left && x < target.right && y >= target.top && y < target.bottom;
                    const bool hasSource = sx < 50 && sy < 12;
                    if (inside && (hasSource || !needsSource)) {
                        const LONG px = ((x - origin.x) % 5 + 5) % 5;
                        const LONG py = ((y - origin.y) % 3 + 3) % 3;
                        const ULONG s = needsSource ? pixelAt(from, sx, sy) : 0;
                        expected = ropByTruthTable(rop, brush.pattern[static_cast<std::size_t>(py * 5 + px)], s, expected, bits);
                    }
                    if (pixelAt(to, x, y) != expected) ++wrong;
                }
            }
            ASSERT_EQ(wrong, 0) << "code " << std::hex << rop << " format " << format;
            EngDeleteSurface(to.hsurf);
            EngDeleteSurface(from.hsurf);
        }
    }
}

TEST_F(BitBlt, mask_choosesBetweenTheTwoCodes) {
    Random random(4);
    for (const ULONG format : {BMF_1BPP, BMF_4BPP, BMF_8BPP, BMF_24BPP}) {
        for (int round = 0; round < 30; ++round) {
            const unsigned fore = random.next() & 0xFF;
            const unsigned back = (fore + 1 + random.next() % 254) & 0xFF;
            EngineSurface& to = makeBitmap(37, 5, format);
            EngineSurface& from = makeBitmap(37, 5, format);
            EngineSurface& mask = makeBitmap(45, 8, BMF_1BPP, 0);
            fillRandomly(to, random);
            fillRandomly(from, random);
            fillRandomly(mask, random);
            EngineBrush brush = randomBrush(random, 3, 2, bitsPerPixel(format));
            RECTL target{1, 1, 36, 4};
            POINTL source{1, 1};
            POINTL maskOrigin{random.below(8), random.below(4)};
            POINTL origin{0, 0};
            const std::vector<ULONG> before = pixelsOf(to);
            ASSERT_TRUE(EngBitBlt(&to, &from, &mask, nullptr, nullptr, &target, &source, &maskOrigin, &brush, &origin, fore | back << 8));
            for (LONG y = 1; y < 4; ++y) {
                for (LONG x = 1; x < 36; ++x) {
                    const bool set = pixelAt(mask, maskOrigin.x + x - 1, maskOrigin.y + y - 1) == 1;
                    const ULONG expected =
                        ropByTruthTable(set ? fore : back, brush.pattern[static_cast<std::size_t>(y % 2 * 3 + x % 3)], pixelAt(from, x, y),
                                        before[static_cast<std::size_t>(y * 37 + x)], bitsPerPixel(format));
                    ASSERT_EQ(pixelAt(to, x, y), expected) << "format " << format << " at " << x << ',' << y;
                }
            }
        }
    }
}

TEST_F(BitBlt, copiesOfAllPhases_moveSingleBits) {
    Random random(6);
    EngineSurface& from = makeBitmap(80, 1, BMF_1BPP);
    fillRandomly(from, random);
    for (LONG sourceX = 0; sourceX < 17; ++sourceX) {
        for (LONG targetX = 0; targetX < 17; ++targetX) {
            EngineSurface& to = makeBitmap(80, 1, BMF_1BPP);
            RECTL target{targetX, 0, targetX + 41, 1};
            POINTL source{sourceX, 0};
            ASSERT_TRUE(EngCopyBits(&to, &from, nullptr, nullptr, &target, &source));
            for (LONG x = 0; x < 80; ++x) {
                const bool inside = x >= targetX && x < targetX + 41;
                ASSERT_EQ(pixelAt(to, x, 0), inside ? pixelAt(from, x - targetX + sourceX, 0) : 0)
                    << sourceX << " to " << targetX << " at " << x;
            }
            EngDeleteSurface(to.hsurf);
        }
    }
}

TEST_F(BitBlt, targetAndSourceOutside_areCut) {
    EngineSurface& to = makeBitmap(6, 3, BMF_8BPP);
    EngineSurface& from = makeBitmap(4, 2, BMF_8BPP);
    draw(from, {"1234", "5678"});
    RECTL target{-1, -1, 100, 100};
    POINTL source{0, 0};
    ASSERT_TRUE(EngCopyBits(&to, &from, nullptr, nullptr, &target, &source));
    EXPECT_EQ(picture(to), "678...\n......\n......\n");
    RECTL extreme{INT32_MIN, 0, INT32_MAX, 3};
    POINTL far{INT32_MIN, INT32_MAX};
    EXPECT_TRUE(EngCopyBits(&to, &from, nullptr, nullptr, &extreme, &far));
    RECTL empty{3, 1, 3, 2};
    EXPECT_TRUE(EngCopyBits(&to, &from, nullptr, nullptr, &empty, &source));
    EXPECT_EQ(picture(to), "678...\n......\n......\n");
}

TEST_F(BitBlt, clipOfSeveralRectangles_limitsTheCopy) {
    EngineSurface& to = makeBitmap(8, 4, BMF_4BPP);
    EngineSurface& from = makeBitmap(8, 4, BMF_4BPP);
    draw(from, {"12345678", "12345678", "12345678", "12345678"});
    const RECTL parts[] = {{1, 0, 3, 3}, {5, 1, 6, 4}};
    EngineClip clip = makeClip(Region(parts), {0, 0, 8, 4}, {0, 0, 8, 4});
    RECTL target{0, 0, 8, 4};
    POINTL source{0, 0};
    ASSERT_TRUE(EngCopyBits(&to, &from, &clip, nullptr, &target, &source));
    EXPECT_EQ(picture(to), ".23.....\n.23..6..\n.23..6..\n.....6..\n");
}

TEST_F(BitBlt, surfaceOntoItself_readsBeforeItWrites) {
    Random random(9);
    for (const ULONG format : {BMF_1BPP, BMF_8BPP, BMF_24BPP}) {
        for (int round = 0; round < 40; ++round) {
            EngineSurface& surface = makeBitmap(30, 20, format);
            fillRandomly(surface, random);
            const std::vector<ULONG> before = pixelsOf(surface);
            const POINTL from{random.below(10), random.below(8)};
            const POINTL to{random.below(10), random.below(8)};
            RECTL target{to.x, to.y, to.x + 18, to.y + 11};
            POINTL source = from;
            const RECTL parts[] = {{0, 0, 14, 9}, {12, 5, 30, 20}};
            EngineClip clip = makeClip(Region(parts), {0, 0, 30, 20}, {0, 0, 30, 20});
            const bool clipped = round % 2 == 0;
            ASSERT_TRUE(EngCopyBits(&surface, &surface, clipped ? &clip : nullptr, nullptr, &target, &source));
            for (LONG y = 0; y < 20; ++y) {
                for (LONG x = 0; x < 30; ++x) {
                    bool inside = x >= target.left && x < target.right && y >= target.top && y < target.bottom;
                    if (clipped) inside = inside && clip.region.contains(x, y);
                    const LONG sx = inside ? x - to.x + from.x : x;
                    const LONG sy = inside ? y - to.y + from.y : y;
                    ASSERT_EQ(pixelAt(surface, x, y), before[static_cast<std::size_t>(sy * 30 + sx)])
                        << "format " << format << " round " << round;
                }
            }
            EngDeleteSurface(surface.hsurf);
        }
    }
}
