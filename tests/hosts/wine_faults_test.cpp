// The shipped driver file with one thing going wrong at a time: the document ends between any two calls, the engine says that it
// was aborted, the engine refuses a service. The driver gives everything back, and no job is left that is not whole.
#include "hosts/WineHost.h"

namespace morvil::hosts {
namespace {

struct Course {
    const char* name;
    const char* options;
};

class WineFaults : public WineHost, public testing::WithParamInterface<Course> {};

TEST_P(WineFaults, leave_nothing_behind) {
    record(GetParam().options);
    const fs::path output = m_folder / "said";
    const std::string command = host() + "--faults " + inQuotes(recording()) + " >" + inQuotes(output) + " 2>&1 </dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0) << read(output);
    int cut = 0;
    int aborted = 0;
    int refused = 0;
    ASSERT_EQ(std::sscanf(read(output).c_str(), "cut %d, aborted %d, refused %d", &cut, &aborted, &refused), 3) << read(output);
    EXPECT_GT(cut, 10);
    EXPECT_GT(aborted, 5);
    EXPECT_GT(refused, 5);
    EXPECT_TRUE(files(".tsa").empty());
    EXPECT_GE(files(".tsf").size(), 3U) << "the undisturbed ones";
    for (const fs::path& job : files(".tsf")) EXPECT_EQ(std::system((std::string(MORVIL_TOOL) + " check " + inQuotes(job) + " >/dev/null").c_str()), 0) << job;
}

constexpr Course kCourses[] = {
    {"whole", "--set PrinterDriver.Configuration.Print.Process.ProcessMode.ID=1000"},
    {"banded", "--set PrinterDriver.Configuration.Print.Process.ProcessMode.ID=1000 --set PrinterDriver.Flags.FL_1=MV_FL_BITMAP_BANDING"},
    {"relief_mirrored", "--set PrinterDriver.Configuration.Print.Process.ProcessMode.ID=4000 --set PrinterDriver.Flags.FL_1=MV_FL_IMAGEOP_FLIP_HORIZONTAL"},
    {"halftoned", "--halftone --set PrinterDriver.Configuration.Print.Process.ProcessMode.ID=9000"},
    {"shrunk", "--set PrinterDriver.Configuration.Print.Process.ProcessMode.ID=1000 --set PrinterDriver.Flags.FL_1=MV_FL_SHRINK_TO_BOUNDING_BOX"},
    {"vectors_only", "--set PrinterDriver.Configuration.Print.Process.ProcessOption.VectorJob=1"},
};
INSTANTIATE_TEST_SUITE_P(Courses, WineFaults, testing::ValuesIn(kCourses), [](const testing::TestParamInfo<Course>& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace morvil::hosts
