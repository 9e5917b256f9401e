// Memory, clock, processes, accounts, access lists, the spooler and libraries of this host.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "platform/common/LocalBlock.h"
#include "platform/posix/HostState.h"
#include "support/DebugCapture.h"
#include "support/FailingCalls.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

struct HostTest : testing::Test {
    TempHome home;
};

constexpr DWORD kSomePid = 3'999'999'999U;  // beyond what the system hands out

// A handle that closes itself.
class Handle {
  public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    ~Handle() {
        if (m_handle != nullptr) CloseHandle(m_handle);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    operator HANDLE() const { return m_handle; }  // NOLINT(google-explicit-constructor)

  private:
    HANDLE m_handle;
};

HANDLE tokenOf(HANDLE process) {
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(process, TOKEN_QUERY, &token));
    return token;
}

WString userName() {
    std::array<WCHAR, 100> name{};
    DWORD characters = 100;
    EXPECT_TRUE(GetUserNameW(name.data(), &characters));
    EXPECT_EQ(characters, viewOf(name).size() + 1);
    return WString(viewOf(name));
}

struct PrinterHandle {
    explicit PrinterHandle(const WCHAR* name) {
        WString text(viewOf(name));
        EXPECT_TRUE(OpenPrinterW(name == nullptr ? nullptr : text.data(), &handle, nullptr));
    }
    ~PrinterHandle() { ClosePrinter(handle); }
    PrinterHandle(const PrinterHandle&) = delete;
    PrinterHandle& operator=(const PrinterHandle&) = delete;
    HANDLE handle = nullptr;
};

unsigned modeOf(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

}  // namespace

TEST_F(HostTest, memory_failsWithoutMemory) {
    const FailingCalls faults(1, Fault::Persistent, "allocate");
    SetLastError(0xdeadbeef);
    EXPECT_EQ(LocalAlloc(LPTR, 16), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(LocalBlock<int>(4));
    EXPECT_EQ(outstanding().blocks, 0U);
}

TEST_F(HostTest, memory_isClearedAndCounted) {
    EXPECT_EQ(LocalFree(nullptr), nullptr);
    void* const empty = LocalAlloc(LPTR, 0);
    EXPECT_NE(empty, nullptr);
    {
        LocalBlock<int> block(4);
        ASSERT_TRUE(block);
        for (const int value : block.span()) EXPECT_EQ(value, 0);
        LocalBlock<int> moved(std::move(block));
        EXPECT_FALSE(block);  // NOLINT(bugprone-use-after-move): this is what is tested
        EXPECT_EQ(outstanding().blocks, 2U);
    }
    EXPECT_FALSE(LocalBlock<int>(std::numeric_limits<std::size_t>::max() / 2));
    EXPECT_EQ(outstanding().blocks, 1U);
    EXPECT_EQ(LocalFree(empty), nullptr);
    EXPECT_EQ(outstanding().blocks, 0U);
}

TEST_F(HostTest, textKind) {
    const struct {
        std::string bytes;
        bool wide;
    } cases[] = {{"", false},
                 {"a", false},
                 {"plain text", false},
                 {"\xE4\xF6 \xFC", false},
                 {"\xFE\xFF\0a", false},
                 {std::string("\0a\0b", 4), false},
                 {std::string("a\0b\0c", 5), false},
                 {"\xFF\xFE", true},
                 {std::string("\xFF\xFE"
                              "a\0",
                              4),
                  true},
                 {std::string("a\0b\0", 4), true}};
    for (const auto& item : cases) {
        EXPECT_EQ(IsTextUnicode(item.bytes.data(), static_cast<INT>(item.bytes.size()), nullptr) != FALSE, item.wide) << item.bytes;
    }
    EXPECT_FALSE(IsTextUnicode(nullptr, 4, nullptr));
    INT asked = IS_TEXT_UNICODE_SIGNATURE;
    EXPECT_FALSE(IsTextUnicode("a\0b\0", 4, &asked)) << "only the mark was asked for";
    EXPECT_EQ(asked, 0);
}

TEST_F(HostTest, clock_canBeStopped) {
    hostState().fixedTime = std::chrono::system_clock::from_time_t(1'700'000'000) + std::chrono::milliseconds(123);
    SYSTEMTIME time{};
    GetSystemTime(&time);
    EXPECT_EQ(time.wYear, 2023);
    EXPECT_EQ(time.wMonth, 11);
    EXPECT_EQ(time.wDay, 14);
    EXPECT_EQ(time.wDayOfWeek, 2);
    EXPECT_EQ(time.wHour, 22);
    EXPECT_EQ(time.wMinute, 13);
    EXPECT_EQ(time.wSecond, 20);
    EXPECT_EQ(time.wMilliseconds, 123);
    GetLocalTime(&time);
    EXPECT_EQ(time.wYear, 2023);
    const DWORD before = GetTickCount();
    Sleep(2);
    EXPECT_GE(GetTickCount() - before, 2U);
}

TEST_F(HostTest, debugOutput_reachesTheListenerOnly) {
    OutputDebugStringW(TEXT("nobody listens"));
    DebugCapture debugger;
    OutputDebugStringW(nullptr);
    OutputDebugStringW(TEXT("text\n"));
    EXPECT_EQ(debugger.texts(), std::vector<std::string>{"text\n"});
}

TEST_F(HostTest, reset_restoresAFreshProcess) {
    hostState().userName = TEXT("SYSTEM");
    hostState().printers.clear();
    hostState().forms.clear();
    hostState().refusals["GetUserNameW"] = ERROR_ACCESS_DENIED;
    hostState().processes[kSomePid] = {.moduleName = TEXT("a.exe"), .owner = {}};
    const Handle open(CreateFileW(TEXT("C:\\file"), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_EQ(outstanding().files, 1U);
    resetHostState();
    EXPECT_EQ(outstanding(), Outstanding{});
    EXPECT_TRUE(hostState().userName.empty());
    EXPECT_EQ(hostState().printers.size(), 1U);
    EXPECT_EQ(hostState().forms.size(), 118U);
    EXPECT_TRUE(hostState().refusals.empty());
    EXPECT_TRUE(hostState().processes.empty());
    EXPECT_NE(hostState().home, home.folder().string());
}

TEST_F(HostTest, home_comesFromTheEnvironment) {
    const auto homeWith = [](const char* name, const char* value) {
        ::setenv(name, value, 1);
        return HostState().home;
    };
    const std::string homeBefore = std::getenv("HOME") == nullptr ? "" : std::getenv("HOME");
    ::unsetenv("MORVIL_HOME");
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(homeWith("HOME", "/home/user/"), "/home/user/.local/share/morvil");
    EXPECT_EQ(homeWith("XDG_DATA_HOME", "relative"), "/home/user/.local/share/morvil") << "a relative data folder is not one";
    EXPECT_EQ(homeWith("XDG_DATA_HOME", "/data"), "/data/morvil");
    EXPECT_EQ(homeWith("MORVIL_HOME", "/srv/data/"), "/srv/data");
    ::unsetenv("MORVIL_HOME");
    ::unsetenv("XDG_DATA_HOME");
    ::setenv("HOME", homeBefore.c_str(), 1);
}

TEST_F(HostTest, refusals_failTheNamedFunction) {
    hostState().refusals["GetVersionExW"] = ERROR_ACCESS_DENIED;
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    EXPECT_FALSE(GetVersionExW(&version));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST_F(HostTest, version) {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version) - 1;
    EXPECT_FALSE(GetVersionExW(&version));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    hostState().version = {.major = 6, .minor = 1, .build = 7601, .servicePack = TEXT("Service Pack 1")};
    version.dwOSVersionInfoSize = sizeof(version);
    EXPECT_TRUE(GetVersionExW(&version));
    EXPECT_EQ(version.dwMajorVersion, 6U);
    EXPECT_EQ(version.dwMinorVersion, 1U);
    EXPECT_EQ(version.dwBuildNumber, 7601U);
    EXPECT_EQ(viewOf(version.szCSDVersion), TEXT("Service Pack 1"));
    SYSTEM_INFO info{};
    GetNativeSystemInfo(&info);
    EXPECT_EQ(info.wProcessorArchitecture, PROCESSOR_ARCHITECTURE_AMD64);
    EXPECT_GE(info.dwNumberOfProcessors, 1U);
}

TEST_F(HostTest, process_unknownOnesAreRefused) {
    for (const DWORD number : {DWORD{0}, kSomePid}) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, number), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    std::array<WCHAR, 10> name{};
    HMODULE module = nullptr;
    DWORD needed = 0;
    EXPECT_FALSE(EnumProcessModules(nullptr, &module, sizeof(module), &needed));
    EXPECT_EQ(GetModuleBaseNameW(nullptr, nullptr, name.data(), 10), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenProcessToken(nullptr, TOKEN_QUERY, &token));
}

TEST_F(HostTest, process_ownProgramHasItsName) {
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, GetCurrentProcessId()));
    HMODULE module = nullptr;
    DWORD needed = 0;
    ASSERT_TRUE(EnumProcessModules(process, &module, sizeof(module), &needed));
    EXPECT_NE(module, nullptr);
    std::array<WCHAR, 520> name{};
    EXPECT_EQ(GetModuleBaseNameW(process, module, name.data(), 520), 13U);
    EXPECT_EQ(viewOf(name), TEXT("test_platform"));
    EXPECT_EQ(GetModuleBaseNameW(process, module, name.data(), 5), 4U);
    EXPECT_EQ(viewOf(name), TEXT("test"));
    EXPECT_EQ(GetModuleBaseNameW(GetCurrentProcess(), module, name.data(), 520), 13U);
}

TEST_F(HostTest, process_canBeGivenANameAndAnOwner) {
    hostState().processes[kSomePid] = {.moduleName = TEXT("winword.exe"), .owner = 77};
    hostState().accounts[77] = {.name = TEXT("anna"), .domain = TEXT("WORKSHOP")};
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, kSomePid));
    std::array<WCHAR, 100> name{};
    EXPECT_EQ(GetModuleBaseNameW(process, nullptr, name.data(), 100), 11U);
    EXPECT_EQ(viewOf(name), TEXT("winword.exe"));
    const Handle token(tokenOf(process));
    EXPECT_TRUE(ImpersonateLoggedOnUser(token));
    EXPECT_EQ(userName(), TEXT("anna"));
    EXPECT_EQ(outstanding().impersonations, 1U);
    EXPECT_TRUE(RevertToSelf());
    EXPECT_NE(userName(), TEXT("anna"));
}

TEST_F(HostTest, userName_tellsTheRoomItNeeds) {
    hostState().userName = TEXT("SYSTEM");
    std::array<WCHAR, 7> name{};
    DWORD characters = 6;
    EXPECT_FALSE(GetUserNameW(name.data(), &characters));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(characters, 7U);
    EXPECT_TRUE(GetUserNameW(name.data(), &characters));
    EXPECT_EQ(viewOf(name), TEXT("SYSTEM"));
    EXPECT_FALSE(GetUserNameW(name.data(), nullptr));
}

TEST_F(HostTest, impersonation_needsAToken) {
    for (HANDLE const token : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        EXPECT_FALSE(ImpersonateLoggedOnUser(token));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_TRUE(RevertToSelf()) << "also without an impersonation";
}

TEST_F(HostTest, token_namesItsOwner) {
    hostState().processes[kSomePid] = {.moduleName = TEXT("a.exe"), .owner = 77};
    hostState().accounts[77] = {.name = TEXT("anna"), .domain = TEXT("WORKSHOP")};
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, kSomePid));
    const Handle token(tokenOf(process));
    DWORD needed = 0;
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    LocalBlock<BYTE> buffer(needed);
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, buffer.get(), needed - 1, &needed));
    ASSERT_TRUE(GetTokenInformation(token, TokenUser, buffer.get(), needed, &needed));
    TOKEN_USER user{};
    std::memcpy(&user, buffer.get(), sizeof(user));

    std::array<WCHAR, 100> name{};
    std::array<WCHAR, 100> domain{};
    DWORD characters = 8;  // one length for both, as some callers have it
    EXPECT_FALSE(LookupAccountSidW(nullptr, user.User.Sid, name.data(), &characters, domain.data(), &characters, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(characters, 9U);
    SID_NAME_USE use = SidTypeUnknown;
    ASSERT_TRUE(LookupAccountSidW(nullptr, user.User.Sid, name.data(), &characters, domain.data(), &characters, &use));
    EXPECT_EQ(viewOf(name), TEXT("anna"));
    EXPECT_EQ(viewOf(domain), TEXT("WORKSHOP"));
    EXPECT_EQ(use, SidTypeUser);

    hostState().accounts.clear();
    WString stranger = TEXT("S-1-22-1-4000000000");
    characters = 100;
    EXPECT_FALSE(LookupAccountSidW(nullptr, stranger.data(), name.data(), &characters, domain.data(), &characters, &use));
    EXPECT_EQ(GetLastError(), ERROR_NONE_MAPPED);
    WString nonsense = TEXT("S-1-22-1-x");
    EXPECT_FALSE(LookupAccountSidW(nullptr, nonsense.data(), name.data(), &characters, domain.data(), &characters, &use));
}

TEST_F(HostTest, accessText_nearMisses) {
    for (const WCHAR* const text :
         {TEXT(""), TEXT("BU"), TEXT("D"), TEXT("D:("), TEXT("D:(A;OICI;GA;;;BU"), TEXT("D:(D;OICI;GA;;;BU)"), TEXT("D:(A;OICI;GA;;BU)"),
          TEXT("D:(A;OICI;;;;BU)"), TEXT("D:(A;OICI;GA;x;;BU)"), TEXT("D:(A;;GA;;;XX)"), TEXT("O:BA"), TEXT("D:(A;;GA;;;BU)x")}) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        EXPECT_FALSE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &descriptor, nullptr)) << toUtf8(text);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(descriptor, nullptr);
    }
}

TEST_F(HostTest, accessList_givesWhatTheCreationMaskAllows) {
    const mode_t before = ::umask(0);
    for (const mode_t mask : {0022U, 0002U, 0000U, 0077U}) {
        ::umask(0077);
        makeFolder(TEXT("C:\\folder"));
        ::umask(mask);
        DWORD needed = 0;
        EXPECT_FALSE(GetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, nullptr, 0, &needed));
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        LocalBlock<BYTE> present(needed);
        ASSERT_TRUE(GetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, present.get(), needed, &needed));
        BOOL isPresent = FALSE;
        BOOL defaulted = TRUE;
        PACL old = nullptr;
        ASSERT_TRUE(GetSecurityDescriptorDacl(present.get(), &isPresent, &old, &defaulted));
        ACL_SIZE_INFORMATION size{};
        ASSERT_TRUE(GetAclInformation(old, &size, sizeof(size), AclSizeInformation));
        EXPECT_EQ(size.AceCount, 3U);
        EXPECT_EQ(size.AclBytesFree, 0U);

        PSECURITY_DESCRIPTOR text = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(TEXT("D:(A;OICI;GA;;;BU)"), SDDL_REVISION_1, &text, nullptr));
        PACL added = nullptr;
        ASSERT_TRUE(GetSecurityDescriptorDacl(text, &isPresent, &added, &defaulted));
        LPVOID entry = nullptr;
        ASSERT_TRUE(GetAce(added, 0, &entry));
        EXPECT_FALSE(GetAce(added, 1, &entry));
        const DWORD entryBytes = static_cast<ACE_HEADER*>(entry)->AceSize;

        LocalBlock<BYTE> room(size.AclBytesInUse + entryBytes);
        const auto list = reinterpret_cast<PACL>(room.get());
        ASSERT_TRUE(InitializeAcl(list, size.AclBytesInUse + entryBytes, ACL_REVISION));
        for (DWORD i = 0; i < size.AceCount; ++i) {
            LPVOID each = nullptr;
            ASSERT_TRUE(GetAce(old, i, &each));
            EXPECT_TRUE(AddAce(list, ACL_REVISION, MAXDWORD, each, static_cast<ACE_HEADER*>(each)->AceSize));
        }
        EXPECT_TRUE(AddAce(list, ACL_REVISION, MAXDWORD, entry, entryBytes));
        EXPECT_FALSE(AddAce(list, ACL_REVISION, MAXDWORD, entry, entryBytes));
        EXPECT_EQ(GetLastError(), ERROR_ALLOTTED_SPACE_EXCEEDED);
        SECURITY_DESCRIPTOR descriptor{};
        ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
        EXPECT_FALSE(SetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, &descriptor)) << "without a list";
        ASSERT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE));
        EXPECT_FALSE(SetFileSecurityW(TEXT("C:\\none"), DACL_SECURITY_INFORMATION, &descriptor));
        EXPECT_TRUE(SetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, &descriptor));
        EXPECT_EQ(modeOf(home.folder() / "folder"), 0777U & ~mask);
        LocalFree(text);
        RemoveDirectoryW(TEXT("C:\\folder"));
    }
    ::umask(before);
}

TEST_F(HostTest, accessList_withLyingCounts) {
    alignas(8) std::array<BYTE, 64> room{};
    const auto list = reinterpret_cast<PACL>(room.data());
    LPVOID entry = nullptr;
    ACL_SIZE_INFORMATION size{};
    EXPECT_FALSE(InitializeAcl(list, 4, ACL_REVISION));
    ASSERT_TRUE(InitializeAcl(list, 64, ACL_REVISION));
    list->AceCount = 1000;  // entries of no size
    EXPECT_FALSE(GetAclInformation(list, &size, sizeof(size), AclSizeInformation));
    EXPECT_FALSE(GetAce(list, 5, &entry));
    EXPECT_FALSE(AddAce(list, ACL_REVISION, MAXDWORD, room.data(), 4));
    SECURITY_DESCRIPTOR descriptor{};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    makeFolder(TEXT("C:\\folder"));
    EXPECT_FALSE(SetFileSecurityW(TEXT("C:\\folder"), DACL_SECURITY_INFORMATION, &descriptor));
    list->AceCount = 1;
    const ACE_HEADER tooLong{.AceType = 0, .AceFlags = 0, .AceSize = 1000};
    std::memcpy(list + 1, &tooLong, sizeof(tooLong));
    EXPECT_FALSE(GetAce(list, 0, &entry));
}

TEST_F(HostTest, printer_errors) {
    HANDLE printer = nullptr;
    WString unknown = TEXT("nobody");
    EXPECT_FALSE(OpenPrinterW(unknown.data(), &printer, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PRINTER_NAME);
    DWORD needed = 0x55;
    DWORD returned = 0x55;
    EXPECT_FALSE(GetPrinterW(nullptr, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(GetPrinterDriverW(nullptr, nullptr, 2, nullptr, 0, &needed));
    EXPECT_FALSE(EnumFormsW(nullptr, 1, nullptr, 0, &needed, &returned));
    EXPECT_FALSE(ClosePrinter(nullptr));
    const PrinterHandle server(nullptr);
    EXPECT_FALSE(GetPrinterW(server.handle, 2, nullptr, 0, &needed)) << "a server is no printer";
    EXPECT_FALSE(EnumFormsW(server.handle, 2, nullptr, 0, &needed, &returned));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_LEVEL);
    const PrinterHandle engraver(TEXT("Morvil"));
    EXPECT_FALSE(GetPrinterW(engraver.handle, 1, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_LEVEL);
    EXPECT_EQ(needed, 0x55U);
}

TEST_F(HostTest, printer_information) {
    hostState().printers = {{.name = TEXT("Engraver"),
                             .server = TEXT("\\\\workshop"),
                             .share = TEXT("laser"),
                             .port = TEXT("LPT1:"),
                             .driver = TEXT("Morvil"),
                             .comment = {},
                             .separatorFile = TEXT("sep.txt"),
                             .processor = TEXT("winprint"),
                             .dataType = TEXT("RAW"),
                             .attributes = PRINTER_ATTRIBUTE_DIRECT,
                             .jobs = 3}};
    const PrinterHandle printer(TEXT("ENGRAVER"));
    DWORD needed = 0;
    EXPECT_FALSE(GetPrinterW(printer.handle, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    LocalBlock<BYTE> buffer(needed);
    EXPECT_FALSE(GetPrinterW(printer.handle, 2, buffer.get(), needed - 1, &needed));
    ASSERT_TRUE(GetPrinterW(printer.handle, 2, buffer.get(), needed, &needed));
    PRINTER_INFO_2W info{};
    std::memcpy(&info, buffer.get(), sizeof(info));
    EXPECT_EQ(viewOf(info.pServerName), TEXT("\\\\workshop"));
    EXPECT_EQ(viewOf(info.pPrinterName), TEXT("Engraver"));
    EXPECT_EQ(viewOf(info.pShareName), TEXT("laser"));
    EXPECT_EQ(viewOf(info.pPortName), TEXT("LPT1:"));
    EXPECT_EQ(viewOf(info.pDriverName), TEXT("Morvil"));
    EXPECT_EQ(viewOf(info.pSepFile), TEXT("sep.txt"));
    EXPECT_EQ(viewOf(info.pPrintProcessor), TEXT("winprint"));
    EXPECT_EQ(viewOf(info.pDatatype), TEXT("RAW"));
    EXPECT_EQ(viewOf(info.pParameters), TEXT(""));
    EXPECT_EQ(reinterpret_cast<BYTE*>(info.pParameters) + sizeof(WCHAR), buffer.get() + needed) << "the size is exact";
    EXPECT_EQ(info.Attributes, PRINTER_ATTRIBUTE_DIRECT);
    EXPECT_EQ(info.cJobs, 3U);

    EXPECT_FALSE(GetPrinterDriverW(printer.handle, nullptr, 2, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    buffer = LocalBlock<BYTE>(needed);
    ASSERT_TRUE(GetPrinterDriverW(printer.handle, nullptr, 2, buffer.get(), needed, &needed));
    DRIVER_INFO_2W driver{};
    std::memcpy(&driver, buffer.get(), sizeof(driver));
    EXPECT_EQ(viewOf(driver.pName), TEXT("Morvil"));
    EXPECT_EQ(viewOf(driver.pDataFile), TEXT("C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.dll"));
    EXPECT_EQ(reinterpret_cast<BYTE*>(driver.pConfigFile + viewOf(driver.pConfigFile).size() + 1), buffer.get() + needed);
}

TEST_F(HostTest, forms_letterFirstAndA4Ninth) {
    const PrinterHandle server(nullptr);
    DWORD needed = 0;
    DWORD returned = 0x55;
    EXPECT_FALSE(EnumFormsW(server.handle, 1, nullptr, 0, &needed, &returned));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(returned, 0U);
    LocalBlock<BYTE> buffer(needed);
    ASSERT_TRUE(EnumFormsW(server.handle, 1, buffer.get(), needed, &needed, &returned));
    ASSERT_EQ(returned, 118U);
    const auto form = [&](std::size_t number) {
        FORM_INFO_1W info{};
        std::memcpy(&info, buffer.get() + (number - 1) * sizeof(info), sizeof(info));
        return info;
    };
    EXPECT_EQ(viewOf(form(1).pName), TEXT("Letter"));
    EXPECT_EQ(form(1).Size.cx, 215900);
    EXPECT_EQ(form(1).Size.cy, 279400);
    EXPECT_EQ(viewOf(form(9).pName), TEXT("A4"));
    EXPECT_EQ(form(9).Size.cx, 210000);
    EXPECT_EQ(form(9).Size.cy, 297000);
    EXPECT_EQ(form(9).ImageableArea.right, 210000);
    EXPECT_EQ(viewOf(form(77).pName), TEXT("A4 Rotated"));
    EXPECT_EQ(form(77).Size.cx, 297000);
    EXPECT_EQ(viewOf(form(118).pName), TEXT("PRC Envelope #10 Rotated"));
    EXPECT_EQ(reinterpret_cast<BYTE*>(form(118).pName + viewOf(form(118).pName).size() + 1), buffer.get() + needed) << "the size is exact";
}

TEST_F(HostTest, library_missingOrNone) {
    for (const WCHAR* const name : {static_cast<const WCHAR*>(nullptr), TEXT(""), TEXT("MvNothing.dll"), TEXT("C:\\none\\MvNothing.dll"),
                                    TEXT("libm.so.6"), TEXT("D:\\x.dll")}) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(LoadLibraryW(name), nullptr) << toUtf8(viewOf(name));
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    }
    writeBytes(TEXT("C:\\lib\\libMvText.so"), "no library");
    EXPECT_EQ(LoadLibraryW(TEXT("C:\\lib\\MvText.dll")), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_BAD_EXE_FORMAT);
    EXPECT_EQ(GetProcAddress(nullptr, "cos"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    EXPECT_FALSE(FreeLibrary(nullptr));
}

TEST_F(HostTest, library_foundInItsFolderOrTheProgramFolder) {
    Dl_info mathematics{};
    ASSERT_NE(::dladdr(reinterpret_cast<void*>(static_cast<double (*)(double)>(&std::cbrt)), &mathematics), 0);
    const std::string bytes = readHostBytes(mathematics.dli_fname);
    writeBytes(TEXT("C:\\lib\\libMvMath.so"), bytes);
    writeBytes(TEXT("C:\\lib\\MvOther.dll"), bytes);
    writeBytes(TEXT("C:\\Program Files\\Morvil\\PrinterDriver\\MvBare.so"), bytes);
    for (const WCHAR* const name : {TEXT("C:\\lib\\MvMath.dll"), TEXT("C:/lib/MvMath"), TEXT("C:\\lib\\MvOther.DLL"), TEXT("MvBare.dll")}) {
        const HMODULE library = LoadLibraryW(name);
        ASSERT_NE(library, nullptr) << toUtf8(name);
        EXPECT_EQ(outstanding().libraries, 1U);
        const auto magnitude = reinterpret_cast<double (*)(double)>(reinterpret_cast<void*>(GetProcAddress(library, "fabs")));
        ASSERT_NE(magnitude, nullptr);
        EXPECT_EQ(magnitude(-3.0), 3.0);
        EXPECT_EQ(GetProcAddress(library, "InitBezier"), nullptr);
        EXPECT_EQ(GetProcAddress(library, reinterpret_cast<LPCSTR>(std::uintptr_t{1})), nullptr) << "by number";
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_FALSE(FreeLibrary(library));
    }
}

TEST_F(HostTest, systemLibrary_isAlwaysThere) {
    const HMODULE kernel = GetModuleHandleW(TEXT("KERNEL32.dll"));
    ASSERT_NE(kernel, nullptr);
    EXPECT_NE(GetProcAddress(kernel, "GetNativeSystemInfo"), nullptr);
    EXPECT_EQ(GetProcAddress(kernel, "NoSuchFunction"), nullptr);
    EXPECT_EQ(GetModuleHandleW(TEXT("other.dll")), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
}

}  // namespace morvil::test
