// Lines of one pixel: grid crossings, end points, styles, mixes and clips.
#include <cmath>

#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class Stroke : public EngineTest {
  protected:
    static EngineClip wholeClip(const EngineSurface& surface) {
        const RECTL bounds{0, 0, surface.sizlBitmap.cx, surface.sizlBitmap.cy};
        return makeClip(Region(bounds), bounds, bounds);
    }
    static void stroke(EngineSurface& surface, const Path& path, const Pen& pen = {}, int rop2 = 13, ULONG value = 1) {
        strokeCosmetic(surface, path, wholeClip(surface), solidBrush(value), pen, rop2);
    }
    static Path line(POINTFIX from, POINTFIX to) {
        Path path;
        path.moveTo(from);
        path.lineTo(to);
        return path;
    }
};

}  // namespace

TEST_F(Stroke, firstPixelIsLit_lastIsNot) {
    EngineSurface& surface = makeBitmap(7, 3, BMF_8BPP);
    stroke(surface, line(at(1, 1), at(5, 1)));
    EXPECT_EQ(picture(surface), ".......\n.1111..\n.......\n");
    EngineSurface& back = makeBitmap(7, 3, BMF_8BPP);
    stroke(back, line(at(5, 1), at(1, 1)));
    EXPECT_EQ(picture(back), ".......\n..1111.\n.......\n");
    EngineSurface& up = makeBitmap(3, 5, BMF_8BPP);
    stroke(up, line(at(1, 4), at(1, 1)));
    EXPECT_EQ(picture(up), "...\n...\n.1.\n.1.\n.1.\n");
    EngineSurface& nothing = makeBitmap(3, 3, BMF_8BPP);
    stroke(nothing, line(at(1, 1), at(1, 1)));
    EXPECT_EQ(picture(nothing), "...\n...\n...\n");
}

TEST_F(Stroke, slantedLines_takeTheNearestPixelAndTheSmallerOfTwo) {
    EngineSurface& surface = makeBitmap(6, 4, BMF_8BPP);
    stroke(surface, line(at(0, 0), at(6, 3)));
    EXPECT_EQ(picture(surface), "11....\n..11..\n....11\n......\n");
    EngineSurface& steep = makeBitmap(4, 6, BMF_8BPP);
    stroke(steep, line(at(0, 0), at(3, 6)));
    EXPECT_EQ(picture(steep), "1...\n1...\n.1..\n.1..\n..1.\n..1.\n");
    EngineSurface& diagonal = makeBitmap(4, 4, BMF_8BPP);
    stroke(diagonal, line(at(3, 0), at(0, 3)));
    EXPECT_EQ(picture(diagonal), "...1\n..1.\n.1..\n....\n");
}

TEST_F(Stroke, endsBetweenPixels_followTheDiamonds) {
    // Start within the diamond of pixel 2 although to the right of its centre; the end within the diamond of pixel 5.
    EngineSurface& inside = makeBitmap(8, 2, BMF_8BPP);
    stroke(inside, line({2 * 16 + 5, 0}, {5 * 16 + 5, 0}));
    EXPECT_EQ(picture(inside), "..111...\n........\n");
    // Outside: the start has left the diamond of pixel 2, the end has left that of pixel 5.
    EngineSurface& outside = makeBitmap(8, 2, BMF_8BPP);
    stroke(outside, line({2 * 16 + 9, 0}, {5 * 16 + 9, 0}));
    EXPECT_EQ(picture(outside), "...111..\n........\n");
}

TEST_F(Stroke, polylines_lightEveryPixelOnce) {
    EngineSurface& surface = makeBitmap(8, 8, BMF_8BPP);
    // With exclusive-or a pixel that is lit twice would go out.
    stroke(surface, polygon({at(1, 1), at(6, 1), at(6, 6), at(1, 6)}), {}, 7, 1);
    EXPECT_EQ(picture(surface), "........\n.111111.\n.1....1.\n.1....1.\n.1....1.\n.1....1.\n.111111.\n........\n");
}

TEST_F(Stroke, randomLines_stayWithinHalfAPixelAndHaveOnePixelPerStep) {
    Random random(17);
    for (int round = 0; round < 200; ++round) {
        EngineSurface& surface = makeBitmap(64, 64, BMF_1BPP);
        const POINTFIX from{random.below(62 * 16) + 16, random.below(62 * 16) + 16};
        const POINTFIX to{random.below(62 * 16) + 16, random.below(62 * 16) + 16};
        stroke(surface, line(from, to));
        const double dx = (to.x - from.x) / 16.0;
        const double dy = (to.y - from.y) / 16.0;
        const bool alongX = std::abs(dx) >= std::abs(dy);
        int lit = 0;
        std::vector<int> perStep(64, 0);
        for (LONG y = 0; y < 64; ++y) {
            for (LONG x = 0; x < 64; ++x) {
                if (pixelAt(surface, x, y) == 0) continue;
                ++lit;
                ++perStep[static_cast<std::size_t>(alongX ? x : y)];
                const double across =
                    alongX ? from.y / 16.0 + dy * (x - from.x / 16.0) / dx - y : from.x / 16.0 + dx * (y - from.y / 16.0) / dy - x;
                EXPECT_LE(std::abs(across), 0.5 + 0.5 / 16) << "round " << round;
            }
        }
        for (const int count : perStep) EXPECT_LE(count, 1);
        // Diamonds reach half a pixel past the grid lines between the ends, whose number differs from the length by less than one.
        EXPECT_LT(std::abs(lit - std::max(std::abs(dx), std::abs(dy))), 1.5) << "round " << round;
        EngDeleteSurface(surface.hsurf);
    }
}

TEST_F(Stroke, everyFormatAndRowOrder_getsTheSamePixels) {
    Path path = polygon({at(2, 3), at(40, 9), at(61, 30.5), at(7.25, 33)});
    path.moveTo(at(5, 20));
    path.bezierTo(at(20, 0), at(40, 40), at(60, 20));
    EngineSurface& reference = makeBitmap(64, 40, BMF_8BPP);
    stroke(reference, path);
    for (const ULONG format : {BMF_1BPP, BMF_4BPP, BMF_8BPP, BMF_24BPP}) {
        for (const FLONG flags : {0U, BMF_TOPDOWN}) {
            EngineSurface& surface = makeBitmap(64, 40, format, flags);
            stroke(surface, path);
            EXPECT_EQ(picture(surface), picture(reference)) << format;
        }
    }
}

TEST_F(Stroke, clip_changesNoPixelInside) {
    const Path path = polygon({at(-20, 3), at(40, 29), at(90, -10), at(31, 70)});
    for (int kind = 0; kind < 3; ++kind) {
        Pen pen;
        if (kind == 1) pen.style = {5, 3};
        pen.alternate = kind == 2;
        EngineSurface& whole = makeBitmap(64, 40, BMF_8BPP);
        stroke(whole, path, pen);
        const RECTL parts[] = {{5, 4, 30, 22}, {20, 15, 50, 36}};
        EngineClip clip = makeClip(Region(parts), {0, 0, 64, 40}, {0, 0, 64, 40});
        EngineSurface& clipped = makeBitmap(64, 40, BMF_8BPP);
        strokeCosmetic(clipped, path, clip, solidBrush(1), pen, 13);
        for (LONG y = 0; y < 40; ++y) {
            for (LONG x = 0; x < 64; ++x) {
                ASSERT_EQ(pixelAt(clipped, x, y), clip.region.contains(x, y) ? pixelAt(whole, x, y) : 0) << kind << " at " << x << ',' << y;
            }
        }
    }
}

TEST_F(Stroke, styleOfALineThatLeavesTheClip_runsOnOutside) {
    Path path = line(at(0, 1), at(30, 1));
    path.lineTo(at(30, 3));
    path.lineTo(at(0, 3));
    Pen pen;
    pen.style = {5, 2};
    EngineSurface& whole = makeBitmap(40, 5, BMF_8BPP);
    stroke(whole, path, pen);
    EngineSurface& clipped = makeBitmap(40, 5, BMF_8BPP);
    EngineClip clip = makeClip(Region(RECTL{0, 0, 12, 5}), {0, 0, 40, 5}, {0, 0, 40, 5});
    strokeCosmetic(clipped, path, clip, solidBrush(1), pen, 13);
    for (LONG y = 0; y < 5; ++y) {
        for (LONG x = 0; x < 40; ++x) EXPECT_EQ(pixelAt(clipped, x, y), x < 12 ? pixelAt(whole, x, y) : 0) << x << ',' << y;
    }
}

TEST_F(Stroke, styles_takeTurnsAndStartAgainAtEachFigure) {
    Pen dashed;
    dashed.style = {3, 2};
    EngineSurface& surface = makeBitmap(14, 2, BMF_8BPP);
    Path path = line(at(1, 0), at(13, 0));
    path.append(line(at(2, 1), at(9, 1)));
    stroke(surface, path, dashed);
    EXPECT_EQ(picture(surface), ".111..111..11.\n..111..11.....\n");
    // Within a figure the style runs on around its corners.
    EngineSurface& corner = makeBitmap(5, 4, BMF_8BPP);
    Path bent = line(at(0, 0), at(4, 0));
    bent.lineTo(at(4, 4));
    stroke(corner, bent, dashed);
    EXPECT_EQ(picture(corner), "111..\n....1\n....1\n....1\n");
}

TEST_F(Stroke, oddStyles_changeTheirMeaningInTheSecondTurn) {
    Pen pen;
    pen.style = {2, 1, 1};
    EngineSurface& surface = makeBitmap(9, 1, BMF_8BPP);
    stroke(surface, line(at(0, 0), at(9, 0)), pen);
    EXPECT_EQ(picture(surface), "11.1..1.1\n");
}

TEST_F(Stroke, alternatePens_lightEverySecondPixel) {
    Pen pen;
    pen.alternate = true;
    EngineSurface& surface = makeBitmap(8, 1, BMF_8BPP);
    stroke(surface, line(at(0, 0), at(7, 0)), pen);
    EXPECT_EQ(picture(surface), "1.1.1.1.\n");
}

TEST_F(Stroke, styleUnits_comeFromTheDevice) {
    Device device;
    device.xStyleStep = 1;
    device.yStyleStep = 2;
    device.denStyleStep = 3;
    EngineSurface& surface = makeBitmap(9, 9, BMF_8BPP);
    ASSERT_TRUE(EngAssociateSurface(surface.hsurf, registerDevice(device), 0));
    Pen pen;
    pen.style = {1, 1};
    Path path = line(at(0, 0), at(9, 0));
    path.append(line(at(8, 1), at(8, 8)));
    stroke(surface, path, pen);
    EXPECT_EQ(picture(surface), "111...111\n........1\n........1\n.........\n........1\n........1\n.........\n........1\n.........\n");
}

TEST_F(Stroke, nullPen_drawsNothing) {
    Pen pen;
    pen.null = true;
    EngineSurface& surface = makeBitmap(4, 1, BMF_8BPP);
    stroke(surface, line(at(0, 0), at(4, 0)), pen);
    EXPECT_EQ(picture(surface), "....\n");
}

TEST_F(Stroke, farAwayPoints_areHarmless) {
    EngineSurface& surface = makeBitmap(8, 3, BMF_8BPP);
    stroke(surface, line({-0x7FFFFFFF, 16}, {0x7FFFFFFF, 16}));
    EXPECT_EQ(picture(surface), "........\n11111111\n........\n");
}
