// Glyph bits on surfaces.
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class TextOutTest : public EngineTest {
  protected:
    TextOutTest() {
        auto bitmap = std::make_shared<GlyphBitmap>();
        bitmap->origin = {-1, -2};
        bitmap->size = {10, 3};
        bitmap->rowBytes = 2;
        bitmap->bits = {0xC0, 0x40, 0x21, 0x00, 0xFF, 0xC0};
        glyph = bitmap;
    }
    GlyphRun run(std::initializer_list<POINTL> positions) const {
        GlyphRun result;
        for (const POINTL& position : positions) result.glyphs.push_back({.bitmap = glyph, .index = 0, .position = position});
        return result;
    }
    std::shared_ptr<const GlyphBitmap> glyph;
};

}  // namespace

TEST_F(TextOutTest, missingArguments_areRefused) {
    EngineSurface& surface = makeBitmap(4, 4, BMF_8BPP);
    EngineText text = makeText(run({{1, 2}}));
    EngineBrush fore = solidBrush(1);
    EXPECT_FALSE(EngTextOut(nullptr, &text, nullptr, nullptr, nullptr, nullptr, &fore, nullptr, nullptr, 0x0D0D));
    EXPECT_FALSE(EngTextOut(&surface, nullptr, nullptr, nullptr, nullptr, nullptr, &fore, nullptr, nullptr, 0x0D0D));
    EXPECT_FALSE(EngTextOut(&surface, &text, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0x0D0D));
}

TEST_F(TextOutTest, record_describesTheRun) {
    GlyphRun source = run({{1, 2}, {5, 2}});
    source.background = {1, 2, 3, 4};
    source.characters = {u'a', u'b'};
    const EngineText text = makeText(source);
    EXPECT_EQ(text.cGlyphs, 2U);
    EXPECT_EQ(text.rclBkGround.right, 3);
    ASSERT_NE(text.pwszOrg, nullptr);
    EXPECT_EQ(text.pwszOrg[1], u'b');
}

TEST_F(TextOutTest, opaqueRectangleFirst_thenGlyphs) {
    EngineText text = makeText(run({{2, 3}}));
    EngineBrush fore = solidBrush(1);
    EngineBrush back = solidBrush(2);
    for (const ULONG format : {BMF_4BPP, BMF_8BPP, BMF_24BPP}) {
        EngineSurface& surface = makeBitmap(12, 5, format);
        RECTL opaque{0, 1, 5, 3};
        POINTL origin{0, 0};
        ASSERT_TRUE(EngTextOut(&surface, &text, nullptr, nullptr, nullptr, &opaque, &fore, &back, &origin, 0x0D0D));
        EXPECT_EQ(picture(surface), "............\n21122.....1.\n22212...1...\n.1111111111.\n............\n") << format;
    }
}

TEST_F(TextOutTest, glyphsOutsideAndClipped_areCut) {
    EngineText text = makeText(run({{-3, 1}, {9, 4}, {1000, 1000}}));
    EngineBrush fore = solidBrush(1);
    EngineSurface& surface = makeBitmap(12, 5, BMF_1BPP);
    const RECTL parts[] = {{0, 0, 12, 3}, {10, 3, 12, 5}};
    EngineClip clip = makeClip(Region(parts), {0, 0, 12, 5}, {0, 0, 12, 5});
    ASSERT_TRUE(EngTextOut(&surface, &text, nullptr, &clip, nullptr, nullptr, &fore, nullptr, nullptr, 0x0D0D));
    EXPECT_EQ(picture(surface), "...1........\n111111......\n........11..\n..........1.\n..........11\n");
}

TEST_F(TextOutTest, glyphThatLies_isLeftOut) {
    auto bad = std::make_shared<GlyphBitmap>(*glyph);
    bad->bits.pop_back();
    glyph = bad;
    EngineText text = makeText(run({{2, 3}}));
    text.glyphs.push_back({});  // no bitmap at all
    EngineBrush fore = solidBrush(1);
    EngineSurface& surface = makeBitmap(6, 1, BMF_8BPP);
    EXPECT_TRUE(EngTextOut(&surface, &text, nullptr, nullptr, nullptr, nullptr, &fore, nullptr, nullptr, 0x0D0D));
    EXPECT_EQ(picture(surface), "......\n");
}
