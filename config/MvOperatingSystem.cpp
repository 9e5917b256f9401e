#include "config/MvOperatingSystem.h"

#include <array>

#include "driver/log/Log.h"

namespace morvil {

namespace {

// Native even when the driver runs as a 32-bit process; systems too old to offer that have one architecture only.
SYSTEM_INFO systemInformation() {
    using GetInfo = void(WINAPI*)(SYSTEM_INFO*);
    SYSTEM_INFO info{};
    const HMODULE kernel = GetModuleHandleW(TEXT("kernel32.dll"));
    const FARPROC native = kernel == nullptr ? nullptr : GetProcAddress(kernel, "GetNativeSystemInfo");
    if (native != nullptr) {
        reinterpret_cast<GetInfo>(reinterpret_cast<void*>(native))(&info);
    } else {
        GetSystemInfo(&info);
    }
    return info;
}

WORD processorOf(const SYSTEM_INFO& info) { return info.wProcessorArchitecture; }

const WCHAR* folderOf(MvOperatingSystem::Architecture architecture) {
    switch (architecture) {
        case MvOperatingSystem::kX86: return TEXT("w32x86");
        case MvOperatingSystem::kX64: return TEXT("x64");
        case MvOperatingSystem::kIa64: return TEXT("ia64");
        case MvOperatingSystem::kUnknown: break;
    }
    return nullptr;
}

}  // namespace

MvOperatingSystem::Architecture MvOperatingSystem::getHardwareArchitecture() {
    Architecture architecture = kUnknown;
    switch (processorOf(systemInformation())) {
        case PROCESSOR_ARCHITECTURE_INTEL: architecture = kX86; break;
        case PROCESSOR_ARCHITECTURE_AMD64: architecture = kX64; break;
        case PROCESSOR_ARCHITECTURE_IA64: architecture = kIa64; break;
        default: break;
    }
    debugPrint(TEXT("MvOperatingSystem::getHardwareArchitecture=%d\n"), architecture);
    return architecture;
}

WString MvOperatingSystem::getPrinterDriverSubPath() {
    std::array<WCHAR, kPathCharacters> system{};
    const UINT length = GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size()));
    const WCHAR* const folder = folderOf(getHardwareArchitecture());
    WString path;
    if (length > 0 && length < system.size() && folder != nullptr)
        path = WString(viewOf(system)) + TEXT("\\spool\\drivers\\") + folder + TEXT("\\3");
    debugPrint(TEXT("MvOperatingSystem::getPrinterDriverSubPath=%s\n"), path);
    return path;
}

}  // namespace morvil
