// Clipping of outlines to the job rectangle: the cases of tests/data/clipping.txt, random outlines against the plain
// formulation with linked lists, and the log lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>

#include "jobfile/MvPolygonClipping.h"
#include "support/ClippingCases.h"
#include "support/DebugCapture.h"
#include "support/LogFiles.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

const std::string kCases = MORVIL_TEST_DATA "/clipping.txt";

struct Arrays {
    std::vector<std::int32_t> xs;
    std::vector<std::int32_t> ys;
};

Arrays arraysOf(const ClippingPoints& points) {
    Arrays arrays;
    for (const ClippingPoint& point : points) {
        arrays.xs.push_back(point.x);
        arrays.ys.push_back(point.y);
    }
    return arrays;
}

std::uint32_t clip(MvPolygonClipping& clipper, std::int32_t width, std::int32_t height, const ClippingPoints& points) {
    const Arrays arrays = arraysOf(points);
    clipper.setJobArea(width, height);
    return clipper.setPoints(arrays.xs.data(), arrays.ys.data(), static_cast<std::uint32_t>(points.size()));
}

ClippingPoints pointsOf(std::span<const ClipPoint> points, bool withFlags) {
    ClippingPoints out;
    for (const ClipPoint& point : points) out.push_back({point.x, point.y, withFlags && point.deleted != 0, withFlags && point.moved != 0});
    return out;
}

std::vector<ClippingPoints> piecesOf(MvPolygonClipping& clipper) {
    std::vector<ClippingPoints> pieces;
    const std::uint32_t count = clipper.getCntPolygons();
    for (std::uint32_t i = 0; i < count; ++i) pieces.push_back(pointsOf(clipper.getPolygon(i), false));
    return pieces;
}

std::string piecesText(const std::vector<ClippingPoints>& pieces) {
    std::string text;
    for (const ClippingPoints& piece : pieces) text += "PIECE: " + textOf(piece) + "\n";
    return text;
}

// The plain formulation: lists walked from their head, every duplicate test a walk through the whole list.
class PlainClipper {
  public:
    PlainClipper(std::int32_t width, std::int32_t height, const ClippingPoints& points) : m_width(width), m_height(height) {
        bool outside = false;
        for (ClippingPoint point : points) {
            if (point.x == -1) point.x = 0;
            if (point.y == -1) point.y = 0;
            outside = outside || !inside(point);
            m_original.push_back(point);
        }
        if (outside)
            pass();
        else
            corrected = {m_original.begin(), m_original.end()};
        split();
    }

    std::vector<ClippingPoint> corrected;
    std::vector<ClippingPoints> pieces;

  private:
    [[nodiscard]] bool inside(const ClippingPoint& p) const { return !(p.x < 0 || p.x >= m_width || p.y < 0 || p.y >= m_height); }

    void pass() {
        for (auto at = m_original.begin(); at != m_original.end(); ++at) {
            if (inside(*at)) corrected.push_back(*at);
            if (std::next(at) != m_original.end()) take(crossings(*at, *std::next(at)));
            if (at != m_original.begin()) take(crossings(*at, *std::prev(at)));
        }
    }

    void take(const std::list<ClippingPoint>& batch) {
        for (const ClippingPoint& point : batch) {
            if (std::find(corrected.begin(), corrected.end(), point) != corrected.end()) return;
            corrected.push_back(point);
        }
    }

    [[nodiscard]] std::list<ClippingPoint> crossings(const ClippingPoint& p, const ClippingPoint& q) const {
        const double right = m_width - 1.0;
        const double bottom = m_height - 1.0;
        const double edges[4][4] = {{0, 0, right, 0}, {right, 0, right, bottom}, {right, bottom, 0, bottom}, {0, bottom, 0, 0}};
        std::list<ClippingPoint> found;
        bool a = false;
        bool b = false;
        for (const auto& edge : edges) {
            const double ex = edge[2] - edge[0];
            const double ey = edge[3] - edge[1];
            const double sx = static_cast<double>(q.x) - p.x;
            const double sy = static_cast<double>(q.y) - p.y;
            const double d = ex * sy - ey * sx;
            if (d == 0) continue;
            const double t = (ex * (edge[1] - p.y) - ey * (edge[0] - p.x)) / d;
            const double exactX = p.x + sx * t;
            const double exactY = p.y + sy * t;
            const auto x = static_cast<std::int64_t>(exactX > 0 ? exactX + 0.5 : exactX - 0.5);
            const auto y = static_cast<std::int64_t>(exactY > 0 ? exactY + 0.5 : exactY - 0.5);
            if (x < std::min(p.x, q.x) || x > std::max(p.x, q.x) || y < std::min(p.y, q.y) || y > std::max(p.y, q.y)) continue;
            if (x < 0 || x >= m_width || y < 0 || y >= m_height) continue;
            const ClippingPoint crossing{static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), a, b};
            if (crossing != p && crossing != q) {
                found.push_back({crossing.x, crossing.y, a, true});
                b = true;
                continue;
            }
            if ((x == 0 || x == m_width - 1) && (y == 0 || y == m_height - 1)) continue;
            if (inside(p) && inside(q)) continue;
            found.push_back({crossing.x, crossing.y, true, b});
            a = true;
        }
        return found;
    }

    void split() {
        pieces.assign(1, {});
        std::size_t count = 0;
        std::int32_t lastX = -1;
        std::int32_t lastY = -1;
        bool first = true;
        for (std::size_t k = 0; k < corrected.size(); ++k) {
            const ClippingPoint& point = corrected[k];
            if (point.x != lastX || point.y != lastY) pieces.back().push_back({point.x, point.y, false, false});
            lastX = point.x;
            lastY = point.y;
            if (!first && (point.moved || point.deleted)) {
                ++count;
                pieces.emplace_back();
                first = true;
            } else if (k != corrected.size() - 1) {
                first = false;
            } else {
                ++count;
                first = true;
            }
        }
        pieces.resize(count);
    }

    std::int32_t m_width;
    std::int32_t m_height;
    std::list<ClippingPoint> m_original;
};

}  // namespace

TEST(Clipping, every_case_of_the_data_file) {
    const std::vector<ClippingCase> cases = loadClippingCases(kCases);
    ASSERT_GT(cases.size(), 30U);
    MvPolygonClipping clipper;
    for (const ClippingCase& expected : cases) {
        const std::uint32_t count = clip(clipper, expected.width, expected.height, expected.polygon);
        const std::string place = "tests/data/clipping.txt:" + std::to_string(expected.line) + ": \"" + expected.name + "\"";
        EXPECT_EQ(count, expected.polygon.size()) << place;
        EXPECT_EQ(textOf(pointsOf(clipper.corrected(), true)), textOf(expected.corrected)) << place;
        EXPECT_EQ(piecesText(piecesOf(clipper)), piecesText(expected.pieces)) << place;
    }
}

TEST(Clipping, random_outlines_give_what_the_plain_formulation_gives) {
    std::mt19937 random(20240607);
    const auto number = [&random](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); };
    MvPolygonClipping clipper;
    for (int round = 0; round < 20000; ++round) {
        const int width = number(1, 12);
        const int height = number(1, 12);
        ClippingPoints points;
        for (int i = number(0, 12); i > 0; --i) points.push_back({number(-6, 18), number(-6, 18), false, false});
        clip(clipper, width, height, points);
        const PlainClipper plain(width, height, points);
        ASSERT_EQ(textOf(pointsOf(clipper.corrected(), true)), textOf(plain.corrected))
            << "AREA: " << width << ' ' << height << "\nPOLYGON: " << textOf(points);
        ASSERT_EQ(piecesText(piecesOf(clipper)), piecesText(plain.pieces))
            << "AREA: " << width << ' ' << height << "\nPOLYGON: " << textOf(points);
    }
}

TEST(Clipping, each_question_for_the_pieces_gives_the_same_answer) {
    MvPolygonClipping clipper;
    clip(clipper, 100, 80, {{50, 10, false, false}, {150, 10, false, false}, {50, 70, false, false}});
    EXPECT_EQ(clipper.getCntPolygons(), 2U);
    EXPECT_EQ(clipper.getCntPolygons(), 2U);
    EXPECT_EQ(textOf(pointsOf(clipper.getPolygon(1), false)), "99,41 50,70");
}

TEST(Clipping, index_beyond_the_last_piece_yields_the_last_list) {
    MvPolygonClipping clipper;
    clip(clipper, 100, 80, {{10, 10, false, false}, {20, 10, false, false}});
    EXPECT_EQ(clipper.getCntPolygons(), 1U);
    EXPECT_EQ(textOf(pointsOf(clipper.getPolygon(7), false)), "10,10 20,10");
    clip(clipper, 100, 80, {{50, 40, false, false}, {150, 40, false, false}});  // ends on the border: an empty list stands behind
    EXPECT_EQ(clipper.getCntPolygons(), 1U);
    EXPECT_EQ(textOf(pointsOf(clipper.getPolygon(0), false)), "50,40 99,40");
    EXPECT_EQ(textOf(pointsOf(clipper.getPolygon(1), false)), "");
}

TEST(Clipping, a_polygon_starts_from_empty_lists) {
    MvPolygonClipping clipper;
    clip(clipper, 100, 80, {{50, 40, false, false}, {150, 40, false, false}});
    clip(clipper, 100, 80, {});
    EXPECT_TRUE(clipper.corrected().empty());
    EXPECT_EQ(clipper.getCntPolygons(), 0U);
}

TEST(Clipping, logs_an_outline_inside) {
    const TempHome home;
    const LogFiles log;
    MvPolygonClipping clipper;
    clip(clipper, 100, 80, {{-1, 5, false, false}, {20, -1, false, false}});
    clipper.getCntPolygons();
    const std::vector<std::string> expected{"MvPolygonClipping::setPoints, uiCount=2", "MvPolygonClipping::setPoints, -1 corrected",
                                            "MvPolygonClipping::setPoints, -1 corrected", "MvPolygonClipping::setPoints finished",
                                            "MvPolygonClipping::getCntPolygons, uiCntPolygons=1, m_PointsCorrected=2"};
    EXPECT_EQ(log.morvilMessages(), expected);
}

TEST(Clipping, logs_an_outline_that_leaves_the_job) {
    const TempHome home;
    const LogFiles log;
    const DebugCapture debug;
    MvPolygonClipping clipper;
    clip(clipper, 100, 80, {{50, 40, false, false}, {150, 40, false, false}});
    clipper.getCntPolygons();
    const std::vector<std::string> expected{"MvPolygonClipping::setPoints, uiCount=2",
                                            "MvPolygonClipping::setPoints point outside of jobdimensions found",
                                            "MvPolygonClipping::dump, m_PointsOrg(2), m_ItPointsCorrected(2)",
                                            "Point original (0), x=50, y=40, moved=0",
                                            "Point original (1), x=150, y=40, moved=0",
                                            "Corrected points (0), x=50, y=40, moved=0, deleted=0",
                                            "Corrected points (1), x=99, y=40, moved=1, deleted=0",
                                            "MvPolygonClipping::dump finished",
                                            "MvPolygonClipping::setPoints finished",
                                            "MvPolygonClipping::getCntPolygons, uiCntPolygons=1, m_PointsCorrected=2"};
    EXPECT_EQ(log.morvilMessages(), expected);
    EXPECT_TRUE(debug.has("Add Intersection point, x=50, y=40\n"));
    EXPECT_TRUE(debug.has("Add Corrected point, x=50, y=40\n"));
    EXPECT_EQ(debug.count("Add Intersection point, x=99, y=40\n"), 2U);  // once from each end of the segment
    EXPECT_EQ(debug.count("Add Corrected point, x=99, y=40\n"), 1U);
    EXPECT_TRUE(debug.has("Point original (1), x=150, y=40, moved=0\n"));
    EXPECT_TRUE(debug.has("Corrected points (1), x=99, y=40, moved=1, deleted=0\n"));
    EXPECT_TRUE(debug.has("Count Polygons=1, Count corrected=2\n"));
}

TEST(Clipping, dumps_at_most_a_hundred_points_of_each_list) {
    const TempHome home;
    const LogFiles log;
    MvPolygonClipping clipper;
    ClippingPoints points(150, {5, 5, false, false});
    points.push_back({200, 5, false, false});
    clip(clipper, 100, 80, points);
    const std::vector<std::string> messages = log.morvilMessages();
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(), [](const std::string& text) { return text.starts_with("Point original"); }),
              100);
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(), [](const std::string& text) { return text.starts_with("Corrected points"); }),
              100);
    EXPECT_TRUE(std::count(messages.begin(), messages.end(), "MvPolygonClipping::dump, m_PointsOrg(151), m_ItPointsCorrected(151)") == 1);
}

TEST(Clipping, announces_its_life_in_the_debugger_output) {
    const TempHome home;
    const DebugCapture debug;
    { const MvPolygonClipping clipper; }
    const std::vector<std::string> expected{"MvPolygon::MvPolygon\n", "MvPolygonClipping::MvPolygonClipping finished\n",
                                            "MvPolygonClipping::MvPolygonClipping finished\n",
                                            "MvPolygonClipping::~MvPolygonClipping finished\n"};
    EXPECT_EQ(debug.texts(), expected);
}

}  // namespace morvil::test
