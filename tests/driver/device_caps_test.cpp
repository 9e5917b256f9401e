// Capabilities of an instance: the page by paper and template, both capability records, palettes, and what the ini file overrides.
#include "driver/device_caps.h"

#include <cstring>

#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"
#include "platform/posix/HostState.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class DeviceCaps : public DriverTest {
  protected:
    // Fills the record for an instance made from the devmode as it stands.
    GDIINFO fill(bool success = true) {
        instance = allocatePdev();
        instance->plotDM = devmode;
        GDIINFO info{};
        std::memset(&info, 0xEE, sizeof(info));
        clearLogs();
        EXPECT_EQ(FillDeviceCaps(*instance, info), success);
        return info;
    }
    void askApplication(SHORT paper, SHORT width = 0, SHORT length = 0, SHORT orientation = DMORIENT_PORTRAIT) {
        configuration().size.takeFromApplication = 1;
        devmode.dm.dmPaperSize = paper;
        devmode.dm.dmPaperWidth = width;
        devmode.dm.dmPaperLength = length;
        devmode.dm.dmOrientation = orientation;
    }
    [[nodiscard]] const SizeTemplate& page() const { return instance->configuration().size; }

    PdevOwner instance;
};

TEST_F(DeviceCaps, sizes_that_no_surface_can_have_are_refused) {
    configuration().resolution = 1000;
    askApplication(DMPAPER_USER, 32767, 100);
    fill(false);
    EXPECT_THAT(morvilLog(), Contains("!!! FillDeviceCaps, invalid page size Width=3276.699951, Height=10.000000"));
    configuration().resolution = 0;
    askApplication(DMPAPER_USER, 100, 100);
    fill(false);
}

TEST_F(DeviceCaps, without_the_switch_the_configured_size_counts) {
    askApplication(DMPAPER_USER, 500, 600);
    configuration().size.takeFromApplication = 0;
    const GDIINFO info = fill();
    EXPECT_EQ(info.ulHorzRes, 100U);
    EXPECT_EQ(info.ulVertRes, 80U);
    EXPECT_THAT(morvilLog(),
                ElementsAre("FillDeviceCaps Get PaperSize not avaiable from Application",
                            "FillDeviceCaps, fWidthMM=10.00, fHeightMM=8.00, lWidthPixel=100, lHeightPixel=80, ProcVal=1000, ProcColor=0",
                            HasSubstr("cColorTable::getCntEntries")));
}

TEST_F(DeviceCaps, paper_777_never_comes_from_the_application) {
    askApplication(777, 500, 600);
    fill();
    EXPECT_EQ(page().pixelWidth, 100);
    EXPECT_EQ(morvilLog().front(), "FillDeviceCaps Get PaperSize not avaiable from Application");
}

TEST_F(DeviceCaps, a_user_size_of_one_millimetre_falls_back) {
    static const struct {
        SHORT width;
        SHORT length;
    } small[] = {{10, 500}, {500, 10}, {0, 500}, {-20, 500}, {500, 0}};
    for (const auto& entry : small) {
        askApplication(DMPAPER_USER, entry.width, entry.length);
        fill();
        EXPECT_FLOAT_EQ(page().width, 10.0F);
        EXPECT_FLOAT_EQ(page().height, 8.0F);
        EXPECT_THAT(morvilLog(), Contains("FillDeviceCaps, User defined Size Width=10.000000, Height=8.000000"));
    }
    askApplication(DMPAPER_USER, 10, 500);
    fill();
    EXPECT_THAT(morvilLog(), Contains("FillDeviceCaps, fWidthMM=1.000000, fHeightMM=50.000000"));
}

TEST_F(DeviceCaps, a_user_size_of_eleven_tenths_is_taken) {
    for (const SHORT index : {SHORT{DMPAPER_USER}, SHORT{0}}) {
        askApplication(index, 11, 500);
        const GDIINFO info = fill();
        EXPECT_FLOAT_EQ(page().width, 1.1F);
        EXPECT_FLOAT_EQ(page().height, 50.0F);
        EXPECT_EQ(page().pixelWidth, 11);
        EXPECT_EQ(page().pixelHeight, 500);
        EXPECT_EQ(info.ulHorzSize, 1U);
        EXPECT_EQ(info.ulVertSize, 50U);
        EXPECT_THAT(morvilLog(),
                    AllOf(Contains("FillDeviceCaps, Get PaperSize from Application Index=" + std::to_string(index) + ", dmOrientation=1"),
                          Contains("FillDeviceCaps, User defined Size Width=1.100000, Height=50.000000"),
                          Not(Contains(HasSubstr("FillDeviceCaps, width=")))));
    }
}

TEST_F(DeviceCaps, a_landscape_user_size_is_exchanged) {
    askApplication(DMPAPER_USER, 200, 500, DMORIENT_LANDSCAPE);
    fill();
    EXPECT_FLOAT_EQ(page().width, 50.0F);
    EXPECT_FLOAT_EQ(page().height, 20.0F);
}

TEST_F(DeviceCaps, landscape_a4_of_the_system_papers) {
    hostState().forms = {{TEXT("Letter"), {215900, 279400}}, {TEXT("A4"), {210000, 297000}}, {TEXT("A5"), {148000, 210000}}};
    configuration().resolution = 500;
    askApplication(2, 0, 0, DMORIENT_LANDSCAPE);
    const GDIINFO info = fill();
    EXPECT_EQ(info.ulHorzSize, 297U);
    EXPECT_EQ(info.ulVertSize, 210U);
    EXPECT_EQ(info.ulHorzRes, 5847U);
    EXPECT_EQ(info.ulVertRes, 4134U);
    EXPECT_THAT(morvilLog(), AllOf(Contains("FillDeviceCaps, Get PaperSize from Application Index=2, dmOrientation=2"),
                                   Contains("FillDeviceCaps, Received from system paper size Index=2, Width=210.000000, Height=297.000000"),
                                   Contains("FillDeviceCaps, width=297.000000, height=210.000000")));
}

TEST_F(DeviceCaps, an_unknown_system_paper_keeps_the_configured_size) {
    hostState().forms = {{TEXT("A4"), {210000, 297000}}};
    askApplication(118);
    fill();
    EXPECT_FLOAT_EQ(page().width, 10.0F);
    EXPECT_THAT(morvilLog(), Contains("FillDeviceCaps, width=10.000000, height=8.000000"));
}

TEST_F(DeviceCaps, papers_above_118_are_size_templates) {
    const WString ini = WString(CMvConfig().commonFiles()) + TEXT("\\MvTemplate.ini");
    writeBytes(ini,
               "[BDSIZETEMPLATE]\r\nSIZETEMPLATECOUNT=2\r\nSIZETEMPLATE[1].Name=Small\r\nSIZETEMPLATE[1].Width=30\r\n"
               "SIZETEMPLATE[1].Height=20\r\nSIZETEMPLATE[2].Name=Big\r\nSIZETEMPLATE[2].Width=60\r\nSIZETEMPLATE[2].Height=40\r\n");
    askApplication(119);
    fill();
    EXPECT_FLOAT_EQ(page().width, 30.0F);
    EXPECT_THAT(morvilLog(),
                AllOf(Contains("FillDeviceCaps, Received from <CSizeTemplate> Index=1, SizeName=Small, Width=30.000000, Height=20.000000"),
                      Contains("FillDeviceCaps, width=30.000000, height=20.000000")));
    askApplication(120, 0, 0, DMORIENT_LANDSCAPE);
    fill();
    EXPECT_FLOAT_EQ(page().width, 40.0F);
    EXPECT_FLOAT_EQ(page().height, 60.0F);
    askApplication(121);
    fill();
    EXPECT_FLOAT_EQ(page().width, 100.0F);
    EXPECT_THAT(morvilLog(), Contains(HasSubstr("Index=3, SizeName=ERROR, Width=100.000000")));
}

TEST_F(DeviceCaps, every_field_of_the_record) {
    configuration().resolution = 500;
    configuration().halftone.patternSize = 6;
    configuration().halftone.colourInfo.Cyan.Y = 65534;
    const GDIINFO info = fill();
    EXPECT_EQ(info.ulVersion, 0x500U);
    EXPECT_EQ(info.ulTechnology, 2U);
    EXPECT_EQ(info.ulHorzSize, 10U);
    EXPECT_EQ(info.ulVertSize, 8U);
    EXPECT_EQ(info.ulPanningHorzRes, 100U);
    EXPECT_EQ(info.ulPanningVertRes, 80U);
    EXPECT_EQ(info.szlPhysSize.cx, 100);
    EXPECT_EQ(info.szlPhysSize.cy, 80);
    EXPECT_EQ(info.cPlanes, 1U);
    EXPECT_EQ(info.ulLogPixelsX, 500U);
    EXPECT_EQ(info.ulLogPixelsY, 500U);
    EXPECT_EQ(info.ulAspectX, 500U);
    EXPECT_EQ(info.ulAspectY, 500U);
    EXPECT_EQ(info.ulAspectXY, 708U);
    EXPECT_EQ(info.xStyleStep, 1);
    EXPECT_EQ(info.yStyleStep, 1);
    EXPECT_EQ(info.denStyleStep, 20);
    EXPECT_EQ(info.ptlPhysOffset.x, 0);
    EXPECT_EQ(info.ciDevice.Cyan.Y, 65534);
    EXPECT_EQ(info.ulHTPatternSize, 6U);
    EXPECT_EQ(info.flHTFlags, 2U);
    for (const ULONG zero : {info.flRaster, info.flTextCaps, info.ulDACRed, info.ulDACGreen, info.ulDACBlue, info.ulDevicePelsDPI,
                             info.ulPrimaryOrder, info.ulVRefresh, info.cxHTPat, info.ulPhysicalPixelGamma}) {
        EXPECT_EQ(zero, 0U);
    }
    EXPECT_EQ(instance->dpi, 500U);
}

TEST_F(DeviceCaps, diagonal_aspects) {
    static const struct {
        ULONG dpi;
        ULONG diagonal;
    } aspects[] = {{0, 0}, {1, 2}, {125, 177}, {250, 354}, {333, 471}, {500, 708}, {600, 849}, {1000, 1415}};
    for (const auto& entry : aspects) EXPECT_EQ(diagonalAspect(entry.dpi), entry.diagonal) << entry.dpi;
}

TEST_F(DeviceCaps, depth_and_palette_by_process_mode) {
    constexpr ULONG kNone = 0xFFFFFFFF;
    static const struct {
        WORD mode;
        WORD colour;
        ULONG bits;
        ULONG halftone;
        ULONG colours;
        FLONG caps;
        ULONG ditherFormat;
        USHORT ditherSize;
        int table;
    } modes[] = {{kModeStandard, 0, 1, 0, 2, 0x2C4, BMF_8BPP, 8, 2},      {kModeStandard, 1, 1, 0, 2, 0x2E4, BMF_1BPP, 8, 2},
                 {kModeStandard, 2, 8, 4, 256, 0x2C4, BMF_8BPP, 8, 0},    {kModeStamp, 0, 1, 0, 2, 0x2E4, BMF_1BPP, 8, 2},
                 {kModeColourStamp, 0, 8, 4, 256, 0x2C4, BMF_8BPP, 8, 4}, {kModeRelief, 0, 8, 4, 256, 0x2C4, BMF_8BPP, 8, 1},
                 {kModeLayer, 1, 8, 4, 256, 0x2C4, BMF_8BPP, 8, 1},       {kModeTest1, 0, 8, 4, 2, 0x2C4, BMF_1BPP, 1, 2},
                 {kModeTest2, 0, 24, 6, kNone, 0x2C4, BMF_24BPP, 8, 5},   {kModeTest3, 0, 24, 6, kNone, 0x2C4, BMF_24BPP, 8, 5},
                 {kModeTest4, 0, 24, 6, kNone, 0x2C4, BMF_24BPP, 8, 5},   {kModeTest5, 0, 24, 6, kNone, 0x2C4, BMF_24BPP, 8, 5},
                 {kModeTest6, 0, 24, 6, kNone, 0x2C4, BMF_24BPP, 8, 5},   {kModeTest7, 2, 24, 6, kNone, 0x2C4, BMF_24BPP, 8, 5}};
    for (const auto& mode : modes) {
        SCOPED_TRACE(mode.mode + mode.colour);
        configuration().processMode = mode.mode;
        configuration().processColour = mode.colour;
        configuration().bezier.mode = 0;
        state().configuration = configuration();
        const GDIINFO info = fill();
        EXPECT_EQ(info.cBitsPixel, mode.bits);
        EXPECT_EQ(info.ulHTOutputFormat, mode.halftone);
        EXPECT_EQ(info.ulNumColors, mode.colours);
        EXPECT_EQ(info.ulNumPalReg, mode.colours);
        DEVINFO devInfo{};
        std::memset(&devInfo, 0xEE, sizeof(devInfo));
        EXPECT_EQ(fillPalette(*instance, devInfo), TRUE);
        EXPECT_EQ(devInfo.flGraphicsCaps, mode.caps);
        EXPECT_EQ(devInfo.iDitherFormat, mode.ditherFormat);
        EXPECT_EQ(devInfo.cxDither, mode.ditherSize);
        EXPECT_EQ(devInfo.cyDither, mode.ditherSize);
        EXPECT_EQ(devInfo.cFonts, 0U);
        EXPECT_EQ(devInfo.flGraphicsCaps2, 0U);
        EXPECT_NE(devInfo.hpalDefault, nullptr);
        EXPECT_EQ(devInfo.hpalDefault, instance->hPalette);
        EXPECT_EQ(processColourTable().type(), mode.table);
        const PaletteRequest& palette = engine.palettes.back();
        EXPECT_EQ(palette.mode, mode.table == 5 ? PAL_BGR : PAL_INDEXED);
        EXPECT_EQ(palette.entries.size(), mode.table == 5 ? 0 : mode.colours);
        EXPECT_EQ(morvilLog().back(), withPointer("ColorTable Handle={}", instance->hPalette) + ", Type=" + std::to_string(mode.table));
    }
}

TEST_F(DeviceCaps, switches_add_capabilities) {
    configuration().flags = MV_FL_GEOMETRICWIDE;
    configuration().bezier.mode = 3;
    fill();
    DEVINFO devInfo{};
    fillPalette(*instance, devInfo);
    EXPECT_EQ(devInfo.flGraphicsCaps, 0x2C4U | 0x2U | 0x1U);
}

TEST_F(DeviceCaps, black_and_white_palette) {
    state().configuration = configuration();
    fill();
    DEVINFO devInfo{};
    fillPalette(*instance, devInfo);
    EXPECT_THAT(engine.palettes.back().entries, ElementsAre(0U, 0xFFFFFFU));
}

TEST_F(DeviceCaps, a_missing_palette_does_not_fail_the_instance) {
    engine.grantsPalettes = false;
    fill();
    DEVINFO devInfo{};
    EXPECT_EQ(fillPalette(*instance, devInfo), TRUE);
    EXPECT_EQ(devInfo.hpalDefault, nullptr);
    EXPECT_THAT(morvilLog(), AllOf(Contains("!!! Invalid ColorTable"), Contains("ColorTable Handle=0, Type=2")));
}

TEST_F(DeviceCaps, a_new_palette_replaces_the_old_one) {
    fill();
    DEVINFO devInfo{};
    fillPalette(*instance, devInfo);
    fillPalette(*instance, devInfo);
    EXPECT_EQ(engine.livePalettes, 1U);
}

TEST_F(DeviceCaps, the_ini_file_overrides) {
    const WCHAR* const section = TEXT("GDIINFO");
    const WString ini = CMvConfig().mainIni();
    WritePrivateProfileStringW(section, TEXT("Technology"), TEXT("0"), ini.c_str());
    WritePrivateProfileStringW(section, TEXT("DevicePelsDPI"), TEXT("600"), ini.c_str());
    WritePrivateProfileStringW(section, TEXT("NumColors"), TEXT("20"), ini.c_str());
    const GDIINFO info = fill();
    EXPECT_EQ(info.ulTechnology, 0U);
    EXPECT_EQ(info.ulDevicePelsDPI, 600U);
    EXPECT_EQ(info.ulNumColors, 20U);
    EXPECT_EQ(info.ulNumPalReg, 20U);
    EXPECT_THAT(morvilLog(), AllOf(Contains("GDIINFO from File, Technology=0"), Contains("GDIINFO from File, DevicePelsDPI=600"),
                                   Contains("GDIINFO from File, NumColors=20")));
}

TEST_F(DeviceCaps, minus_one_in_the_ini_file_overrides_nothing) {
    WritePrivateProfileStringW(TEXT("GDIINFO"), TEXT("Technology"), TEXT("-1"), CMvConfig().mainIni());
    EXPECT_EQ(fill().ulTechnology, 2U);
    EXPECT_THAT(morvilLog(), Not(Contains(HasSubstr("GDIINFO from File"))));
}

}  // namespace
}  // namespace morvil::test
