// entry.cpp - the four exported functions: load and unload, the engine's question whether the driver runs in user mode, and
// enabling it once per load. Called on one thread before anything else.
#include <cstring>

#include "driver/State.h"
#include "driver/function_table.h"
#include "driver/guard.h"
#include "driver/log/Log.h"

using namespace morvil;

namespace {

constexpr ULONG kOldestEngineVersion = 0x20000;
constexpr ULONG kDriverVersion = 0x30000;
constexpr DWORD kRunsInUserMode = 1;
static_assert(sizeof(DRVENABLEDATA) == 16);

BOOL answerUserMode(PVOID buffer, DWORD bufferSize, PDWORD needed) {
    if (needed != nullptr) *needed = sizeof(kRunsInUserMode);
    if (buffer == nullptr || bufferSize < sizeof(kRunsInUserMode)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(buffer, &kRunsInUserMode, sizeof(kRunsInUserMode));
    logMorvil(1, kInformation, TEXT("DrvQueryDriverInfo DRVQUERY_USERMODE"), kLogEnd);
    return TRUE;
}

BOOL refuseQuery() {
    logMorvil(1, kError, TEXT("DrvQueryDriverInfo ERROR_INVALID_PARAMETER"), kLogEnd);
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

BOOL enableDriver(ULONG engineVersion, ULONG size, DRVENABLEDATA* data) {
    logMorvil(1, kInformation, TEXT("DrvEnableDriver"), kLogEnd);
    if (engineVersion < kOldestEngineVersion) {
        logMorvil(1, kError, TEXT("DrvEnableDriver BadEngineVersion"), kLogEnd);
        return FALSE;
    }
    if (size < sizeof(DRVENABLEDATA) || data == nullptr) {
        logMorvil(1, kError, TEXT("DrvEnableDriver BadParameter"), kLogEnd);
        return FALSE;
    }
    const std::span<DRVFN> table = functionTable();
    data->iDriverVersion = kDriverVersion;
    data->c = static_cast<ULONG>(table.size());
    data->pdrvfn = table.data();
    return TRUE;
}

void attachOrDetach(HINSTANCE instance, DWORD reason) {
    if (reason == DLL_PROCESS_ATTACH) {
        logMorvil(1, kInformation, TEXT("DllEntryPoint DLL_PROCESS_ATTACH"), kLogEnd);
        state().ghInstance = instance;
    }
    if (reason == DLL_PROCESS_DETACH) logMorvil(1, kInformation, TEXT("DllEntryPoint DLL_PROCESS_DETACH"), kLogEnd);
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
    guarded(TEXT("DllMain"), [=] { attachOrDetach(instance, reason); });
    return TRUE;
}

BOOL APIENTRY DrvQueryDriverInfo(DWORD mode, PVOID buffer, DWORD bufferSize, PDWORD needed) {
    return guarded(TEXT("DrvQueryDriverInfo"), BOOL{FALSE}, [=] {
        logMorvil(1, kInformation, TEXT("DrvQueryDriverInfo"), kLogEnd);
        return mode == DRVQUERY_USERMODE ? answerUserMode(buffer, bufferSize, needed) : refuseQuery();
    });
}

BOOL APIENTRY DrvEnableDriver(ULONG engineVersion, ULONG size, DRVENABLEDATA* data) {
    return guarded(TEXT("DrvEnableDriver"), BOOL{FALSE}, [=] { return enableDriver(engineVersion, size, data); });
}

// Frees nothing: what outlives an instance is given back by its owners or at unload.
VOID APIENTRY DrvDisableDriver() {
    guarded(TEXT("DrvDisableDriver"), [] { logMorvil(1, kInformation, TEXT("DrvDisableDriver"), kLogEnd); });
}

}  // extern "C"
