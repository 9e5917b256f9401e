// shell.cpp - the system's folders. Promises: "C:\ProgramData" and "C:\Program Files", made in the data root when missing
// (on Windows they always exist), or only named with CSIDL_FLAG_DONT_VERIFY, and the name of the system folder. Refuses: every
// other folder (E_INVALIDARG), other users' folders (the token is ignored).
#include <string>

#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

using namespace morvil;

namespace {

constexpr HRESULT resultOf(DWORD error) { return static_cast<HRESULT>(0x80070000U | (error & 0xFFFFU)); }

WStringView folderOf(int folder) {
    switch (folder & 0xFF) {
        case CSIDL_COMMON_APPDATA: return TEXT("C:\\ProgramData");
        case CSIDL_PROGRAM_FILES: return TEXT("C:\\Program Files");
        default: return {};
    }
}

// Usually it is there, and asking is cheaper than making.
bool provideFolder(const HostPath& path) {
    struct stat status {};
    if (platformCalls().status(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return true;
    return makeFolders(std::string(path.view()));
}

}  // namespace

HRESULT SHGetFolderPathW(HWND, int folder, HANDLE, DWORD, LPWSTR path) {
    if (path == nullptr) return E_INVALIDARG;
    *path = 0;
    const WStringView name = folderOf(folder);
    if (name.empty()) return E_INVALIDARG;
    if (refused("SHGetFolderPathW")) return resultOf(GetLastError());
    HostPath hostPath;
    const bool verified = (folder & CSIDL_FLAG_DONT_VERIFY) == 0;
    if (verified && !(hostPath.assign(name) && provideFolder(hostPath))) return resultOf(GetLastError());
    copyText({path, MAX_PATH}, name);
    return S_OK;
}

UINT GetSystemDirectoryW(LPWSTR out, UINT characters) {
    constexpr WStringView kFolder = TEXT("C:\\Windows\\System32");
    if (refused("GetSystemDirectoryW")) return 0;
    if (out == nullptr || characters <= kFolder.size()) return static_cast<UINT>(kFolder.size() + 1);
    copyText({out, characters}, kFolder);
    return static_cast<UINT>(kFolder.size());
}
