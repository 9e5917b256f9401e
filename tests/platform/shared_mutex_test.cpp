// Opening a named mutex that any of several programs may be the first to use.
#include "platform/common/SharedMutex.h"

#include <gtest/gtest.h>

#include <memory>

#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "support/ChildProcess.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr const WCHAR* kName = TEXT("Global\\PRINTERCONFIGSYNCH");

struct Close {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Close>;

}  // namespace

TEST(SharedMutex, tellsWhetherSomebodyHadItOpen) {
    TempHome home;
    bool existed = true;
    {
        const Handle made(openOrCreateMutex(kName, existed));
        EXPECT_NE(made, nullptr);
        EXPECT_FALSE(existed);
        const Handle opened(openOrCreateMutex(kName, existed));
        EXPECT_TRUE(existed);
        EXPECT_EQ(WaitForSingleObject(made.get(), 0), WAIT_OBJECT_0) << "it is made without an owner";
        EXPECT_TRUE(ReleaseMutex(opened.get())) << "both are the same";
    }
    ChildProcess child([](const ChildProcess::Link& link) {
        const HANDLE theirs = CreateMutexW(nullptr, FALSE, kName);
        link.ready();
        link.waitForParent();
        return theirs != nullptr ? 0 : 1;
    });
    ASSERT_TRUE(child.waitUntilReady());
    { const Handle theirs(openOrCreateMutex(kName, existed)); }
    EXPECT_TRUE(existed);
    child.letGo();
    EXPECT_EQ(child.finish(), 0);
    { const Handle left(openOrCreateMutex(kName, existed)); }
    EXPECT_FALSE(existed);
    EXPECT_EQ(openOrCreateMutex(TEXT("noNamespace"), existed), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
}

TEST(SharedMutex, doesWhatMayBeDone) {
    TempHome home;
    bool existed = true;
    hostState().refusals["CreateMutexW"] = ERROR_ACCESS_DENIED;
    EXPECT_EQ(openOrCreateMutex(kName, existed), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(existed);
    hostState().refusals.clear();
    const Handle first(CreateMutexW(nullptr, FALSE, kName));
    hostState().refusals["CreateMutexW"] = ERROR_ACCESS_DENIED;
    { const Handle opened(openOrCreateMutex(kName, existed)); }
    EXPECT_TRUE(existed);
    hostState().refusals["OpenMutexW"] = ERROR_FILE_NOT_FOUND;
    EXPECT_EQ(openOrCreateMutex(kName, existed), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    hostState().refusals.erase("CreateMutexW");
    const Handle created(openOrCreateMutex(kName, existed));
    EXPECT_NE(created, nullptr);
    EXPECT_FALSE(existed) << "it could not be opened";
}

TEST(SharedMutex, looksAtTheFileOnce) {
    TempHome home;
    bool existed = true;
    { const Handle first(openOrCreateMutex(kName, existed)); }
    static int questions = 0;
    questions = 0;
    platformCalls().status = [](const char* path, struct stat* out) { return ++questions, systemCalls().status(path, out); };
    platformCalls().lock = [](int file, int command, struct flock* range) {
        questions += command == F_OFD_GETLK ? 1 : 0;
        return systemCalls().lock(file, command, range);
    };
    { const Handle second(openOrCreateMutex(kName, existed)); }
    platformCalls() = systemCalls();
    EXPECT_FALSE(existed);
    EXPECT_EQ(questions, 2);  // whether the file is still that of the name, and whether somebody has it open
}

}  // namespace morvil::test
