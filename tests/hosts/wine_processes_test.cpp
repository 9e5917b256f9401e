// Two processes of the Windows host with the shipped driver file on one data root: both store an item of the configuration over
// and over and print into one spool folder. Nothing is lost, torn or left locked, also when one of them is killed.
#include <chrono>
#include <future>
#include <random>

#include "hosts/WineHost.h"

namespace morvil::hosts {
namespace {

// A job without the one line in which two prints of a drawing differ.
std::string withoutName(std::string job) {
    const std::size_t begin = job.find("<JobName:");
    return begin == std::string::npos ? job : job.erase(begin, job.find('\n', begin) - begin);
}

class WineProcesses : public WineHost {
  protected:
    void SetUp() override {
        WineHost::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        record("");
        m_job = withoutName(read(m_folder / "out/Plan/Plan.tsf"));
        ASSERT_FALSE(m_job.empty());
    }

    // What the process says goes to a file named like its item.
    [[nodiscard]] std::string process(const std::string& item, int stores, int jobs) const {
        return host() + "--stress PrinterDriver.Stress." + item + " " + std::to_string(stores) + " " + std::to_string(jobs) + " " + inQuotes(recording()) + " >" +
               inQuotes(m_folder / item) + " 2>&1 </dev/null";
    }
    [[nodiscard]] std::string said(const std::string& item) const { return read(m_folder / item); }

    static std::string configuration() { return read(dataRoot() / "PrinterDriver/PrinterDriver.xml"); }
    static void expectWholeConfiguration() {
        const std::string bytes = configuration();
        EXPECT_TRUE(bytes.starts_with("<?xml ") && bytes.ends_with("</PrinterDriver>\r\n")) << bytes.size();
    }
    void expectGoodJobs(std::size_t least) const {
        EXPECT_GE(files(".tsf").size(), least);
        for (const fs::path& file : files(".tsf")) EXPECT_TRUE(withoutName(read(file)) == m_job) << file;
    }

    // Another process finds nothing locked.
    void expectNoLock() const {
        ASSERT_EQ(std::system(process("Next", 3, 3).c_str()), 0);
        EXPECT_EQ(said("Next"), "stored 3, printed 3\r\n");
    }

    std::string m_job;
};

TEST_F(WineProcesses, that_store_and_print_at_once_keep_everything) {
    const std::string both = process("First", 1000, 50) + " & " + process("Second", 1000, 50) + " & wait";
    std::future<int> running = std::async(std::launch::async, [both] { return std::system(both.c_str()); });
    while (running.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready) expectWholeConfiguration();  // whenever somebody looks
    ASSERT_EQ(running.get(), 0);
    EXPECT_EQ(said("First"), "stored 1000, printed 50\r\n");
    EXPECT_EQ(said("Second"), "stored 1000, printed 50\r\n");
    // A change may be lost to one that the other process makes in the same moment, but never the last of all.
    const bool firstIsThere = configuration().find("<First value=\"999\"/>") != std::string::npos;
    EXPECT_TRUE(firstIsThere || configuration().find("<Second value=\"999\"/>") != std::string::npos) << configuration();
    expectWholeConfiguration();
    expectGoodJobs(101);
    EXPECT_EQ(files(".tsf").size(), 101U);
    EXPECT_TRUE(files(".tsa").empty());
    expectNoLock();
}

// Whoever waits for a lock whose holder is killed goes without, once.
TEST_F(WineProcesses, that_lose_one_of_them_go_on) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (std::size_t round = 1; round <= 3; ++round) {
        SCOPED_TRACE(round);
        const std::string moment = std::to_string(std::uniform_int_distribution<int>(40, 200)(random) / 100.0);
        const std::string commands = process("Killed", 5000, 250) + " & killed=$!; " + process("Other", 200, 10) + " & other=$!; sleep " + moment + "; kill -9 $killed; wait $other";
        ASSERT_EQ(std::system(("exec 2>/dev/null; " + commands).c_str()), 0) << said("Other");
        EXPECT_TRUE(said("Killed").empty()) << "it was done before";
        EXPECT_TRUE(said("Other") == "stored 200, printed 10\r\n" || said("Other") == "stored 199, printed 10\r\n") << said("Other");
        expectWholeConfiguration();
        expectGoodJobs(1 + round * 10);
        EXPECT_LE(files(".tsa").size(), round) << "at most the one that was being written each time";
        expectNoLock();
    }
}

}  // namespace
}  // namespace morvil::hosts
