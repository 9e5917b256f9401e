// The border towards the engine under bad input: null objects at every hook, device modes of every length, damaged instances,
// services that refuse, and documents that are aborted between any two calls. Nothing crashes, nothing is left behind.
#include <cstring>

#include "config/CMvConfig.h"
#include "driver/DriverFixture.h"

namespace morvil::test {
namespace {

using testing::Contains;
using testing::IsEmpty;

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
        EXPECT_THAT(morvilLog(), Contains("!!! DrvEnablePDEV pwszDataFile"));
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

TEST_F(Border, a_damaged_instance_is_refused_by_every_call) {
    struct Damage {
        const char* name;
        std::size_t offset;
    };
    startPage();
    for (const Damage& damage : {Damage{"magic", 0}, Damage{"size", 4}, Damage{"trailer", sizeof(PDEV) - 1}}) {
        auto* const bytes = reinterpret_cast<std::uint8_t*>(pdev);
        bytes[damage.offset] ^= 0x55;
        SetLastError(0);
        EXPECT_EQ(DrvSendPage(pso), FALSE) << damage.name;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE) << damage.name;
        EXPECT_EQ(DrvStartPage(pso), FALSE) << damage.name;
        EXPECT_EQ(DrvStartDoc(pso, nullptr, 0), FALSE) << damage.name;
        EXPECT_EQ(DrvEndDoc(pso, 0), FALSE) << damage.name;
        EXPECT_EQ(DrvEscape(pso, 8, 0, nullptr, 0, nullptr), 0U) << damage.name;
        EXPECT_EQ(DrvEnableSurface(handleOf(pdev)), nullptr) << damage.name;
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        bytes[damage.offset] ^= 0x55;
    }
    EXPECT_EQ(DrvSendPage(pso), TRUE) << "it is whole again";
}

struct RefusedService {
    const char* name;
    void (*refuse)(FakeEngine&);
};

TEST_F(Border, a_refused_service_leaves_nothing) {
    const RefusedService services[] = {{"palette", [](FakeEngine& fake) { fake.grantsPalettes = false; }},
                                       {"bitmap", [](FakeEngine& fake) { fake.grantsBitmap = [](const BitmapRequest&) { return false; }; }},
                                       {"banding", [](FakeEngine& fake) { fake.marksBanding = false; }},
                                       {"association", [](FakeEngine& fake) { fake.associates = false; }},
                                       {"lock", [](FakeEngine& fake) { fake.locks = false; }}};
    configuration().flags |= MV_FL_BITMAP_BANDING;
    for (const RefusedService& service : services) {
        SCOPED_TRACE(service.name);
        service.refuse(engine);
        pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer));
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
        EXPECT_TRUE(engine.surfaces.empty());
        EXPECT_EQ(engine.livePalettes, 0U);
        engine.grantsPalettes = engine.marksBanding = engine.associates = engine.locks = true;
        engine.grantsBitmap = {};
    }
}

// Both ways that an abort shows: the flag of DrvEndDoc, and the engine's own answer, which every later call meets.
class Aborted : public DriverTest, public testing::WithParamInterface<bool> {};

TEST_P(Aborted, between_any_two_calls_leaves_no_unfinished_file) {
    const bool engineTells = GetParam();
    FakePath path({{PD_BEGINSUBPATH | PD_ENDSUBPATH, {fixedPoint(1, 2), fixedPoint(30, 40)}}});
    WString title = TEXT("Plan");
    const std::function<void()> steps[] = {
        [&] { pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer)); engine.dhpdev = handleOf(pdev); },
        [&] { DrvCompletePDEV(handleOf(pdev), nullptr); },
        [&] { pso = &engine.surfaces.at(DrvEnableSurface(handleOf(pdev)))->object; },
        [&] { DrvStartDoc(pso, title.data(), 1); },
        [&] { DrvStartPage(pso); },
        [&] { DrvStrokePath(pso, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0); },
        [&] { DrvSendPage(pso); },
        [&] { DrvStartPage(pso); },
        [&] { DrvStrokePath(pso, &path, nullptr, nullptr, nullptr, nullptr, nullptr, 0); },
        [&] { DrvSendPage(pso); }};
    constexpr std::size_t kPageSent = 7;  // steps after which the first page is a job of its own
    for (std::size_t done = 1; done <= std::size(steps); ++done) {
        SCOPED_TRACE(done);
        pso = nullptr;
        for (std::size_t i = 0; i < done; ++i) steps[i]();
        if (engineTells) engine.aborted = true;
        for (std::size_t i = done; engineTells && pso != nullptr && i < std::size(steps); ++i) steps[i]();  // an engine may still go on
        if (pso != nullptr) DrvEndDoc(pso, engineTells ? 0 : ED_ABORTDOC);
        engine.aborted = false;
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
        pdev = nullptr;
        resetState();
        const std::size_t jobs = done < kPageSent ? 0 : done < std::size(steps) ? 1 : 2;
        EXPECT_EQ(jobFileNames().size(), jobs) << testing::PrintToString(jobFileNames());
        for (const std::string& name : jobFileNames()) {
            EXPECT_TRUE(name.ends_with(".tsf")) << name;
            DeleteFileW((WString(CMvConfig().spoolFolder()) + TEXT("\\") + fromUtf8(name)).c_str());
        }
        EXPECT_TRUE(engine.surfaces.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, Aborted, testing::Bool());

}  // namespace
}  // namespace morvil::test
