#include "driver/job_writer.h"

#include <array>

#include "config/CMvConfig.h"
#include "config/CMvFsServices.h"
#include "config/MvOperatingSystem.h"
#include "driver/State.h"

namespace morvil {

namespace {

constexpr WCHAR kSection[] = TEXT("PrinterDriver");
constexpr WCHAR kVersionKey[] = TEXT("actVersion");

// Version of the installed driver file; empty when there is none to be read.
WString driverVersion() {
    const WString folder = MvOperatingSystem().getPrinterDriverSubPath();
    if (folder.empty()) return {};
    const WString file = folder + TEXT("\\morvil.dll");
    DWORD ignored = 0;
    if (GetFileVersionInfoSizeW(file.c_str(), &ignored) == 0) return {};
    return CMvFsServices().getFileVersion(file.c_str());
}

}  // namespace

void setPrinterConfiguration() {
    if (!state().spoolFile) state().spoolFile = std::make_unique<CSpoolFile>();
    state().spoolFile->SetPrinterConfig(&state().configuration);
}

void useConfigurationOf(const PDEV& pdev) { state().configuration = pdev.configuration(); }

void completeJob() {
    if (state().spoolFile) state().spoolFile->Complete();
}

void DriverInfo2MorvilConf() {
    const WString version = driverVersion();
    if (version.empty()) return;
    const CMvConfig folders;
    std::array<WCHAR, kPathCharacters> known{};
    GetPrivateProfileStringW(kSection, kVersionKey, TEXT(""), known.data(), static_cast<DWORD>(known.size()), folders.mainIni());
    if (viewOf(std::span<const WCHAR>(known)) == version) return;
    WritePrivateProfileStringW(kSection, kVersionKey, version.c_str(), folders.mainIni());
}

}  // namespace morvil
