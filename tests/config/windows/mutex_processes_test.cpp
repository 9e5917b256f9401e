// The system's own mutex between two processes: held, let go, and left behind by one that is ended. The cases of the same kind
// that split the test's process in two run elsewhere.
#include "config/CXml.h"
#include "config/MvMutex.h"
#include "config/StoreTest.h"
#include "support/windows/MutexHolder.h"

namespace morvil {
namespace {

using test::MutexHolder;
using testing::Contains;
using testing::ElementsAre;

constexpr char kName[] = "Global\\PRINTERCONFIGSYNCH";
constexpr char kTimeout[] = "!!! MvMutex::wait timeout during wait for mutex, processID=N, threadID=N, msTimeOut=0\n";

class MutexOfTheSystem : public test::StoreTest {};

TEST_F(MutexOfTheSystem, held_by_another_process_fails_at_once_with_a_timeout_of_zero) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    MutexHolder holder(kName);
    ASSERT_TRUE(holder.holds());
    m_debug.clear();
    MvMutex mutex(kConfigurationMutex);
    EXPECT_THAT(texts(), ElementsAre("MvMutex::MvMutex use existing mutex (H), processID=N, threadID=N, msTimeOut=0\n"));
    m_debug.clear();
    EXPECT_FALSE(mutex.wait());
    EXPECT_THAT(texts(), ElementsAre(kTimeout));
    holder.letGo();
    EXPECT_EQ(holder.finish(), 0U);
    EXPECT_TRUE(mutex.wait());
    mutex.release();
}

TEST_F(MutexOfTheSystem, left_behind_by_a_process_that_was_ended_fails_once_and_is_let_go) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    MvMutex mutex(kConfigurationMutex);
    MutexHolder holder(kName);
    ASSERT_TRUE(holder.holds());
    EXPECT_FALSE(mutex.wait()) << "it is held";
    holder.kill();
    m_debug.clear();
    EXPECT_FALSE(mutex.wait()) << "what it guards may be half done";
    EXPECT_THAT(texts(), ElementsAre(kTimeout));
    MutexHolder next(kName);
    EXPECT_TRUE(next.holds()) << "nobody has to wait for it from then on";
    next.letGo();
    EXPECT_EQ(next.finish(), 0U);
    EXPECT_TRUE(mutex.wait());
    mutex.release();
}

TEST_F(MutexOfTheSystem, a_wait_ends_when_the_holder_lets_go) {
    MutexHolder holder(kName);
    ASSERT_TRUE(holder.holds());
    MvMutex mutex(kConfigurationMutex);
    holder.letGo();
    EXPECT_TRUE(mutex.wait());
    mutex.release();
    EXPECT_EQ(holder.finish(), 0U);
}

TEST_F(MutexOfTheSystem, a_store_that_is_locked_by_another_process_changes_nothing) {
    constexpr const WCHAR* kFile = TEXT("C:\\store.xml");
    const std::string before = "<PrinterDriver>\r\n\t<A value=\"old\"/>\r\n</PrinterDriver>\r\n";
    test::writeBytes(kFile, before);
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    CXml xml(kFile);
    ASSERT_TRUE(xml.isLoaded());
    MutexHolder holder(kName);
    ASSERT_TRUE(holder.holds());
    EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_EQ(test::readBytes(kFile), before);
    holder.letGo();
    EXPECT_EQ(holder.finish(), 0U);
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_NE(test::readBytes(kFile), before);
}

}  // namespace
}  // namespace morvil
