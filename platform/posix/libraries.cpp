// libraries.cpp - loading libraries. Promises: "FOLDER\NAME.dll" is that folder's libNAME.so, NAME.so or NAME.dll, the first
// that is there; a name without a folder is looked for in the driver's program folder, then beside the running program; ".dll"
// may be left away. "kernel32.dll" is always loaded and offers what the driver asks it for by name.
// Refuses: the system's own search path; functions by number (ERROR_PROC_NOT_FOUND).
#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/CaseFold.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

using namespace morvil;

namespace {

constexpr WStringView kProgramFolder = TEXT("C:\\Program Files\\Morvil\\PrinterDriver\\");
constexpr WStringView kExtension = TEXT(".dll");

// Stands for the system's own library; only its address is used.
HINSTANCE__ systemLibrary{0};

bool isSystemLibrary(WStringView name) {
    return equalIgnoringCase(name, TEXT("kernel32.dll")) || equalIgnoringCase(name, TEXT("kernel32"));
}

std::string folderOfProgram() {
    std::array<char, 4096> target{};
    const ssize_t size = ::readlink("/proc/self/exe", target.data(), target.size());
    const std::string_view path(target.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    return std::string(path.substr(0, path.rfind('/') + 1));
}

// Host folders, with a slash at the end, in which to look.
std::vector<std::string> foldersFor(WStringView folder) {
    HostPath path;
    if (!path.assign(folder.empty() ? kProgramFolder : folder)) return {};
    std::vector<std::string> folders{std::string(path.view()) + '/'};
    if (folder.empty()) folders.push_back(folderOfProgram());
    return folders;
}

std::string findLibrary(WStringView name) {
    const std::size_t separator = name.find_last_of(TEXT("\\/"));
    const WStringView folder = separator == WStringView::npos ? WStringView() : name.substr(0, separator + 1);
    WStringView stem = name.substr(folder.size());
    if (stem.size() > kExtension.size() && equalIgnoringCase(stem.substr(stem.size() - kExtension.size()), kExtension))
        stem.remove_suffix(kExtension.size());
    const std::string bare = toUtf8(stem);
    for (const std::string& place : foldersFor(folder)) {
        for (const std::string& file : {"lib" + bare + ".so", bare + ".so", bare + ".dll"}) {
            struct stat status {};
            if (platformCalls().status((place + file).c_str(), &status) == 0 && S_ISREG(status.st_mode)) return place + file;
        }
    }
    return {};
}

}  // namespace

HMODULE GetModuleHandleW(LPCWSTR name) {
    if (isSystemLibrary(viewOf(name))) return &systemLibrary;
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

HMODULE LoadLibraryW(LPCWSTR name) {
    if (refused("LoadLibraryW")) return nullptr;
    if (isSystemLibrary(viewOf(name))) return &systemLibrary;
    const std::string file = name == nullptr || *name == 0 ? std::string() : findLibrary(name);
    if (file.empty()) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const auto library = static_cast<HMODULE>(::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (library == nullptr) {
        SetLastError(ERROR_BAD_EXE_FORMAT);
        return nullptr;
    }
    HostState& state = hostState();
    const std::lock_guard guard(state.lock);
    ++state.libraries[library];
    return library;
}

BOOL FreeLibrary(HMODULE library) {
    if (library == &systemLibrary) return TRUE;
    HostState& state = hostState();
    {
        const std::lock_guard guard(state.lock);
        const auto entry = state.libraries.find(library);
        if (entry == state.libraries.end()) return failWith(ERROR_INVALID_HANDLE);
        if (--entry->second == 0) state.libraries.erase(entry);
    }
    ::dlclose(library);
    return TRUE;
}

FARPROC GetProcAddress(HMODULE library, LPCSTR name) {
    void* address = nullptr;
    if (library == &systemLibrary) {
        if (name != nullptr && std::strcmp(name, "GetNativeSystemInfo") == 0) address = reinterpret_cast<void*>(&GetNativeSystemInfo);
    } else if (library != nullptr && reinterpret_cast<std::uintptr_t>(name) > 0xFFFF) {
        address = ::dlsym(library, name);
    }
    if (address == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(address);
}
