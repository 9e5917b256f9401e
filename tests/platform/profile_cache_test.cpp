// Private profile files that are kept once they have been read: whoever changes them is seen.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>

#include "platform/ProfileTest.h"
#include "platform/posix/IniFile.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/ProfileCache.h"

namespace morvil::test {

namespace {

constexpr useconds_t kLongerThanARest = 130'000;  // microseconds; ProfileCache.h

}  // namespace

// A file that has rested is read once for all its keys; the system is then only asked whether it is still the same.
TEST_F(ProfileTest, restedFile_isReadOnceForAllKeys) {
    static int opened = 0;
    opened = 0;
    platformCalls().open = [](const char* path, int flags, mode_t mode) { return ++opened, systemCalls().open(path, flags, mode); };
    writeBytes(kProfile, "[S]\nk=1\nl=2\n");
    ::usleep(kLongerThanARest);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "1");
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(read(TEXT("S"), TEXT("l")), "2");
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), -1, kProfile), 1U);
    EXPECT_EQ(read(TEXT("S"), TEXT("m")), "none");
    EXPECT_EQ(opened, 1);
    platformCalls() = systemCalls();
}

TEST_F(ProfileTest, restedFile_isSeenToChangeWhoeverChangesIt) {
    const std::string path = home.hostPath(kProfile);
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
        writeBytes(kProfile, "[S]\nk=1\n");
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
    writeBytes(kProfile, "[S]\nk=1\nl=1\n");
    IniFile asked(kProfile);
    IniFile later(kProfile);
    EXPECT_EQ(valueIn(asked, TEXT("k")), "1");
    writeBytes(kProfile, "[S]\nk=2\nl=2\n");
    EXPECT_EQ(valueIn(asked, TEXT("l")), "1");
    EXPECT_EQ(asked.number(TEXT("S"), TEXT("k"), 7), 1U);
    EXPECT_EQ(valueIn(later, TEXT("l")), "2");
    EXPECT_EQ(later.number(TEXT("S"), TEXT("m"), 7), 7U);
}

TEST_F(ProfileTest, anIniFile_exists) {
    EXPECT_FALSE(IniFile(kProfile).exists());
    EXPECT_FALSE(IniFile(TEXT("")).exists());
    EXPECT_FALSE(IniFile(nullptr).exists());
    writeBytes(kProfile, "");
    EXPECT_TRUE(IniFile(kProfile).exists());
    ASSERT_EQ(::truncate(home.hostPath(kProfile).c_str(), off_t{17} << 20), 0);
    EXPECT_TRUE(IniFile(kProfile).exists()) << "also one that is too large to be read";
    DeleteFileW(kProfile);
    makeFolder(kProfile);
    EXPECT_FALSE(IniFile(kProfile).exists());
}

// Changes that follow each other within one tick of the file system's clock, by files of one size that take turns in two places.
TEST_F(ProfileTest, changesInARow_areAllSeen) {
    const std::string path = home.hostPath(kProfile);
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

}  // namespace morvil::test
