// Clipping and the drawing of regions.
#include <gtest/gtest.h>

#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

namespace emr = engine::emr;

Bytes region(std::initializer_list<RECTL> rectangles) {
    Bytes bytes;
    bytes.u32(32)
        .u32(1)
        .u32(static_cast<std::uint32_t>(rectangles.size()))
        .u32(static_cast<std::uint32_t>(16 * rectangles.size()))
        .zeros(16);
    for (const RECTL& r : rectangles) bytes.all32({r.left, r.top, r.right, r.bottom});
    return bytes;
}

// The clip under which a line is drawn at the end.
std::string clipOf(MetafileBuilder builder) {
    const auto played = playCleanly(builder.add(emr::kLINETO, {5, 5}));
    return played.calls.empty() ? "no call" : played.calls[0].clip;
}

Bytes select(const Bytes& data, int mode) { return Bytes().u32(static_cast<std::uint32_t>(data.size())).i32(mode).append(data); }

MetafileBuilder withClip() { return MetafileBuilder().add(emr::kINTERSECTCLIPRECT, {10, 10, 50, 50}); }

TEST(MetafileClip, eachRecord_changesTheClip) {
    const Bytes other = region({{30, 30, 70, 70}});
    const struct {
        const char* name;
        MetafileBuilder builder;
        const char* clip;
    } cases[] = {
        {"none", MetafileBuilder(), "all"},
        {"rectangle", withClip(), "10,10 50,50"},
        {"two rectangles", withClip().add(emr::kINTERSECTCLIPRECT, {40, 0, 90, 20}), "40,10 50,20"},
        {"disjoint", withClip().add(emr::kINTERSECTCLIPRECT, {60, 60, 70, 70}), "nothing"},
        {"excluded", withClip().add(emr::kEXCLUDECLIPRECT, {0, 0, 50, 40}), "10,40 50,50"},
        {"excluded from the page", MetafileBuilder().add(emr::kEXCLUDECLIPRECT, {0, 0, 1000, 990}), "0,990 1000,1000"},
        {"moved", withClip().add(emr::kOFFSETCLIPRGN, {5, -5}), "15,5 55,45"},
        {"moved without a clip", MetafileBuilder().add(emr::kOFFSETCLIPRGN, {5, -5}), "all"},
        {"and", withClip().add(emr::kEXTSELECTCLIPRGN, select(other, 1)), "30,30 50,50"},
        {"or", withClip().add(emr::kEXTSELECTCLIPRGN, select(region({{50, 10, 60, 50}}), 2)), "10,10 60,50"},
        {"xor", withClip().add(emr::kEXTSELECTCLIPRGN, select(region({{10, 10, 50, 40}}), 3)), "10,40 50,50"},
        {"difference", withClip().add(emr::kEXTSELECTCLIPRGN, select(region({{10, 10, 50, 40}}), 4)), "10,40 50,50"},
        {"copy", withClip().add(emr::kEXTSELECTCLIPRGN, select(other, 5)), "30,30 70,70"},
        {"copy of nothing lifts the clip", withClip().add(emr::kEXTSELECTCLIPRGN, {0, 5}), "all"},
        {"empty region", withClip().add(emr::kEXTSELECTCLIPRGN, select(region({}), 5)), "nothing"},
        {"several rectangles", MetafileBuilder().add(emr::kEXTSELECTCLIPRGN, select(region({{0, 0, 5, 5}, {9, 0, 12, 5}}), 5)),
         "0,0 5,5 | 9,0 12,5"},
        {"path",
         MetafileBuilder().add(emr::kBEGINPATH).add(emr::kRECTANGLE, {20, 20, 40, 30}).add(emr::kENDPATH).add(emr::kSELECTCLIPPATH, {5}),
         "20,20 40,30"},
        {"path within a clip",
         withClip().add(emr::kBEGINPATH).add(emr::kRECTANGLE, {20, 20, 400, 30}).add(emr::kENDPATH).add(emr::kSELECTCLIPPATH, {1}),
         "20,20 50,30"},
        {"saved and restored", withClip().add(emr::kSAVEDC).add(emr::kINTERSECTCLIPRECT, {0, 0, 20, 20}).add(emr::kRESTOREDC, {-1}),
         "10,10 50,50"},
        {"meta region stays under a lifted clip", withClip().add(emr::kSETMETARGN).add(emr::kEXTSELECTCLIPRGN, {0, 5}), "10,10 50,50"},
        {"meta region and clip", withClip().add(emr::kSETMETARGN).add(emr::kINTERSECTCLIPRECT, {0, 0, 30, 30}), "10,10 30,30"},
        {"two meta regions",
         withClip()
             .add(emr::kSETMETARGN)
             .add(emr::kINTERSECTCLIPRECT, {0, 0, 30, 30})
             .add(emr::kSETMETARGN)
             .add(emr::kEXTSELECTCLIPRGN, {0, 5}),
         "10,10 30,30"},
        {"logical rectangle through the world",
         MetafileBuilder()
             .add(emr::kSETWORLDTRANSFORM, Bytes().floats({2, 0, 0, -1, 0, 100}))
             .add(emr::kINTERSECTCLIPRECT, {10, 10, 20, 20}),
         "20,80 40,90"},
        {"clip regions are in device pixels",
         MetafileBuilder().add(emr::kSETWORLDTRANSFORM, Bytes().floats({2, 0, 0, 2, 0, 0})).add(emr::kEXTSELECTCLIPRGN, select(other, 5)),
         "30,30 70,70"},
    };
    for (const auto& c : cases) EXPECT_EQ(clipOf(c.builder), c.clip) << c.name;
}

TEST(MetafileClip, scaledPage_scalesClips) {
    MetafileBuilder builder;
    builder.add(emr::kEXTSELECTCLIPRGN, select(region({{1, 1, 3, 3}, {3, 1, 5, 3}}), 5)).add(emr::kLINETO, {5, 5});
    EXPECT_EQ(playCleanly(builder, {0, 0, 1499, 1499}).calls.at(0).clip, "2,2 8,5");  // neighbours stay neighbours
}

TEST(MetafileClip, turnedRectangle_isClippedAlongItsEdges) {
    MetafileBuilder builder;
    builder.add(emr::kSETWORLDTRANSFORM, Bytes().floats({0, 1, -1, 0, 100, 0}))
        .add(emr::kINTERSECTCLIPRECT, {10, 10, 20, 40})
        .add(emr::kLINETO, {5, 5});
    EXPECT_EQ(playCleanly(builder).calls.at(0).clip, "60,10 90,20");
}

TEST(MetafileClip, alternateAndWindingPaths_differ) {
    const auto clip = [](int fillMode) {
        MetafileBuilder builder;
        builder.add(emr::kSETPOLYFILLMODE, {fillMode})
            .add(emr::kBEGINPATH)
            .add(emr::kRECTANGLE, {10, 10, 40, 20})
            .add(emr::kRECTANGLE, {20, 10, 30, 20});
        return clipOf(builder.add(emr::kENDPATH).add(emr::kSELECTCLIPPATH, {5}));
    };
    EXPECT_EQ(clip(1), "10,10 20,20 | 30,10 40,20");
    EXPECT_EQ(clip(2), "10,10 40,20");
}

TEST(MetafileClip, damagedRegions_changeNothing) {
    Bytes otherKind = region({{0, 0, 5, 5}});
    otherKind.data()[4] = 2;
    Bytes otherHeader = region({{0, 0, 5, 5}});
    otherHeader.data()[0] = 36;
    Bytes tooMany = region({{0, 0, 5, 5}});
    tooMany.data()[8] = 2;
    Bytes huge = region({{0, 0, 5, 5}});
    huge.data()[11] = 0x10;
    const struct {
        const char* reason;
        ULONG type;
        Bytes body;
    } cases[] = {
        {"a region of unknown kind", emr::kEXTSELECTCLIPRGN, select(otherKind, 5)},
        {"a region of unknown kind", emr::kEXTSELECTCLIPRGN, select(otherHeader, 5)},
        {"2 rectangles from byte 32 do not fit", emr::kEXTSELECTCLIPRGN, select(tooMany, 5)},
        {"268435457 rectangles", emr::kEXTSELECTCLIPRGN, select(huge, 5)},
        {"no region to combine with", emr::kEXTSELECTCLIPRGN, Bytes().all32({0, 1})},
        {"there is no way 6 to combine regions", emr::kEXTSELECTCLIPRGN, select(region({{0, 0, 5, 5}}), 6)},
        {"100 bytes from byte 16 do not fit", emr::kEXTSELECTCLIPRGN, Bytes().all32({100, 5})},
        {"would leave the range", emr::kOFFSETCLIPRGN, Bytes().all32({INT32_MAX, 0})},
    };
    for (const auto& c : cases) {
        auto builder = withClip();
        const auto played = play(builder.add(c.type, c.body).add(emr::kLINETO, {5, 5}));
        EXPECT_NE(played.reason().find(c.reason), std::string::npos) << played.reason();
        EXPECT_EQ(played.calls.at(0).clip, "10,10 50,50") << c.reason;
    }
}

std::string blitted(const PlayedMetafile& played) {
    std::string text;
    for (const CanvasCall& call : played.calls) text += (text.empty() ? "" : " | ") + describe(call.target);
    return text;
}

TEST(MetafileRegions, fillFrameInvertAndPaint_drawRectangles) {
    const Bytes data = region({{10, 10, 30, 30}, {30, 10, 40, 20}});
    const auto size = static_cast<std::int32_t>(data.size());
    const auto brush = [] { return MetafileBuilder().add(emr::kCREATEBRUSHINDIRECT, {3, 0, 0x0000FF, 0}); };
    const Bytes bounds = Bytes().zeros(16);

    const auto filled = playCleanly(brush().add(emr::kFILLRGN, Bytes(bounds).all32({size, 3}).append(data)));
    EXPECT_EQ(blitted(filled), "10,10 40,20 | 10,20 30,30");
    EXPECT_EQ(filled.calls.at(0).rop3, 0xF0);
    EXPECT_EQ(filled.calls.at(0).brush.colour, 0x0000FFU);

    const auto frame = playCleanly(brush().add(emr::kFRAMERGN, Bytes(bounds).all32({48, 3, 2, 3}).append(region({{10, 10, 30, 30}}))));
    EXPECT_EQ(blitted(frame), "10,10 30,13 | 10,13 12,27 | 28,13 30,27 | 10,27 30,30");

    const auto inverted = playCleanly(MetafileBuilder().add(emr::kINVERTRGN, Bytes(bounds).all32({size}).append(data)));
    EXPECT_EQ(blitted(inverted), "10,10 40,20 | 10,20 30,30");
    EXPECT_EQ(inverted.calls.at(0).rop3, 0x55);

    const auto painted = playCleanly(brush().add(emr::kSELECTOBJECT, {3}).add(emr::kPAINTRGN, Bytes(bounds).all32({size}).append(data)));
    EXPECT_EQ(blitted(painted), "10,10 40,20 | 10,20 30,30");
    EXPECT_EQ(painted.calls.at(0).brush.colour, 0x0000FFU);
}

TEST(MetafileRegions, outsideThePage_drawNothing) {
    const Bytes data = region({{5000, 5000, 6000, 6000}});
    EXPECT_TRUE(playCleanly(MetafileBuilder().add(emr::kINVERTRGN, Bytes().zeros(16).u32(48).append(data))).calls.empty());
    const Bytes huge = region({{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}});
    EXPECT_EQ(blitted(playCleanly(MetafileBuilder().add(emr::kINVERTRGN, Bytes().zeros(16).u32(48).append(huge)))), "0,0 1000,1000");
}

TEST(MetafileRegions, otherObjectsThanBrushes_areDamage) {
    const Bytes data = region({{10, 10, 30, 30}});
    MetafileBuilder pen;
    pen.add(emr::kCREATEPEN, {1, 0, 1, 0, 0}).add(emr::kFILLRGN, Bytes().zeros(16).all32({48, 1}).append(data));
    EXPECT_NE(play(pen).reason().find("the handle is no brush"), std::string::npos);
    MetafileBuilder none;
    none.add(emr::kFILLRGN, Bytes().zeros(16).all32({48, 1}).append(data));
    EXPECT_NE(play(none).reason().find("handle 1 holds no object"), std::string::npos);
}

}  // namespace
}  // namespace morvil::test
