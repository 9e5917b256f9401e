// The reader of job files: a well-formed job gives its facts, and each departure from the format is named with its place.
#include "tool/JobFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tool/JobSummary.h"

namespace morvil::tool {
namespace {

std::string number(std::uint32_t value, std::size_t bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) text.push_back(i < 4 ? static_cast<char>((value >> (8 * i)) & 0xFF) : '\0');
    return text;
}

// A one-bit image of 9 x 2 pixels (stride 4), white but for the first pixel of row 0 and the last pixel of row 1.
std::string smallImage() {
    const std::string palette("\x00\x00\x00\x00\xFF\xFF\xFF\x00", 8);
    const std::string rows("\x7F\x80\x00\x00\xFF\x00\x00\x00", 8);
    return "BM" + number(54 + 8 + 8, 4) + number(0, 4) + number(62, 4) + number(40, 4) + number(9, 4) + number(2, 4) + number(1, 2) + number(1, 2) +
           number(0, 4) + number(8, 4) + number(0, 16) + palette + rows;
}

const std::string kHead =
    "<!-- Version: 6.0.0.0>\r\n<!-- PrintingApplication: winword.exe>\r\n<BegGroup: Header>\r\n<ProcessMode: Standard>\r\n"
    "<Size: 0.46;0.10>\r\n<MaterialGroup: Standard>\r\n<MaterialName: Standard>\r\n<JobName: Plan>\r\n<JobNumber: 1>\r\n<Resolution: 500>\r\n"
    "<Cutline: none>\r\n<EndGroup: Header>\r\n";
const std::string kBitmap = "<BegGroup: Bitmap>\r\n<STBmp: 0;0>" + smallImage() + "<EOBmp>\r\n<EndGroup: Bitmap>\r\n";
const std::string kVectors =
    "<BegGroup: DrawCommands>\r\n<DrawPolygon: 3;255;0;0;1;2;30;-4;5;60>\r\n<DrawBezier: 4;0;0;255;0;0;1;1;2;2;3;3>\r\n"
    "<DrawArc: 0;255;0;10;20;30;1.50;-2.25;1>\r\n<EndGroup: DrawCommands>\r\n";

JobFile read(const std::string& text) { return readJobFile({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}); }

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(JobFile, empty_file_is_not_well_formed) { EXPECT_GT(read("").violationCount, 0U); }

struct Damage {
    const char* name;
    std::string from;
    std::string to;
    const char* group;
    const char* rule;  // part of the rule's text
};

class DamagedJobFile : public testing::TestWithParam<Damage> {};

TEST_P(DamagedJobFile, names_place_group_and_rule) {
    const std::string whole = kHead + kBitmap + kVectors;
    const std::string damaged = replaced(whole, GetParam().from, GetParam().to);
    const JobFile job = read(damaged);
    ASSERT_GT(job.violationCount, 0U);
    const Violation& first = job.violations.front();
    EXPECT_EQ(first.group, GetParam().group);
    EXPECT_NE(first.rule.find(GetParam().rule), std::string::npos) << first.rule;
    EXPECT_LE(first.position, damaged.size());
}

const Damage kDamages[] = {
    {"comment", "<!-- Version: 6.0.0.0>\r\n", "", "Comments", "Version:"},
    {"line_end", "<JobNumber: 1>\r\n", "<JobNumber: 1>\n", "Header", "CR LF"},
    {"mode", "ProcessMode: Standard", "ProcessMode: Fancy", "Header", "known process mode"},
    {"stamp_without_shoulder", "ProcessMode: Standard", "ProcessMode: Stamp", "Header", "StampShoulder:"},
    {"layer_without_parameter", "ProcessMode: Standard", "ProcessMode: Layer", "Header", "LayerParameter:"},
    {"size_comma", "0.46;0.10", "0,46;0.10", "Header", "two decimals"},
    {"size_digits", "0.46;0.10", "0.460;0.10", "Header", "two decimals"},
    {"number", "JobNumber: 1", "JobNumber: -1", "Header", "unsigned"},
    {"resolution", "Resolution: 500", "Resolution: 0", "Header", "positive"},
    {"cutline", "Cutline: none", "Cutline: square", "Header", "cut line"},
    {"header_end", "<EndGroup: Header>\r\n", "", "Header", "EndGroup: Header"},
    {"start_tag", "<STBmp: 0;0>", "<STBmp: 0;1>", "Bitmap", "STBmp"},
    {"line_end_behind_tag", "<STBmp: 0;0>BM", "<STBmp: 0;0>\r\nBM", "Bitmap", "\"BM\""},
    {"file_size", "BM" + number(70, 4), "BM" + number(71, 4), "Bitmap", "file size"},
    {"pixel_offset", number(62, 4) + number(40, 4), number(63, 4) + number(40, 4), "Bitmap", "pixel data offset"},
    {"planes", number(2, 4) + number(1, 2), number(2, 4) + number(2, 2), "Bitmap", "one plane"},
    {"width_of_size", "0.46;0.10", "0.86;0.10", "Bitmap", "width in pixels"},
    {"palette_fourth_byte", std::string("\xFF\xFF\xFF\x00", 4), "\xFF\xFF\xFF\x01", "Bitmap", "fourth byte"},
    {"end_tag", "<EOBmp>", "<EOBMP>", "Bitmap", "EOBmp"},
    {"vector_group", "<BegGroup: DrawCommands>\r\n", "", "DrawCommands", "BegGroup: DrawCommands"},
    {"count", "DrawPolygon: 3;", "DrawPolygon: 4;", "DrawCommands", "as many points"},
    {"count_zero", "DrawPolygon: 3;", "DrawPolygon: 0;", "DrawCommands", "positive"},
    {"colour", "3;255;0;0;", "3;256;0;0;", "DrawCommands", "0 to 255"},
    {"coordinate", ";60>", ";60.5>", "DrawCommands", "whole numbers"},
    {"arc_decimals", "1.50;-2.25", "1.5;-2.25", "DrawCommands", "two decimals"},
    {"command", "<DrawArc", "<DrawSpiral", "DrawCommands", "DrawPolygon, DrawBezier or DrawArc"},
    {"closing_line", "<EndGroup: DrawCommands>\r\n", "", "DrawCommands", "last line"},
    {"behind_the_end", "<EndGroup: DrawCommands>\r\n", "<EndGroup: DrawCommands>\r\n<EndGroup: DrawCommands>\r\n", "DrawCommands", "nothing stands behind"},
};

INSTANTIATE_TEST_SUITE_P(Rules, DamagedJobFile, testing::ValuesIn(kDamages), [](const auto& tested) { return std::string(tested.param.name); });

// Wherever the file is cut, reading ends, and only the whole file is well-formed.
TEST(JobFile, cut_after_every_byte_is_noticed) {
    const std::string whole = kHead + kBitmap + kVectors;
    for (std::size_t length = 0; length < whole.size(); ++length) EXPECT_GT(read(whole.substr(0, length)).violationCount, 0U) << length;
    EXPECT_EQ(read(whole).violationCount, 0U);
}

TEST(JobFile, position_of_a_violation_is_that_of_its_line) {
    const std::string damaged = replaced(kHead + kBitmap + kVectors, "Cutline: none", "Cutline: square");
    EXPECT_EQ(read(damaged).violations.front().position, damaged.find("<Cutline:"));
}

TEST(JobFile, huge_bitmap_size_is_refused_without_reading_on) {
    const std::string damaged = replaced(kHead + kBitmap + kVectors, number(9, 4) + number(2, 4), number(0x7FFFFFF0, 4) + number(0x7FFFFFF0, 4));
    const JobFile job = read(damaged);
    EXPECT_FALSE(job.bitmap);
    EXPECT_EQ(job.violations.front().group, "Bitmap");
    EXPECT_EQ(job.vectors.size(), 3U);  // the commands behind it are still read
}

TEST(JobFile, keeps_only_the_first_violations_but_counts_all) {
    std::string commands = "<BegGroup: DrawCommands>\r\n";
    for (int i = 0; i < 100; ++i) commands += "<Nonsense>\r\n";
    const JobFile job = read(kHead + commands + "<EndGroup: DrawCommands>\r\n");
    EXPECT_EQ(job.violations.size(), kKeptViolations);
    EXPECT_EQ(job.violationCount, 100U);
}

TEST(JobFile, well_formed_job_gives_its_facts) {
    const std::string whole = kHead + kBitmap + kVectors;
    const JobFile job = read(whole);
    EXPECT_EQ(job.violationCount, 0U);
    EXPECT_EQ(job.version, "6.0.0.0");
    EXPECT_EQ(job.application, "winword.exe");
    EXPECT_EQ(job.headerValue("JobName"), "Plan");
    EXPECT_EQ(job.resolution(), 500U);
    ASSERT_TRUE(job.bitmap);
    EXPECT_EQ(job.bitmap->width, 9U);
    EXPECT_EQ(job.bitmap->height, 2U);
    EXPECT_EQ(job.bitmap->stride, 4U);
    EXPECT_EQ(job.bitmap->pixelPosition, whole.find("BM") + 62);
    ASSERT_EQ(job.vectors.size(), 3U);
    EXPECT_EQ(job.vectors[0].coordinates, (std::vector<std::int32_t>{1, 2, 30, -4, 5, 60}));
    EXPECT_EQ(job.vectors[2].arcValues[1], -2.25);
    EXPECT_EQ(job.vectors[2].arcFlag, 1);
}

// Pages are stored as the surface has them, with whatever stands behind the last pixel of a row.
TEST(JobFile, padding_of_rows_may_hold_anything) {
    const std::string whole = replaced(kHead + kBitmap + kVectors, std::string("\x7F\x80\x00\x00", 4), std::string("\x7F\x80\xFF\xFF", 4));
    EXPECT_EQ(read(whole).violationCount, 0U);
}

TEST(JobFile, optional_header_lines_are_taken_in_their_order) {
    const std::string head = replaced(kHead, "<EndGroup: Header>", "<RotaryAttachment: 12.50>\r\n<AutoPosition>\r\n<QuickPrint>\r\n<EndGroup: Header>");
    EXPECT_EQ(read(head + kVectors).violationCount, 0U);
    const std::string wrongOrder = replaced(kHead, "<EndGroup: Header>", "<QuickPrint>\r\n<AutoPosition>\r\n<EndGroup: Header>");
    EXPECT_GT(read(wrongOrder + kVectors).violationCount, 0U);
}

TEST(JobFile, diagnostic_group_is_read) {
    const std::string group = "<BegGroup: Diagnostic>\r\n<Version: v0.1>\r\n<Type: DIAG1>\r\n<MeasurePoint: 12; 1; Laser power>\r\n<EndGroup: Diagnostic>\r\n";
    const JobFile job = read(kHead + group + kVectors);
    EXPECT_EQ(job.violationCount, 0U);
    ASSERT_EQ(job.diagnostic.size(), 1U);
    EXPECT_EQ(job.diagnostic[0].value, "12; 1; Laser power");
    EXPECT_GT(read(kHead + replaced(group, "12; 1; ", "12;1;") + kVectors).violationCount, 0U);
}

const std::string kColourGroup =
    "<BegGroup: Mci>\r\n<MCI_ID: 7>\r\n<Version.ColorsGaspen: 1.0>\r\n<Version.ColorsCustomer: 0.0>\r\n<Version.ColorsSystem: 0.9>\r\n<Parameters:>\r\n"
    "<Color0: white;255;255;255;0;>\r\n<Color1: A; B;1;2;3;4;high>\r\n<EndGroup: Mci>\r\n<EndGroup: Header>\r\n";

TEST(JobFile, colour_group_is_read) {
    const JobFile job = read(kHead + kColourGroup + kBitmap + kVectors);
    EXPECT_EQ(job.violationCount, 0U);
    EXPECT_TRUE(job.hasMci);
    EXPECT_TRUE(job.bitmap);
    ASSERT_EQ(job.mci.size(), 6U);
    EXPECT_EQ(job.mci[0].value, "7");
    EXPECT_EQ(job.mci[5].value, "A; B;1;2;3;4;high");
}

TEST(JobFile, colour_group_without_a_part_or_with_a_strange_one_is_noticed) {
    for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{{"<EndGroup: Mci>\r\n<EndGroup: Header>\r\n", "<EndGroup: Mci>\r\n"},
                                                                                  {"<EndGroup: Mci>\r\n", ""},
                                                                                  {"<Parameters:>\r\n", ""},
                                                                                  {"<Version.ColorsCustomer: 0.0>\r\n", ""},
                                                                                  {"MCI_ID: 7", "MCI_ID: x"},
                                                                                  {"Color1", "Color2"},
                                                                                  {"255;255;255;0;", "255;255;255;0"},
                                                                                  {"255;255;255;0;", "255;red;255;0;"},
                                                                                  {"255;255;255;0;", "255;255;65536;0;"},
                                                                                  {"255;255;255;0;", "255;255;255;256;"}}) {
        const JobFile job = read(kHead + replaced(kColourGroup, from, to) + kBitmap + kVectors);
        ASSERT_GT(job.violationCount, 0U) << from;
        EXPECT_EQ(job.violations.front().group, "Mci") << from;
    }
}

TEST(JobSummary, counts_vectors_colours_extent_and_painted_pixels) {
    const std::string whole = kHead + kBitmap + kVectors;
    const JobSummary summary = summarize(read(whole));
    EXPECT_EQ(summary.polygons, 1U);
    EXPECT_EQ(summary.beziers, 1U);
    EXPECT_EQ(summary.arcs, 1U);
    EXPECT_EQ(summary.byColour.at("#FF0000"), 1U);
    ASSERT_TRUE(summary.extent);
    EXPECT_EQ(summary.extent->left, 0);
    EXPECT_EQ(summary.extent->top, -4);
    EXPECT_EQ(summary.extent->right, 30);
    EXPECT_EQ(summary.extent->bottom, 60);
    EXPECT_EQ(summary.paintedPixels, 2U);
}

}  // namespace
}  // namespace morvil::tool
