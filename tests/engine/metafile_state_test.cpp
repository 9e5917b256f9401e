// Mapping modes, world transforms, saved states, and the frame's way onto the page.
#include <gtest/gtest.h>

#include <limits>

#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

namespace emr = engine::emr;

// A line from the logical origin to (100, 50), whatever the mapping in force.
MetafileBuilder& drawProbe(MetafileBuilder& builder) { return builder.add(emr::kMOVETOEX, {0, 0}).add(emr::kLINETO, {100, 50}); }

struct MappingCase {
    const char* name;
    MetafileBuilder builder;
    const char* path;
};

// 10 pixels per millimetre on the reference device.
TEST(MetafileMapping, modesExtentsAndOrigins_placeALine) {
    MappingCase cases[] = {
        {"pixels", MetafileBuilder(), "M 0,0 L 100,50"},
        {"tenths of a millimetre, y up", MetafileBuilder().add(emr::kSETMAPMODE, {2}).add(emr::kSETVIEWPORTORGEX, {0, 1000}),
         "M 0,1000 L 100,950"},
        {"hundredths of a millimetre", MetafileBuilder().add(emr::kSETMAPMODE, {3}), "M 0,0 L 10,-5"},
        {"hundredths of an inch", MetafileBuilder().add(emr::kSETMAPMODE, {4}), "M 0,0 L 254,-127"},
        {"thousandths of an inch", MetafileBuilder().add(emr::kSETMAPMODE, {5}), "M 0,0 L 25.375,-12.6875"},
        {"twips", MetafileBuilder().add(emr::kSETMAPMODE, {6}).add(emr::kSETWINDOWORGEX, {-1340, 0}), "M 236.375,0 L 254,-8.8125"},
        {"anisotropic",
         MetafileBuilder()
             .add(emr::kSETMAPMODE, {8})
             .add(emr::kSETWINDOWEXTEX, {200, 100})
             .add(emr::kSETVIEWPORTEXTEX, {400, 400})
             .add(emr::kSETWINDOWORGEX, {-10, -20}),
         "M 20,80 L 220,280"},
        {"isotropic shrinks the longer side",
         MetafileBuilder().add(emr::kSETMAPMODE, {7}).add(emr::kSETWINDOWEXTEX, {100, 100}).add(emr::kSETVIEWPORTEXTEX, {400, 200}),
         "M 0,0 L 200,100"},
        {"scaled viewport",
         MetafileBuilder()
             .add(emr::kSETMAPMODE, {8})
             .add(emr::kSETVIEWPORTEXTEX, {10, 10})
             .add(emr::kSETWINDOWEXTEX, {10, 10})
             .add(emr::kSCALEVIEWPORTEXTEX, {3, 1, 2, 1}),
         "M 0,0 L 300,100"},
        {"scaled window",
         MetafileBuilder()
             .add(emr::kSETMAPMODE, {8})
             .add(emr::kSETVIEWPORTEXTEX, {10, 10})
             .add(emr::kSETWINDOWEXTEX, {10, 10})
             .add(emr::kSCALEWINDOWEXTEX, {2, 1, 1, 2}),
         "M 0,0 L 50,100"},
        {"extents are fixed in pixel mode", MetafileBuilder().add(emr::kSETWINDOWEXTEX, {10, 10}), "M 0,0 L 100,50"},
        {"extents of 0 change nothing", MetafileBuilder().add(emr::kSETMAPMODE, {8}).add(emr::kSETWINDOWEXTEX, {0, 10}), "M 0,0 L 100,50"},
        {"world", MetafileBuilder().add(emr::kSETWORLDTRANSFORM, Bytes().floats({0, 1, -1, 0, 500, 10})), "M 500,10 L 450,110"},
        {"world before mapping",
         MetafileBuilder()
             .add(emr::kSETMAPMODE, {8})
             .add(emr::kSETVIEWPORTEXTEX, {2, 2})
             .add(emr::kSETWORLDTRANSFORM, Bytes().floats({1, 0, 0, 1, 10, 20})),
         "M 20,40 L 220,140"},
        {"multiplied on the left: the change comes first",
         MetafileBuilder()
             .add(emr::kSETWORLDTRANSFORM, Bytes().floats({2, 0, 0, 2, 0, 0}))
             .add(emr::kMODIFYWORLDTRANSFORM, Bytes().floats({1, 0, 0, 1, 10, 0}).u32(2)),
         "M 20,0 L 220,100"},
        {"multiplied on the right: the change comes last",
         MetafileBuilder()
             .add(emr::kSETWORLDTRANSFORM, Bytes().floats({2, 0, 0, 2, 0, 0}))
             .add(emr::kMODIFYWORLDTRANSFORM, Bytes().floats({1, 0, 0, 1, 10, 0}).u32(3)),
         "M 10,0 L 210,100"},
        {"set", MetafileBuilder().add(emr::kMODIFYWORLDTRANSFORM, Bytes().floats({1, 0, 0, 1, 7, 0}).u32(4)), "M 7,0 L 107,50"},
        {"identity",
         MetafileBuilder()
             .add(emr::kSETWORLDTRANSFORM, Bytes().floats({2, 0, 0, 2, 0, 0}))
             .add(emr::kMODIFYWORLDTRANSFORM, Bytes().zeros(24).u32(1)),
         "M 0,0 L 100,50"},
        {"right to left", MetafileBuilder().add(emr::kSETLAYOUT, {1}), "M 1000,0 L 900,50"},
        {"bitmap flag of the layout does not mirror", MetafileBuilder().add(emr::kSETLAYOUT, {8}), "M 0,0 L 100,50"},
    };
    for (MappingCase& c : cases) EXPECT_EQ(playCleanly(drawProbe(c.builder)).paths(), c.path) << c.name;
}

TEST(MetafileMapping, impossibleValues_areDamageAndChangeNothing) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const float huge = 3e38F;
    MappingCase cases[] = {
        {"there is no mapping mode 9", MetafileBuilder().add(emr::kSETMAPMODE, {9}), ""},
        {"there is no mapping mode 0", MetafileBuilder().add(emr::kSETMAPMODE, {0}), ""},
        {"a scale with denominator 0", MetafileBuilder().add(emr::kSCALEWINDOWEXTEX, {1, 0, 1, 1}), ""},
        {"is not finite", MetafileBuilder().add(emr::kSETWORLDTRANSFORM, Bytes().floats({notANumber, 0, 0, 1, 0, 0})), ""},
        {"there is no way 5 to modify a transform",
         MetafileBuilder().add(emr::kMODIFYWORLDTRANSFORM, Bytes().floats({2, 0, 0, 2, 0, 0}).u32(5)), ""},
        {"do not fit", MetafileBuilder().add(emr::kSETWORLDTRANSFORM, Bytes().floats({2, 0, 0, 2, 0})), ""},
    };
    for (MappingCase& c : cases) {
        const auto played = play(drawProbe(c.builder));
        EXPECT_NE(played.reason().find(c.name), std::string::npos) << played.reason();
        EXPECT_EQ(played.paths(), "M 0,0 L 100,50") << c.name;
    }
    // Growing without end: the change that would overflow is left out, and coordinates stay within their range.
    MetafileBuilder growing;
    for (int i = 0; i < 20; ++i) growing.add(emr::kMODIFYWORLDTRANSFORM, Bytes().floats({huge, 0, 0, huge, 0, 0}).u32(2));
    const auto played = play(drawProbe(growing));
    EXPECT_NE(played.reason().find("the transform overflows"), std::string::npos);
    EXPECT_EQ(played.paths(), "M 0,0 L 6.71089e+07,6.71089e+07");
}

TEST(MetafileMapping, frame_fillsTheTargetEdgesIncluded) {
    MetafileBuilder builder;
    builder.add(emr::kMOVETOEX, {0, 0}).add(emr::kLINETO, {1000, 500});
    EXPECT_EQ(playCleanly(builder, {100, 200, 599, 1199}).paths(), "M 100,200 L 600,700");
    auto shifted = builder.file();
    shifted[25] = 0x10;  // the frame begins 40.96 mm to the right
    engine::MetafileError error;
    auto metafile = engine::Metafile::parse(shifted, error);
    ASSERT_NE(metafile, nullptr);
    engine::MetafilePage page(metafile, {0, 0, 5903, 9999});
    RecordingCanvas canvas;
    page.play(canvas);
    EXPECT_EQ(describe(canvas.calls.at(0).path), "M -4096,0 L 5904,5000");
}

TEST(MetafileMapping, fractions_areRoundedToTheNearestSixteenth) {
    MetafileBuilder builder;
    builder.add(emr::kSETWORLDTRANSFORM, Bytes().floats({1, 0, 0, 1, 0.03F, 0.04F}))
        .add(emr::kMOVETOEX, {1, 1})
        .add(emr::kLINETO, {-1, -1});
    EXPECT_EQ(playCleanly(builder).paths(), "M 1,1.0625 L -1,-0.9375");
}

TEST(MetafileState, saveAndRestore_relativeAndAbsolute) {
    struct Case {
        std::int32_t which;
        int rop2;
        bool damage;
    };
    // Saved: 1, 2, 3; now 4.
    static const Case cases[] = {{-1, 3, false}, {-2, 2, false}, {-3, 1, false}, {1, 1, false},       {3, 3, false},
                                 {-4, 4, true},  {4, 4, true},   {0, 4, true},   {INT32_MIN, 4, true}};
    for (const Case& c : cases) {
        MetafileBuilder builder;
        for (const int rop2 : {1, 2, 3}) builder.add(emr::kSETROP2, {rop2}).add(emr::kSAVEDC);
        builder.add(emr::kSETROP2, {4}).add(emr::kRESTOREDC, {c.which}).add(emr::kLINETO, {5, 5});
        const auto played = play(builder);
        ASSERT_EQ(played.calls.size(), 1U);
        EXPECT_EQ(played.calls[0].rop2, c.rop2) << c.which;
        EXPECT_EQ(played.damage.has_value(), c.damage) << c.which;
    }
}

TEST(MetafileState, restoring_dropsTheStatesAbove) {
    MetafileBuilder builder;
    builder.add(emr::kSAVEDC).add(emr::kSAVEDC).add(emr::kRESTOREDC, {1}).add(emr::kRESTOREDC, {-1});
    EXPECT_EQ(play(builder).reason(), "record 5 (EMR_RESTOREDC) at byte 116: state -1 of 0 saved ones");
}

TEST(MetafileState, modes_reachTheCanvas) {
    MetafileBuilder builder;
    builder.add(emr::kSETPOLYFILLMODE, {2}).add(emr::kSETMITERLIMIT, Bytes().f32(8.0F)).add(emr::kSETROP2, {7});
    builder.add(emr::kPOLYGON16, Bytes().zeros(16).u32(3).all16({0, 0, 10, 0, 0, 10}));
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);
    EXPECT_EQ(played.calls[0].mode, engine::FillMode::Winding);
    EXPECT_FLOAT_EQ(played.calls[0].pen.miterLimit, 8.0F);
    EXPECT_EQ(played.calls[0].rop2, 7);
    // The same limit as a whole number.
    MetafileBuilder whole;
    whole.add(emr::kSETMITERLIMIT, {200}).add(emr::kLINETO, {1, 1});
    EXPECT_FLOAT_EQ(playCleanly(whole).calls.at(0).pen.miterLimit, 200.0F);
}

TEST(MetafileState, impossibleModes_areDamage) {
    static const struct {
        ULONG type;
        std::int32_t value;
    } cases[] = {
        {emr::kSETROP2, 0}, {emr::kSETROP2, 17}, {emr::kSETSTRETCHBLTMODE, 0}, {emr::kSETSTRETCHBLTMODE, 5}, {emr::kSETMITERLIMIT, 0}};
    for (const auto& c : cases) EXPECT_TRUE(play(MetafileBuilder().add(c.type, {c.value})).damage) << c.type << ' ' << c.value;
}

TEST(MetafileState, everyKnownRecordTooShort_isDamageOrHarmless) {
    for (ULONG type = 1; type <= emr::kLastType; ++type) {
        if (type == emr::kEOF) continue;
        for (std::size_t length = 0; length <= 136; length += 4) {
            MetafileBuilder builder;
            builder.add(emr::kBEGINPATH).add(emr::kMOVETOEX, {1, 1}).add(emr::kLINETO, {5, 5}).add(emr::kENDPATH);
            builder.add(type, Bytes().zeros(length));
            play(builder);  // must come back
        }
    }
}

TEST(MetafileState, unknownRecords_areSkippedAndCountedOnce) {
    MetafileBuilder builder;
    builder.add(69, {1}).add(500, {1}).add(500, {1}).add(emr::kEXTFLOODFILL, {0, 0, 0, 0}).add(emr::kLINETO, {3, 3});
    const auto metafile = builder.metafile();
    ASSERT_NE(metafile, nullptr);
    engine::MetafilePage page(metafile, {0, 0, 999, 999});
    RecordingCanvas canvas;
    page.play(canvas);
    page.play(canvas);  // a second band counts nothing again
    EXPECT_EQ(page.skipped(), (std::map<ULONG, ULONG>{{53, 1}, {69, 1}, {500, 2}}));
    EXPECT_FALSE(page.damage());
    EXPECT_EQ(canvas.calls.size(), 2U);
}

TEST(MetafileState, recordsWithoutEffect_areNotSkipped) {
    MetafileBuilder builder;
    for (const ULONG type : {emr::kSETMAPPERFLAGS, emr::kREALIZEPALETTE, emr::kSETICMMODE, emr::kGDICOMMENT}) builder.add(type, {0});
    EXPECT_TRUE(playCleanly(builder).calls.empty());
}

TEST(MetafileState, canvasThatFails_endsThePlay) {
    MetafileBuilder builder;
    for (int i = 0; i < 10; ++i) builder.add(emr::kLINETO, {i, 5});
    engine::MetafilePage page(builder.metafile(), {0, 0, 999, 999});
    RecordingCanvas canvas;
    canvas.callsUntilFailure = 3;
    page.play(canvas);
    EXPECT_EQ(canvas.calls.size(), 3U);
}

TEST(MetafileState, manySavedStates_areBounded) {
    MetafileBuilder builder;
    for (int i = 0; i < 65537; ++i) builder.add(emr::kSAVEDC);
    EXPECT_NE(play(builder).reason().find("too many saved states"), std::string::npos);
}

}  // namespace
}  // namespace morvil::test
