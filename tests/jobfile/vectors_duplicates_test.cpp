// The search for polygons that stand in the job file already.
#include <random>

#include "jobfile/CommandText.h"
#include "jobfile/VectorsFixture.h"

namespace morvil::test {

// ---- duplicates -----------------------------------------------------------------------------------------------------------

TEST_F(JobVectors, the_same_polygon_is_dropped_with_the_check_and_written_twice_without) {
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}));
    const std::string once = bytesOf(*writer);
    clearLog();
    EXPECT_FALSE(polygon(*writer, {1, 2, 3, 4}));
    EXPECT_EQ(messages(),
              (std::vector<std::string>{"WritePolygon, cntPoints=2, bCheck=1", kMatched[0], kMatched[1],
                                        "CSpoolFile::doPolygonAlreadyExist, uiCount=2", "CSpoolFile::doPolygonAlreadyExist finished",
                                        "WritePolygon, Polygon already exist in Tsf"}));
    EXPECT_EQ(bytesOf(*writer), once);
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}, 0x0000FF, false));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;1;2;3;4>\r\n<DrawPolygon: 2;255;0;0;1;2;3;4>");
}

TEST_F(JobVectors, near_duplicates_are_written) {
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4, 5, 6}));
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4, 5, 6}, 0x00FF00));  // another colour
    EXPECT_TRUE(polygon(*writer, {3, 4, 5, 6, 1, 2}));            // another starting point
    EXPECT_TRUE(polygon(*writer, {5, 6, 3, 4, 1, 2}));            // the other way round
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}));                  // a part of it
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4, 5, 60}));
    EXPECT_TRUE(polygon(*writer, {11, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(polygon(*writer, {3, 4, 5, 6, 1, 2}));
}

TEST_F(JobVectors, duplicates_are_judged_by_the_corrected_colour) {
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}, 0x0000FD));
    EXPECT_FALSE(polygon(*writer, {1, 2, 3, 4}, 0x646464));  // becomes 0x0000FD
}

TEST_F(JobVectors, duplicates_are_judged_by_the_points_as_given) {
    config.flags = MV_FL_IMAGEOP_FLIP_HORIZONTAL;
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {30, 20}));   // written as 70
    EXPECT_TRUE(polygon(*writer, {30, 20}));   // 30 does not stand in the file
    EXPECT_FALSE(polygon(*writer, {70, 20}));  // 70 does
}

TEST_F(JobVectors, a_polygon_longer_than_the_work_buffer_is_compared_whole) {
    const auto writer = begin();
    std::vector<std::int32_t> points;
    for (int i = 0; i < 6000; ++i) points.push_back(i);
    EXPECT_TRUE(polygon(*writer, points));
    EXPECT_FALSE(polygon(*writer, points));
    points.back() = 7;
    EXPECT_TRUE(polygon(*writer, points));
}

TEST_F(JobVectors, lines_of_a_million_characters_never_match) {
    // "<DrawPolygon: N;255;0;0" and N times ";x;y", ">" and the line feed: `characters` in all.
    const auto pointsFor = [](std::size_t characters) {
        std::vector<std::int32_t> points(2 * 90000, 1111);
        std::size_t length = std::string("<DrawPolygon: 90000;255;0;0>\n").size() + 10 * 90000;
        for (std::size_t i = 0; length < characters; ++i, ++length) points[i] = 11111;
        return points;
    };
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, pointsFor(1'000'000)));
    EXPECT_TRUE(polygon(*writer, pointsFor(1'000'000)));
    EXPECT_TRUE(polygon(*writer, pointsFor(999'999)));
    EXPECT_FALSE(polygon(*writer, pointsFor(999'999)));
    // The same from the file alone.
    writeBytes(writer->jobFilePath(), bytesOf(*writer) + "x");
    EXPECT_TRUE(polygon(*writer, pointsFor(1'000'000)));
    EXPECT_FALSE(polygon(*writer, pointsFor(999'999)));
}

TEST_F(JobVectors, a_line_of_a_million_characters_hides_what_stands_in_it) {
    const auto writer = begin();
    const std::string job = bytesOf(*writer);
    const auto lineOf = [](std::size_t characters, const std::string& command) {  // the line feed counts, the return does not
        return command + std::string(characters - command.size() - 1, 'x') + "\r\n";
    };
    writeBytes(writer->jobFilePath(), job + lineOf(1'000'000, "<DrawPolygon: 1;255;0;0;7;8>") +
                                          lineOf(999'999, "<DrawPolygon: 1;255;0;0;9;9>") +
                                          lineOf(3'000'000, "<DrawPolygon: 1;255;0;0;5;5>") + "<DrawPolygon: 1;255;0;0;6;6>");
    EXPECT_FALSE(polygon(*writer, {9, 9}));
    EXPECT_FALSE(polygon(*writer, {6, 6}));  // the last line needs no end
    EXPECT_TRUE(polygon(*writer, {7, 8}));
    EXPECT_TRUE(polygon(*writer, {5, 5}));
}

TEST_F(JobVectors, lines_that_somebody_else_wrote_are_seen) {
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {1, 2}));
    EXPECT_TRUE(polygon(*writer, {3, 4}));
    std::string job = bytesOf(*writer);
    // Behind the end: found, though the writer goes on at its own place.
    writeBytes(writer->jobFilePath(), job + "noise <DrawPolygon: 1;255;0;0;7;8> noise\r\n");
    EXPECT_FALSE(polygon(*writer, {7, 8}));
    writeBytes(writer->jobFilePath(), job);
    EXPECT_FALSE(polygon(*writer, {3, 4}));
    EXPECT_TRUE(polygon(*writer, {7, 8}));
    // In place of another line, which is then gone.
    job = bytesOf(*writer);
    job.replace(job.find("0;3;4>"), 6, "0;9;9>");
    writeBytes(writer->jobFilePath(), job);
    EXPECT_TRUE(polygon(*writer, {3, 4}));
    EXPECT_FALSE(polygon(*writer, {9, 9}));
}

TEST_F(JobVectors, the_answers_are_those_of_a_search_through_the_file) {
    std::mt19937 random(11);
    config.flags = MV_FL_POLYGON_CLIPPING;
    config.size.pixelWidth = 6;
    config.size.pixelHeight = 6;
    const auto writer = begin();
    std::vector<std::uint8_t> page(4 * 6, 0xFF);
    int dropped = 0;
    for (int i = 0; i < 600; ++i) {
        std::vector<std::int32_t> points;
        for (auto n = 2 * (1 + random() % 3); n > 0; --n) points.push_back(static_cast<std::int32_t>(random() % 8));
        const std::uint32_t colour = random() % 2 == 0 ? 0x0000FF : 0x00FF00;
        const bool check = random() % 4 != 0;
        std::string text;
        appendOpening(text, TEXT("<DrawPolygon: %i;%i;%i;%i"), points.size() / 2, colour);
        for (std::size_t k = 0; k < points.size(); k += 2) appendPoint(text, points[k], points[k + 1]);
        text += ">";
        const bool stands = vectorsOf(bytesOf(*writer)).find(text) != std::string::npos;
        ASSERT_EQ(polygon(*writer, points, colour, check), !(check && stands)) << text;
        dropped += check && stands ? 1 : 0;
        const bool moves = i == 300;  // the page moves the section
        ASSERT_TRUE(!moves || writer->WriteBitmap(page.data(), page.size()));
    }
    EXPECT_GT(dropped, 50);
}

}  // namespace morvil::test
