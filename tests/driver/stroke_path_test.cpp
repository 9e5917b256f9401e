// Strokes: polygons, curves and arcs in the job file, line attributes in the log, and the path recorder.
#include <cstring>
#include <filesystem>

#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"
#include "driver/TestMachine.h"
#include "platform/posix/HostState.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

constexpr FLONG kWhole = PD_BEGINSUBPATH | PD_ENDSUBPATH;
constexpr FLONG kClosed = kWhole | PD_CLOSEFIGURE;

class Stroke : public DriverTest {
  protected:
    Stroke() {
        configuration().flags = 0;
        for (VectorColour& colour : configuration().colours) colour = {};
        turnColourMatchingOff();
    }
    // The working copy rules strokes; the page has taken it from the instance.
    static ConfigurationRecord& working() { return state().configuration; }

    BOOL stroke(FakePath* path, FakeBrush* brush = nullptr, LINEATTRS* attributes = nullptr) {
        return DrvStrokePath(pso, path, nullptr, nullptr, brush, nullptr, attributes, 0);
    }
    static FakePath triangle() { return FakePath({{kClosed, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70)}}}); }
    static FakePath curve() {
        FakePath path({{kWhole | PD_BEZIERS, {fixedPoint(1, 1), fixedPoint(2, 9), fixedPoint(8, 9), fixedPoint(9, 1)}}});
        path.fl = PO_BEZIERS;
        path.cCurves = 1;
        return path;
    }
    [[nodiscard]] static std::vector<std::string> written() { return drawCommands(".tsa"); }

  private:
    void turnColourMatchingOff() { CPrinterConfig().setConfig(TEXT(""), CPrinterConfig::defaultConfiguration()); }
};

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
    FakePath path({{kClosed, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70), fixedPoint(10, 10)}}});
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
    FakePath path({{kWhole, {fixedPoint(1, 2), fixedPoint(3, 4)}}, {kWhole, {fixedPoint(5, 6), fixedPoint(7, 8)}}});
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
    FakePath path({{kWhole, {fixedPoint(5, 10), fixedPoint(7, 20)}}});
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
    FakePath path(std::vector<PathRecord>{{kWhole, {}}});
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
        FakePath path({{kWhole, {fixedPoint(1, 2), fixedPoint(3, 4)}}});
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

class Recorder : public Stroke {
  protected:
    // One curve more than the limit takes the recorder's route.
    FakePath longPath() {
        FakePath path(
            {{kClosed, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70)}}, {kWhole, {fixedPoint(1, 2), fixedPoint(3, 4)}}});
        working().ppoThreshold = path.cCurves - 1;
        return path;
    }
    static WString storeFile() { return WString(CMvConfig().driverDataFolder()) + TEXT("\\Path.vec"); }
    [[nodiscard]] std::vector<std::string> keptFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(home.hostPath(CMvConfig().driverDataFolder()))) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("Path.vec")) names.push_back(name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Recorder, no_memory_for_a_curve_fails_the_stroke_and_empties_the_store) {
    startPage();
    FakePath path = longPath();
    {
        FailingCalls faults(1, Fault::Persistent, "allocate");
        EXPECT_EQ(stroke(&path), FALSE);
    }
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(keptFiles(), IsEmpty());
    EXPECT_EQ(state().path->pointCount(), 0U);
}

TEST_F(Recorder, a_path_at_the_limit_goes_directly) {
    startPage();
    FakePath path = longPath();
    working().ppoThreshold = path.cCurves;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_EQ(state().path, nullptr);
}

TEST_F(Recorder, a_path_above_the_limit_is_read_back_curve_by_curve) {
    startPage();
    state().uiBandPosition = 1000;  // not added on this route
    FakePath path = longPath();
    clearLogs();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 4;0;0;0;10;10;90;10;50;70;10;10>", "<DrawPolygon: 2;0;0;0;1;2;3;4>"));
    EXPECT_THAT(rendLog(), IsSupersetOf({std::string("DrvStrokePath 2, cPoint=6, cCurves=5"), std::string("DrvStrokePath cCurve=0"),
                                         std::string("Curve(0) contains 4 points"), std::string("DrvStrokePath cCurve=1"),
                                         std::string("Curve(1) contains 2 points")}));
    EXPECT_THAT(keptFiles(), IsEmpty());
}

TEST_F(Recorder, curves_above_the_limit_become_polygons_of_their_control_points) {
    startPage();
    FakePath path = curve();
    working().ppoThreshold = 0;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 4;0;0;0;1;1;2;9;8;9;9;1>"));
}

TEST_F(Recorder, open_figures_run_on_in_one_curve) {
    startPage();
    FakePath path({{kWhole, {fixedPoint(1, 2), fixedPoint(3, 4)}}, {kWhole, {fixedPoint(5, 6), fixedPoint(7, 8)}}});
    working().ppoThreshold = 1;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 4;0;0;0;1;2;3;4;5;6;7;8>"));
}

TEST_F(Recorder, the_second_path_starts_anew) {
    startPage();
    FakePath path = longPath();
    EXPECT_EQ(stroke(&path), TRUE);
    FakePath other({{kClosed, {fixedPoint(1, 1), fixedPoint(2, 2), fixedPoint(3, 1), fixedPoint(4, 0), fixedPoint(5, 0)}}});
    EXPECT_EQ(stroke(&other), TRUE);
    EXPECT_THAT(written(),
                ElementsAre(HasSubstr("Polygon: 4;"), HasSubstr("Polygon: 2;"), "<DrawPolygon: 6;0;0;0;1;1;2;2;3;1;4;0;5;0;1;1>"));
}

TEST_F(Recorder, a_diagnostic_job_keeps_its_paths) {
    startPage();
    working().diagnostic.enabled = 1;
    FakePath path = longPath();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_EQ(stroke(&path), TRUE);
    const std::vector<std::string> kept = keptFiles();
    ASSERT_EQ(kept.size(), 2U);
    EXPECT_THAT(kept[0], testing::AllOf(testing::StartsWith("Path.vec."), testing::EndsWith(".1")));
    // The same second gives the second number, the next one the first again.
    EXPECT_THAT(kept[1], testing::AllOf(testing::StartsWith("Path.vec."), testing::AnyOf(testing::EndsWith(".1"), testing::EndsWith(".2"))));
    EXPECT_FALSE(exists(storeFile()));
    EXPECT_EQ(readHostBytes(home.hostPath(CMvConfig().driverDataFolder()) / kept[0]),
              "Curve=0;Index=0;X=10;Y=10;Flags=11;\r\n"
              "Curve=0;Index=1;X=90;Y=10;Flags=11;\r\n"
              "Curve=0;Index=2;X=50;Y=70;Flags=11;\r\n"
              "Curve=0;Index=3;X=10;Y=10;Flags=-1;\r\n"
              "Curve=1;Index=0;X=1;Y=2;Flags=3;\r\n"
              "Curve=1;Index=1;X=3;Y=4;Flags=3;\r\n");
}

class BezierLibrary : public Stroke {
  protected:
    ~BezierLibrary() override {
        std::error_code missing;
        std::filesystem::remove(home.hostPath(libraryFolder()) / "MvBezier.dll", missing);
    }
    // Puts the test library where the driver looks for libraries; the accuracy tells it what to answer.
    void install(WORD accuracy, const char* library = MORVIL_TEST_BEZIER_LIBRARY) {
        const std::filesystem::path folder = home.hostPath(libraryFolder());
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(library, folder / "MvBezier.dll", std::filesystem::copy_options::overwrite_existing);
        configuration().bezier.accuracy = accuracy;
    }
    BOOL strokeCurve() {
        configuration().bezier.mode = 1;
        startPage();
        clearLogs();
        FakePath path = curve();
        FakeBrush brush(0x0000FF);
        return stroke(&path, &brush);
    }
};

TEST_F(BezierLibrary, a_missing_library_writes_nothing) {
    EXPECT_EQ(strokeCurve(), TRUE);
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(rendLog(), Contains("DrvStrokePath Load Bezier-DLL h=0"));
}

TEST_F(BezierLibrary, points_that_are_no_arc_go_back_to_the_engine) {
    install(0);
    EXPECT_EQ(strokeCurve(), FALSE);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(BezierLibrary, an_arc_without_parameters_writes_nothing) {
    install(1);
    EXPECT_EQ(strokeCurve(), TRUE);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(BezierLibrary, an_arc_is_written_in_the_colour) {
    install(2);
    EXPECT_EQ(strokeCurve(), TRUE);
    ASSERT_EQ(written().size(), 1U);
    // The library answers with what it was given: four points, the first x and the last y.
    EXPECT_EQ(written().front(), "<DrawArc: 255;0;0;1;1;4;10.00;20.00;1>");
    EXPECT_EQ(outstanding().libraries, 0U);
}

TEST_F(BezierLibrary, without_a_start_it_is_asked_all_the_same) {
    install(0, MORVIL_TEST_BEZIER_LIBRARY_WITHOUT_START);
    EXPECT_EQ(strokeCurve(), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawArc: 255;0;0;1;2;3;4.00;5.00;6>"));
}

TEST_F(BezierLibrary, without_arcs_it_writes_nothing) {
    install(2, MORVIL_TEST_BEZIER_LIBRARY_WITHOUT_ARCS);
    EXPECT_EQ(strokeCurve(), TRUE);
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_EQ(outstanding().libraries, 0U);
}

TEST_F(BezierLibrary, other_switches_do_not_ask_it) {
    install(2);
    configuration().bezier.mode = 2;
    startPage();
    FakePath path = curve();
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre(HasSubstr("<DrawBezier:")));
}

}  // namespace
}  // namespace morvil::test
