// Two routes, one result: a page printed whole and the same page in bands give the same bitmap section.
#include <gtest/gtest.h>

#include <fstream>

#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

constexpr const char* kMode = "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=";
constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=";
constexpr const char* kBanding = "PrinterDriver.Flags.FL_1=MV_FL_BITMAP_BANDING";
constexpr const char* kPatternSize = "PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize=";

class Routes : public PrintFixture {
  protected:
    // The image of the drawing's job, as a BMP file.
    std::string image(const std::string& title, const char* mode, const char* resolution, const std::vector<std::string>& more, const char* drawing) const {
        std::vector<std::string> arguments{"--title", title, "--set", std::string(kMode) + mode, "--set", std::string(kResolution) + resolution};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.push_back(sample(drawing));
        const Outcome run = print(arguments);
        EXPECT_EQ(run.status, kDone) << run.err;
        m_summary = run.err;
        std::ifstream stream(job(title + ".tsf"), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        const std::size_t begin = bytes.find("BM", bytes.find("<STBmp"));
        return begin == std::string::npos ? std::string() : bytes.substr(begin, bytes.find("<EOBmp>") - begin);
    }

    mutable std::string m_summary;
};
class RoutesOfMode : public Routes, public testing::WithParamInterface<const char*> {};

// One band as high as the page.
TEST_P(RoutesOfMode, a_page_that_is_one_band_is_the_whole_page) {
    for (const bool halftoned : {false, true}) {
        std::vector<std::string> options;
        if (halftoned) options.emplace_back("--halftone");
        const std::string whole = image("whole", GetParam(), "5", options, "badge.emf");
        options.insert(options.end(), {"--set", kBanding});
        EXPECT_FALSE(whole.empty());
        EXPECT_TRUE(image("banded", GetParam(), "5", options, "badge.emf") == whole) << halftoned;
        std::filesystem::remove(job("whole.tsf"));
        std::filesystem::remove(job("banded.tsf"));
        EXPECT_EQ(run({"config", "remove", "PrinterDriver.Flags"}).status, kDone);
    }
}
INSTANTIATE_TEST_SUITE_P(Every, RoutesOfMode,
                         testing::Values("1000", "2000", "3000", "4000", "5000", "6000", "7000", "8000", "9000", "10000", "11000", "12000"));

// The banding test halves its page; the tracer's page of the same depth comes whole. Bands of 1000 rows begin where every pattern does.
TEST_F(Routes, ordered_bands_of_the_banding_test_are_the_whole_page) {
    for (const char* const drawing : {"nameplate.emf", "photoplate.emf"}) {
        for (const char* const pattern : {"0", "2", "1"}) {
            const std::vector<std::string> options{"--halftone", "--paper", "80x50.8", "--set", std::string(kPatternSize) + pattern};
            const std::string banded = image("banded", "8000", "0", options, drawing);
            EXPECT_NE(m_summary.find("2 bands"), std::string::npos) << m_summary;
            const std::string whole = image("whole", "7000", "0", options, drawing);
            EXPECT_EQ(m_summary.find("bands"), std::string::npos) << m_summary;
            EXPECT_FALSE(whole.empty());
            EXPECT_TRUE(banded == whole) << drawing << ' ' << pattern;
            for (const char* const name : {"whole.tsf", "banded.tsf"}) std::filesystem::remove(job(name));
        }
    }
}

}  // namespace
}  // namespace morvil::tool
