// What the driver finds out about the machine that it runs on, where that is a real one: this process, its user and token, the
// installed printer. The cases that make a machine up run elsewhere.
#include "driver/DriverFixture.h"
#include "driver/Handle.h"
#include "driver/host_information.h"
#include "driver/impersonation.h"
#include "host/OpenHandles.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class RealMachine : public DriverTest {
  protected:
    static std::string user() {
        std::array<WCHAR, 200> name{};
        DWORD characters = 200;
        EXPECT_NE(GetUserNameW(name.data(), &characters), FALSE);
        return toUtf8(viewOf(std::span<const WCHAR>(name)));
    }
    // Whether this thread acts as somebody.
    static bool impersonates() {
        HANDLE opened = nullptr;
        const BOOL answer = OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &opened);
        const Handle token(opened);
        return answer != FALSE;
    }
};

TEST_F(RealMachine, a_process_that_is_not_there_is_named) {
    constexpr DWORD kNone = 0x7FFFFFF0;
    std::array<WCHAR, kProcessNameCharacters> name{TEXT('k'), 0};
    EXPECT_EQ(PrintProcessNameAndID(kNone, name), FALSE);
    EXPECT_EQ(name[0], TEXT('k'));
    EXPECT_THAT(morvilLog(), ElementsAre("!!! PrintProcessNameAndID hProcess invalid ProcessID=2147483632"));
    std::array<WCHAR, kOwnerCharacters> account{TEXT('a'), 0};
    EXPECT_EQ(tokenOwner(kNone, account, {}), FALSE);
    EXPECT_EQ(account[0], TEXT('a'));
}

TEST_F(RealMachine, this_process_is_logged_with_its_owner) {
    std::array<WCHAR, kProcessNameCharacters> name{};
    EXPECT_EQ(PrintProcessNameAndID(GetCurrentProcessId(), name), TRUE);
    EXPECT_EQ(toUtf8(viewOf(std::span<const WCHAR>(name))), "test_driver.exe");
    std::array<WCHAR, kOwnerCharacters> account{};
    std::array<WCHAR, kOwnerCharacters> domain{};
    EXPECT_EQ(tokenOwner(GetCurrentProcessId(), account, domain), TRUE);
    EXPECT_EQ(toUtf8(viewOf(std::span<const WCHAR>(account))), user());
    EXPECT_THAT(morvilLog(), ElementsAre("UserName=" + user() + ", ProcessName=test_driver.exe, ProcessID=" + std::to_string(GetCurrentProcessId()) + ", ProcessOwner=" + user() +
                                         ", ProcessDomain=" + toUtf8(viewOf(std::span<const WCHAR>(domain)))));
}

TEST_F(RealMachine, an_ordinary_user_is_not_the_system_account) {
    ASSERT_FALSE(isSystemAccount(fromUtf8(user())));
    becomePrintingUser(GetCurrentProcessId());
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_FALSE(impersonates());
}

TEST_F(RealMachine, a_process_that_is_not_there_gives_no_identity) {
    EXPECT_EQ(SwitchToLoggedOnUser(0x7FFFFFF0), TRUE);
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_FALSE(impersonates());
    EXPECT_THAT(morvilLog(), ElementsAre(HasSubstr("!!! SwitchToLoggedOnUser ImpersonateLoggedOnUser hPrintingApplication=0, Error=")));
}

TEST_F(RealMachine, the_identity_of_a_process_is_taken_on_and_left_again) {
    const std::string before = user();
    EXPECT_EQ(SwitchToLoggedOnUser(GetCurrentProcessId()), TRUE);
    ASSERT_NE(state().impersonationToken, nullptr);
    EXPECT_TRUE(impersonates());
    EXPECT_EQ(user(), before);
    EXPECT_THAT(morvilLog(), ElementsAre(withPointer("SwitchToLoggedOnUser ProcessToken={}", state().impersonationToken), "SwitchToLoggedOnUser ImpersonateLoggedOnUser"));
    endImpersonation();
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_FALSE(impersonates());
}

TEST_F(RealMachine, the_installed_printer_tells_its_names) {
    dumpPrinterInformation(printer);
    EXPECT_THAT(morvilLog(), AllOf(Contains(HasSubstr("PrinterName=Morvil, ")), Contains(HasSubstr("PortName=MORVIL:")), Contains(HasSubstr("Driver=Morvil, ")),
                                   Contains(HasSubstr("PrintProcessor=winprint, DataType=RAW"))));
}

TEST_F(RealMachine, the_system_tells_its_version) {
    std::array<WCHAR, 260> text{};
    osVersionText(text);
    EXPECT_THAT(toUtf8(viewOf(std::span<const WCHAR>(text))), AllOf(HasSubstr("Build="), HasSubstr("ServicePack=")));
}

// The system's own allocator has handed out every block of a document, and every handle is closed behind it.
TEST_F(RealMachine, documents_leave_no_handle_behind) {
    const auto print = [this] {
        pso = nullptr;
        startPage();
        EXPECT_EQ(DrvSendPage(pso), TRUE);
        EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    };
    print();  // the system opens some for good
    const std::size_t before = host::openHandles();
    ASSERT_GT(before, 0U);
    for (int i = 0; i < 5; ++i) print();
    EXPECT_LE(host::openHandles(), before);
}

}  // namespace
}  // namespace morvil::test
