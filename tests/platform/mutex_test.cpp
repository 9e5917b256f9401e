// Named mutexes: between threads, between processes, and what a dead holder leaves behind.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/HostTest.h"
#include "platform/posix/HostState.h"
#include "support/FailingCalls.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr const WCHAR* kName = TEXT("Global\\PRINTERCONFIGSYNCH");

Handle create() { return Handle(CreateMutexW(nullptr, FALSE, kName)); }

// A child process that runs `work` and then waits to be ended. Start it before the parent opens the mutex.
class Child {
  public:
    // `work` runs after `go`; its result can be waited for with `ready`.
    explicit Child(const std::function<void()>& work) {
        int go[2] = {};
        int ready[2] = {};
        if (::pipe(go) != 0 || ::pipe(ready) != 0) throw std::runtime_error("no pipe");
        m_process = ::fork();
        if (m_process == 0) {
            char byte = 0;
            ::close(go[1]);
            if (::read(go[0], &byte, 1) == 1) work();
            if (::write(ready[1], "r", 1) == 1) ::pause();
            ::_exit(0);
        }
        ::close(go[0]);
        ::close(ready[1]);
        m_go = go[1];
        m_ready = ready[0];
    }
    ~Child() {
        end();
        ::close(m_go);
        ::close(m_ready);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void run() {
        char byte = 'g';
        ASSERT_EQ(::write(m_go, &byte, 1), 1);
        ASSERT_EQ(::read(m_ready, &byte, 1), 1);
    }
    // Ends it without a chance to tidy up.
    void end() {
        if (m_process <= 0) return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        m_process = 0;
    }

  private:
    pid_t m_process = 0;
    int m_go = -1;
    int m_ready = -1;
};

void takeAndKeep() { WaitForSingleObject(CreateMutexW(nullptr, FALSE, kName), INFINITE); }

}  // namespace

TEST(NamedMutex, otherNames_areRefused) {
    TempHome home;
    for (const WCHAR* const name :
         {TEXT("PRINTERCONFIGSYNCH"), TEXT("Local\\X"), TEXT("Global\\"), TEXT("Global\\a\\b"), TEXT("global\\X"), TEXT("")}) {
        SetLastError(0xdeadbeef);
        EXPECT_EQ(CreateMutexW(nullptr, FALSE, name), nullptr) << toUtf8(name);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
        EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, name), nullptr) << toUtf8(name);
    }
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
}

TEST(NamedMutex, waitingOnSomethingElse_fails) {
    TempHome home;
    EXPECT_EQ(WaitForSingleObject(nullptr, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(ReleaseMutex(nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(NamedMutex, releaseWithoutHolding_fails) {
    TempHome home;
    const Handle mutex = create();
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(ReleaseMutex(mutex));
    EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
}

TEST(NamedMutex, unusableLockFolder_failsCreation) {
    TempHome home;
    writeHostBytes(home.folder() / "file", "");
    hostState().lockFolder = (home.folder() / "file").string() + "/below";
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, kName), nullptr);
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, kName), nullptr);
}

TEST(NamedMutex, everyFault_failsTheCallAndLeavesNothing) {
    TempHome home;
    for (int n = 1;; ++n) {
        FailingCalls faults(n, Fault::Persistent);
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
        const DWORD wait = mutex == nullptr ? WAIT_FAILED : WaitForSingleObject(mutex, 0);
        EXPECT_TRUE(faults.fired() != 0 || wait == WAIT_OBJECT_0);
        EXPECT_TRUE(wait != WAIT_OBJECT_0 || ReleaseMutex(mutex) != FALSE);
        EXPECT_EQ(outstanding().heldMutexes, 0U) << faults.failedCall();
        if (mutex != nullptr) CloseHandle(mutex);
        if (faults.fired() == 0) break;
    }
}

TEST(NamedMutex, opensOnlyWhileSomebodyHasItOpen) {
    TempHome home;
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, kName), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    {
        const Handle first = create();
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
        const Handle second = create();
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
        const Handle third(OpenMutexW(SYNCHRONIZE, FALSE, kName));
        EXPECT_NE(static_cast<HANDLE>(third), nullptr);
    }
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, kName), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(NamedMutex, existsWhileAnotherProcessHasItOpen) {
    TempHome home;
    Child child([] { CreateMutexW(nullptr, FALSE, kName); });
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, kName), nullptr);
    child.run();
    {
        const Handle opened(OpenMutexW(SYNCHRONIZE, FALSE, kName));
        EXPECT_NE(static_cast<HANDLE>(opened), nullptr);
    }
    {
        const Handle created = create();
        EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    }
    child.end();
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, kName), nullptr);
}

TEST(NamedMutex, sameThreadTakesItAgain) {
    TempHome home;
    const Handle mutex = create();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(outstanding().heldMutexes, 1U);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(outstanding().heldMutexes, 1U);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(outstanding().heldMutexes, 0U);
    EXPECT_FALSE(ReleaseMutex(mutex));
}

TEST(NamedMutex, initialOwner_holdsANewOneOnly) {
    TempHome home;
    const Handle mutex(CreateMutexW(nullptr, TRUE, kName));
    EXPECT_TRUE(ReleaseMutex(mutex));
    const Handle again(CreateMutexW(nullptr, TRUE, kName));
    EXPECT_FALSE(ReleaseMutex(again));
}

TEST(NamedMutex, anotherThreadWaitsItsTime) {
    TempHome home;
    const Handle mutex = create();
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    std::thread([&] {
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(WaitForSingleObject(mutex, 30), WAIT_TIMEOUT);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
        EXPECT_FALSE(ReleaseMutex(mutex));
        EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
    }).join();
    EXPECT_TRUE(ReleaseMutex(mutex));
    std::thread([&] {
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(ReleaseMutex(mutex));
    }).join();
}

TEST(NamedMutex, threadsExcludeEachOther) {
    TempHome home;
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    int unguarded = 0;
    std::atomic<int> inside = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                const Handle mutex = create();
                ASSERT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
                EXPECT_EQ(++inside, 1);
                ++unguarded;
                --inside;
                ReleaseMutex(mutex);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(unguarded, kThreads * kRounds);
}

TEST(NamedMutex, processesExcludeEachOther) {
    TempHome home;
    constexpr int kProcesses = 4;
    constexpr int kRounds = 200;
    const std::string counter = (home.folder() / "counter").string();
    writeHostBytes(counter, "0");
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        bool good = true;
        for (int round = 0; round < kRounds; ++round) {
            const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
            good = good && WaitForSingleObject(mutex, 10000) == WAIT_OBJECT_0;
            writeHostBytes(counter, std::to_string(std::stoi(readHostBytes(counter)) + 1));
            good = good && ReleaseMutex(mutex) != FALSE;
            CloseHandle(mutex);
        }
        ::_exit(good ? 0 : 1);
    }
    for (const pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(readHostBytes(counter), std::to_string(kProcesses * kRounds));
}

TEST(NamedMutex, anotherProcessHoldsIt_waitEndsInTime) {
    TempHome home;
    Child child(takeAndKeep);
    child.run();
    const Handle mutex = create();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(mutex, 20), WAIT_TIMEOUT);
    EXPECT_EQ(outstanding().heldMutexes, 0U);
}

TEST(NamedMutex, killedHolder_isAbandonedOnce) {
    TempHome home;
    Child child(takeAndKeep);
    child.run();
    const Handle mutex = create();
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    child.end();
    EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
    EXPECT_EQ(outstanding().heldMutexes, 1U);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST(NamedMutex, killedHolder_freesAWaiterThatWaits) {
    TempHome home;
    Child child(takeAndKeep);
    child.run();
    const Handle mutex = create();
    std::thread killer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        child.end();
    });
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    killer.join();
}

TEST(NamedMutex, releasedBeforeDeath_isNotAbandoned) {
    TempHome home;
    Child child([] {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
        WaitForSingleObject(mutex, INFINITE);
        ReleaseMutex(mutex);
    });
    child.run();
    child.end();
    const Handle mutex = create();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST(NamedMutex, threadThatEndsHolding_isAbandonedOnce) {
    TempHome home;
    const Handle mutex = create();
    std::thread([&] { EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0); }).join();
    EXPECT_EQ(WaitForSingleObject(mutex, 1000), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST(NamedMutex, lastHandleClosedWhileHeld_isAbandoned) {
    TempHome home;
    {
        const Handle mutex = create();
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    }
    const Handle mutex = create();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST(NamedMutex, forkedChildOwnsNothing) {
    TempHome home;
    const Handle mutex = create();
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    const pid_t child = ::fork();
    if (child == 0) ::_exit(ReleaseMutex(mutex) == FALSE && WaitForSingleObject(mutex, 0) == WAIT_TIMEOUT ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST(NamedMutex, openedAgain_excludesAForkedChild) {
    const TempHome home;
    CloseHandle(CreateMutexW(nullptr, FALSE, kName));  // its file is kept for the next opening, and a child inherits that
    Child child([] { WaitForSingleObject(CreateMutexW(nullptr, FALSE, kName), INFINITE); });
    child.run();
    const Handle mutex = create();
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
}

TEST(NamedMutex, lockFileGoneBetweenOpenings_isMadeAgain) {
    const TempHome home;
    const auto file = home.folder() / ".locks" / "mutex-PRINTERCONFIGSYNCH.lock";
    const std::function<void()> harms[] = {[&] { std::filesystem::remove(file); }, [&] { std::filesystem::resize_file(file, 0); }};
    for (const auto& harm : harms) {
        CloseHandle(CreateMutexW(nullptr, FALSE, kName));
        harm();
        const Handle mutex = create();
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        EXPECT_GT(std::filesystem::file_size(file), 0U);
        EXPECT_TRUE(ReleaseMutex(mutex));
    }
}

TEST(NamedMutex, homesDoNotShareMutexes) {
    TempHome home;
    const Handle mutex = create();
    ASSERT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    hostState().home = (home.folder() / "other").string();
    const Handle other = create();
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(WaitForSingleObject(other, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(other));
    EXPECT_TRUE(ReleaseMutex(mutex));
}

}  // namespace morvil::test
