// files.cpp - open files. Promises: bytes reach the system at once; a full disk (or quota, or size limit) fails with
// ERROR_DISK_FULL and says how much was written; CREATE_ALWAYS and OPEN_ALWAYS set ERROR_ALREADY_EXISTS when the file was
// there; a file without any write permission is read-only for everybody; DELETE_ON_CLOSE removes the file when this handle
// closes. Opening a pipe or a device does not wait.
// Refuses: sharing modes (every file is shared in full), overlapped work, templates, security attributes (all ignored).
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <string>
#include <utility>

#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

using namespace morvil;

namespace {

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kAnyWriteBit = 0222;

struct DeleteOnClose final : HandleObject {
    explicit DeleteOnClose(std::string path) : m_path(std::move(path)) {}
    std::string m_path;
};

int openFlagsOf(DWORD access) {
    constexpr int kAlways = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const bool read = (access & GENERIC_READ) != 0;
    const bool write = (access & GENERIC_WRITE) != 0;
    const bool append = !write && (access & FILE_APPEND_DATA) != 0;
    if (!write && !append) return kAlways | O_RDONLY;
    return kAlways | (read ? O_RDWR : O_WRONLY) | (append ? O_APPEND : 0);
}

bool wantsWriting(int flags) { return (flags & O_ACCMODE) != O_RDONLY; }

struct Opened {
    int file = -1;
    bool existed = false;
};

// Opens an existing file or makes a new one, and knows which of both it did.
Opened openOrCreate(const char* path, int flags) {
    constexpr int kTries = 16;  // another process may make and remove the file in between
    for (int i = 0; i < kTries; ++i) {
        const int existing = platformCalls().open(path, flags, 0);
        if (existing >= 0) return {existing, true};
        if (errno != ENOENT) return {};
        const int made = platformCalls().open(path, flags | O_CREAT | O_EXCL, kNewFileMode);
        if (made >= 0) return {made, false};
        if (errno != EEXIST) return {};
    }
    return {};
}

Opened openByDisposition(const char* path, int flags, DWORD disposition) {
    switch (disposition) {
        case CREATE_NEW: return {platformCalls().open(path, flags | O_CREAT | O_EXCL, kNewFileMode), false};
        case CREATE_ALWAYS:
        case OPEN_ALWAYS: return openOrCreate(path, flags);
        default: return {platformCalls().open(path, flags, 0), true};
    }
}

// Why an existing file that could be opened must not be used, or success.
DWORD objectionTo(int file, int flags) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return errorOf(errno);
    if (S_ISDIR(status.st_mode)) return ERROR_ACCESS_DENIED;
    if (wantsWriting(flags) && (status.st_mode & kAnyWriteBit) == 0) return ERROR_ACCESS_DENIED;
    return ERROR_SUCCESS;
}

bool empties(DWORD disposition) { return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING; }

HANDLE abandonOpen(int file, DWORD error) {
    platformCalls().close(file);
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

// The descriptor behind a handle; -1 with the last error set.
int fileOf(HANDLE handle) {
    const int file = hostState().handles.file(handle);
    if (file < 0) SetLastError(ERROR_INVALID_HANDLE);
    return file;
}

}  // namespace

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD, SECURITY_ATTRIBUTES*, DWORD disposition, DWORD flags, HANDLE) {
    HostPath hostPath;
    if (!hostPath.assign(path)) return INVALID_HANDLE_VALUE;
    if (disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    const int openFlags = openFlagsOf(access);
    const Opened opened = openByDisposition(hostPath.c_str(), openFlags, disposition);
    if (opened.file < 0) {
        failForPath(hostPath.c_str());
        return INVALID_HANDLE_VALUE;
    }
    if (opened.existed) {
        if (const DWORD error = objectionTo(opened.file, openFlags); error != ERROR_SUCCESS) return abandonOpen(opened.file, error);
        if (empties(disposition) && platformCalls().truncate(opened.file, 0) != 0) return abandonOpen(opened.file, errorOf(errno));
    }
    HandleEntry entry{.kind = HandleKind::File, .file = opened.file, .object = nullptr};
    if ((flags & FILE_FLAG_DELETE_ON_CLOSE) != 0) entry.object = std::make_shared<DeleteOnClose>(hostPath.c_str());
    const HANDLE handle = hostState().handles.add(std::move(entry));
    if (handle == INVALID_HANDLE_VALUE) return abandonOpen(opened.file, ERROR_TOO_MANY_OPEN_FILES);
    if (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS) SetLastError(opened.existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

BOOL CloseHandle(HANDLE handle) {
    if (handle == GetCurrentProcess()) return TRUE;
    const auto entry = hostState().handles.take(handle);
    if (!entry) return failWith(ERROR_INVALID_HANDLE);
    if (entry->kind != HandleKind::File) return TRUE;
    if (entry->object) platformCalls().remove(static_cast<const DeleteOnClose&>(*entry->object).m_path.c_str());
    return platformCalls().close(entry->file) == 0 ? TRUE : failWithErrno();
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD bytesRead, OVERLAPPED*) {
    if (bytesRead != nullptr) *bytesRead = 0;
    const int descriptor = fileOf(file);
    if (descriptor < 0) return FALSE;
    const ssize_t got = platformCalls().read(descriptor, buffer, bytes);
    if (got < 0) return failWithErrno();
    if (bytesRead != nullptr) *bytesRead = static_cast<DWORD>(got);
    return TRUE;
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD bytesWritten, OVERLAPPED*) {
    if (bytesWritten != nullptr) *bytesWritten = 0;
    const int descriptor = fileOf(file);
    if (descriptor < 0) return FALSE;
    for (DWORD total = 0; total < bytes;) {
        const ssize_t put = platformCalls().write(descriptor, static_cast<const BYTE*>(buffer) + total, bytes - total);
        if (put < 0) return failWithErrno();
        if (put == 0) return failWith(ERROR_WRITE_FAULT);
        total += static_cast<DWORD>(put);
        if (bytesWritten != nullptr) *bytesWritten = total;
    }
    return TRUE;
}

BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* newPosition, DWORD method) {
    constexpr std::array kOrigins{SEEK_SET, SEEK_CUR, SEEK_END};
    const int descriptor = fileOf(file);
    if (descriptor < 0) return FALSE;
    if (method > FILE_END) return failWith(ERROR_INVALID_PARAMETER);
    const off_t position = ::lseek(descriptor, distance.QuadPart, kOrigins[method]);
    if (position < 0) return failWith(errno == EINVAL ? ERROR_NEGATIVE_SEEK : errorOf(errno));
    if (newPosition != nullptr) newPosition->QuadPart = position;
    return TRUE;
}

BOOL SetEndOfFile(HANDLE file) {
    const int descriptor = fileOf(file);
    if (descriptor < 0) return FALSE;
    const off_t position = ::lseek(descriptor, 0, SEEK_CUR);
    if (position < 0) return failWithErrno();
    if (platformCalls().truncate(descriptor, position) == 0) return TRUE;
    // A descriptor that was opened for reading alone is reported as a wrong argument.
    return failWith(errno == EINVAL ? ERROR_ACCESS_DENIED : errorOf(errno));
}

BOOL GetFileSizeEx(HANDLE file, LARGE_INTEGER* size) {
    if (refused("GetFileSizeEx")) return FALSE;
    const int descriptor = fileOf(file);
    if (descriptor < 0) return FALSE;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return failWithErrno();
    size->QuadPart = status.st_size;
    return TRUE;
}

BOOL FlushFileBuffers(HANDLE file) {
    const int descriptor = fileOf(file);
    if (descriptor < 0) return FALSE;
    return platformCalls().flush(descriptor) == 0 ? TRUE : failWithErrno();
}
