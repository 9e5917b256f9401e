// The lines of "morvil trace": below each call of the driver what it told of its device and asked of the engine's services, with
// arguments and results; nothing of what the engine and the trace itself ask of them.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <regex>

#include "engine/Pixels.h"
#include "support/MetafileBuilder.h"
#include "tool/CallsView.h"
#include "tool/PrintFixture.h"
#include "trace/DeviceText.h"

namespace morvil::tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A driver that does in DrvEnableSurface what the test wants, and has nothing else.
class CallsViewTest : public testing::Test {
  protected:
    ~CallsViewTest() override {
        s_work = {};
        engine::resetEngineState();
    }
    // The lines below the call's own.
    std::vector<std::string> linesOf(std::function<void()> work) {
        s_work = std::move(work);
        std::vector<std::string> lines;
        CallsView view([&](const std::string& line) { lines.push_back(line); });
        const trace::Recorder recorder(&enableDriver, view.listener());
        DRVENABLEDATA data{};
        EXPECT_NE(trace::Recorder::driver()(0x30100, sizeof(data), &data), FALSE);
        EXPECT_EQ(data.c, 1U);
        reinterpret_cast<HSURF (*)(DHPDEV)>(reinterpret_cast<void (*)()>(data.pdrvfn[0].pfn))(nullptr);
        EXPECT_FALSE(lines.empty());
        if (lines.empty()) return lines;
        EXPECT_EQ(lines.front(), "DrvEnableSurface instance 0 = none");
        lines.erase(lines.begin());
        return lines;
    }
    const HDEV m_device = engine::registerDevice({});

  private:
    static HSURF enableSurface(DHPDEV /*instance*/) {
        s_work();
        return nullptr;
    }
    static BOOL enableDriver(ULONG /*version*/, ULONG /*size*/, DRVENABLEDATA* data) {
        static DRVFN table[] = {{INDEX_DrvEnableSurface, reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(&enableSurface))}};
        *data = {.iDriverVersion = 0x30100, .c = 1, .pdrvfn = table};
        return TRUE;
    }
    static inline std::function<void()> s_work;
};

HSURF surfaceOf(HBITMAP bitmap) { return reinterpret_cast<HSURF>(bitmap); }

TEST_F(CallsViewTest, shows_the_life_of_a_surface) {
    const auto lines = linesOf([&] {
        const HSURF surface = surfaceOf(EngCreateBitmap({10, 20}, 12, BMF_8BPP, BMF_TOPDOWN, nullptr));
        EngAssociateSurface(surface, m_device, HOOK_BITBLT | HOOK_TEXTOUT);
        EngMarkBandingSurface(surface);
        SURFOBJ* const locked = EngLockSurface(surface);
        EngCheckAbort(locked);
        EngUnlockSurface(locked);
        EngDeleteSurface(surface);
    });
    const std::vector<std::string> expected{
        "  EngCreateBitmap size 10x20 row bytes 12 format 3 flags 0x1 = surface 1",
        "  EngAssociateSurface surface 1 device 1 hooks 0x9 = 1",
        "  EngMarkBandingSurface surface 1 = 1",
        "  EngLockSurface surface 1 = surface 1",
        "  EngCheckAbort surface 1 = 0",
        "  EngUnlockSurface surface 1",
        "  EngDeleteSurface surface 1 = 1",
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(CallsViewTest, shows_what_the_engine_refuses) {
    engine::engineState().maximumSurfaceBytes = 1000;
    const auto lines = linesOf([&] {
        EngCreateBitmap({100, 100}, 0, BMF_8BPP, 0, nullptr);
        EngAssociateSurface(nullptr, m_device, 0);
        const HSURF surface = surfaceOf(EngCreateBitmap({10, 10}, 0, BMF_8BPP, 0, nullptr));
        SURFOBJ* const locked = EngLockSurface(surface);
        EngDeleteSurface(surface);
        EngUnlockSurface(locked);
        EngDeleteSurface(surface);
        EngLockSurface(surface);
        EngUnlockSurface(locked);
        EngCreatePalette(PAL_INDEXED, 0, nullptr, 0, 0, 0);
        EngDeletePalette(nullptr);
    });
    const std::vector<std::string> expected{
        "  EngCreateBitmap size 100x100 row bytes 0 format 3 flags 0x0 = none",
        "  EngAssociateSurface surface none device 1 hooks 0x0 = 0",
        "  EngCreateBitmap size 10x10 row bytes 0 format 3 flags 0x0 = surface 1",
        "  EngLockSurface surface 1 = surface 1",
        "  EngDeleteSurface surface 1 = 0",
        "  EngUnlockSurface surface 1",
        "  EngDeleteSurface surface 1 = 1",
        "  EngLockSurface surface 1 = none",
        "  EngUnlockSurface",
        "  EngCreatePalette mode 1 colours 0 red 0x0 green 0x0 blue 0x0 = none",
        "  EngDeletePalette palette none = 0",
    };
    EXPECT_EQ(lines, expected);
}

// A service that needs another one's work is one call all the same.
TEST_F(CallsViewTest, shows_transfers_and_texts) {
    const auto page =
        engine::makeSource({.width = 8, .height = 4, .bitsPerPixel = 8, .rowBytes = 8, .bits = std::vector<std::uint8_t>(32)});
    const auto picture =
        engine::makeSource({.width = 2, .height = 2, .bitsPerPixel = 8, .rowBytes = 4, .bits = std::vector<std::uint8_t>(8)});
    engine::EngineXlate translation = engine::makeTranslation(*page, *picture, 0, 0xFFFFFF);
    engine::EngineBrush brush = engine::realizeBrush(*page, {.kind = engine::BrushKind::Solid, .colour = 0}, false);
    engine::EngineClip clip = engine::makeClip(engine::Region(RECTL{1, 1, 7, 3}), {0, 0, 8, 4}, {0, 0, 8, 4});
    engine::EngineText text = engine::makeText({});
    RECTL area{0, 0, 2, 2};
    RECTL half{0, 0, 1, 1};
    POINTL corner{0, 1};
    const auto lines = linesOf([&] {
        EngCopyBits(page.get(), picture.get(), &clip, &translation, &area, &corner);
        EngBitBlt(page.get(), nullptr, nullptr, nullptr, nullptr, &area, nullptr, nullptr, &brush, &corner, 0xF0F0);
        EngStretchBlt(page.get(), picture.get(), nullptr, nullptr, nullptr, nullptr, nullptr, &area, &half, nullptr, COLORONCOLOR);
        EngTextOut(page.get(), &text, nullptr, nullptr, nullptr, &half, &brush, nullptr, nullptr, 0xD0D);
    });
    const std::vector<std::string> expected{
        "  EngCopyBits target surface 1 source surface 2 clip {rectangle (1,1)-(7,3)} translation {table of 256 flags 0x1} area "
        "{(0,0)-(2,2)} from {(0,1)} = 1",
        "  EngBitBlt target surface 1 area {(0,0)-(2,2)} brush {index 0} brush origin {(0,1)} rop 0xF0F0 = 1",
        "  EngStretchBlt target surface 1 source surface 2 area {(0,0)-(2,2)} source area {(0,0)-(1,1)} mode 3 = 1",
        "  EngTextOut target surface 1 text {none (0,0)-(0,0)} opaque area {(0,0)-(1,1)} brush {index 0} mix 0xD0D = 1",
    };
    EXPECT_EQ(lines, expected);
}

// Drivers read a path piece by piece, several times.
TEST_F(CallsViewTest, sums_questions) {
    engine::Path figures;
    for (LONG i = 0; i < 3; ++i) {
        figures.moveTo({0, i});
        figures.lineTo({16, i});
    }
    engine::EnginePath path = engine::makePath(figures);
    engine::EngineBrush brush{};
    brush.rgb = 0x0000FF;
    const auto lines = linesOf([&] {
        for (int pass = 0; pass < 2; ++pass) {
            PATHOBJ_vEnumStart(&path);
            PATHDATA data{};
            while (PATHOBJ_bEnum(&path, &data) != FALSE) continue;
        }
        BRUSHOBJ_ulGetBrushColor(&brush);
        BRUSHOBJ_ulGetBrushColor(nullptr);
        brush.iSolidColor = 0x100;
        BRUSHOBJ_ulGetBrushColor(&brush);
        brush.iSolidColor = 255;
        ULONG entry = 0;
        XLATEOBJ_cGetPalette(nullptr, XO_SRCPALETTE, 1, &entry);
        EngFillPath(nullptr, &path, nullptr, &brush, nullptr, 0xD0D, FP_WINDINGMODE);
        EngFillPath(nullptr, &path, nullptr, &brush, nullptr, 0xD0D, FP_WINDINGMODE);
    });
    const std::string fill = "  EngFillPath path {3 segments} brush {index 255} mix 0xD0D options 0x2 = 0";
    const std::vector<std::string> expected{
        "  PATHOBJ_vEnumStart path {3 segments} (2 times)",
        "  PATHOBJ_bEnum path {3 segments} = 1 (4 times)",
        "  PATHOBJ_bEnum path {3 segments} = 0 (2 times)",
        "  BRUSHOBJ_ulGetBrushColor brush {index 0} = (255,0,0)",
        "  BRUSHOBJ_ulGetBrushColor = none",
        "  BRUSHOBJ_ulGetBrushColor brush {pixel 0x100} = (255,0,0)",
        "  XLATEOBJ_cGetPalette kind 1 most 1 = 0",
        fill,
        fill,
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(CallsViewTest, is_silent_outside_of_the_driver) {
    std::vector<std::string> lines;
    {
        CallsView view([&](const std::string& line) { lines.push_back(line); });
        EngDeleteSurface(surfaceOf(EngCreateBitmap({1, 1}, 0, BMF_8BPP, 0, nullptr)));
        EXPECT_TRUE(engine::engineState().serviceTap);
    }
    EXPECT_FALSE(engine::engineState().serviceTap) << "services tell nobody any more";
    EXPECT_THAT(lines, IsEmpty());
}

TEST(CallLines, are_indented_below_the_call_that_they_happened_in) {
    std::vector<std::string> lines;
    trace::CallLines calls([&](const std::string& line) { lines.push_back(line); });
    calls.callBegins();
    calls.addSummed("asked");
    calls.callBegins();
    calls.addSummed("asked");
    calls.callEnds("inner");
    calls.addSummed("asked");
    EXPECT_THAT(lines, IsEmpty());
    calls.callEnds("outer");
    calls.add("nowhere");
    calls.callBegins();
    calls.callEnds("next");
    EXPECT_THAT(lines, ElementsAre("outer", "  asked (2 times)", "  inner", "    asked", "next"));
}

TEST(DeviceText, tells_what_is_not_zero) {
    GDIINFO caps{};
    EXPECT_THAT(trace::toLines(caps), ElementsAre("GDIINFO"));
    caps.ulVersion = 0x500;
    caps.ulHorzRes = 300;
    caps.ulNumColors = 0xFFFFFFFF;
    caps.flRaster = 0x10;
    caps.denStyleStep = -2;
    caps.ptlPhysOffset = {0, 5};
    caps.szlPhysSize = {300, 200};
    caps.ciDevice.Green = {1, 2, 0};
    caps.ciDevice.BlueGamma = 10000;
    EXPECT_THAT(trace::toLines(caps), ElementsAre("GDIINFO ulVersion 0x500 ulHorzRes 300 ulNumColors 0xFFFFFFFF flRaster 0x10 denStyleStep "
                                                  "-2 ptlPhysOffset (0,5) szlPhysSize 300x200",
                                                  "GDIINFO ciDevice Green 1,2,0 BlueGamma 10000"));
    DEVINFO info{};
    EXPECT_EQ(trace::toText(info, "none"), "DEVINFO");
    info.flGraphicsCaps = 0x2C4;
    info.lfAnsiFixFont.lfHeight = -12;
    std::fill(std::begin(info.lfAnsiFixFont.lfFaceName), std::end(info.lfAnsiFixFont.lfFaceName), WCHAR{'x'});
    info.cxDither = 8;
    info.hpalDefault = reinterpret_cast<HPALETTE>(std::uintptr_t{4});
    EXPECT_EQ(trace::toText(info, "palette 1"), "DEVINFO flGraphicsCaps 0x2C4 lfAnsiFixFont {\"" + std::string(32, 'x') +
                                                    "\" height -12 weight 0} cxDither 8 hpalDefault palette 1");
}

// ---- whole documents ------------------------------------------------------------------------------------------------------

class TracedPage : public PrintFixture {
  protected:
    // A thin black line and a wide one, 100 x 100 mm.
    [[nodiscard]] std::string drawing() const {
        test::MetafileBuilder builder;
        builder.add(engine::emr::kPOLYLINE, test::Bytes().all32({0, 0, 99, 99, 2, 100, 100, 300, 100}));
        builder.add(engine::emr::kCREATEPEN, {1, 0, 50, 50, 0x0000FF}).add(engine::emr::kSELECTOBJECT, {1});
        builder.add(engine::emr::kPOLYLINE, test::Bytes().all32({0, 0, 99, 99, 2, 100, 500, 300, 500}));
        const std::vector<std::uint8_t> file = builder.file();
        const auto path = m_home.folder() / "page.emf";
        std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
        return path.string();
    }
    // The lines of the document; lists of more than two points are cut.
    [[nodiscard]] std::vector<std::string> lines(const std::vector<std::string>& settings) const {
        std::vector<std::string> arguments{"trace", "--quiet", "--spool", m_spool.string(), "--paper", "100x100"};
        for (const std::string& setting : settings) arguments.insert(arguments.end(), {"--set", setting});
        arguments.push_back(drawing());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, kDone) << outcome.err;
        std::vector<std::string> lines = outcome.lines();
        for (std::string& line : lines) line = std::regex_replace(line, std::regex(R"(\[[-.,0-9]+ [-.,0-9]+ [-.,0-9 ]+\])"), "[...]");
        return lines;
    }
    // Those from the call to `first` up to the call to `last`.
    static std::vector<std::string> between(const std::vector<std::string>& lines, const std::string& first, const std::string& last) {
        const auto call = [&](const std::string& name) {
            return std::find_if(lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(name + " "); });
        };
        return {call(first), call(last)};
    }
};

TEST_F(TracedPage, tells_a_stroke_handed_back) {
    const std::string black = "PrinterDriver.Configuration.Print.Process.Colors.0@";
    const std::vector<std::string> expected{
        "DrvStrokePath mix 0xD0D target {page 1969x1969 1 bit} path {1 segment: figure [196.875,196.875 590.6875,196.875]} line {cosmetic "
        "width 1} brush {index 0 rgb (0,0,0)} "
        "clip {trivial (0,0)-(1969,1969)} brush origin {(0,0)} = 0, handed back",
        "  EngCheckAbort surface 1 = 0",
        "  BRUSHOBJ_ulGetBrushColor brush {index 0} = (0,0,0)",
        "DrvFillPath mix 0xD0D options 0x2 target {page 1969x1969 1 bit} path {92 segments: figure closed [...]} brush {index 0 rgb "
        "(255,0,0)} clip {trivial (0,0)-(1969,1969)} "
        "brush origin {(0,0)} = 1",
        "  EngCheckAbort surface 1 = 0",
        "  EngFillPath target surface 1 path {92 segments} clip {trivial (0,0)-(1969,1969)} brush {index 0} brush origin {(0,0)} mix 0xD0D "
        "options 0x2 = 1",
    };
    EXPECT_EQ(between(lines({black + "red=0", black + "green=0", black + "blue=0", black + "mode=1"}), "DrvStrokePath", "DrvSendPage"),
              expected);
}

TEST_F(TracedPage, tells_the_device_and_its_surface) {
    const std::vector<std::string> expected{
        "DrvEnablePDEV patterns 6 caps bytes 320 info bytes 312 device mode [2008 bytes, private 1788, paper 256 1000x1000, copies 1] log "
        "address [none] device [\"Morvil\"] "
        "= instance 1",
        "  EngCreatePalette mode 1 colours 2 red 0x0 green 0x0 blue 0x0 = palette 1",
        "  GDIINFO ulVersion 0x500 ulTechnology 2 ulHorzSize 100 ulVertSize 100 ulHorzRes 1969 ulVertRes 1969 cBitsPixel 1 cPlanes 1 "
        "ulNumColors 2 ulLogPixelsX 500 "
        "ulLogPixelsY 500 ulAspectX 500 ulAspectY 500 ulAspectXY 708 ulNumPalReg 2 ulPanningHorzRes 1969 ulPanningVertRes 1969 flHTFlags "
        "0x2 xStyleStep 1 yStyleStep 1 "
        "denStyleStep 20 szlPhysSize 1969x1969",
        "  GDIINFO ciDevice Red 6380,3350,0 Green 2345,6075,0 Blue 1410,932,0 Cyan 2000,2450,65534 Magenta 5210,2100,0 Yellow 4750,5100,0 "
        "AlignmentWhite 3127,3290,0 "
        "RedGamma 12500 GreenGamma 12500 BlueGamma 12500 MagentaInCyanDye 585 YellowInCyanDye 120 MagentaInYellowDye 10000",
        "  DEVINFO flGraphicsCaps 0x2C4 iDitherFormat 3 cxDither 8 cyDither 8 hpalDefault palette 1",
        "DrvCompletePDEV instance 1",
        "DrvEnableSurface instance 1 = surface",
        "  EngCreateBitmap size 1969x1969 row bytes 248 format 1 flags 0x3 = surface 1",
        "  EngAssociateSurface surface 1 device 1 hooks 0x4EB = 1",
    };
    EXPECT_EQ(between(lines({}), "DrvEnablePDEV", "DrvStartDoc"), expected);
}

TEST_F(TracedPage, tells_how_everything_goes) {
    const std::vector<std::string> all = lines({});
    const std::vector<std::string> expected{
        "DrvDisableSurface instance 1",
        "  EngDeleteSurface surface 1 = 1",
        "DrvDisablePDEV instance 1",
        "  EngDeletePalette palette 1 = 1",
        "DrvDisableDriver",
    };
    ASSERT_GE(all.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(all.end() - static_cast<std::ptrdiff_t>(expected.size()), all.end()), expected);
}

}  // namespace
}  // namespace morvil::tool
