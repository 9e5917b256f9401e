// Pens, brushes, palettes and their handles.
#include <gtest/gtest.h>

#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

namespace emr = engine::emr;
using engine::BrushKind;

// The pen that a line is drawn with, after the records so far, on a page of `size` pixels for the reference device's thousand.
engine::Pen penOf(MetafileBuilder builder, LONG size = 1000) {
    const auto played = playCleanly(builder.add(emr::kSELECTOBJECT, {1}).add(emr::kLINETO, {5, 5}), {0, 0, size - 1, size - 1});
    return played.calls.empty() ? engine::Pen{.null = true} : played.calls[0].pen;
}

engine::Brush brushOf(MetafileBuilder builder) {
    const auto played = playCleanly(builder.add(emr::kSELECTOBJECT, {1}).add(emr::kRECTANGLE, {0, 0, 9, 9}));
    return played.calls.empty() || played.calls[0].kind != CanvasCall::Kind::StrokeAndFill ? engine::Brush{.kind = BrushKind::Null}
                                                                                           : played.calls[0].brush;
}

MetafileBuilder oldPen(int style, int width, int colour = 0x112233) {
    return MetafileBuilder().add(emr::kCREATEPEN, {1, style, width, 0, colour});
}

TEST(MetafilePens, oldStyle_isCosmeticUpToOneAndAHalfPixels) {
    struct Case {
        int style;
        int width;
        LONG page;
        bool geometric;
        std::vector<float> dashes;
    };
    static const Case cases[] = {
        {0, 0, 1000, false, {}},
        {0, 1, 1000, false, {}},
        {0, 1, 1500, false, {}},
        {0, 1, 1510, true, {}},
        {0, 2, 1000, true, {}},
        {0, 3, 500, false, {}},
        {1, 1, 1000, false, {6, 2}},
        {2, 0, 1000, false, {1, 1}},
        {3, 1, 1000, false, {3, 2, 1, 2}},
        {4, 1, 1000, false, {3, 1, 1, 1, 1, 1}},
        {1, 2, 1000, true, {}},
        {1, 0, 9000, false, {6, 2}},
        {6, 4, 1000, true, {}},
        {0, -4, 1000, true, {}},
    };
    for (const Case& c : cases) {
        const engine::Pen pen = penOf(oldPen(c.style, c.width), c.page);
        EXPECT_EQ(pen.geometric, c.geometric) << c.style << ' ' << c.width << ' ' << c.page;
        EXPECT_EQ(pen.style, c.dashes) << c.style << ' ' << c.width;
        EXPECT_EQ(pen.brush.colour, 0x112233U);
        EXPECT_DOUBLE_EQ(pen.width, c.geometric ? std::abs(c.width) : 1.0);
        EXPECT_EQ(pen.join, JOIN_ROUND);
        EXPECT_EQ(pen.endCap, ENDCAP_ROUND);
        EXPECT_FALSE(pen.null);
    }
    EXPECT_TRUE(penOf(oldPen(5, 1)).null);
}

TEST(MetafilePens, worldToDevice_goesWithTheStroke) {
    MetafileBuilder builder;
    builder.add(emr::kSETMAPMODE, {8}).add(emr::kSETVIEWPORTEXTEX, {3, 4}).add(emr::kSETVIEWPORTORGEX, {7, 8}).add(emr::kLINETO, {5, 5});
    const XFORM xform = playCleanly(builder, {0, 0, 1999, 1999}).calls.at(0).worldToDevice;
    EXPECT_FLOAT_EQ(xform.eM11, 6.0F);
    EXPECT_FLOAT_EQ(xform.eM22, 8.0F);
    EXPECT_FLOAT_EQ(xform.eDx, 14.0F);
    EXPECT_FLOAT_EQ(xform.eDy, 16.0F);
}

Bytes extendedPen(std::uint32_t style, std::uint32_t width, std::initializer_list<std::int32_t> entries = {}, std::uint32_t brushStyle = 0,
                  std::uint32_t hatch = 0) {
    Bytes body;
    body.u32(1).zeros(16).u32(style).u32(width).u32(brushStyle).u32(0x445566).u32(hatch).u32(static_cast<std::uint32_t>(entries.size()));
    return body.all32(entries);
}

TEST(MetafilePens, extended_keepKindJoinsCapsAndStyles) {
    struct Case {
        std::uint32_t style;
        std::uint32_t width;
        std::vector<float> entries;
        bool geometric;
        std::vector<float> dashes;
        ULONG cap;
        ULONG join;
        bool alternate;
    };
    static const Case cases[] = {
        {0x00000, 1, {}, false, {}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x00001, 1, {}, false, {6, 2}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x00008, 1, {}, false, {}, ENDCAP_ROUND, JOIN_ROUND, true},
        {0x00007, 1, {4, 5}, false, {4, 5}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x10000, 5, {}, true, {}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x11100, 1, {}, true, {}, ENDCAP_SQUARE, JOIN_BEVEL, false},  // geometric however thin
        {0x12200, 5, {}, true, {}, ENDCAP_BUTT, JOIN_MITER, false},
        {0x10001, 5, {}, true, {15, 5}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x10002, 5, {}, true, {5, 5}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x10003, 2, {}, true, {6, 2, 2, 2}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x10004, 2, {}, true, {6, 2, 2, 2, 2, 2}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x10007, 5, {7, 8, 9}, true, {7, 8, 9}, ENDCAP_ROUND, JOIN_ROUND, false},
        {0x10007, 5, {0, 0}, true, {}, ENDCAP_ROUND, JOIN_ROUND, false},  // would never get on
        {0x10000, 0, {}, false, {}, ENDCAP_ROUND, JOIN_ROUND, false},
    };
    for (const Case& c : cases) {
        Bytes body = extendedPen(c.style, c.width);
        body.data()[40] = static_cast<std::uint8_t>(c.entries.size());
        for (const float entry : c.entries) body.i32(static_cast<std::int32_t>(entry));
        const engine::Pen pen = penOf(MetafileBuilder().add(emr::kEXTCREATEPEN, body));
        EXPECT_EQ(pen.geometric, c.geometric) << std::hex << c.style;
        EXPECT_EQ(pen.style, c.dashes) << std::hex << c.style;
        EXPECT_EQ(pen.endCap, c.cap) << std::hex << c.style;
        EXPECT_EQ(pen.join, c.join) << std::hex << c.style;
        EXPECT_EQ(pen.alternate, c.alternate) << std::hex << c.style;
        EXPECT_EQ(pen.brush.colour, 0x445566U);
    }
    EXPECT_TRUE(penOf(MetafileBuilder().add(emr::kEXTCREATEPEN, extendedPen(0x10005, 5))).null);
    EXPECT_TRUE(penOf(MetafileBuilder().add(emr::kEXTCREATEPEN, extendedPen(0x10000, 5, {}, 1))).null);  // a null brush draws nothing
    const auto hatched = penOf(MetafileBuilder().add(emr::kEXTCREATEPEN, extendedPen(0x10000, 5, {}, 2, 3)));
    EXPECT_EQ(hatched.brush.kind, BrushKind::Hatch);
    EXPECT_EQ(hatched.brush.hatch, 3);
}

TEST(MetafilePens, patternPen_keepsItsBitmap) {
    Bytes header = dibHeader(8, 1, 24);
    Bytes bits = Bytes().zeros(24);
    bits.data()[0] = 0x77;
    Bytes tail;
    tail.u32(0x10000).u32(5).u32(5).u32(0).u32(0).u32(0);
    MetafileBuilder builder;
    builder.addPicture(emr::kEXTCREATEPEN, Bytes().u32(1), header, bits, tail);
    const engine::Pen pen = penOf(builder);
    EXPECT_EQ(pen.brush.kind, BrushKind::Pattern);
    ASSERT_NE(pen.brush.pattern, nullptr);
    EXPECT_EQ(pen.brush.pattern->bits.at(0), 0x77);
}

TEST(MetafilePens, insideFrame_drawsWithinTheBox) {
    MetafileBuilder builder;
    builder.add(emr::kCREATEPEN, {1, 6, 10, 0, 0})
        .add(emr::kSELECTOBJECT, {1})
        .add(emr::kRECTANGLE, {0, 0, 100, 50})
        .add(emr::kRECTANGLE, {0, 0, 4, 50});
    EXPECT_EQ(playCleanly(builder).paths(), "M 95,5 L 5,5 5,45 95,45 Z\nM 2,5 L 2,5 2,45 2,45 Z");
}

TEST(MetafileBrushes, kinds) {
    EXPECT_EQ(brushOf(MetafileBuilder().add(emr::kCREATEBRUSHINDIRECT, {1, 0, 0x998877, 0})).colour, 0x998877U);
    EXPECT_EQ(brushOf(MetafileBuilder().add(emr::kCREATEBRUSHINDIRECT, {1, 1, 0, 0})).kind, BrushKind::Null);
    MetafileBuilder hatched;
    hatched.add(emr::kSETBKCOLOR, {0x00FF00}).add(emr::kSETBRUSHORGEX, {3, 4}).add(emr::kCREATEBRUSHINDIRECT, {1, 2, 0xFF, 5});
    const auto opaque = brushOf(hatched);
    EXPECT_EQ(opaque.kind, BrushKind::Hatch);
    EXPECT_EQ(opaque.hatch, 5);
    EXPECT_EQ(opaque.colour, 0xFFU);
    EXPECT_EQ(opaque.background, 0x00FF00U);
    EXPECT_FALSE(opaque.transparent);
    EXPECT_EQ(opaque.origin.x, 3);
    EXPECT_EQ(opaque.origin.y, 4);
    EXPECT_TRUE(brushOf(hatched.add(emr::kSETBKMODE, {1})).transparent);
    EXPECT_EQ(brushOf(MetafileBuilder().add(emr::kCREATEBRUSHINDIRECT, {1, 2, 0xFF, 6})).kind, BrushKind::Solid);  // no such hatch
}

TEST(MetafileBrushes, patterns_monochromeAndColoured) {
    const auto pattern = [](ULONG type, unsigned bits, std::initializer_list<std::uint32_t> colours) {
        MetafileBuilder builder;
        builder.add(emr::kSETTEXTCOLOR, {0x0000FF}).add(emr::kSETBKCOLOR, {0xFF0000});
        return brushOf(builder.addPicture(type, Bytes().all32({1, 0}), dibHeader(8, 8, bits, colours), Bytes().zeros(64 * 4)));
    };
    const auto monochrome = pattern(emr::kCREATEMONOBRUSH, 1, {0, 0xFFFFFF});
    EXPECT_EQ(monochrome.kind, BrushKind::Pattern);
    EXPECT_TRUE(monochrome.monochromePattern);
    EXPECT_EQ(monochrome.foreground, 0x0000FFU);
    EXPECT_EQ(monochrome.background, 0xFF0000U);
    const auto coloured = pattern(emr::kCREATEDIBPATTERNBRUSHPT, 1, {0x123456, 0xFFFFFF});
    EXPECT_FALSE(coloured.monochromePattern);
    EXPECT_EQ(coloured.pattern->palette.at(0), 0x563412U);
    EXPECT_FALSE(pattern(emr::kCREATEMONOBRUSH, 24, {}).monochromePattern);
}

TEST(MetafileColours, paletteIndexesAndPaletteRelative_areResolved) {
    MetafileBuilder builder;
    builder.add(emr::kCREATEPALETTE, Bytes().u32(2).u16(0x300).u16(2).u32(0x030201).u32(0x060504)).add(emr::kSELECTPALETTE, {2});
    builder.add(emr::kCREATEBRUSHINDIRECT, {1, 0, 0x01000001, 0});
    EXPECT_EQ(brushOf(builder).colour, 0x060504U);
    const auto withColour = [](int colour) { return brushOf(MetafileBuilder().add(emr::kCREATEBRUSHINDIRECT, {1, 0, colour, 0})).colour; };
    EXPECT_EQ(withColour(0x02ABCDEF), 0xABCDEFU);
    EXPECT_EQ(withColour(0x0100000D), 0x0000FFU);  // of the default palette
    EXPECT_EQ(withColour(0x0100FFFF), 0U);         // beyond it
    // Changed and resized palettes take effect where they are selected.
    builder.add(emr::kSETPALETTEENTRIES, Bytes().all32({2, 1, 1}).u32(0x0A0B0C));
    EXPECT_EQ(brushOf(builder).colour, 0x0A0B0CU);
    EXPECT_EQ(brushOf(builder.add(emr::kRESIZEPALETTE, {2, 1})).colour, 0U);
}

TEST(MetafileObjects, misuse_isDamage) {
    static const struct {
        const char* reason;
        ULONG type;
        std::initializer_list<std::int32_t> values;
    } cases[] = {
        {"handle 7 holds no object", emr::kSELECTOBJECT, {7}},
        {"handle 0 holds no object", emr::kSELECTOBJECT, {0}},
        {"there is no stock object 9", emr::kSELECTOBJECT, {static_cast<std::int32_t>(0x80000009)}},
        {"there is no stock object 2147483647", emr::kSELECTOBJECT, {-1}},
        {"handle 7 holds no object", emr::kDELETEOBJECT, {7}},
        {"handle 0 is out of range", emr::kCREATEPEN, {0, 0, 1, 0, 0}},
        {"handle 65536 is out of range", emr::kCREATEPEN, {65536, 0, 1, 0, 0}},
        {"brush style 3 needs a bitmap", emr::kCREATEBRUSHINDIRECT, {1, 3, 0, 0}},
        {"handle 2147483655 is no palette", emr::kSELECTPALETTE, {static_cast<std::int32_t>(0x80000007)}},
        {"200 palette entries", emr::kCREATEPALETTE, {1, 200 << 16}},
        {"the handle is no palette", emr::kRESIZEPALETTE, {static_cast<std::int32_t>(0x80000007), 4}},
        {"a palette of 2147483647 entries", emr::kRESIZEPALETTE, {static_cast<std::int32_t>(0x8000000F), 0x7FFFFFFF}},
        {"entries beyond the palette's end", emr::kSETPALETTEENTRIES, {static_cast<std::int32_t>(0x8000000F), 20, 1, 0}},
        {"style entries", emr::kEXTCREATEPEN, {1, 0, 0, 0, 0, 7, 1, 0, 0, 0, 0x40000001, 5}},
    };
    for (const auto& c : cases) {
        const std::string reason = play(MetafileBuilder().add(c.type, c.values)).reason();
        EXPECT_NE(reason.find(c.reason), std::string::npos) << reason;
    }
}

TEST(MetafileObjects, deletedWhileSelected_staysInUse) {
    MetafileBuilder builder;
    builder.add(emr::kCREATEPEN, {1, 0, 5, 0, 0x0000FF})
        .add(emr::kSELECTOBJECT, {1})
        .add(emr::kDELETEOBJECT, {1})
        .add(emr::kLINETO, {5, 5});
    EXPECT_EQ(playCleanly(builder).calls.at(0).pen.brush.colour, 0x0000FFU);
}

TEST(MetafileObjects, handleUsedAgain_holdsTheNewObject) {
    MetafileBuilder builder;
    builder.add(emr::kCREATEPEN, {1, 0, 5, 0, 0x0000FF}).add(emr::kCREATEPEN, {1, 0, 5, 0, 0x00FF00});
    EXPECT_EQ(penOf(builder).brush.colour, 0x00FF00U);
}

TEST(MetafileObjects, stockObjectsAndColourSpaces) {
    const auto stockBrush = [](std::int32_t index) {
        MetafileBuilder builder;
        builder.add(emr::kSELECTOBJECT, {static_cast<std::int32_t>(0x80000000U) | index}).add(emr::kRECTANGLE, {0, 0, 9, 9});
        return playCleanly(builder).calls.at(0).brush.colour;
    };
    const std::uint32_t expected[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
    for (std::int32_t i = 0; i < 5; ++i) EXPECT_EQ(stockBrush(i), expected[i]) << i;
    MetafileBuilder builder;
    builder.add(emr::kCREATECOLORSPACE, {1, 0}).add(emr::kSETCOLORSPACE, {1}).add(emr::kSELECTOBJECT, {1}).add(emr::kDELETECOLORSPACE, {1});
    builder.add(emr::kCREATECOLORSPACEW, {1, 0})
        .add(emr::kDELETEOBJECT, {1})
        .add(emr::kDELETEOBJECT, {static_cast<std::int32_t>(0x80000000U)});
    EXPECT_TRUE(playCleanly(builder).calls.empty());
}

}  // namespace
}  // namespace morvil::test
