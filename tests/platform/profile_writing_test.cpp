// Writing private profile files: what stays as it was, faults, and several processes at once.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/ProfileTest.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/ProfileText.h"
#include "support/FailingCalls.h"

namespace morvil::test {

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
        writeBytes(kProfile, item.before);
        EXPECT_TRUE(write(item.section, item.key, item.value)) << item.before;
        EXPECT_EQ(readBytes(kProfile), item.after) << item.before;
    }
}

TEST_F(ProfileTest, lineEndsInTexts_areRefused) {
    writeBytes(kProfile, "[S]\nk=1\n");
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("a\r\n[X]")));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(write(TEXT("S\n"), TEXT("k"), TEXT("a")));
    EXPECT_FALSE(write(TEXT("S"), TEXT("k\n"), TEXT("a")));
    EXPECT_FALSE(write(nullptr, TEXT("k"), TEXT("a")));
    EXPECT_EQ(readBytes(kProfile), "[S]\nk=1\n");
}

TEST_F(ProfileTest, readOnlyFile_staysAsItIs) {
    writeBytes(kProfile, "[S]\nk=1\n");
    SetFileAttributesW(kProfile, FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(readBytes(kProfile), "[S]\nk=1\n");
}

TEST_F(ProfileTest, replacedFile_keepsItsMode) {
    writeBytes(kProfile, "[S]\nk=1\n");
    ::chmod(home.hostPath(kProfile).c_str(), 0662);  // more than a creation mask leaves
    EXPECT_TRUE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    struct stat status {};
    ASSERT_EQ(::stat(home.hostPath(kProfile).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0662U);
}

TEST_F(ProfileTest, everyFault_leavesTheOldFileOrTheNewOne) {
    for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
        for (int n = 1;; ++n) {
            writeBytes(kProfile, "[S]\nk=1\n");
            FailingCalls faults(n, fault);
            const bool done = write(TEXT("S"), TEXT("k"), TEXT("2"));
            EXPECT_EQ(readBytes(kProfile), done ? "[S]\nk=2\n" : "[S]\nk=1\n") << faults.failedCall();
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
    const ProfileText profile = decodeProfile(readBytes(kProfile));
    EXPECT_EQ(profileKeys(profile.text, TEXT("S")).size(), static_cast<std::size_t>(kProcesses * kKeys));
}

}  // namespace morvil::test
