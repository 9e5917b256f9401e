// The page surface: format, size and flags by mode, smaller bands where memory is short, and its end.
#include "driver/surface.h"

#include "driver/DriverFixture.h"
#include "platform/posix/HostState.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Surface : public DriverTest {
  protected:
    HSURF tryEnable() {
        enable();
        clearLogs();
        return DrvEnableSurface(handleOf(pdev));
    }
    void setPixels(WORD width, WORD height) {
        configuration().size.pixelWidth = width;
        configuration().size.pixelHeight = height;
    }
    [[nodiscard]] std::vector<LONG> heightsAsked() const {
        std::vector<LONG> heights;
        for (const BitmapRequest& request : engine.bitmaps) heights.push_back(request.size.cy);
        return heights;
    }
};

TEST_F(Surface, without_any_memory_there_is_none) {
    engine.grantsBitmap = [](const BitmapRequest&) { return false; };
    setPixels(100, 350);
    EXPECT_EQ(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(350, 250, 150, 50));
    EXPECT_THAT(morvilLog(),
                ElementsAre(HasSubstr("DrvEnableSurface, pPDev="), HasSubstr("DrvEnableSurface SurfSize.x=100, SurfSize.y=350"),
                            "!!! DrvEnableSurface Fehler bei EngCreateBitmap", "!!! DrvEnableSurface, try SurfSize.cy=250",
                            "!!! DrvEnableSurface, try SurfSize.cy=150", "!!! DrvEnableSurface, try SurfSize.cy=50",
                            "DrvEnableSurface vor EngAssociateSurface", "!!! DrvEnableSurface Fehler bei EngAssociateSurface",
                            HasSubstr("DrvDisableSurface pPDev=")));
    EXPECT_EQ(pdev->configuration().flags & MV_FL_BITMAP_BANDING, 0U);
}

TEST_F(Surface, a_page_of_a_hundred_rows_is_not_retried) {
    engine.grantsBitmap = [](const BitmapRequest&) { return false; };
    setPixels(100, 100);
    EXPECT_EQ(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(100));
}

TEST_F(Surface, a_band_of_a_hundred_rows_that_is_refused_is_tried_again_at_its_height) {
    engine.grantsBitmap = [](const BitmapRequest& request) {
        return request.size.cy == 1000 || (request.size.cy == 100 && fakeEngine().bitmaps.size() > 3) || request.size.cy == 10;
    };
    setPixels(100, 1100);
    EXPECT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(1100, 1000, 100, 100, 10));
}

TEST_F(Surface, a_small_remainder_is_tried_again_at_its_height) {
    // The counter runs on in hundreds while the height stays below one.
    engine.grantsBitmap = [](const BitmapRequest& request) { return request.size.cy == 50 && fakeEngine().bitmaps.size() > 2; };
    setPixels(100, 150);
    EXPECT_EQ(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(150, 50));
}

TEST_F(Surface, a_tenth_of_what_works_becomes_the_band) {
    engine.grantsBitmap = [](const BitmapRequest& request) { return request.size.cy <= 755; };
    setPixels(100, 1000);
    EXPECT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(1000, 900, 800, 700, 70));
    EXPECT_EQ(engine.count("EngDeleteSurface"), 1U);
    EXPECT_EQ(engine.surfaces.size(), 1U);
    EXPECT_NE(pdev->configuration().flags & MV_FL_BITMAP_BANDING, 0U);
    EXPECT_THAT(morvilLog(),
                AllOf(Contains("!!! DrvEnableSurface, try SurfSize.cy=700"), Contains("DrvEnableSurface, success SurfSize.cy=70"),
                      Contains("DrvEnableSurface, Surface marked for Banding"), Contains("DrvEnableSurface fertig")));
}

TEST_F(Surface, a_band_that_is_refused_is_tried_smaller) {
    // 300 rows work, their tenth does not at once; then 30 rows work and 3 are kept.
    engine.grantsBitmap = [](const BitmapRequest& request) {
        return request.size.cy == 300 || (request.size.cy == 30 && fakeEngine().bitmaps.size() > 3) || request.size.cy == 3;
    };
    setPixels(100, 400);
    EXPECT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(400, 300, 30, 30, 3));
}

TEST_F(Surface, a_surface_that_cannot_be_marked_is_given_back) {
    configuration().flags = MV_FL_BITMAP_BANDING;
    engine.marksBanding = false;
    EXPECT_EQ(tryEnable(), nullptr);
    EXPECT_TRUE(engine.surfaces.empty());
    EXPECT_EQ(morvilLog().back(), "DrvEnableSurface, Error during EngMarkBandingSurface");
    EXPECT_FALSE(engine.called("EngAssociateSurface"));
}

TEST_F(Surface, a_surface_that_cannot_be_associated_is_given_back) {
    engine.associates = false;
    EXPECT_EQ(tryEnable(), nullptr);
    EXPECT_TRUE(engine.surfaces.empty());
    EXPECT_EQ(engine.count("EngDeleteSurface"), 1U);
    EXPECT_EQ(pdev->hBitmap, nullptr);
    EXPECT_THAT(morvilLog(), Contains("!!! DrvEnableSurface Fehler bei EngAssociateSurface"));
}

TEST_F(Surface, no_instance_no_surface) {
    EXPECT_EQ(DrvEnableSurface(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    DrvDisableSurface(nullptr);
    EXPECT_THAT(engine.calls, IsEmpty());
}

TEST_F(Surface, formats_and_row_lengths) {
    static const struct {
        WORD mode;
        WORD colour;
        WORD width;
        ULONG format;
        ULONG rowBytes;
    } formats[] = {{kModeStandard, 0, 1, BMF_1BPP, 4},      {kModeStandard, 0, 32, BMF_1BPP, 4},
                   {kModeStandard, 1, 33, BMF_1BPP, 8},     {kModeStandard, 2, 33, BMF_8BPP, 36},
                   {kModeStamp, 2, 64, BMF_1BPP, 8},        {kModeTest1, 2, 65, BMF_1BPP, 12},
                   {kModeColourStamp, 0, 1, BMF_8BPP, 4},   {kModeRelief, 0, 5, BMF_8BPP, 8},
                   {kModeLayer, 0, 4, BMF_8BPP, 4},         {kModeTest2, 0, 1, BMF_24BPP, 4},
                   {kModeTest3, 0, 4000, BMF_24BPP, 12000}, {kModeTest4, 0, 2, BMF_24BPP, 8},
                   {kModeTest5, 0, 3, BMF_24BPP, 12},       {kModeTest6, 0, 4, BMF_24BPP, 12},
                   {kModeTest7, 0, 5, BMF_24BPP, 16},       {0, 0, 100, BMF_1BPP, 16},
                   {13000, 2, 100, BMF_1BPP, 16},           {kModeTest7, 0, 65535, BMF_24BPP, 196608}};
    for (const auto& entry : formats) {
        ConfigurationRecord record{};
        record.processMode = entry.mode;
        record.processColour = entry.colour;
        record.size.pixelWidth = entry.width;
        EXPECT_EQ(surfaceFormat(record).format, entry.format) << entry.mode << " " << entry.width;
        EXPECT_EQ(surfaceFormat(record).rowBytes, entry.rowBytes) << entry.mode << " " << entry.width;
    }
}

TEST_F(Surface, scan_order_by_flags) {
    static const struct {
        DWORD flags;
        FLONG creation;
    } orders[] = {{0, BMF_TOPDOWN | BMF_NOZEROINIT},
                  {MV_FL_IMAGEOP_FLIP_HORIZONTAL, BMF_TOPDOWN | BMF_NOZEROINIT},
                  {MV_FL_IMAGEOP_BOTTOM_UP, BMF_NOZEROINIT},
                  {MV_FL_IMAGEOP_FLIP_VERTICAL, BMF_NOZEROINIT}};
    for (const auto& order : orders) {
        configuration().flags = order.flags;
        tryEnable();
        EXPECT_EQ(engine.bitmaps.back().flags, order.creation) << order.flags;
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    }
}

TEST_F(Surface, a_whole_page) {
    hostState().fixedTime = std::chrono::sys_days(std::chrono::year(2024) / 3 / 9) + std::chrono::hours(12);
    const HSURF surface = tryEnable();
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(engine.hooks, 0x4EBU);
    EXPECT_EQ(engine.associatedDevice, reinterpret_cast<HDEV>(0x5150));
    EXPECT_EQ(pdev->hBitmap, surface);
    EXPECT_FALSE(engine.called("EngMarkBandingSurface"));
    EXPECT_THAT(morvilLog(), ElementsAre(withPointer("03/09/24, DrvEnableSurface, pPDev={}", pdev),
                                         "DrvEnableSurface SurfSize.x=100, SurfSize.y=80, uiLineLength=16, uiBPP=1, ProcessMode=1000",
                                         withPointer("DrvEnableSurface EngCreateBitmap finished,HBitmap={}", surface),
                                         "DrvEnableSurface vor EngAssociateSurface",
                                         withPointer("DrvEnableSurface pPDev->hBitmap={}", surface), "DrvEnableSurface fertig"));
    clearLogs();
    DrvDisableSurface(handleOf(pdev));
    EXPECT_TRUE(engine.surfaces.empty());
    EXPECT_THAT(morvilLog(), ElementsAre(withPointer("DrvDisableSurface pPDev={}", pdev)));
}

TEST_F(Surface, the_configuration_can_ask_for_bands) {
    configuration().flags = MV_FL_BITMAP_BANDING;
    ASSERT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(80));
    EXPECT_THAT(morvilLog(), Contains("DrvEnableSurface, Surface marked for Banding"));
}

TEST_F(Surface, the_banding_test_halves_large_pages) {
    configuration().processMode = kModeTest3;
    setPixels(4000, 5000);
    ASSERT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(625));
    EXPECT_NE(pdev->configuration().flags & MV_FL_BITMAP_BANDING, 0U);
    EXPECT_THAT(morvilLog(),
                AllOf(Contains("Mark surface for banding"),
                      Contains("DrvEnableSurface SurfSize.x=4000, SurfSize.y=625, uiLineLength=12000, uiBPP=5, ProcessMode=8000")));
}

TEST_F(Surface, the_banding_test_leaves_small_pages_whole_but_says_so) {
    configuration().processMode = kModeTest3;
    setPixels(1000, 3333);  // 9,999,000 bytes
    ASSERT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(3333));
    EXPECT_EQ(pdev->configuration().flags & MV_FL_BITMAP_BANDING, 0U);
    EXPECT_THAT(morvilLog(), Contains("Mark surface for banding"));
}

TEST_F(Surface, the_banding_test_leaves_ten_million_bytes_whole) {
    configuration().processMode = kModeTest3;
    setPixels(3333, 1000);  // rows of 10,000 bytes
    ASSERT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(1000));
    EXPECT_EQ(pdev->configuration().flags & MV_FL_BITMAP_BANDING, 0U);
}

TEST_F(Surface, other_modes_are_not_halved) {
    configuration().processMode = kModeTest4;
    setPixels(4000, 1000);
    ASSERT_NE(tryEnable(), nullptr);
    EXPECT_THAT(heightsAsked(), ElementsAre(1000));
    EXPECT_THAT(morvilLog(), Not(Contains("Mark surface for banding")));
}

TEST_F(Surface, filling_needs_a_lock) {
    enableSurface();
    engine.locks = false;
    std::vector<std::uint8_t>& bits = engine.surfaces.begin()->second->bits;
    EXPECT_FALSE(FilleSurface(*pso, 0x12));
    EXPECT_THAT(bits, Each(0));
    EXPECT_EQ(morvilLog().back(), "!!! FilleSurface Fehler bei EngLockSurface");
    engine.locks = true;
    EXPECT_TRUE(FilleSurface(*pso, 0x123456));
    EXPECT_THAT(bits, Each(0x56));
    EXPECT_EQ(engine.count("EngLockSurface"), 2U);
    EXPECT_EQ(engine.count("EngUnlockSurface"), 1U);
}

TEST_F(Surface, background_by_raster_switch_and_white) {
    static const struct {
        DWORD raster;
        int table;
        DWORD background;
    } cases[] = {{0, kBlackWhite, 0xFFFF01}, {0, kWhiteBlack, 0xFFFF00}, {0, kGreyRamp, 0xFFFFFF},
                 {1, kBlackWhite, 0xFFFFFF}, {1, kWhiteBlack, 0},        {1, kProcessColours, 0xFFFFFF}};
    for (const auto& entry : cases) {
        state().configuration = configuration();
        state().configuration.raster = entry.raster;
        processColourTable().SetConfig(&state().configuration);
        processColourTable().BuildTable(entry.table);
        EXPECT_EQ(backgroundColour(), entry.background) << entry.raster << " " << entry.table;
    }
}

}  // namespace
}  // namespace morvil::test
