// Lines, polygons, curves, shapes and path brackets: what reaches the canvas, as paths in pixels.
#include <gtest/gtest.h>

#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

namespace emr = engine::emr;
using Kind = CanvasCall::Kind;

constexpr std::int32_t kNullBrush = static_cast<std::int32_t>(0x80000005);
constexpr std::int32_t kNullPen = static_cast<std::int32_t>(0x80000008);

Bytes bounds() { return Bytes().zeros(16); }
Bytes figure32(std::initializer_list<std::int32_t> coordinates) {
    return bounds().u32(static_cast<std::uint32_t>(coordinates.size() / 2)).all32(coordinates);
}
Bytes figure16(std::initializer_list<int> coordinates) {
    return bounds().u32(static_cast<std::uint32_t>(coordinates.size() / 2)).all16(coordinates);
}

struct LineCase {
    const char* name;
    ULONG type;
    Bytes body;
    const char* path;
    Kind kind;
};

TEST(MetafileLines, eachRecord_drawsItsFigure) {
    const LineCase cases[] = {
        {"LineTo", emr::kLINETO, Bytes().all32({30, 40}), "M 5,6 L 30,40", Kind::Stroke},
        {"Polyline", emr::kPOLYLINE, figure32({1, 2, 3, 4, 5, -6}), "M 1,2 L 3,4 5,-6", Kind::Stroke},
        {"Polyline16", emr::kPOLYLINE16, figure16({1, 2, 3, 4, 5, -6}), "M 1,2 L 3,4 5,-6", Kind::Stroke},
        {"Polygon", emr::kPOLYGON, figure32({1, 2, 3, 4, 5, 6}), "M 1,2 L 3,4 5,6 Z", Kind::StrokeAndFill},
        {"Polygon16", emr::kPOLYGON16, figure16({1, 2, 3, 4, 5, 6}), "M 1,2 L 3,4 5,6 Z", Kind::StrokeAndFill},
        {"PolyBezier", emr::kPOLYBEZIER, figure32({0, 0, 1, 2, 3, 4, 5, 6}), "M 0,0 C 1,2 3,4 5,6", Kind::Stroke},
        {"PolyBezier16", emr::kPOLYBEZIER16, figure16({0, 0, 1, 2, 3, 4, 5, 6}), "M 0,0 C 1,2 3,4 5,6", Kind::Stroke},
        {"PolylineTo", emr::kPOLYLINETO, figure32({1, 2, 3, 4}), "M 5,6 L 1,2 3,4", Kind::Stroke},
        {"PolylineTo16", emr::kPOLYLINETO16, figure16({1, 2, 3, 4}), "M 5,6 L 1,2 3,4", Kind::Stroke},
        {"PolyBezierTo", emr::kPOLYBEZIERTO, figure32({1, 2, 3, 4, 7, 8}), "M 5,6 C 1,2 3,4 7,8", Kind::Stroke},
        {"PolyBezierTo16", emr::kPOLYBEZIERTO16, figure16({1, 2, 3, 4, 7, 8}), "M 5,6 C 1,2 3,4 7,8", Kind::Stroke},
        {"PolyPolyline", emr::kPOLYPOLYLINE, bounds().all32({2, 4, 2, 2}).all32({1, 1, 2, 2, 3, 3, 4, 4}), "M 1,1 L 2,2  M 3,3 L 4,4",
         Kind::Stroke},
        {"PolyPolyline16", emr::kPOLYPOLYLINE16, bounds().all32({2, 4, 2, 2}).all16({1, 1, 2, 2, 3, 3, 4, 4}), "M 1,1 L 2,2  M 3,3 L 4,4",
         Kind::Stroke},
        {"PolyPolygon", emr::kPOLYPOLYGON, bounds().all32({2, 5, 3, 2}).all32({1, 1, 2, 2, 3, 0, 4, 4, 5, 5}),
         "M 1,1 L 2,2 3,0 Z  M 4,4 L 5,5 Z", Kind::StrokeAndFill},
        {"PolyPolygon16", emr::kPOLYPOLYGON16, bounds().all32({2, 5, 3, 2}).all16({1, 1, 2, 2, 3, 0, 4, 4, 5, 5}),
         "M 1,1 L 2,2 3,0 Z  M 4,4 L 5,5 Z", Kind::StrokeAndFill},
        {"PolyDraw", emr::kPOLYDRAW, figure32({1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 0}).append(Bytes().u8(6).u8(2).u8(4).u8(4).u8(5).u8(2)),
         "M 1,1 L 2,2 C 3,3 4,4 5,5 Z  M 1,1 L 6,0", Kind::Stroke},
        {"PolyDraw16", emr::kPOLYDRAW16, figure16({2, 2, 1, 1, 3, 3}).append(Bytes().u8(2).u8(6).u8(2)), "M 5,6 L 2,2  M 1,1 L 3,3",
         Kind::Stroke},
        {"Rectangle", emr::kRECTANGLE, Bytes().all32({10, 20, 30, 40}), "M 30,20 L 10,20 10,40 30,40 Z", Kind::StrokeAndFill},
        {"Rectangle, corners swapped", emr::kRECTANGLE, Bytes().all32({30, 40, 10, 20}), "M 30,20 L 10,20 10,40 30,40 Z",
         Kind::StrokeAndFill},
        {"Round rectangle without rounding", emr::kROUNDRECT, Bytes().all32({10, 20, 30, 40, 0, 8}), "M 30,20 L 10,20 10,40 30,40 Z",
         Kind::StrokeAndFill},
        {"Round rectangle", emr::kROUNDRECT, Bytes().all32({0, 0, 100, 60, 40, 20}),
         "M 100,10 C 100,4.5 91.0625,0 80,0 L 20,0 C 8.9375,0 0,4.5 0,10 L 0,50 C 0,55.5 8.9375,60 20,60 L 80,60"
         " C 91.0625,60 100,55.5 100,50 Z",
         Kind::StrokeAndFill},
        {"Ellipse", emr::kELLIPSE, Bytes().all32({0, 0, 200, 100}),
         "M 200,50 C 200,22.375 155.25,0 100,0 44.75,0 0,22.375 0,50 0,77.625 44.75,100 100,100 155.25,100 200,77.625 200,50 Z",
         Kind::StrokeAndFill},
        // A quarter, counterclockwise from the right to the top; rays need not end on the curve.
        {"Arc", emr::kARC, Bytes().all32({0, 0, 200, 100, 500, 50, 100, 1}), "M 200,50 C 200,22.375 155.25,0 100,0", Kind::Stroke},
        {"Chord", emr::kCHORD, Bytes().all32({0, 0, 200, 100, 500, 50, 100, 1}), "M 200,50 C 200,22.375 155.25,0 100,0 Z",
         Kind::StrokeAndFill},
        {"Pie", emr::kPIE, Bytes().all32({0, 0, 200, 100, 500, 50, 100, 1}), "M 100,50 L 200,50 C 200,22.375 155.25,0 100,0 Z",
         Kind::StrokeAndFill},
        {"ArcTo", emr::kARCTO, Bytes().all32({0, 0, 200, 100, 500, 50, 100, 1}), "M 5,6 L 200,50 C 200,22.375 155.25,0 100,0",
         Kind::Stroke},
        {"Arc of equal rays is the whole ellipse", emr::kARC, Bytes().all32({0, 0, 200, 100, 500, 50, 500, 50}),
         "M 200,50 C 200,22.375 155.25,0 100,0 44.75,0 0,22.375 0,50 0,77.625 44.75,100 100,100 155.25,100 200,77.625 200,50",
         Kind::Stroke},
        {"AngleArc", emr::kANGLEARC, Bytes().all32({100, 100, 50}).floats({0, 90}), "M 5,6 L 150,100 C 150,72.375 127.625,50 100,50",
         Kind::Stroke},
        {"AngleArc, clockwise", emr::kANGLEARC, Bytes().all32({100, 100, 50}).floats({0, -90}),
         "M 5,6 L 150,100 C 150,127.625 127.625,150 100,150", Kind::Stroke},
    };
    for (const LineCase& c : cases) {
        MetafileBuilder builder;
        const auto played = playCleanly(builder.add(emr::kMOVETOEX, {5, 6}).add(c.type, c.body));
        ASSERT_EQ(played.calls.size(), 1U) << c.name;
        EXPECT_EQ(describe(played.calls[0].path), c.path) << c.name;
        EXPECT_EQ(played.calls[0].kind, c.kind) << c.name;
        EXPECT_EQ(played.calls[0].clip, "all");
    }
}

TEST(MetafileLines, clockwiseDirection_turnsShapesRound) {
    MetafileBuilder builder;
    builder.add(emr::kSETARCDIRECTION, {2}).add(emr::kRECTANGLE, {10, 20, 30, 40});
    builder.add(emr::kARC, {0, 0, 200, 100, 500, 50, 100, 999});
    EXPECT_EQ(playCleanly(builder).paths(), "M 30,20 L 30,40 10,40 10,20 Z\nM 200,50 C 200,77.625 155.25,100 100,100");
}

struct DamagedCase {
    const char* reason;
    ULONG type;
    Bytes body;
};

TEST(MetafileLines, countsThatLie_areDamageAndDrawNothing) {
    const DamagedCase cases[] = {
        {"3 points from byte 28 do not fit into a record of 44 bytes", emr::kPOLYLINE, bounds().u32(3).all32({1, 2, 3, 4})},
        {"3 points from byte 28 do not fit into a record of 36 bytes", emr::kPOLYLINE16, bounds().u32(3).all16({1, 2, 3, 4})},
        {"4294967295 points from byte 28 do not fit", emr::kPOLYGON, bounds().u32(0xFFFFFFFF).all32({1, 2})},
        {"4294967295 figures from byte 32 do not fit", emr::kPOLYPOLYGON, bounds().all32({-1, 2, 2}).all32({1, 1, 2, 2})},
        {"4294967295 points from byte 36 do not fit", emr::kPOLYPOLYLINE, bounds().all32({1, -1, 2}).all32({1, 1, 2, 2})},
        {"figure 2 has more points than are left", emr::kPOLYPOLYLINE16, bounds().all32({2, 4, 3, 3}).all16({1, 1, 2, 2, 3, 3, 4, 4})},
        {"figure 1 has more points than are left", emr::kPOLYPOLYGON16, bounds().all32({1, 2, -1}).all16({1, 1, 2, 2})},
        {"2 points are no whole number of curves", emr::kPOLYBEZIERTO16, figure16({1, 2, 3, 4})},
        {"4 points are no whole number of curves", emr::kPOLYBEZIER16, figure16({1, 2, 3, 4, 5, 6, 7, 8, 9, 10})},
        {"the curve at point 2 lacks points", emr::kPOLYDRAW, figure32({1, 1, 2, 2, 3, 3}).append(Bytes().u8(6).u8(4).u8(4))},
        {"point 1 has no known kind", emr::kPOLYDRAW, figure32({1, 1}).append(Bytes().u8(0))},
        {"5 bytes from byte 48 do not fit", emr::kPOLYDRAW16, figure16({1, 1, 2, 2, 3, 3, 4, 4, 5, 5}).append(Bytes().u8(2))},
        {"is not finite", emr::kANGLEARC, Bytes().all32({1, 1, 5}).u32(0x7F800000).f32(1)},
    };
    for (const DamagedCase& c : cases) {
        MetafileBuilder builder;
        const auto played = play(builder.add(c.type, c.body));
        EXPECT_TRUE(played.calls.empty()) << c.reason;
        EXPECT_NE(played.reason().find(c.reason), std::string::npos) << played.reason();
    }
}

TEST(MetafileLines, noPoints_drawNothingAndAreNoDamage) {
    MetafileBuilder builder;
    builder.add(emr::kMOVETOEX, {5, 6});
    for (const ULONG type : {emr::kPOLYLINE, emr::kPOLYGON, emr::kPOLYBEZIER, emr::kPOLYLINETO16, emr::kPOLYBEZIERTO16, emr::kPOLYDRAW}) {
        builder.add(type, bounds().u32(0));
    }
    builder.add(emr::kPOLYPOLYGON16, bounds().all32({0, 0}))
        .add(emr::kPOLYBEZIER16, figure16({1, 1}))
        .add(emr::kPOLYLINE16, figure16({1, 1}));
    EXPECT_EQ(playCleanly(builder.add(emr::kLINETO, {7, 8})).paths(), "M 5,6 L 7,8");
}

TEST(MetafileLines, damagedRecord_isRememberedAndPlayingGoesOn) {
    MetafileBuilder builder;
    builder.add(emr::kPOLYLINE, bounds().u32(7)).add(emr::kPOLYLINE, bounds().u32(9)).add(emr::kLINETO, {3, 4});
    const auto played = play(builder);
    EXPECT_EQ(played.paths(), "M 0,0 L 3,4");
    ASSERT_TRUE(played.damage);
    EXPECT_EQ(played.damage->position, 88U);
    EXPECT_EQ(played.damage->reason, "record 2 (EMR_POLYLINE) at byte 88: 7 points from byte 28 do not fit into a record of 28 bytes");
}

TEST(MetafileLines, absurdCoordinates_stayInRange) {
    MetafileBuilder builder;
    builder.add(emr::kSETWORLDTRANSFORM, Bytes().floats({1e6F, 0, 0, 1e6F, 0, 0}));
    builder.add(emr::kMOVETOEX, {INT32_MIN, INT32_MIN}).add(emr::kLINETO, {INT32_MAX, INT32_MAX});
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);
    const auto& points = played.calls[0].path.subpaths().at(0).points;
    EXPECT_EQ(points.at(0).x, -67108863 * 16);
    EXPECT_EQ(points.at(1).y, 67108863 * 16);
}

TEST(MetafileLines, position_movesWithTheToRecords) {
    MetafileBuilder builder;
    builder.add(emr::kPOLYLINETO16, figure16({1, 2, 3, 4})).add(emr::kPOLYBEZIERTO16, figure16({5, 5, 6, 6, 7, 7}));
    builder.add(emr::kPOLYLINE16, figure16({90, 90, 91, 91})).add(emr::kLINETO, {8, 8});
    EXPECT_EQ(playCleanly(builder).paths(), "M 0,0 L 1,2 3,4\nM 3,4 C 5,5 6,6 7,7\nM 90,90 L 91,91\nM 7,7 L 8,8");
}

TEST(MetafileLines, angleArcOfManyTurns_endsWhereItEnds) {
    MetafileBuilder builder;
    builder.add(emr::kANGLEARC, Bytes().all32({0, 0, 100}).floats({0, 3600090})).add(emr::kLINETO, {0, 0});
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 2U);
    EXPECT_LE(played.calls[0].path.curveCount(), 6U);
    EXPECT_EQ(describe(played.calls[1].path), "M 0,-100 L 0,0");
}

TEST(MetafileLines, emptyPensAndBrushes_leaveOutTheirPart) {
    const auto drawn = [](std::initializer_list<std::int32_t> selected) {
        MetafileBuilder builder;
        for (const std::int32_t object : selected) builder.add(emr::kSELECTOBJECT, {object});
        return playCleanly(builder.add(emr::kRECTANGLE, {0, 0, 9, 9})).calls;
    };
    EXPECT_TRUE(drawn({kNullPen, kNullBrush}).empty());
    EXPECT_EQ(drawn({kNullBrush}).at(0).kind, Kind::Stroke);
    EXPECT_EQ(drawn({kNullPen}).at(0).kind, Kind::Fill);
    EXPECT_EQ(drawn({}).at(0).kind, Kind::StrokeAndFill);
}

TEST(MetafileLines, setPixel_isOnePixelOfThePage) {
    MetafileBuilder builder;
    builder.add(emr::kSETPIXELV, {10, 20, 0x0000FF});
    const auto played = playCleanly(builder, {0, 0, 1999, 1999});
    ASSERT_EQ(played.calls.size(), 1U);
    EXPECT_EQ(describe(played.calls[0].target), "20,40 21,41");
    EXPECT_EQ(played.calls[0].brush.colour, 0x0000FFU);
    EXPECT_EQ(played.calls[0].rop3, 0xF0);
}

TEST(MetafileEllipse, loneAndUprightOnly_isMarked) {
    const auto marked = [](MetafileBuilder builder) { return playCleanly(builder).calls.at(0).path.isEllipse(); };
    const Bytes turned = Bytes().floats({0.8F, 0.6F, -0.6F, 0.8F, 0, 0});
    const auto ellipse = [](MetafileBuilder builder) { return builder.add(emr::kELLIPSE, {0, 0, 50, 30}); };
    EXPECT_TRUE(marked(ellipse(MetafileBuilder())));
    EXPECT_TRUE(marked(ellipse(MetafileBuilder().add(emr::kBEGINPATH)).add(emr::kENDPATH).add(emr::kSTROKEPATH)));
    EXPECT_TRUE(marked(ellipse(MetafileBuilder().add(emr::kBEGINPATH)).add(emr::kENDPATH).add(emr::kSTROKEANDFILLPATH)));
    EXPECT_FALSE(marked(ellipse(MetafileBuilder().add(emr::kSETWORLDTRANSFORM, turned))));
    EXPECT_FALSE(marked(ellipse(ellipse(MetafileBuilder().add(emr::kBEGINPATH))).add(emr::kENDPATH).add(emr::kSTROKEPATH)));
    EXPECT_FALSE(
        marked(ellipse(MetafileBuilder().add(emr::kBEGINPATH)).add(emr::kLINETO, {9, 9}).add(emr::kENDPATH).add(emr::kSTROKEPATH)));
    EXPECT_FALSE(marked(MetafileBuilder().add(emr::kROUNDRECT, {0, 0, 50, 30, 50, 30})));
}

TEST(MetafilePath, bracket_collectsFiguresUntilItIsUsed) {
    MetafileBuilder builder;
    builder.add(emr::kMOVETOEX, {1, 1}).add(emr::kBEGINPATH);
    builder.add(emr::kLINETO, {2, 1}).add(emr::kLINETO, {2, 2}).add(emr::kCLOSEFIGURE);
    builder.add(emr::kMOVETOEX, {5, 5}).add(emr::kPOLYBEZIERTO16, figure16({6, 5, 7, 6, 7, 7})).add(emr::kLINETO, {8, 8});
    builder.add(emr::kMOVETOEX, {8, 8}).add(emr::kLINETO, {9, 9});  // a move starts a figure, also one to the same place
    builder.add(emr::kRECTANGLE, {20, 20, 30, 30}).add(emr::kLINETO, {0, 0});
    builder.add(emr::kENDPATH).add(emr::kSTROKEPATH);
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);
    EXPECT_EQ(played.paths(), "M 1,1 L 2,1 2,2 Z  M 5,5 C 6,5 7,6 7,7 L 8,8  M 8,8 L 9,9  M 30,20 L 20,20 20,30 30,30 Z  M 9,9 L 0,0");
}

TEST(MetafilePath, uses_fillStrokeAndBoth) {
    const auto drawn = [](ULONG use) {
        MetafileBuilder builder;
        builder.add(emr::kBEGINPATH).add(emr::kMOVETOEX, {1, 1}).add(emr::kPOLYLINETO16, figure16({5, 1, 5, 5})).add(emr::kENDPATH);
        return playCleanly(builder.add(use, Bytes().zeros(16))).calls.at(0);
    };
    EXPECT_EQ(drawn(emr::kFILLPATH).kind, Kind::Fill);
    EXPECT_EQ(drawn(emr::kSTROKEPATH).kind, Kind::Stroke);
    EXPECT_EQ(describe(drawn(emr::kSTROKEPATH).path), "M 1,1 L 5,1 5,5");
    EXPECT_EQ(drawn(emr::kSTROKEANDFILLPATH).kind, Kind::StrokeAndFill);
    EXPECT_EQ(describe(drawn(emr::kSTROKEANDFILLPATH).path), "M 1,1 L 5,1 5,5 Z");  // open figures are closed
}

TEST(MetafilePath, usesWithoutAFinishedPath_areDamage) {
    for (const ULONG use :
         {emr::kFILLPATH, emr::kSTROKEPATH, emr::kSTROKEANDFILLPATH, emr::kFLATTENPATH, emr::kWIDENPATH, emr::kSELECTCLIPPATH}) {
        MetafileBuilder none;
        EXPECT_NE(play(none.add(use, Bytes().u32(5).zeros(12))).reason().find("there is no finished path"), std::string::npos) << use;
        MetafileBuilder open;
        open.add(emr::kBEGINPATH).add(emr::kLINETO, {5, 5}).add(use, Bytes().u32(5).zeros(12));
        EXPECT_NE(play(open).reason().find("there is no finished path"), std::string::npos) << use;
        MetafileBuilder aborted;
        aborted.add(emr::kBEGINPATH).add(emr::kLINETO, {5, 5}).add(emr::kENDPATH).add(emr::kABORTPATH).add(use, Bytes().u32(5).zeros(12));
        EXPECT_NE(play(aborted).reason().find("there is no finished path"), std::string::npos) << use;
    }
    EXPECT_NE(play(MetafileBuilder().add(emr::kENDPATH)).reason().find("no path has been begun"), std::string::npos);
    EXPECT_NE(play(MetafileBuilder().add(emr::kCLOSEFIGURE)).reason().find("no path has been begun"), std::string::npos);
    MetafileBuilder twice;
    twice.add(emr::kBEGINPATH).add(emr::kLINETO, {5, 5}).add(emr::kENDPATH).add(emr::kSTROKEPATH).add(emr::kSTROKEPATH);
    const auto played = play(twice);
    EXPECT_EQ(played.calls.size(), 1U);
    EXPECT_TRUE(played.damage);
}

TEST(MetafilePath, flatten_leavesNoCurves) {
    MetafileBuilder builder;
    builder.add(emr::kBEGINPATH).add(emr::kELLIPSE, {0, 0, 100, 100}).add(emr::kENDPATH).add(emr::kFLATTENPATH).add(emr::kSTROKEPATH);
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);
    EXPECT_FALSE(played.calls[0].path.hasBeziers());
    EXPECT_FALSE(played.calls[0].path.isEllipse());
    EXPECT_GT(played.calls[0].path.curveCount(), 8U);
}

TEST(MetafilePath, widen_turnsWideLinesIntoOutlinesAndLeavesThinOnes) {
    const auto drawn = [](int width) {
        MetafileBuilder builder;
        builder.add(emr::kCREATEPEN, {1, 0, width, 0, 0}).add(emr::kSELECTOBJECT, {1});
        builder.add(emr::kBEGINPATH).add(emr::kMOVETOEX, {10, 50}).add(emr::kLINETO, {90, 50}).add(emr::kENDPATH);
        return playCleanly(builder.add(emr::kWIDENPATH).add(emr::kFILLPATH, Bytes().zeros(16))).calls.at(0).path;
    };
    EXPECT_EQ(describe(drawn(0)), "M 10,50 L 90,50");
    const RECTL box = drawn(20).bounds();
    EXPECT_NEAR(box.top / 16.0, 40.0, 0.5);
    EXPECT_NEAR(box.bottom / 16.0, 60.0, 0.5);
    EXPECT_NEAR(box.left / 16.0, 0.0, 0.5);  // round ends
}

TEST(MetafilePath, widenedAtTheEdgeOfTheRange_staysWithin) {
    MetafileBuilder builder;
    builder.add(emr::kCREATEPEN, {1, 0, 1000, 0, 0}).add(emr::kSELECTOBJECT, {1}).add(emr::kBEGINPATH);
    builder.add(emr::kMOVETOEX, {INT32_MAX, 0}).add(emr::kLINETO, {INT32_MAX, 500}).add(emr::kENDPATH).add(emr::kWIDENPATH);
    const auto calls = playCleanly(builder.add(emr::kSTROKEANDFILLPATH, Bytes().zeros(16))).calls;
    ASSERT_EQ(calls.size(), 1U);
    const RECTL box = calls[0].path.bounds();
    EXPECT_EQ(box.right, 67108863 * 16 + 1);
    EXPECT_LT(box.left, 67108863 * 16 - 400 * 16);
}

TEST(MetafilePath, abort_forgetsThePath) {
    MetafileBuilder builder;
    builder.add(emr::kBEGINPATH).add(emr::kLINETO, {5, 5}).add(emr::kABORTPATH).add(emr::kLINETO, {6, 6});
    EXPECT_EQ(playCleanly(builder).paths(), "M 5,5 L 6,6");
}

}  // namespace
}  // namespace morvil::test
