// PlatformCalls.h - the one table through which this folder makes every system call that can fail.
// Production code never assigns to it; tests replace entries to make chosen calls fail. Results and errno are those of the
// system calls of the same names.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace morvil {

struct PlatformCalls {
    int (*open)(const char* path, int flags, mode_t mode);
    ssize_t (*read)(int file, void* bytes, std::size_t count);
    ssize_t (*write)(int file, const void* bytes, std::size_t count);
    int (*close)(int file);
    int (*truncate)(int file, off_t size);
    int (*flush)(int file);  // fsync
    int (*status)(const char* path, struct stat* out);
    int (*remove)(const char* path);  // unlink
    int (*rename)(const char* from, const char* to);
    int (*renameToNew)(const char* from, const char* to);  // EEXIST when `to` exists
    int (*changeMode)(const char* path, mode_t mode);
    int (*makeFolder)(const char* path, mode_t mode);
    int (*removeFolder)(const char* path);
    DIR* (*openFolder)(const char* path);
    int (*lock)(int file, int command, struct flock* range);  // open file description locks
    void* (*allocate)(std::size_t bytes);                     // zero-filled
    void (*sleep)(std::uint32_t milliseconds);
};

// The table in force. A fresh process has the system's own calls in it.
PlatformCalls& platformCalls();
// The system's own calls.
const PlatformCalls& systemCalls();

}  // namespace morvil
