// Memory, clock, version, environment and libraries of this host.
#include <dlfcn.h>

#include <cmath>
#include <string>
#include <vector>

#include "platform/HostTest.h"
#include "platform/common/LocalBlock.h"
#include "support/DebugCapture.h"
#include "support/FailingCalls.h"

namespace morvil::test {

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
