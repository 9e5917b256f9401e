// The end of a job: the log lines of its mode, the final name, and what happens to unfinished files.
#include "jobfile/JobFixture.h"
#include "support/System.h"

namespace morvil::test {

namespace {

using JobCompletion = JobFixture;
using Strings = std::vector<std::string>;

}  // namespace

TEST_F(JobCompletion, each_mode_logs_its_line) {
    struct Case {
        WORD mode;
        WORD colour;
        Strings expected;
    };
    const std::vector<Case> cases{
        {1000, 0, {"SpoolFile ProcessMode=Standard", "SpoolFile Bitmap wird gerastert", "SpoolFile Bitmap fertig gerastert"}},
        {1000, 1, {"SpoolFile ProcessMode=Standard", "SpoolFile Bitmap wird gerastert", "SpoolFile Bitmap fertig gerastert"}},
        {1000, 2, {"SpoolFile ProcessMode=Standard", "SpoolFile 8BPP Color Bitmap"}},
        {2000, 0, {"SpoolFile ProcessMode=Stamp"}},
        {3000, 0, {"SpoolFile ProcessMode=ColorStamp"}},
        {4000, 0, {"SpoolFile ProcessMode=Relief"}},
        {5000, 0, {"SpoolFile ProcessMode=Layer"}},
        {6000, 0, {}},
        {7000, 0, {"SpoolFile ProcessMode=Test2"}},
        {8000, 0, {"SpoolFile ProcessMode=Test3"}},
        {9000, 0, {}},
        {12000, 2, {}},
    };
    for (const Case& given : cases) {
        config.processMode = given.mode;
        config.processColour = given.colour;
        const auto writer = begin(3);
        clearLog();
        EXPECT_TRUE(writer->Complete());
        EXPECT_EQ(messages(), given.expected) << given.mode;
    }
}

TEST_F(JobCompletion, gives_the_file_its_final_name) {
    const auto writer = begin(3);
    const std::string job = bytesOf(*writer);
    EXPECT_EQ(viewOf(writer->finishedFilePath()), TEXT(""));
    EXPECT_TRUE(writer->Complete());
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
    EXPECT_EQ(readBytes(inSpool(TEXT("Plan.tsf"))), job);
    EXPECT_EQ(viewOf(writer->finishedFilePath()), inSpool(TEXT("Plan.tsf")));
}

TEST_F(JobCompletion, replaces_a_finished_file_of_that_name) {
    const auto writer = begin(3);
    writeBytes(inSpool(TEXT("Plan.tsf")), "appeared since");
    const std::string job = bytesOf(*writer);
    writer->Complete();
    EXPECT_EQ(readBytes(inSpool(TEXT("Plan.tsf"))), job);
}

TEST_F(JobCompletion, a_failed_renaming_leaves_the_unfinished_file) {
    auto writer = begin(3);
    makeFolder(inSpool(TEXT("Plan.tsf")));
    writeBytes(inSpool(TEXT("Plan.tsf\\inside")), "x");
    EXPECT_TRUE(writer->Complete());
    EXPECT_TRUE(logged("!!! Error renaming Tsf"));
    EXPECT_EQ(viewOf(writer->finishedFilePath()), TEXT(""));
    writer.reset();
    EXPECT_TRUE(spooled(TEXT("Plan.tsa")));
}

TEST_F(JobCompletion, without_a_job_there_is_nothing_to_rename) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_TRUE(writer.Complete());
    EXPECT_TRUE(logged("!!! Error renaming Tsf"));
}

TEST_F(JobCompletion, a_leftover_that_could_not_be_removed_is_never_given_away) {
    writeBytes(inSpool(TEXT("Plan.tsa")), "leftover");
    makeReadOnly(inSpool(TEXT("Plan.tsa")).c_str());
    const auto writer = begin(3);
    EXPECT_TRUE(logged("!!! Error Open SpoolFile dwError=5"));
    writer->Complete();
    EXPECT_FALSE(spooled(TEXT("Plan.tsf")));
    EXPECT_EQ(readBytes(inSpool(TEXT("Plan.tsa"))), "leftover");
    SetFileAttributesW(inSpool(TEXT("Plan.tsa")).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(JobCompletion, an_unfinished_file_goes_with_its_writer) {
    auto writer = begin(3);
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsa"});
    writer.reset();
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(JobCompletion, an_aborted_job_leaves_nothing) {
    const auto writer = begin(3);
    writer->Abort();
    EXPECT_EQ(spoolFiles(), Strings{});
    std::int32_t x = 1;
    EXPECT_TRUE(writer->WritePolygon(&x, &x, 1, 0, false));
    EXPECT_TRUE(logged("!!! Error WritePolygon"));
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(JobCompletion, aborting_does_not_touch_pages_that_are_finished) {
    const auto writer = begin(3);
    writer->Complete();
    writer->WriteHeader();
    EXPECT_EQ(spoolFiles(), (Strings{"Plan 0001.tsa", "Plan.tsf"}));
    writer->Abort();
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsf"});
}

TEST_F(JobCompletion, a_page_that_was_begun_anew_leaves_one_file) {
    const auto writer = begin(3);
    writer->SetJobName(TEXT("Other"));
    writer->WriteHeader();
    EXPECT_EQ(spoolFiles(), Strings{"Other.tsa"});
}

}  // namespace morvil::test
