// Fills, block transfers, copies, stretches and text: what is logged and what the engine gets.
#include "driver/DriverFixture.h"
#include "driver/stretch_mode.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

class RasterHooks : public DriverTest {
  protected:
    RasterHooks() {
        enableSurface();
        stranger = *pso;
        stranger.dhpdev = nullptr;
        source.sizlBitmap = {30, 20};
        source.cjBits = 640;
        source.lDelta = 32;
        source.iBitmapFormat = BMF_8BPP;
        source.hsurf = reinterpret_cast<HSURF>(0x30);
        source.dhsurf = reinterpret_cast<DHSURF>(0x40);
        source.hdev = reinterpret_cast<HDEV>(0x50);
        clearLogs();
        debug.clear();
        engine.calls.clear();
    }

    SURFOBJ stranger{};  // a surface without instance
    SURFOBJ source{};
    SURFOBJ mask{};
    CLIPOBJ clip{};
    FakeTranslation translation;
    FakeBrush brush{0x00332211};
    RECTL target{1, 2, 31, 22};
    RECTL from{3, 4, 33, 24};
    POINTL origin{5, 6};
    POINTL maskOrigin{7, 8};
    POINTL brushOrigin{9, 10};
};

class FillPath : public RasterHooks {};

TEST_F(FillPath, an_invalid_instance_fills_nothing) {
    FakePath path;
    EXPECT_EQ(DrvFillPath(&stranger, &path, nullptr, nullptr, nullptr, 0, 0), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_THAT(rendLog(), ElementsAre("!!! DrvFillPath, pPDev invalid"));
    EXPECT_THAT(debug.texts(), ElementsAre("DrvFillPath\n"));
    EXPECT_FALSE(engine.called("EngFillPath"));
}

TEST_F(FillPath, the_engine_fills_with_what_came) {
    FakePath path({{PD_BEGINSUBPATH | PD_ENDSUBPATH, {fixedPoint(1, 2), fixedPoint(3, 4)}}});
    path.fl = PO_ALL_INTEGERS;
    brush.iSolidColor = 0xAB;
    brush.flColorType = 8;
    for (const BOOL result : {TRUE, FALSE}) {
        clearLogs();
        debug.clear();
        engine.result = result;
        EXPECT_EQ(DrvFillPath(pso, &path, &clip, &brush, &brushOrigin, 0x0D0D, FP_WINDINGMODE), result);
        EXPECT_THAT(engine.arguments, ElementsAre(pso, &path, &clip, &brush, &brushOrigin));
        EXPECT_EQ(engine.lastNumber, 0x0D0DU);
        EXPECT_EQ(engine.lastOptions, FP_WINDINGMODE);
        EXPECT_THAT(rendLog(), ElementsAre("DrvFillPath, MIX=3341, Flags=2", "pso->sizlBitmap, lDelta=16, x=100, y=80, Format=1",
                                           "pbo->iSolidColor=AB, flColorType=8, pvRbrush=0", "Color=332211", "ppo, CntPoints=2, Flags=4",
                                           "pptlBrushOrg, x=9, y=10", "DrvFillPath, EngFillPath",
                                           "DrvFillPath finished, Return=" + std::to_string(result)));
        EXPECT_THAT(debug.texts(), ElementsAre("DrvFillPath\n", "DrvFillPath finished\n"));
    }
}

TEST_F(FillPath, what_is_missing_is_not_logged) {
    EXPECT_EQ(DrvFillPath(nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0), TRUE);
    EXPECT_THAT(rendLog(), ElementsAre("DrvFillPath, MIX=0, Flags=0", "DrvFillPath, EngFillPath", "DrvFillPath finished, Return=1"));
    EXPECT_FALSE(engine.called("EngCheckAbort"));
}

TEST_F(FillPath, outline_and_interior_together_are_not_taken) {
    FakePath path;
    EXPECT_EQ(DrvStrokeAndFillPath(pso, &path, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0), FALSE);
    EXPECT_THAT(rendLog(), ElementsAre("DrvStrokeandFillPath not supported through the driver"));
    EXPECT_THAT(engine.calls, IsEmpty());
}

class BitBlt : public RasterHooks {};

TEST_F(BitBlt, an_invalid_instance_transfers_nothing) {
    EXPECT_EQ(DrvBitBlt(&stranger, &source, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0xCCCC), FALSE);
    EXPECT_THAT(rendLog(), ElementsAre("DrvBitblt Rop4=CCCC"));
    EXPECT_THAT(debug.texts(), ElementsAre("DrvBitblt\n"));
    EXPECT_FALSE(engine.called("EngBitBlt"));
}

TEST_F(BitBlt, the_engine_gets_everything_unchanged) {
    translation.table = {0x11, 0x22};
    translation.cEntries = 2;
    translation.pulXlate = translation.table.data();
    translation.flXlate = XO_TABLE;
    brush.iSolidColor = 0xAB;
    EXPECT_EQ(DrvBitBlt(pso, &source, &mask, &clip, &translation, &target, &origin, &maskOrigin, &brush, &brushOrigin, 0xCCAA), TRUE);
    EXPECT_THAT(engine.arguments,
                ElementsAre(pso, &source, &mask, &clip, &translation, &target, &origin, &maskOrigin, &brush, &brushOrigin));
    EXPECT_EQ(engine.lastNumber, 0xCCAAU);
    const std::string owner =
        withPointer(withPointer(withPointer("dhsurf=0, hsurf={}, dhpdev=", pso->hsurf) + "{}, hPalette=", pdev) + "{}", pdev->hPalette);
    EXPECT_THAT(rendLog(),
                ElementsAre("DrvBitblt Rop4=CCAA",
                            withPointer("psoDst, cjBits=1280, lDelta=16, sizlBitmap.cx=100, sizlBitmap.cy=80, pvBits={}", pso->pvBits),
                            owner, "psoSrc, cjBits=640, lDelta=32, sizlBitmap.cx=30, sizlBitmap.cy=20, pvBits=0",
                            "dhsurf=40, hsurf=30, dhpdev=0", "iSolidColor=AB, Color=332211, flColorType=0",
                            withPointer("cEntries=2, pulXLate={}, flXlate=2", translation.table.data()), "TableEntry[0]=11",
                            "TableEntry[1]=22", "src.x=5, src.y=6", "left=1, top=2, right=31, bottom=22", "DrvBitblt finished"));
    EXPECT_THAT(debug.texts(), ElementsAre("DrvBitblt\n", "DrvBitblt finished\n"));
}

TEST_F(BitBlt, what_is_missing_is_not_logged) {
    engine.result = FALSE;
    EXPECT_EQ(DrvBitBlt(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), FALSE);
    EXPECT_THAT(rendLog(), ElementsAre("DrvBitblt Rop4=0", "pptlSrc=0", "DrvBitblt finished"));
    EXPECT_FALSE(engine.called("EngCheckAbort"));
}

class CopyBits : public RasterHooks {};

TEST_F(CopyBits, an_invalid_instance_copies_nothing) {
    EXPECT_EQ(DrvCopyBits(&stranger, &source, nullptr, nullptr, &target, &origin), FALSE);
    EXPECT_THAT(rendLog(), ElementsAre("DrvCopyBits", "!!! DrvCopyBits, pPDev invalid"));
    EXPECT_FALSE(engine.called("EngCopyBits"));
}

TEST_F(CopyBits, the_engine_copies_and_the_source_palette_is_kept) {
    translation.sourcePalette = {0x112233, 0x445566};
    translation.cEntries = 2;
    clip.rclBounds = {10, 20, 30, 40};
    EXPECT_EQ(DrvCopyBits(pso, &source, &clip, &translation, &target, &origin), TRUE);
    EXPECT_THAT(engine.arguments, ElementsAre(pso, &source, &clip, &translation, &target, &origin));
    EXPECT_EQ(state().sourcePalette[0], 0x112233U);
    EXPECT_EQ(state().sourcePalette[1], 0x445566U);
    EXPECT_THAT(
        rendLog(),
        ElementsAre("DrvCopyBits",
                    withPointer("Dst, cjBits=1280, lDelta=16, sizlBitmap.cx=100, sizlBitmap.cy=80, pvBits={}, iType=0, iBitmapFormat=1",
                                pso->pvBits),
                    "Src, cjBits=640, lDelta=32, sizlBitmap.cx=30, sizlBitmap.cy=20, pvBits=0 , iType=0, iBitmapFormat=3, dhpdev=0, "
                    "dhsurf=40, hdev=50, hsurf=30",
                    "cEntries=2, pulXLate=0, flXlate=0", "prclDst, left=1, top=2, bottom=22, right=31", "pptlSrc, x=5, y=6",
                    "pco, top=20, left=10, bottom=40, right=30", "DrvCopyBits finished"));
    EXPECT_THAT(debug.texts(), ElementsAre("DrvCopyBits\n", "DrvCopyBits finished\n"));
}

TEST_F(CopyBits, at_most_256_entries_are_kept) {
    translation.sourcePalette.assign(300, 0x77);
    DrvCopyBits(pso, &source, nullptr, &translation, &target, &origin);
    EXPECT_EQ(state().sourcePalette.back(), 0x77U);
}

TEST_F(CopyBits, without_translation_no_palette_is_read) {
    engine.result = FALSE;
    EXPECT_EQ(DrvCopyBits(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), FALSE);
    EXPECT_THAT(rendLog(), ElementsAre("DrvCopyBits", "DrvCopyBits finished"));
    EXPECT_THAT(engine.calls, ElementsAre("EngCopyBits"));
}

class OtherHooks : public RasterHooks {};

TEST_F(OtherHooks, text_becomes_raster) {
    STROBJ text{};
    FONTOBJ font{};
    FakeBrush back(0);
    for (const BOOL result : {TRUE, FALSE}) {
        clearLogs();
        engine.result = result;
        EXPECT_EQ(DrvTextOut(pso, &text, &font, &clip, &target, &from, &brush, &back, &brushOrigin, 0x0D0D), result);
        EXPECT_THAT(engine.arguments, ElementsAre(pso, &text, &font, &clip, &target, &from, &brush, &back, &brushOrigin));
        EXPECT_EQ(engine.lastNumber, 0x0D0DU);
        EXPECT_THAT(rendLog(), ElementsAre("DrvTextOut"));
    }
}

TEST_F(OtherHooks, glyphs_come_as_bits) {
    EXPECT_EQ(DrvGetGlyphMode(handleOf(pdev), nullptr), 1U);
    EXPECT_EQ(DrvGetGlyphMode(nullptr, nullptr), 1U);
    EXPECT_THAT(rendLog(), ElementsAre("DrvGetGlyphMode", "DrvGetGlyphMode"));
}

TEST_F(OtherHooks, the_engine_dithers_every_colour) {
    ULONG buffer = 0x55;
    EXPECT_EQ(DrvDitherColor(handleOf(pdev), 1, 0xABCDEF, &buffer), 2U);
    EXPECT_EQ(DrvDitherColor(nullptr, 0, 0, nullptr), 2U);
    EXPECT_EQ(buffer, 0x55U);
    EXPECT_THAT(rendLog(), ElementsAre(withPointer("DrvDitherColor iMode=1, rgbColor=ABCDEF, pulDither={}, Ret=2", &buffer),
                                       "DrvDitherColor iMode=0, rgbColor=0, pulDither=0, Ret=2"));
}

class Stretch : public RasterHooks {};

TEST_F(Stretch, an_invalid_instance_stretches_nothing_and_says_nothing) {
    EXPECT_EQ(DrvStretchBlt(&stranger, &source, nullptr, nullptr, nullptr, nullptr, nullptr, &target, &from, nullptr, HALFTONE), FALSE);
    EXPECT_THAT(rendLog(), IsEmpty());
    EXPECT_THAT(debug.texts(), ElementsAre("DrvStretchBlt\n"));
    EXPECT_FALSE(engine.called("EngStretchBlt"));
}

TEST_F(Stretch, the_engine_gets_everything_but_the_mode) {
    state().configuration.raster = 0;
    state().configuration.processMode = kModeRelief;
    COLORADJUSTMENT adjustment{};
    adjustment.caFlags = 1;
    adjustment.caRedGamma = 0x2710;
    adjustment.caGreenGamma = 0x2711;
    adjustment.caBlueGamma = 0x2712;
    mask.pvBits = &mask;
    EXPECT_EQ(DrvStretchBlt(pso, &source, &mask, &clip, &translation, &adjustment, &brushOrigin, &target, &from, &maskOrigin, HALFTONE),
              TRUE);
    EXPECT_THAT(engine.arguments,
                ElementsAre(pso, &source, &mask, &clip, &translation, &adjustment, &brushOrigin, &target, &from, &maskOrigin));
    EXPECT_EQ(engine.lastNumber, ULONG{COLORONCOLOR});
    std::string head = withPointer("DrvStretchBlt, iMode=4, psoDst={}, psoSrc=", pso);
    head = withPointer(head + "{}, psoMask=", &source);
    head = withPointer(withPointer(head + "{}, prclDest=", &mask) + "{}", &target);
    EXPECT_THAT(
        rendLog(),
        ElementsAre(head, withPointer("psoDst, cjBits=1280, lDelta=16, sizlBitmap.cx=100, sizlBitmap.cy=80, pvBits={}", pso->pvBits),
                    "psoSrc, cjBits=640, lDelta=32, sizlBitmap.cx=30, sizlBitmap.cy=20, pvBits=0", withPointer("psoMask->pvBits={}", &mask),
                    "left=1, top=2, right=31, bottom=22", "left=3, top=4, right=33, bottom=24",
                    withPointer("pca={}, caRedGamma=2710, caGreenGamma=2711, caBlueGamma=2712, caFlags=1", &adjustment),
                    "DrvStretchBlt finished"));
    EXPECT_THAT(debug.texts(), ElementsAre("DrvStretchBlt\n", "DrvStretchBlt finished\n"));
    engine.result = FALSE;
    EXPECT_EQ(DrvStretchBlt(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 1), FALSE);
}

TEST_F(Stretch, modes_without_raster_process) {
    static const struct {
        WORD process;
        ULONG mode;
        const char* line;
    } modes[] = {{kModeStandard, HALFTONE, "DrvStretchBlt, colAdjustment"},
                 {kModeStamp, HALFTONE, "DrvStretchBlt, colAdjustment"},
                 {kModeColourStamp, COLORONCOLOR, nullptr},
                 {kModeRelief, COLORONCOLOR, nullptr},
                 {kModeLayer, COLORONCOLOR, nullptr},
                 {kModeTest1, COLORONCOLOR, "!!! DrvStretchBlt, PROCESSMODE_VAL_TEST_1"},
                 {kModeTest2, HALFTONE, "!!! DrvStretchBlt, PROCESSMODE_VAL_TEST_2"},
                 {kModeTest3, HALFTONE, "DrvStretchBlt, colAdjustment"},
                 {kModeTest7, HALFTONE, "DrvStretchBlt, colAdjustment"}};
    ConfigurationRecord record{};
    for (const auto& entry : modes) {
        clearLogs();
        record.processMode = entry.process;
        EXPECT_EQ(chooseStretchMode(record, BMF_1BPP, BLACKONWHITE), entry.mode) << entry.process;
        EXPECT_EQ(rendLog(), entry.line == nullptr ? std::vector<std::string>() : std::vector<std::string>{entry.line}) << entry.process;
    }
}

TEST_F(Stretch, the_raster_process_spares_sources_that_are_rastered) {
    ConfigurationRecord record{};
    record.raster = 1;
    record.processMode = kModeRelief;  // does not matter then
    EXPECT_EQ(chooseStretchMode(record, BMF_1BPP, 2), ULONG{COLORONCOLOR});
    EXPECT_THAT(rendLog(), ElementsAre("DrvStretchBlt, raster process, iMode=2", "Source image already ratered skip further rastering"));
    for (const ULONG format : {ULONG{BMF_8BPP}, ULONG{BMF_24BPP}, ULONG{0}}) {
        clearLogs();
        EXPECT_EQ(chooseStretchMode(record, format, 3), ULONG{HALFTONE});
        EXPECT_THAT(rendLog(), ElementsAre("DrvStretchBlt, raster process, iMode=3", "Source image will be rastered"));
    }
}

TEST_F(Stretch, a_debug_switch_rasters_everything) {
    const WString ini = logState().baseFolder + TEXT("\\mvDebug.ini");
    ConfigurationRecord record{};
    record.raster = 1;
    static const struct {
        const WCHAR* value;
        ULONG mode;
    } switches[] = {{TEXT("1"), HALFTONE}, {TEXT("0"), COLORONCOLOR}, {TEXT("-5"), COLORONCOLOR}};
    for (const auto& entry : switches) {
        WritePrivateProfileStringW(TEXT("Debug"), TEXT("Kx2898"), entry.value, ini.c_str());
        clearLogs();
        EXPECT_EQ(chooseStretchMode(record, BMF_1BPP, 2), entry.mode) << toUtf8(viewOf(entry.value));
    }
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("Kx2898"), TEXT("1"), ini.c_str());
    clearLogs();
    chooseStretchMode(record, BMF_1BPP, 2);
    EXPECT_THAT(rendLog(), ElementsAre("DrvStretchBlt, raster process, iMode=2"));
}

}  // namespace
}  // namespace morvil::test
