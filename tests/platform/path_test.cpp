// Paths, files by name, folders and their search.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/posix/CaseFold.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/NamePattern.h"
#include "support/FailingCalls.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

struct PathTest : testing::Test {
    TempHome home;
};

std::vector<std::string> find(const WCHAR* pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(pattern, &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do names.push_back(toUtf8(viewOf(found.cFileName)));
    while (FindNextFileW(search, &found) != FALSE);
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(search));
    return names;
}

HANDLE openFile(const WCHAR* path, DWORD access, DWORD disposition, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
    return CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, flags, nullptr);
}

}  // namespace

TEST_F(PathTest, refusedPaths) {
    const WString tooLong = TEXT("C:\\") + WString(5000, TEXT('x'));
    const WString tooLongWide = TEXT("C:\\") + WString(2000, WCHAR{0x20AC});
    const struct {
        WStringView path;
        DWORD error;
    } cases[] = {
        {TEXT(""), ERROR_PATH_NOT_FOUND},       {TEXT("D:\\file"), ERROR_PATH_NOT_FOUND}, {TEXT("\\\\server\\share"), ERROR_BAD_NETPATH},
        {TEXT("C:\\a:b"), ERROR_INVALID_NAME},  {TEXT("C:\\a?"), ERROR_INVALID_NAME},     {TEXT("C:\\a*"), ERROR_INVALID_NAME},
        {TEXT("C:\\a\"b"), ERROR_INVALID_NAME}, {TEXT("C:\\<a>"), ERROR_INVALID_NAME},    {TEXT("C:\\a|b"), ERROR_INVALID_NAME},
        {TEXT("C:\\a\tb"), ERROR_INVALID_NAME}, {tooLong, ERROR_FILENAME_EXCED_RANGE},    {tooLongWide, ERROR_FILENAME_EXCED_RANGE},
    };
    for (const auto& item : cases) {
        HostPath path;
        SetLastError(0xdeadbeef);
        EXPECT_FALSE(path.assign(item.path)) << toUtf8(item.path);
        EXPECT_EQ(GetLastError(), item.error) << toUtf8(item.path);
        EXPECT_STREQ(path.c_str(), "");
    }
    HostPath path;
    EXPECT_FALSE(path.assign(static_cast<const WCHAR*>(nullptr)));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(PathTest, acceptedPaths) {
    const std::string root = home.folder().string();
    const struct {
        const WCHAR* path;
        std::string expected;
    } cases[] = {
        {TEXT("C:\\"), root},
        {TEXT("C:"), root},
        {TEXT("c:/a\\b/c"), root + "/a/b/c"},
        {TEXT("C:\\a\\\\b\\"), root + "/a/b"},
        {TEXT("C:\\a\\.\\b"), root + "/a/b"},
        {TEXT("C:\\a\\..\\b"), root + "/b"},
        {TEXT("C:\\..\\..\\b"), root + "/b"},
        {TEXT("C:\\name. \\b.."), root + "/name/b"},
        {TEXT("\\a"), root + "/a"},
        {TEXT("/a"), root + "/a"},
        {TEXT("\\\\?\\C:\\a"), root + "/a"},
        {TEXT("C:\\\x00E4\x20AC"), root + "/\xC3\xA4\xE2\x82\xAC"},
        {TEXT("C:\\Program Files\\x.ini"), root + "/Program Files/x.ini"},
        {TEXT("Z:\\"), "/"},
        {TEXT("Z:\\tmp\\a:b"), "/tmp/a:b"},
        {TEXT("Z:\\..\\tmp"), "/tmp"},
        {TEXT("a\\b"), "./a/b"},
        {TEXT("..\\b"), "./b"},
    };
    for (const auto& item : cases) {
        HostPath path;
        EXPECT_TRUE(path.assign(item.path)) << toUtf8(item.path);
        EXPECT_EQ(path.view(), item.expected) << toUtf8(item.path);
        EXPECT_EQ(path.c_str(), item.expected);
    }
}

TEST_F(PathTest, windowsPathOf_namesTheDrive) {
    const std::string root = home.folder().string();
    EXPECT_EQ(windowsPathOf(root), TEXT("C:\\"));
    EXPECT_EQ(windowsPathOf(root + "/a/b"), TEXT("C:\\a\\b"));
    EXPECT_EQ(windowsPathOf(root + "x/a"), TEXT("Z:") + fromUtf8([&] {
                                               std::string path = root + "x/a";
                                               for (char& byte : path) byte = byte == '/' ? '\\' : byte;
                                               return path;
                                           }()));
    EXPECT_EQ(windowsPathOf("/"), TEXT("Z:\\"));
}

TEST_F(PathTest, createFile_errors) {
    makeFolder(TEXT("C:\\folder"));
    writeBytes(TEXT("C:\\file"), "x");
    const struct {
        const WCHAR* path;
        DWORD access;
        DWORD disposition;
        DWORD error;
    } cases[] = {
        {TEXT("C:\\none"), GENERIC_READ, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("C:\\none\\none"), GENERIC_READ, OPEN_EXISTING, ERROR_PATH_NOT_FOUND},
        {TEXT("C:\\none\\none"), GENERIC_WRITE, CREATE_ALWAYS, ERROR_PATH_NOT_FOUND},
        {TEXT("C:\\file\\none"), GENERIC_READ, OPEN_EXISTING, ERROR_PATH_NOT_FOUND},
        {TEXT("C:\\none"), GENERIC_WRITE, TRUNCATE_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("C:\\file"), GENERIC_WRITE, CREATE_NEW, ERROR_FILE_EXISTS},
        {TEXT("C:\\folder"), GENERIC_READ, OPEN_EXISTING, ERROR_ACCESS_DENIED},
        {TEXT("C:\\folder"), GENERIC_WRITE, CREATE_ALWAYS, ERROR_ACCESS_DENIED},
        {TEXT("C:\\file"), GENERIC_READ, 0, ERROR_INVALID_PARAMETER},
        {TEXT("C:\\file"), GENERIC_READ, 6, ERROR_INVALID_PARAMETER},
        {nullptr, GENERIC_READ, OPEN_EXISTING, ERROR_PATH_NOT_FOUND},
    };
    for (const auto& item : cases) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(openFile(item.path, item.access, item.disposition), INVALID_HANDLE_VALUE) << toUtf8(viewOf(item.path));
        EXPECT_EQ(GetLastError(), item.error) << toUtf8(viewOf(item.path)) << " " << item.disposition;
    }
    EXPECT_EQ(readBytes(TEXT("C:\\file")), "x");
}

TEST_F(PathTest, readOnlyFile_isNotOpenedForWritingDeletedOrReplaced) {
    writeBytes(TEXT("C:\\file"), "x");
    writeBytes(TEXT("C:\\new"), "n");
    ASSERT_TRUE(SetFileAttributesW(TEXT("C:\\file"), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(GetFileAttributesW(TEXT("C:\\file")), FILE_ATTRIBUTE_READONLY);
    for (const DWORD disposition : {OPEN_EXISTING, OPEN_ALWAYS, CREATE_ALWAYS, TRUNCATE_EXISTING}) {
        EXPECT_EQ(openFile(TEXT("C:\\file"), GENERIC_WRITE, disposition), INVALID_HANDLE_VALUE) << disposition;
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    }
    EXPECT_FALSE(DeleteFileW(TEXT("C:\\file")));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(MoveFileExW(TEXT("C:\\new"), TEXT("C:\\file"), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(readBytes(TEXT("C:\\file")), "x");
    ASSERT_TRUE(SetFileAttributesW(TEXT("C:\\file"), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(DeleteFileW(TEXT("C:\\file")));
}

TEST_F(PathTest, staleHandle_isRefused) {
    const HANDLE file = openFile(TEXT("C:\\file"), GENERIC_WRITE, CREATE_ALWAYS);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_FALSE(CloseHandle(file));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    const HANDLE second = openFile(TEXT("C:\\file"), GENERIC_WRITE, CREATE_ALWAYS);
    EXPECT_NE(file, second) << "the slot is used again, the number is not";
    DWORD written = 7;
    EXPECT_FALSE(WriteFile(file, "x", 1, &written, nullptr));
    EXPECT_EQ(written, 0U);
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_FALSE(CloseHandle(reinterpret_cast<HANDLE>(std::uintptr_t{0x12345678})));
    EXPECT_TRUE(CloseHandle(second));
}

TEST_F(PathTest, shortWriteOnAFullDisk_saysHowMuchWasWritten) {
    const HANDLE file = openFile(TEXT("Z:\\dev\\full"), GENERIC_WRITE, OPEN_EXISTING);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 7;
    EXPECT_FALSE(WriteFile(file, "x", 1, &written, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(written, 0U);
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(PathTest, alwaysDispositions_tellWhetherTheFileWasThere) {
    for (const DWORD disposition : {CREATE_ALWAYS, OPEN_ALWAYS}) {
        SetLastError(0xdeadbeef);
        HANDLE file = openFile(TEXT("C:\\file"), GENERIC_WRITE, disposition);
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
        CloseHandle(file);
        file = openFile(TEXT("C:\\file"), GENERIC_WRITE, disposition);
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
        CloseHandle(file);
        EXPECT_TRUE(DeleteFileW(TEXT("C:\\file")));
    }
}

TEST_F(PathTest, deleteOnClose_removesTheFile) {
    const HANDLE file = openFile(TEXT("C:\\file"), GENERIC_WRITE, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_TRUE(exists(TEXT("C:\\file")));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_FALSE(exists(TEXT("C:\\file")));
}

TEST_F(PathTest, everyFaultOfOpening_leavesNothingOpen) {
    writeBytes(TEXT("C:\\file"), "x");
    for (int n = 1;; ++n) {
        FailingCalls faults(n, Fault::Persistent);
        const HANDLE file = openFile(TEXT("C:\\file"), GENERIC_WRITE, CREATE_ALWAYS);
        EXPECT_EQ(file == INVALID_HANDLE_VALUE, faults.fired() != 0);
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
        EXPECT_EQ(outstanding().files, 0U);
        if (faults.fired() == 0) break;
    }
}

TEST_F(PathTest, deleteAndMove_errors) {
    makeFolder(TEXT("C:\\folder"));
    writeBytes(TEXT("C:\\a"), "a");
    writeBytes(TEXT("C:\\b"), "b");
    EXPECT_FALSE(DeleteFileW(TEXT("C:\\none")));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(DeleteFileW(TEXT("C:\\folder")));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(MoveFileExW(TEXT("C:\\a"), TEXT("C:\\b"), 0));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(readBytes(TEXT("C:\\b")), "b");
    EXPECT_FALSE(MoveFileExW(TEXT("C:\\none"), TEXT("C:\\c"), 0));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(MoveFileExW(TEXT("C:\\a"), TEXT("C:\\none\\c"), 0));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE(MoveFileExW(TEXT("C:\\a"), TEXT("C:\\b"), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    EXPECT_EQ(readBytes(TEXT("C:\\b")), "a");
    EXPECT_TRUE(MoveFileExW(TEXT("C:\\b"), TEXT("C:\\c"), 0));
    EXPECT_FALSE(exists(TEXT("C:\\b")));
}

TEST_F(PathTest, folders) {
    EXPECT_FALSE(CreateDirectoryW(TEXT("C:\\a\\b"), nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE(CreateDirectoryW(TEXT("C:\\a"), nullptr));
    EXPECT_FALSE(CreateDirectoryW(TEXT("C:\\a"), nullptr));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(GetFileAttributesW(TEXT("C:\\a")), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(TEXT("C:\\a\\")), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(TEXT("C:\\none")), INVALID_FILE_ATTRIBUTES);
    writeBytes(TEXT("C:\\a\\file"), "");
    EXPECT_EQ(GetFileAttributesW(TEXT("C:\\a\\file")), FILE_ATTRIBUTE_NORMAL);
    EXPECT_FALSE(RemoveDirectoryW(TEXT("C:\\a")));
    EXPECT_EQ(GetLastError(), ERROR_DIR_NOT_EMPTY);
    EXPECT_FALSE(RemoveDirectoryW(TEXT("C:\\a\\file")));
    EXPECT_EQ(GetLastError(), ERROR_DIRECTORY);
    DeleteFileW(TEXT("C:\\a\\file"));
    EXPECT_TRUE(RemoveDirectoryW(TEXT("C:\\a")));
    EXPECT_FALSE(RemoveDirectoryW(TEXT("C:\\a")));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(PathTest, folderOnAFreshDataRoot_makesTheRoot) {
    hostState().home = (home.folder() / "x" / "y").string();
    EXPECT_TRUE(CreateDirectoryW(TEXT("C:\\a"), nullptr));
    EXPECT_TRUE(exists(TEXT("C:\\a")));
}

TEST_F(PathTest, systemFolders_exist) {
    std::array<WCHAR, MAX_PATH> path{};
    EXPECT_EQ(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, path.data()), S_OK);
    EXPECT_EQ(viewOf(path), TEXT("C:\\ProgramData"));
    EXPECT_TRUE(exists(TEXT("C:\\ProgramData")));
    EXPECT_EQ(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, SHGFP_TYPE_CURRENT, path.data()), S_OK);
    EXPECT_EQ(viewOf(path), TEXT("C:\\Program Files"));
    EXPECT_TRUE(exists(TEXT("C:\\Program Files")));
    EXPECT_EQ(SHGetFolderPathW(nullptr, 0x1234, nullptr, SHGFP_TYPE_CURRENT, path.data()), E_INVALIDARG);
    const FailingCalls faults(1, Fault::Persistent, "makeFolder");
    EXPECT_EQ(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, SHGFP_TYPE_CURRENT, path.data()), S_OK) << "it is there";
    EXPECT_TRUE(RemoveDirectoryW(TEXT("C:\\Program Files")));
    EXPECT_TRUE(FAILED(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, SHGFP_TYPE_CURRENT, path.data())));
}

TEST_F(PathTest, systemFolders_areNamedWithoutALook) {
    std::array<WCHAR, MAX_PATH> path{};
    const FailingCalls faults(1, Fault::Persistent);
    EXPECT_EQ(SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES | CSIDL_FLAG_DONT_VERIFY, nullptr, SHGFP_TYPE_CURRENT, path.data()), S_OK);
    EXPECT_EQ(viewOf(path), TEXT("C:\\Program Files"));
    EXPECT_EQ(faults.fired(), 0);
}

TEST_F(PathTest, systemDirectory_tellsTheRoomItNeeds) {
    std::array<WCHAR, MAX_PATH> path{};
    EXPECT_EQ(GetSystemDirectoryW(path.data(), 5), 20U);
    EXPECT_EQ(GetSystemDirectoryW(path.data(), MAX_PATH), 19U);
    EXPECT_EQ(viewOf(path), TEXT("C:\\Windows\\System32"));
}

TEST(NamePattern, matches) {
    const struct {
        const WCHAR* pattern;
        const WCHAR* name;
        bool expected;
    } cases[] = {
        {TEXT("Plan"), TEXT("Plan.tsf"), false},
        {TEXT("Plan.tsf"), TEXT("Plan.tsf2"), false},
        {TEXT("Plan?.tsf"), TEXT("Plan12.tsf"), false},
        {TEXT("Plan?????.tsf"), TEXT("Plan 00001.tsf"), false},
        {TEXT("?lan"), TEXT("lan"), false},  // only in front of a point or at the end
        {TEXT("a?b"), TEXT("ab"), false},
        {TEXT("?.tsf"), TEXT("..tsf"), false},
        {TEXT("*.tsf"), TEXT("Plan.tsa"), false},
        {TEXT("*.tsf"), TEXT("Plan"), false},
        {TEXT("*."), TEXT("a.b"), false},
        {TEXT(""), TEXT("a"), false},
        {TEXT("Plan.tsf"), TEXT("PLAN.TSF"), true},
        {TEXT("\x00E4.tsf"), TEXT("\x00C4.TSF"), true},
        {TEXT("Plan?????.tsf"), TEXT("Plan.tsf"), true},
        {TEXT("Plan?????.tsf"), TEXT("Plan 0001.tsf"), true},
        {TEXT("Plan ????.tsf"), TEXT("Plan 1.tsf"), true},
        {TEXT("Plan???"), TEXT("Plan"), true},
        {TEXT("*"), TEXT("a.b.c"), true},
        {TEXT("*"), TEXT(""), true},
        {TEXT("*.*"), TEXT("a"), true},
        {TEXT("*.*"), TEXT("a.b"), true},
        {TEXT("*."), TEXT("a"), true},
        {TEXT("a."), TEXT("a"), true},
        {TEXT("*.tsf"), TEXT("a.b.tsf"), true},
        {TEXT("*.tsf"), TEXT(".tsf"), true},
        {TEXT("a.*"), TEXT("a"), true},
        {TEXT("a.?"), TEXT("a"), true},
        {TEXT("a*b*c"), TEXT("aXbYc"), true},
        {TEXT("*a*a*a*a*a*a*a*a*a*a*b"), TEXT("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"), false},
    };
    for (const auto& item : cases)
        EXPECT_EQ(NamePattern(item.pattern).matches(item.name), item.expected) << toUtf8(item.pattern) << " on " << toUtf8(item.name);
}

TEST(CaseFold, pairs) {
    const struct {
        WStringView small;
        WStringView capital;
    } cases[] = {{TEXT("abz"), TEXT("ABZ")},
                 {TEXT("\x00E4\x00F6\x00FC"), TEXT("\x00C4\x00D6\x00DC")},
                 {TEXT("\x00FF"), TEXT("\x0178")},
                 {TEXT("\x0101\x013A\x017E"), TEXT("\x0100\x0139\x017D")},
                 {TEXT("\x03B1\x03C9"), TEXT("\x0391\x03A9")},
                 {TEXT("\x0430\x044F\x0451"), TEXT("\x0410\x042F\x0401")}};
    for (const auto& item : cases) EXPECT_TRUE(equalIgnoringCase(item.small, item.capital)) << toUtf8(item.small);
    for (const WCHAR unit : {TEXT('['), TEXT('{'), WCHAR{0xD7}, WCHAR{0xF7}, WCHAR{0xDF}, WCHAR{0x131}}) EXPECT_EQ(upperOf(unit), unit);
    EXPECT_FALSE(equalIgnoringCase(TEXT("ab"), TEXT("abc")));
    EXPECT_TRUE(lessIgnoringCase(TEXT("a"), TEXT("B")));
}

TEST_F(PathTest, find_errors) {
    makeFolder(TEXT("C:\\folder"));
    WIN32_FIND_DATAW found{};
    const struct {
        const WCHAR* pattern;
        DWORD error;
    } cases[] = {{TEXT("C:\\folder\\x"), ERROR_FILE_NOT_FOUND}, {TEXT("C:\\folder\\*.tsf"), ERROR_FILE_NOT_FOUND},
                 {TEXT("C:\\none\\*"), ERROR_PATH_NOT_FOUND},   {TEXT("C:\\folder\\"), ERROR_FILE_NOT_FOUND},
                 {TEXT("D:\\*"), ERROR_PATH_NOT_FOUND},         {TEXT(""), ERROR_PATH_NOT_FOUND}};
    for (const auto& item : cases) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(FindFirstFileW(item.pattern, &found), INVALID_HANDLE_VALUE) << toUtf8(item.pattern);
        EXPECT_EQ(GetLastError(), item.error) << toUtf8(item.pattern);
    }
    EXPECT_FALSE(FindNextFileW(nullptr, &found));
    EXPECT_FALSE(FindClose(nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(PathTest, find_namesInOrderWithoutRegardToCase) {
    for (const WCHAR* const name : {TEXT("C:\\s\\b.tsf"), TEXT("C:\\s\\A.tsf"), TEXT("C:\\s\\c.TSF"), TEXT("C:\\s\\d.tsa")})
        writeBytes(name, "12");
    writeHostBytes(home.folder() / "s" / "\xFF.tsf", "");  // no UTF-8: cannot be named
    EXPECT_EQ(find(TEXT("C:\\s\\*.tsf")), (std::vector<std::string>{"A.tsf", "b.tsf", "c.TSF"}));
    EXPECT_EQ(find(TEXT("C:\\s\\?.tsf")), (std::vector<std::string>{"A.tsf", "b.tsf", "c.TSF"}));
    EXPECT_EQ(find(TEXT("C:/s/D.TSA")), (std::vector<std::string>{"d.tsa"}));
    EXPECT_EQ(find(TEXT("C:\\s\\*")).size(), 6U) << "with . and ..";
}

TEST_F(PathTest, find_describesTheFile) {
    writeBytes(TEXT("C:\\s\\file"), "12345");
    makeFolder(TEXT("C:\\s\\folder"));
    WIN32_FIND_DATAW found{};
    HANDLE search = FindFirstFileW(TEXT("C:\\s\\file"), &found);
    EXPECT_EQ(found.nFileSizeLow, 5U);
    EXPECT_EQ(found.dwFileAttributes, FILE_ATTRIBUTE_NORMAL);
    EXPECT_NE(found.ftLastWriteTime.dwHighDateTime, 0U);
    FindClose(search);
    search = FindFirstFileW(TEXT("C:\\s\\folder"), &found);
    EXPECT_EQ(found.dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY);
    FindClose(search);
}

}  // namespace morvil::test
