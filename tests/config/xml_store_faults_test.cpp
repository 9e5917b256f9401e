// The configuration store against other processes, kills, full disks and failing calls: the file is whole at every moment.
#include <random>
#include <thread>

#include "config/CXml.h"
#include "config/StoreTest.h"

namespace morvil {
namespace {

using test::ChildProcess;
using test::FailingCalls;
using test::Fault;
using test::readBytes;
using test::writeBytes;
using testing::Contains;

constexpr const WCHAR* kFile = TEXT("C:\\store.xml");
constexpr const WCHAR* kBeside = TEXT("C:\\store.xm~");
constexpr const char* kOld = "<PrinterDriver>\r\n\t<A value=\"old\"/>\r\n</PrinterDriver>\r\n";
constexpr const char* kNew = "<PrinterDriver>\r\n\t<A value=\"new\"/>\r\n</PrinterDriver>\r\n";

class StoreFaults : public test::StoreTest {
  protected:
    StoreFaults() { writeBytes(kFile, kOld); }

    static std::string itemA(CXml& xml) {
        WCHAR value[CXml::kValueCharacters] = TEXT("(none)");
        xml.getItem(TEXT("PrinterDriver.A"), value);
        return toUtf8(value);
    }
};

// Holds the mutex until it is let go.
int holdMutex(const ChildProcess::Link& link) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\PRINTERCONFIGSYNCH"));
    if (WaitForSingleObject(mutex, 10'000) != WAIT_OBJECT_0) return 1;
    link.ready();
    link.waitForParent();
    ReleaseMutex(mutex);
    CloseHandle(mutex);
    return 0;
}

TEST_F(StoreFaults, a_file_locked_by_another_process_keeps_the_old_document_and_is_not_written) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    CXml before(kFile);
    ChildProcess child(holdMutex);
    ASSERT_TRUE(child.waitUntilReady());

    CXml during(kFile);
    EXPECT_FALSE(during.isLoaded());
    m_debug.clear();
    EXPECT_FALSE(before.reload());
    EXPECT_THAT(texts(), testing::ElementsAre("CXml::reload",
                                              "!!! MvMutex::wait timeout during wait for mutex, processID=N, threadID=N, msTimeOut=0\n",
                                              "!!! CXml::archive, no access to mutex\n", "CXml::reload finished\n"));
    EXPECT_EQ(itemA(before), "old");
    m_debug.clear();
    EXPECT_FALSE(before.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_THAT(texts(), testing::ElementsAre("!!! MvMutex::wait timeout during wait for mutex, processID=N, threadID=N, msTimeOut=0\n",
                                              "!!! CXml::archive, no access to mutex\n"));
    EXPECT_FALSE(before.createDefault());
    EXPECT_EQ(readBytes(kFile), kOld);

    child.letGo();
    EXPECT_EQ(child.finish(), 0);
    EXPECT_TRUE(before.reload());
    EXPECT_TRUE(before.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_EQ(readBytes(kFile), kNew);
}

// Set by the replaced call when the new file has taken the old one's place.
bool replaced = false;

void noteReplacement() {
    static PlatformCalls before;
    replaced = false;
    before = platformCalls();
    platformCalls().rename = [](const char* from, const char* to) {
        const int result = before.rename(from, to);
        replaced = replaced || result == 0;
        return result;
    };
}

// Whatever fails, once or for good: the file is the old one until the new one takes its place, and a success is one. A failure
// after that, of the folder that cannot be flushed, is still a failure: the change may not survive a power cut.
TEST_F(StoreFaults, every_failing_call_of_a_change_leaves_the_old_file_or_the_new_one) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    int visited = 0;
    for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
        for (int n = 1;; ++n) {
            writeBytes(kFile, kOld);
            CXml xml(kFile);
            bool done = false;
            int fired = 0;
            std::string call;
            {
                FailingCalls faults(n, fault);
                noteReplacement();
                done = xml.putItem(TEXT("PrinterDriver.A"), TEXT("new"));
                fired = faults.fired();
                call = faults.failedCall();
            }
            EXPECT_EQ(readBytes(kFile), replaced ? kNew : kOld) << call << " " << n;
            EXPECT_TRUE(replaced || !done) << call << " " << n;
            CXml next(kFile);
            EXPECT_TRUE(next.isLoaded()) << call << " " << n;
            if (fired == 0) {
                EXPECT_TRUE(done);
                break;
            }
            ++visited;
        }
    }
    EXPECT_GT(visited, 8);
}

TEST_F(StoreFaults, every_failing_call_of_a_load_leaves_the_whole_document_or_none) {
    setDebugValue(TEXT("MvMutexTimeOut"), TEXT("0"));
    for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
        for (int n = 1;; ++n) {
            FailingCalls faults(n, fault);
            noteSleeps();
            CXml xml(kFile);
            EXPECT_EQ(itemA(xml), xml.isLoaded() ? "old" : "(none)");
            if (faults.fired() == 0) {
                EXPECT_TRUE(xml.isLoaded());
                break;
            }
        }
    }
    EXPECT_EQ(readBytes(kFile), kOld);
}

TEST_F(StoreFaults, a_full_disk_keeps_the_old_file_and_leaves_nothing_beside_it) {
    CXml xml(kFile);
    m_debug.clear();
    {
        const FailingCalls full(1, Fault::Persistent, "write");
        EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    }
    EXPECT_THAT(texts(), Contains("!!! CXml::archive, Error(112), can't write (C:\\store.xml)\n"));
    EXPECT_THAT(texts(), Contains("CXml::archive finishedd\n"));
    EXPECT_EQ(readBytes(kFile), kOld);
    EXPECT_FALSE(test::exists(kBeside));
    // The document in memory has the change: it goes with the next one that can be written.
    EXPECT_TRUE(xml.archive());
    EXPECT_EQ(readBytes(kFile), kNew);
}

// What is in the way of the default file is removed first: on a full disk that makes the room for it.
TEST_F(StoreFaults, the_old_file_does_not_outlive_create_default) {
    CXml xml(kFile);
    const FailingCalls full(1, Fault::Persistent, "write");
    EXPECT_FALSE(xml.createDefault());
    EXPECT_FALSE(test::exists(kFile));
    EXPECT_FALSE(test::exists(kBeside));
}

TEST_F(StoreFaults, the_new_file_is_on_the_disk_before_it_takes_the_old_ones_place) {
    CXml xml(kFile);
    static std::vector<std::string> calls;
    calls.clear();
    platformCalls().flush = [](int file) { return calls.push_back("flush"), systemCalls().flush(file); };
    platformCalls().rename = [](const char* from, const char* to) { return calls.push_back("rename"), systemCalls().rename(from, to); };
    platformCalls().write = [](int file, const void* bytes, std::size_t count) {
        return calls.push_back("write"), systemCalls().write(file, bytes, count);
    };
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    std::string order;
    for (const std::string& call : calls) order += call + " ";
    EXPECT_TRUE(order.starts_with("write flush rename ")) << order;
}

TEST_F(StoreFaults, what_a_killed_process_left_beside_the_file_is_ignored_and_overwritten) {
    writeBytes(kBeside, std::string("<PrinterDriver><A value=\"half") + std::string(5000, 'x'));
    CXml xml(kFile);
    EXPECT_EQ(itemA(xml), "old");
    EXPECT_TRUE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_EQ(readBytes(kFile), kNew);
    EXPECT_FALSE(test::exists(kBeside));
}

TEST_F(StoreFaults, a_path_that_ends_in_a_tilde_is_not_written_onto_itself) {
    constexpr const WCHAR* kTilde = TEXT("C:\\store~");
    writeBytes(kTilde, kOld);
    CXml xml(kTilde);
    const FailingCalls noRename(1, Fault::Persistent, "rename");
    EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_EQ(readBytes(kTilde), kOld);
}

TEST_F(StoreFaults, a_path_that_the_narrow_code_page_lacks_is_not_written) {
    constexpr const WCHAR* kGreek = TEXT("C:\\\u03A9.xml");
    writeBytes(kGreek, kOld);
    CXml xml(kGreek);
    EXPECT_EQ(itemA(xml), "old");
    EXPECT_FALSE(xml.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    EXPECT_THAT(texts(), Contains("!!! CXml::archive, invalid document or path (C:\\Ω.xml)\n"));
    EXPECT_EQ(readBytes(kGreek), kOld);
}

TEST_F(StoreFaults, a_path_of_261_characters_is_neither_read_nor_written) {
    WString folder = TEXT("C:\\");
    while (folder.size() < 200) folder += TEXT("0123456789\\");
    const WString path260 = folder + WString(260 - folder.size(), TEXT('p'));
    const WString path261 = folder + WString(261 - folder.size(), TEXT('p'));
    writeBytes(path260, kOld);
    writeBytes(path261, kOld);
    CXml longest(path260.c_str());
    EXPECT_TRUE(longest.putItem(TEXT("PrinterDriver.A"), TEXT("new")));
    CXml tooLong(path261.c_str());
    EXPECT_FALSE(tooLong.isLoaded());
    tooLong.createDefault();
    EXPECT_FALSE(tooLong.archive());
    EXPECT_EQ(readBytes(path261), kOld);
    CXml none(nullptr);
    EXPECT_FALSE(none.isLoaded());
    EXPECT_FALSE(none.createDefault());
}

bool isWhole(const std::string& bytes) { return bytes.starts_with("<PrinterDriver>") && bytes.ends_with("</PrinterDriver>\r\n"); }

int putMany(const WCHAR* path, int count) {
    for (int i = 0; i < count; ++i) {
        CXml xml(kFile);
        if (!xml.isLoaded() || !xml.putItem(path, format(TEXT("%d"), i).c_str())) return 1;
    }
    return 0;
}

TEST_F(StoreFaults, two_processes_that_store_at_the_same_time_leave_a_whole_file) {
    hostState().debugListener = nullptr;
    constexpr int kChanges = 200;
    ChildProcess one([](const ChildProcess::Link&) { return putMany(TEXT("PrinterDriver.One"), kChanges); });
    ChildProcess two([](const ChildProcess::Link&) { return putMany(TEXT("PrinterDriver.Two"), kChanges); });
    for (int i = 0; i < kChanges; ++i) EXPECT_TRUE(isWhole(readBytes(kFile)));  // without asking the mutex
    EXPECT_EQ(one.finish(), 0);
    EXPECT_EQ(two.finish(), 0);
    EXPECT_TRUE(isWhole(readBytes(kFile)));
    CXml xml(kFile);
    EXPECT_EQ(itemA(xml), "old");
    EXPECT_FALSE(test::exists(kBeside));
}

TEST_F(StoreFaults, a_process_that_is_killed_while_storing_leaves_a_whole_file) {
    hostState().debugListener = nullptr;
    std::mt19937 random(4);
    for (int round = 0; round < 40; ++round) {
        ChildProcess child([](const ChildProcess::Link& link) {
            link.ready();
            return putMany(TEXT("PrinterDriver.One"), 1'000'000);
        });
        ASSERT_TRUE(child.waitUntilReady());
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        child.kill();
        EXPECT_TRUE(isWhole(readBytes(kFile)));
        CXml first(kFile);  // may meet the abandoned mutex
        CXml second(kFile);
        EXPECT_TRUE(second.isLoaded());
    }
}

}  // namespace
}  // namespace morvil
