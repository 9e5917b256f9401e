#include "platform/posix/LockFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdio>

#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil {

namespace {

constexpr mode_t kForEverybody = 0666;

// FNV-1a: names a lock file after a path of any length.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
    return hash;
}

}  // namespace

// The plain open comes first: in a shared folder some systems refuse the creating one for a file of somebody else.
int openLockFile(const std::string& hostPath) {
    constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY;
    for (int tries = 0; tries < 16; ++tries) {
        const int existing = platformCalls().open(hostPath.c_str(), kFlags, 0);
        if (existing >= 0 || errno != ENOENT) return existing;
        const int made = platformCalls().open(hostPath.c_str(), kFlags | O_CREAT | O_EXCL, kForEverybody);
        if (made >= 0) ::fchmod(made, kForEverybody);
        if (made >= 0 || errno != EEXIST) return made;
    }
    return -1;
}

struct flock rangeOf(short type, long byte) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    return range;
}

LockFile::LockFile(std::string_view kind, std::string_view subject) {
    const std::string folder = lockFolder();
    if (folder.empty()) return;
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "-%016" PRIx64 ".lock", hashOf(subject));
    m_file = openLockFile(folder + "/" + std::string(kind) + name.data());
    if (m_file < 0) {
        failWithErrno();
        return;
    }
    struct flock range = rangeOf(F_WRLCK, 0);
    if (platformCalls().lock(m_file, F_OFD_SETLKW, &range) == 0) return;
    failWithErrno();
    platformCalls().close(m_file);
    m_file = -1;
}

LockFile::~LockFile() {
    if (m_file >= 0) ::close(m_file);  // drops the lock
}

}  // namespace morvil
