// Device instances: made from a device mode, completed, reset and given back; what is no instance.
#include "driver/DriverFixture.h"
#include "driver/device_caps.h"
#include "platform/posix/HostState.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Instance : public DriverTest {
  protected:
    DHPDEV enableWith(const DEVMODEW* given) {
        return DrvEnablePDEV(const_cast<DEVMODEW*>(given), nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, nullptr, printer);
    }
    static std::vector<std::string> linesAbout(const std::string& text) {
        std::vector<std::string> lines;
        for (const std::string& line : morvilLog()) {
            if (line.find(text) != std::string::npos) lines.push_back(line);
        }
        return lines;
    }
};

constexpr char kNotSupported[] = "!!! DrvEnablePDEV, Configuration from Registry, DevMode not supported";

TEST_F(Instance, a_printer_without_driver_gets_none) {
    for (const char* const call : {"GetPrinterDriverW"}) {
        hostState().refusals[call] = ERROR_ACCESS_DENIED;
        EXPECT_EQ(enableWith(&devmode.dm), nullptr);
        hostState().refusals.clear();
    }
    EXPECT_THAT(morvilLog(), ElementsAre("!!! DrvEnablePDEV pwszDataFile"));
    EXPECT_EQ(state().refCounter, 1U);
}

TEST_F(Instance, no_memory_for_the_record_gives_none) {
    // The allocations of the driver information come first; every later failure must leave nothing behind either.
    bool reported = false;
    for (int n = 1;; ++n) {
        clearLogs();
        FailingCalls faults(n, Fault::Transient, "allocate");
        const DHPDEV instance = enableWith(&devmode.dm);
        if (faults.fired() == 0) {
            EXPECT_NE(instance, nullptr);
            DrvDisablePDEV(instance);
            break;
        }
        if (instance != nullptr) DrvDisablePDEV(instance);
        for (const std::string& line : morvilLog()) reported = reported || line == "!!! DrvEnablePDEV Memory Allcoation failed";
    }
    EXPECT_TRUE(reported);
}

TEST_F(Instance, a_page_that_cannot_be_a_surface_gives_none) {
    configuration().size.takeFromApplication = 1;
    configuration().resolution = 1000;
    devmode.dm.dmPaperSize = DMPAPER_USER;
    devmode.dm.dmPaperWidth = 32767;
    devmode.dm.dmPaperLength = 100;
    GDIINFO info{};
    EXPECT_EQ(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, sizeof(info), reinterpret_cast<ULONG*>(&info), 0, nullptr, nullptr, nullptr,
                            printer),
              nullptr);
    EXPECT_THAT(morvilLog(), Contains("!!! DrvEnablePDEV CommonStartPDEV failed"));
    EXPECT_EQ(morvilLog().back(), "DrvEnablePDEV finished pPDev=0");
}

TEST_F(Instance, a_devmode_without_private_part_takes_the_stored_configuration) {
    static const struct {
        const char* what;
        WORD size;
        WORD extra;
        bool given;
    } cases[] = {{"none", 0, 0, false}, {"one byte short", 220, 1787, true}};
    for (const auto& entry : cases) {
        clearLogs();
        devmode.dm.dmSize = entry.size;
        devmode.dm.dmDriverExtra = entry.extra;
        configuration().processMode = kModeRelief;
        const DHPDEV instance = enableWith(entry.given ? &devmode.dm : nullptr);
        ASSERT_NE(instance, nullptr) << entry.what;
        EXPECT_EQ(pdevOf(instance)->configuration().processMode, kModeStandard) << entry.what;
        EXPECT_EQ(state().configuration.processMode, kModeStandard) << entry.what;
        EXPECT_EQ(linesAbout("DevMode not supported"), std::vector<std::string>(2, kNotSupported)) << entry.what;
        DrvDisablePDEV(instance);
    }
}

TEST_F(Instance, a_full_devmode_brings_its_configuration) {
    configuration().processMode = kModeRelief;
    devmode.dm.dmCopies = 3;
    const DHPDEV instance = enableWith(&devmode.dm);
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(state().configuration.processMode, kModeRelief);
    EXPECT_EQ(pdevOf(instance)->configuration().processMode, kModeRelief);
    EXPECT_EQ(pdevOf(instance)->plotDM.dm.dmCopies, 3);
    EXPECT_THAT(morvilLog(), AllOf(Contains("DrvEnablePDEV, Configuration from DevMode"), Not(Contains(kNotSupported))));
    DrvDisablePDEV(instance);
}

TEST_F(Instance, the_record_carries_its_marks) {
    enable();
    const auto* const bytes = reinterpret_cast<const char*>(pdev);
    EXPECT_EQ(std::string(bytes, 4), "Plot");
    EXPECT_EQ(std::string(bytes + 2116, 4), "PDEV");
    EXPECT_EQ(pdev->size, 2120U);
    EXPECT_EQ(pdev->hPrinter, printer);
    EXPECT_EQ(pdev->dpi, 254U);
    EXPECT_EQ(pdev->hdev, reinterpret_cast<HDEV>(0x5150));
    EXPECT_EQ(toUtf8(viewOf(std::span<const WCHAR>(pdev->plotDM.dm.dmDeviceName))), "Engraver");
    EXPECT_EQ(morvilLog().back(), withPointer("DrvEnablePDEV finished pPDev={}", pdev));
}

TEST_F(Instance, a_long_device_name_is_cut_to_31_characters) {
    WString name(40, TEXT('n'));
    const DHPDEV instance = DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr, name.data(), printer);
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(viewOf(std::span<const WCHAR>(pdevOf(instance)->plotDM.dm.dmDeviceName)), WString(31, TEXT('n')));
    DrvDisablePDEV(instance);
}

TEST_F(Instance, the_identifier_shows_its_bytes_in_decimal) {
    configuration().timeStamp = 0x0A1E3B09;  // 10:30:59 and 9 milliseconds
    copyText(configuration().application.name, TEXT("paint.exe"));
    configuration().job.nameMode = 0;
    copyText(configuration().job.name, TEXT("Plate"));
    const DHPDEV instance = enableWith(&devmode.dm);
    EXPECT_THAT(morvilLog(),
                AllOf(Contains(withPointer("DrvEnablePDEV, ID=10305909, RefCounter=1, pPlotDMIn={}, PrintingApp=paint.exe", &devmode)),
                      Contains("DrvEnablePDEV, JobName=Plate")));
    DrvDisablePDEV(instance);
}

// Read back as hexadecimal, three decimal digits do not fit the byte: the hundreds are lost.
TEST_F(Instance, identifier_bytes_from_a_hundred_on_lose_their_hundreds) {
    configuration().timeStamp = 0x0A1E64FF;  // 10, 30, 100, 255
    DrvDisablePDEV(enableWith(&devmode.dm));
    EXPECT_THAT(morvilLog(), Contains(testing::HasSubstr("DrvEnablePDEV, ID=10300055, ")));
}

TEST_F(Instance, the_job_name_is_logged_only_when_it_counts) {
    static const struct {
        DWORD mode;
        const WCHAR* name;
    } silent[] = {{1, TEXT("Plate")}, {0, TEXT("")}};
    for (const auto& entry : silent) {
        configuration().job.nameMode = entry.mode;
        copyText(configuration().job.name, entry.name);
        DrvDisablePDEV(enableWith(&devmode.dm));
    }
    EXPECT_TRUE(linesAbout("DrvEnablePDEV, JobName").empty());
    EXPECT_EQ(state().refCounter, 2U);
}

TEST_F(Instance, the_system_account_becomes_the_printing_user) {
    hostState().userName = TEXT("SYSTEM");
    hostState().processes[4711] = {TEXT("paint.exe"), 1001};
    hostState().accounts[1001] = {TEXT("anna"), TEXT("SHOP")};
    configuration().application.processId = 4711;
    enable();
    EXPECT_NE(state().impersonationToken, nullptr);
    EXPECT_THAT(morvilLog(), Contains("SwitchToLoggedOnUser ImpersonateLoggedOnUser"));
}

TEST_F(Instance, capabilities_are_cut_to_the_room_given) {
    std::array<BYTE, 400> caps{};
    caps.fill(0xAA);
    std::array<BYTE, 400> info{};
    info.fill(0xBB);
    std::array<HSURF, 3> patterns{};
    patterns.fill(reinterpret_cast<HSURF>(1));
    const DHPDEV instance = DrvEnablePDEV(&devmode.dm, nullptr, 2, patterns.data(), 8, reinterpret_cast<ULONG*>(caps.data()), 400,
                                          reinterpret_cast<DEVINFO*>(info.data()), nullptr, nullptr, printer);
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(caps[1], 0x05);  // version 0x500
    EXPECT_EQ(caps[8], 0xAA);
    EXPECT_NE(info[311], 0xBB);
    EXPECT_EQ(info[312], 0xBB);
    EXPECT_EQ(patterns[1], nullptr);
    EXPECT_EQ(patterns[2], reinterpret_cast<HSURF>(1));
    DrvDisablePDEV(instance);
    EXPECT_EQ(engine.livePalettes, 0U);
}

TEST_F(Instance, reset_refuses_another_device) {
    enable();
    const DHPDEV other = enableWith(&devmode.dm);  // without a device name
    clearLogs();
    SetLastError(0xdeadbeef);
    EXPECT_EQ(DrvResetPDEV(handleOf(pdev), other), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(morvilLog().back(), "!!! DrvResetPDEV, ERROR_INVALID_PARAMETER");
    EXPECT_EQ(DrvResetPDEV(handleOf(pdev), nullptr), FALSE);
    EXPECT_EQ(DrvResetPDEV(nullptr, other), FALSE);
    DrvDisablePDEV(other);
}

TEST_F(Instance, reset_refuses_another_driver_version) {
    enable();
    PDEV* const first = pdev;
    devmode.dm.dmDriverVersion = 7;
    enable();
    EXPECT_EQ(DrvResetPDEV(handleOf(first), handleOf(pdev)), FALSE);
    DrvDisablePDEV(handleOf(first));
}

TEST_F(Instance, reset_to_the_same_device_copies_nothing) {
    configuration().timeStamp = 42;
    copyText(configuration().job.name, TEXT("Old plan"));
    enable();
    PDEV* const first = pdev;
    first->configuration().pageCounter = 9;
    copyText(configuration().job.name, TEXT("New plan"));
    enable();
    clearLogs();
    debug.clear();
    EXPECT_EQ(DrvResetPDEV(handleOf(first), handleOf(pdev)), TRUE);
    EXPECT_EQ(pdev->configuration().pageCounter, configuration().pageCounter);
    const std::string pointers = withPointer(withPointer("pPDevOld={}, pPDevNew=", first) + "{}", pdev);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvResetPDEV, Instance=42, " + pointers, "DrvResetPDEV, Old=Old plan, New=New plan"));
    EXPECT_THAT(debug.texts(), ElementsAre("DrvResetPDEV", "DrvResetPDEV finished"));
    DrvDisablePDEV(handleOf(first));
}

TEST_F(Instance, disabling_deletes_the_writer_and_the_palette) {
    configuration().timeStamp = 42;
    enable();
    state().spoolFile = std::make_unique<CSpoolFile>();
    clearLogs();
    const std::string line = withPointer("DrvDisablePDEV, Instance=42,  pPDev={}, delete SpoolObject", pdev);
    DrvDisablePDEV(handleOf(pdev));
    pdev = nullptr;
    EXPECT_EQ(state().spoolFile, nullptr);
    EXPECT_EQ(engine.livePalettes, 0U);
    EXPECT_EQ(morvilLog().front(), line);
    DrvDisablePDEV(nullptr);  // nothing to do
}

class Validation : public Instance {};

TEST_F(Validation, what_is_no_instance_is_refused_with_error_6) {
    enableSurface();
    const auto refused = [&](auto&& spoil) {
        PDEV copy = *pdev;
        spoil(copy);
        SURFOBJ surface = *pso;
        surface.dhpdev = handleOf(&copy);
        SetLastError(0xdeadbeef);
        EXPECT_EQ(validInstance(&surface), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    };
    refused([](PDEV& copy) { copy.trailer[3] = 'W'; });
    refused([](PDEV& copy) { copy.magic[0] = 'p'; });
    refused([](PDEV& copy) { copy.size = 2119; });
    SURFOBJ none{};
    SetLastError(0xdeadbeef);
    EXPECT_EQ(validInstance(&none), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    SetLastError(0xdeadbeef);
    EXPECT_EQ(validInstance(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(Validation, an_aborted_job_stays_refused) {
    enableSurface();
    engine.aborted = true;
    EXPECT_EQ(validInstance(pso), nullptr);
    EXPECT_EQ(pdev->flags, 0x80000000U);
    engine.aborted = false;
    EXPECT_EQ(validInstance(pso), nullptr);
}

TEST_F(Validation, a_valid_instance_keeps_the_surface) {
    enableSurface();
    EXPECT_EQ(validInstance(pso), pdev);
    EXPECT_EQ(pdev->pso, pso);
    EXPECT_EQ(pdev->flags, 0U);
}

}  // namespace
}  // namespace morvil::test
