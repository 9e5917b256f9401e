// errors.cpp - the last error of each thread. Promises what the platform does: a success leaves it alone except where the
// function says otherwise. Refuses nothing.
#include "platform/posix/Errors.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

struct ErrorPair {
    int system;
    DWORD platform;
};
constexpr std::array kErrors{
    ErrorPair{ENOENT, ERROR_FILE_NOT_FOUND},
    ErrorPair{ENOTDIR, ERROR_PATH_NOT_FOUND},
    ErrorPair{ELOOP, ERROR_PATH_NOT_FOUND},
    ErrorPair{EACCES, ERROR_ACCESS_DENIED},
    ErrorPair{EPERM, ERROR_ACCESS_DENIED},
    ErrorPair{EISDIR, ERROR_ACCESS_DENIED},
    ErrorPair{EROFS, ERROR_WRITE_PROTECT},
    ErrorPair{EEXIST, ERROR_FILE_EXISTS},
    ErrorPair{ENOSPC, ERROR_DISK_FULL},
    ErrorPair{EDQUOT, ERROR_DISK_FULL},
    ErrorPair{EFBIG, ERROR_DISK_FULL},
    ErrorPair{EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    ErrorPair{ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    ErrorPair{ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    ErrorPair{EXDEV, ERROR_NOT_SAME_DEVICE},
    ErrorPair{ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    ErrorPair{ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    ErrorPair{EBUSY, ERROR_SHARING_VIOLATION},
    ErrorPair{ETXTBSY, ERROR_SHARING_VIOLATION},
    ErrorPair{EBADF, ERROR_ACCESS_DENIED},  // the file was opened without this right
    ErrorPair{EINVAL, ERROR_INVALID_PARAMETER},
    ErrorPair{EIO, ERROR_IO_DEVICE},
};

bool parentExists(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || slash == 0) return true;
    struct stat status {};
    return ::stat(std::string(path.substr(0, slash)).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

DWORD GetLastError() { return lastError; }
void SetLastError(DWORD error) { lastError = error; }

namespace morvil {

DWORD errorOf(int systemError) {
    for (const ErrorPair& pair : kErrors) {
        if (pair.system == systemError) return pair.platform;
    }
    return ERROR_GEN_FAILURE;
}

BOOL failWith(DWORD error) {
    SetLastError(error);
    return FALSE;
}

BOOL failWithErrno() { return failWith(errorOf(errno)); }

BOOL failForPath(const char* hostPath) {
    const int systemError = errno;
    if (systemError == ENOENT && !parentExists(hostPath)) return failWith(ERROR_PATH_NOT_FOUND);
    return failWith(errorOf(systemError));
}

}  // namespace morvil
