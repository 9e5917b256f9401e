// The vector commands: their lines, their order of steps, mirroring and clipping.
#include <limits>
#include <random>
#include <set>

#include "jobfile/CommandText.h"
#include "jobfile/VectorsFixture.h"
#include "support/CommaLocale.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

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

}  // namespace morvil::test
