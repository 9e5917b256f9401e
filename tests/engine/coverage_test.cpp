// Which pixels a path covers, against the rule written out pixel by pixel. The paths are those that scan converters of drawing
// libraries get wrong: edges through centres, gaps of one pixel, slivers, edges that are almost level.
#include "engine/pixels/Coverage.h"

#include <array>
#include <chrono>

#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

// The rule: going right from far away, every edge that crosses the centre's row (from its upper end, inclusive, to its lower,
// exclusive) at the centre or to the left of it turns once around the centre.
bool isInside(const Path& path, bool alternate, LONG column, LONG row) {
    const std::int64_t x = std::int64_t{column} * kFixOne;
    const std::int64_t y = std::int64_t{row} * kFixOne;
    int winding = 0;
    for (const Subpath& figure : path.subpaths()) {
        POINTFIX from = figure.points.back();
        for (const POINTFIX& to : figure.points) {
            const std::int64_t dx = std::int64_t{to.x} - from.x;
            const std::int64_t dy = std::int64_t{to.y} - from.y;
            const std::int64_t side = dx * (y - from.y) - (x - from.x) * dy;  // 0 on the edge
            if (from.y <= y && y < to.y && side <= 0) ++winding;
            if (to.y <= y && y < from.y && side >= 0) --winding;
            from = to;
        }
    }
    return alternate ? winding % 2 != 0 : winding != 0;
}

std::string expectedPicture(const Path& path, bool alternate, const RECTL& within) {
    std::string text;
    for (LONG y = within.top; y < within.bottom; ++y) {
        for (LONG x = within.left; x < within.right; ++x) text += isInside(path, alternate, x, y) ? '#' : '.';
        text += '\n';
    }
    return text;
}

// What coverPath hands out; "2" where a pixel comes twice, and a line of complaint when the order is not the promised one.
std::string coveredPicture(const Path& path, bool alternate, const RECTL& within) {
    const LONG rowLength = within.right - within.left + 1;
    std::string text;
    for (LONG y = within.top; y < within.bottom; ++y) text += std::string(static_cast<std::size_t>(rowLength - 1), '.') + '\n';
    std::string complaints;
    RECTL last{within.left, within.top, within.left, within.top};
    coverPath(path, alternate, within, [&](const RECTL& part) {
        const bool ordered = part.top > last.top || (part.top == last.top && part.left >= last.right);
        const bool proper = part.left < part.right && part.top < part.bottom;
        const bool inBox = part.left >= within.left && part.top >= within.top && part.right <= within.right && part.bottom <= within.bottom;
        last = part;
        if (!ordered || !proper || !inBox) complaints = "not ordered, empty or beyond the box\n";
        if (!inBox) return;
        for (LONG y = part.top; y < part.bottom; ++y) {
            for (LONG x = part.left; x < part.right; ++x) {
                char& pixel = text[static_cast<std::size_t>((y - within.top) * rowLength + x - within.left)];
                pixel = pixel == '.' ? '#' : '2';
            }
        }
    });
    return complaints + text;
}

using MakePath = Path (*)(Random&);

// Between -20 and 20 pixels; half of the coordinates are whole pixels.
FIX coordinate(Random& random) { return random.below(2) == 0 ? random.below(41) * kFixOne - 320 : random.below(641) - 320; }

void addFigure(Path& path, Random& random, int points) {
    path.moveTo({coordinate(random), coordinate(random)});
    for (int i = 1; i < points; ++i) path.lineTo({coordinate(random), coordinate(random)});
    path.close();
}

Path makeTriangle(Random& random) {
    Path path;
    addFigure(path, random, 3);
    return path;
}

Path makeCrossing(Random& random) {
    Path path;
    for (int figure = 0; figure < 2; ++figure) addFigure(path, random, 5 + random.below(3));
    return path;
}

// There and back with hardly any room between.
Path makeSliver(Random& random) {
    const POINTFIX begin{coordinate(random), coordinate(random)};
    const POINTFIX end{coordinate(random), coordinate(random)};
    const auto beside = [&random](POINTFIX point) { return POINTFIX{point.x + random.below(9) - 4, point.y + random.below(9) - 4}; };
    Path path;
    path.moveTo(begin);
    path.lineTo(end);
    path.lineTo(beside(end));
    path.lineTo(beside(begin));
    path.close();
    return path;
}

// Stripes with gaps of about a pixel, leaning or upright.
Path makeStripes(Random& random) {
    Path path;
    const FIX lean = random.below(3) == 0 ? 0 : random.below(300) - 150;
    const FIX top = coordinate(random);
    const FIX bottom = top + 16 + random.below(200);
    FIX x = -300;
    for (int stripe = 0; stripe < 8; ++stripe) {
        const FIX right = x + 4 + random.below(40);
        path.moveTo({x, top});
        path.lineTo({right, top});
        path.lineTo({right + lean, bottom});
        path.lineTo({x + lean, bottom});
        path.close();
        x = right + random.below(3) * 8 + random.below(2);
    }
    return path;
}

// All edges along the axes, crossing themselves.
Path makeSteps(Random& random) {
    Path path;
    POINTFIX point{coordinate(random), coordinate(random)};
    path.moveTo(point);
    for (int i = 0; i < 5; ++i) {
        point.x = coordinate(random);
        path.lineTo(point);
        point.y = coordinate(random);
        path.lineTo(point);
    }
    path.lineTo({path.subpaths().front().points.front().x, point.y});
    path.close();
    return path;
}

// Edges that leave the box by thousands of pixels and cross it almost level.
Path makeFar(Random& random) {
    constexpr FIX kFar = 8'000'000;  // half a million pixels
    Path path;
    path.moveTo({-random.below(kFar), coordinate(random)});
    path.lineTo({random.below(kFar), coordinate(random)});
    path.lineTo({random.below(kFar), coordinate(random)});
    path.lineTo({coordinate(random), random.below(kFar)});
    path.close();
    return path;
}

struct Kind {
    const char* name;
    MakePath make;
};

class Coverage : public ::testing::TestWithParam<Kind> {};

constexpr std::array kKinds = {Kind{"triangle", makeTriangle}, Kind{"crossing", makeCrossing}, Kind{"sliver", makeSliver},
                               Kind{"stripes", makeStripes},   Kind{"steps", makeSteps},       Kind{"far", makeFar}};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Kinds, Coverage, ::testing::ValuesIn(kKinds), [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(Coverage, randomPaths_coverExactlyTheCentresInside) {
    Random random(11);
    constexpr RECTL kWhole{-24, -24, 25, 25};
    constexpr RECTL kPart{-7, -5, 12, 9};
    for (int round = 0; round < 400; ++round) {
        const Path path = GetParam().make(random);
        const RECTL& within = round % 2 == 0 ? kWhole : kPart;
        for (const bool alternate : {false, true}) {
            ASSERT_EQ(coveredPicture(path, alternate, within), expectedPicture(path, alternate, within))
                << "round " << round << (alternate ? " alternate" : " winding");
        }
    }
}

TEST(CoverageGaps, gapOfOnePixel_staysOpen) {
    const Path path = [] {
        Path stripes = polygon({at(0, 0), at(3, 0), at(3, 2), at(0, 2)});
        stripes.append(polygon({at(4, 0), at(5, 0), at(5, 2), at(4, 2)}));
        stripes.append(polygon({at(6, 0), at(9, 0), at(9, 2), at(6, 2)}));
        return stripes;
    }();
    for (const bool alternate : {false, true}) {
        EXPECT_EQ(coveredPicture(path, alternate, {0, 0, 10, 3}), "###.#.###.\n###.#.###.\n..........\n");
    }
}

TEST(CoverageGaps, manyEdgesThroughOnePixel_areAllCounted) {
    // Seven hundred figures whose left edges cross one pixel; each covers the row to the right of it once.
    Path path;
    for (int i = 0; i < 700; ++i) path.append(polygon({at(2, 0), at(6, 0), at(6, 2), at(2, 2)}));
    EXPECT_EQ(coveredPicture(path, false, {0, 0, 8, 2}), "..####..\n..####..\n");
    EXPECT_EQ(coveredPicture(path, true, {0, 0, 8, 2}), "........\n........\n");
    path.append(polygon({at(3, 0), at(6, 0), at(6, 2), at(3, 2)}));
    EXPECT_EQ(coveredPicture(path, true, {0, 0, 8, 2}), "...###..\n...###..\n");
}

TEST(CoverageGaps, linesThatAllCrossInOnePoint_changePlacesAtOnce) {
    Path fan;
    for (int i = 0; i < 120; ++i) fan.append(polygon({{i * 5, 0}, {i * 5 + 3, 0}, {600 - i * 5, 640}, {597 - i * 5, 640}}));
    constexpr RECTL kWithin{0, 0, 40, 40};
    for (const bool alternate : {false, true}) EXPECT_EQ(coveredPicture(fan, alternate, kWithin), expectedPicture(fan, alternate, kWithin));
}

// Quadratic work on these takes minutes.
TEST(CoverageCost, manyFiguresInOneRow_takeNoLongerInAnyOrderOrBesideTheArea) {
    constexpr int kFigures = 200'000;
    Path path;
    for (int i = kFigures; i > 0; --i) path.append(polygon({{i * 32 - kFigures * 16, 0}, {i * 32 + 16 - kFigures * 16, 0}, {i * 32 + 16 - kFigures * 16, 64}, {i * 32 - kFigures * 16, 80}}));
    const auto start = std::chrono::steady_clock::now();
    std::uint64_t spans = 0;
    coverPath(path, false, {0, 0, kFigures, 4}, [&spans](const RECTL&) { ++spans; });
    coverPath(path, false, {-kFigures - 8, 0, -kFigures - 4, 4}, [&spans](const RECTL&) { ++spans; });
    EXPECT_GT(spans, static_cast<std::uint64_t>(kFigures));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}
