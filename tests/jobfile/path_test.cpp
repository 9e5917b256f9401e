// The point store on disk for paths with very many curves.
#include <gtest/gtest.h>

#include "jobfile/CMvPath.h"
#include "support/DebugCapture.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr WCHAR kFolder[] = TEXT("C:\\data");
constexpr WCHAR kFile[] = TEXT("C:\\data\\Path.vec");

class PathStore : public testing::Test {
  protected:
    PathStore() { makeFolder(kFolder); }
    const TempHome m_home;
};

std::uint32_t countOf(CMvPath& path, int curve) {
    std::uint32_t count = 77;
    const int result = path.getPointsToCurve(curve, nullptr, nullptr, &count);
    EXPECT_EQ(result, count > 0 ? 1 : 0);
    return count;
}

std::vector<std::int32_t> pointsOf(CMvPath& path, int curve) {
    std::vector<std::int32_t> xs(countOf(path, curve));
    std::vector<std::int32_t> ys(xs.size());
    path.getPointsToCurve(curve, xs.data(), ys.data(), nullptr);
    std::vector<std::int32_t> both;
    for (std::size_t i = 0; i < xs.size(); ++i) both.insert(both.end(), {xs[i], ys[i]});
    return both;
}

}  // namespace

TEST_F(PathStore, negative_index_is_refused) {
    const DebugCapture debug;
    CMvPath path(kFolder);
    EXPECT_EQ(path.addPoint(-1, 5, 6, 0, 0), 1);
    EXPECT_TRUE(debug.has("CMvPath::addPoint, Invalid operation"));
    EXPECT_EQ(path.pointCount(), 0U);
    EXPECT_FALSE(exists(kFile));
}

TEST_F(PathStore, file_that_cannot_be_opened_is_reported) {
    const DebugCapture debug;
    CMvPath path(TEXT("C:\\no such folder"));
    EXPECT_EQ(path.addPoint(0, 5, 6, 0, 0), 1);
    EXPECT_TRUE(debug.has("CMvPath::addPoint, can't open vector file"));
    EXPECT_EQ(path.pointCount(), 0U);
}

TEST_F(PathStore, an_empty_folder_gives_a_store_without_a_file) {
    CMvPath path(TEXT(""));
    EXPECT_EQ(viewOf(path.filePath()).size(), 0U);
    EXPECT_EQ(path.addPoint(0, 5, 6, 0, 0), 1);
    EXPECT_EQ(path.pointCount(), 0U);
}

TEST_F(PathStore, neither_arrays_nor_a_count_is_invalid) {
    CMvPath path(kFolder);
    path.addPoint(0, 5, 6, 0, 0);
    std::int32_t x = 55;
    std::uint32_t count = 66;
    const DebugCapture debug;
    EXPECT_EQ(path.getPointsToCurve(0, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(path.getPointsToCurve(0, &x, nullptr, nullptr), 0);
    EXPECT_EQ(path.getPointsToCurve(0, nullptr, &x, &count), 0);
    EXPECT_EQ(debug.count("CMvPath::getPointsToCurve, invalid parameter"), 3U);
    EXPECT_EQ(x, 55);
    EXPECT_EQ(count, 66U);
}

TEST_F(PathStore, a_curve_without_lines_counts_nothing) {
    CMvPath path(kFolder);
    EXPECT_EQ(countOf(path, 0), 0U);
    path.addPoint(0, 5, 6, 0, 1);
    EXPECT_EQ(countOf(path, 0), 0U);
    EXPECT_EQ(countOf(path, 2), 0U);
}

TEST_F(PathStore, a_store_left_behind_is_deleted) {
    writeBytes(kFile, "Curve=0;Index=0;X=1;Y=1;Flags=0;\r\n");
    CMvPath path(kFolder);
    EXPECT_FALSE(exists(kFile));
    EXPECT_EQ(countOf(path, 0), 0U);
}

TEST_F(PathStore, writes_one_line_for_each_point) {
    CMvPath path(kFolder);
    path.addPoint(0, 10, -20, 1, 0);
    path.addPoint(1, -2147483648, 2147483647, 2, 0);
    path.addPoint(0, 3, 4, -1, 1);
    EXPECT_EQ(readBytes(kFile),
              "Curve=0;Index=0;X=10;Y=-20;Flags=1;\r\nCurve=0;Index=1;X=-2147483648;Y=2147483647;Flags=2;\r\nCurve=1;Index=0;X=3;Y=4;Flags="
              "-1;\r\n");
    EXPECT_EQ(path.pointCount(), 3U);
    EXPECT_EQ(path.lastCurve(), 1);
}

TEST_F(PathStore, gives_back_the_points_of_each_curve_in_any_order_of_asking) {
    CMvPath path(kFolder);
    for (int curve = 0; curve < 5; ++curve) {
        if (curve == 3) continue;
        for (int i = 0; i <= curve; ++i) path.addPoint(i, curve * 100 + i, -i, 0, curve);
    }
    for (const int curve : {0, 1, 2, 3, 4, 2, 0, 4, 5, 1, 3, 2}) {
        std::vector<std::int32_t> expected;
        for (int i = 0; i <= curve && curve != 3 && curve < 5; ++i) expected.insert(expected.end(), {curve * 100 + i, -i});
        EXPECT_EQ(pointsOf(path, curve), expected) << curve;
    }
    path.addPoint(5, 405, -5, 0, 4);
    EXPECT_EQ(countOf(path, 4), 6U);
}

TEST_F(PathStore, a_limit_beside_the_arrays_holds_what_is_filled_in) {
    CMvPath path(kFolder);
    for (int i = 0; i < 5; ++i) path.addPoint(i, i, i, 0, 0);
    std::array<std::int32_t, 4> xs{9, 9, 9, 9};
    std::array<std::int32_t, 4> ys{9, 9, 9, 9};
    EXPECT_EQ(path.getPointsToCurve(0, xs.data(), ys.data(), nullptr, 3), 1);
    EXPECT_EQ(xs, (std::array<std::int32_t, 4>{0, 1, 2, 9}));
    EXPECT_EQ(ys, (std::array<std::int32_t, 4>{0, 1, 2, 9}));
}

TEST_F(PathStore, a_count_beside_the_arrays_is_left_alone) {
    CMvPath path(kFolder);
    for (int i = 0; i < 3; ++i) path.addPoint(i, i, 10 + i, 0, 0);
    std::array<std::int32_t, 3> xs{};
    std::array<std::int32_t, 3> ys{};
    std::uint32_t count = 0;
    EXPECT_EQ(path.getPointsToCurve(0, xs.data(), ys.data(), &count), 1);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(xs, (std::array<std::int32_t, 3>{0, 1, 2}));
    EXPECT_EQ(ys, (std::array<std::int32_t, 3>{10, 11, 12}));
}

TEST_F(PathStore, the_last_token_may_end_the_line) {
    CMvPath path(kFolder);
    writeBytes(kFile, "Curve=1;Index=0;X=7;Y=8;Flags=0\r\nCurve=1;Index=1;X=9;Y=10;Flags=0");
    EXPECT_EQ(pointsOf(path, 1), (std::vector<std::int32_t>{7, 8, 9, 10}));
}

TEST_F(PathStore, search_ends_at_the_first_higher_curve) {
    writeBytes(kFile, "");
    CMvPath path(kFolder);
    writeBytes(kFile, "Curve=1;Index=0;X=1;Y=1;Flags=0;\r\nCurve=2;Index=0;X=2;Y=2;Flags=0;\r\nCurve=1;Index=1;X=3;Y=3;Flags=0;\r\n");
    EXPECT_EQ(countOf(path, 1), 1U);
}

TEST_F(PathStore, lines_that_are_no_points_are_passed_over) {
    CMvPath path(kFolder);
    writeBytes(kFile, "\r\nCurve=1;Index=0;X=1;Y=1;\r\nCurve=1;Index=0;X=7;Y=8;Flags=0;\r\ncurve=1;Index=0;X=1;Y=1;Flags=0;\r\n" +
                          std::string(40000, 'x') +
                          "\r\nCurve=1;X=0;Index=1;Y=1;Flags=0;\r\nCurve=1;Index=1;X=9;Y=10;Flags=0;\r\nCurve=1;Index=2;X=9;Y");
    EXPECT_EQ(pointsOf(path, 1), (std::vector<std::int32_t>{7, 8, 9, 10}));
}

TEST_F(PathStore, a_path_after_the_reset_starts_from_nothing) {
    CMvPath path(kFolder);
    path.addPoint(0, 1, 2, 0, 3);
    EXPECT_EQ(countOf(path, 3), 1U);
    DeleteFileW(path.filePath());
    path.resetCounters();
    EXPECT_EQ(path.pointCount(), 0U);
    EXPECT_EQ(path.lastCurve(), 0);
    path.addPoint(0, 5, 6, 0, 0);
    path.addPoint(0, 7, 8, 0, 3);
    EXPECT_EQ(pointsOf(path, 3), (std::vector<std::int32_t>{7, 8}));
    EXPECT_EQ(pointsOf(path, 0), (std::vector<std::int32_t>{5, 6}));
}

}  // namespace morvil::test
