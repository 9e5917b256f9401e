// The tracing mode end to end: the page that was printed is what the tracer's pictures show, and what the tracer library finds
// becomes commands of the job.
#include <gmock/gmock.h>

#include "config/CMvConfig.h"
#include "tool/JobFile.h"
#include "tool/MappedFile.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

constexpr const char* kMode = "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=7000";
constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5";

class PrintTracing : public PrintFixture {
  protected:
    void install() const {
        const std::filesystem::path folder = m_home.hostPath(CMvConfig().driverProgramFolder());
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(MORVIL_TEST_TRACER_LIBRARY, folder / "libMvTracer.so");
    }
    // The pixels of the tracer's picture of that kind, three bytes each, without padding.
    [[nodiscard]] std::string pixels(const std::string& kind, std::size_t width) const {
        for (const std::string& name : spooled()) {
            if (!name.starts_with("tracer." + kind + ".")) continue;
            const std::string bytes = test::readHostBytes(m_spool / name);
            std::string rows;
            for (std::size_t at = 54; at < bytes.size(); at += (3 * width + 3) / 4 * 4) rows += bytes.substr(at, 3 * width);
            return rows;
        }
        return {};
    }
};

TEST_F(PrintTracing, red_is_extracted_and_outlines_are_commands) {
    install();
    ASSERT_EQ(print({"--title", "red", "--quiet", "--set", kMode, "--set", kResolution, sample("badge.emf")}).status, kDone);
    const MappedFile mapped(job("red.tsf"));
    const JobFile red = readJobFile(mapped.bytes());
    EXPECT_EQ(red.violationCount, 0U);
    ASSERT_TRUE(red.bitmap);
    // Two strokes of the drawing, then the library's outlines, of three points and of one.
    ASSERT_EQ(red.vectors.size(), 4U);
    EXPECT_THAT(red.vectors[2].coordinates, testing::ElementsAre(0, 20, 1, 21, 2, 22));
    EXPECT_THAT(red.vectors[2].colour, testing::ElementsAre(255, 0, 0));
    EXPECT_THAT(red.vectors[3].coordinates, testing::ElementsAre(10, 20));

    const std::string page = pixels("org", red.bitmap->width);
    const std::string extract = pixels("extracted", red.bitmap->width);
    ASSERT_EQ(page.size(), std::size_t{3} * red.bitmap->width * red.bitmap->height);
    ASSERT_EQ(extract.size(), page.size());
    std::size_t removed = 0;
    for (std::size_t at = 0; at < page.size(); at += 3) {
        const bool isRed = page[at + 2] == '\xFF';
        ASSERT_EQ(extract.substr(at, 3), isRed ? page.substr(at, 3) : std::string(3, '\xFF')) << at;
        removed += isRed ? 0 : 1;
    }
    EXPECT_GT(removed, 1000U) << "the fields of the badge";
}

TEST_F(PrintTracing, without_the_library_the_page_is_printed_all_the_same) {
    ASSERT_EQ(print({"--title", "plain", "--quiet", "--set", kMode, "--set", kResolution, sample("badge.emf")}).status, kDone);
    const MappedFile mapped(job("plain.tsf"));
    const JobFile plain = readJobFile(mapped.bytes());
    EXPECT_EQ(plain.violationCount, 0U);
    EXPECT_EQ(plain.vectors.size(), 2U);
}

}  // namespace
}  // namespace morvil::tool
