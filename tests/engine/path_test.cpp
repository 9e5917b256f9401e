// Building and measuring paths, and their enumeration for drivers.
#include <cmath>

#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

struct Record {
    FLONG flags;
    std::vector<POINTFIX> points;
};

std::vector<Record> enumerate(EnginePath& path) {
    PATHOBJ_vEnumStart(&path);
    std::vector<Record> records;
    BOOL more = TRUE;
    while (more) {
        PATHDATA data{};
        more = PATHOBJ_bEnum(&path, &data);
        if (data.count > 0) records.push_back({data.flags, {data.pptfx, data.pptfx + data.count}});
    }
    return records;
}

Path circle(double cx, double cy, double r) {
    const double k = 0.5522847498 * r;
    Path path;
    path.moveTo(at(cx + r, cy));
    path.bezierTo(at(cx + r, cy - k), at(cx + k, cy - r), at(cx, cy - r));
    path.bezierTo(at(cx - k, cy - r), at(cx - r, cy - k), at(cx - r, cy));
    path.bezierTo(at(cx - r, cy + k), at(cx - k, cy + r), at(cx, cy + r));
    path.bezierTo(at(cx + k, cy + r), at(cx + r, cy + k), at(cx + r, cy));
    path.close();
    return path;
}

}  // namespace

TEST(Path, moveWithoutSegments_makesNoFigure) {
    Path path;
    path.moveTo(at(1, 1));
    path.moveTo(at(2, 2));
    path.close();
    EXPECT_TRUE(path.empty());
    EXPECT_EQ(path.curveCount(), 0U);
    const RECTL box = path.bounds();
    EXPECT_EQ(box.left | box.top | box.right | box.bottom, 0);
}

TEST(Path, lineAfterClose_startsAtTheClosedFiguresFirstPoint) {
    Path path = polygon({at(1, 2), at(5, 2), at(5, 6)});
    path.lineTo(at(9, 9));
    ASSERT_EQ(path.subpaths().size(), 2U);
    EXPECT_TRUE(path.subpaths()[0].closed);
    EXPECT_FALSE(path.subpaths()[1].closed);
    EXPECT_EQ(path.subpaths()[1].points[0].x, 16);
    EXPECT_EQ(path.subpaths()[1].points[0].y, 32);
}

TEST(Path, curveCount_countsTheClosingLineOnlyWhenItHasALength) {
    EXPECT_EQ(polygon({at(0, 0), at(4, 0), at(4, 4)}).curveCount(), 3U);
    EXPECT_EQ(polygon({at(0, 0), at(4, 0), at(4, 4), at(0, 0)}).curveCount(), 3U);
    EXPECT_EQ(circle(5, 5, 3).curveCount(), 4U);
}

TEST(Path, bounds_holdAllPointsAndOneSixteenthMore) {
    const RECTL box = polygon({at(-1, 2), at(4.5, 0), at(3, 7)}).bounds();
    EXPECT_EQ(box.left, -16);
    EXPECT_EQ(box.top, 0);
    EXPECT_EQ(box.right, 72 + 1);
    EXPECT_EQ(box.bottom, 112 + 1);
}

TEST(Path, translate_stopsAtTheEndsOfTheRange) {
    Path path = polygon({{0, 0}, {0x7FFFFFF0, 16}, {-0x7FFFFFF0, 32}});
    path.translate(0x100, -0x100);
    EXPECT_EQ(path.subpaths()[0].points[1].x, 0x7FFFFFFF);
    EXPECT_EQ(path.subpaths()[0].points[2].x, -0x7FFFFFF0 + 0x100);
    EXPECT_EQ(path.subpaths()[0].points[0].y, -0x100);
}

TEST(Path, ellipseMark_lastsUntilTheNextSegment) {
    Path path = circle(5, 5, 3);
    path.markEllipse();
    EXPECT_TRUE(path.isEllipse());
    Path other;
    other.append(path);
    EXPECT_TRUE(other.isEllipse());
    other.append(path);
    EXPECT_FALSE(other.isEllipse());
    path.lineTo(at(9, 9));
    EXPECT_FALSE(path.isEllipse());
}

TEST(Path, flattened_staysWithinTheToleranceAndEndsOnTheCurve) {
    const double radius = 500.0;
    const Path flat = circle(600, 600, radius).flattened({.tolerance = 4});
    EXPECT_FALSE(flat.hasBeziers());
    ASSERT_EQ(flat.subpaths().size(), 1U);
    const std::vector<POINTFIX>& points = flat.subpaths()[0].points;
    EXPECT_TRUE(flat.subpaths()[0].closed);
    EXPECT_EQ(points.back().x, (600 + 500) * 16);
    EXPECT_EQ(points.back().y, 600 * 16);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double mx = (points[i - 1].x + points[i].x) / 32.0 - 600.0;
        const double my = (points[i - 1].y + points[i].y) / 32.0 - 600.0;
        // Middle of a chord: a quarter pixel of flattening, the Bezier's own deviation from a circle, rounding.
        EXPECT_NEAR(std::hypot(mx, my), radius, 0.25 + radius * 0.0003 + 0.07) << "chord " << i;
    }
    EXPECT_GT(circle(600, 600, radius).flattened({.tolerance = 1}).curveCount(), flat.curveCount());
}

TEST(PathRecords, emptyPath_endsAtOnceWithoutPoints) {
    EnginePath path = makePath(Path{});
    PATHOBJ_vEnumStart(&path);
    PATHDATA data{0x55, 0x55, nullptr};
    EXPECT_FALSE(PATHOBJ_bEnum(&path, &data));
    EXPECT_EQ(data.count, 0U);
    EXPECT_EQ(path.fl, 0U);
}

TEST(PathRecords, beforeStart_nothingIsEnumerated) {
    EnginePath path = makePath(polygon({at(0, 0), at(1, 0), at(1, 1)}));
    PATHDATA data{};
    EXPECT_FALSE(PATHOBJ_bEnum(&path, &data));
    EXPECT_EQ(data.count, 0U);
}

TEST(PathRecords, closedPolygon_isOneRecord) {
    EnginePath path = makePath(polygon({at(0, 0), at(4, 0), at(4, 4)}));
    const std::vector<Record> records = enumerate(path);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].flags, PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE);
    EXPECT_EQ(records[0].points.size(), 3U);
    EXPECT_EQ(path.cCurves, 3U);
}

TEST(PathRecords, changeOfSegmentKind_startsARecordWithoutRepeatingThePoint) {
    Path mixed;
    mixed.moveTo(at(0, 0));
    mixed.lineTo(at(10, 0));
    mixed.bezierTo(at(12, 0), at(14, 2), at(14, 4));
    mixed.bezierTo(at(14, 6), at(12, 8), at(10, 8));
    mixed.lineTo(at(0, 8));
    EnginePath path = makePath(mixed);
    EXPECT_EQ(path.fl, PO_BEZIERS);
    const std::vector<Record> records = enumerate(path);
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].flags, PD_BEGINSUBPATH);
    EXPECT_EQ(records[0].points.size(), 2U);
    EXPECT_EQ(records[1].flags, PD_BEZIERS);
    ASSERT_EQ(records[1].points.size(), 6U);
    EXPECT_EQ(records[1].points[0].x, 12 * 16);
    EXPECT_EQ(records[2].flags, PD_ENDSUBPATH);
    EXPECT_EQ(records[2].points.size(), 1U);
}

TEST(PathRecords, lastRecord_comesWithFalseAndCountsAndEnumerationRestarts) {
    Path two = polygon({at(0, 0), at(4, 0), at(4, 4)});
    two.moveTo(at(10, 10));
    two.lineTo(at(20, 20));
    EnginePath path = makePath(two);
    for (int round = 0; round < 2; ++round) {
        PATHOBJ_vEnumStart(&path);
        PATHDATA data{};
        EXPECT_TRUE(PATHOBJ_bEnum(&path, &data));
        EXPECT_EQ(data.flags, PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE);
        EXPECT_FALSE(PATHOBJ_bEnum(&path, &data));
        EXPECT_EQ(data.flags, PD_BEGINSUBPATH | PD_ENDSUBPATH);
        ASSERT_EQ(data.count, 2U);
        EXPECT_EQ(data.pptfx[1].x, 320);
    }
}

TEST(PathRecords, ellipse_carriesItsOwnFlagInPlaceOfTheCurvesFlag) {
    Path ellipse = circle(5, 5, 3);
    ellipse.markEllipse();
    EnginePath path = makePath(ellipse);
    EXPECT_EQ(path.fl, PO_ELLIPSE);
    const std::vector<Record> records = enumerate(path);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].flags, PD_BEGINSUBPATH | PD_BEZIERS | PD_ENDSUBPATH | PD_CLOSEFIGURE);
    EXPECT_EQ(records[0].points.size(), 13U);
}
