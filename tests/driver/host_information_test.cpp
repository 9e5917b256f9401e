// What the driver finds out about the system, the printer and the process that prints.
#include "driver/host_information.h"

#include "driver/DriverFixture.h"
#include "driver/Handle.h"
#include "driver/impersonation.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr DWORD kStranger = 4711;

class HostInformation : public DriverTest {
  protected:
    void reopenPrinter() {
        ClosePrinter(printer);
        WString name = hostState().printers.at(0).name;
        OpenPrinterW(name.data(), &printer, nullptr);
    }
    static std::string versionText() {
        std::array<WCHAR, 260> buffer{};
        buffer.fill(TEXT('x'));
        EXPECT_EQ(osVersionText(buffer), buffer.data());
        return toUtf8(viewOf(std::span<const WCHAR>(buffer)));
    }
    static void addProcess(DWORD id, const WCHAR* name, std::uint32_t owner, const WString& account, const WString& domain) {
        hostState().processes[id] = {name, owner};
        hostState().accounts[owner] = {account, domain};
    }
};

TEST_F(HostInformation, a_system_that_does_not_tell_gives_an_empty_text) {
    hostState().refusals["GetVersionExW"] = ERROR_CALL_NOT_IMPLEMENTED;
    EXPECT_EQ(versionText(), "");
}

TEST_F(HostInformation, every_system_has_its_text) {
    static const struct {
        DWORD major;
        DWORD minor;
        const char* text;
    } systems[] = {{5, 2, "Microsoft Windows Server 2003, Build=7601, ServicePack=Service Pack 1"},
                   {5, 1, "Microsoft Windows XP, Build=7601, ServicePack=Service Pack 1"},
                   {5, 0, "Microsoft Windows 2000, Build=7601, ServicePack=Service Pack 1"},
                   {4, 0, "Microsoft Windows NT, Build=7601, ServicePack=Service Pack 1"},
                   {3, 51, "Microsoft Windows NT, Build=7601, ServicePack=Service Pack 1"},
                   {5, 3, "Windowwwwws 3.11, haha, Build=7601, ServicePack=Service Pack 1"},
                   {6, 1, "Windowwwwws 3.11, haha, Build=7601, ServicePack=Service Pack 1"},
                   {6, 2, "Windowwwwws 3.11, haha, Build=7601, ServicePack=Service Pack 1"},
                   {10, 0, "Windowwwwws 3.11, haha, Build=7601, ServicePack=Service Pack 1"}};
    for (const auto& system : systems) {
        hostState().version = {system.major, system.minor, 7601, TEXT("Service Pack 1")};
        EXPECT_EQ(versionText(), system.text);
    }
}

TEST_F(HostInformation, a_printer_that_cannot_be_asked_leaves_no_line) {
    dumpPrinterInformation(nullptr);
    hostState().refusals["GetPrinterW"] = ERROR_ACCESS_DENIED;
    dumpPrinterInformation(printer);
    EXPECT_THAT(morvilLog(), IsEmpty());
}

// What cannot be had stays zero, and a text that is not there prints as one.
TEST_F(HostInformation, a_printer_that_tells_its_size_alone_is_logged_empty) {
    platformCalls().allocate = [](std::size_t bytes) {  // the buffer is taken between the two questions
        hostState().refusals["GetPrinterW"] = ERROR_ACCESS_DENIED;
        return systemCalls().allocate(bytes);
    };
    dumpPrinterInformation(printer);
    platformCalls() = systemCalls();
    EXPECT_THAT(morvilLog(),
                ElementsAre("Server=(null), PrinterName=(null), ShareName=(null), PortName=(null)",
                            "Driver=(null), SeperatorFile=(null), PrintProcessor=(null), DataType=(null)", "Attributes=0, Jobs=0"));
}

TEST_F(HostInformation, a_printer_without_spooling_is_marked) {
    hostState().printers[0] = {TEXT("Engraver"),
                               TEXT("\\\\workshop"),
                               TEXT("laser"),
                               TEXT("LPT1:"),
                               TEXT("Driver 6"),
                               TEXT("comment"),
                               TEXT("sep.txt"),
                               TEXT("winprint"),
                               TEXT("RAW"),
                               2,
                               5};
    reopenPrinter();
    dumpPrinterInformation(printer);
    EXPECT_THAT(morvilLog(), ElementsAre("Server=\\\\workshop, PrinterName=Engraver, ShareName=laser, PortName=LPT1:",
                                         "Driver=Driver 6, SeperatorFile=sep.txt, PrintProcessor=winprint, DataType=RAW",
                                         "Attributes=2, Jobs=5", "!!! Spooler has been deactivated"));
}

TEST_F(HostInformation, a_spooled_printer_is_not_marked) {
    hostState().printers[0].attributes = 0x40 | 0x4;
    reopenPrinter();
    dumpPrinterInformation(printer);
    EXPECT_THAT(morvilLog(), Contains("Attributes=68, Jobs=0"));
    EXPECT_THAT(morvilLog(), Not(Contains("!!! Spooler has been deactivated")));
}

TEST_F(HostInformation, a_process_that_cannot_be_opened_is_named) {
    hostState().refusals["OpenProcess"] = ERROR_ACCESS_DENIED;
    std::array<WCHAR, kProcessNameCharacters> name{TEXT('k'), 0};
    EXPECT_EQ(PrintProcessNameAndID(kStranger, name), FALSE);
    EXPECT_EQ(name[0], TEXT('k'));
    EXPECT_THAT(morvilLog(), ElementsAre("!!! PrintProcessNameAndID hProcess invalid ProcessID=4711"));
}

TEST_F(HostInformation, a_process_without_modules_leaves_no_line) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().refusals["EnumProcessModules"] = ERROR_ACCESS_DENIED;
    std::array<WCHAR, kProcessNameCharacters> name{};
    EXPECT_EQ(PrintProcessNameAndID(kStranger, name), FALSE);
    EXPECT_THAT(morvilLog(), IsEmpty());
}

TEST_F(HostInformation, a_process_without_name_is_unknown) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().userName = TEXT("bert");
    hostState().refusals["GetModuleBaseNameW"] = ERROR_ACCESS_DENIED;
    std::array<WCHAR, kProcessNameCharacters> name{};
    EXPECT_EQ(PrintProcessNameAndID(kStranger, name), TRUE);
    EXPECT_THAT(morvilLog(), ElementsAre("UserName=bert, ProcessName=unknown, ProcessID=4711, ProcessOwner=anna, ProcessDomain=SHOP"));
}

TEST_F(HostInformation, process_number_zero_has_no_owner_but_a_line) {
    addProcess(kStranger, TEXT("idle.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().userName = TEXT("bert");
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, kStranger));
    std::array<WCHAR, kProcessNameCharacters> name{};
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(logProcess(process.get(), 0, name), TRUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));  // nobody asked for that process, which the system refuses
    EXPECT_THAT(morvilLog(), ElementsAre("UserName=bert, ProcessName=idle.exe, ProcessID=0, ProcessOwner=, ProcessDomain="));
}

TEST_F(HostInformation, a_process_is_logged_with_its_owner_and_named) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().userName = TEXT("bert");
    std::array<WCHAR, kProcessNameCharacters> name{};
    EXPECT_EQ(PrintProcessNameAndID(kStranger, name), TRUE);
    EXPECT_EQ(toUtf8(viewOf(std::span<const WCHAR>(name))), "paint.exe");
    EXPECT_THAT(morvilLog(), ElementsAre("UserName=bert, ProcessName=paint.exe, ProcessID=4711, ProcessOwner=anna, ProcessDomain=SHOP"));
}

TEST_F(HostInformation, the_calling_process_names_the_state) {
    addProcess(GetCurrentProcessId(), TEXT("word.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    recordCallingProcess();
    EXPECT_EQ(toUtf8(viewOf(std::span<const WCHAR>(state().processName))), "word.exe");
}

TEST_F(HostInformation, owner_needs_an_output_and_an_open_process) {
    std::array<WCHAR, kOwnerCharacters> domain{TEXT('d'), 0};
    EXPECT_EQ(tokenOwner(GetCurrentProcessId(), {}, domain), FALSE);
    hostState().refusals["OpenProcess"] = ERROR_ACCESS_DENIED;
    std::array<WCHAR, kOwnerCharacters> account{TEXT('a'), 0};
    EXPECT_EQ(tokenOwner(kStranger, account, domain), FALSE);
    EXPECT_EQ(account[0], TEXT('a'));
    EXPECT_EQ(domain[0], TEXT('d'));
}

TEST_F(HostInformation, owner_without_token_information_logs_error_and_sizes) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().refusals["GetTokenInformation"] = ERROR_ACCESS_DENIED;
    std::array<WCHAR, kOwnerCharacters> account{};
    EXPECT_EQ(tokenOwner(kStranger, account, {}), FALSE);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! Error=5, dw=0, sizeof=16"));
}

TEST_F(HostInformation, owner_names_of_a_hundred_characters_are_not_handed_out) {
    const WString longName(100, TEXT('n'));
    const WString shorter(99, TEXT('m'));
    addProcess(kStranger, TEXT("paint.exe"), 1001, longName, shorter);
    std::array<WCHAR, 200> account{TEXT('a'), 0};
    std::array<WCHAR, 200> domain{TEXT('d'), 0};
    EXPECT_EQ(tokenOwner(kStranger, account, domain), TRUE);
    EXPECT_EQ(viewOf(std::span<const WCHAR>(account)), TEXT("a"));
    EXPECT_EQ(viewOf(std::span<const WCHAR>(domain)), shorter);
}

TEST_F(HostInformation, owner_domains_of_a_hundred_characters_are_not_handed_out) {
    const WString longDomain(100, TEXT('n'));
    const WString shorter(99, TEXT('m'));
    addProcess(kStranger, TEXT("paint.exe"), 1001, shorter, longDomain);
    std::array<WCHAR, 200> account{TEXT('a'), 0};
    std::array<WCHAR, 200> domain{TEXT('d'), 0};
    EXPECT_EQ(tokenOwner(kStranger, account, domain), TRUE);
    EXPECT_EQ(viewOf(std::span<const WCHAR>(account)), shorter);
    EXPECT_EQ(viewOf(std::span<const WCHAR>(domain)), TEXT("d"));
}

TEST_F(HostInformation, owner_that_the_system_does_not_know_has_no_name) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().userName = TEXT("bert");
    hostState().refusals["LookupAccountSidW"] = ERROR_NONE_MAPPED;
    std::array<WCHAR, kOwnerCharacters> account{TEXT('a'), 0};
    std::array<WCHAR, kOwnerCharacters> domain{TEXT('d'), 0};
    EXPECT_EQ(tokenOwner(kStranger, account, domain), FALSE);
    EXPECT_EQ(account[0], TEXT('a'));
    EXPECT_EQ(domain[0], TEXT('d'));
    EXPECT_THAT(morvilLog(), IsEmpty());
    std::array<WCHAR, kProcessNameCharacters> name{};
    EXPECT_EQ(PrintProcessNameAndID(kStranger, name), TRUE);
    EXPECT_THAT(morvilLog(), ElementsAre("UserName=bert, ProcessName=paint.exe, ProcessID=4711, ProcessOwner=, ProcessDomain="));
}

class Impersonation : public HostInformation {};

TEST_F(Impersonation, a_user_without_name_is_not_the_system) {
    hostState().refusals["GetUserNameW"] = ERROR_ACCESS_DENIED;
    EXPECT_EQ(IsSystemUser(), FALSE);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! IsSystemUser (2)"));
}

TEST_F(Impersonation, only_two_spellings_are_the_system_account) {
    static const WCHAR* const others[] = {TEXT("System"), TEXT("SYSTEM "), TEXT("systems"), TEXT("sYSTEM"), TEXT("anna"), TEXT("syste")};
    for (const WCHAR* const name : others) {
        hostState().userName = name;
        EXPECT_EQ(IsSystemUser(), FALSE) << toUtf8(viewOf(name));
    }
    EXPECT_THAT(morvilLog(), IsEmpty());
    for (const WCHAR* const name : {TEXT("system"), TEXT("SYSTEM")}) {
        hostState().userName = name;
        EXPECT_EQ(IsSystemUser(), TRUE) << toUtf8(viewOf(name));
    }
    EXPECT_THAT(morvilLog(), ElementsAre("!!! IsSystemUser", "!!! IsSystemUser"));
}

TEST_F(Impersonation, a_missing_process_still_tries_the_token_held) {
    hostState().refusals["OpenProcess"] = ERROR_ACCESS_DENIED;
    hostState().refusals["ImpersonateLoggedOnUser"] = ERROR_INVALID_HANDLE;
    EXPECT_EQ(SwitchToLoggedOnUser(kStranger), TRUE);
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! SwitchToLoggedOnUser ImpersonateLoggedOnUser hPrintingApplication=0, Error=6"));
}

TEST_F(Impersonation, a_token_that_cannot_be_opened_is_reported) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    hostState().refusals["OpenProcessToken"] = ERROR_ACCESS_DENIED;
    hostState().refusals["ImpersonateLoggedOnUser"] = ERROR_INVALID_HANDLE;
    EXPECT_EQ(SwitchToLoggedOnUser(kStranger), TRUE);
    const std::vector<std::string> lines = morvilLog();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "!!! SwitchToLoggedOnUser ProcessToken Error=5");
    EXPECT_TRUE(lines[1].starts_with("!!! SwitchToLoggedOnUser ImpersonateLoggedOnUser hPrintingApplication=")) << lines[1];
    EXPECT_TRUE(lines[1].ends_with(", Error=6")) << lines[1];
}

TEST_F(Impersonation, the_printing_user_is_taken_on_and_left_again) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    EXPECT_EQ(SwitchToLoggedOnUser(kStranger), TRUE);
    const HANDLE token = state().impersonationToken;
    ASSERT_NE(token, nullptr);
    EXPECT_THAT(morvilLog(),
                ElementsAre(withPointer("SwitchToLoggedOnUser ProcessToken={}", token), "SwitchToLoggedOnUser ImpersonateLoggedOnUser"));
    EXPECT_EQ(outstanding().impersonations, 1U);
    endImpersonation();
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_EQ(outstanding().impersonations, 0U);
}

TEST_F(Impersonation, a_second_switch_overwrites_the_token) {
    addProcess(kStranger, TEXT("paint.exe"), 1001, TEXT("anna"), TEXT("SHOP"));
    SwitchToLoggedOnUser(kStranger);
    const HANDLE first = state().impersonationToken;
    SwitchToLoggedOnUser(kStranger);
    EXPECT_NE(state().impersonationToken, first);
    EXPECT_NE(CloseHandle(first), FALSE);  // it was still open
    endImpersonation();
}

TEST_F(Impersonation, an_ordinary_user_stays_himself) {
    hostState().userName = TEXT("anna");
    becomePrintingUser(GetCurrentProcessId());
    EXPECT_EQ(state().impersonationToken, nullptr);
    EXPECT_THAT(morvilLog(), IsEmpty());
}

TEST_F(Impersonation, without_a_token_nothing_ends) {
    endImpersonation();
    EXPECT_THAT(morvilLog(), IsEmpty());
    EXPECT_EQ(outstanding().impersonations, 0U);
}

}  // namespace
}  // namespace morvil::test
