// Private profile files: hostile ones, lost ones, and the platform's reading rules.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>

#include "platform/posix/HostState.h"
#include "platform/posix/IniFile.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/ProfileCache.h"
#include "platform/posix/ProfileText.h"
#include "support/FailingCalls.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr const WCHAR* kFile = TEXT("C:\\a.ini");
constexpr useconds_t kLongerThanARest = 130'000;  // microseconds; ProfileCache.h

struct ProfileTest : testing::Test {
    TempHome home;
};

std::string read(const WCHAR* section, const WCHAR* key, const WCHAR* fallback = TEXT("none")) {
    std::array<WCHAR, 200> out{};
    const DWORD count = GetPrivateProfileStringW(section, key, fallback, out.data(), static_cast<DWORD>(out.size()), kFile);
    EXPECT_EQ(count, viewOf(out).size());
    return toUtf8(viewOf(out));
}

bool write(const WCHAR* section, const WCHAR* key, const WCHAR* value) {
    return WritePrivateProfileStringW(section, key, value, kFile) != FALSE;
}

}  // namespace

TEST_F(ProfileTest, missingFile_givesTheDefault) {
    SetLastError(0xdeadbeef);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none");
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), -1, kFile), 0xFFFFFFFFU);
    EXPECT_EQ(read(TEXT("S"), TEXT("k"), nullptr), "");
    EXPECT_EQ(read(TEXT("S"), TEXT("k"), TEXT(" x  ")), " x") << "blanks at the end of a default do not count";
    EXPECT_FALSE(exists(kFile));
}

TEST_F(ProfileTest, hostileFiles_giveTheDefault) {
    const std::string cases[] = {"",
                                 "\n\n\n",
                                 "k=1",
                                 "[S",
                                 "[S\nk=1",
                                 "]S[\nk=1",
                                 "[S]",
                                 "[S]\n=1\n==\n",
                                 "[S]\nk",
                                 "[S]\n;k=1",
                                 "[S]\n[T]\nk=1",
                                 "[S]\nkk=1\nk k=2",
                                 std::string("[S]\0\nk\0=1", 10),
                                 "\xFF\xFE",
                                 std::string("\xFF\xFE[\0S\0]\0\n\0k\0=", 13),
                                 std::string(100000, '['),
                                 std::string(100000, '\r')};
    for (const std::string& bytes : cases) {
        writeBytes(kFile, bytes);
        EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none") << bytes.substr(0, 40);
        EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, kFile), 7U) << bytes.substr(0, 40);
    }
}

TEST_F(ProfileTest, hugeFile_isRefusedAndNotOverwritten) {
    writeBytes(kFile, "[S]\nk=1\n");
    ASSERT_EQ(::truncate(home.hostPath(kFile).c_str(), off_t{17} << 20), 0);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none");
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    EXPECT_EQ(std::filesystem::file_size(home.hostPath(kFile)), std::uintmax_t{17} << 20);
}

TEST_F(ProfileTest, pathsThatAreNoFile) {
    makeFolder(kFile);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none");
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    EXPECT_FALSE(WritePrivateProfileStringW(TEXT("S"), TEXT("k"), TEXT("v"), TEXT("C:\\none\\a.ini")));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(WritePrivateProfileStringW(TEXT("S"), TEXT("k"), TEXT("v"), nullptr));
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 5, nullptr), 5U);
}

TEST_F(ProfileTest, values) {
    writeBytes(kFile,
               "; comment\r\n"
               "[ Sec ]\r\n"
               "plain=value\r\n"
               "  Blanks  =  some value \t\r\n"
               "quoted=\" x \"\r\n"
               "single=' y '\r\n"
               "twice=\"\"z\"\"\r\n"
               "open=\"x\r\n"
               "mixed=\"x'\r\n"
               "quote=\"\r\n"
               "empty=\r\n"
               "equals=a=b\r\n"
               "semicolon=a;b\r\n"
               "SIZETEMPLATE[1].Name=A4\r\n"
               "plain=second\r\n"
               "umlaut=\xE4\r\n"
               "[Sec]\r\nplain=other section\r\nlate=1\r\n"
               "[a]b]\r\nk=bracket\r\n"
               "[last]\nk=no line end");
    const struct {
        const WCHAR* section;
        const WCHAR* key;
        const char* expected;
    } cases[] = {
        {TEXT("sec"), TEXT("PLAIN"), "value"},
        {TEXT(" Sec "), TEXT(" plain "), "value"},
        {TEXT("Sec"), TEXT("blanks"), "some value"},
        {TEXT("Sec"), TEXT("quoted"), " x "},
        {TEXT("Sec"), TEXT("single"), " y "},
        {TEXT("Sec"), TEXT("twice"), "\"z\""},
        {TEXT("Sec"), TEXT("open"), "\"x"},
        {TEXT("Sec"), TEXT("mixed"), "\"x'"},
        {TEXT("Sec"), TEXT("quote"), "\""},
        {TEXT("Sec"), TEXT("empty"), ""},
        {TEXT("Sec"), TEXT("equals"), "a=b"},
        {TEXT("Sec"), TEXT("semicolon"), "a;b"},
        {TEXT("Sec"), TEXT("sizetemplate[1].name"), "A4"},
        {TEXT("Sec"), TEXT("umlaut"), "\xC3\xA4"},
        {TEXT("Sec"), TEXT("late"), "none"},
        {TEXT("a]b"), TEXT("k"), "bracket"},
        {TEXT("last"), TEXT("k"), "no line end"},
        {TEXT("other"), TEXT("k"), "none"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(read(item.section, item.key), item.expected) << toUtf8(item.section) << " " << toUtf8(item.key);
}

TEST_F(ProfileTest, encodings) {
    writeBytes(kFile, std::string("\xFF\xFE[\0S\0]\0\n\0k\0=\0\xAC\x20", 16));
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "\xE2\x82\xAC");
    EXPECT_TRUE(write(TEXT("S"), TEXT("k"), TEXT("\x20AC!")));
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "\xE2\x82\xAC!");
    writeBytes(kFile, "\xEF\xBB\xBF[S]\nk=\xE2\x82\xAC");
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "\xE2\x82\xAC");
    EXPECT_TRUE(write(TEXT("S"), TEXT("l"), TEXT("\x20AC")));
    EXPECT_EQ(readBytes(kFile), "\xEF\xBB\xBF[S]\nk=\xE2\x82\xAC\r\nl=\xE2\x82\xAC\r\n");
    DeleteFileW(kFile);
    EXPECT_TRUE(write(TEXT("S"), TEXT("k"), TEXT("\x00E4\x20AC")));
    EXPECT_EQ(readBytes(kFile), "[S]\r\nk=\xE4?\r\n");
}

TEST_F(ProfileTest, numbers) {
    const struct {
        const char* value;
        UINT expected;
    } cases[] = {{"", 7},           {"x", 0},
                 {"12", 12},        {" 12 ", 12},
                 {"12x", 12},       {"-3", static_cast<UINT>(-3)},
                 {"+4", 4},         {"0x1F", 31},
                 {"0x", 0},         {"0X1F", 0},
                 {"010", 10},       {"0b101", 5},
                 {"0o17", 15},      {"-0x10", static_cast<UINT>(-16)},
                 {"\"5\"", 5},      {"1.9", 1},
                 {"- 1", 0},        {"4294967296", 0},
                 {"4294967297", 1}, {"--1", 0}};
    for (const auto& item : cases) {
        writeBytes(kFile, std::string("[S]\nk=") + item.value + "\n");
        EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, kFile), item.expected) << item.value;
    }
}

TEST_F(ProfileTest, smallBuffers_areCut) {
    writeBytes(kFile, "[S]\na=12345\nb=1\n[Tee]\n");
    std::array<WCHAR, 20> out{};
    out.fill(TEXT('~'));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, out.data(), 4, kFile), 3U);
    EXPECT_EQ(GetLastError(), ERROR_MORE_DATA);
    EXPECT_EQ(WStringView(out.data(), 5), WStringView(TEXT("123\0~"), 5));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, out.data(), 1, kFile), 0U);
    EXPECT_EQ(out[0], WCHAR{0});
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, out.data(), 0, kFile), 0U);
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, nullptr, 10, kFile), 0U);
}

TEST_F(ProfileTest, lists) {
    writeBytes(kFile, "[S]\na=12345\n;c=2\nb\n[Tee]\n");
    std::array<WCHAR, 20> out{};
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, TEXT("a"), nullptr, out.data(), 20, kFile), 6U);
    EXPECT_EQ(WStringView(out.data(), 7), WStringView(TEXT("S\0Tee\0\0"), 7));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), nullptr, nullptr, out.data(), 20, kFile), 4U);
    EXPECT_EQ(WStringView(out.data(), 5), WStringView(TEXT("a\0b\0\0"), 5));
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, nullptr, out.data(), 5, kFile), 3U);
    EXPECT_EQ(WStringView(out.data(), 5), WStringView(TEXT("S\0T\0\0"), 5));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("none"), nullptr, nullptr, out.data(), 20, kFile), 0U);
}

TEST_F(ProfileTest, writing_changesNothingElse) {
    const struct {
        const char* before;
        const WCHAR* section;
        const WCHAR* key;
        const WCHAR* value;
        const char* after;
    } cases[] = {
        {"", TEXT("S"), TEXT("k"), TEXT("v"), "[S]\r\nk=v\r\n"},
        {"x", TEXT("S"), TEXT("k"), TEXT("v"), "x\r\n[S]\r\nk=v\r\n"},
        {"[S]", TEXT("S"), TEXT("k"), TEXT("v"), "[S]\r\nk=v\r\n"},
        {"[S]\n; keep\nK = old \n\n[T]\nk=t\n", TEXT("s"), TEXT("k"), TEXT("new"), "[S]\n; keep\nK=new\n\n[T]\nk=t\n"},
        {"[S]\na=1\n\n\n[T]\n", TEXT("S"), TEXT("b"), TEXT("2"), "[S]\na=1\nb=2\r\n\n\n[T]\n"},
        {"[S]\n\n[T]\n", TEXT("S"), TEXT("b"), TEXT("2"), "[S]\nb=2\r\n\n[T]\n"},
        {"[S]\na=1\nb=2\n", TEXT("S"), TEXT("a"), nullptr, "[S]\nb=2\n"},
        {"[S]\na=1\n[T]\nb=2\n", TEXT("S"), nullptr, nullptr, "[T]\nb=2\n"},
        {"[S]\na=1\n[T]\nb=2\n", TEXT("T"), nullptr, nullptr, "[S]\na=1\n"},
        {"[S]\na=1\n", TEXT("S"), TEXT("none"), nullptr, "[S]\na=1\n"},
        {"[S]\na=1\n", TEXT("none"), nullptr, nullptr, "[S]\na=1\n"},
        {"[S]\na=1\n", TEXT("S"), TEXT("a"), TEXT(""), "[S]\na=\n"},
        {"[S]\na=1\n[S]\na=2\n", TEXT("S"), TEXT("a"), TEXT("3"), "[S]\na=3\n[S]\na=2\n"},
    };
    for (const auto& item : cases) {
        writeBytes(kFile, item.before);
        EXPECT_TRUE(write(item.section, item.key, item.value)) << item.before;
        EXPECT_EQ(readBytes(kFile), item.after) << item.before;
    }
}

// A file that has rested is read once for all its keys; the system is then only asked whether it is still the same.
TEST_F(ProfileTest, restedFile_isReadOnceForAllKeys) {
    static int opened = 0;
    opened = 0;
    platformCalls().open = [](const char* path, int flags, mode_t mode) { return ++opened, systemCalls().open(path, flags, mode); };
    writeBytes(kFile, "[S]\nk=1\nl=2\n");
    ::usleep(kLongerThanARest);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "1");
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(read(TEXT("S"), TEXT("l")), "2");
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), -1, kFile), 1U);
    EXPECT_EQ(read(TEXT("S"), TEXT("m")), "none");
    EXPECT_EQ(opened, 1);
    platformCalls() = systemCalls();
}

TEST_F(ProfileTest, restedFile_isSeenToChangeWhoeverChangesIt) {
    const std::string path = home.hostPath(kFile);
    const std::string other = path + ".new";
    const auto overwrite = [](const std::string& file, const char* bytes) {
        const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT, 0644);
        EXPECT_EQ(::pwrite(descriptor, bytes, 8, 0), 8);
        ::close(descriptor);
    };
    const struct {
        const char* what;
        std::function<void()> change;
        const char* expected;
    } cases[] = {
        {"written by this process", [] { write(TEXT("S"), TEXT("k"), TEXT("2")); }, "2"},
        {"overwritten in place", [&] { overwrite(path, "[S]\nk=2\n"); }, "2"},
        {"replaced", [&] { overwrite(other, "[S]\nk=2\n"), ::rename(other.c_str(), path.c_str()); }, "2"},
        {"overwritten, and its time put back",
         [&] {
             struct stat before {};
             ::stat(path.c_str(), &before);
             overwrite(path, "[S]\nk=2\n");
             const timespec times[2] = {before.st_atim, before.st_mtim};
             ::utimensat(AT_FDCWD, path.c_str(), times, 0);
         },
         "2"},
        {"removed", [&] { ::unlink(path.c_str()); }, "none"},
    };
    for (const auto& tested : cases) {
        writeBytes(kFile, "[S]\nk=1\n");
        ::usleep(kLongerThanARest);
        EXPECT_EQ(read(TEXT("S"), TEXT("k")), "1") << tested.what;
        EXPECT_EQ(read(TEXT("S"), TEXT("k")), "1") << tested.what;
        tested.change();
        EXPECT_EQ(read(TEXT("S"), TEXT("k")), tested.expected) << tested.what;
    }
}

// What somebody writes between two questions is for the next object; one that was never asked has seen nothing yet.
TEST_F(ProfileTest, anIniFile_answersFromOneStateOfTheFile) {
    const auto valueIn = [](IniFile& ini, const WCHAR* key) {
        std::array<WCHAR, 20> out{};
        const DWORD count = ini.text(TEXT("S"), key, TEXT("none"), out);
        EXPECT_EQ(count, viewOf(out).size());
        return toUtf8(viewOf(out));
    };
    writeBytes(kFile, "[S]\nk=1\nl=1\n");
    IniFile asked(kFile);
    IniFile later(kFile);
    EXPECT_EQ(valueIn(asked, TEXT("k")), "1");
    writeBytes(kFile, "[S]\nk=2\nl=2\n");
    EXPECT_EQ(valueIn(asked, TEXT("l")), "1");
    EXPECT_EQ(asked.number(TEXT("S"), TEXT("k"), 7), 1U);
    EXPECT_EQ(valueIn(later, TEXT("l")), "2");
    EXPECT_EQ(later.number(TEXT("S"), TEXT("m"), 7), 7U);
}

TEST_F(ProfileTest, anIniFile_exists) {
    EXPECT_FALSE(IniFile(kFile).exists());
    EXPECT_FALSE(IniFile(TEXT("")).exists());
    EXPECT_FALSE(IniFile(nullptr).exists());
    writeBytes(kFile, "");
    EXPECT_TRUE(IniFile(kFile).exists());
    ASSERT_EQ(::truncate(home.hostPath(kFile).c_str(), off_t{17} << 20), 0);
    EXPECT_TRUE(IniFile(kFile).exists()) << "also one that is too large to be read";
    DeleteFileW(kFile);
    makeFolder(kFile);
    EXPECT_FALSE(IniFile(kFile).exists());
}

// Changes that follow each other within one tick of the file system's clock, by files of one size that take turns in two places.
TEST_F(ProfileTest, changesInARow_areAllSeen) {
    const std::string path = home.hostPath(kFile);
    for (int n = 100; n < 600; ++n) {
        writeBytes(TEXT("C:\\b.ini"), "[S]\nk=" + std::to_string(n) + "\n");
        ::rename(home.hostPath(TEXT("C:\\b.ini")).c_str(), path.c_str());
        ASSERT_EQ(read(TEXT("S"), TEXT("k")), std::to_string(n));
        ASSERT_EQ(read(TEXT("S"), TEXT("k")), std::to_string(n));
    }
}

// The system's stamps as they may be, against the moment at which the file was looked at.
TEST(FileStamp, restsOnceItsTimesCanTellTheNextChange) {
    const struct {
        std::int64_t seconds;
        std::int64_t nanoseconds;
        std::int64_t momentMilliseconds;
        bool rested;
    } cases[] = {
        {1000, 500'000'000, 1'000'599, false}, {1000, 500'000'000, 1'000'600, true},
        {1000, 500'000'000, 999'000, false},   {1000, 1, 1'000'101, true},
        {1000, 0, 5'000'000, false},  // a file system that counts whole seconds
    };
    for (const auto& tested : cases) {
        struct stat status {};
        status.st_ctim = {tested.seconds, tested.nanoseconds};
        const std::chrono::system_clock::time_point moment{std::chrono::milliseconds(tested.momentMilliseconds)};
        EXPECT_EQ(FileStamp(status).hadRested(moment), tested.rested)
            << tested.seconds << ' ' << tested.nanoseconds << ' ' << tested.momentMilliseconds;
    }
}

TEST_F(ProfileTest, lineEndsInTexts_areRefused) {
    writeBytes(kFile, "[S]\nk=1\n");
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("a\r\n[X]")));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(write(TEXT("S\n"), TEXT("k"), TEXT("a")));
    EXPECT_FALSE(write(TEXT("S"), TEXT("k\n"), TEXT("a")));
    EXPECT_FALSE(write(nullptr, TEXT("k"), TEXT("a")));
    EXPECT_EQ(readBytes(kFile), "[S]\nk=1\n");
}

TEST_F(ProfileTest, readOnlyFile_staysAsItIs) {
    writeBytes(kFile, "[S]\nk=1\n");
    SetFileAttributesW(kFile, FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(readBytes(kFile), "[S]\nk=1\n");
}

TEST_F(ProfileTest, replacedFile_keepsItsMode) {
    writeBytes(kFile, "[S]\nk=1\n");
    ::chmod(home.hostPath(kFile).c_str(), 0662);  // more than a creation mask leaves
    EXPECT_TRUE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    struct stat status {};
    ASSERT_EQ(::stat(home.hostPath(kFile).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0662U);
}

TEST_F(ProfileTest, everyFault_leavesTheOldFileOrTheNewOne) {
    for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
        for (int n = 1;; ++n) {
            writeBytes(kFile, "[S]\nk=1\n");
            FailingCalls faults(n, fault);
            const bool done = write(TEXT("S"), TEXT("k"), TEXT("2"));
            EXPECT_EQ(readBytes(kFile), done ? "[S]\nk=2\n" : "[S]\nk=1\n") << faults.failedCall();
            int files = 0;
            for (const auto& entry : std::filesystem::directory_iterator(home.folder()))
                files += entry.path().filename() != ".locks" ? 1 : 0;
            EXPECT_EQ(files, 1) << "something is left beside the file after a failing " << faults.failedCall();
            if (faults.fired() == 0) {
                EXPECT_TRUE(done);
                break;
            }
        }
    }
}

TEST_F(ProfileTest, writersInSeveralProcesses_loseNoKey) {
    constexpr int kProcesses = 4;
    constexpr int kKeys = 25;
    int start[2] = {};
    ASSERT_EQ(::pipe(start), 0);
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        // Each write takes long enough for the others to come in between.
        platformCalls().flush = [](int file) {
            ::usleep(300);
            return systemCalls().flush(file);
        };
        ::close(start[1]);
        char byte = 0;
        bool good = ::read(start[0], &byte, 1) == 0;  // the end comes when all were started
        for (int key = 0; key < kKeys; ++key) {
            const WString name = fromUtf8("p" + std::to_string(process) + "k" + std::to_string(key));
            good = write(TEXT("S"), name.c_str(), TEXT("1")) && good;
        }
        ::_exit(good ? 0 : 1);
    }
    ::close(start[0]);
    ::close(start[1]);
    for (const pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    const ProfileText profile = decodeProfile(readBytes(kFile));
    EXPECT_EQ(profileKeys(profile.text, TEXT("S")).size(), static_cast<std::size_t>(kProcesses * kKeys));
}

}  // namespace morvil::test
