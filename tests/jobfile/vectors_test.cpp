// The vector commands: their lines, their order of steps, the search for duplicates, mirroring and clipping.
#include <limits>
#include <random>
#include <set>

#include "jobfile/CommandText.h"
#include "jobfile/JobFixture.h"
#include "support/CommaLocale.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

class JobVectors : public JobFixture {
  protected:
    JobVectors() {
        config.size.pixelWidth = 100;
        config.size.pixelHeight = 80;
    }

    // A polygon of the points x, y, x, y, ...
    static bool polygon(CSpoolFile& writer, std::vector<std::int32_t> points, std::uint32_t colour = 0x0000FF, bool check = true) {
        std::vector<std::int32_t> xs;
        std::vector<std::int32_t> ys;
        for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
            xs.push_back(points[i]);
            ys.push_back(points[i + 1]);
        }
        return writer.WritePolygon(xs.data(), ys.data(), static_cast<std::uint32_t>(xs.size()), colour, check);
    }

    // The messages since the last clearing that do not come from the clipper, in order.
    [[nodiscard]] Strings steps() const {
        Strings kept;
        for (const std::string& message : messages()) {
            if (!message.starts_with("MvPolygonClipping") && !message.starts_with("Point original") &&
                !message.starts_with("Corrected points"))
                kept.push_back(message);
        }
        return kept;
    }
};

constexpr const char* kMatched[] = {"CSpoolFile::checkPolygonColor", "CSpoolFile::checkPolygonColor finished"};

}  // namespace

// ---- what writes nothing --------------------------------------------------------------------------------------------------

TEST_F(JobVectors, a_polygon_without_points_writes_nothing) {
    const auto writer = begin();
    const std::string before = bytesOf(*writer);
    std::int32_t x = 5;
    EXPECT_TRUE(writer->WritePolygon(&x, &x, 0, 0, false));
    EXPECT_TRUE(logged("!!! Error WritePolygon"));
    EXPECT_TRUE(writer->WritePolygon(nullptr, &x, 1, 0, false));
    EXPECT_EQ(bytesOf(*writer), before);
    writer->Complete();
    EXPECT_TRUE(spooled(TEXT("Plan.tsf")));  // nothing was lost by it
}

TEST_F(JobVectors, a_curve_without_points_writes_nothing) {
    const auto writer = begin();
    const std::string before = bytesOf(*writer);
    std::int32_t x = 5;
    EXPECT_TRUE(writer->WriteBezier(&x, &x, 0, 0));
    EXPECT_TRUE(logged("!!! Error WriteBezier"));
    EXPECT_EQ(bytesOf(*writer), before);
}

TEST_F(JobVectors, without_a_vector_section_the_place_is_not_found) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    const std::string before = bytesOf(writer);
    std::int32_t x = 5;
    EXPECT_TRUE(writer.WritePolygon(&x, &x, 1, 0, false));
    EXPECT_TRUE(writer.WriteBezier(&x, &x, 1, 0));
    EXPECT_TRUE(writer.WriteArc({}, 0));
    EXPECT_TRUE(logged("!!! Error WritePolygon <BeginGroup: DrawCommands> not found"));
    EXPECT_TRUE(logged("!!! Error WriteBezier <BeginGroup: DrawCommands> not found"));
    EXPECT_TRUE(logged("!!! Error WriteArc <BeginGroup: DrawCommands> not found"));
    EXPECT_EQ(bytesOf(writer), before);
}

TEST_F(JobVectors, a_file_that_somebody_cut_is_not_written_to) {
    const auto writer = begin();
    polygon(*writer, {1, 2, 3, 4});
    const std::string before = bytesOf(*writer).substr(0, bytesOf(*writer).size() - 30);
    writeBytes(writer->jobFilePath(), before);
    EXPECT_TRUE(polygon(*writer, {5, 6, 7, 8}));
    EXPECT_TRUE(logged("!!! Error WritePolygon <BeginGroup: DrawCommands> not found"));
    EXPECT_EQ(bytesOf(*writer), before);
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(JobVectors, a_file_that_somebody_removed_is_reported) {
    const auto writer = begin();
    DeleteFileW(writer->jobFilePath());
    EXPECT_TRUE(polygon(*writer, {5, 6, 7, 8}));
    EXPECT_TRUE(logged("!!! Error WritePolygon"));
    EXPECT_EQ(spoolFiles(), Strings{});
}

// ---- lines ----------------------------------------------------------------------------------------------------------------

TEST_F(JobVectors, the_empty_section) {
    CSpoolFile writer;
    EXPECT_FALSE(writer.WriteVectorSection());
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    clearLog();
    EXPECT_TRUE(writer.WriteVectorSection());
    EXPECT_EQ(messages(), (Strings{"CSpoolFile::WriteVectorSection", "WriteVectorSection", "WriteVectorSection finshed",
                                   "CSpoolFile::WriteVectorSection finished"}));
    EXPECT_TRUE(bytesOf(writer).ends_with("<STBmp: 0;0><BegGroup: DrawCommands>\r\n<EndGroup: DrawCommands>\r\n"));
}

TEST_F(JobVectors, one_line_for_each_command_in_the_order_drawn) {
    const auto writer = begin();
    polygon(*writer, {10, 20, -30, 40}, 0x332211);
    std::array<std::int32_t, 4> xs{0, 1, 2, 2147483647};
    std::array<std::int32_t, 4> ys{0, -1, -2, -2147483647 - 1};
    EXPECT_TRUE(writer->WriteBezier(xs.data(), ys.data(), 4, 0x808080));  // no colour matching
    EXPECT_TRUE(writer->WriteArc({.coordinates = {1.9, 2.7, -2.7}, .unused = 99, .values = {0.125, -45.678}, .sixth = -7}, 0xFF8001));
    EXPECT_EQ(commandsOf(bytesOf(*writer)),
              "<DrawPolygon: 2;17;34;51;10;20;-30;40>\r\n"
              "<DrawBezier: 4;128;128;128;0;0;1;-1;2;-2;2147483647;-2147483648>\r\n"
              "<DrawArc: 1;128;255;2;-2;1;0.12;-45.68;-7>");
    EXPECT_TRUE(logged("WriteBezier"));
    EXPECT_TRUE(logged("WriteBezier finished"));
    EXPECT_TRUE(logged("WriteArc"));
    EXPECT_TRUE(logged("WriteArc finished"));
}

TEST_F(JobVectors, arcs_have_points_in_a_country_with_a_comma_and_that_stays_set) {
    const auto writer = begin();
    const CommaLocale comma;
    if (!comma.isSet()) GTEST_SKIP() << "no country with a decimal comma";
    EXPECT_TRUE(writer->WriteArc({.coordinates = {1, 2, 3}, .unused = 0, .values = {0.5, -45.678}, .sixth = 4}, 0));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawArc: 0;0;0;2;3;1;0.50;-45.68;4>");
    EXPECT_TRUE(comma.isSet());
}

TEST(CommandText, coordinates_are_cut_toward_zero) {
    EXPECT_EQ(truncated(2.7), 2);
    EXPECT_EQ(truncated(-2.7), -2);
    EXPECT_EQ(truncated(0.0), 0);
    EXPECT_EQ(truncated(2147483647.9), 2147483647);
    EXPECT_EQ(truncated(-2147483648.9), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(truncated(2147483648.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(truncated(-1e300), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(truncated(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<std::int32_t>::min());
}

TEST_F(JobVectors, after_every_command_the_file_is_complete) {
    const auto writer = begin();
    const std::string head = bytesOf(*writer).substr(0, bytesOf(*writer).size() - kEmptyVectors.size());
    std::mt19937 random(7);
    std::int32_t number = 0;
    for (int i = 0; i < 50; ++i) {
        switch (random() % 4) {
            case 0: polygon(*writer, {number, 1, number, 2}, 0, true); break;
            case 1: polygon(*writer, {5, 5}, 0, true); break;
            case 2: writer->WriteBezier(&number, &number, 1, 0); break;
            default: writer->WriteArc({}, 0);
        }
        ++number;
        const std::string job = bytesOf(*writer);
        ASSERT_TRUE(job.starts_with(head));
        ASSERT_TRUE(job.ends_with("<EndGroup: DrawCommands>\r\n"));
        ASSERT_EQ(job.find("<EndGroup: DrawCommands>"), job.size() - 26);
    }
}

// ---- steps of a polygon ---------------------------------------------------------------------------------------------------

TEST_F(JobVectors, logs_the_steps_of_a_polygon) {
    const auto writer = begin();
    clearLog();
    const DebugCapture debug;
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}));
    EXPECT_EQ(messages(),
              (Strings{"WritePolygon, cntPoints=2, bCheck=1", kMatched[0], kMatched[1], "CSpoolFile::doPolygonAlreadyExist, uiCount=2",
                       "CSpoolFile::doPolygonAlreadyExist finished", "WritePolygon (Raw), cntPoints=2", "WritePolygon finished"}));
    EXPECT_TRUE(debug.has("WritePolygon, cntPoints=2, bCheck=1\n"));
    clearLog();
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}, 0x0000FF, false));
    EXPECT_EQ(messages(), (Strings{"WritePolygon, cntPoints=2, bCheck=0", kMatched[0], kMatched[1], "WritePolygon (Raw), cntPoints=2",
                                   "WritePolygon finished"}));
}

TEST_F(JobVectors, logs_a_corrected_colour_and_writes_it) {
    const auto writer = begin();
    polygon(*writer, {1, 2}, 0x646464);
    EXPECT_TRUE(logged("!!! WritePolygon, Colorcorrection has been done"));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 1;253;0;0;1;2>");
}

TEST_F(JobVectors, mirrors_at_the_size_of_the_bitmap_section) {
    struct Case {
        DWORD flags;
        const char* expected;
        std::int32_t x;
        std::int32_t y;
    };
    for (const Case& given :
         {Case{0, "<DrawPolygon: 1;255;0;0;30;20>", 30, 20}, Case{MV_FL_IMAGEOP_FLIP_VERTICAL, "<DrawPolygon: 1;255;0;0;30;60>", 30, 60},
          Case{MV_FL_IMAGEOP_FLIP_HORIZONTAL, "<DrawPolygon: 1;255;0;0;70;20>", 70, 20},
          Case{MV_FL_IMAGEOP_FLIP_VERTICAL | MV_FL_IMAGEOP_FLIP_HORIZONTAL, "<DrawPolygon: 1;255;0;0;70;60>", 70, 60}}) {
        config.flags = given.flags;
        for (const DWORD vectorJob : {0U, 1U}) {  // a job without a bitmap section mirrors at the job's own size
            config.vectorJob = vectorJob;
            const auto writer = begin();
            std::int32_t x = 30;
            std::int32_t y = 20;
            writer->WritePolygon(&x, &y, 1, 0xFF, false);
            EXPECT_EQ(commandsOf(bytesOf(*writer)), given.expected);
            EXPECT_EQ(x, given.x);  // the caller's arrays change
            EXPECT_EQ(y, given.y);
        }
    }
}

TEST_F(JobVectors, mirroring_the_farthest_point_wraps) {
    config.flags = MV_FL_IMAGEOP_FLIP_HORIZONTAL;
    const auto writer = begin();
    polygon(*writer, {std::numeric_limits<std::int32_t>::min(), 5}, 0xFF, false);
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 1;255;0;0;-2147483548;5>");
}

TEST_F(JobVectors, curves_and_arcs_are_not_mirrored) {
    config.flags = MV_FL_IMAGEOP_FLIP_HORIZONTAL | MV_FL_IMAGEOP_FLIP_VERTICAL;
    const auto writer = begin();
    std::int32_t x = 3;
    writer->WriteBezier(&x, &x, 1, 0);
    writer->WriteArc({.coordinates = {1, 2, 3}, .unused = 0, .values = {}, .sixth = 0}, 0);
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawBezier: 1;0;0;0;3;3>\r\n<DrawArc: 0;0;0;2;3;1;0.00;0.00;0>");
}

// ---- clipping -------------------------------------------------------------------------------------------------------------

TEST_F(JobVectors, writes_each_piece_of_a_clipped_polygon) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    const auto writer = begin();
    clearLog();
    EXPECT_TRUE(polygon(*writer, {50, 10, 150, 10, 50, 70}));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;50;10;99;10>\r\n<DrawPolygon: 2;255;0;0;99;41;50;70>");
    EXPECT_EQ(steps(),
              (Strings{"WritePolygon, cntPoints=3, bCheck=1", kMatched[0], kMatched[1], "CSpoolFile::doPolygonAlreadyExist, uiCount=3",
                       "CSpoolFile::doPolygonAlreadyExist finished", "!!! WritePolygon, some Polygons have been set tho job boundaries.",
                       "WritePolygon (Clipping), poly=0, cntPoints=2", "CSpoolFile::doPolygonAlreadyExist, uiCount=2",
                       "CSpoolFile::doPolygonAlreadyExist finished", "WritePolygon DrawPoly",
                       "WritePolygon (Clipping), poly=1, cntPoints=2", "CSpoolFile::doPolygonAlreadyExist, uiCount=2",
                       "CSpoolFile::doPolygonAlreadyExist finished", "WritePolygon DrawPoly", "WritePolygon finished"}));
}

TEST_F(JobVectors, asks_for_the_pieces_before_each_one) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    const auto writer = begin();
    clearLog();
    polygon(*writer, {50, 10, 150, 10, 50, 70});
    const Strings all = messages();
    EXPECT_EQ(std::count(all.begin(), all.end(), "MvPolygonClipping::getCntPolygons, uiCntPolygons=2, m_PointsCorrected=4"), 4);
}

TEST_F(JobVectors, a_polygon_inside_is_one_piece_and_says_nothing_of_boundaries) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    const auto writer = begin();
    polygon(*writer, {10, 10, 10, 10, 90, 10});
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;10;10;90;10>");
    EXPECT_FALSE(logged("!!! WritePolygon, some Polygons have been set tho job boundaries."));
}

TEST_F(JobVectors, a_polygon_that_is_clipped_away_writes_nothing) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    const auto writer = begin();
    const std::string before = bytesOf(*writer);
    EXPECT_TRUE(polygon(*writer, {150, 10, 150, 60, 200, 60}));
    EXPECT_EQ(bytesOf(*writer), before);
    EXPECT_TRUE(logged("WritePolygon finished"));
}

TEST_F(JobVectors, a_piece_without_points_is_written_as_it_is) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    config.size.pixelWidth = 10;
    config.size.pixelHeight = 8;
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {10, -5, 5, 7}));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;8;0;5;7>\r\n<DrawPolygon: 0;255;0;0>");
}

TEST_F(JobVectors, a_piece_that_stands_in_the_file_is_left_out) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    const auto writer = begin();
    polygon(*writer, {50, 10, 99, 10});
    clearLog();
    EXPECT_TRUE(polygon(*writer, {50, 10, 150, 10, 50, 70}));
    EXPECT_TRUE(logged("!!! WritePolygon Polygon already exists"));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;50;10;99;10>\r\n<DrawPolygon: 2;255;0;0;99;41;50;70>");
    // Without the check both pieces are written again.
    EXPECT_TRUE(polygon(*writer, {50, 10, 150, 10, 50, 70}, 0x0000FF, false));
    EXPECT_EQ(commandsOf(bytesOf(*writer)),
              "<DrawPolygon: 2;255;0;0;50;10;99;10>\r\n<DrawPolygon: 2;255;0;0;99;41;50;70>\r\n<DrawPolygon: "
              "2;255;0;0;50;10;99;10>\r\n<DrawPolygon: 2;255;0;0;99;41;50;70>");
}

TEST_F(JobVectors, a_piece_is_also_compared_with_the_pieces_before_it) {
    config.flags = MV_FL_POLYGON_CLIPPING;
    const auto writer = begin();
    // Leaves the job and comes back on other ways, twice along the same inner line.
    EXPECT_TRUE(polygon(*writer, {150, 5, 98, 40, 150, 45, 150, 50, 99, 40, 150, 70}));
    const Strings lines = [&] {
        Strings found;
        const std::string commands = commandsOf(bytesOf(*writer));
        for (std::size_t at = 0; at < commands.size();
             at = commands.find("\r\n", at) == std::string::npos ? commands.size() : commands.find("\r\n", at) + 2) {
            found.push_back(commands.substr(at, commands.find("\r\n", at) - at));
        }
        return found;
    }();
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), lines.size()) << commandsOf(bytesOf(*writer));
}

TEST_F(JobVectors, mirrors_before_clipping) {
    config.flags = MV_FL_POLYGON_CLIPPING | MV_FL_IMAGEOP_FLIP_HORIZONTAL;
    const auto writer = begin();
    polygon(*writer, {-100, 10, 50, 10}, 0xFF, false);  // 200 and 50 after mirroring
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;99;10;50;10>");
}

// ---- duplicates -----------------------------------------------------------------------------------------------------------

TEST_F(JobVectors, the_same_polygon_is_dropped_with_the_check_and_written_twice_without) {
    const auto writer = begin();
    EXPECT_TRUE(polygon(*writer, {1, 2, 3, 4}));
    const std::string once = bytesOf(*writer);
    clearLog();
    EXPECT_FALSE(polygon(*writer, {1, 2, 3, 4}));
    EXPECT_EQ(messages(),
              (Strings{"WritePolygon, cntPoints=2, bCheck=1", kMatched[0], kMatched[1], "CSpoolFile::doPolygonAlreadyExist, uiCount=2",
                       "CSpoolFile::doPolygonAlreadyExist finished", "WritePolygon, Polygon already exist in Tsf"}));
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
