// What the system does to the tool in the middle of its work: signals that ask it to end, streams that lead nowhere.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <ostream>

#include "driver/Hooks.h"
#include "support/ChildProcess.h"
#include "tool/Interrupts.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using test::ChildProcess;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

int g_signal = 0;  // comes while the page's job is open

BOOL startPageThenSignal(SURFOBJ* surface) {
    const BOOL started = DrvStartPage(surface);
    std::raise(g_signal);
    return started;
}

BOOL driverWithSignal(ULONG version, ULONG size, DRVENABLEDATA* data) {
    static std::array<DRVFN, 64> table;
    if (DrvEnableDriver(version, size, data) == FALSE || data->c > table.size()) return FALSE;
    std::copy_n(data->pdrvfn, data->c, table.begin());
    for (DRVFN& function : table) {
        if (function.iFunc == INDEX_DrvStartPage) function.pfn = reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(&startPageThenSignal));
    }
    data->pdrvfn = table.data();
    return TRUE;
}

// A process that prints and is sent the signal on the way; what it answers.
class Interrupted : public PrintFixture {
  protected:
    [[nodiscard]] int printWith(int signal, void (*before)(int)) const {
        ChildProcess child([&](const ChildProcess::Link&) {
            std::signal(signal, before);
            g_signal = signal;
            std::ostringstream out;
            std::ostringstream err;
            const int status = runTool({"print", "--spool", m_spool.string(), sample("bracket.emf")}, &driverWithSignal, {out, err, false});
            const bool told = err.str().find("the document was aborted") != std::string::npos;
            return told == (status == kSystemFailed) ? status : 99;
        });
        return child.finish();
    }
};

TEST_F(Interrupted, document_leaves_nothing_behind) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(printWith(signal, SIG_DFL), kSystemFailed) << signal;
        EXPECT_THAT(spooled(), IsEmpty()) << signal;
    }
}

TEST_F(Interrupted, signal_that_the_caller_ignores_stays_ignored) {
    EXPECT_EQ(printWith(SIGHUP, SIG_IGN), kDone);
    EXPECT_THAT(spooled(), ElementsAre("bracket.tsf"));
}

TEST(PrepareProcess, closed_streams_fail_and_are_not_taken_by_other_files) {
    ChildProcess child([](const ChildProcess::Link&) {
        ::close(STDOUT_FILENO);
        prepareProcess();
        const int file = ::open("/dev/zero", O_RDWR);
        return file > STDERR_FILENO && ::write(STDOUT_FILENO, "x", 1) == -1 ? 0 : 1;
    });
    EXPECT_EQ(child.finish(), 0);
}

TEST(PrepareProcess, pipe_without_reader_is_a_failed_write) {
    ChildProcess child([](const ChildProcess::Link&) {
        std::array<int, 2> ends{};
        prepareProcess();
        if (::pipe(ends.data()) != 0) return 2;
        ::close(ends[0]);
        return ::write(ends[1], "x", 1) == -1 && errno == EPIPE ? 0 : 1;
    });
    EXPECT_EQ(child.finish(), 0);
}

// Whoever asked gets no answer, so the status must not say that all is well.
TEST(StandardOutput, that_cannot_be_written_is_a_failure) {
    const test::TempHome home;
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"}, {"config", "dump"}, {"print", "--quiet", sample("label.emf")}}) {
        std::ostream nowhere(nullptr);
        std::ostringstream err;
        EXPECT_EQ(runTool(arguments, &DrvEnableDriver, {nowhere, err, false}), kSystemFailed) << arguments[0];
        EXPECT_THAT(err.str(), HasSubstr("morvil: standard output cannot be written")) << arguments[0];
    }
    resetState();
    engine::resetEngineState();
}

}  // namespace
}  // namespace morvil::tool
