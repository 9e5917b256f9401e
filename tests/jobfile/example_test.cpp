// The worked example of docs/job-file-format.md: the writer makes exactly the bytes that the document shows.
#include <fstream>
#include <sstream>

#include "jobfile/JobFixture.h"

namespace morvil::test {

namespace {

using JobExample = JobFixture;

std::string documentText() {
    std::ifstream in(MORVIL_TEST_DATA "/../../docs/job-file-format.md", std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// The bytes of the document's dump: lines "OFFSET: XX XX ...  text", 16 bytes in each.
std::string bytesOfDump(const std::string& document) {
    std::istringstream lines(document);
    std::string bytes;
    for (std::string line; std::getline(lines, line);) {
        if (line.size() < 10 || line.find_first_not_of("0123456789abcdef") != 8 || line[8] != ':') continue;
        EXPECT_EQ(std::stoul(line.substr(0, 8), nullptr, 16), bytes.size());
        std::istringstream fields(line.substr(10, 48));
        for (std::string field; fields >> field;) bytes.push_back(static_cast<char>(std::stoul(field, nullptr, 16)));
    }
    return bytes;
}

// A position of the document's table, by the number in front of its explanation.
std::size_t positionOf(const std::string& document, const std::string& what) {
    const std::size_t row = document.rfind("\n| ", document.find(what));
    return std::stoul(document.substr(row + 3));
}

}  // namespace

TEST_F(JobExample, the_writer_makes_the_bytes_that_the_document_shows) {
    config.job.number = 7;
    const auto writer = begin(1);
    std::array<std::int32_t, 3> xs{1, 7, 4};
    std::array<std::int32_t, 3> ys{0, 0, 1};
    writer->WritePolygon(xs.data(), ys.data(), 3, 0x0000FF, false);
    const std::array<std::int32_t, 4> curveXs{0, 2, 4, 6};
    const std::array<std::int32_t, 4> curveYs{0, 1, 1, 0};
    writer->WriteBezier(curveXs.data(), curveYs.data(), 4, 0xFF0000);
    writer->WriteArc({.coordinates = {2.0, 4.0, 1.0}, .unused = 0, .values = {1.5, 0.25}, .sixth = -1}, 0x008000);
    writer->WriteBitmap(reinterpret_cast<const std::uint8_t*>("\x7F\x80\x00\x00\xFF\x00\x00\x00"), 8);
    const std::string document = documentText();
    const std::string expected = bytesOfDump(document);
    EXPECT_EQ(expected.size(), 568U);
    EXPECT_EQ(bytesOf(*writer), expected);

    EXPECT_EQ(expected.substr(0, positionOf(document, "behind `<BegGroup: Header>`")).rfind("<BegGroup: Header>\r\n"), 81U - 20U);
    EXPECT_TRUE(expected.substr(0, positionOf(document, "behind `<EndGroup: Header>`")).ends_with("<EndGroup: Header>\r\n"));
    EXPECT_TRUE(expected.substr(positionOf(document, "behind `<STBmp: 0;0>`")).starts_with("BM"));
    EXPECT_TRUE(expected.substr(positionOf(document, "the pixel rows (7f")).starts_with("\x7F\x80"));
    EXPECT_TRUE(expected.substr(positionOf(document, "`<EOBmp>` |\n")).starts_with("<EOBmp>"));
    EXPECT_TRUE(
        expected.substr(positionOf(document, "`<BegGroup: DrawCommands>` |")).starts_with("<BegGroup: DrawCommands>\r\n<DrawPolygon: 3"));
    EXPECT_EQ(positionOf(document, "the end, behind"), expected.size());
}

}  // namespace morvil::test
