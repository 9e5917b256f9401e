// Outlines of wide lines: widths, joins, caps, dashes and transforms, seen by the pixels that they cover.
#include <cmath>

#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

constexpr XFORM kIdentity{1, 0, 0, 1, 0, 0};

Path line(POINTFIX from, POINTFIX to) {
    Path path;
    path.moveTo(from);
    path.lineTo(to);
    return path;
}

Pen pen(double width, ULONG cap = ENDCAP_BUTT, ULONG join = JOIN_MITER) {
    Pen result;
    result.geometric = true;
    result.width = width;
    result.endCap = cap;
    result.join = join;
    return result;
}

Region covered(const Path& path, const Pen& with, const XFORM& form = kIdentity) {
    const Path outline = widenPath(path, with, form);
    EXPECT_FALSE(outline.hasBeziers());
    return Region::fromPath(outline, false, {-500, -500, 1000, 1000});
}

LONG area(const Region& region) {
    LONG sum = 0;
    for (const RECTL& r : region.rectangles()) sum += (r.right - r.left) * (r.bottom - r.top);
    return sum;
}

bool isBox(const Region& region, const RECTL& box) {
    const RECTL b = region.bounds();
    return region.rectangles().size() == 1 && b.left == box.left && b.top == box.top && b.right == box.right && b.bottom == box.bottom;
}

// Centres clearly inside the circle are covered, those clearly outside are not; looked at from column `left` on.
void expectDisc(const Region& region, LONG cx, LONG cy, double radius, LONG left) {
    for (LONG y = cy - 20; y <= cy + 20; ++y) {
        for (LONG x = left; x <= cx + 20; ++x) {
            const double distance = std::hypot(x - cx, y - cy);
            if (std::abs(distance - radius) < 0.1) continue;
            EXPECT_EQ(region.contains(x, y), distance < radius) << x << ',' << y;
        }
    }
}

}  // namespace

TEST(WidenPath, withoutPenOrTransform_nothingComes) {
    Pen none = pen(4);
    none.null = true;
    EXPECT_TRUE(widenPath(line(at(0, 0), at(9, 0)), none, kIdentity).empty());
    EXPECT_TRUE(widenPath(line(at(0, 0), at(9, 0)), pen(4), XFORM{0, 0, 0, 0, 0, 0}).empty());
    EXPECT_TRUE(widenPath(line(at(0, 0), at(9, 0)), pen(4), XFORM{1, 2, 2, 4, 0, 0}).empty());
    EXPECT_TRUE(widenPath(line(at(0, 0), at(9, 0)), pen(std::nan("")), kIdentity).empty());
    EXPECT_TRUE(widenPath(Path{}, pen(4), kIdentity).empty());
}

TEST(WidenPath, caps_endAtTheLineOrHalfAWidthBeyond) {
    const Path path = line(at(10, 20), at(30, 20));
    EXPECT_TRUE(isBox(covered(path, pen(6, ENDCAP_BUTT)), {10, 17, 30, 23}));
    EXPECT_TRUE(isBox(covered(path, pen(6, ENDCAP_SQUARE)), {7, 17, 33, 23}));
    const Region round = covered(path, pen(20, ENDCAP_ROUND));
    expectDisc(round, 30, 20, 10, 30);
    EXPECT_TRUE(round.contains(1, 20));
    EXPECT_FALSE(round.contains(1, 12));
}

TEST(WidenPath, joins_fillTheCorner) {
    Path corner = line(at(0, 0), at(40, 0));
    corner.lineTo(at(40, 40));
    const Region miter = covered(corner, pen(10, ENDCAP_BUTT, JOIN_MITER));
    const Region round = covered(corner, pen(10, ENDCAP_BUTT, JOIN_ROUND));
    const Region bevel = covered(corner, pen(10, ENDCAP_BUTT, JOIN_BEVEL));
    EXPECT_TRUE(miter.contains(44, -5));
    EXPECT_FALSE(round.contains(44, -5));
    EXPECT_TRUE(round.contains(42, -3));
    EXPECT_FALSE(bevel.contains(44, -4));
    EXPECT_GT(area(miter), area(round));
    EXPECT_GT(area(round), area(bevel));
}

TEST(WidenPath, miterBeyondItsLimit_becomesABevel) {
    Path sharp = line(at(0, 0), at(100, 0));
    sharp.lineTo(at(0, 10));
    Pen limited = pen(8, ENDCAP_BUTT, JOIN_MITER);
    limited.miterLimit = 100.0F;
    EXPECT_GT(covered(sharp, limited).bounds().right, 150);
    limited.miterLimit = 4.0F;
    const Region beveled = covered(sharp, limited);
    EXPECT_LE(beveled.bounds().right, 105);
    EXPECT_EQ(area(beveled), area(covered(sharp, pen(8, ENDCAP_BUTT, JOIN_BEVEL))));
}

TEST(WidenPath, closedFigures_joinWhereTheyClose) {
    const Path square = polygon({at(10, 10), at(50, 10), at(50, 50), at(10, 50)});
    const Region ring = covered(square, pen(4));
    EXPECT_EQ(area(ring), 44 * 44 - 36 * 36);
    EXPECT_TRUE(ring.contains(8, 8));
    Path open = line(at(10, 10), at(50, 10));
    open.lineTo(at(50, 50));
    open.lineTo(at(10, 50));
    open.lineTo(at(10, 10));
    EXPECT_FALSE(covered(open, pen(4)).contains(8, 8));
}

TEST(WidenPath, dashes_restartAtEachFigure) {
    Pen dashed = pen(2);
    dashed.style = {5, 3};
    Path path = line(at(0, 10), at(20, 10));
    path.append(line(at(3, 20), at(14, 20)));
    const Region region = covered(path, dashed);
    for (LONG x = 0; x < 20; ++x) EXPECT_EQ(region.contains(x, 10), x % 8 < 5) << x;
    for (LONG x = 0; x < 20; ++x) EXPECT_EQ(region.contains(x, 20), x >= 3 && x < 14 && (x - 3) % 8 < 5) << x;
}

TEST(WidenPath, dashesRunAroundClosedFigures) {
    Pen dashed = pen(2);
    dashed.style = {10, 10};
    const Region region = covered(polygon({at(0, 0), at(25, 0), at(25, 25), at(0, 25)}), dashed);
    EXPECT_TRUE(region.contains(5, 0));
    EXPECT_FALSE(region.contains(15, 0));
    EXPECT_TRUE(region.contains(25, 2));    // 27 along
    EXPECT_FALSE(region.contains(25, 10));  // 35 along
    EXPECT_TRUE(region.contains(0, 18));    // 82 along, on the closing line
    EXPECT_FALSE(region.contains(0, 8));    // 92 along
}

TEST(WidenPath, worldUnits_areScaledByTheTransform) {
    // Twice as wide across, and three times down: a level line of width 4 is 12 pixels high.
    const XFORM form{2, 0, 0, 3, 7, 5};
    EXPECT_TRUE(isBox(covered(line(at(10, 30), at(40, 30)), pen(4), form), {10, 24, 40, 36}));
    EXPECT_TRUE(isBox(covered(line(at(30, 10), at(30, 40)), pen(4), form), {26, 10, 34, 40}));
    Pen dashed = pen(4);
    dashed.style = {5, 5};
    const Region dashes = covered(line(at(0, 30), at(60, 30)), dashed, form);
    for (LONG x = 0; x < 60; ++x) EXPECT_EQ(dashes.contains(x, 30), x % 20 < 10) << x;
}

TEST(WidenPath, thinPens_stillDrawAPixel) {
    EXPECT_TRUE(isBox(covered(line(at(0, 10), at(20, 10)), pen(0.0)), {0, 10, 20, 11}));
    EXPECT_TRUE(isBox(covered(line(at(0, 10), at(20, 10)), pen(2), XFORM{0.01F, 0, 0, 0.01F, 0, 0}), {0, 10, 20, 11}));
}

TEST(WidenPath, figuresWithoutLength_showTheirCaps) {
    const Path dot = line(at(20, 20), at(20, 20));
    EXPECT_TRUE(widenPath(dot, pen(10, ENDCAP_BUTT), kIdentity).empty());
    EXPECT_TRUE(isBox(covered(dot, pen(10, ENDCAP_SQUARE)), {15, 15, 25, 25}));
    expectDisc(covered(dot, pen(20, ENDCAP_ROUND)), 20, 20, 10, 0);
}

TEST(WidenPath, curves_areAsWideEverywhere) {
    Path arc;
    const double k = 0.5522847498 * 100;
    arc.moveTo(at(100, 0));
    arc.bezierTo(at(100, k), at(k, 100), at(0, 100));
    const Region band = covered(arc, pen(10));
    for (LONG y = 0; y < 130; ++y) {
        for (LONG x = 0; x < 130; ++x) {
            const double radius = std::hypot(x, y);
            if (x == 0 || y == 0) continue;  // the butt ends
            if (radius > 95.5 && radius < 104.5) {
                EXPECT_TRUE(band.contains(x, y)) << x << ',' << y;
            }
            if (radius < 94.5 || radius > 105.5) {
                EXPECT_FALSE(band.contains(x, y)) << x << ',' << y;
            }
        }
    }
}

// A file of some kilobytes must not ask for gigabytes of corners.
TEST(WidenPath, veryWideRoundPens_takeNoMoreThanSomeMillionCorners) {
    Path zigzag;
    zigzag.moveTo({0, 0});
    for (FIX i = 1; i < 20'000; ++i) zigzag.lineTo({i * 16, i % 2 == 0 ? 0 : 1600});
    const Path outline = widenPath(zigzag, pen(2147483648.0, ENDCAP_ROUND, JOIN_ROUND), kIdentity);
    std::size_t corners = 0;
    for (const Subpath& figure : outline.subpaths()) corners += figure.points.size();
    EXPECT_GT(corners, 20'000U);
    EXPECT_LT(corners, 12'000'000U);
}

TEST(WidenPath, absurdDashes_endInASolidLine) {
    Pen dashed = pen(2);
    dashed.style = {1e-9F, 1e-9F};
    EXPECT_TRUE(isBox(covered(line(at(0, 10), at(400, 10)), dashed), {0, 9, 400, 11}));
    dashed.style = {0, 0};
    EXPECT_TRUE(isBox(covered(line(at(0, 10), at(400, 10)), dashed), {0, 9, 400, 11}));
    dashed.style.assign(64, 1.0F);
    EXPECT_TRUE(isBox(covered(line(at(0, 10), at(400, 10)), dashed), {0, 9, 400, 11}));
}
