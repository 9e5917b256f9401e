// Text records. Where glyphs matter, the tests compare with what the font itself says, whichever font it is; without any font
// they skip.
#include <gtest/gtest.h>

#include <cmath>

#include "engine/AnyFont.h"
#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

namespace emr = engine::emr;
using Kind = CanvasCall::Kind;

Bytes fontRecord(LONG height, LONG escapement = 0, bool underline = false, bool strikeOut = false, LONG width = 0) {
    Bytes body;
    body.all32({1, height, width, escapement, escapement, 400}).u8(0).u8(underline).u8(strikeOut).u8(0).zeros(4);
    return body.wide(u"Arial").zeros(64 - 10);
}

// One string in a text record; `options` and `rectangle` as in the format, advances of `dx` for each unit (0: none given).
Bytes textRecord(std::u16string_view text, std::int32_t x, std::int32_t y, std::uint32_t options, const RECTL& rectangle, std::int32_t dx,
                 std::uint32_t graphicsMode = 2) {
    const auto units = static_cast<std::uint32_t>(text.size());
    const std::uint32_t paddedText = (2 * units + 3) / 4 * 4;
    Bytes body;
    body.zeros(16).u32(graphicsMode).floats({1, 1}).i32(x).i32(y).u32(units).u32(76).u32(options);
    body.all32({rectangle.left, rectangle.top, rectangle.right, rectangle.bottom}).u32(dx == 0 ? 0 : 76 + paddedText);
    body.wide(text).padded();
    for (std::uint32_t i = 0; dx != 0 && i < units; ++i) body.i32(dx);
    return body;
}

MetafileBuilder withFont(const Bytes& font) {
    return MetafileBuilder()
        .add(emr::kSETBKMODE, {1})
        .add(emr::kEXTCREATEFONTINDIRECTW, font)
        .add(emr::kSELECTOBJECT, {1})
        .add(emr::kSETTEXTALIGN, {24});
}

std::vector<std::pair<LONG, LONG>> positions(const CanvasCall& call) {
    std::vector<std::pair<LONG, LONG>> all;
    for (const auto& glyph : call.run.glyphs) all.emplace_back(glyph.position.x, glyph.position.y);
    return all;
}
using Positions = std::vector<std::pair<LONG, LONG>>;

TEST(MetafileText, wide_placesGlyphsByTheRecordsAdvances) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder builder = withFont(fontRecord(-50));
    builder.add(emr::kSETTEXTCOLOR, {0x0000FF}).add(emr::kEXTTEXTOUTW, textRecord(u"Hol", 100, 200, 0, {}, 30));
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);
    const CanvasCall& call = played.calls[0];
    EXPECT_EQ(call.kind, Kind::Text);
    EXPECT_EQ(positions(call), (Positions{{100, 200}, {130, 200}, {160, 200}}));
    EXPECT_EQ(call.colour, 0x0000FFU);
    EXPECT_FALSE(call.opaque);
    EXPECT_EQ(call.run.characters, (std::vector<WCHAR>{'H', 'o', 'l'}));
    EXPECT_EQ(call.run.background.left, 100);
    EXPECT_EQ(call.run.background.right, 190);
    EXPECT_NE(call.run.font, 0U);
    const auto face = fonts.typeface(sans());
    EXPECT_EQ(call.run.glyphs[0].index, face->glyphOf('H'));
    EXPECT_EQ(call.run.glyphs[0].bitmap->size.cy, face->bitmap(face->glyphOf('H'), {50, 0, 0, -50, 0, 0})->size.cy);
}

TEST(MetafileText, withoutAdvances_theFontsOwnHold) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto face = fonts.typeface(sans());
    MetafileBuilder builder = withFont(fontRecord(-100));
    builder.add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 100, 200, 0, {}, 0));
    const auto expected = 100 + static_cast<LONG>(std::floor(face->advance(face->glyphOf('H')) * 100 + 0.5));
    EXPECT_EQ(positions(playCleanly(builder).calls.at(0)), (Positions{{100, 200}, {expected, 200}}));
}

TEST(MetafileText, alignment_movesTheText) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto metrics = fonts.typeface(sans())->metrics();
    const auto first = [](std::int32_t alignment) {
        MetafileBuilder builder = withFont(fontRecord(-100));
        builder.add(emr::kSETTEXTALIGN, {alignment}).add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 300, 400, 0, {}, 30));
        return positions(playCleanly(builder).calls.at(0)).at(0);
    };
    const auto ascent = static_cast<LONG>(std::floor(metrics.ascent * 100 + 0.5));
    EXPECT_EQ(first(24), std::pair(300, 400));
    EXPECT_EQ(first(24 | 2), std::pair(240, 400));
    EXPECT_EQ(first(24 | 6), std::pair(270, 400));
    EXPECT_EQ(first(0), std::pair(300, 400 + ascent));
    EXPECT_NEAR(first(8).second, 400 - metrics.descent * 100, 0.51);
}

TEST(MetafileText, currentPosition_isUsedAndMoved) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder builder = withFont(fontRecord(-20));
    builder.add(emr::kSETTEXTALIGN, {25}).add(emr::kMOVETOEX, {50, 60});
    builder.add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 300, 400, 0, {}, 30)).add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 300, 400, 0, {}, 30));
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 2U);
    EXPECT_EQ(positions(played.calls[0]), (Positions{{50, 60}, {80, 60}}));
    EXPECT_EQ(positions(played.calls[1]), (Positions{{110, 60}, {140, 60}}));
}

TEST(MetafileText, escapement_turnsTextAndAdvances) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    for (const std::uint32_t mode : {1U, 2U}) {
        MetafileBuilder builder = withFont(fontRecord(-100, 900));
        builder.add(emr::kEXTTEXTOUTW, textRecord(u"ll", 300, 400, 0, {}, 30, mode));
        const CanvasCall call = playCleanly(builder).calls.at(0);
        EXPECT_EQ(positions(call), (Positions{{300, 400}, {300, 370}}));
        EXPECT_GT(call.run.glyphs[0].bitmap->size.cx, 2 * call.run.glyphs[0].bitmap->size.cy);
    }
}

TEST(MetafileText, compatibleMode_keepsTextUprightWhenTheAxisIsFlipped) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto glyphTop = [](std::uint32_t mode) {
        MetafileBuilder builder = withFont(fontRecord(-100));
        builder.add(emr::kSETMAPMODE, {8}).add(emr::kSETVIEWPORTEXTEX, {1, -1}).add(emr::kSETVIEWPORTORGEX, {0, 500});
        builder.add(emr::kEXTTEXTOUTW, textRecord(u"l", 100, 200, 0, {}, 30, mode));
        const CanvasCall call = playCleanly(builder).calls.at(0);
        EXPECT_EQ(positions(call), (Positions{{100, 300}}));
        return call.run.glyphs[0].bitmap->origin.y;
    };
    EXPECT_LT(glyphTop(1), -50);
    EXPECT_GE(glyphTop(2), -5);  // follows the transform
}

TEST(MetafileText, rectangles_fillAndClip) {
    MetafileBuilder builder = withFont(fontRecord(-50));
    builder.add(emr::kSETBKCOLOR, {0x00FF00});
    builder.add(emr::kEXTTEXTOUTW, textRecord(u"", 100, 200, 2, {10, 20, 60, 70}, 0));
    const auto played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);  // an empty text still fills its rectangle
    EXPECT_EQ(played.calls[0].kind, Kind::PatBlt);
    EXPECT_EQ(describe(played.calls[0].target), "10,20 60,70");
    EXPECT_EQ(played.calls[0].brush.colour, 0x00FF00U);
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder clipped = withFont(fontRecord(-50));
    clipped.add(emr::kEXTTEXTOUTW, textRecord(u"H", 100, 200, 4, {10, 20, 60, 70}, 0)).add(emr::kLINETO, {5, 5});
    const auto calls = playCleanly(clipped).calls;
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].clip, "10,20 60,70");
    EXPECT_EQ(calls[1].clip, "all");
}

TEST(MetafileText, opaqueBackground_isTheCellBox) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder builder = withFont(fontRecord(-100));
    builder.add(emr::kSETBKMODE, {2}).add(emr::kSETBKCOLOR, {0x00FF00}).add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 300, 400, 0, {}, 30));
    const CanvasCall call = playCleanly(builder).calls.at(0);
    ASSERT_TRUE(call.opaque);
    EXPECT_EQ(describe(*call.opaque), describe(call.run.background));
    EXPECT_EQ(call.opaque->left, 300);
    EXPECT_EQ(call.opaque->right, 360);
    EXPECT_LT(call.opaque->top, 320);
    EXPECT_GT(call.opaque->bottom, 400);
    EXPECT_EQ(call.background, 0x00FF00U);
    // Turned, the box is a figure of its own below the glyphs.
    MetafileBuilder turned = withFont(fontRecord(-100, 450));
    turned.add(emr::kSETBKMODE, {2}).add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 300, 400, 0, {}, 30));
    const auto calls = playCleanly(turned).calls;
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].kind, Kind::Fill);
    EXPECT_FALSE(calls[1].opaque);
}

TEST(MetafileText, underlineAndStrikeOut_areFilledRectangles) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder builder = withFont(fontRecord(-100, 0, true, true));
    builder.add(emr::kSETTEXTCOLOR, {0xFF}).add(emr::kEXTTEXTOUTW, textRecord(u"Hl", 300, 400, 0, {}, 30));
    const auto calls = playCleanly(builder).calls;
    ASSERT_EQ(calls.size(), 3U);
    const RECTL under = calls[1].path.bounds();
    const RECTL through = calls[2].path.bounds();
    EXPECT_EQ(under.left, 300 * 16);
    EXPECT_EQ(under.right, 360 * 16 + 1);
    EXPECT_GE(under.top, 400 * 16);
    EXPECT_LT(through.bottom, 400 * 16);
    EXPECT_EQ(calls[1].brush.colour, 0xFFU);
}

TEST(MetafileText, largeText_isFilledAsOutlines) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder builder = withFont(fontRecord(-5000));
    builder.add(emr::kEXTTEXTOUTW, textRecord(u"H", 300, 400, 0, {}, 30));
    const auto calls = playCleanly(builder).calls;
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].kind, Kind::Fill);
    EXPECT_EQ(calls[0].mode, engine::FillMode::Winding);
    EXPECT_GT(calls[0].path.bounds().right - calls[0].path.bounds().left, 1000 * 16);
}

TEST(MetafileText, insideAPath_givesOutlines) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    MetafileBuilder builder = withFont(fontRecord(-100));
    builder.add(emr::kBEGINPATH).add(emr::kEXTTEXTOUTW, textRecord(u"lo", 300, 400, 0, {}, 90)).add(emr::kENDPATH).add(emr::kSTROKEPATH);
    const auto calls = playCleanly(builder).calls;
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].kind, Kind::Stroke);
    EXPECT_GE(calls[0].path.subpaths().size(), 3U);
    EXPECT_GT(calls[0].path.bounds().right, 390 * 16);
}

TEST(MetafileText, narrowSmallAndSeveral_placeTheirTexts) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    Bytes narrow;
    narrow.zeros(16).u32(2).floats({1, 1}).all32({10, 90, 2, 76, 0, 0, 0, 0, 0, 80}).narrow("Hl").padded().all32({20, 20});
    const auto narrowCalls = playCleanly(withFont(fontRecord(-20)).add(emr::kEXTTEXTOUTA, narrow)).calls;
    ASSERT_EQ(narrowCalls.size(), 1U);
    EXPECT_EQ(positions(narrowCalls[0]), (Positions{{10, 90}, {30, 90}}));

    const Bytes small = Bytes().all32({10, 90, 2, 0x300, 2}).floats({1, 1}).narrow("Hl").padded();
    EXPECT_EQ(positions(playCleanly(withFont(fontRecord(-20)).add(emr::kSMALLTEXTOUT, small)).calls.at(0)).at(0), std::pair(10, 90));
    const Bytes smallWide = Bytes().all32({10, 90, 1, 2, 2}).floats({1, 1}).all32({0, 0, 5, 6}).wide(u"H").padded();
    const auto withRectangle = playCleanly(withFont(fontRecord(-20)).add(emr::kSMALLTEXTOUT, smallWide)).calls;
    ASSERT_EQ(withRectangle.size(), 2U);
    EXPECT_EQ(describe(withRectangle[0].target), "0,0 5,6");

    Bytes several;
    several.zeros(16).u32(2).floats({1, 1}).u32(2);
    several.all32({10, 90, 1, 120, 0, 0, 0, 0, 0, 0}).all32({50, 91, 1, 122, 0, 0, 0, 0, 0, 0}).wide(u"Hl");
    const auto severalCalls = playCleanly(withFont(fontRecord(-20)).add(emr::kPOLYTEXTOUTW, several)).calls;
    ASSERT_EQ(severalCalls.size(), 2U);
    EXPECT_EQ(positions(severalCalls[1]), (Positions{{50, 91}}));
    Bytes severalNarrow;
    severalNarrow.zeros(16).u32(2).floats({1, 1}).u32(1).all32({10, 90, 1, 80, 0, 0, 0, 0, 0, 0}).narrow("H").padded();
    EXPECT_EQ(positions(playCleanly(withFont(fontRecord(-20)).add(emr::kPOLYTEXTOUTA, severalNarrow)).calls.at(0)), (Positions{{10, 90}}));
}

TEST(MetafileText, glyphIndexesAndVerticalAdvances) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    Bytes indexes;
    indexes.zeros(16).u32(2).floats({1, 1}).all32({10, 90, 2, 76, 0x10, 0, 0, 0, 0, 80}).u16(40).u16(41).all32({20, 20});
    const auto call = playCleanly(withFont(fontRecord(-20)).add(emr::kEXTTEXTOUTW, indexes)).calls.at(0);
    EXPECT_EQ(call.run.glyphs.at(1).index, 41U);
    Bytes pairs;
    pairs.zeros(16).u32(2).floats({1, 1}).all32({10, 90, 2, 76, 0x2000, 0, 0, 0, 0, 80}).wide(u"Hl").all32({20, 5, 20, 5});
    EXPECT_EQ(positions(playCleanly(withFont(fontRecord(-20)).add(emr::kEXTTEXTOUTW, pairs)).calls.at(0)), (Positions{{10, 90}, {30, 85}}));
}

TEST(MetafileText, justification_spreadsOverBlanks) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto last = [](std::int32_t extra, std::int32_t count) {
        MetafileBuilder builder = withFont(fontRecord(-20));
        builder.add(emr::kSETTEXTJUSTIFICATION, {extra, count}).add(emr::kEXTTEXTOUTW, textRecord(u"a b c", 10, 90, 0, {}, 0));
        return positions(playCleanly(builder).calls.at(0)).back().first;
    };
    EXPECT_EQ(last(40, 2), last(0, 0) + 40);
}

TEST(MetafileText, damaged_isDamage) {
    const auto at = [](Bytes body, std::size_t offset, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) body.data()[offset - 8 + i] = static_cast<std::uint8_t>(value >> (8 * i));
        return body;
    };
    const Bytes good = textRecord(u"Hl", 1, 2, 0, {}, 30);
    const struct {
        ULONG type;
        Bytes body;
    } cases[] = {
        {emr::kEXTTEXTOUTW, at(good, 44, 0xFFFFFFFF)},  {emr::kEXTTEXTOUTW, at(good, 48, 0xFFFFFFFC)},
        {emr::kEXTTEXTOUTW, at(good, 72, 0xFFFFFFFC)},  {emr::kEXTTEXTOUTW, at(good, 44, 9)},
        {emr::kEXTTEXTOUTW, at(good, 72, 84)},          {emr::kEXTTEXTOUTA, at(good, 44, 100)},
        {emr::kPOLYTEXTOUTW, at(good, 36, 0x10000000)}, {emr::kSMALLTEXTOUT, Bytes().all32({1, 2, -1, 0x100, 2, 0, 0})},
    };
    for (const auto& c : cases) {
        const auto played = play(withFont(fontRecord(-20)).add(c.type, c.body));
        EXPECT_TRUE(played.damage) << c.type;
        EXPECT_TRUE(played.calls.empty()) << c.type;
    }
    // Many strings that all point to the same long text.
    Bytes many;
    many.zeros(16).u32(2).floats({1, 1}).u32(100);
    for (int i = 0; i < 100; ++i) many.all32({1, 2, 4000, 8, 0, 0, 0, 0, 0, 0});
    many.zeros(4000);
    EXPECT_NE(play(withFont(fontRecord(-20)).add(emr::kPOLYTEXTOUTA, many)).reason().find("more characters than the record can hold"),
              std::string::npos);
}

TEST(MetafileText, absurdFonts_comeBack) {
    for (const LONG height : {0, 1, -1, INT32_MAX, INT32_MIN, -100000}) {
        for (const LONG width : {0, INT32_MAX, INT32_MIN}) {
            MetafileBuilder builder = withFont(fontRecord(height, INT32_MIN, true, true, width));
            builder.add(emr::kSETBKMODE, {2})
                .add(emr::kEXTTEXTOUTW, textRecord(u"Hl\u4e2d\U0001F600", INT32_MAX, INT32_MIN, 6, {}, INT32_MAX));
            EXPECT_FALSE(play(builder).damage);
        }
    }
}

}  // namespace
}  // namespace morvil::test
