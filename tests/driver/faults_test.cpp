// Every system call of a whole document fails once, the first, the second, ... until a run in which none fails; once for a
// moment, once for good. Whatever fails: no exception, nothing left open, and no job that is not whole.
#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"
#include "platform/posix/PlatformCalls.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

class Faults : public DriverTest, public testing::WithParamInterface<Fault> {
  protected:
    static constexpr char kClosingLine[] = "<EndGroup: DrawCommands>\r\n";
    static constexpr char kPolygon[] = "<DrawPolygon: 4;";

    void printDocument() {
        pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer));
        if (pdev == nullptr) return;
        engine.dhpdev = handleOf(pdev);
        const HSURF surface = DrvEnableSurface(handleOf(pdev));
        if (surface != nullptr) printPage(&engine.surfaces.at(surface)->object);
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    }
    // As the engine goes on: a call that fails ends the document.
    void printPage(SURFOBJ* surface) {
        FakePath path({{PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE, {fixedPoint(10, 10), fixedPoint(90, 10), fixedPoint(50, 70)}}});
        WString title = TEXT("Plan");
        bool ended = DrvStartDoc(surface, title.data(), 1) != FALSE && DrvStartPage(surface) != FALSE;
        stroked = ended && DrvStrokePath(surface, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0) != FALSE;
        ended = ended && DrvSendPage(surface) != FALSE;
        DrvEndDoc(surface, ended ? 0 : ED_ABORTDOC);
    }
    bool stroked = false;
};

TEST_P(Faults, no_failing_call_leaves_a_job_that_is_not_whole) {
    logState().settings = nullptr;
    configuration().logging.enabled = 0;
    CPrinterConfig().setConfig(TEXT(""), configuration());
    int n = 1;
    for (;; ++n) {
        SCOPED_TRACE(n);
        std::string failed;
        int fired = 0;
        {
            FailingCalls faults(n, GetParam());
            platformCalls().sleep = [](std::uint32_t) {};  // nobody waits for what fails on purpose
            printDocument();
            failed = faults.failedCall();
            fired = faults.fired();
        }
        resetState();
        const std::string job = jobFile(".tsf");
        if (!job.empty() && stroked) {
            EXPECT_TRUE(job.ends_with(kClosingLine)) << failed;
            EXPECT_NE(job.find(kPolygon), std::string::npos) << failed;
        }
        EXPECT_TRUE(engine.surfaces.empty()) << failed;
        for (const std::string& name : jobFileNames()) {
            // Only a name that cannot be changed or removed any more leaves the unfinished file.
            const bool mayStay = GetParam() == Fault::Persistent || failed == "remove" || failed.starts_with("rename");
            EXPECT_TRUE(mayStay || name.ends_with(".tsf")) << name << " after " << failed;
            DeleteFileW((WString(CMvConfig().spoolFolder()) + TEXT("\\") + fromUtf8(name)).c_str());
        }
        if (fired == 0) {
            EXPECT_NE(job.find(kPolygon), std::string::npos);
            break;
        }
    }
    EXPECT_GT(n, 50);  // the document did reach the file system
}

INSTANTIATE_TEST_SUITE_P(All, Faults, testing::Values(Fault::Transient, Fault::Persistent));

}  // namespace
}  // namespace morvil::test
