#include "support/FailingCalls.h"

#include <cerrno>
#include <stdexcept>

#include "platform/posix/PlatformCalls.h"

namespace morvil::test {

namespace {

FailingCalls* active = nullptr;

bool fails(const char* call, int error) {
    if (active == nullptr || !active->strikes(call)) return false;
    errno = error;
    return true;
}

int failingClose(int file) {
    const int result = systemCalls().close(file);  // the descriptor is gone either way, as with the real call
    return fails("close", EIO) ? -1 : result;
}

constexpr PlatformCalls kFailingCalls{
    .open = [](const char* path, int flags, mode_t mode) { return fails("open", EACCES) ? -1 : systemCalls().open(path, flags, mode); },
    .read = [](int file, void* bytes, std::size_t count) -> ssize_t {
        return fails("read", EIO) ? -1 : systemCalls().read(file, bytes, count);
    },
    .write = [](int file, const void* bytes, std::size_t count) -> ssize_t {
        return fails("write", ENOSPC) ? -1 : systemCalls().write(file, bytes, count);
    },
    .close = failingClose,
    .truncate = [](int file, off_t size) { return fails("truncate", EIO) ? -1 : systemCalls().truncate(file, size); },
    .flush = [](int file) { return fails("flush", EIO) ? -1 : systemCalls().flush(file); },
    .status = [](const char* path, struct stat* out) { return fails("status", EACCES) ? -1 : systemCalls().status(path, out); },
    .remove = [](const char* path) { return fails("remove", EACCES) ? -1 : systemCalls().remove(path); },
    .rename = [](const char* from, const char* to) { return fails("rename", EACCES) ? -1 : systemCalls().rename(from, to); },
    .renameToNew = [](const char* from, const char* to) { return fails("renameToNew", EACCES) ? -1 : systemCalls().renameToNew(from, to); },
    .changeMode = [](const char* path, mode_t mode) { return fails("changeMode", EPERM) ? -1 : systemCalls().changeMode(path, mode); },
    .makeFolder = [](const char* path, mode_t mode) { return fails("makeFolder", EACCES) ? -1 : systemCalls().makeFolder(path, mode); },
    .removeFolder = [](const char* path) { return fails("removeFolder", EACCES) ? -1 : systemCalls().removeFolder(path); },
    .openFolder = [](const char* path) -> DIR* { return fails("openFolder", EACCES) ? nullptr : systemCalls().openFolder(path); },
    .lock = [](int file, int command,
               struct flock* range) { return fails("lock", ENOLCK) ? -1 : systemCalls().lock(file, command, range); },
    .allocate = [](std::size_t bytes) -> void* { return fails("allocate", ENOMEM) ? nullptr : systemCalls().allocate(bytes); },
    .sleep = [](std::uint32_t milliseconds) { systemCalls().sleep(milliseconds); }};

}  // namespace

FailingCalls::FailingCalls(int n, Fault fault, std::string_view only) : m_n(n), m_fault(fault), m_only(only) {
    if (active != nullptr) throw std::logic_error("one set of failing calls at a time");
    active = this;
    platformCalls() = kFailingCalls;
}

FailingCalls::~FailingCalls() {
    platformCalls() = systemCalls();
    active = nullptr;
}

bool FailingCalls::strikes(const char* call) {
    if (!m_only.empty() && m_only != call) return false;
    ++m_seen;
    const bool now = m_seen == m_n || (m_fault == Fault::Persistent && m_seen > m_n);
    if (!now) return false;
    if (m_fired++ == 0) m_failedCall = call;
    return true;
}

}  // namespace morvil::test
