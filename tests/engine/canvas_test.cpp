// What reaches the driver, and in which form, by hooks and capability flags; what the engine draws itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineState.h"
#include "engine/FakeDriver.h"
#include "engine/Pixels.h"

namespace morvil::engine {
namespace {

constexpr XFORM kIdentity{1, 0, 0, 1, 0, 0};
constexpr int kCopyPen = 13;

class Drawing : public PageSource {
  public:
    explicit Drawing(std::function<void(Canvas&)> draw) : m_draw(std::move(draw)) {}
    void play(Canvas& canvas) override { m_draw(canvas); }

  private:
    std::function<void(Canvas&)> m_draw;
};

Path line(double x1, double y1, double x2, double y2) {
    const auto fix = [](double v) { return static_cast<FIX>(v * kFixOne); };
    Path path;
    path.moveTo({fix(x1), fix(y1)});
    path.lineTo({fix(x2), fix(y2)});
    return path;
}

Path rectangle(LONG left, LONG top, LONG right, LONG bottom) {
    Path path;
    path.moveTo({left * 16, top * 16});
    path.lineTo({right * 16, top * 16});
    path.lineTo({right * 16, bottom * 16});
    path.lineTo({left * 16, bottom * 16});
    path.close();
    return path;
}

Path curve() {
    Path path;
    path.moveTo({0, 0});
    path.bezierTo({160, 0}, {160, 160}, {320, 160});
    return path;
}

Pen thinPen(COLORREF colour) {
    Pen pen;
    pen.brush.colour = colour;
    return pen;
}

Pen widePen(double width) {
    Pen pen;
    pen.geometric = true;
    pen.width = width;
    return pen;
}

Image picture(LONG width, LONG height) {
    Image image;
    image.width = width;
    image.height = height;
    image.bitsPerPixel = 24;
    image.rowBytes = (width * 3 + 3) / 4 * 4;
    image.topDown = true;
    image.bits.assign(static_cast<std::size_t>(image.rowBytes * height), 0x40);
    return image;
}

class CanvasCalls : public testing::Test {
  protected:
    void TearDown() override { resetEngineState(); }

    PageReport draw(const std::function<void(Canvas&)>& calls) {
        PrintRequest request;
        request.enableDriver = &FakeDriver::enable;
        request.printerName = TEXT("Morvil");
        request.pages.push_back({std::make_shared<Drawing>(calls), std::vector<std::uint8_t>(sizeof(DEVMODEW))});
        const PrintReport report = printDocument(request);
        EXPECT_EQ(report.status, PrintStatus::Done) << report.reason;
        return report.pages.empty() ? PageReport{} : report.pages.front();
    }
    // The drawing calls that reached the driver.
    [[nodiscard]] std::vector<std::string> drawn() const {
        std::vector<std::string> list;
        for (const std::string& call : driver.calls) {
            for (const char* const kind : {"DrvStroke", "DrvFill", "DrvBitBlt", "DrvStretchBlt", "DrvCopyBits", "DrvTextOut", "DrvGetGlyphMode", "DrvDither"}) {
                if (call.starts_with(kind)) list.push_back(call);
            }
        }
        return list;
    }
    FakeDriver driver;
};

TEST_F(CanvasCalls, null_pen_and_null_brush_draw_nothing) {
    Pen none;
    none.null = true;
    Brush hollow;
    hollow.kind = BrushKind::Null;
    draw([&](Canvas& canvas) {
        canvas.strokePath(line(1, 1, 5, 5), none, kIdentity, kCopyPen);
        canvas.fillPath(rectangle(1, 1, 5, 5), hollow, FillMode::Alternate, kCopyPen);
        canvas.strokeAndFillPath(rectangle(1, 1, 5, 5), none, kIdentity, hollow, FillMode::Alternate, kCopyPen);
        canvas.strokePath(Path(), thinPen(0), kIdentity, kCopyPen);
    });
    EXPECT_THAT(drawn(), testing::IsEmpty());
}

TEST_F(CanvasCalls, thin_line_reaches_the_driver_with_its_colour) {
    const PageReport page = draw([](Canvas& canvas) { canvas.strokePath(line(1, 2, 20.5, 2), thinPen(0x0000FF), kIdentity, kCopyPen); });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvStrokePath cCurves=1 fl=0 B(1,2)(20.5,2) colour=255 line=0 styles=0 mix=3341 xform=0 clip=0"));
    EXPECT_EQ(page.strokesToDriver, 1U);
}

TEST_F(CanvasCalls, line_that_the_driver_answers_false_is_drawn_into_the_surface) {
    driver.refuses = {"DrvStrokePath"};
    const PageReport page = draw([](Canvas& canvas) { canvas.strokePath(line(1, 2, 20, 2), thinPen(0), kIdentity, kCopyPen); });
    EXPECT_EQ(page.strokesToDriver, 0U);
    EXPECT_EQ(page.strokesByEngine, 1U);
}

TEST_F(CanvasCalls, dashed_wide_line_takes_from_the_pages_budget) {
    Pen dashed = widePen(4);
    dashed.style = {3.0F, 2.0F};
    draw([&](Canvas& canvas) {
        canvas.strokePath(line(1, 2, 20, 2), dashed, kIdentity, kCopyPen);
        DashBudget& budget = canvas.dashBudget();
        double left = 0.0;
        for (budget.beginPath(); budget.take(DashBudget::kMostOfOnePath); budget.beginPath()) left += DashBudget::kMostOfOnePath;
        EXPECT_EQ(left, DashBudget::kMost - DashBudget::kMostOfOnePath) << "the last share is no longer whole";
    });
}

TEST_F(CanvasCalls, unhooked_stroke_is_the_engines) {
    driver.hooks = 0;
    const PageReport page = draw([](Canvas& canvas) { canvas.strokePath(line(1, 2, 20, 2), thinPen(0), kIdentity, kCopyPen); });
    EXPECT_THAT(drawn(), testing::IsEmpty());
    EXPECT_EQ(page.strokesByEngine, 1U);
}

TEST_F(CanvasCalls, curves_are_flattened_unless_the_driver_takes_them) {
    draw([](Canvas& canvas) { canvas.strokePath(curve(), thinPen(0), kIdentity, kCopyPen); });
    ASSERT_EQ(drawn().size(), 1U);
    EXPECT_EQ(drawn()[0].find("z("), std::string::npos);
    driver.calls.clear();
    driver.graphicsCaps |= GCAPS_BEZIERS;
    draw([](Canvas& canvas) { canvas.strokePath(curve(), thinPen(0), kIdentity, kCopyPen); });
    ASSERT_EQ(drawn().size(), 1U);
    EXPECT_NE(drawn()[0].find("fl=1 "), std::string::npos) << drawn()[0];
}

TEST_F(CanvasCalls, refused_curve_comes_again_flattened) {
    driver.graphicsCaps |= GCAPS_BEZIERS;
    driver.refuses = {"DrvStrokePath"};
    const PageReport page = draw([](Canvas& canvas) { canvas.strokePath(curve(), thinPen(0), kIdentity, kCopyPen); });
    ASSERT_EQ(drawn().size(), 2U);
    EXPECT_NE(drawn()[0].find("fl=1 "), std::string::npos);
    EXPECT_NE(drawn()[1].find("fl=0 "), std::string::npos);
    EXPECT_EQ(page.strokesByEngine, 1U);
}

TEST_F(CanvasCalls, wide_line_comes_as_the_winding_fill_of_its_outline) {
    const PageReport page = draw([](Canvas& canvas) { canvas.strokePath(line(5, 5, 20, 5), widePen(4), kIdentity, kCopyPen); });
    ASSERT_EQ(drawn().size(), 1U);
    EXPECT_TRUE(drawn()[0].starts_with("DrvFillPath")) << drawn()[0];
    EXPECT_TRUE(drawn()[0].ends_with("options=2")) << drawn()[0];
    EXPECT_EQ(page.strokesByEngine, 1U);
}

// A geometric line is wide from more than one and a half device pixels on; below, only its path counts.
TEST_F(CanvasCalls, geometric_line_of_up_to_one_and_a_half_pixels_is_a_thin_line) {
    const XFORM tenfold{10, 0, 0, 10, 0, 0};
    Pen dashed = widePen(0.15);
    dashed.style = {2.0F, 0.1F};
    draw([&](Canvas& canvas) {
        canvas.strokePath(line(5, 5, 20, 5), widePen(0.15), tenfold, kCopyPen);
        canvas.strokePath(line(5, 5, 20, 5), widePen(0.16), tenfold, kCopyPen);
        canvas.strokePath(line(5, 5, 20, 5), dashed, tenfold, kCopyPen);
    });
    ASSERT_EQ(drawn().size(), 3U);
    EXPECT_NE(drawn()[0].find("line=0 styles=0"), std::string::npos) << drawn()[0];
    EXPECT_TRUE(drawn()[1].starts_with("DrvFillPath")) << drawn()[1];
    EXPECT_NE(drawn()[2].find("line=8 styles=2"), std::string::npos) << drawn()[2];
}

TEST_F(CanvasCalls, wide_line_reaches_a_driver_that_takes_wide_lines_with_its_transform) {
    driver.graphicsCaps |= GCAPS_GEOMETRICWIDE;
    draw([](Canvas& canvas) { canvas.strokePath(line(5, 5, 20, 5), widePen(4), kIdentity, kCopyPen); });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvStrokePath cCurves=1 fl=0 B(5,5)(20,5) colour=0 line=1 styles=0 mix=3341 xform=1 clip=0"));
}

TEST_F(CanvasCalls, refused_wide_line_comes_as_a_fill) {
    driver.graphicsCaps |= GCAPS_GEOMETRICWIDE;
    driver.refuses = {"DrvStrokePath"};
    draw([](Canvas& canvas) { canvas.strokePath(line(5, 5, 20, 5), widePen(4), kIdentity, kCopyPen); });
    ASSERT_EQ(drawn().size(), 2U);
    EXPECT_TRUE(drawn()[0].starts_with("DrvStrokePath"));
    EXPECT_TRUE(drawn()[1].starts_with("DrvFillPath"));
}

TEST_F(CanvasCalls, dashed_and_alternate_pens_say_so) {
    Pen dashed = thinPen(0);
    dashed.style = {3, 1};
    Pen alternate = thinPen(0);
    alternate.alternate = true;
    draw([&](Canvas& canvas) {
        canvas.strokePath(line(1, 2, 20, 2), dashed, kIdentity, kCopyPen);
        canvas.strokePath(line(1, 2, 20, 2), alternate, kIdentity, kCopyPen);
    });
    ASSERT_EQ(drawn().size(), 2U);
    EXPECT_NE(drawn()[0].find("line=8 styles=2"), std::string::npos) << drawn()[0];
    EXPECT_NE(drawn()[1].find("line=2 styles=0"), std::string::npos) << drawn()[1];
}

TEST_F(CanvasCalls, fill_is_offered_in_the_modes_of_the_capability_flags) {
    Brush black;
    draw([&](Canvas& canvas) {
        canvas.fillPath(rectangle(1, 1, 5, 5), black, FillMode::Alternate, kCopyPen);
        canvas.fillPath(rectangle(1, 1, 5, 5), black, FillMode::Winding, kCopyPen);
    });
    ASSERT_EQ(drawn().size(), 1U);
    EXPECT_TRUE(drawn()[0].ends_with("options=1"));
}

TEST_F(CanvasCalls, refused_fill_is_drawn_by_the_engine) {
    driver.refuses = {"DrvFillPath"};
    const PageReport page = draw([](Canvas& canvas) { canvas.fillPath(curve(), Brush{}, FillMode::Alternate, kCopyPen); });
    EXPECT_EQ(drawn().size(), 1U);
    EXPECT_EQ(page.fills, 1U);
}

TEST_F(CanvasCalls, outline_with_interior_is_offered_whole_then_in_two_calls) {
    driver.graphicsCaps |= GCAPS_BEZIERS;
    driver.refuses = {"DrvStrokeAndFillPath"};
    Path closed = curve();
    closed.close();
    draw([&](Canvas& canvas) { canvas.strokeAndFillPath(closed, thinPen(0), kIdentity, Brush{}, FillMode::Alternate, kCopyPen); });
    ASSERT_EQ(drawn().size(), 4U);
    EXPECT_TRUE(drawn()[0].starts_with("DrvStrokeAndFillPath")) << drawn()[0];
    EXPECT_NE(drawn()[0].find("fl=1 "), std::string::npos);
    EXPECT_TRUE(drawn()[1].starts_with("DrvStrokeAndFillPath"));
    EXPECT_NE(drawn()[1].find("fl=0 "), std::string::npos);
    EXPECT_TRUE(drawn()[2].starts_with("DrvFillPath"));
    EXPECT_TRUE(drawn()[3].starts_with("DrvStrokePath"));
}

TEST_F(CanvasCalls, accepted_outline_with_interior_ends_there) {
    draw([](Canvas& canvas) { canvas.strokeAndFillPath(rectangle(1, 1, 9, 9), thinPen(0), kIdentity, Brush{}, FillMode::Alternate, kCopyPen); });
    EXPECT_EQ(drawn().size(), 1U);
}

TEST_F(CanvasCalls, pattern_blit_is_clipped_to_the_page_and_to_one_rectangle) {
    draw([](Canvas& canvas) {
        canvas.patBlt({-5, -5, 10, 10}, Brush{}, 0xF0);
        canvas.setClip(Region(RECTL{4, 4, 8, 8}));
        canvas.patBlt({0, 0, 40, 30}, Brush{}, 0xF0);
        canvas.setClip(Region(RECTL{4, 4, 8, 8}));
        canvas.patBlt({20, 20, 30, 30}, Brush{}, 0xF0);
    });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvBitBlt (0,0,10,10) rop=61680 source=0 clip=0", "DrvBitBlt (4,4,8,8) rop=61680 source=0 clip=0"));
}

TEST_F(CanvasCalls, complex_clip_comes_beside_the_call) {
    Region two(RECTL{0, 0, 4, 4});
    two.unite(Region(RECTL{10, 10, 14, 14}));
    draw([&](Canvas& canvas) {
        canvas.setClip(two);
        canvas.patBlt({0, 0, 40, 30}, Brush{}, 0xF0);
        canvas.strokePath(line(0, 0, 20, 20), thinPen(0), kIdentity, kCopyPen);
    });
    ASSERT_EQ(drawn().size(), 2U);
    EXPECT_TRUE(drawn()[0].ends_with("clip=3"));
    EXPECT_TRUE(drawn()[1].ends_with("clip=3"));
    EXPECT_NE(drawn()[1].find("(0,0)(20,20)"), std::string::npos);  // the path itself is not clipped
}

TEST_F(CanvasCalls, image_of_the_same_size_is_copied) {
    draw([](Canvas& canvas) { canvas.drawImage({-2, 1, 8, 6}, picture(10, 5), {0, 0, 10, 5}, COLORONCOLOR, 0xCCCC, Brush{}, nullptr, {}); });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvCopyBits (0,1,8,6) from (2,0)"));
}

TEST_F(CanvasCalls, image_of_another_size_is_stretched_also_mirrored) {
    draw([](Canvas& canvas) {
        canvas.drawImage({0, 0, 20, 10}, picture(10, 5), {0, 0, 10, 5}, COLORONCOLOR, 0xCCCC, Brush{}, nullptr, {});
        canvas.drawImage({20, 0, 0, 10}, picture(20, 10), {0, 0, 20, 10}, HALFTONE, 0xCCCC, Brush{}, nullptr, {});
    });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvStretchBlt (0,0,20,10) from (0,0,10,5) mode=3", "DrvStretchBlt (20,0,0,10) from (0,0,20,10) mode=4"));
}

TEST_F(CanvasCalls, image_with_a_raster_operation_is_a_blit_and_stretched_by_the_engine) {
    const PageReport page = draw([](Canvas& canvas) {
        canvas.drawImage({0, 0, 10, 5}, picture(10, 5), {0, 0, 10, 5}, COLORONCOLOR, 0x8888, Brush{}, nullptr, {});
        canvas.drawImage({0, 0, 20, 10}, picture(10, 5), {0, 0, 10, 5}, COLORONCOLOR, 0x8888, Brush{}, nullptr, {});
    });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvBitBlt (0,0,10,5) rop=34952 source=1 clip=0"));
    EXPECT_EQ(page.images, 2U);
    EXPECT_EQ(liveSurfaces(), 0U);
}

TEST_F(CanvasCalls, text_asks_the_glyph_mode_once_for_each_font) {
    GlyphRun run;
    const auto glyph = std::make_shared<GlyphBitmap>();
    run.glyphs.push_back({glyph, 1, {5, 5}});
    const RECTL box{0, 0, 10, 10};
    draw([&](Canvas& canvas) {
        for (const ULONG font : {1U, 1U, 2U}) {
            run.font = font;
            canvas.textOut(run, 0, font == 2 ? &box : nullptr, 0xFFFFFF);
        }
    });
    EXPECT_THAT(drawn(), testing::ElementsAre("DrvGetGlyphMode font=1", "DrvTextOut glyphs=1 font=1 extra=0 opaque=0 mix=3341", "DrvTextOut glyphs=1 font=1 extra=0 opaque=0 mix=3341",
                                              "DrvGetGlyphMode font=2", "DrvTextOut glyphs=1 font=2 extra=0 opaque=1 mix=3341"));
}

TEST_F(CanvasCalls, colours_are_dithered_only_where_the_driver_asks_for_it) {
    driver.format = BMF_1BPP;
    Brush grey;
    grey.colour = 0x808080;
    draw([&](Canvas& canvas) { canvas.fillPath(rectangle(1, 1, 5, 5), grey, FillMode::Alternate, kCopyPen); });
    ASSERT_EQ(drawn().size(), 1U);
    EXPECT_NE(drawn()[0].find("solid=1"), std::string::npos);

    driver.calls.clear();
    driver.graphicsCaps |= GCAPS_COLOR_DITHER;
    draw([&](Canvas& canvas) { canvas.fillPath(rectangle(1, 1, 5, 5), grey, FillMode::Alternate, kCopyPen); });
    ASSERT_EQ(drawn().size(), 2U);
    EXPECT_EQ(drawn()[0], "DrvDitherColor mode=1 colour=8421504");
    EXPECT_NE(drawn()[1].find("solid=0"), std::string::npos);

    driver.calls.clear();
    driver.dither = 0;
    draw([&](Canvas& canvas) { canvas.fillPath(rectangle(1, 1, 5, 5), grey, FillMode::Alternate, kCopyPen); });
    EXPECT_EQ(drawn().size(), 1U);
}

TEST_F(CanvasCalls, colours_that_the_palette_holds_are_not_dithered) {
    driver.format = BMF_1BPP;
    driver.graphicsCaps |= GCAPS_COLOR_DITHER;
    draw([](Canvas& canvas) { canvas.fillPath(rectangle(1, 1, 5, 5), Brush{}, FillMode::Alternate, kCopyPen); });
    ASSERT_EQ(drawn().size(), 1U);
    EXPECT_NE(drawn()[0].find("solid=1"), std::string::npos);
}

TEST_F(CanvasCalls, driver_may_answer_a_dither_with_the_nearest_colour) {
    driver.format = BMF_1BPP;
    driver.graphicsCaps |= GCAPS_COLOR_DITHER;
    driver.ditherAnswer = DCR_SOLID;
    Brush grey;
    grey.colour = 0x808080;
    draw([&](Canvas& canvas) { canvas.fillPath(rectangle(1, 1, 5, 5), grey, FillMode::Alternate, kCopyPen); });
    EXPECT_NE(drawn().back().find("solid=1"), std::string::npos);
}

// Coordinates are those of the band; every band gets every stroke, and the report counts them once.
TEST_F(CanvasCalls, second_band_moves_everything_up) {
    driver.bandHeight = 20;
    const PageReport page = draw([](Canvas& canvas) {
        canvas.strokePath(line(1, 25, 20, 25), thinPen(0), kIdentity, kCopyPen);
        canvas.patBlt({0, 22, 10, 28}, Brush{}, 0xF0);
    });
    EXPECT_THAT(drawn(), testing::ElementsAre(testing::HasSubstr("B(1,25)(20,25)"), testing::HasSubstr("B(1,5)(20,5)"), "DrvBitBlt (0,2,10,8) rop=61680 source=0 clip=0"));
    EXPECT_EQ(page.strokesToDriver, 1U);
}

}  // namespace
}  // namespace morvil::engine
