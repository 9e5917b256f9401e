// How many lines curves become: few where nothing shows, as many as they need where it does, and never more than a bound.
#include <algorithm>

#include "engine/FakeDriver.h"
#include "support/PixelFixtures.h"
#include "support/PlayedMetafile.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

constexpr XFORM kIdentity{1, 0, 0, 1, 0, 0};
constexpr RECTL kSeen{0, 0, 300, 200};
constexpr LONG kFarthest = 1 << 26;  // pixels; no drawing reaches farther

POINTFIX somewhere(Random& random, LONG reach) { return {(random.below(2 * reach) - reach) * 16, (random.below(2 * reach) - reach) * 16}; }

// One figure of curves whose points lie anywhere within the reach.
Path scribble(Random& random, std::size_t curves, LONG reach) {
    Path path;
    path.moveTo(somewhere(random, reach));
    for (std::size_t i = 0; i < curves; ++i) path.bezierTo(somewhere(random, reach), somewhere(random, reach), somewhere(random, reach));
    return path;
}

std::size_t pointsOf(const Path& path) {
    std::size_t points = 0;
    for (const Subpath& figure : path.subpaths()) points += figure.points.size();
    return points;
}

// The lines that may show, as text: those not wholly on one side of the box.
std::vector<std::string> linesSeen(const Path& flat, const RECTL& box) {
    std::vector<std::string> seen;
    for (const Subpath& figure : flat.subpaths()) {
        for (std::size_t i = 1; i < figure.points.size(); ++i) {
            const POINTFIX a = figure.points[i - 1];
            const POINTFIX b = figure.points[i];
            const auto [left, right] = std::minmax(a.x, b.x);
            const auto [top, bottom] = std::minmax(a.y, b.y);
            if (right < box.left * 16 || left > box.right * 16 || bottom < box.top * 16 || top > box.bottom * 16) continue;
            seen.push_back(std::to_string(a.x) + ',' + std::to_string(a.y) + ' ' + std::to_string(b.x) + ',' + std::to_string(b.y));
        }
    }
    return seen;
}

std::size_t curvesOfCall(const std::string& call) {
    const std::string label = "cCurves=";
    return std::stoul(call.substr(call.find(label) + label.size()));
}

}  // namespace

TEST(Flattening, farReachingCurves_takeFewLinesWhereNothingShows) {
    Random random(3);
    const Path path = scribble(random, 1000, kFarthest);
    EXPECT_LT(pointsOf(path.flattened({.seen = kSeen})), 40'000U);
}

TEST(Flattening, curvesOutOfSight_areOneLineEach) {
    Path path;
    path.moveTo(at(-10, 0));
    path.bezierTo(at(-5000, 9000), at(-90, -9000), at(-10, 100));  // left
    path.lineTo(at(-10, 300));
    path.bezierTo(at(-9000, 300), at(9000, 250), at(10, 300));  // below
    const Path flat = path.flattened({.seen = kSeen});
    EXPECT_EQ(pointsOf(flat), 4U);
    EXPECT_EQ(flat.curveCount(), 3U);
}

TEST(Flattening, whatShows_isTheSameAsWithoutABox) {
    Random random(5);
    std::size_t lines = 0;
    for (const LONG reach : {400, 1000, 5000, 100'000, 10'000'000}) {
        for (int round = 0; round < 20; ++round) {
            const Path path = scribble(random, 6, reach);
            const Path whole = path.flattened();
            const Path cut = path.flattened({.seen = kSeen});
            const std::vector<std::string> seen = linesSeen(whole, kSeen);
            EXPECT_EQ(linesSeen(cut, kSeen), seen) << "reach " << reach;
            lines += seen.size();
            for (const bool alternate : {false, true}) {
                EXPECT_EQ(describe(Region::fromPath(cut, alternate, kSeen)), describe(Region::fromPath(whole, alternate, kSeen)))
                    << "reach " << reach;
            }
        }
    }
    EXPECT_GT(lines, 1000U);
}

TEST(Flattening, keptCurves_areThoseThatLieWhollyWithin) {
    Path path;
    path.moveTo(at(10, 10));
    path.bezierTo(at(20, 10), at(30, 20), at(30, 30));
    path.bezierTo(at(30, 500), at(40, 500), at(40, 30));
    const Path kept = path.flattened({.seen = kSeen, .keepsNear = true});
    ASSERT_EQ(kept.subpaths().size(), 1U);
    EXPECT_EQ(kept.subpaths()[0].segments[0], SegmentKind::Bezier);
    EXPECT_EQ(std::ranges::count(kept.subpaths()[0].segments, SegmentKind::Bezier), 1);
    EXPECT_GT(kept.curveCount(), 2U);
}

TEST(Flattening, tooManyLines_becomeCoarserOnesAsFarAsOneForEachCurve) {
    Random random(7);
    const Path path = scribble(random, 100, 1000);
    const std::size_t fine = pointsOf(path.flattened());
    ASSERT_GT(fine, 5000U);
    const std::size_t coarse = pointsOf(path.flattened({.mostLines = 2000}));
    EXPECT_LE(coarse, 2001U);
    EXPECT_GT(coarse, 700U);
    EXPECT_EQ(pointsOf(path.flattened({.mostLines = 10})), 101U);
    const Path kept = path.flattened({.keepsNear = true, .mostLines = 2000});  // they would take too many later
    EXPECT_FALSE(kept.hasBeziers());
    EXPECT_LE(pointsOf(kept), 2001U);
    EXPECT_EQ(pointsOf(path.flattened({.keepsNear = true})), 301U);
}

TEST(Flattening, aPathOfVeryManyCurves_takesAMillionLines) {
    Random random(9);
    const std::size_t points = pointsOf(scribble(random, 2000, kFarthest).flattened());
    EXPECT_GT(points, 400'000U);
    EXPECT_LE(points, (1U << 20) + 1);
}

// The outline has its own way with curves.
TEST(Flattening, outlinesOfFarReachingCurves_haveFewPoints) {
    Random random(11);
    const Path path = scribble(random, 200, kFarthest);
    Pen pen;
    pen.geometric = true;
    pen.width = 10.0;
    const std::size_t points = pointsOf(widenPath(path, pen, kIdentity, kSeen));
    EXPECT_GT(points, 800U);
    EXPECT_LT(points, 100'000U);
}

TEST(Flattening, finishedPathsOfMetafiles_areFlattenedWithinSightOfThePage) {
    Random random(13);
    constexpr std::uint32_t kPoints = 301;
    Bytes curves;
    curves.all32({0, 0, 0, 0}).u32(kPoints);
    for (std::uint32_t i = 0; i < kPoints; ++i)
        curves.i32(random.below(2 * kFarthest) - kFarthest).i32(random.below(2 * kFarthest) - kFarthest);
    MetafileBuilder builder;
    builder.add(emr::kBEGINPATH)
        .add(emr::kPOLYBEZIER, curves)
        .add(emr::kENDPATH)
        .add(emr::kFLATTENPATH)
        .add(emr::kSTROKEPATH, {0, 0, 0, 0});
    const PlayedMetafile played = playCleanly(builder);
    ASSERT_EQ(played.calls.size(), 1U);
    EXPECT_FALSE(played.calls[0].path.hasBeziers());
    EXPECT_LT(pointsOf(played.calls[0].path), 5000U);
}

namespace {

class FlatStrokes : public EngineTest {
  protected:
    // A page with one path stroked and filled.
    class Drawing : public PageSource {
      public:
        explicit Drawing(Path path) : m_path(std::move(path)) {}
        void play(Canvas& canvas) override {
            canvas.strokePath(m_path, {}, kIdentity, 13);
            canvas.fillPath(m_path, {}, FillMode::Alternate, 13);
        }

      private:
        Path m_path;
    };
    FakeDriver driver;
};

}  // namespace

TEST_F(FlatStrokes, ofFarReachingCurves_reachTheDriverWithFewLines) {
    Random random(15);
    PrintRequest request;
    request.enableDriver = &FakeDriver::enable;
    request.printerName = TEXT("Morvil");
    request.pages.push_back({std::make_shared<Drawing>(scribble(random, 100, kFarthest)), std::vector<std::uint8_t>(sizeof(DEVMODEW))});
    ASSERT_EQ(printDocument(request).status, PrintStatus::Done);
    std::size_t paths = 0;
    for (const std::string& call : driver.calls) {
        if (!call.starts_with("DrvStrokePath") && !call.starts_with("DrvFillPath")) continue;
        ++paths;
        EXPECT_LT(curvesOfCall(call), 4000U);
    }
    EXPECT_EQ(paths, 2U);
}
