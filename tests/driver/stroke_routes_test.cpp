// Strokes that take another way into the job file: through the path recorder, and as arcs of the curve-fitting library.
#include <filesystem>

#include "config/CMvConfig.h"
#include "driver/StrokeFixture.h"
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

class Recorder : public Stroke {
  protected:
    // One curve more than the limit takes the recorder's route.
    FakePath longPath() {
        FakePath path({{kClosedFigure, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70)}},
                       {kWholeFigure, {fixedPoint(1, 2), fixedPoint(3, 4)}}});
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
    FakePath path({{kWholeFigure, {fixedPoint(1, 2), fixedPoint(3, 4)}}, {kWholeFigure, {fixedPoint(5, 6), fixedPoint(7, 8)}}});
    working().ppoThreshold = 1;
    EXPECT_EQ(stroke(&path), TRUE);
    EXPECT_THAT(written(), ElementsAre("<DrawPolygon: 4;0;0;0;1;2;3;4;5;6;7;8>"));
}

TEST_F(Recorder, the_second_path_starts_anew) {
    startPage();
    FakePath path = longPath();
    EXPECT_EQ(stroke(&path), TRUE);
    FakePath other({{kClosedFigure, {fixedPoint(1, 1), fixedPoint(2, 2), fixedPoint(3, 1), fixedPoint(4, 0), fixedPoint(5, 0)}}});
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
    EXPECT_THAT(kept[1],
                testing::AllOf(testing::StartsWith("Path.vec."), testing::AnyOf(testing::EndsWith(".1"), testing::EndsWith(".2"))));
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
