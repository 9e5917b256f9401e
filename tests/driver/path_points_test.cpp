// Points of paths: counted and copied from the engine's enumeration, figure by figure.
#include "driver/path_points.h"

#include "driver/DriverFixture.h"

namespace morvil::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PathPoints : public DriverTest {
  protected:
    using Points = std::vector<std::pair<int, int>>;

    static Points asPairs(PointArrays& arrays, std::size_t count) {
        Points points;
        for (std::size_t i = 0; i < count; ++i) points.emplace_back(arrays.xs.span()[i], arrays.ys.span()[i]);
        return points;
    }
    static Points wholePath(FakePath& path, PixelOffset offset = {0, 0}) {
        const auto count = static_cast<std::size_t>(summarise(path).points);
        PointArrays arrays(count);
        EXPECT_EQ(bGetPoints(path, arrays.xs.span(), arrays.ys.span(), offset), TRUE);
        return asPairs(arrays, count);
    }
    static std::vector<Points> figures(FakePath& path, PixelOffset offset = {0, 0}) {
        PointArrays arrays(static_cast<std::size_t>(summarise(path).points));
        std::vector<Points> out;
        forEachFigure(path, arrays, offset, [&](std::uint32_t count) { out.push_back(asPairs(arrays, count)); });
        return out;
    }
};

constexpr FLONG kWhole = PD_BEGINSUBPATH | PD_ENDSUBPATH;
constexpr FLONG kClosed = kWhole | PD_CLOSEFIGURE;

TEST_F(PathPoints, fixed_point_rounds_toward_minus_infinity) {
    static const struct {
        FIX coordinate;
        std::int32_t offset;
        std::int32_t pixel;
    } cases[] = {{0x3C, 0, 3}, {0xF, 0, 0},   {0x10, 0, 1},       {-1, 0, -1}, {-16, 0, -1},
                 {-17, 0, -2}, {-24, 0, -2},  {160, -1000, 1010}, {160, 4, 6}, {0x7FFFFFFF, 0, 0x7FFFFFF},
                 {160, 0, 10}, {-160, -10, 0}};
    for (const auto& entry : cases) EXPECT_EQ(toPixels(entry.coordinate, entry.offset), entry.pixel) << entry.coordinate;
}

TEST_F(PathPoints, an_empty_path_has_nothing) {
    FakePath path;
    EXPECT_EQ(summarise(path).points, 0U);
    EXPECT_TRUE(wholePath(path).empty());
    EXPECT_TRUE(figures(path).empty());
}

// The flag alone closes, in a record of its own.
TEST_F(PathPoints, a_record_without_points_closes_its_figure) {
    FakePath path({{PD_BEGINSUBPATH, {fixedPoint(1, 1), fixedPoint(9, 1), fixedPoint(5, 7)}}, {PD_ENDSUBPATH | PD_CLOSEFIGURE, {}}});
    EXPECT_EQ(summarise(path).points, 4U);
    EXPECT_EQ(wholePath(path), (Points{{1, 1}, {9, 1}, {5, 7}, {1, 1}}));
    EXPECT_THAT(figures(path), ElementsAre(Points{{1, 1}, {9, 1}, {5, 7}, {1, 1}}));
}

TEST_F(PathPoints, a_figure_without_points_counts_as_one) {
    FakePath path({{kWhole, {}}, {kWhole, {fixedPoint(1, 1), fixedPoint(2, 2)}}});
    EXPECT_THAT(figures(path), ElementsAre(Points{}, Points{{1, 1}, {2, 2}}));
}

TEST_F(PathPoints, points_before_the_first_figure_belong_to_none) {
    FakePath path({{0, {fixedPoint(1, 1), fixedPoint(2, 2)}}, {kWhole, {fixedPoint(3, 3), fixedPoint(4, 4)}}});
    EXPECT_THAT(figures(path), ElementsAre(Points{{3, 3}, {4, 4}}));
    EXPECT_EQ(wholePath(path).size(), 4U);
}

TEST_F(PathPoints, the_summary_counts_closings_and_sees_curves) {
    FakePath path({{kClosed, {fixedPoint(1, 1), fixedPoint(2, 2)}}, {kClosed, {fixedPoint(3, 3)}}, {kWhole, {fixedPoint(5, 5)}}});
    EXPECT_EQ(summarise(path).points, 6U);
    EXPECT_FALSE(summarise(path).hasBeziers);
    path.fl = PO_BEZIERS;
    EXPECT_TRUE(summarise(path).hasBeziers);
    path.fl = PO_ELLIPSE;
    EXPECT_FALSE(summarise(path).hasBeziers);
    path.records[1].flags |= PD_BEZIERS;
    EXPECT_TRUE(summarise(path).hasBeziers);
}

TEST_F(PathPoints, an_open_path_is_copied_in_order) {
    FakePath path({{PD_BEGINSUBPATH, {fixedPoint(1, 2), fixedPoint(3, 4)}}, {PD_ENDSUBPATH, {fixedPoint(5, 6)}}});
    EXPECT_EQ(wholePath(path), (Points{{1, 2}, {3, 4}, {5, 6}}));
    EXPECT_EQ(wholePath(path, {1, -10}), (Points{{0, 12}, {2, 14}, {4, 16}}));
    EXPECT_THAT(rendLog(), IsEmpty());
}

TEST_F(PathPoints, a_closing_point_gives_way_to_the_next_figure) {
    FakePath path({{kClosed, {fixedPoint(10, 20), fixedPoint(30, 40)}}, {kClosed, {fixedPoint(50, 60), fixedPoint(70, 80)}}});
    // Four points, the path's very first again, and one place never written.
    EXPECT_EQ(wholePath(path), (Points{{10, 20}, {30, 40}, {50, 60}, {70, 80}, {10, 20}, {0, 0}}));
    EXPECT_THAT(rendLog(), ElementsAre("bGetPoints close figure x=10, y=20", "bGetPoints close figure x=10, y=20"));
}

TEST_F(PathPoints, an_open_figure_stays_open) {
    FakePath path({{kWhole, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(10, 10)}}});
    EXPECT_THAT(figures(path), ElementsAre(Points{{10, 10}, {90, 10}, {10, 10}}));
    EXPECT_THAT(rendLog(), IsEmpty());
}

TEST_F(PathPoints, a_closed_figure_ends_in_its_first_point) {
    FakePath path({{kClosed, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 80)}}});
    EXPECT_THAT(figures(path), ElementsAre(Points{{10, 10}, {90, 10}, {50, 80}, {10, 10}}));
    EXPECT_THAT(rendLog(), ElementsAre("Curve[1], PointClose=3", "pX[0]=10, pX[j-1]=50, pY[0]=10, pY[j-1]=80"));
}

TEST_F(PathPoints, a_figure_that_is_back_already_is_not_closed_twice) {
    FakePath path({{kClosed, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 80), {10 * 16 + 15, 10 * 16}}}});
    EXPECT_THAT(figures(path), ElementsAre(Points{{10, 10}, {90, 10}, {50, 80}, {10, 10}}));
    EXPECT_THAT(rendLog(), IsEmpty());
}

TEST_F(PathPoints, a_figure_may_span_records) {
    FakePath path({{PD_BEGINSUBPATH, {fixedPoint(1, 1)}},
                   {0, {fixedPoint(2, 2)}},
                   {PD_ENDSUBPATH | PD_CLOSEFIGURE, {fixedPoint(3, 1)}},
                   {kWhole, {fixedPoint(7, 7), fixedPoint(8, 8)}}});
    EXPECT_THAT(figures(path), ElementsAre(Points{{1, 1}, {2, 2}, {3, 1}, {1, 1}}, Points{{7, 7}, {8, 8}}));
}

TEST_F(PathPoints, the_logged_figures_count_from_one) {
    FakePath path({{kWhole, {fixedPoint(1, 1), fixedPoint(2, 2)}}, {kClosed, {fixedPoint(3, 3), fixedPoint(4, 4)}}});
    EXPECT_EQ(figures(path).size(), 2U);
    EXPECT_EQ(rendLog().front(), "Curve[2], PointClose=2");
}

TEST_F(PathPoints, figures_are_read_in_one_walk) {
    FakePath path;
    for (int i = 0; i < 50; ++i) path.records.push_back({kWhole, {fixedPoint(i, 0), fixedPoint(i, 9)}});
    PointArrays arrays(static_cast<std::size_t>(summarise(path).points));
    path.walks = 0;
    int seen = 0;
    forEachFigure(path, arrays, {0, 0}, [&](std::uint32_t) { ++seen; });
    EXPECT_EQ(seen, 50);
    EXPECT_EQ(path.walks, 1);
}

}  // namespace
}  // namespace morvil::test
