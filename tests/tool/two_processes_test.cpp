// Two processes on one data root and one spool folder: both store items of the configuration and print jobs, at the same time.
// No job is lost or mixed up, the configuration file is whole whenever somebody looks, and no lock stays behind. A process that
// is killed at any moment leaves the other one its work.
#include <gmock/gmock.h>

#include <fstream>
#include <random>
#include <set>
#include <thread>

#include "config/CXml.h"
#include "config/MvMutex.h"
#include "support/ChildProcess.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using std::filesystem::path;
using test::ChildProcess;
using testing::IsEmpty;

constexpr const char* kDrawings[] = {"bracket.emf", "nameplate.emf"};

// How a child ends.
enum End : int { kGood = 0, kNotStored = 1, kNotPrinted = 2 };

struct Load {
    int items;
    int jobs;
    int failuresAllowed = 0;  // of storing: whoever waits for a lock whose holder is killed goes without, once
};

WString itemOf(int process) { return process == 0 ? TEXT("PrinterDriver.Stress.First") : TEXT("PrinterDriver.Stress.Second"); }

std::string bytesOf(const path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A job without its name, the one line in which two prints of a drawing differ.
std::string withoutName(std::string job) {
    const std::size_t begin = job.find("<JobName:");
    return begin == std::string::npos ? job : job.erase(begin, job.find('\n', begin) - begin);
}

class TwoProcesses : public PrintFixture {
  protected:
    TwoProcesses() {
        const Outcome first = print({"--title", "First", sample(kDrawings[0])});  // makes folders and configuration
        EXPECT_EQ(first.status, kDone) << first.err;
        std::filesystem::remove(job("First.tsf"));
    }

    // The paths of the jobs that a process has made, one to a line.
    [[nodiscard]] path listOf(int process) const { return m_home.folder() / ("jobs-" + std::to_string(process)); }
    [[nodiscard]] std::vector<std::string> jobsOf(int process) const {
        std::ifstream list(listOf(process));
        std::vector<std::string> jobs;
        for (std::string line; std::getline(list, line);) jobs.push_back(line);
        return jobs;
    }

    // The work of a process: the jobs spread among the items. `ready` is called between the first item and the rest.
    int work(int process, const Load& load, const ChildProcess::Link& link) const {
        std::ofstream list(listOf(process));
        int failures = 0;
        for (int i = 0; i < load.items; ++i) {
            if (i == 1) link.ready();
            if (!CXml().putItem(itemOf(process).c_str(), fromUtf8(std::to_string(i)).c_str()) && ++failures > load.failuresAllowed)
                return kNotStored;
            if ((i + 1) * load.jobs / load.items == i * load.jobs / load.items) continue;
            const Outcome printed = print({"--title", "Plan", sample(kDrawings[process])});
            if (printed.status != kDone || printed.lines().size() != 1) return kNotPrinted;
            list << printed.out << std::flush;
        }
        return kGood;
    }
    [[nodiscard]] ChildProcess start(int process, const Load& load) const {
        return ChildProcess([=, this](const ChildProcess::Link& link) { return work(process, load, link); });
    }

    void expectWholeConfiguration() const {
        const std::string bytes = bytesOf(configurationFile());
        EXPECT_TRUE(bytes.starts_with("<?xml ")) << bytes.size();
        EXPECT_TRUE(bytes.ends_with("</PrinterDriver>\r\n")) << bytes.size();
    }
    static std::string stored(int process) {
        WCHAR value[CXml::kValueCharacters] = {};
        return CXml().getItem(itemOf(process).c_str(), value) ? toUtf8(viewOf(value)) : "(none)";
    }
    static void expectNoLock() {
        MvMutex mutex(kConfigurationMutex);
        const MvMutexLock lock(mutex);
        EXPECT_TRUE(lock.held());
    }
    void expectGoodJob(const std::string& file) const {
        const Outcome checked = run({"check", file});
        EXPECT_EQ(checked.status, kDone) << file << ": " << checked.out;
    }
};

TEST_F(TwoProcesses, that_store_and_print_at_once_keep_everything) {
    constexpr Load kLoad{.items = 1000, .jobs = 50};
    std::vector<std::string> expected;
    for (const char* const drawing : kDrawings) {
        const Outcome alone = print({"--title", "Alone", sample(drawing)});
        ASSERT_EQ(alone.status, kDone) << alone.err;
        expected.push_back(withoutName(bytesOf(alone.lines().at(0))));
        std::filesystem::remove(alone.lines().at(0));
    }
    resetState();
    {
        ChildProcess first = start(0, kLoad);
        ChildProcess second = start(1, kLoad);
        ASSERT_TRUE(first.waitUntilReady());
        ASSERT_TRUE(second.waitUntilReady());
        for (int look = 0; look < 2000; ++look) {
            expectWholeConfiguration();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        EXPECT_EQ(first.finish(), kGood);
        EXPECT_EQ(second.finish(), kGood);
    }
    std::set<std::string> names;
    for (int process = 0; process < 2; ++process) {
        const std::vector<std::string> jobs = jobsOf(process);
        EXPECT_EQ(jobs.size(), 50U);
        for (const std::string& file : jobs) {
            EXPECT_TRUE(names.insert(path(file).filename().string()).second) << file << " was made twice";
            EXPECT_EQ(withoutName(bytesOf(file)), expected[static_cast<std::size_t>(process)]) << file;
        }
    }
    EXPECT_EQ(spooled(), std::vector<std::string>(names.begin(), names.end())) << "and nothing else lies there";
    expectWholeConfiguration();
    expectNoLock();
    // A change may be lost to one that the other process makes in the same moment, but never the last of all.
    EXPECT_TRUE(stored(0) == "999" || stored(1) == "999") << stored(0) << ' ' << stored(1);
}

TEST_F(TwoProcesses, one_that_is_killed_leaves_the_other_its_work) {
    constexpr Load kLoad{.items = 60, .jobs = 6, .failuresAllowed = 1};
    const auto seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::minstd_rand random(seed);
    for (int round = 0; round < 8; ++round) {
        ChildProcess victim = start(0, {.items = 100000, .jobs = 50000});
        ChildProcess survivor = start(1, kLoad);
        ASSERT_TRUE(victim.waitUntilReady());
        ASSERT_TRUE(survivor.waitUntilReady());
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 30000));
        victim.kill();
        EXPECT_EQ(survivor.finish(), kGood) << round;
        expectWholeConfiguration();
        const std::vector<std::string> jobs = jobsOf(1);
        EXPECT_EQ(jobs.size(), 6U) << round;
        for (const std::string& file : jobs) expectGoodJob(file);
        for (const std::string& name : spooled()) {
            if (name.ends_with(".tsf")) expectGoodJob(job(name));
        }
        (void)CXml();  // takes the mutex that the victim may have held, and lets it go
        expectNoLock();
    }
}

}  // namespace
}  // namespace morvil::tool
