// Regions: set operations against a plain picture of pixels, and regions of paths.
#include <array>

#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

constexpr LONG kSide = 24;
using Pixels = std::array<std::array<bool, kSide>, kSide>;

Region randomRegion(Random& random, Pixels& pixels) {
    pixels = {};
    std::vector<RECTL> rectangles;
    for (int i = 0; i < 5; ++i) {
        const LONG left = random.below(kSide);
        const LONG top = random.below(kSide);
        const RECTL r{left, top, left + random.below(kSide - left + 1), top + random.below(kSide - top + 1)};
        rectangles.push_back(r);
        for (LONG y = r.top; y < r.bottom; ++y) {
            for (LONG x = r.left; x < r.right; ++x) pixels[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = true;
        }
    }
    return Region(rectangles);
}

}  // namespace

TEST(Region, emptyAndReversedRectangles_holdNothing) {
    EXPECT_TRUE(Region().empty());
    EXPECT_TRUE(Region(RECTL{5, 5, 5, 9}).empty());
    EXPECT_TRUE(Region(RECTL{9, 5, 5, 9}).empty());
    const RECTL box = Region().bounds();
    EXPECT_EQ(box.right, 0);
}

TEST(Region, setOperations_agreeWithPixels) {
    Random random(11);
    using Operation = void (Region::*)(const Region&);
    const struct {
        Operation operation;
        bool (*result)(bool, bool);
    } operations[] = {
        {&Region::intersect, [](bool a, bool b) { return a && b; }},
        {&Region::unite, [](bool a, bool b) { return a || b; }},
        {&Region::subtract, [](bool a, bool b) { return a && !b; }},
        {&Region::exclusiveOr, [](bool a, bool b) { return a != b; }},
    };
    for (int round = 0; round < 20; ++round) {
        Pixels first;
        Pixels second;
        const Region a = randomRegion(random, first);
        const Region b = randomRegion(random, second);
        for (const auto& entry : operations) {
            Region result = a;
            (result.*entry.operation)(b);
            for (LONG y = 0; y < kSide; ++y) {
                for (LONG x = 0; x < kSide; ++x) {
                    const auto row = static_cast<std::size_t>(y);
                    const auto column = static_cast<std::size_t>(x);
                    ASSERT_EQ(result.contains(x, y), entry.result(first[row][column], second[row][column])) << x << ',' << y;
                }
            }
        }
    }
}

TEST(Region, rectangles_comeInRowsAndMeetNowhere) {
    const RECTL parts[] = {{0, 0, 10, 10}, {5, 5, 15, 15}};
    const std::vector<RECTL> rectangles = Region(parts).rectangles();
    ASSERT_EQ(rectangles.size(), 3U);
    EXPECT_EQ(rectangles[1].left, 0);
    EXPECT_EQ(rectangles[1].right, 15);
    EXPECT_EQ(rectangles[2].top, 10);
}

TEST(Region, movedFrom_isEmptyAndUsable) {
    Region a(RECTL{0, 0, 4, 4});
    Region b = std::move(a);
    EXPECT_FALSE(b.empty());
    a = Region(RECTL{1, 1, 2, 2});  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(a.contains(1, 1));
    b.translate(-2, 3);
    EXPECT_TRUE(b.contains(-2, 3));
    EXPECT_FALSE(b.contains(0, 2));
}

TEST(Region, ofAPath_keepsLeftAndTopEdges) {
    const Region region = Region::fromPath(polygon({at(2, 3), at(6, 3), at(6, 5), at(2, 5)}), true, {0, 0, 100, 100});
    const std::vector<RECTL> rectangles = region.rectangles();
    ASSERT_EQ(rectangles.size(), 1U);
    EXPECT_EQ(rectangles[0].left, 2);
    EXPECT_EQ(rectangles[0].top, 3);
    EXPECT_EQ(rectangles[0].right, 6);
    EXPECT_EQ(rectangles[0].bottom, 5);
}

TEST(Region, ofOverlappingFigures_followsTheFillRule) {
    Path path = polygon({at(0, 0), at(8, 0), at(8, 8), at(0, 8)});
    path.append(polygon({at(2, 2), at(6, 2), at(6, 6), at(2, 6)}));
    EXPECT_FALSE(Region::fromPath(path, true, {0, 0, 20, 20}).contains(4, 4));
    EXPECT_TRUE(Region::fromPath(path, false, {0, 0, 20, 20}).contains(4, 4));
    EXPECT_FALSE(Region::fromPath(path, false, {0, 0, 3, 20}).contains(4, 4));
}
