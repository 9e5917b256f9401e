#include "host/ImportPatch.h"

#include <algorithm>
#include <string_view>

namespace morvil::host {

namespace {

template <typename T>
T* at(HMODULE library, std::size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(library) + offset);
}

bool isEngineService(std::string_view name) { return name.starts_with("Eng") || name.find("OBJ_") != std::string_view::npos; }

void write(ULONGLONG& entry, void (*function)()) {
    DWORD before = 0;
    VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &before);
    entry = reinterpret_cast<ULONGLONG>(function);
    VirtualProtect(&entry, sizeof(entry), before, &before);
}

// The names stand in one table, the addresses that calls go through in another beside it.
void replaceIn(HMODULE library, const IMAGE_IMPORT_DESCRIPTOR& imports, std::span<const Service> services, std::string& missing) {
    const auto* name = at<IMAGE_THUNK_DATA64>(library, imports.OriginalFirstThunk);
    auto* address = at<IMAGE_THUNK_DATA64>(library, imports.FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++address) {
        if (IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) continue;
        const std::string_view function = at<IMAGE_IMPORT_BY_NAME>(library, static_cast<std::size_t>(name->u1.AddressOfData))->Name;
        const auto found = std::find_if(services.begin(), services.end(), [function](const Service& service) { return function == service.name; });
        if (found != services.end()) write(address->u1.Function, found->function);
        else if (isEngineService(function)) missing += (missing.empty() ? "" : ", ") + std::string(function);
    }
}

}  // namespace

std::string replaceImports(HMODULE library, std::span<const Service> services) {
    const auto& headers = *at<IMAGE_NT_HEADERS64>(library, static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(library, 0)->e_lfanew));
    std::string missing;
    const DWORD first = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto* imports = at<IMAGE_IMPORT_DESCRIPTOR>(library, first); imports->Name != 0; ++imports) replaceIn(library, *imports, services, missing);
    return missing;
}

}  // namespace morvil::host
