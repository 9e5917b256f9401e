// escapes.cpp - private calls of applications, foremost the driver's own user interface. The engine hands their buffers through
// unchecked, so code, sizes and contents are checked here.
#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "config/CPrinterConfig.h"
#include "driver/Hooks.h"
#include "driver/Pdev.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/log/Log.h"

using namespace morvil;

namespace {

constexpr ULONG kUnusedEscape = 20;
constexpr ULONG MV_CONFIGURATION_LOAD = 9100;
constexpr ULONG MV_CONFIGURATION_SUPPORTED = 9101;

struct Buffers {
    ULONG cjIn;
    const void* pvIn;
    ULONG cjOut;
    void* pvOut;
};

std::optional<DWORD> inputNumber(const Buffers& buffers) {
    DWORD number = 0;
    if (buffers.pvIn == nullptr || buffers.cjIn < sizeof(number)) return std::nullopt;
    std::memcpy(&number, buffers.pvIn, sizeof(number));
    return number;
}

// Reports the load of a configuration as supported, but not the probe: its callers use it without asking.
ULONG querySupport(const Buffers& buffers) {
    const std::optional<DWORD> code = inputNumber(buffers);
    if (!code || buffers.cjIn != sizeof(*code)) return 0;
    switch (*code) {
        case QUERYESCSUPPORT:
        case SETCOPYCOUNT: return 1;
        case PASSTHROUGH:
        case kUnusedEscape: return 0;
        case POSTSCRIPT_PASSTHROUGH:
            logMorvil(1, kInformation, TEXT("DrvEscape QUERYESCAPESUPPORT for POSTSCRIPT_PASSTHROUGH"), kLogEnd);
            return 0;
        case MV_CONFIGURATION_LOAD: logMorvil(1, kInformation, TEXT("DrvEscape QUERYESCAPESUPPORT"), kLogEnd); return 1;
        default: logMorvil(1, kInformation, TEXT("DrvEscape QUERYESCAPESUPPORT for default pdwIn=%d"), *code, kLogEnd); return 0;
    }
}

// The machine makes one copy, whatever is asked for.
ULONG setCopyCount(PDEV& pdev, const Buffers& buffers) {
    logMorvil(1, kInformation, TEXT("DrvEscape SETCOPYCOUNT"), kLogEnd);
    if (inputNumber(buffers).value_or(0) == 0) return 0;
    constexpr DWORD copies = 1;
    pdev.plotDM.dm.dmCopies = copies;
    if (buffers.pvOut != nullptr) std::memcpy(buffers.pvOut, &copies, std::min<std::size_t>(buffers.cjOut, sizeof(copies)));
    return 1;
}

// A configuration name, sent as 8-bit characters with or without a terminator.
struct ConfigurationName {
    std::array<WCHAR, kPathCharacters> text{};
    bool usable = false;  // not empty, and not cut: a cut name would be another configuration's
};

ConfigurationName configurationName(const Buffers& buffers) {
    ConfigurationName name;
    if (buffers.pvIn == nullptr) return name;
    const auto* const bytes = static_cast<const unsigned char*>(buffers.pvIn);
    const std::size_t length = static_cast<std::size_t>(std::find(bytes, bytes + buffers.cjIn, 0) - bytes);
    std::copy_n(bytes, std::min(length, name.text.size() - 1), name.text.begin());
    name.usable = length > 0 && length < name.text.size();
    return name;
}

ULONG loadConfiguration(const Buffers& buffers) {
    const ConfigurationName name = configurationName(buffers);
    logMorvil(1, kInformation, TEXT("DrvEscape MV_CONFIGURATION_LOAD cjIn=%d, wcConfigName=%s"), buffers.cjIn, name.text.data(), kLogEnd);
    if (!name.usable) return 0;
    CPrinterConfig store(&sizeTemplateReader());
    ConfigurationRecord loaded = state().configuration;
    const bool success = store.getConfig(name.text.data(), loaded);
    if (success) state().configuration = loaded;
    store.bDumpConfig(loaded);
    return success && store.setConfig(TEXT(""), loaded) ? 1 : 0;
}

ULONG configurationSupported(const Buffers& buffers) {
    const ConfigurationName name = configurationName(buffers);
    logMorvil(1, kInformation, TEXT("DrvEscape MV_CONFIGURATION_SUPPORTED wcConfigName=%s"), name.text.data(), kLogEnd);
    return name.usable && CPrinterConfig().configurationExists(name.text.data()) ? 1 : 0;
}

ULONG refuseEscape(ULONG iEsc) {
    logMorvil(1, kInformation, TEXT("DrvEscape Unsupported EscapeCode: %d"), iEsc, kLogEnd);
    SetLastError(ERROR_INVALID_FUNCTION);
    return 0;
}

ULONG escape(SURFOBJ* pso, ULONG iEsc, const Buffers& buffers) {
    logMorvil(1, kInformation, TEXT("DrvEscape iEsc=%d"), iEsc, kLogEnd);
    PDEV* const pdev = validInstance(pso);
    if (pdev == nullptr) {
        logMorvil(1, kError, TEXT("DrvEscape invalid PDEV"), kLogEnd);
        return 0;
    }
    switch (iEsc) {
        case QUERYESCSUPPORT: return querySupport(buffers);
        case SETCOPYCOUNT: return setCopyCount(*pdev, buffers);
        case PASSTHROUGH:
        case kUnusedEscape:
        case POSTSCRIPT_PASSTHROUGH: return 0;
        case MV_CONFIGURATION_LOAD: return loadConfiguration(buffers);
        case MV_CONFIGURATION_SUPPORTED: return configurationSupported(buffers);
        default: return refuseEscape(iEsc);
    }
}

}  // namespace

extern "C" {

ULONG APIENTRY DrvEscape(SURFOBJ* pso, ULONG iEsc, ULONG cjIn, PVOID pvIn, ULONG cjOut, PVOID pvOut) {
    return guarded(TEXT("DrvEscape"), ULONG{0}, [=] { return escape(pso, iEsc, {cjIn, pvIn, cjOut, pvOut}); });
}

}  // extern "C"
