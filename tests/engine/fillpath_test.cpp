// Filling paths: the pixel rule, fill modes, mixes, clips and surfaces of every form.
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class FillPath : public EngineTest {};

BOOL fill(EngineSurface& surface, const Path& path, ULONG value = 1, FLONG mode = FP_WINDINGMODE, CLIPOBJ* clip = nullptr,
          MIX mix = 0x0D0D) {
    EnginePath object = makePath(path);
    EngineBrush brush = solidBrush(value);
    POINTL origin{0, 0};
    return EngFillPath(&surface, &object, clip, &brush, &origin, mix, mode);
}

// Whether a pixel's centre is inside, by the rule of edges: an edge counts where it crosses the centre's row from its upper end
// (inclusive) to its lower (exclusive), and lies to the left of the centre or on it.
int windingAt(const Path& path, LONG px, LONG py) {
    const std::int64_t x = static_cast<std::int64_t>(px) * 16;
    const std::int64_t y = static_cast<std::int64_t>(py) * 16;
    int winding = 0;
    for (const Subpath& figure : path.subpaths()) {
        for (std::size_t i = 0; i < figure.points.size(); ++i) {
            POINTFIX a = figure.points[i];
            POINTFIX b = figure.points[(i + 1) % figure.points.size()];
            int direction = 1;
            if (a.y > b.y) {
                std::swap(a, b);
                direction = -1;
            }
            if (!(a.y <= y && y < b.y)) continue;
            const std::int64_t cross =
                (static_cast<std::int64_t>(b.x) - a.x) * (y - a.y) - (x - a.x) * (static_cast<std::int64_t>(b.y) - a.y);
            if (cross <= 0) winding += direction;  // edge at or to the left of the centre
        }
    }
    return winding;
}

}  // namespace

TEST_F(FillPath, invalidArguments_areRefused) {
    EngineSurface& surface = makeBitmap(8, 8, BMF_8BPP);
    EnginePath path = makePath(polygon({at(0, 0), at(4, 0), at(4, 4)}));
    EngineBrush brush = solidBrush(1);
    EXPECT_FALSE(EngFillPath(nullptr, &path, nullptr, &brush, nullptr, 0x0D0D, FP_WINDINGMODE));
    EXPECT_FALSE(EngFillPath(&surface, nullptr, nullptr, &brush, nullptr, 0x0D0D, FP_WINDINGMODE));
    EXPECT_FALSE(EngFillPath(&surface, &path, nullptr, nullptr, nullptr, 0x0D0D, FP_WINDINGMODE));
    EXPECT_FALSE(EngFillPath(&surface, &path, nullptr, &brush, nullptr, 0x0D0D, 0));
    EXPECT_EQ(picture(surface), std::string("........\n........\n........\n........\n........\n........\n........\n........\n"));
    EXPECT_TRUE(EngFillPath(&surface, &path, nullptr, nullptr, nullptr, 6, FP_WINDINGMODE));
    EXPECT_EQ(pixelAt(surface, 3, 1), 0xFFU);
}

TEST_F(FillPath, rectangle_hasLeftAndTopEdgesOnly) {
    EngineSurface& surface = makeBitmap(6, 5, BMF_8BPP);
    ASSERT_TRUE(fill(surface, polygon({at(1, 1), at(4, 1), at(4, 3), at(1, 3)})));
    EXPECT_EQ(picture(surface), "......\n.111..\n.111..\n......\n......\n");
}

TEST_F(FillPath, triangleWithEdgesThroughCentres_hasLeftAndTopEdgesOnly) {
    EngineSurface& surface = makeBitmap(6, 6, BMF_8BPP);
    ASSERT_TRUE(fill(surface, polygon({at(0, 0), at(5, 5), at(0, 5)})));
    EXPECT_EQ(picture(surface), "......\n1.....\n11....\n111...\n1111..\n......\n");
    EngineSurface& other = makeBitmap(6, 6, BMF_8BPP);
    ASSERT_TRUE(fill(other, polygon({at(5, 0), at(5, 5), at(0, 5)})));
    EXPECT_EQ(picture(other), "......\n....1.\n...11.\n..111.\n.1111.\n......\n");
}

TEST_F(FillPath, randomPolygons_coverExactlyTheCentresInside) {
    Random random(5);
    for (int round = 0; round < 60; ++round) {
        Path path;
        for (int figure = 0; figure < 2; ++figure) {
            const int points = 3 + random.below(5);
            for (int i = 0; i < points; ++i) {
                // Half of the points lie on pixel centres, where the rule for edges matters.
                const FIX x = random.below(2) == 0 ? random.below(40) * 16 - 64 : random.below(640) - 64;
                const FIX y = random.below(2) == 0 ? random.below(40) * 16 - 64 : random.below(640) - 64;
                if (i == 0) {
                    path.moveTo({x, y});
                } else {
                    path.lineTo({x, y});
                }
            }
            path.close();
        }
        for (const FLONG mode : {FP_ALTERNATEMODE, FP_WINDINGMODE}) {
            EngineSurface& surface = makeBitmap(33, 31, BMF_8BPP);
            ASSERT_TRUE(fill(surface, path, 1, mode));
            int wrong = 0;
            for (LONG y = 0; y < 31; ++y) {
                for (LONG x = 0; x < 33; ++x) {
                    const int winding = windingAt(path, x, y);
                    const bool inside = mode == FP_ALTERNATEMODE ? (winding & 1) != 0 : winding != 0;
                    if (inside != (pixelAt(surface, x, y) == 1)) ++wrong;
                }
            }
            EXPECT_EQ(wrong, 0) << "round " << round << " mode " << mode << "\n" << picture(surface);
            EngDeleteSurface(surface.hsurf);
        }
    }
}

TEST_F(FillPath, everyFormAndRowOrder_getsTheSamePixels) {
    const Path path = polygon({at(3.25, 1.5), at(60.75, 20), at(31, 39.5), at(8, 12.25)});
    EngineSurface& reference = makeBitmap(67, 41, BMF_8BPP);
    ASSERT_TRUE(fill(reference, path));
    for (const ULONG format : {BMF_1BPP, BMF_4BPP, BMF_8BPP, BMF_16BPP, BMF_24BPP, BMF_32BPP}) {
        for (const FLONG flags : {0U, BMF_TOPDOWN}) {
            EngineSurface& surface = makeBitmap(67, 41, format, flags);
            ASSERT_TRUE(fill(surface, path));
            EXPECT_EQ(picture(surface), picture(reference)) << "format " << format << " flags " << flags;
        }
    }
}

TEST_F(FillPath, largePath_coversTheSameCentres) {
    // One long edge whose crossings are carried over many rows.
    EngineSurface& surface = makeBitmap(9000, 1100, BMF_1BPP);
    const Path path = polygon({at(0, 0), at(9000, 1100), at(0, 1100)});
    ASSERT_TRUE(fill(surface, path));
    for (LONG y = 0; y < 1100; ++y) {
        LONG inside = 0;
        for (LONG x = 0; x < 9000; ++x) inside += static_cast<LONG>(pixelAt(surface, x, y));
        LONG expected = 0;
        while (expected < 9000 && windingAt(path, expected, y) != 0) ++expected;
        ASSERT_EQ(inside, expected) << "row " << y;
    }
}

TEST_F(FillPath, mix_combinesBrushAndTarget) {
    // Bits of brush 0b1100 and target 0b1010 show each of the sixteen functions at once.
    const ULONG expected[] = {0x0, 0x1, 0x2, 0x3, 0x4, 0x5, 0x6, 0x7, 0x8, 0x9, 0xA, 0xB, 0xC, 0xD, 0xE, 0xF};
    for (int rop2 = 1; rop2 <= 16; ++rop2) {
        EngineSurface& surface = makeBitmap(2, 1, BMF_4BPP);
        setPixel(surface, 0, 0, 0xA);
        ASSERT_TRUE(fill(surface, polygon({at(0, 0), at(1, 0), at(1, 1), at(0, 1)}), 0xC, FP_WINDINGMODE, nullptr, static_cast<MIX>(rop2)));
        EXPECT_EQ(pixelAt(surface, 0, 0), expected[rop2 - 1]) << "R2 " << rop2;
        EXPECT_EQ(pixelAt(surface, 1, 0), 0U);
    }
}

TEST_F(FillPath, clip_keepsPixelsOutside) {
    const RECTL parts[] = {{1, 0, 3, 2}, {4, 1, 6, 3}};
    EngineSurface& surface = makeBitmap(7, 4, BMF_1BPP);
    EngineClip complex = makeClip(Region(parts), {0, 0, 7, 4}, {0, 0, 7, 4});
    EXPECT_EQ(complex.iDComplexity, DC_COMPLEX);
    ASSERT_TRUE(fill(surface, polygon({at(0, 0), at(7, 0), at(7, 4), at(0, 4)}), 1, FP_WINDINGMODE, &complex));
    EXPECT_EQ(picture(surface), ".11....\n.11.11.\n....11.\n.......\n");

    EngineSurface& second = makeBitmap(7, 4, BMF_1BPP);
    EngineClip single = makeClip(Region(RECTL{2, 1, 4, 9}), {0, 0, 7, 4}, {0, 0, 7, 4});
    EXPECT_EQ(single.iDComplexity, DC_RECT);
    ASSERT_TRUE(fill(second, polygon({at(0, 0), at(7, 0), at(3, 4)}), 1, FP_WINDINGMODE, &single));
    EXPECT_EQ(picture(second), ".......\n..11...\n..11...\n...1...\n");
    EXPECT_EQ(makeClip(Region(RECTL{0, 0, 7, 4}), {0, 0, 7, 4}, {-5, 1, 3, 3}).iDComplexity, DC_TRIVIAL);
}

TEST_F(FillPath, patternBrush_liesOnItsOrigin) {
    EngineBrush brush{};
    brush.solid = false;
    brush.iSolidColor = 0xFFFFFFFF;
    brush.patternWidth = 3;
    brush.patternHeight = 2;
    brush.pattern = {1, 2, 3, 4, 5, 6};
    EnginePath path = makePath(polygon({at(1, 0), at(7, 0), at(7, 3), at(1, 3)}));
    for (const ULONG format : {BMF_4BPP, BMF_8BPP, BMF_24BPP}) {
        EngineSurface& surface = makeBitmap(8, 3, format);
        POINTL origin{2, 1};
        ASSERT_TRUE(EngFillPath(&surface, &path, nullptr, &brush, &origin, 0x0D0D, FP_WINDINGMODE));
        EXPECT_EQ(picture(surface), ".645645.\n.312312.\n.645645.\n") << format;
    }
    // A pattern with holes leaves the target there.
    brush.opaque = {1, 0, 1, 0, 1, 1};
    EngineSurface& surface = makeBitmap(8, 3, BMF_1BPP);
    brush.pattern = {1, 1, 1, 1, 1, 1};
    POINTL origin{0, 0};
    ASSERT_TRUE(EngFillPath(&surface, &path, nullptr, &brush, &origin, 0x0D0D, FP_WINDINGMODE));
    EXPECT_EQ(picture(surface), "..11.11.\n.11.11..\n..11.11.\n");
}
