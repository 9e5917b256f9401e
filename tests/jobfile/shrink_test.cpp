// Shrinking to the bounding box: what is kept of pixels and vectors, and where it comes to stand. Failures are in
// shrink_faults_test.cpp.
#include <random>

#include "config/CMvConfig.h"
#include "jobfile/BackupPolygons.h"
#include "jobfile/ShrinkJob.h"
#include "raster/ColourListFiles.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;
using JobShrink = ShrinkJob;

std::string greyPage(std::uint32_t width, std::uint32_t height) { return storedRows(Strings(height, std::string(width, '\xFF'))); }

}  // namespace

TEST_F(JobShrink, keeps_the_box_of_a_one_bit_page) {
    setPage(kModeStamp, 16, 8);
    const std::string job = shrunk(bitRows(kShrinkPicture));
    const StoredImage image = imageOf(job);
    EXPECT_EQ(image.width, 4U);
    EXPECT_EQ(image.height, 2U);
    EXPECT_EQ(image.pixels, bitRows({"##..", "#..#"}));
    EXPECT_EQ(sizeLine(job), "<Size: 0.40;0.20>");
    EXPECT_TRUE(job.ends_with("<EOBmp>\r\n<EndGroup: Bitmap>\r\n" + std::string(kEmptyVectors)));
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
    EXPECT_NE(job.find("<JobName: Plan>\r\n"), std::string::npos);
}

TEST_F(JobShrink, logs_every_step) {
    setPage(kModeStamp, 16, 8);
    setMargins(1, 2, 3, 4);
    shrunk(bitRows(kShrinkPicture), [](CSpoolFile& writer) { polygon(writer, {4, 12, 5}, {1, 3, 6}); });
    EXPECT_EQ(m_completionLog, (Strings{"SpoolFile ProcessMode=Stamp",
                                        "Shringk to bounding box",
                                        "CSpoolFile::doShrinkToBoundigbox",
                                        "CBM::getVectorBoundingBox",
                                        "CBM::getVectorBoundingBox, uiBuffSize=26",
                                        "CBM::getVectorBoundingBox, uiBuffSize=39",
                                        "CBM::getVectorBoundingBox, uiBuffSize=26",
                                        "CBM::getVectorBoundingBox finished",
                                        "!!! doShrinkToBoundigbox Job.left=4, Job.top=7, Job.right=13, Job.bottom=1",
                                        "!!! doShrinkToBoundigbox Bitmap.left=6, Bitmap.top=4, Bitmap.right=10, Bitmap.bottom=2",
                                        "!!! doShrinkToBoundigbox Vectors.left=4, Vectors.top=7, Vectors.right=13, Vectors.bottom=1",
                                        "!!! doShrinkToBoundigbox BitmapOffset.x=2, BitmapOffset.y=1",
                                        "!!! doShrinkToBoundigbox VectorOffset.x=4, VectorOffset.y=1",
                                        "CBM::ReadBitmapPart1BPP",
                                        "CBM::ReadBitmapPart1BPP finished",
                                        "WriteHeader, PKConfig-Flags=0, usShoulder=0",
                                        "WriteHeader, JobName=Plan",
                                        "CreateBitmap finished",
                                        "CBM::WriteBitmapPart1BPP",
                                        "CBM::WriteBitmapPart1BPP finished",
                                        "CSpoolFile::AddOffstToVectors",
                                        "CSpoolFile::WriteVectorSection",
                                        "WriteVectorSection",
                                        "WriteVectorSection finshed",
                                        "CSpoolFile::WriteVectorSection finished",
                                        "WritePolygon, cntPoints=3, bCheck=0",
                                        "CSpoolFile::checkPolygonColor",
                                        "CSpoolFile::checkPolygonColor finished",
                                        "WritePolygon (Raw), cntPoints=3",
                                        "WritePolygon finished",
                                        "CBM::AddOffstToVectors finished",
                                        "CSpoolFile::doShrinkToBoundigbox finished",
                                        "Shringk to bounding box finished"}));
}

TEST_F(JobShrink, margins_stay_around_bitmap_and_vectors) {
    setPage(kModeStamp, 16, 8);
    setMargins(1, 2, 3, 4);
    const std::string job = shrunk(bitRows(kShrinkPicture), [](CSpoolFile& writer) { polygon(writer, {4, 12, 5}, {1, 3, 6}, 0x030201); });
    const StoredImage image = imageOf(job);
    EXPECT_EQ(image.width, 9U + 1 + 3);
    EXPECT_EQ(image.height, 6U + 2 + 4);
    Strings expected(12, std::string(13, '.'));
    expected[3] = "...##........";
    expected[4] = "...#..#......";
    EXPECT_EQ(image.pixels, bitRows(expected));
    EXPECT_EQ(sizeLine(job), "<Size: 1.30;1.20>");
    EXPECT_EQ(commandsOf(job), "<DrawPolygon: 3;1;2;3;1;2;9;4;2;7>");
}

TEST_F(JobShrink, content_of_100_pixels_with_margins_of_10_makes_120) {
    setPage(kModeRelief, 300, 4);
    setMargins(10, 10, 10, 10);
    Strings rows(4, std::string(300, '\xFF'));
    rows[1].replace(100, 100, 100, '\x40');
    const std::string job = shrunk(storedRows(rows));
    EXPECT_EQ(imageOf(job).width, 120U);
    EXPECT_EQ(imageOf(job).height, 21U);
    Strings expected(21, std::string(120, '\xFF'));
    expected[10].replace(10, 100, 100, '\x40');
    EXPECT_EQ(imageOf(job).pixels, storedRows(expected));
    EXPECT_EQ(sizeLine(job), "<Size: 12.00;2.10>");
}

TEST_F(JobShrink, a_page_without_content_stays_as_it_was) {
    setPage(kModeStamp, 16, 8);
    const std::string rows = bitRows(Strings(8, std::string(16, '.')));
    const auto writer = begin(1);
    const std::int32_t x = 3;
    writer->WriteBezier(&x, &x, 1, 0);  // no polygon, no box
    sendPage(*writer, rows);
    const std::string before = bytesOf(*writer);
    clearLog();
    writer->Complete();
    EXPECT_EQ(finished(*writer), before);
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
    EXPECT_TRUE(logged("!!! doShrinkToBoundigbox Vectors.left=0, Vectors.top=0, Vectors.right=0, Vectors.bottom=0"));
    EXPECT_TRUE(logged("!!! doShrinkToBoundigbox Bitmap.left=16, Bitmap.top=1, Bitmap.right=1, Bitmap.bottom=8"));
    EXPECT_TRUE(logged("CSpoolFile::doShrinkToBoundigbox finished"));
}

// The measures of nothing wrap to a size that no image could have; nobody asks for an image of that size.
TEST_F(JobShrink, a_grey_page_without_content_is_no_error) {
    setPage(kModeRelief, 16, 8);
    const std::string job = shrunk(greyPage(16, 8));
    EXPECT_EQ(imageOf(job).pixels, greyPage(16, 8));
    Strings errors = m_completionLog;
    std::erase_if(errors, [](const std::string& line) { return !line.starts_with("!!! "); });
    EXPECT_EQ(errors, (Strings{"!!! doShrinkToBoundigbox Job.left=16, Job.top=1, Job.right=1, Job.bottom=8",
                               "!!! doShrinkToBoundigbox Bitmap.left=16, Bitmap.top=1, Bitmap.right=1, Bitmap.bottom=8",
                               "!!! doShrinkToBoundigbox Vectors.left=0, Vectors.top=0, Vectors.right=0, Vectors.bottom=0",
                               "!!! doShrinkToBoundigbox BitmapOffset.x=0, BitmapOffset.y=0",
                               "!!! doShrinkToBoundigbox VectorOffset.x=16, VectorOffset.y=8"}));
}

TEST_F(JobShrink, without_margins_a_job_that_fills_its_page_is_itself) {
    const Strings full{"................................", "...............................#", "................................",
                       "################################"};
    Strings first = full;
    first[0] = full[1];
    setPage(kModeStamp, 32, 4);
    const auto byPixels = [&](DWORD flags) {
        config.flags = flags;
        return shrunk(bitRows(first));
    };
    EXPECT_EQ(byPixels(MV_FL_SHRINK_TO_BOUNDING_BOX), byPixels(0));

    // A rectangle around a page of greys.
    setPage(kModeRelief, 8, 4);
    const auto byVectors = [&](DWORD flags) {
        config.flags = flags;
        return shrunk(greyPage(8, 4).replace(8 + 3, 2, "\x10\x20"), [](CSpoolFile& writer) {
            polygon(writer, {0, 7, 7, 0, 0}, {0, 0, 3, 3, 0});
        });
    };
    const std::string shrunkJob = byVectors(MV_FL_SHRINK_TO_BOUNDING_BOX);
    EXPECT_EQ(shrunkJob, byVectors(0));
    EXPECT_EQ(imageOf(shrunkJob).pixels, greyPage(8, 4).replace(8 + 3, 2, "\x10\x20"));
}

TEST_F(JobShrink, random_one_bit_pages_keep_their_pixels) {
    std::mt19937 random(11);
    for (int round = 0; round < 40; ++round) {
        const auto width = static_cast<WORD>(8 + random() % 60);
        const auto height = static_cast<WORD>(2 + random() % 6);
        const auto left = static_cast<std::uint32_t>(1 + random() % (width - 3U));
        const auto right = left + 1 + static_cast<std::uint32_t>(random() % (width - left - 1));  // last column
        Strings rows(height, std::string(width, '.'));
        for (std::string& row : rows) {
            for (std::uint32_t x = left; x <= right; ++x) row[x] = random() % 2 != 0 ? '#' : '.';
            row[left] = '#';
            row[right] = '#';
        }
        setPage(kModeStamp, width, height);
        const auto marginLeft = static_cast<int>(random() % 10);
        setMargins(marginLeft, 1, static_cast<int>(random() % 10), 0);
        const StoredImage image = imageOf(shrunk(bitRows(rows)));
        Strings expected{std::string(image.width, '.')};
        for (const std::string& row : rows) {
            expected.push_back(std::string(image.width, '.'));
            expected.back().replace(static_cast<std::size_t>(marginLeft), right - left + 1, row, left, right - left + 1);
        }
        ASSERT_GE(image.width, right - left + 1);
        EXPECT_EQ(image.pixels, bitRows(expected)) << round << ": " << left << " to " << right << " of " << width;
    }
}

// A single column takes two bytes a row where it straddles bytes, one more than its area.
TEST_F(JobShrink, a_box_of_one_column_is_copied) {
    for (std::uint32_t column = 1; column < 18; ++column) {
        setPage(kModeStamp, 19, 3);
        Strings rows(3, std::string(19, '.'));
        rows[0][column] = rows[2][column] = '#';
        const StoredImage image = imageOf(shrunk(bitRows(rows)));
        EXPECT_EQ(image.width, 1U);
        EXPECT_EQ(image.pixels, bitRows({"#", ".", "#"})) << column;
    }
}

TEST_F(JobShrink, an_empty_bitmap_beside_vectors_copies_no_pixels) {
    setPage(kModeRelief, 16, 8);
    const std::string job = shrunk(greyPage(16, 8), [](CSpoolFile& writer) { polygon(writer, {3, 6}, {2, 4}); });
    EXPECT_EQ(imageOf(job).width, 4U);
    EXPECT_EQ(imageOf(job).height, 3U);
    EXPECT_EQ(imageOf(job).pixels, greyPage(4, 3));
    EXPECT_EQ(commandsOf(job), "<DrawPolygon: 2;255;0;0;0;0;3;2>");
    EXPECT_FALSE(completionLogged("CBM::ReadBitmapPart8BPP"));
    EXPECT_TRUE(completionLogged("!!! doShrinkToBoundigbox Job.left=3, Job.top=5, Job.right=7, Job.bottom=2"));
}

TEST_F(JobShrink, a_job_without_bitmap_section_goes_by_its_vectors) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    setMargins(5, 6, 7, 8);
    const std::string job = shrunk({}, [](CSpoolFile& writer) { polygon(writer, {30, 39}, {20, 24}); });
    EXPECT_EQ(job.find("BegGroup: Bitmap"), std::string::npos);
    EXPECT_EQ(sizeLine(job), "<Size: 2.20;1.90>");
    EXPECT_EQ(commandsOf(job), "<DrawPolygon: 2;255;0;0;5;6;14;10>");
    EXPECT_TRUE(job.ends_with("<EndGroup: DrawCommands>\r\n"));
    EXPECT_TRUE(completionLogged("!!! doShrinkToBoundigbox BitmapOffset.x=0, BitmapOffset.y=0"));
}

TEST_F(JobShrink, only_polygons_survive) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    const std::string job = shrunk({}, [](CSpoolFile& writer) {
        std::int32_t p = 70;
        polygon(writer, {30}, {20});
        writer.WriteBezier(&p, &p, 1, 0);
        writer.WriteArc({}, 0);
        polygon(writer, {31, 32}, {20, 21}, 0xAABBCC);
        polygon(writer, {31, 32}, {20, 21}, 0xAABBCC);
    });
    EXPECT_EQ(commandsOf(job),
              "<DrawPolygon: 1;255;0;0;0;0>\r\n<DrawPolygon: 2;204;187;170;1;0;2;1>\r\n<DrawPolygon: 2;204;187;170;1;0;2;1>");
}

// The box is that of the first 150 lines, so later points may come to lie outside of it.
TEST_F(JobShrink, a_point_that_would_leave_the_page_takes_its_predecessors_coordinate) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    const std::string job = shrunk({}, [](CSpoolFile& writer) {
        for (int i = 0; i < 149; ++i) polygon(writer, {30, 40}, {20, 25});
        polygon(writer, {10, 35, 20, 5, 36}, {22, 3, 24, 1, 2});
    });
    EXPECT_TRUE(commandsOf(job).ends_with("\r\n<DrawPolygon: 5;255;0;0;0;2;5;2;5;4;5;4;6;4>"));
    EXPECT_EQ(messagesFrom("CBM::getVectorBoundingBox, uiBuffSize=").size(), 150U);
}

TEST_F(JobShrink, points_are_not_mirrored_again) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    config.flags |= MV_FL_IMAGEOP_FLIP_VERTICAL | MV_FL_IMAGEOP_FLIP_HORIZONTAL;
    const auto draw = [](CSpoolFile& writer) { polygon(writer, {30, 39}, {20, 24}); };
    EXPECT_EQ(commandsOf(shrunk({}, draw)), "<DrawPolygon: 2;255;0;0;9;4;0;0>");
    // The next page is mirrored as before, and as large as before.
    const auto writer = begin(1);
    draw(*writer);
    writer->Complete();
    EXPECT_EQ(sizeLine(finished(*writer)), "<Size: 1.00;0.50>");
    writer->WriteHeader();
    writer->WriteVectorSection();
    draw(*writer);
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 2;255;0;0;70;60;61;56>");
    EXPECT_EQ(sizeLine(bytesOf(*writer)), "<Size: 10.00;8.00>");
}

TEST_F(JobShrink, clipping_goes_by_the_new_size) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    config.flags |= MV_FL_POLYGON_CLIPPING;
    const std::string job = shrunk({}, [](CSpoolFile& writer) {
        for (int i = 0; i < 149; ++i) polygon(writer, {30, 40}, {20, 25});
        polygon(writer, {35, 90}, {22, 22});  // beyond the box of the lines in front of it
    });
    EXPECT_TRUE(commandsOf(job).ends_with(";5;2;10;2>")) << commandsOf(job).substr(commandsOf(job).size() - 60);
}

TEST_F(JobShrink, sizes_are_kept_in_16_bits) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    setMargins(65530, 0, 0, 131072);
    const std::string job = shrunk({}, [](CSpoolFile& writer) { polygon(writer, {30, 39}, {20, 24}); });
    EXPECT_EQ(sizeLine(job), "<Size: 0.40;0.50>");  // 65540 and 131077 pixels
    setPage(kModeRelief, 8, 4);
    config.vectorJob = 0;
    setMargins(65535, 0, 0, 0);
    const std::string image = shrunk(greyPage(8, 4).replace(8 + 3, 2, "\x10\x20"));
    EXPECT_EQ(imageOf(image).width, 1U);
    EXPECT_EQ(imageOf(image).pixels, greyPage(1, 1)) << "the pixels lie outside";
}

TEST_F(JobShrink, negative_margins_are_none) {
    setPage(kModeStandard, 100, 80);
    config.vectorJob = 1;
    setMargins(-5, -6, -7, -8);
    EXPECT_EQ(sizeLine(shrunk({}, [](CSpoolFile& writer) { polygon(writer, {30, 39}, {20, 24}); })), "<Size: 1.00;0.50>");
}

TEST_F(JobShrink, a_size_that_no_image_can_have_leaves_the_job_as_it_is) {
    setPage(kModeRelief, 8, 4);
    setMargins(60000, 60000, 0, 0);
    const StoredImage image = imageOf(shrunk(greyPage(8, 4).replace(8 + 3, 2, "\x10\x20")));
    EXPECT_EQ(image.width, 8U);
    EXPECT_TRUE(completionLogged("!!! doShrinkToBoundigbox, 60002 x 60001 pixels are too many"));
}

TEST_F(JobShrink, a_colour_stamp_gets_its_colours_anew) {
    writeBytes(WString(CMvConfig().jobApplicationFolder()) + TEXT("\\ColorsGaspen.xml"),
               listXml("1.0", colourXml("1", 10, 20, 30, "", nameXml("en", "Oak")) + colourXml("2", 40, 50, 60, "", nameXml("en", "Elm"))));
    writeBytes(WString(CMvConfig().jobApplicationFolder()) + TEXT("\\ColorsCustomer.xml"),
               listXml("1.0", colourXml("9", 70, 80, 90, "", nameXml("en", "Ours"))));
    setPage(kModeColourStamp, 8, 4);
    setMargins(0, 1, 0, 0);
    const std::string w(1, '\x05');  // white comes at an odd index
    Strings rows(4, std::string(8, '\x05'));
    rows[1].replace(2, 3, std::string("\x02\x01\x02", 3));
    const DebugCapture debug;
    const std::string job = shrunk(storedRows(rows), [](CSpoolFile& writer) { polygon(writer, {3, 6}, {1, 3}); });
    EXPECT_EQ(job.substr(job.find("<EndGroup: Header>"), job.find("BM", job.find("<STBmp")) - job.find("<EndGroup: Header>")),
              "<EndGroup: Header>\r\n<BegGroup: Mci>\r\n<Version.ColorsGaspen: 1.0>\r\n<Version.ColorsCustomer: "
              "1.0>\r\n<Version.ColorsSystem: 0.9>\r\n"
              "<Parameters:>\r\n<Color0: Ours;70;80;90;0;>\r\n<Color1: Elm;40;50;60;0;>\r\n<EndGroup: Mci>\r\n<EndGroup: Header>\r\n"
              "<BegGroup: Bitmap>\r\n<STBmp: 0;0>");
    EXPECT_EQ(debug.count("CSpoolFile::doShrinkToBoundigbox, colors detected=2\n"), 1U);
    EXPECT_EQ(imageOf(job).pixels,
              storedRows({w + w + w + w + w, std::string("\x02\x01\x02") + w + w, w + w + w + w + w, w + w + w + w + w}));
    EXPECT_EQ(commandsOf(job), "<DrawPolygon: 2;255;0;0;1;1;4;3>");
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
}

TEST_F(JobShrink, a_page_in_bands_shrinks_as_a_whole_one) {
    for (const WORD mode : {kModeStamp, kModeColourStamp, kModeRelief}) {
        setPage(mode, 16, 8);
        const std::string rows = mode == kModeStamp ? bitRows(kShrinkPicture) : greyPage(16, 8).replace(3 * 16 + 4, 3, "\x01\x02\x01");
        const auto draw = [](CSpoolFile& writer) { polygon(writer, {4, 12, 5}, {1, 3, 6}); };
        const std::string whole = shrunk(rows, draw);
        DeleteFileW(inSpool(TEXT("Plan.tsf")).c_str());
        const auto writer = begin(3);
        draw(*writer);
        const std::size_t half = rows.size() / 2;
        for (const std::size_t at : {half, std::size_t{0}}) {
            const std::string band = rows.substr(at, half);
            writer->WriteBitmapBand(reinterpret_cast<const std::uint8_t*>(band.data()), static_cast<std::uint32_t>(half),
                                    static_cast<std::uint32_t>(at));
        }
        writer->Complete();
        EXPECT_EQ(finished(*writer), whole) << mode;
        EXPECT_EQ(imageOf(whole).width, 9U) << mode;
    }
}

TEST_F(JobShrink, replaces_a_finished_file_of_that_name) {
    setPage(kModeStamp, 16, 8);
    const auto writer = begin(1);
    sendPage(*writer, bitRows(kShrinkPicture));
    writeBytes(inSpool(TEXT("Plan.tsf")), "appeared since");
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
    EXPECT_EQ(imageOf(readBytes(inSpool(TEXT("Plan.tsf")))).width, 4U);
}

TEST(BackupPolygonLines, are_read_leniently) {
    struct Case {
        const char* line;
        std::vector<std::int32_t> xs;
        std::vector<std::int32_t> ys;
        std::uint32_t colour;
    };
    for (const Case& given : std::vector<Case>{{"<DrawPolygon: 2;1;2;3;10;20;-30;40>\r\n", {10, -30}, {20, 40}, 0x030201},
                                               {"<DrawPolygon:2;1;2;3;10;20;30;40>", {10, 30}, {20, 40}, 0x030201},
                                               {"<DrawPolygon: 1;255;255;255;10;20;30;40>", {10}, {20}, 0xFFFFFF},
                                               {"<DrawPolygon: 3;1;2;3;10;20;30>\r\n", {10}, {20}, 0x030201},
                                               {"<DrawPolygon: 2000000000;1;2;3;10;20>\r\n", {10}, {20}, 0x030201}}) {
        PolygonLine polygon{.colour = 0, .xs = {99}, .ys = {99}};
        EXPECT_TRUE(readPolygon(given.line, polygon)) << given.line;
        EXPECT_EQ(polygon.xs, given.xs) << given.line;
        EXPECT_EQ(polygon.ys, given.ys) << given.line;
        EXPECT_EQ(polygon.colour, given.colour) << given.line;
    }
    for (const char* const line :
         {"", ">", "<DrawPolygon:", "<DrawPolygon: ", "<DrawPolygon: 0;1;2;3>", "<DrawPolygon: -1;1;2;3;4;5>", "<DrawPolygon: 1;1;2>",
          "<DrawPolygon: 1;1;2;3;4>", "<DrawPolygon: 99999999999;1;2;3;4;5>", "<DrawBezier: 1;1;2;3;4;5>", "<DrawArc: 1;1;2;3;4;5>",
          "<BegGroup: DrawCommands>\r\n", "DrawPolygon: 1;1;2;3;4;5>"}) {
        PolygonLine polygon;
        EXPECT_FALSE(readPolygon(line, polygon)) << line;
    }
}

}  // namespace morvil::test
