// PlatformCalls.cpp - the system's calls behind the table. Promises: an interrupted call is repeated. Refuses nothing.
#include "platform/posix/PlatformCalls.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace morvil {

namespace {

template <typename Call>
auto repeatInterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

int openFile(const char* path, int flags, mode_t mode) {
    return repeatInterrupted([=] { return ::open(path, flags, mode); });
}
ssize_t readFile(int file, void* bytes, std::size_t count) {
    return repeatInterrupted([=] { return ::read(file, bytes, count); });
}
ssize_t writeFile(int file, const void* bytes, std::size_t count) {
    return repeatInterrupted([=] { return ::write(file, bytes, count); });
}
int truncateFile(int file, off_t size) {
    return repeatInterrupted([=] { return ::ftruncate(file, size); });
}
int flushFile(int file) {
    return repeatInterrupted([=] { return ::fsync(file); });
}
int statusOf(const char* path, struct stat* out) { return ::stat(path, out); }
int lockRange(int file, int command, struct flock* range) {
    return repeatInterrupted([=] { return ::fcntl(file, command, range); });
}

// Some file systems know no exclusive rename; a hard link refuses an existing name as well.
int renameToNewName(const char* from, const char* to) {
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return -1;
    return ::link(from, to) == 0 ? ::unlink(from) : -1;
}

void* allocateZeroed(std::size_t bytes) { return std::calloc(1, bytes); }
void sleepFor(std::uint32_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

constexpr PlatformCalls kSystemCalls{.open = openFile,
                                     .read = readFile,
                                     .write = writeFile,
                                     .close = ::close,  // not repeated: the descriptor is gone whatever it answers
                                     .truncate = truncateFile,
                                     .flush = flushFile,
                                     .status = statusOf,
                                     .remove = ::unlink,
                                     .rename = ::rename,
                                     .renameToNew = renameToNewName,
                                     .changeMode = ::chmod,
                                     .makeFolder = ::mkdir,
                                     .removeFolder = ::rmdir,
                                     .openFolder = ::opendir,
                                     .lock = lockRange,
                                     .allocate = allocateZeroed,
                                     .sleep = sleepFor};

}  // namespace

const PlatformCalls& systemCalls() { return kSystemCalls; }

PlatformCalls& platformCalls() {
    static constinit PlatformCalls calls = kSystemCalls;
    return calls;
}

}  // namespace morvil
