// Every engine service of a whole document that can fail does so once, the first call, the second, ... until a run in which none
// fails. Whatever fails: a line tells it, everything is given back, and no job is there that is not whole.
#include <algorithm>
#include <map>

#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"

namespace morvil::test {
namespace {

using testing::Each;
using testing::EndsWith;

struct Course {
    const char* name;
    WORD mode;
    DWORD flags;
    WORD pageHeight;  // above 100 rows a surface that is refused is asked for again, smaller
};

class EngineFaults : public DriverTest, public testing::WithParamInterface<Course> {
  protected:
    // As an engine goes on: what fails ends the document.
    void printDocument() {
        DEVINFO info{};
        pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, sizeof(info), &info, nullptr, nullptr, printer));
        ASSERT_NE(pdev, nullptr) << engine.refused;
        engine.dhpdev = handleOf(pdev);
        const HSURF surface = DrvEnableSurface(handleOf(pdev));
        if (surface != nullptr) {
            printPage(&engine.surfaces.at(surface)->object);
            DrvDisableSurface(handleOf(pdev));
        }
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    }
    void printPage(SURFOBJ* page) {
        WString title = TEXT("Plan");
        if (DrvStartDoc(page, title.data(), 1) == FALSE) return;
        const bool printed = DrvStartPage(page) != FALSE && drawAndSend(page);
        DrvEndDoc(page, printed ? 0 : ED_ABORTDOC);
    }
    bool drawAndSend(SURFOBJ* page) {
        if ((pdev->configuration().flags & MV_FL_BITMAP_BANDING) == 0) return draw(page) && DrvSendPage(page) != FALSE;
        POINTL origin{};
        if (DrvStartBanding(page, &origin) == FALSE) return false;
        while (origin.y >= 0) {
            if (!draw(page)) return false;
            if (DrvNextBand(page, &origin) == FALSE && origin.y >= 0) return false;
        }
        return true;
    }
    static bool draw(SURFOBJ* page) {
        FakePath path({{PD_BEGINSUBPATH | PD_ENDSUBPATH, {fixedPoint(1, 2), fixedPoint(30, 40)}}});
        return DrvStrokePath(page, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0) != FALSE && DrvFillPath(page, &path, nullptr, nullptr, nullptr, 0, 0) != FALSE;
    }
    static void removeJobs() {
        for (const std::string& name : jobFileNames()) DeleteFileW((WString(CMvConfig().spoolFolder()) + TEXT("\\") + fromUtf8(name)).c_str());
    }
    [[nodiscard]] static bool logHas(const std::string& text) {
        std::vector<std::string> lines = morvilLog();
        for (const std::string& line : rendLog()) lines.push_back(line);
        return std::find(lines.begin(), lines.end(), text) != lines.end();
    }
};

TEST_P(EngineFaults, no_failing_service_leaves_anything_behind) {
    static const std::map<std::string, std::string> lines{{"EngCreatePalette", "!!! Invalid ColorTable"},
                                                          {"EngCreateBitmap", "!!! DrvEnableSurface Fehler bei EngCreateBitmap"},
                                                          {"EngMarkBandingSurface", "DrvEnableSurface, Error during EngMarkBandingSurface"},
                                                          {"EngAssociateSurface", "!!! DrvEnableSurface Fehler bei EngAssociateSurface"},
                                                          {"EngLockSurface", "!!! FilleSurface Fehler bei EngLockSurface"},
                                                          {"EngFillPath", "DrvFillPath finished, Return=0"}};
    configuration().processMode = GetParam().mode;
    configuration().flags = GetParam().flags;
    configuration().size.pixelHeight = GetParam().pageHeight;
    std::map<std::string, int> refused;
    for (std::size_t n = 1;; ++n) {
        clearLogs();
        engine.refuses = n;
        engine.refused.clear();
        printDocument();
        const bool none = engine.refused.empty();
        engine.refuses = 0;
        resetState();
        const std::string call = engine.refused + ", call " + std::to_string(n);
        EXPECT_TRUE(engine.surfaces.empty()) << call;
        EXPECT_EQ(engine.livePalettes, 0U) << call;
        EXPECT_EQ(engine.locked, 0U) << call;
        EXPECT_THAT(jobFileNames(), Each(EndsWith(".tsf"))) << call;
        const std::string job = jobFile(".tsf");
        if (!job.empty()) {
            EXPECT_TRUE(job.ends_with("<EndGroup: DrawCommands>\r\n")) << call;
        }
        removeJobs();
        if (none) {
            EXPECT_FALSE(job.empty());
            break;
        }
        ++refused[engine.refused];
        ASSERT_TRUE(lines.contains(engine.refused)) << engine.refused;
        EXPECT_TRUE(logHas(lines.at(engine.refused))) << call;
        const bool endsTheDocument = engine.refused == "EngMarkBandingSurface" || engine.refused == "EngAssociateSurface" || engine.refused == "EngFillPath";
        EXPECT_EQ(job.empty(), endsTheDocument || (engine.refused == "EngCreateBitmap" && GetParam().pageHeight <= 100)) << call;
    }
    for (const char* const service : {"EngCreatePalette", "EngCreateBitmap", "EngAssociateSurface", "EngLockSurface", "EngFillPath"}) EXPECT_GT(refused[service], 0) << service;
    EXPECT_EQ(refused["EngMarkBandingSurface"] > 0, (GetParam().flags & MV_FL_BITMAP_BANDING) != 0);
}

INSTANTIATE_TEST_SUITE_P(Courses, EngineFaults,
                         testing::Values(Course{"whole", kModeStandard, 0, 80}, Course{"high", kModeStandard, 0, 250}, Course{"mirrored", kModeRelief, MV_FL_IMAGEOP_FLIP_HORIZONTAL, 80},
                                         Course{"banded", kModeStandard, MV_FL_BITMAP_BANDING, 80}, Course{"banded_high", kModeTest3, MV_FL_BITMAP_BANDING, 250}),
                         [](const testing::TestParamInfo<Course>& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace morvil::test
