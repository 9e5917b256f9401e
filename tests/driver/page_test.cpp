// A whole page: its sections, background, storing and completion, and the preview that makes no job.
#include <numeric>

#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"
#include "driver/page_operations.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

class Page : public DriverTest {
  protected:
    [[nodiscard]] std::vector<std::uint8_t>& bits() { return engine.surfaces.begin()->second->bits; }
    [[nodiscard]] std::size_t position(const std::string& text) const {
        const std::vector<std::string> lines = morvilLog();
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i].find(text) != std::string::npos) return i;
        }
        ADD_FAILURE() << "no line " << text;
        return 0;
    }
};

TEST_F(Page, an_invalid_instance_starts_none) {
    state().uiBandPosition = 40;
    clearLogs();
    EXPECT_EQ(DrvStartPage(nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(state().uiBandPosition, 0U);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvStartPage", "!!! Invalid PPDEV Handle DrvStartPage"));
    EXPECT_THAT(debug.texts(), Contains("DrvStartPage\n"));
    EXPECT_EQ(state().spoolFile, nullptr);
}

TEST_F(Page, an_invalid_instance_sends_none) {
    EXPECT_EQ(DrvSendPage(nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvSendPage", "!!! DrvSendPage Invalid PPDEV Handle DrvStartPage"));
}

TEST_F(Page, an_aborted_page_is_not_sent) {
    startPage();
    engine.aborted = true;
    EXPECT_EQ(DrvSendPage(pso), FALSE);
    EXPECT_EQ(jobFile(".tsf"), "");
}

TEST_F(Page, the_tracing_mode_keeps_pictures_of_the_page) {
    configuration().processMode = kModeTest2;
    startPage();
    std::iota(bits().begin(), bits().end(), std::uint8_t{0});
    clearLogs();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(morvilLog(), Contains("!!! MvTracer.dll not loaded, Error=126"));
    WIN32_FIND_DATAW found{};
    const WString spool = CMvConfig().spoolFolder();
    const HANDLE search = FindFirstFileW((spool + TEXT("\\tracer.org.*.bmp")).c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    FindClose(search);
    const std::string picture = readBytes(spool + TEXT("\\") + WString(viewOf(std::span<const WCHAR>(found.cFileName))));
    EXPECT_EQ(picture.substr(54), std::string(bits().begin(), bits().end()));
}

TEST_F(Page, a_start_opens_the_sections_and_clears_the_surface) {
    configuration().raster = 0;
    startDocument();
    clearLogs();
    debug.clear();
    std::fill(bits().begin(), bits().end(), std::uint8_t{0x77});
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_EQ(pdev->configuration().pageCounter, 1);
    EXPECT_EQ(state().configuration.pageCounter, 1);
    EXPECT_THAT(bits(), Each(0x01));  // 0xFFFF00 and the index of white
    EXPECT_THAT(morvilLog(), IsSupersetOf({withPointer("DrvStartPage pPDev={}, pPDev->PlotDM.dm.dmPaperSize=0", pdev),
                                           std::string("DrvStartPage Size from Application isn't activated")}));
    EXPECT_EQ(morvilLog().front(), "DrvStartPage");
    EXPECT_EQ(morvilLog().back(), "DrvStartPage finished");
    EXPECT_LT(position("WriteHeader, JobName"), position("CSpoolFile::CreateBitmap"));
    EXPECT_LT(position("CSpoolFile::CreateBitmap"), position("CSpoolFile::WriteVectorSection"));
    EXPECT_THAT(debug.texts(), AllOf(Contains("DrvStartPage\n"), Contains("DrvStartPage finished\n"), Not(Contains("DrvStartPage 100\n"))));
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_EQ(pdev->configuration().pageCounter, 2);
}

TEST_F(Page, a_size_from_the_application_is_logged) {
    configuration().size.takeFromApplication = 1;
    devmode.dm.dmPaperSize = DMPAPER_USER;
    devmode.dm.dmPaperWidth = 200;
    devmode.dm.dmPaperLength = 100;
    startDocument();
    clearLogs();
    debug.clear();
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_THAT(morvilLog(), IsSupersetOf({std::string("DrvStartPage Size from Application"),
                                           std::string("DrvStartPage Size from Application Width=20.000000, Height=10.000000")}));
    EXPECT_THAT(debug.texts(), AllOf(Contains("DrvStartPage 100\n"), Contains("DrvStartPage 200\n")));
}

TEST_F(Page, the_black_and_white_test_starts_at_255) {
    configuration().processMode = kModeTest1;
    startPage();
    EXPECT_THAT(bits(), Each(0xFF));
}

TEST_F(Page, a_vector_job_leaves_the_surface_alone) {
    configuration().vectorJob = 1;
    startDocument();
    std::fill(bits().begin(), bits().end(), std::uint8_t{0x77});
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_THAT(bits(), Each(0x77));
    EXPECT_FALSE(engine.called("EngLockSurface"));
}

TEST_F(Page, sending_without_bitmap_still_completes_the_job) {
    configuration().vectorJob = 1;
    startPage();
    clearLogs();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsf"));
    EXPECT_THAT(morvilLog(), Not(Contains("DrvSendPage vor WriteBitmap")));
}

TEST_F(Page, sending_stores_the_page_and_completes_the_job) {
    startPage();
    std::iota(bits().begin(), bits().end(), std::uint8_t{0});
    clearLogs();
    debug.clear();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(morvilLog().front(), "DrvSendPage");
    EXPECT_THAT(morvilLog(),
                IsSupersetOf({withPointer(withPointer("DrvSendPage pPDev={}, lDelta=16, cjBits=1280, pvBits=", pdev) + "{}", pso->pvBits) +
                                  ", BitmapFormat=1, size.x=100, size.y=80",
                              std::string("DrvSendPage vor WriteBitmap"), std::string("DrvSendPage WriteBitmap Success")}));
    EXPECT_EQ(morvilLog().back(), "DrvSendPage finished");
    EXPECT_THAT(debug.texts(), AllOf(Contains("DrvSendPage\n"), Contains("DrvSendPage finished\n")));
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsf"));
    const std::string job = jobFile(".tsf");
    EXPECT_NE(job.find(std::string(reinterpret_cast<const char*>(bits().data()), 12)), std::string::npos);
}

TEST_F(Page, a_banded_page_is_not_completed_by_its_bands) {
    configuration().flags = MV_FL_BITMAP_BANDING;
    startPage();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsa"));
}

TEST_F(Page, pages_without_a_writer_are_sent_silently) {
    enableSurface();
    clearLogs();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(morvilLog(), Contains("DrvSendPage WriteBitmap Success"));
    EXPECT_THAT(jobFileNames(), IsEmpty());
}

TEST_F(Page, test_bands_without_a_writer_leave_their_lines) {
    configuration().processMode = kModeTest3;
    configuration().flags = MV_FL_BITMAP_BANDING;
    enableSurface();
    state().configuration = pdev->configuration();
    clearLogs();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(morvilLog(),
                IsSupersetOf({std::string("WriteBitmapPart, uiBandPosition=0, pDst->sizlBitmap.cy=80, jobHeight=80, delta=300"),
                              std::string("usHeight=80, uiBandPosition=0, Delta=300"), std::string("DrvSendPage WriteBitmap Success")}));
    EXPECT_THAT(jobFileNames(), IsEmpty());
}

constexpr std::size_t kPaletteEnd = 14 + 40 + 2 * 4;  // file header, information header, two colours

// What stands between the tags of the bitmap in the unfinished job.
std::string startedBitmap(const std::string& job) {
    const std::size_t begin = job.find("<STBmp: 0;0>");
    const std::size_t end = job.find("<EOBmp>");
    return begin < end && end != std::string::npos ? job.substr(begin + 12, end - begin - 12) : std::string();
}

// The pixels are left to WriteBitmap, or filled with white at once, for bands that may never come.
TEST_F(Page, a_whole_page_starts_without_pixels_in_the_file) {
    startPage();
    EXPECT_EQ(startedBitmap(jobFile(".tsa")).size(), kPaletteEnd);
}

TEST_F(Page, a_banded_page_starts_white_in_the_file) {
    configuration().flags = MV_FL_BITMAP_BANDING;
    startPage();
    const std::string bitmap = startedBitmap(jobFile(".tsa"));
    ASSERT_EQ(bitmap.size(), kPaletteEnd + 80 * 16);
    EXPECT_EQ(bitmap.substr(kPaletteEnd, 12), std::string(12, '\xFF'));
    EXPECT_EQ(bitmap.substr(bitmap.size() - 16, 12), std::string(12, '\xFF'));
}

TEST_F(Page, a_surface_that_cannot_be_locked_is_reported_and_the_page_goes_on) {
    startDocument();
    std::fill(bits().begin(), bits().end(), std::uint8_t{0x77});
    engine.locks = false;
    clearLogs();
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_THAT(morvilLog(), Contains("!!! FilleSurface Fehler bei EngLockSurface"));
    EXPECT_EQ(morvilLog().back(), "DrvStartPage finished");
    EXPECT_THAT(bits(), Each(0x77));
}

TEST_F(Page, three_pages_make_three_jobs) {
    startDocument();
    for (int page = 0; page < 3; ++page) {
        EXPECT_EQ(DrvStartPage(pso), TRUE);
        EXPECT_EQ(DrvSendPage(pso), TRUE);
    }
    EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan 0001.tsf", "Plan 0002.tsf", "Plan.tsf"));
}

class TemporaryJob : public Page {
  protected:
    static WString file() { return WString(CMvConfig().driverDataFolder()) + TEXT("\\ConfigDLLAbout.job.tmp"); }
};

TEST_F(TemporaryJob, a_file_that_cannot_be_written_is_reported) {
    configuration().flags = MV_FL_TMPJOB;
    startPage();
    makeFolder(file());  // a folder stands in its place
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(morvilLog(), Contains(HasSubstr("!!! DrvSendPage ConfigDLLAbout.job.tmp not written, Error=")));
}

TEST_F(TemporaryJob, each_page_overwrites_the_raw_bits_and_no_job_is_made) {
    configuration().flags = MV_FL_TMPJOB;
    startPage();
    for (const char fill : {'a', 'b'}) {
        std::fill(bits().begin(), bits().end(), static_cast<std::uint8_t>(fill));
        EXPECT_EQ(DrvSendPage(pso), TRUE);
        EXPECT_EQ(readBytes(file()), std::string(1280, fill));
    }
    EXPECT_THAT(morvilLog(), Not(Contains("DrvSendPage vor WriteBitmap")));
    EXPECT_THAT(jobFileNames(), IsEmpty());
}

class PageSteps : public Page {};

TEST_F(PageSteps, run_in_their_order) {
    configuration().flags = MV_FL_IMAGEOP_COLORADJUSTMENT | MV_FL_IMAGEOP_FLIP_HORIZONTAL | kHalftoningBit;
    startPage();
    clearLogs();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    static const char* const order[] = {"DrvSendPage pPDev=",
                                        "DrvSendPage ColorAdjustment",
                                        "DrvSendPage ImageOperations finished",
                                        "DrvSendPage Flip Horizontal",
                                        "DrvSendPage Flip Horizontal finished",
                                        "DrvSendPage Halftoning",
                                        "DrvSendPage Halftoning finished",
                                        "DrvSendPage vor WriteBitmap"};
    for (std::size_t i = 1; i < std::size(order); ++i) EXPECT_LT(position(order[i - 1]), position(order[i])) << order[i];
}

TEST_F(PageSteps, are_left_out_without_their_flags) {
    startPage();
    clearLogs();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    for (const char* const line : {"DrvSendPage ColorAdjustment", "DrvSendPage Flip Horizontal", "DrvSendPage Halftoning"}) {
        EXPECT_THAT(morvilLog(), Not(Contains(line)));
    }
}

TEST_F(PageSteps, the_algorithm_follows_the_mode) {
    static const struct {
        WORD mode;
        DWORD algorithm;
    } modes[] = {{kModeTest4, 3}, {kModeTest5, 4}, {kModeTest6, 5}, {kModeTest7, 6}, {kModeTest3, 2}, {kModeStandard, 2}, {kModeRelief, 2}};
    enableSurface();
    for (const auto& entry : modes) {
        state().configuration.processMode = entry.mode;
        state().configuration.halftone.algorithm = 2;
        halftone(*pso);
        EXPECT_EQ(state().configuration.halftone.algorithm, entry.algorithm) << entry.mode;
    }
}

TEST_F(PageSteps, the_rows_of_a_bottom_up_surface_have_a_length) {
    configuration().flags = MV_FL_IMAGEOP_BOTTOM_UP;
    enableSurface();
    EXPECT_EQ(pso->lDelta, -16);
    EXPECT_EQ(surfaceBits(*pso).rowBytes, 16U);
    EXPECT_EQ(surfaceBits(*pso).bytes, 1280U);
}

}  // namespace
}  // namespace morvil::test
