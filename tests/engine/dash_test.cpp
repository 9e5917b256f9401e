// Dashes of wide lines that reach far beyond the page: those that show stay where they are, and no others are made.
#include <cmath>
#include <ostream>

#include "engine/pixels/SeenRuns.h"
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

constexpr XFORM kIdentity{1, 0, 0, 1, 0, 0};
constexpr RECTL kSeen{0, 0, 200, 100};

Pen dashedPen() {
    Pen pen;
    pen.geometric = true;
    pen.width = 6.0;
    pen.endCap = ENDCAP_ROUND;
    pen.style = {17.0F, 12.0F, 5.0F, 9.0F};
    return pen;
}

std::size_t pointsOf(const Path& path) {
    std::size_t points = 0;
    for (const Subpath& figure : path.subpaths()) points += figure.points.size();
    return points;
}

std::vector<RECTL> covered(const Path& outline) { return Region::fromPath(outline, false, kSeen).rectangles(); }

bool operator==(const RECTL& a, const RECTL& b) { return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom; }

struct Line {
    const char* name;
    Path path;
    XFORM form = kIdentity;

    friend void PrintTo(const Line& line, std::ostream* out) { *out << line.name; }
};

Path polyline(const std::vector<POINTFIX>& points, bool closed) {
    Path path;
    path.moveTo(points.front());
    for (std::size_t i = 1; i < points.size(); ++i) path.lineTo(points[i]);
    if (closed) path.close();
    return path;
}

Path curve() {
    Path path;
    path.moveTo(at(-4000, 50));
    path.lineTo(at(10, 20));
    path.bezierTo(at(60, 120), at(120, -40), at(190, 90));
    path.lineTo(at(5000, 40));
    return path;
}

std::vector<Line> lines() {
    return {{"fromFarAway", polyline({at(-9000, 30), at(9000, 70)}, false)},
            {"thereAndBack", polyline({at(-700, 10), at(1000, 40), at(-3000, 60), at(4000, 95)}, false)},
            {"beginsInside", polyline({at(50, 50), at(150, 60), at(150, 4000), at(100, -4000)}, false)},
            {"closed", polyline({at(20, 20), at(3000, 30), at(2500, 2500), at(-2000, 80)}, true)},
            {"closedInside", polyline({at(20, 20), at(180, 30), at(100, 90)}, true)},
            {"curve", curve()},
            {"sheared", polyline({at(-9000, 30), at(9000, 70)}, false), XFORM{2, 0.5, 0.25, 1, 7, 3}}};
}

class DashedLine : public ::testing::TestWithParam<Line> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Lines, DashedLine, ::testing::ValuesIn(lines()), [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(DashedLine, whatIsSeen_isAsIfAllWereMade) {
    const Path all = widenPath(GetParam().path, dashedPen(), GetParam().form);
    const Path cut = widenPath(GetParam().path, dashedPen(), GetParam().form, kSeen);
    ASSERT_FALSE(covered(all).empty());
    EXPECT_TRUE(std::ranges::equal(covered(cut), covered(all), [](const RECTL& a, const RECTL& b) { return a == b; }));
    EXPECT_LE(pointsOf(cut), pointsOf(all));
}

TEST(DashedLines, thatReachAcrossAllCoordinates_takeDashesForWhatIsSeenOnly) {
    const Path line = polyline({{-(1 << 29), 160}, {1 << 29, 1600}}, false);
    const std::size_t points = pointsOf(widenPath(line, dashedPen(), kIdentity, kSeen));
    EXPECT_GT(points, 100U);
    EXPECT_LT(points, 2000U);
}

TEST(DashedLines, thatLieBeside_showNothing) {
    EXPECT_TRUE(widenPath(polyline({at(-9000, -300), at(9000, -200)}, false), dashedPen(), kIdentity, kSeen).empty());
}

TEST(DashedLines, thatRepeatTooOften_becomeSolid) {
    Pen fine = dashedPen();
    fine.style = {0.00005F, 0.00005F};
    const Path line = polyline({at(0, 50), at(200, 50)}, false);
    Pen solid = dashedPen();
    solid.style.clear();
    EXPECT_EQ(pointsOf(widenPath(line, fine, kIdentity, kSeen)), pointsOf(widenPath(line, solid, kIdentity, kSeen)));
}

TEST(DashedLines, thatTheBudgetDoesNotHold_becomeSolid) {
    DashBudget budget;
    const Path line = polyline({at(0, 50), at(200, 50)}, false);
    const std::size_t dashed = pointsOf(widenPath(line, dashedPen(), kIdentity, kSeen));
    while (budget.take(DashBudget::kMostOfOnePath)) budget.beginPath();
    const Path outline = widenPath(line, dashedPen(), kIdentity, kSeen, &budget);
    EXPECT_EQ(outline.subpaths().size(), 1U);
    EXPECT_LT(pointsOf(outline), dashed);
}

TEST(DashedLines, thatAreManyInOnePath_becomeSolidWhenTheirPathHasEnough) {
    const Path line = polyline({at(0, 50), at(200, 50)}, false);
    Pen fine = dashedPen();
    fine.style = {0.001F, 0.001F};  // 100,000 repeats
    Path three;
    for (int i = 0; i < 3; ++i) three.append(line);
    const std::size_t one = widenPath(line, fine, kIdentity, kSeen).subpaths().size();
    EXPECT_GT(one, 90'000U);
    EXPECT_EQ(widenPath(three, fine, kIdentity, kSeen).subpaths().size(), 2 * one + 1);
}

TEST(DashedLines, ofOnePathAfterTheOther_haveTheWholeShareOfAPathEach) {
    const Path line = polyline({at(0, 50), at(200, 50)}, false);
    Pen fine = dashedPen();
    fine.style = {0.00075F, 0.00075F};  // 133,333 repeats
    DashBudget budget;
    for (int path = 0; path < 2; ++path) EXPECT_GT(widenPath(line, fine, kIdentity, kSeen, &budget).subpaths().size(), 130'000U) << path;
}

TEST(DashBudget, takesAsMuchAsThereIs_andNoMoreForOnePath) {
    DashBudget budget;
    EXPECT_FALSE(budget.take(DashBudget::kMostOfOnePath * 1.01));
    EXPECT_FALSE(budget.take(std::nan("")));
    EXPECT_FALSE(budget.take(HUGE_VAL));
    EXPECT_TRUE(budget.take(DashBudget::kMostOfOnePath));
    EXPECT_FALSE(budget.take(1.0));
    double taken = DashBudget::kMostOfOnePath;
    for (budget.beginPath(); budget.take(DashBudget::kMostOfOnePath); budget.beginPath()) taken += DashBudget::kMostOfOnePath;
    EXPECT_EQ(taken, DashBudget::kMost);
    EXPECT_FALSE(budget.take(0.001));
    EXPECT_TRUE(budget.take(0.0));
}

TEST(SeenRuns, crossAndTouch_keepTheirPlaceOnTheLine) {
    // Device pixels are half of the world's units here.
    const auto point = [](double x, double y) { return LinePoint{.world = {2 * x, 2 * y}, .device = {x, y}}; };
    const std::vector<LinePoint> line = {point(-10, 10), point(10, 10), point(10, 20), point(300, 20), point(300, 40), point(-100, 40)};
    const std::vector<SeenRun> runs = seenRuns(line, kSeen);
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].points.size(), 4U);
    EXPECT_DOUBLE_EQ(runs[0].before, 20.0);
    EXPECT_DOUBLE_EQ(runs[0].length, 20.0 + 20.0 + 380.0);
    EXPECT_DOUBLE_EQ(runs[1].before, 2.0 * (20 + 10 + 290 + 20 + 100));
    EXPECT_DOUBLE_EQ(runs[1].length, 400.0);
    EXPECT_DOUBLE_EQ(runs[1].points.front().x, 400.0);
    EXPECT_TRUE(seenRuns({}, kSeen).empty());
    EXPECT_TRUE(seenRuns(std::vector{point(-10, -5), point(0, 0)}, kSeen).empty()) << "touches a corner";
    EXPECT_TRUE(seenRuns(std::vector{point(-10, 50), point(-10, 90)}, kSeen).empty()) << "upright beside";
}
