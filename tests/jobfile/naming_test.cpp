// The life of a writer, and where its file is made under which name.
#include "config/CJobName.h"
#include "jobfile/JobFixture.h"
#include "jobfile/NameClaim.h"
#include "platform/common/Format.h"

namespace morvil::test {

namespace {

using JobNaming = JobFixture;
using Strings = std::vector<std::string>;

// Prints one page of nothing.
void printPage(CSpoolFile& writer) {
    writer.WriteHeader();
    writer.CreateBitmap(3);
    writer.WriteVectorSection();
    writer.Complete();
}

}  // namespace

TEST_F(JobNaming, announces_its_life) {
    std::string address;
    {
        const CSpoolFile writer;
        address = toUtf8(format(TEXT("%X"), low32(&writer)));
        EXPECT_TRUE(logged("SpoolFile wird gestartet, Spool=" + address));
    }
    EXPECT_TRUE(logged("SpoolFile  wird geschlossen, Spool=" + address));
}

TEST_F(JobNaming, missing_configuration_is_ignored) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_TRUE(writer.SetPrinterConfig(nullptr));
    EXPECT_TRUE(logged("SetPrinterConfig pPrinterConfig=0"));
    EXPECT_TRUE(logged("SetPrinterConfig pPrinterConfig=" + toUtf8(format(TEXT("%X"), low32(&config)))));
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    EXPECT_NE(bytesOf(writer).find("<Size: 0.46;0.10>"), std::string::npos);
}

TEST_F(JobNaming, missing_name_is_logged_and_gives_the_default_name) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_TRUE(writer.SetJobName(nullptr));
    EXPECT_TRUE(logged("!!! CSpoolFile::SetJobName Invalid JobName"));
    EXPECT_TRUE(logged("CSpoolFile::SetJobName result=MorvilJob"));
}

TEST_F(JobNaming, given_name_is_kept_logged_and_copied_out) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    std::array<WCHAR, 51> copy{};
    copy.fill(TEXT('#'));
    EXPECT_TRUE(writer.SetJobName(TEXT("Plan"), copy.data()));
    EXPECT_TRUE(logged("CSpoolFile::SetJobName=Plan"));
    EXPECT_TRUE(logged("CSpoolFile::SetJobName result=Plan"));
    EXPECT_EQ(viewOf(writer.jobName()), TEXT("Plan"));
    EXPECT_EQ(viewOf(copy.data()), TEXT("Plan"));
    EXPECT_EQ(copy[50], TEXT('#'));  // no more than 50 characters are touched
}

TEST_F(JobNaming, the_stored_name_is_used_unless_titles_are_asked_for) {
    struct Case {
        DWORD nameMode;
        DWORD flags;
        const WCHAR* expected;
    };
    copyText(config.job.name, TEXT("Stored"));
    for (const Case& given : {Case{1, 0, TEXT("Title")}, Case{1, MV_FL_JOBNAME_FROM_CONFIG, TEXT("Stored")}, Case{0, 0, TEXT("Stored")},
                              Case{2, 0, TEXT("Stored")}, Case{0, MV_FL_JOBNAME_FROM_CONFIG, TEXT("Stored")}}) {
        CSpoolFile writer;
        config.job.nameMode = given.nameMode;
        config.flags = given.flags;
        writer.SetPrinterConfig(&config);
        writer.SetJobName(TEXT("Title"));
        EXPECT_EQ(viewOf(writer.jobName()), viewOf(given.expected)) << given.nameMode << ' ' << given.flags;
    }
}

TEST_F(JobNaming, a_file_name_needs_a_job_name) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_FALSE(writer.BuildSpoolFileName(nullptr));
    EXPECT_TRUE(logged("!!! BuildSpoolFileName JobName Ptr non valid"));
    EXPECT_FALSE(logged("!!! BuildSpoolFileName JobName Length non valid"));
    EXPECT_FALSE(writer.BuildSpoolFileName(TEXT("")));
    EXPECT_TRUE(logged("!!! BuildSpoolFileName JobName Length non valid"));
}

TEST_F(JobNaming, logs_each_step_of_the_file_name) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    clearLog();
    EXPECT_TRUE(writer.BuildSpoolFileName(TEXT("Plan")));
    const std::string spool = toUtf8(m_spool);
    EXPECT_TRUE(logged("BuildSpoolFileName JobName=Plan"));
    EXPECT_TRUE(logged("SpoolFilepath=" + spool + "\\"));
    EXPECT_TRUE(logged("SpoolFileName=" + spool + "\\Plan.tsa"));
    EXPECT_EQ(viewOf(writer.jobFilePath()), inSpool(TEXT("Plan.tsa")));
    EXPECT_EQ(spoolFiles(), Strings{});  // the probe is gone, and nothing else was made
}

TEST_F(JobNaming, an_unwritable_spool_folder_moves_the_job) {
    makeFolder(inSpool(TEXT("Test.txt")));  // the probe cannot be made
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_TRUE(writer.BuildSpoolFileName(TEXT("Plan")));
    EXPECT_TRUE(logged("!!! Write acces denied to spool folder"));
    const WString fallback = CMvConfig().fallbackSpoolFolder();
    EXPECT_TRUE(logged("SpoolFilepath=" + toUtf8(fallback) + "\\"));
    EXPECT_EQ(viewOf(writer.jobFilePath()), fallback + TEXT("\\Plan.tsa"));
    printPage(writer);
    EXPECT_TRUE(exists(fallback + TEXT("\\Plan.tsf")));
}

TEST_F(JobNaming, an_earlier_job_in_the_other_folder_is_not_replaced) {
    makeFolder(inSpool(TEXT("Test.txt")));
    const WString fallback = CMvConfig().fallbackSpoolFolder();
    writeBytes(fallback + TEXT("\\Plan.tsf"), "earlier");
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    printPage(writer);
    EXPECT_EQ(readBytes(fallback + TEXT("\\Plan.tsf")), "earlier");
    EXPECT_TRUE(exists(fallback + TEXT("\\Plan 0001.tsf")));
}

TEST_F(JobNaming, a_probe_left_behind_is_removed) {
    writeBytes(inSpool(TEXT("Test.txt")), "left");
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    EXPECT_TRUE(writer.BuildSpoolFileName(TEXT("Plan")));
    EXPECT_EQ(viewOf(writer.jobFilePath()), inSpool(TEXT("Plan.tsa")));
    EXPECT_FALSE(spooled(TEXT("Test.txt")));
}

TEST_F(JobNaming, pages_of_one_document_count_on) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    for (int page = 0; page < 3; ++page) printPage(writer);
    EXPECT_EQ(spoolFiles(), (Strings{"Plan 0001.tsf", "Plan 0002.tsf", "Plan.tsf"}));
}

TEST_F(JobNaming, pages_named_by_the_configuration_count_on) {
    config.flags = MV_FL_JOBNAME_FROM_CONFIG;
    copyText(config.job.name, TEXT("Stored"));
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    for (int page = 0; page < 3; ++page) {
        writer.SetJobName(TEXT("Title"), config.job.name);  // the resulting name goes back into the instance's record
        writer.SetPrinterConfig(&config);
        printPage(writer);
    }
    EXPECT_EQ(spoolFiles(), (Strings{"Stored 0001.tsf", "Stored 0002.tsf", "Stored.tsf"}));
}

TEST_F(JobNaming, digits_of_the_title_are_no_number) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan 2024"));
    for (int page = 0; page < 2; ++page) printPage(writer);
    EXPECT_EQ(spoolFiles(), (Strings{"Plan 2024 0001.tsf", "Plan 2024.tsf"}));
}

TEST_F(JobNaming, characters_that_no_file_name_holds_are_replaced_in_the_file_name_alone) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("a:b?c"));
    writer.WriteHeader();
    EXPECT_EQ(spoolFiles(), Strings{"a_b_c.tsa"});
    EXPECT_NE(bytesOf(writer).find("<JobName: a:b?c>\r\n"), std::string::npos);
}

TEST_F(JobNaming, an_unfinished_file_left_by_nobody_is_deleted) {
    writeBytes(inSpool(TEXT("Plan.tsa")), std::string(100000, 'x'));
    const auto writer = begin(3);
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsa"});
    EXPECT_TRUE(bytesOf(*writer).starts_with("<!-- Version: 6.0.0.0>\r\n"));
    EXPECT_TRUE(bytesOf(*writer).ends_with(std::string(kEmptyVectors)));
}

TEST_F(JobNaming, a_live_job_of_another_process_keeps_its_name) {
    const auto ours = begin(3);
    OtherProcess other;
    std::unique_ptr<CSpoolFile> theirs;
    other.run([&] { theirs = begin(3); });
    EXPECT_EQ(spoolFiles(), (Strings{"Plan 0001.tsa", "Plan.tsa"}));
    EXPECT_NE(bytesOf(*theirs).find("<JobName: Plan 0001>\r\n"), std::string::npos);

    std::int32_t x = 1;
    std::int32_t y = 2;
    ours->WritePolygon(&x, &y, 1, 0, true);
    other.run([&] { theirs->Complete(); });
    ours->Complete();
    EXPECT_EQ(spoolFiles(), (Strings{"Plan 0001.tsf", "Plan.tsf"}));
    EXPECT_EQ(commandsOf(readBytes(inSpool(TEXT("Plan.tsf")))), "<DrawPolygon: 1;0;0;0;1;2>");
    other.run([&] { theirs.reset(); });
}

TEST_F(JobNaming, a_process_that_finished_in_between_is_not_replaced) {
    OtherProcess other;
    std::unique_ptr<CSpoolFile> theirs;
    CSpoolFile ours;
    ours.SetPrinterConfig(&config);
    ours.SetJobName(TEXT("Plan"));  // still free
    other.run([&] {
        theirs = begin(3);
        theirs->Complete();
    });
    printPage(ours);
    EXPECT_EQ(spoolFiles(), (Strings{"Plan 0001.tsf", "Plan.tsf"}));
    other.run([&] { theirs.reset(); });
}

TEST_F(JobNaming, a_name_is_free_again_when_its_job_is_finished_or_its_writer_gone) {
    OtherProcess other;
    const WString path = inSpool(TEXT("Plan.tsa"));
    const auto othersMayTake = [&] {
        bool taken = false;
        other.run([&] { taken = NameClaim().take(path); });
        return taken;
    };
    auto writer = begin(3);
    EXPECT_FALSE(othersMayTake());
    writer->Complete();
    EXPECT_TRUE(othersMayTake());
    DeleteFileW(inSpool(TEXT("Plan.tsf")).c_str());
    writer = begin(3);
    EXPECT_FALSE(othersMayTake());
    writer.reset();
    EXPECT_TRUE(othersMayTake());
}

TEST_F(JobNaming, a_second_claim_of_the_same_path_in_other_letters_is_refused) {
    NameClaim claim;
    EXPECT_TRUE(claim.take(TEXT("C:\\Spool\\Plan.tsa")));
    OtherProcess other;
    bool same = true;
    bool different = false;
    other.run([&] {
        same = NameClaim().take(TEXT("c:\\spool\\PLAN.tsa"));
        different = NameClaim().take(TEXT("C:\\Spool\\Plan 0001.tsa"));
    });
    EXPECT_FALSE(same);
    EXPECT_TRUE(different);
}

}  // namespace morvil::test
