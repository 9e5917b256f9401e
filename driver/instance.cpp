// instance.cpp - begins, completes, replaces and ends device instances.
#include <algorithm>
#include <cstring>

#include "config/CPrinterConfig.h"
#include "driver/Hooks.h"
#include "driver/Pdev.h"
#include "driver/State.h"
#include "driver/device_caps.h"
#include "driver/guard.h"
#include "driver/host_information.h"
#include "driver/impersonation.h"
#include "driver/log/Log.h"
#include "platform/common/LocalBlock.h"

using namespace morvil;

namespace {

struct EnableRequest {
    const DEVMODEW* devmode;
    CapabilityBuffers buffers;
    LPWSTR deviceName;
    HANDLE hPrinter;
};

// The private devmode, when one of full length stands behind the public part; null otherwise. The driver's own length alone
// decides: the public part is of the size that this driver was built with.
const PlotDM* privateDevmode(const DEVMODEW* devmode) {
    if (devmode == nullptr || devmode->dmDriverExtra < kPrivateDevmodeBytes) return nullptr;
    return reinterpret_cast<const PlotDM*>(devmode);
}

// A printer whose driver is not fully installed has no data file and no instance.
bool driverInstalled(HANDLE hPrinter) {
    DWORD bytes = 0;
    if (GetPrinterDriverW(hPrinter, nullptr, 2, nullptr, 0, &bytes) != FALSE || GetLastError() != ERROR_INSUFFICIENT_BUFFER) return false;
    if (bytes < sizeof(DRIVER_INFO_2W)) return false;
    const LocalBlock<BYTE> block(bytes);
    if (!block || GetPrinterDriverW(hPrinter, nullptr, 2, block.get(), bytes, &bytes) == FALSE) return false;
    return reinterpret_cast<const DRIVER_INFO_2W*>(block.get())->pDataFile != nullptr;
}

void logDevmodeNotSupported() { logMorvil(0, kError, TEXT("DrvEnablePDEV, Configuration from Registry, DevMode not supported"), kLogEnd); }

void loadWorkingConfiguration(const PlotDM* devmode) {
    if (devmode == nullptr) {
        CPrinterConfig(&sizeTemplateReader()).getConfig(TEXT(""), state().configuration);
        logDevmodeNotSupported();
        return;
    }
    state().configuration = devmode->configuration;
    logMorvil(1, kInformation, TEXT("DrvEnablePDEV, Configuration from DevMode"), kLogEnd);
}

// 59 becomes 0x59, so that the stamp's decimal bytes can be read in a hexadecimal print; of a byte above 99 the hundreds are lost.
constexpr DWORD asDecimalDigits(DWORD byte) { return byte / 10 % 10 * 16 + byte % 10; }
constexpr DWORD readableIdentifier(DWORD stamp) {
    return asDecimalDigits(stamp >> 24) << 24 | asDecimalDigits(stamp >> 16 & 0xFF) << 16 | asDecimalDigits(stamp >> 8 & 0xFF) << 8 |
           asDecimalDigits(stamp & 0xFF);
}
static_assert(readableIdentifier(0x0A1E3B09) == 0x10305909);

void logInstance(const DEVMODEW* devmode) {
    const ConfigurationRecord& configuration = state().configuration;
    logMorvil(1, kInformation, TEXT("DrvEnablePDEV, ID=%lX, RefCounter=%d, pPlotDMIn=%X, PrintingApp=%s"),
              readableIdentifier(configuration.timeStamp), state().refCounter, low32(devmode),
              viewOf(std::span<const WCHAR>(configuration.application.name)), kLogEnd);
    const WStringView jobName = viewOf(std::span<const WCHAR>(configuration.job.name));
    if (configuration.job.nameMode == 0 && !jobName.empty())
        logMorvil(1, kInformation, TEXT("DrvEnablePDEV, JobName=%s"), jobName, kLogEnd);
}

void fillInstance(PDEV& pdev, const PlotDM* devmode, const EnableRequest& request) {
    if (devmode == nullptr) {
        pdev.configuration() = state().configuration;
        logDevmodeNotSupported();
    } else {
        pdev.plotDM = *devmode;
    }
    pdev.hPrinter = request.hPrinter;
    if (request.deviceName == nullptr) return;
    const std::span<WCHAR> name(pdev.plotDM.dm.dmDeviceName);
    const auto end = std::find(request.deviceName, request.deviceName + name.size(), WCHAR{0});
    copyText(name, WStringView(request.deviceName, end));
}

// Acts as the printing user from here on. An instance that is not made has no document whose end would give that up.
class PrintingUser {
  public:
    explicit PrintingUser(DWORD processId) : m_givesUp(state().impersonationToken == nullptr) { becomePrintingUser(processId); }
    ~PrintingUser() {
        if (m_givesUp) endImpersonation();
    }
    PrintingUser(const PrintingUser&) = delete;
    PrintingUser& operator=(const PrintingUser&) = delete;
    void stay() { m_givesUp = false; }

  private:
    bool m_givesUp;
};

DHPDEV enableInstance(const EnableRequest& request) {
    ++state().refCounter;
    if (!driverInstalled(request.hPrinter)) {
        logMorvil(1, kError, TEXT("DrvEnablePDEV pwszDataFile"), kLogEnd);
        return nullptr;
    }
    const PlotDM* const devmode = privateDevmode(request.devmode);
    loadWorkingConfiguration(devmode);
    logInstance(request.devmode);
    recordCallingProcess();
    PrintingUser user(state().configuration.application.processId);

    PdevOwner pdev = allocatePdev();
    if (!pdev) {
        logMorvil(1, kError, TEXT("DrvEnablePDEV Memory Allcoation failed"), kLogEnd);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    fillInstance(*pdev, devmode, request);
    if (CommonStartPDEV(*pdev, request.buffers) == FALSE) {
        logMorvil(1, kError, TEXT("DrvEnablePDEV CommonStartPDEV failed"), kLogEnd);
        pdev.reset();
    }
    if (pdev) user.stay();
    logMorvil(1, kInformation, TEXT("DrvEnablePDEV finished pPDev=%X"), low32(pdev.get()), kLogEnd);
    return handleOf(pdev.release());
}

bool sameDevice(const PDEV& one, const PDEV& other) {
    const DEVMODEW& a = one.plotDM.dm;
    const DEVMODEW& b = other.plotDM.dm;
    return a.dmDriverVersion == b.dmDriverVersion &&
           viewOf(std::span<const WCHAR>(a.dmDeviceName)) == viewOf(std::span<const WCHAR>(b.dmDeviceName));
}

BOOL resetInstance(DHPDEV oldPdev, DHPDEV newPdev) {
    const bool valid = isInstance(oldPdev) && isInstance(newPdev);
    debugPrint(TEXT("DrvResetPDEV"));
    logMorvil(1, kInformation, TEXT("DrvResetPDEV, Instance=%d, pPDevOld=%X, pPDevNew=%X"),
              valid ? pdevOf(oldPdev)->configuration().timeStamp : 0, low32(oldPdev), low32(newPdev), kLogEnd);
    if (!valid || !sameDevice(*pdevOf(oldPdev), *pdevOf(newPdev))) {
        logMorvil(1, kError, TEXT("DrvResetPDEV, ERROR_INVALID_PARAMETER"), kLogEnd);
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    logMorvil(1, kInformation, TEXT("DrvResetPDEV, Old=%s, New=%s"),
              viewOf(std::span<const WCHAR>(pdevOf(oldPdev)->configuration().job.name)),
              viewOf(std::span<const WCHAR>(pdevOf(newPdev)->configuration().job.name)), kLogEnd);
    debugPrint(TEXT("DrvResetPDEV finished"));
    return TRUE;
}

// DrvEndDoc refuses an aborted document, so its unfinished file goes here, and the identity of the user who printed it.
void disableInstance(DHPDEV dhpdev) {
    if (!isInstance(dhpdev)) return;
    const PdevOwner pdev(pdevOf(dhpdev));
    logMorvil(1, kInformation, TEXT("DrvDisablePDEV, Instance=%d,  pPDev=%X, delete SpoolObject"), pdev->configuration().timeStamp,
              low32(pdev.get()), kLogEnd);
    const bool aborted = (pdev->flags & kJobAborted) != 0;
    if (state().spoolFile && aborted) state().spoolFile->Abort();
    state().spoolFile.reset();
    if (aborted) endImpersonation();
}

}  // namespace

extern "C" {

DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW* devmode, LPWSTR /*logAddress*/, ULONG patternCount, HSURF* patterns, ULONG capsSize, ULONG* gdiInfo,
                              ULONG devInfoSize, DEVINFO* devInfo, HDEV /*hdev*/, LPWSTR deviceName, HANDLE hPrinter) {
    const EnableRequest request{devmode, {patternCount, patterns, capsSize, gdiInfo, devInfoSize, devInfo}, deviceName, hPrinter};
    return guarded(TEXT("DrvEnablePDEV"), DHPDEV{nullptr}, [&] { return enableInstance(request); });
}

BOOL APIENTRY DrvResetPDEV(DHPDEV oldPdev, DHPDEV newPdev) {
    return guarded(TEXT("DrvResetPDEV"), BOOL{FALSE}, [=] { return resetInstance(oldPdev, newPdev); });
}

VOID APIENTRY DrvCompletePDEV(DHPDEV dhpdev, HDEV hdev) {
    if (isInstance(dhpdev)) pdevOf(dhpdev)->hdev = hdev;
}

VOID APIENTRY DrvDisablePDEV(DHPDEV dhpdev) {
    guarded(TEXT("DrvDisablePDEV"), [=] { disableInstance(dhpdev); });
}

}  // extern "C"
