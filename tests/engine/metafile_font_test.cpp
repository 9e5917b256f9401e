// Characters of documents and fonts of this machine. Where glyphs matter, the tests compare with what the font itself says,
// whichever font it is; without any font they skip.
#include <gtest/gtest.h>

#include "engine/AnyFont.h"
#include "engine/text/CodePage.h"
#include "support/MetafileBuilder.h"

namespace morvil::test {
namespace {

std::u32string decoded(const std::vector<engine::TextCharacter>& characters, std::size_t units) {
    std::u32string text;
    std::size_t sum = 0;
    for (const auto& character : characters) {
        text += character.character;
        sum += character.units;
    }
    EXPECT_EQ(sum, units);
    return text;
}

TEST(CodePage, narrowTexts_followTheCharacterSet) {
    const struct {
        unsigned charSet;
        std::vector<std::uint8_t> bytes;
        std::u32string expected;
    } cases[] = {
        {0, {'A', 0x80, 0xE4}, U"A\u20AC\u00E4"},
        {99, {0xE4}, U"\u00E4"},
        {2, {'A', 0x80, 0xE4}, U"A\u0080\u00E4"},
        {204, {0xC0, 'b'}, U"\u0410b"},
        {161, {0xE1}, U"\u03B1"},
        {238, {0xA3}, U"\u0141"},
        {163, {0x41, 0xC2}, U"A\u00C2"},
        {128, {0x82, 0xA0, 'x', 0xB1}, U"\u3042x\uFF71"},
        {128, {'x', 0x82}, U"x\uFFFD"},
        {0, {0x81, 'x'}, U"\uFFFDx"},
        {0, {0, 'x'}, std::u32string(U"\0x", 2)},
        {0, {}, U""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(decoded(engine::decodeNarrow(c.bytes, static_cast<BYTE>(c.charSet)), c.bytes.size()), c.expected) << c.charSet;
    }
}

TEST(CodePage, wideTexts_joinSurrogates) {
    const auto wide = [](std::u16string_view text) {
        const Bytes bytes = Bytes().wide(text);
        return decoded(engine::decodeWide(bytes.data()), text.size());
    };
    EXPECT_EQ(wide(u"A\u00E4"), U"A\u00E4");
    EXPECT_EQ(wide(u"\U0001F600!"), U"\U0001F600!");
    const char16_t lone[] = {0xD83D, u'x', 0xDE00};
    EXPECT_EQ(wide({lone, 3}), U"\uFFFDx\uFFFD");
    const char16_t last[] = {u'x', 0xD83D};
    EXPECT_EQ(wide({last, 2}), U"x\uFFFD");
}

TEST(Typeface, bitmaps_scaleAndTurnWithTheTransform) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto face = fonts.typeface(sans());
    const ULONG glyph = face->glyphOf('l');
    const auto upright = face->bitmap(glyph, {200, 0, 0, -200, 0, 0});
    const auto twice = face->bitmap(glyph, {400, 0, 0, -400, 0, 0});
    const auto turned = face->bitmap(glyph, {0, -200, -200, 0, 0, 0});
    ASSERT_GT(upright->size.cy, upright->size.cx);
    EXPECT_LT(upright->origin.y, -100);  // stands above its base line
    EXPECT_LE(upright->origin.y + upright->size.cy, 5);
    EXPECT_EQ(upright->rowBytes, (upright->size.cx + 7) / 8);
    EXPECT_EQ(upright->bits.size(), static_cast<std::size_t>(upright->rowBytes * upright->size.cy));
    EXPECT_NEAR(twice->size.cy, 2 * upright->size.cy, 4);
    EXPECT_NEAR(turned->size.cx, upright->size.cy, 4);  // up has become left
    EXPECT_NEAR(turned->size.cy, upright->size.cx, 4);
    EXPECT_LT(turned->origin.x, -100);
    EXPECT_TRUE(face->bitmap(glyph, {0.1, 0, 0, -0.1, 0, 0})->bits.empty());
    EXPECT_TRUE(face->bitmap(glyph, {1e7, 0, 0, -1e7, 0, 0})->bits.empty());
    EXPECT_TRUE(face->bitmap(glyph, {200, 0, 0, 0, 0, 0})->bits.empty());
    EXPECT_TRUE(face->bitmap(0xFFFFFF, {200, 0, 0, -200, 0, 0})->bits.empty());
}

TEST(Typeface, outlines_coverTheSameBoxAsBitmaps) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto face = fonts.typeface(sans());
    engine::Path path;
    face->addOutline(face->glyphOf('H'), {200, 0, 0, -200, 50, 300}, path);
    const auto bitmap = face->bitmap(face->glyphOf('H'), {200, 0, 0, -200, 0, 0});
    ASSERT_FALSE(path.empty());
    const RECTL box = path.bounds();
    EXPECT_NEAR(box.left / 16.0, 50 + bitmap->origin.x, 2.0);
    EXPECT_NEAR(box.top / 16.0, 300 + bitmap->origin.y, 2.0);
    EXPECT_NEAR(box.right / 16.0, 50 + bitmap->origin.x + bitmap->size.cx, 2.0);
    EXPECT_NEAR(box.bottom / 16.0, 300, 2.0);
    for (const engine::Subpath& figure : path.subpaths()) EXPECT_TRUE(figure.closed);
    engine::Path round;
    face->addOutline(face->glyphOf('o'), {200, 0, 0, -200, 0, 0}, round);
    EXPECT_TRUE(round.hasBeziers());
    EXPECT_EQ(round.subpaths().size(), 2U);
}

TEST(FontLibrary, requestsAndTransforms_areRemembered) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    const auto face = fonts.typeface(sans());
    EXPECT_EQ(fonts.typeface(sans(-7)), face);
    const auto small = fonts.realise(face, {10, 0, 0, -10, 0, 0});
    const auto large = fonts.realise(face, {20, 0, 0, -20, 0, 0});
    EXPECT_EQ(fonts.realise(face, {10, 0, 0, -10, 3, 4}), small);  // the shift is no part of it
    EXPECT_NE(small->number(), 0U);
    EXPECT_NE(small->number(), large->number());
    EXPECT_EQ(small->glyph(face->glyphOf('H')), small->glyph(face->glyphOf('H')));
    for (int size = 1; size < 600; ++size) fonts.realise(face, {1.0 * size, 0, 0, -1.0 * size, 0, 0});  // bounded, and still right
    EXPECT_EQ(small->glyph(face->glyphOf('H'))->size.cy, face->bitmap(face->glyphOf('H'), {10, 0, 0, -10, 0, 0})->size.cy);
}

TEST(FontLibrary, unknownFamilies_findSomething) {
    engine::FontLibrary fonts;
    REQUIRE_FONT(fonts);
    LOGFONTW font = sans();
    copyText(font.lfFaceName, TEXT("No Such Family Anywhere"));
    EXPECT_NE(fonts.typeface(font), nullptr);
    font.lfFaceName[0] = 0;
    font.lfWeight = 900;
    font.lfItalic = 1;
    font.lfCharSet = 204;
    EXPECT_NE(fonts.typeface(font), nullptr);
    EXPECT_EQ(fonts.typefaceWith(font, 0x10FFFE), nullptr);  // no font holds a non-character
}

}  // namespace
}  // namespace morvil::test
