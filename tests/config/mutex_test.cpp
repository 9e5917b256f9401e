// The mutex of the configuration: opening, waiting, letting go, and the processes that do not.
#include "config/MvMutex.h"
#include "config/StoreTest.h"

namespace morvil {
namespace {

using test::ChildProcess;
using testing::ElementsAre;

class Mutex : public test::StoreTest {};

TEST_F(Mutex, that_cannot_be_made_is_tried_five_times_with_a_second_between) {
    noteSleeps();
    hostState().refusals["OpenMutexW"] = ERROR_FILE_NOT_FOUND;
    hostState().refusals["CreateMutexW"] = ERROR_ACCESS_DENIED;
    {
        MvMutex mutex(kConfigurationMutex);
        EXPECT_THAT(texts(), ElementsAre("!!! MvMutex::MvMutex last error=5\n", "!!! MvMutex::MvMutex last error=5\n",
                                         "!!! MvMutex::MvMutex last error=5\n", "!!! MvMutex::MvMutex last error=5\n",
                                         "!!! MvMutex::MvMutex last error=5\n"));
        EXPECT_THAT(slept(), ElementsAre(1000, 1000, 1000, 1000));
        m_debug.clear();
        EXPECT_FALSE(mutex.wait());
        EXPECT_THAT(texts(), ElementsAre("!!! MvMutex::wait timeout during wait for mutex, processID=N, threadID=N, msTimeOut=10000\n"));
        m_debug.clear();
    }
    EXPECT_THAT(texts(), ElementsAre("MvMutex::~MvMutex close mutex, processID=N, threadID=N\n"));
}

TEST_F(Mutex, held_by_another_process_fails_at_once_with_a_timeout_of_zero) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    ChildProcess child([](const ChildProcess::Link& link) {
        MvMutex mutex(kConfigurationMutex);
        const MvMutexLock lock(mutex);
        link.ready();
        link.waitForParent();
        return lock.held() ? 0 : 1;
    });
    ASSERT_TRUE(child.waitUntilReady());
    MvMutex mutex(kConfigurationMutex);
    m_debug.clear();
    {
        const MvMutexLock lock(mutex);
        EXPECT_FALSE(lock.held());
    }
    EXPECT_THAT(texts(), ElementsAre("!!! MvMutex::wait timeout during wait for mutex, processID=N, threadID=N, msTimeOut=0\n"));
    child.letGo();
    EXPECT_EQ(child.finish(), 0);
    EXPECT_TRUE(mutex.wait());
    mutex.release();
}

// What the dead process was writing may be half done: the wait fails. But nobody may have to wait for the mutex from then on.
TEST_F(Mutex, left_behind_by_a_process_that_died_fails_once_and_is_let_go) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    MvMutex mutex(kConfigurationMutex);
    ChildProcess child([](const ChildProcess::Link& link) {
        MvMutex held(kConfigurationMutex);
        if (!held.wait()) return 1;
        link.ready();
        link.waitForParent();
        return 1;
    });
    ASSERT_TRUE(child.waitUntilReady());
    child.kill();
    m_debug.clear();
    EXPECT_FALSE(mutex.wait());
    EXPECT_THAT(texts(), ElementsAre("!!! MvMutex::wait timeout during wait for mutex, processID=N, threadID=N, msTimeOut=0\n"));
    ChildProcess next([](const ChildProcess::Link&) {
        MvMutex other(kConfigurationMutex);
        return MvMutexLock(other).held() ? 0 : 1;
    });
    EXPECT_EQ(next.finish(), 0);
    EXPECT_TRUE(mutex.wait());
    mutex.release();
}

TEST_F(Mutex, a_wait_ends_when_the_holder_lets_go) {
    ChildProcess child([](const ChildProcess::Link& link) {
        MvMutex mutex(kConfigurationMutex);
        if (!mutex.wait()) return 1;
        link.ready();
        Sleep(50);
        mutex.release();
        return 0;
    });
    ASSERT_TRUE(child.waitUntilReady());
    MvMutex mutex(kConfigurationMutex);
    EXPECT_TRUE(mutex.wait());
    mutex.release();
    EXPECT_EQ(child.finish(), 0);
}

TEST_F(Mutex, is_created_by_the_first_and_opened_by_the_second) {
    MvMutex first(kConfigurationMutex);
    EXPECT_THAT(texts(), ElementsAre("MvMutex::MvMutex create new mutex (H), processID=N, threadID=N, msTimeOut=10000\n"));
    m_debug.clear();
    MvMutex second(kConfigurationMutex);
    EXPECT_THAT(texts(), ElementsAre("MvMutex::MvMutex use existing mutex (H), processID=N, threadID=N, msTimeOut=10000\n"));
}

TEST_F(Mutex, tells_of_waiting_and_letting_go) {
    MvMutex mutex(kConfigurationMutex);
    m_debug.clear();
    EXPECT_TRUE(mutex.wait());
    mutex.release();
    EXPECT_THAT(texts(), ElementsAre("MvMutex::wait got mutex (H), processID=N, threadID=N, msTimeOut=10000\n",
                                     "MvMutex::release 1 mutex (H), processID=N, threadID=N\n",
                                     "MvMutex::release 2 mutex (H), processID=N, threadID=N\n"));
    const std::string numbers = m_debug.texts()[0].substr(m_debug.texts()[0].find("processID="));
    EXPECT_EQ(numbers, toUtf8(format(TEXT("processID=%d, threadID=%d, msTimeOut=10000\n"), GetCurrentProcessId(), GetCurrentThreadId())));
}

TEST_F(Mutex, takes_its_timeout_from_the_debug_switch_unless_that_is_negative) {
    const struct {
        const WCHAR* value;
        const char* shown;
    } cases[] = {{TEXT("250"), "msTimeOut=250\n"},
                 {TEXT("0"), "msTimeOut=0\n"},
                 {TEXT("-1"), "msTimeOut=10000\n"},
                 {TEXT("-5"), "msTimeOut=10000\n"}};
    for (const auto& entry : cases) {
        setDebugValue(TEXT("MvMutexTimeOut"), entry.value);
        m_debug.clear();
        const MvMutex mutex(kConfigurationMutex);
        EXPECT_TRUE(m_debug.texts()[0].ends_with(entry.shown)) << m_debug.texts()[0];
    }
}

TEST_F(Mutex, can_be_had_again_by_the_thread_that_holds_it) {
    MvMutex first(kConfigurationMutex);
    MvMutex second(kConfigurationMutex);
    const MvMutexLock outer(first);
    const MvMutexLock inner(second);
    EXPECT_TRUE(outer.held());
    EXPECT_TRUE(inner.held());
}

}  // namespace
}  // namespace morvil
