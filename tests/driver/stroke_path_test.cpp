// Strokes: polygons and curves in the job file, line attributes in the log.
#include "driver/StrokeFixture.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

TEST_F(Stroke, an_invalid_instance_strokes_nothing) {
    startPage();
    clearLogs();
    SURFOBJ stranger = *pso;
    stranger.dhpdev = nullptr;
    FakePath path = triangle();
    EXPECT_EQ(DrvStrokePath(&stranger, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    const std::string entry = withPointer("DrvStrokePath, pso={}", &stranger);
    EXPECT_THAT(morvilLog(), ElementsAre(entry));
    EXPECT_THAT(rendLog(), ElementsAre(entry, "!!! Invalid PPDEV Handle DrvStartPage"));
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Stroke, no_path_no_vector) {
    startPage();
    EXPECT_EQ(stroke(nullptr), FALSE);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Stroke, no_memory_no_vector) {
    startPage();
    for (int n = 1; n <= 2; ++n) {
        FakePath path = triangle();
        FailingCalls faults(n, Fault::Transient, "allocate");
        EXPECT_EQ(stroke(&path), FALSE);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(faults.fired(), 1);
    }
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Stroke, colours_near_an_entry_of_mode_1_stay_in_the_raster) {
    static const struct {
        VectorColour entry;
        ULONG colour;
        BOOL vector;
    } cases[] = {{{0xF5, 0, 0, 0, 1}, 0x0000FF, FALSE},   // distance 10
                 {{0xF5, 0, 0, 0, 0}, 0x0000FF, TRUE},    // mode 0 never filters
                 {{0xF5, 0, 0, 0, 2}, 0x0000FF, TRUE},    // nor does any other
                 {{0xEB, 0, 0, 0, 1}, 0x0000FF, FALSE},   // exactly 20
                 {{0xEA, 0, 0, 0, 1}, 0x0000FF, TRUE},    // exactly 21
                 {{0xF8, 7, 7, 0, 1}, 0x0000FF, TRUE},    // 7 + 7 + 7
                 {{0xF9, 7, 7, 0, 1}, 0x0000FF, FALSE},   // 6 + 7 + 7
                 {{0, 0, 0xFF, 0, 1}, 0xFF0000, FALSE}};  // blue is the third byte
    startPage();
    for (const auto& entry : cases) {
        SCOPED_TRACE(entry.entry.red);
        working().colours[15] = entry.entry;
        FakeBrush brush(entry.colour);
        FakePath path = triangle();
        const std::size_t before = written().size();
        EXPECT_EQ(stroke(&path, &brush), entry.vector);
        EXPECT_EQ(written().size(), before + (entry.vector != FALSE ? 1 : 0));
    }
}

TEST_F(Stroke, the_colour_list_is_logged_up_to_the_match) {
    startPage();
    working().colours[1] = {0x10, 0x20, 0x30, 0, 1};
    FakeBrush brush(0x302010);
    FakePath path = triangle();
    clearLogs();
    EXPECT_EQ(stroke(&path, &brush), FALSE);
    EXPECT_THAT(rendLog(), IsSupersetOf({std::string("Color[0] R=0, G=0, B=0, mode=0"), std::string("Color[1] R=10, G=20, B=30, mode=1")}));
    EXPECT_THAT(rendLog(), Not(Contains(HasSubstr("Color[2]"))));
}

TEST_F(Stroke, without_a_writer_the_stroke_is_done_silently) {
    enableSurface();
    working().ppoThreshold = 100;
    FakePath path = triangle();
    EXPECT_EQ(stroke(&path), TRUE);
    FakePath bezier = curve();
    EXPECT_EQ(stroke(&bezier), TRUE);
    EXPECT_THAT(jobFileNames(), IsEmpty());
}

TEST_F(Stroke, a_closed_triangle_is_one_polygon_of_four_points) {
    startPage();
    FakePath path = triangle();
    clearLogs();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 4;0;0;0;10;10;90;10;50;70;10;10>"));
    EXPECT_THAT(rendLog(), Contains("DrvStrokePath 1, cPoint=4, cCurves=3"));
}

TEST_F(Stroke, a_triangle_that_is_back_at_its_start_keeps_its_four_points) {
    startPage();
    FakePath path({{kClosedFigure, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70), fixedPoint(10, 10)}}});
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 4;0;0;0;10;10;90;10;50;70;10;10>"));
}

TEST_F(Stroke, without_a_surface_there_is_no_instance_to_ask) {
    startPage();
    FakePath path = triangle();
    EXPECT_EQ(DrvStrokePath(nullptr, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0), TRUE);
    EXPECT_EQ(written().size(), 1U);
}

TEST_F(Stroke, each_figure_is_a_polygon_in_the_brush_colour) {
    startPage();
    FakePath path({{kWholeFigure, {fixedPoint(1, 2), fixedPoint(3, 4)}}, {kWholeFigure, {fixedPoint(5, 6), fixedPoint(7, 8)}}});
    FakeBrush brush(0xAA030201);
    brush.iSolidColor = 5;
    clearLogs();
    EXPECT_EQ(stroke(&path, &brush), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 2;1;2;3;1;2;3;4>", "<DrawPolygon: 2;1;2;3;5;6;7;8>"));
    EXPECT_THAT(rendLog(), IsSupersetOf({std::string("DrvStrokePath pbo->iSolidColor=5"), std::string("DrvStrokePath pColor=30201")}));
    EXPECT_THAT(rendLog(), Not(Contains(HasSubstr("pvRbrush"))));
}

TEST_F(Stroke, a_patterned_brush_strokes_in_white) {
    startPage();
    FakePath path = triangle();
    FakeBrush brush(0xFFFFFFFF);
    brush.iSolidColor = 0xFFFFFFFF;
    int realised = 0;
    brush.pvRbrush = &realised;
    clearLogs();
    EXPECT_EQ(stroke(&path, &brush), TRUE);
    EXPECT_THAT(written(), ElementsAre(HasSubstr("<DrawPolygon: 4;255;255;255;")));
    EXPECT_THAT(rendLog(), IsSupersetOf({std::string("DrvStrokePath pbo->iSolidColor=4294967295"),
                                         std::string("DrvStrokePath pColor=FFFFFF"), withPointer("DrvStrokePath pvRbrush={}", &realised)}));
}

TEST_F(Stroke, a_band_moves_its_points_to_the_page) {
    configuration().size.pixelHeight = 2000;
    startPage();
    state().uiBandPosition = 1000;
    FakePath path({{kWholeFigure, {fixedPoint(5, 10), fixedPoint(7, 20)}}});
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 2;0;0;0;5;1010;7;1020>"));
}

TEST_F(Stroke, only_banded_jobs_drop_repeated_polygons) {
    startPage();
    FakePath path = triangle();
    stroke(&path);
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_EQ(written().size(), 2U);
    working().flags |= MV_FL_BITMAP_BANDING;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_EQ(written().size(), 2U);
}

TEST_F(Stroke, an_empty_path_is_done_at_once) {
    startPage();
    FakePath path;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Stroke, curves_without_points_reach_the_writer_which_refuses_them) {
    startPage();
    FakePath path;
    path.fl = PO_BEZIERS;
    clearLogs();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(morvilLog(), Contains("!!! Error WriteBezier"));
}

TEST_F(Stroke, a_figure_without_points_reaches_the_writer_which_refuses_it) {
    startPage();
    FakePath path(std::vector<PathRecord>{{kWholeFigure, {}}});
    clearLogs();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(morvilLog(), Contains("!!! Error WritePolygon"));
}

TEST_F(Stroke, curves_are_one_bezier_command) {
    startPage();
    state().uiBandPosition = 5;  // does not move curves
    FakePath path = curve();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawBezier: 4;0;0;0;1;1;2;9;8;9;9;1>"));
}

TEST_F(Stroke, a_whole_ellipse_is_a_bezier_command_too) {
    startPage();
    FakePath path = curve();
    path.fl = PO_ELLIPSE;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre(HasSubstr("<DrawBezier: 4;")));
}

class LineAttributes : public Stroke {};

TEST_F(LineAttributes, are_logged_and_change_nothing) {
    static const struct {
        FLONG flags;
        std::vector<std::string> lines;
    } cases[] = {
        {0, {"DrvStrokePath elWidth=0.000000, elWidth=3, eMiterLimit=10.500000"}},
        {LA_ALTERNATE,
         {"DrvStrokePath LA_ALTERNATE, elWidth=3, eMiterLimit=10", "DrvStrokePath elWidth=0.000000, elWidth=3, eMiterLimit=10.500000"}},
        {LA_GEOMETRIC, {"DrvStrokePath LA_GEOMETRIC, elWidth=2.500000, eMiterLimit=10.500000"}},
        {LA_STARTGAP | LA_STYLED,
         {"DrvStrokePath elWidth=0.000000, elWidth=3, eMiterLimit=10.500000", "DrvStrokePath LA_STARTGAP, elWidth=3, eMiterLimit=10",
          "DrvStrokePath LA_STYLED, elWidth=3, eMiterLimit=10"}}};
    startPage();
    for (const auto& entry : cases) {
        LINEATTRS attributes{};
        attributes.fl = entry.flags;
        attributes.cstyle = 4;
        attributes.eMiterLimit = 10.5F;
        if ((entry.flags & LA_GEOMETRIC) != 0) {
            attributes.elWidth.e = 2.5F;
        } else {
            attributes.elWidth.l = 3;
        }
        FakePath path({{kWholeFigure, {fixedPoint(1, 2), fixedPoint(3, 4)}}});
        clearLogs();
        EXPECT_EQ(stroke(&path, nullptr, &attributes), TRUE);
        std::vector<std::string> lines = rendLog();
        ASSERT_GE(lines.size(), 2 + entry.lines.size());
        EXPECT_EQ(lines[1], "DrvStrokePath cStyle=4");
        EXPECT_EQ(std::vector<std::string>(lines.begin() + 2, lines.begin() + 2 + static_cast<std::ptrdiff_t>(entry.lines.size())),
                  entry.lines);
        EXPECT_EQ(written().back(), "<DrawPolygon: 2;0;0;0;1;2;3;4>");
    }
}

}  // namespace
}  // namespace morvil::test
