// Begin and end of a document: naming, the printing application, impersonation, the job writer's life.
#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"
#include "driver/job_writer.h"
#include "platform/posix/HostState.h"
#include "support/VersionedProgram.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

class Document : public DriverTest {
  protected:
    static std::string jobNameAsked() {
        std::string name;
        for (const std::string& line : morvilLog()) {
            if (line.starts_with("CSpoolFile::SetJobName=")) name = line.substr(line.find('=') + 1);
        }
        return name;
    }
};

TEST_F(Document, an_invalid_instance_starts_nothing) {
    enableSurface();
    SURFOBJ stranger = *pso;
    stranger.dhpdev = nullptr;
    clearLogs();
    EXPECT_EQ(DrvStartDoc(&stranger, nullptr, 0), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! DrvStartDoc Invalid pPDev"));
    EXPECT_EQ(DrvStartDoc(nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(state().spoolFile, nullptr);
}

TEST_F(Document, an_invalid_instance_ends_nothing) {
    startDocument();
    engine.aborted = true;
    clearLogs();
    EXPECT_EQ(DrvEndDoc(pso, ED_ABORTDOC), FALSE);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! DrvEndDoc Invalid pPDev"));
    EXPECT_NE(state().spoolFile, nullptr);
}

TEST_F(Document, a_title_that_cannot_name_a_job_leaves_the_configured_name) {
    copyText(configuration().job.name, TEXT("Plate"));
    enableSurface();
    WString empty;
    WString tooLong(260, TEXT('t'));
    for (WCHAR* const title : {static_cast<WCHAR*>(nullptr), empty.data(), tooLong.data()}) {
        clearLogs();
        EXPECT_EQ(DrvStartDoc(pso, title, 1), TRUE);
        EXPECT_THAT(morvilLog(), Contains("JobName from configuration=Plate"));
        EXPECT_EQ(jobNameAsked(), "Plate");
    }
}

TEST_F(Document, a_title_of_259_characters_names_the_job) {
    configuration().job.nameMode = 1;
    enableSurface();
    WString title(259, TEXT('t'));
    EXPECT_EQ(DrvStartDoc(pso, title.data(), 1), TRUE);
    EXPECT_EQ(jobNameAsked(), std::string(259, 't'));
    EXPECT_THAT(morvilLog(), Not(Contains(HasSubstr("JobName from configuration"))));
    EXPECT_EQ(viewOf(std::span<const WCHAR>(pdev->configuration().job.name)), viewOf(state().spoolFile->jobName()).substr(0, 49));
}

// The field has no room for a terminator then; what stands behind it stays.
TEST_F(Document, a_resulting_name_of_50_characters_fills_the_field_of_the_instance) {
    configuration().job.nameMode = 1;
    copyText(configuration().application.name, TEXT("notepad.exe"));
    enableSurface();
    const WString before(viewOf(std::span<const WCHAR>(pdev->configuration().job.formats[0])));
    WString title = WString(60, TEXT('t')) + TEXT(" - Editor");
    EXPECT_EQ(DrvStartDoc(pso, title.data(), 1), TRUE);
    EXPECT_EQ(viewOf(std::span<const WCHAR>(pdev->configuration().job.name)), WString(50, TEXT('t')));
    EXPECT_EQ(viewOf(std::span<const WCHAR>(pdev->configuration().job.formats[0])), before);
    EXPECT_EQ(DrvStartDoc(pso, nullptr, 1), TRUE);
    EXPECT_EQ(jobNameAsked(), std::string(50, 't')) << "read back without running into the next field";
}

TEST_F(Document, the_resulting_name_goes_into_the_instance) {
    configuration().job.nameMode = 1;
    startDocument(TEXT("Plan"));
    EXPECT_EQ(toUtf8(viewOf(std::span<const WCHAR>(pdev->configuration().job.name))), "Plan");
}

TEST_F(Document, a_start_leaves_its_trace) {
    copyText(configuration().application.name, TEXT("paint.exe"));
    configuration().size.width = 10.5F;
    hostState().version = {6, 1, 7601, TEXT("SP1")};
    state().ghInstance = reinterpret_cast<HINSTANCE>(0x123);
    enableSurface();
    clearLogs();
    WString title = TEXT("Plan");
    EXPECT_EQ(DrvStartDoc(pso, title.data(), 7), TRUE);
    const std::vector<std::string> lines = morvilLog();
    EXPECT_EQ(lines.front(), withPointer("DrvStartDoc pPDev={}, OS=Windowwwwws 3.11, haha, Build=7601, ServicePack=SP1", pdev));
    EXPECT_THAT(lines, IsSupersetOf({std::string("DrvStartDoc ghInstance=291, DocName=Plan, JobId=7, fWidth=10.50, fHeight=8.00"),
                                     std::string("PrintingApp=paint.exe")}));
    EXPECT_THAT(lines, AllOf(Contains(HasSubstr("Driver=")), Contains(HasSubstr("UserName="))));
    EXPECT_EQ(lines.back(), "DrvStartDoc finished");
}

TEST_F(Document, the_instance_rules_the_working_configuration) {
    enableSurface();
    pdev->configuration().layers = 77;
    state().configuration.layers = 5;
    EXPECT_EQ(DrvStartDoc(pso, nullptr, 0), TRUE);
    EXPECT_EQ(state().configuration.layers, 77);
}

TEST_F(Document, a_temporary_job_has_no_writer) {
    configuration().flags = MV_FL_TMPJOB;
    enableSurface();
    clearLogs();
    EXPECT_EQ(DrvStartDoc(pso, nullptr, 0), TRUE);
    EXPECT_EQ(state().spoolFile, nullptr);
    EXPECT_THAT(morvilLog(), Not(Contains(HasSubstr("PrintingApp="))));
    EXPECT_EQ(morvilLog().back(), "DrvStartDoc finished");
}

TEST_F(Document, the_system_account_prints_as_the_user_and_returns) {
    hostState().processes[4711] = {TEXT("paint.exe"), 1001};
    hostState().accounts[1001] = {TEXT("anna"), TEXT("SHOP")};
    configuration().application.processId = 4711;
    enableSurface();
    hostState().userName = TEXT("SYSTEM");
    EXPECT_EQ(DrvStartDoc(pso, nullptr, 0), TRUE);
    EXPECT_NE(state().impersonationToken, nullptr);
    EXPECT_EQ(outstanding().impersonations, 1U);
    EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_EQ(outstanding().impersonations, 0U);
}

TEST_F(Document, the_end_deletes_the_writer) {
    startDocument();
    clearLogs();
    EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
    EXPECT_EQ(state().spoolFile, nullptr);
    const std::vector<std::string> lines = morvilLog();
    ASSERT_GE(lines.size(), 5U);
    EXPECT_EQ(lines[0], withPointer("DrvEndDoc pPDev={}", pdev));
    EXPECT_THAT(lines[1], HasSubstr("UserName="));
    EXPECT_THAT(lines[2], HasSubstr("UserName="));
    EXPECT_EQ(lines[3], "DrvEndDoc delete SpoolObject");
    EXPECT_THAT(lines[4], HasSubstr("SpoolFile  wird geschlossen"));
    EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);  // nothing left to delete
}

TEST_F(Document, an_aborted_document_leaves_no_unfinished_file) {
    startPage();
    ASSERT_FALSE(jobFile(".tsa").empty());
    EXPECT_EQ(DrvEndDoc(pso, ED_ABORTDOC), TRUE);
    EXPECT_THAT(jobFileNames(), testing::IsEmpty());
}

TEST_F(Document, an_abort_that_the_engine_reports_leaves_no_unfinished_file) {
    startPage();
    ASSERT_FALSE(jobFile(".tsa").empty());
    engine.aborted = true;
    EXPECT_EQ(DrvSendPage(pso), FALSE);
    EXPECT_EQ(DrvEndDoc(pso, ED_ABORTDOC), FALSE);
    DrvDisableSurface(handleOf(pdev));
    DrvDisablePDEV(handleOf(pdev));
    pdev = nullptr;
    EXPECT_THAT(jobFileNames(), testing::IsEmpty());
}

TEST_F(Document, the_driver_version_goes_into_the_main_ini_when_there_is_one) {
    const auto stored = [] {
        std::array<WCHAR, 64> text{};
        GetPrivateProfileStringW(TEXT("PrinterDriver"), TEXT("actVersion"), TEXT("none"), text.data(), 64, CMvConfig().mainIni());
        return toUtf8(viewOf(std::span<const WCHAR>(text)));
    };
    DriverInfo2MorvilConf();
    EXPECT_EQ(stored(), "0.0.0");  // no driver file, so what was there stays
    writeBytes(TEXT("C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.dll"), programWithVersion({6, 1, 2, 34}));
    DriverInfo2MorvilConf();
    EXPECT_EQ(stored(), "6.01.2.34");
}

}  // namespace
}  // namespace morvil::test
