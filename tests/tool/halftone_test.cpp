// print --halftone: the page is reduced to black and white before it is stored.
#include <gmock/gmock.h>

#include <fstream>

#include "tool/JobFile.h"
#include "tool/MappedFile.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using testing::HasSubstr;

class HalftonePrint : public PrintFixture {
  protected:
    std::string printed(const std::string& title, const std::string& mode, const std::vector<std::string>& more) {
        std::vector<std::string> arguments{"--title", title, "--quiet", "--set", "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=" + mode, "--set",
                                           "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.emplace_back(MORVIL_SAMPLES "/shades.emf");
        EXPECT_EQ(print(arguments).status, kDone);
        std::ifstream stream(job(title + ".tsf"), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static std::string imageOf(const std::string& bytes) {
        const std::size_t begin = bytes.find("BM", bytes.find("STBmp"));
        return bytes.substr(begin, bytes.find("<EOBmp>") - begin);
    }
};

TEST_F(HalftonePrint, modes_differ_in_their_pixels_alone) {
    std::vector<std::string> images;
    for (const char* const mode : {"8000", "9000", "10000", "11000", "12000"}) {
        const std::string bytes = printed(mode, mode, {"--halftone"});
        const MappedFile mapped(job(std::string(mode) + ".tsf"));
        EXPECT_EQ(readJobFile(mapped.bytes()).violationCount, 0U) << mode;
        images.push_back(imageOf(bytes));
        EXPECT_EQ(images.back().size(), images.front().size());
    }
    for (std::size_t i = 0; i < images.size(); ++i) {
        for (std::size_t k = i + 1; k < images.size(); ++k) EXPECT_NE(images[i], images[k]) << i << " " << k;
    }
}

TEST_F(HalftonePrint, without_the_option_the_first_bytes_of_the_colours_are_stored) {
    EXPECT_NE(imageOf(printed("Halftoned", "9000", {"--halftone"})), imageOf(printed("Plain", "9000", {})));
}

TEST_F(HalftonePrint, standard_pages_are_black_and_white_already) {
    EXPECT_EQ(imageOf(printed("Halftoned", "1000", {"--halftone"})), imageOf(printed("Plain", "1000", {})));
}

TEST_F(HalftonePrint, the_configured_pattern_is_used) {
    const std::string item = "PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize=";
    EXPECT_NE(imageOf(printed("Small", "8000", {"--halftone", "--set", item + "0"})), imageOf(printed("Large", "8000", {"--halftone", "--set", item + "1"})));
}

TEST_F(HalftonePrint, the_configuration_file_does_not_keep_it) {
    const std::string before = imageOf(printed("Before", "9000", {}));
    printed("Halftoned", "9000", {"--halftone"});
    EXPECT_EQ(imageOf(printed("After", "9000", {})), before);
}

TEST_F(HalftonePrint, the_help_names_it) { EXPECT_THAT(run({"print", "--help"}).out, HasSubstr("--halftone")); }

}  // namespace
}  // namespace morvil::tool
