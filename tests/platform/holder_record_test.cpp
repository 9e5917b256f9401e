// The record that tells who holds a named mutex: what stands in the file, and what foreign bytes in it mean.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "platform/posix/HostState.h"
#include "platform/posix/LockFile.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr const WCHAR* kName = TEXT("Global\\Recorded");

std::string recordFile() { return lockFolder() + "/mutex-Recorded.lock"; }

std::string inTen(DWORD number) {
    const std::string digits = std::to_string(number);
    return std::string(11 - digits.size(), ' ') + digits;
}

// The bytes of the file before anybody opened the name, and what the first wait answers.
struct Found {
    const char* name;
    std::string bytes;
    DWORD answer;
};

class HolderRecordFile : public testing::TestWithParam<Found> {
  protected:
    TempHome m_home;
};

}  // namespace

TEST_P(HolderRecordFile, decidesWhetherTheHolderDied) {
    writeHostBytes(recordFile(), GetParam().bytes);
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
    ASSERT_NE(mutex, nullptr);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), GetParam().answer);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    CloseHandle(mutex);
}

INSTANTIATE_TEST_SUITE_P(Bytes, HolderRecordFile,
                         testing::Values(Found{"empty", "", WAIT_OBJECT_0}, Found{"oneFreeByte", "F", WAIT_OBJECT_0},
                                         Found{"shortAndHeld", "H 1", WAIT_ABANDONED},
                                         Found{"wholeAndFree", "F          1          2\n", WAIT_OBJECT_0},
                                         Found{"wholeAndHeld", "H          1          2\n", WAIT_ABANDONED},
                                         Found{"noise", std::string(5000, '#'), WAIT_ABANDONED}),
                         [](const auto& tested) { return tested.param.name; });

TEST(HolderRecord, namesProcessAndThread_untilReleased) {
    TempHome home;
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    const std::string numbers = inTen(GetCurrentProcessId()) + inTen(GetCurrentThreadId()) + '\n';
    EXPECT_EQ(readHostBytes(recordFile()), 'H' + numbers);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(readHostBytes(recordFile()), 'F' + numbers);
    CloseHandle(mutex);
}

TEST(HolderRecord, bytesBehindIt_stay) {
    TempHome home;
    writeHostBytes(recordFile(), "F          1          2\nmore");
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(readHostBytes(recordFile()).ends_with("\nmore"));
    CloseHandle(mutex);
}

// The record of a killed process is there for whoever opens the name next, even when nobody had it open meanwhile.
TEST(HolderRecord, outlivesAKilledProcess) {
    TempHome home;
    (void)lockFolder();
    const pid_t child = ::fork();
    if (child == 0) {
        WaitForSingleObject(CreateMutexW(nullptr, FALSE, kName), INFINITE);
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(readHostBytes(recordFile()).starts_with('H' + inTen(static_cast<DWORD>(child))));
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    CloseHandle(mutex);
}

}  // namespace morvil::test
