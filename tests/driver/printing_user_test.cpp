// Whole documents under the system account: printed as the user of the printing application, whose identity is given up again
// however the document ends, and printed all the same when that application cannot be asked.
#include "driver/DriverFixture.h"
#include "platform/posix/HostState.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr DWORD kApplication = 4711;

class PrintingUser : public DriverTest {
  protected:
    void become(const WCHAR* account) {
        hostState().userName = account;
        hostState().processes[kApplication] = {TEXT("paint.exe"), 1001};
        hostState().accounts[1001] = {TEXT("anna"), TEXT("SHOP")};
        configuration().application.processId = kApplication;
        m_handles = outstanding().handles;
    }
    static std::string userName() {
        std::array<WCHAR, 100> name{};
        DWORD characters = 100;
        EXPECT_NE(GetUserNameW(name.data(), &characters), FALSE);
        return toUtf8(viewOf(std::span<const WCHAR>(name)));
    }
    void printPage() {
        startPage();
        EXPECT_EQ(DrvSendPage(pso), TRUE);
    }
    void giveBackInstance() {
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    }
    void expectItself() {
        EXPECT_EQ(state().impersonationToken, nullptr);
        EXPECT_EQ(outstanding().impersonations, 0U);
        EXPECT_EQ(outstanding().handles, m_handles);
    }

  private:
    std::size_t m_handles = 0;
};

TEST_F(PrintingUser, is_not_taken_on_by_accounts_that_are_called_alike) {
    for (const WCHAR* const account : {TEXT("System"), TEXT("systems"), TEXT("bert")}) {
        become(account);
        pso = nullptr;
        printPage();
        EXPECT_EQ(userName(), toUtf8(viewOf(account)));
        EXPECT_THAT(morvilLog(), Not(Contains(HasSubstr("SwitchToLoggedOnUser"))));
        EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
        giveBackInstance();
        expectItself();
    }
}

TEST_F(PrintingUser, prints_for_the_system_account_in_both_spellings) {
    for (const WCHAR* const account : {TEXT("system"), TEXT("SYSTEM")}) {
        clearLogs();
        become(account);
        pso = nullptr;
        printPage();
        EXPECT_EQ(userName(), "anna");
        EXPECT_THAT(morvilLog(), AllOf(Contains("!!! IsSystemUser"), Contains("SwitchToLoggedOnUser ImpersonateLoggedOnUser")));
        EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
        EXPECT_EQ(userName(), toUtf8(viewOf(account)));
        giveBackInstance();
        expectItself();
    }
    EXPECT_EQ(jobFileNames().size(), 2U);
}

TEST_F(PrintingUser, who_cannot_be_found_out_has_the_document_printed_all_the_same) {
    struct Case {
        const char* call;
        std::vector<std::string> lines;
    };
    const std::string self = std::to_string(GetCurrentProcessId());
    const Case cases[] = {
        {"OpenProcess", {"!!! PrintProcessNameAndID hProcess invalid ProcessID=" + self, "!!! SwitchToLoggedOnUser ImpersonateLoggedOnUser hPrintingApplication=0, Error=6"}},
        {"OpenProcessToken", {"!!! SwitchToLoggedOnUser ProcessToken Error=5"}},
        {"EnumProcessModules", {"SwitchToLoggedOnUser ImpersonateLoggedOnUser"}},
        {"GetUserNameW", {"!!! IsSystemUser (2)"}}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.call);
        clearLogs();
        become(TEXT("SYSTEM"));
        hostState().refusals[each.call] = ERROR_ACCESS_DENIED;
        pso = nullptr;
        printPage();
        for (const std::string& line : each.lines) EXPECT_THAT(morvilLog(), Contains(line));
        EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
        giveBackInstance();
        hostState().refusals.clear();
        expectItself();
    }
    EXPECT_EQ(jobFileNames().size(), std::size(cases));
}

TEST_F(PrintingUser, is_given_up_when_the_document_is_aborted) {
    for (const bool engineTells : {false, true}) {
        SCOPED_TRACE(engineTells);
        become(TEXT("SYSTEM"));
        pso = nullptr;
        startPage();
        EXPECT_EQ(userName(), "anna");
        engine.aborted = engineTells;
        EXPECT_EQ(DrvEndDoc(pso, ED_ABORTDOC), engineTells ? FALSE : TRUE);
        giveBackInstance();
        engine.aborted = false;
        expectItself();
        EXPECT_EQ(userName(), "SYSTEM");
        EXPECT_THAT(jobFileNames(), testing::IsEmpty());
    }
}

// Another instance that comes and goes under the document, as with a change of paper.
TEST_F(PrintingUser, stays_while_his_document_is_printed) {
    become(TEXT("SYSTEM"));
    startPage();
    const DHPDEV other = DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer);
    ASSERT_NE(other, nullptr);
    DrvDisablePDEV(other);
    EXPECT_EQ(userName(), "anna");
    EXPECT_EQ(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(userName(), "anna");
    EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
    giveBackInstance();
    expectItself();
}

TEST_F(PrintingUser, is_given_up_when_no_instance_is_made) {
    become(TEXT("SYSTEM"));
    configuration().size.takeFromApplication = 1;
    configuration().resolution = 1000;
    devmode.dm.dmPaperSize = DMPAPER_USER;  // too wide for a surface
    devmode.dm.dmPaperWidth = 32767;
    devmode.dm.dmPaperLength = 100;
    GDIINFO info{};
    EXPECT_EQ(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, sizeof(info), reinterpret_cast<ULONG*>(&info), 0, nullptr, nullptr, nullptr, printer), nullptr);
    EXPECT_THAT(morvilLog(), Contains(StartsWith("SwitchToLoggedOnUser ProcessToken=")));
    expectItself();
    engine.throws = true;
    devmode.dm.dmPaperWidth = 100;
    DEVINFO palette{};
    EXPECT_EQ(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, sizeof(palette), &palette, nullptr, nullptr, printer), nullptr);
    expectItself();
}

}  // namespace
}  // namespace morvil::test
