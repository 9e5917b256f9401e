// Brushes made ready for a surface.
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class BrushTest : public EngineTest {
  protected:
    static std::string painted(EngineSurface& surface, const EngineBrush& brush) {
        RECTL all{0, 0, surface.sizlBitmap.cx, surface.sizlBitmap.cy};
        EngineBrush copy = brush;
        EXPECT_TRUE(EngBitBlt(&surface, nullptr, nullptr, nullptr, nullptr, &all, nullptr, nullptr, &copy, nullptr, 0xF0F0));
        return picture(surface);
    }
};

std::shared_ptr<Image> twoByTwo() {
    auto image = std::make_shared<Image>();
    image->width = image->height = 2;
    image->bitsPerPixel = 1;
    image->rowBytes = 4;
    image->topDown = true;
    image->bits = {0x80, 0, 0, 0, 0x40, 0, 0, 0};
    return image;
}

}  // namespace

TEST_F(BrushTest, nullBrush_leavesTheTarget) {
    EngineSurface& surface = makeBitmap(4, 2, BMF_8BPP);
    draw(surface, {"1234", "5678"});
    EngineBrush brush = realizeBrush(surface, Brush{.kind = BrushKind::Null}, true);
    EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(&brush), 0xFFFFFFFFU);
    EXPECT_EQ(painted(surface, brush), "1234\n5678\n");
    EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(nullptr), 0xFFFFFFFFU);
}

TEST_F(BrushTest, solidBrush_isTheNearestEntryAndTellsItsColour) {
    EngineSurface& surface = makeBitmap(4, 1, BMF_8BPP);
    givePalette(surface, {0x000000, 0x0000FF, 0xFFFFFF});
    EngineBrush brush = realizeBrush(surface, Brush{.kind = BrushKind::Solid, .colour = 0x1020E0}, false);
    EXPECT_EQ(brush.iSolidColor, 1U);
    EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(&brush), 0x1020E0U);
    EXPECT_EQ(painted(surface, brush), "1111\n");
}

TEST_F(BrushTest, ditheredBrush_hasNoIndexButItsColour) {
    EngineSurface& surface = makeBitmap(8, 8, BMF_1BPP);
    EngineBrush brush = realizeBrush(surface, Brush{.kind = BrushKind::Solid, .colour = 0x808080}, true);
    EXPECT_EQ(brush.iSolidColor, 0xFFFFFFFFU);
    EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(&brush), 0x808080U);
    const std::string text = painted(surface, brush);
    EXPECT_EQ(std::count(text.begin(), text.end(), '1'), 32);
    EngineBrush exact = realizeBrush(surface, Brush{.kind = BrushKind::Solid, .colour = 0xFFFFFF}, true);
    EXPECT_EQ(exact.iSolidColor, 1U);
    EXPECT_TRUE(exact.pattern.empty());
}

TEST_F(BrushTest, hatches_areLinesOnTheirBackground) {
    const struct {
        int hatch;
        const char* rows;
    } hatches[] = {
        {0, "22222222\n22222222\n22222222\n11111111\n22222222\n22222222\n22222222\n22222222\n"},
        {1, "22221222\n22221222\n22221222\n22221222\n22221222\n22221222\n22221222\n22221222\n"},
        {2, "12222222\n21222222\n22122222\n22212222\n22221222\n22222122\n22222212\n22222221\n"},
        {3, "22222221\n22222212\n22222122\n22221222\n22212222\n22122222\n21222222\n12222222\n"},
        {4, "22221222\n22221222\n22221222\n11111111\n22221222\n22221222\n22221222\n22221222\n"},
        {5, "12222221\n21222212\n22122122\n22211222\n22211222\n22122122\n21222212\n12222221\n"},
    };
    for (const auto& entry : hatches) {
        EngineSurface& surface = makeBitmap(8, 8, BMF_8BPP);
        givePalette(surface, {0x000000, 0x0000FF, 0xFFFFFF});
        Brush document{.kind = BrushKind::Hatch, .colour = 0x0000FF, .hatch = entry.hatch};
        EngineBrush brush = realizeBrush(surface, document, true);
        EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(&brush), 0xFFFFFFFFU);
        EXPECT_EQ(painted(surface, brush), entry.rows) << entry.hatch;
        document.transparent = true;
        EngineSurface& kept = makeBitmap(8, 8, BMF_8BPP);
        givePalette(kept, {0x000000, 0x0000FF, 0xFFFFFF});
        std::string open = entry.rows;
        std::replace(open.begin(), open.end(), '2', '.');
        EXPECT_EQ(painted(kept, realizeBrush(kept, document, true)), open) << entry.hatch;
    }
}

TEST_F(BrushTest, monochromePattern_takesTextAndBackground) {
    EngineSurface& surface = makeBitmap(4, 2, BMF_8BPP);
    givePalette(surface, {0x000000, 0x0000FF, 0xFFFFFF, 0x00FF00});
    Brush document{.kind = BrushKind::Pattern, .monochromePattern = true, .foreground = 0x0000FF, .background = 0x00FF00};
    document.pattern = twoByTwo();
    EXPECT_EQ(painted(surface, realizeBrush(surface, document, false)), "3131\n1313\n");
}

TEST_F(BrushTest, colouredPattern_keepsItsColours) {
    EngineSurface& surface = makeBitmap(5, 3, BMF_24BPP);
    auto image = twoByTwo();
    image->palette = {0x000004, 0x000005};
    Brush document{.kind = BrushKind::Pattern};
    document.pattern = image;
    document.origin = {1, 1};
    EngineBrush brush = realizeBrush(surface, document, true);
    EXPECT_EQ(brush.origin.x, 1);
    painted(surface, brush);
    for (LONG y = 0; y < 3; ++y) {
        for (LONG x = 0; x < 5; ++x) EXPECT_EQ(pixelAt(surface, x, y), (x + y) % 2 == 0 ? 0x050000U : 0x040000U) << x << ',' << y;
    }
}

TEST_F(BrushTest, patternThatLies_leavesTheTarget) {
    EngineSurface& surface = makeBitmap(2, 1, BMF_8BPP);
    draw(surface, {"12"});
    auto image = twoByTwo();
    image->bits.resize(3);
    Brush document{.kind = BrushKind::Pattern};
    document.pattern = image;
    EXPECT_EQ(painted(surface, realizeBrush(surface, document, true)), "12\n");
    document.pattern = nullptr;
    EXPECT_EQ(painted(surface, realizeBrush(surface, document, true)), "12\n");
}

TEST_F(BrushTest, tallPattern_isPackedRowByRow) {
    auto image = std::make_shared<Image>();
    image->width = 3;
    image->height = 40;
    image->bitsPerPixel = 8;
    image->rowBytes = 4;
    image->topDown = true;
    for (unsigned i = 0; i < 160; ++i) image->bits.push_back(static_cast<std::uint8_t>(i));
    EngineSurface& surface = makeBitmap(10, 100, BMF_8BPP);
    Brush document{.kind = BrushKind::Pattern};
    document.pattern = image;
    painted(surface, realizeBrush(surface, document, false));
    for (LONG y = 0; y < 100; ++y) {
        for (LONG x = 0; x < 10; ++x) ASSERT_EQ(pixelAt(surface, x, y), static_cast<ULONG>(y % 40 * 4 + x % 3));
    }
}
