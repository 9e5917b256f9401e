// Every process mode through print, whole and in bands, as drawn, mirrored and shrunk: the job is well-formed, and shrinking keeps
// what was drawn.
#include <gtest/gtest.h>

#include "tool/JobFile.h"
#include "tool/JobSummary.h"
#include "tool/MappedFile.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

constexpr const char* kMode = "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=";
constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5";

struct Printed {
    std::size_t violations = 0;
    std::string firstRule;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint64_t painted = 0;
    std::size_t polygons = 0;
};

class Modes : public PrintFixture, public testing::WithParamInterface<int> {
  protected:
    static std::string setting(const char* start, int number) {
        std::ostringstream text;
        text << start << number;
        return text.str();
    }
    // The badge in the tested mode with these flags.
    Printed printed(const std::vector<std::string>& flags) {
        std::vector<std::string> arguments{"--title", "badge", "--quiet", "--set", kResolution, "--set"};
        arguments.push_back(setting(kMode, GetParam()));
        int number = 0;
        for (const std::string& flag : flags) {
            arguments.emplace_back("--set");
            arguments.push_back(setting("PrinterDriver.Flags.FL_", ++number) + "=" + flag);
        }
        arguments.emplace_back(MORVIL_SAMPLES "/badge.emf");
        const Outcome run = print(arguments);
        EXPECT_EQ(run.status, kDone) << run.err;
        if (run.lines().size() != 1) return {};
        const std::filesystem::path file = run.lines().front();
        Printed result;
        {
            const MappedFile mapped(file.string());
            const JobFile job = readJobFile(mapped.bytes());
            const JobSummary summary = summarize(job);
            result = {.violations = job.violationCount,
                      .firstRule = job.violations.empty() ? std::string() : job.violations.front().rule,
                      .width = job.bitmap ? job.bitmap->width : 0,
                      .height = job.bitmap ? job.bitmap->height : 0,
                      .painted = summary.paintedPixels,
                      .polygons = summary.polygons};
        }
        std::filesystem::remove(file);
        return result;
    }
};

TEST_P(Modes, jobs_are_well_formed_however_they_come_about) {
    for (const std::vector<std::string>& flags : std::vector<std::vector<std::string>>{
             {"MV_FL_POLYGON_CLIPPING"},
             {"MV_FL_IMAGEOP_FLIP_HORIZONTAL"},
             {"MV_FL_IMAGEOP_FLIP_VERTICAL", "MV_FL_IMAGEOP_BOTTOM_UP"},
             {"MV_FL_IMAGEOP_INVERT"},
             {"MV_FL_BITMAP_BANDING"},
             {"MV_FL_BITMAP_BANDING", "MV_FL_SHRINK_TO_BOUNDING_BOX"},
             {"MV_FL_SHRINK_TO_BOUNDING_BOX", "MV_FL_IMAGEOP_FLIP_HORIZONTAL"}}) {
        const Printed job = printed(flags);
        EXPECT_EQ(job.violations, 0U) << flags.front() << ": " << job.firstRule;
        EXPECT_EQ(job.polygons, 2U) << flags.front();
        EXPECT_GT(job.width, 0U) << flags.front();
    }
}

TEST_P(Modes, shrinking_keeps_what_was_drawn) {
    const Printed drawn = printed({"MV_FL_POLYGON_CLIPPING"});
    const Printed shrunk = printed({"MV_FL_POLYGON_CLIPPING", "MV_FL_SHRINK_TO_BOUNDING_BOX"});
    EXPECT_EQ(shrunk.violations, 0U) << shrunk.firstRule;
    EXPECT_LT(shrunk.width, drawn.width);
    EXPECT_LT(shrunk.height, drawn.height);
    EXPECT_EQ(shrunk.painted, drawn.painted);
    EXPECT_EQ(shrunk.polygons, drawn.polygons);
}

INSTANTIATE_TEST_SUITE_P(Every, Modes, testing::Range(1000, 13000, 1000));

}  // namespace
}  // namespace morvil::tool
