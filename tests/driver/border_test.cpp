// The border towards the engine under bad input: null objects at every hook, device modes of every length, damaged instances,
// services that refuse, and documents that are aborted between any two calls. Nothing crashes, nothing is left behind.
#include <algorithm>
#include <cstring>
#include <utility>

#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"

namespace morvil::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Border : public DriverTest {};

TEST_F(Border, every_hook_survives_null_for_everything) {
    for (SURFOBJ* const surface : {static_cast<SURFOBJ*>(nullptr), startPage()}) {
        SetLastError(0);
        DrvStrokePath(surface, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        DrvFillPath(surface, nullptr, nullptr, nullptr, nullptr, 0, 0);
        DrvStrokeAndFillPath(surface, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0);
        DrvBitBlt(surface, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        DrvStretchBlt(surface, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        DrvCopyBits(surface, nullptr, nullptr, nullptr, nullptr, nullptr);
        DrvTextOut(surface, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        EXPECT_EQ(DrvEscape(surface, 8, 0, nullptr, 0, nullptr), 0U);
        EXPECT_EQ(DrvEscape(surface, 17, 4, nullptr, 4, nullptr), 0U);
        EXPECT_EQ(DrvEscape(surface, 9100, 100, nullptr, 0, nullptr), 0U);
        EXPECT_EQ(DrvEscape(surface, 9101, 100, nullptr, 0, nullptr), 0U);
        DrvStartBanding(surface, nullptr);
        DrvNextBand(surface, nullptr);
    }
    EXPECT_EQ(DrvGetGlyphMode(nullptr, nullptr), 1U);
    EXPECT_EQ(DrvDitherColor(nullptr, 0, 0, nullptr), 2U);
    EXPECT_EQ(DrvStartDoc(nullptr, nullptr, 0), FALSE);
    EXPECT_EQ(DrvStartPage(nullptr), FALSE);
    EXPECT_EQ(DrvSendPage(nullptr), FALSE);
    EXPECT_EQ(DrvEndDoc(nullptr, 0), FALSE);
    EXPECT_EQ(DrvResetPDEV(nullptr, nullptr), FALSE);
    EXPECT_EQ(DrvEnableSurface(nullptr), nullptr);
    DrvDisableSurface(nullptr);
    DrvCompletePDEV(nullptr, nullptr);
    DrvDisablePDEV(nullptr);
}

TEST_F(Border, an_instance_without_buffers_is_one) {
    pdev = pdevOf(DrvEnablePDEV(nullptr, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer));
    EXPECT_NE(pdev, nullptr);
}

TEST_F(Border, a_printer_handle_that_is_none_gives_no_instance) {
    for (HANDLE const handle : {HANDLE{nullptr}, INVALID_HANDLE_VALUE, reinterpret_cast<HANDLE>(std::uintptr_t{0x1234})}) {
        clearLogs();
        EXPECT_EQ(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, handle), nullptr);
        EXPECT_THAT(morvilLog(), ElementsAre("!!! DrvEnablePDEV pwszDataFile"));
    }
}

// A device mode brings its configuration when its private part is whole; the block ends exactly where it says.
TEST_F(Border, device_modes_of_every_length) {
    ConfigurationRecord stored = configuration();
    stored.resolution = 500;
    ASSERT_TRUE(CPrinterConfig().setConfig(TEXT(""), stored));
    configuration().resolution = 254;
    for (unsigned extra = 0; extra <= 2000; ++extra) {
        std::vector<BYTE> block(sizeof(DEVMODEW) + extra);
        devmode.dm.dmDriverExtra = static_cast<WORD>(extra);
        std::memcpy(block.data(), &devmode, std::min(block.size(), sizeof(devmode)));
        pdev = pdevOf(DrvEnablePDEV(reinterpret_cast<DEVMODEW*>(block.data()), nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer));
        ASSERT_NE(pdev, nullptr) << extra;
        ASSERT_EQ(pdev->configuration().resolution, extra >= 1788 ? 254 : 500) << extra;
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    }
}

// What each call answers without an instance, and what it says then: of log_morvil.txt, or of log_rend.txt for drawing.
struct RefusedCall {
    const char* name;
    const char* line;
    std::function<bool()> answers;
};

TEST_F(Border, a_damaged_instance_is_refused_by_every_call) {
    FakePath path({{PD_BEGINSUBPATH | PD_ENDSUBPATH, {fixedPoint(1, 2), fixedPoint(30, 40)}}});
    POINTL origin{};
    startPage();
    state().configuration.size.pixelHeight = 1000;  // no band is the last
    const RefusedCall calls[] = {
        {"DrvStartDoc", "!!! DrvStartDoc Invalid pPDev", [&] { return DrvStartDoc(pso, nullptr, 0) != FALSE; }},
        {"DrvStartPage", "!!! Invalid PPDEV Handle DrvStartPage", [&] { return DrvStartPage(pso) != FALSE; }},
        {"DrvNextBand", "!!! DrvSendPage Invalid PPDEV Handle DrvStartPage", [&] { return DrvNextBand(pso, &origin) != FALSE; }},
        {"DrvSendPage", "!!! DrvSendPage Invalid PPDEV Handle DrvStartPage", [&] { return DrvSendPage(pso) != FALSE; }},
        {"DrvEndDoc", "!!! DrvEndDoc Invalid pPDev", [&] { return DrvEndDoc(pso, 0) != FALSE; }},
        {"DrvEscape", "!!! DrvEscape invalid PDEV", [&] { return DrvEscape(pso, 8, 0, nullptr, 0, nullptr) != 0; }},
        {"DrvEnableSurface", nullptr, [&] { return DrvEnableSurface(handleOf(pdev)) != nullptr; }},
        {"DrvStrokePath", "!!! Invalid PPDEV Handle DrvStartPage", [&] { return DrvStrokePath(pso, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0) != FALSE; }},
        {"DrvFillPath", "!!! DrvFillPath, pPDev invalid", [&] { return DrvFillPath(pso, &path, nullptr, nullptr, nullptr, 0, 0) != FALSE; }},
        {"DrvCopyBits", "!!! DrvCopyBits, pPDev invalid", [&] { return DrvCopyBits(pso, nullptr, nullptr, nullptr, nullptr, nullptr) != FALSE; }},
        {"DrvBitBlt", nullptr, [&] { return DrvBitBlt(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0) != FALSE; }},
        {"DrvStretchBlt", nullptr, [&] { return DrvStretchBlt(pso, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 3) != FALSE; }}};
    auto* const bytes = reinterpret_cast<std::uint8_t*>(pdev);
    for (const std::size_t offset : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 2116U, 2117U, 2118U, 2119U}) {  // magic, size, trailer
        bytes[offset] ^= 0x55;
        for (const RefusedCall& call : calls) {
            SCOPED_TRACE(std::string(call.name) + ", byte " + std::to_string(offset));
            clearLogs();
            SetLastError(0xdeadbeef);
            EXPECT_FALSE(call.answers());
            EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
            std::vector<std::string> lines = morvilLog();
            for (const std::string& line : rendLog()) lines.push_back(line);
            if (call.line != nullptr) {
                EXPECT_THAT(lines, Contains(call.line));
            } else {
                EXPECT_THAT(lines, Not(Contains(HasSubstr("!!!"))));
            }
        }
        DrvCompletePDEV(handleOf(pdev), reinterpret_cast<HDEV>(1));
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        bytes[offset] ^= 0x55;
    }
    EXPECT_EQ(pdev->hdev, reinterpret_cast<HDEV>(0x5150));
    EXPECT_EQ(engine.surfaces.size(), 1U);
    for (const char* const service : {"EngFillPath", "EngCopyBits", "EngBitBlt", "EngStretchBlt"}) EXPECT_FALSE(engine.called(service)) << service;
    EXPECT_EQ(DrvSendPage(pso), TRUE) << "it is whole again";
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsf"));
}

TEST_F(Border, reset_refuses_a_damaged_instance_on_either_side) {
    enable();
    PDEV* const first = pdev;
    enable();
    for (PDEV* const damaged : {first, pdev}) {
        damaged->trailer[0] = 'p';
        SetLastError(0);
        EXPECT_EQ(DrvResetPDEV(handleOf(first), handleOf(pdev)), FALSE);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(morvilLog().back(), "!!! DrvResetPDEV, ERROR_INVALID_PARAMETER");
        damaged->trailer[0] = 'P';
    }
    EXPECT_EQ(DrvResetPDEV(handleOf(first), handleOf(pdev)), TRUE);
    DrvDisablePDEV(handleOf(first));
}

// Each record of exactly the bytes that it is said to have.
TEST_F(Border, records_of_every_length_are_filled_as_far_as_they_go) {
    const auto filled = [&](std::size_t capsBytes, std::size_t infoBytes) {
        std::pair<std::vector<BYTE>, std::vector<BYTE>> records{std::vector<BYTE>(capsBytes, 0xAA), std::vector<BYTE>(infoBytes, 0xAA)};
        const DHPDEV instance = DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, static_cast<ULONG>(capsBytes), reinterpret_cast<ULONG*>(records.first.data()),
                                              static_cast<ULONG>(infoBytes), reinterpret_cast<DEVINFO*>(records.second.data()), nullptr, nullptr, printer);
        EXPECT_NE(instance, nullptr);
        if (infoBytes >= offsetof(DEVINFO, flGraphicsCaps2)) std::memset(records.second.data() + offsetof(DEVINFO, hpalDefault), 0, sizeof(HPALETTE));  // each its own
        DrvDisablePDEV(instance);
        return records;
    };
    auto [caps, info] = filled(sizeof(GDIINFO), sizeof(DEVINFO));
    caps.resize(sizeof(GDIINFO) + 8, 0xAA);
    info.resize(sizeof(DEVINFO) + 8, 0xAA);
    for (std::size_t bytes = 0; bytes <= sizeof(GDIINFO) + 8; bytes += bytes < 16 ? 1 : 4) {
        const auto [shortCaps, noInfo] = filled(bytes, 0);
        EXPECT_TRUE(std::equal(shortCaps.begin(), shortCaps.end(), caps.begin())) << bytes;
    }
    for (std::size_t bytes = 0; bytes <= sizeof(DEVINFO) + 8; bytes += bytes < 16 ? 1 : 4) {
        if (bytes > offsetof(DEVINFO, hpalDefault) && bytes < offsetof(DEVINFO, flGraphicsCaps2)) continue;  // half a handle
        const auto [noCaps, shortInfo] = filled(0, bytes);
        EXPECT_TRUE(std::equal(shortInfo.begin(), shortInfo.end(), info.begin())) << bytes;
    }
}

// No bits to be had, whatever is to be done with them.
TEST_F(Border, a_surface_without_bits_is_survived_in_every_mode) {
    for (WORD mode = kModeStandard; mode <= kModeTest7; mode = static_cast<WORD>(mode + 1000)) {
        SCOPED_TRACE(mode);
        configuration().processMode = mode;
        configuration().flags = MV_FL_IMAGEOP_COLORADJUSTMENT | MV_FL_IMAGEOP_FLIP_HORIZONTAL | kHalftoningBit;
        configuration().dumpBitmaps = 1;
        enable();
        enableSurface();
        DrvStartDoc(pso, nullptr, 1);
        DrvStartPage(pso);
        pso->pvBits = pso->pvScan0 = nullptr;
        pso->cjBits = 0;
        EXPECT_EQ(DrvSendPage(pso), TRUE);
        EXPECT_EQ(DrvEndDoc(pso, 0), TRUE);
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
    }
}

// The spooler may close a printer under a document.
TEST_F(Border, a_printer_that_is_closed_meanwhile_prints_without_its_lines) {
    enableSurface();
    ClosePrinter(std::exchange(printer, nullptr));
    clearLogs();
    WString title = TEXT("Plan");
    EXPECT_EQ(DrvStartDoc(pso, title.data(), 1), TRUE);
    EXPECT_THAT(morvilLog(), Not(Contains(HasSubstr("PrinterName="))));
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsf"));
}

struct RefusedService {
    const char* line;
    void (*refuse)(FakeEngine&);
};

TEST_F(Border, a_refused_service_leaves_nothing) {
    const RefusedService services[] = {{"!!! Invalid ColorTable", [](FakeEngine& fake) { fake.grantsPalettes = false; }},
                                       {"!!! DrvEnableSurface Fehler bei EngCreateBitmap", [](FakeEngine& fake) { fake.grantsBitmap = [](const BitmapRequest&) { return false; }; }},
                                       {"DrvEnableSurface, Error during EngMarkBandingSurface", [](FakeEngine& fake) { fake.marksBanding = false; }},
                                       {"!!! DrvEnableSurface Fehler bei EngAssociateSurface", [](FakeEngine& fake) { fake.associates = false; }},
                                       {"!!! FilleSurface Fehler bei EngLockSurface", [](FakeEngine& fake) { fake.locks = false; }}};
    configuration().flags |= MV_FL_BITMAP_BANDING;
    for (const RefusedService& service : services) {
        SCOPED_TRACE(service.line);
        service.refuse(engine);
        clearLogs();
        DEVINFO info{};
        pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, sizeof(info), &info, nullptr, nullptr, printer));
        if (pdev != nullptr) {
            engine.dhpdev = handleOf(pdev);
            const HSURF surface = DrvEnableSurface(handleOf(pdev));
            if (surface != nullptr) {
                SURFOBJ* const page = &engine.surfaces.at(surface)->object;
                EXPECT_EQ(DrvStartDoc(page, nullptr, 1), TRUE);
                DrvStartPage(page);
                DrvEndDoc(page, ED_ABORTDOC);
            }
            DrvDisableSurface(handleOf(pdev));
            DrvDisablePDEV(handleOf(pdev));
            pdev = nullptr;
        }
        EXPECT_THAT(morvilLog(), Contains(service.line));
        EXPECT_TRUE(engine.surfaces.empty());
        EXPECT_EQ(engine.livePalettes, 0U);
        engine.grantsPalettes = engine.marksBanding = engine.associates = engine.locks = true;
        engine.grantsBitmap = {};
    }
}

// Both ways that an abort shows: the flag of DrvEndDoc, and the engine's own answer, which every later call meets. Two pages, whole
// or in two bands each.
struct Abort {
    bool engineTells;
    bool banded;
};

class Aborted : public DriverTest, public testing::WithParamInterface<Abort> {
  protected:
    using Step = std::function<void()>;

    void makeInstance() {
        pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer));
        engine.dhpdev = handleOf(pdev);
    }
    void makeSurface() {
        const WORD rows = pdev->configuration().size.pixelHeight;
        if (GetParam().banded) pdev->configuration().size.pixelHeight = rows / 2;
        pso = &engine.surfaces.at(DrvEnableSurface(handleOf(pdev)))->object;
        pdev->configuration().size.pixelHeight = rows;
    }
    std::vector<Step> pageSteps() {
        const Step stroke = [this] { DrvStrokePath(pso, &m_path, nullptr, nullptr, nullptr, nullptr, nullptr, 0); };
        const Step start = [this] { DrvStartPage(pso); };
        const Step band = [this] { DrvNextBand(pso, &m_origin); };
        if (!GetParam().banded) return {start, stroke, [this] { DrvSendPage(pso); }};
        return {start, [this] { DrvStartBanding(pso, &m_origin); }, stroke, band, stroke, band};
    }
    void giveBack() {
        engine.aborted = false;
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
        resetState();
    }

    FakePath m_path{{{PD_BEGINSUBPATH | PD_ENDSUBPATH, {fixedPoint(1, 2), fixedPoint(30, 40)}}}};
    POINTL m_origin{};
    WString m_title = TEXT("Plan");
};

TEST_P(Aborted, between_any_two_calls_leaves_no_unfinished_file) {
    if (GetParam().banded) configuration().flags |= MV_FL_BITMAP_BANDING;
    std::vector<Step> steps{[this] { makeInstance(); }, [this] { DrvCompletePDEV(handleOf(pdev), nullptr); }, [this] { makeSurface(); },
                            [this] { DrvStartDoc(pso, m_title.data(), 1); }};
    const std::vector<Step> page = pageSteps();
    const std::size_t firstPage = steps.size() + page.size();  // steps after which it is a job of its own
    for (int i = 0; i < 2; ++i) steps.insert(steps.end(), page.begin(), page.end());
    for (std::size_t done = 1; done <= steps.size(); ++done) {
        SCOPED_TRACE(done);
        pso = nullptr;
        for (std::size_t i = 0; i < done; ++i) steps[i]();
        engine.aborted = GetParam().engineTells;
        for (std::size_t i = done; engine.aborted && pso != nullptr && i < steps.size(); ++i) steps[i]();  // an engine may still go on
        if (pso != nullptr) DrvEndDoc(pso, engine.aborted ? 0 : ED_ABORTDOC);
        giveBack();
        const std::size_t jobs = done < firstPage ? 0 : done < steps.size() ? 1 : 2;
        EXPECT_EQ(jobFileNames().size(), jobs) << testing::PrintToString(jobFileNames());
        for (const std::string& name : jobFileNames()) {
            EXPECT_TRUE(name.ends_with(".tsf")) << name;
            DeleteFileW((WString(CMvConfig().spoolFolder()) + TEXT("\\") + fromUtf8(name)).c_str());
        }
        EXPECT_TRUE(engine.surfaces.empty());
        EXPECT_EQ(engine.locked, 0U);
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, Aborted, testing::Values(Abort{false, false}, Abort{true, false}, Abort{false, true}, Abort{true, true}),
                         [](const testing::TestParamInfo<Abort>& tested) {
                             return std::string(tested.param.engineTells ? "told_by_the_engine" : "told_at_the_end") + (tested.param.banded ? "_in_bands" : "");
                         });

}  // namespace
}  // namespace morvil::test
