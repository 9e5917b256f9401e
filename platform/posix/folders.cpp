// folders.cpp - files and folders by name. Promises: renaming is one step, and without MOVEFILE_REPLACE_EXISTING never
// overwrites; a read-only file (one without any write permission) is neither deleted nor replaced; MOVEFILE_WRITE_THROUGH
// returns after the folder is on disk; a folder on a data root that does not exist yet makes the data root.
// Refuses: attributes other than read-only, folder and normal; renaming between file systems (ERROR_NOT_SAME_DEVICE).
#include <cerrno>
#include <string>

#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

using namespace morvil;

namespace {

constexpr mode_t kAnyWriteBit = 0222;

bool isReadOnlyFile(const char* path) {
    struct stat status {};
    return platformCalls().status(path, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & kAnyWriteBit) == 0;
}

bool flushFolderOf(std::string_view path) {
    const std::string folder(path.substr(0, path.rfind('/') + 1));
    const int descriptor = platformCalls().open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (descriptor < 0) return false;
    const bool flushed = platformCalls().flush(descriptor) == 0;
    const int systemError = errno;
    platformCalls().close(descriptor);
    errno = systemError;
    return flushed;
}

}  // namespace

BOOL DeleteFileW(LPCWSTR path) {
    HostPath hostPath;
    if (!hostPath.assign(path)) return FALSE;
    if (isReadOnlyFile(hostPath.c_str())) return failWith(ERROR_ACCESS_DENIED);
    return platformCalls().remove(hostPath.c_str()) == 0 ? TRUE : failForPath(hostPath.c_str());
}

BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    HostPath source;
    HostPath target;
    if (!source.assign(from) || !target.assign(to)) return FALSE;
    const bool replace = (flags & MOVEFILE_REPLACE_EXISTING) != 0;
    if (replace && isReadOnlyFile(target.c_str())) return failWith(ERROR_ACCESS_DENIED);
    const auto rename = replace ? platformCalls().rename : platformCalls().renameToNew;
    if (rename(source.c_str(), target.c_str()) != 0) {
        if (errno == EEXIST) return failWith(ERROR_ALREADY_EXISTS);
        if (errno != ENOENT) return failWithErrno();
        struct stat status {};
        return platformCalls().status(source.c_str(), &status) == 0 ? failWith(ERROR_PATH_NOT_FOUND) : failForPath(source.c_str());
    }
    if ((flags & MOVEFILE_WRITE_THROUGH) != 0 && !flushFolderOf(target.view())) return failWithErrno();
    if (hostState().fileMoved) hostState().fileMoved(from, to);
    return TRUE;
}

BOOL CreateDirectoryW(LPCWSTR path, SECURITY_ATTRIBUTES*) {
    HostPath hostPath;
    if (!hostPath.assign(path)) return FALSE;
    int made = platformCalls().makeFolder(hostPath.c_str(), 0777);
    const std::string& home = hostState().home;
    const std::string_view parent = hostPath.view().substr(0, hostPath.view().rfind('/'));
    if (made != 0 && errno == ENOENT && parent == home) {
        if (!makeFolders(home)) return FALSE;
        made = platformCalls().makeFolder(hostPath.c_str(), 0777);
    }
    if (made == 0) return TRUE;
    return errno == EEXIST ? failWith(ERROR_ALREADY_EXISTS) : errno == ENOENT ? failWith(ERROR_PATH_NOT_FOUND) : failWithErrno();
}

BOOL RemoveDirectoryW(LPCWSTR path) {
    HostPath hostPath;
    if (!hostPath.assign(path)) return FALSE;
    if (platformCalls().removeFolder(hostPath.c_str()) == 0) return TRUE;
    return errno == ENOTDIR ? failWith(ERROR_DIRECTORY) : failForPath(hostPath.c_str());
}

DWORD GetFileAttributesW(LPCWSTR path) {
    HostPath hostPath;
    if (!hostPath.assign(path)) return INVALID_FILE_ATTRIBUTES;
    struct stat status {};
    if (platformCalls().status(hostPath.c_str(), &status) != 0) {
        failForPath(hostPath.c_str());
        return INVALID_FILE_ATTRIBUTES;
    }
    const DWORD readOnly = (status.st_mode & kAnyWriteBit) == 0 ? FILE_ATTRIBUTE_READONLY : 0;
    if (S_ISDIR(status.st_mode)) return FILE_ATTRIBUTE_DIRECTORY | readOnly;
    return readOnly != 0 ? readOnly : FILE_ATTRIBUTE_NORMAL;
}

BOOL SetFileAttributesW(LPCWSTR path, DWORD attributes) {
    HostPath hostPath;
    if (!hostPath.assign(path)) return FALSE;
    struct stat status {};
    if (platformCalls().status(hostPath.c_str(), &status) != 0) return failForPath(hostPath.c_str());
    const mode_t writable = status.st_mode | S_IWUSR;
    const mode_t wanted = (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? status.st_mode & ~kAnyWriteBit : writable;
    return platformCalls().changeMode(hostPath.c_str(), wanted & 07777) == 0 ? TRUE : failWithErrno();
}
