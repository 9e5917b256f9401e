// mutex.cpp - `Global\NAME` is a lock file that all processes of this data root share. Promises: one thread of one process
// holds it at a time, and may take it again as often as it releases it; waits end at their time; a holder that died (its
// process or its thread, however it ended) gives the next waiter WAIT_ABANDONED, once; a name exists as long as some process
// has it open, so the first opening fails and the first creation tells that it is new. Ownership is the system's lock on byte 0
// of the file, which ends with its holder; the record in its bytes (HolderRecord.h) is wiped on release, so that a record
// without a lock tells of a death. A shared lock on byte 1 says that the name is open.
// Refuses: names without `Global\`, other namespaces and unnamed mutexes (ERROR_INVALID_NAME); waiting in order of arrival;
// inheriting (a forked child owns nothing and opens the file anew).

#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "platform/common/SharedMutex.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HolderRecord.h"
#include "platform/posix/HostState.h"
#include "platform/posix/LockFile.h"
#include "platform/posix/NamedMutex.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr long kOwnershipByte = 0;
constexpr long kExistenceByte = 1;
constexpr microseconds kFirstPause{20};
constexpr microseconds kLongestPause{1000};
constexpr milliseconds kLivenessPeriod{5};

bool threadLives(DWORD thread) { return ::syscall(SYS_tgkill, ::getpid(), static_cast<pid_t>(thread), 0) == 0 || errno != ESRCH; }

// Until when a wait lasts; INFINITE has no end.
class Deadline {
  public:
    explicit Deadline(DWORD wait) {
        if (wait != INFINITE) m_end = Clock::now() + milliseconds(wait);
    }
    [[nodiscard]] bool over() const { return m_end && Clock::now() >= *m_end; }
    [[nodiscard]] Clock::time_point within(microseconds longest) const {
        const Clock::time_point end = Clock::now() + longest;
        return m_end ? std::min(*m_end, end) : end;
    }

  private:
    std::optional<Clock::time_point> m_end;
};

class FileMutex final : public NamedMutex {
  public:
    explicit FileMutex(std::string path) : m_path(std::move(path)) {}
    ~FileMutex() override { closeFile(); }

    // False with errno set. `existed`: another process has the name open.
    bool open(bool create, bool& existed);
    // Gives the name up but keeps the file for the next opening. False when it is not to be used again.
    bool park();
    DWORD wait(DWORD duration) override;
    bool release() override;
    bool isHeld() override {
        const std::lock_guard guard(m_lock);
        return m_depth > 0;
    }

  private:
    enum class Attempt : std::uint8_t { Taken, Busy, Failed };
    bool openFile(bool create);
    bool isUsable();
    void closeFile();
    bool adoptAfterFork();
    bool showOpen();
    [[nodiscard]] bool lockByte(short type, long byte) const;
    [[nodiscard]] Attempt tryFile() const;
    DWORD waitForFile(const Deadline& deadline, DWORD thread);
    DWORD keep(DWORD thread);
    void giveUp();

    const std::string m_path;
    std::mutex m_lock;
    std::condition_variable m_freed;
    pid_t m_process = 0;  // which opened the file; another one was forked from it
    int m_file = -1;
    dev_t m_device = 0;  // which file that is, for as long as it is open
    ino_t m_number = 0;
    bool m_shownOpen = false;  // by the lock on the existence byte
    HolderRecord m_record;
    DWORD m_owner = 0;     // thread that holds the mutex, or is the one of this process that waits for the file
    unsigned m_depth = 0;  // how often it holds it
};

bool FileMutex::openFile(bool create) {
    m_file = create ? openLockFile(m_path) : platformCalls().open(m_path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, 0);
    m_process = static_cast<pid_t>(GetCurrentProcessId());
    struct stat status {};
    if (m_file < 0 || ::fstat(m_file, &status) != 0) return false;
    m_device = status.st_dev;
    m_number = status.st_ino;
    return true;
}

void FileMutex::closeFile() {
    m_record.close();
    if (m_file >= 0) ::close(m_file);
    m_file = -1;
    m_shownOpen = false;
}

// Whether a file that was kept is still the one of the name, and this process's own.
bool FileMutex::isUsable() {
    struct stat named {};
    if (m_file < 0 || m_process != static_cast<pid_t>(GetCurrentProcessId())) return false;
    if (platformCalls().status(m_path.c_str(), &named) != 0) return false;
    const bool whole = named.st_size >= static_cast<off_t>(HolderRecord::kBytes);  // its record may be mapped
    return whole && named.st_dev == m_device && named.st_ino == m_number;
}

bool FileMutex::open(bool create, bool& existed) {
    existed = false;
    if (!isUsable()) {
        closeFile();
        if (!openFile(create)) return false;
    }
    struct flock range = rangeOf(F_WRLCK, kExistenceByte);
    if (platformCalls().lock(m_file, F_OFD_GETLK, &range) != 0) return false;
    existed = range.l_type != F_UNLCK;
    if (!existed && !create) {
        errno = ENOENT;
        return false;
    }
    return showOpen() && (m_record.isOpen() || m_record.open(m_file));
}

bool FileMutex::showOpen() {
    m_shownOpen = lockByte(F_RDLCK, kExistenceByte);
    return m_shownOpen;
}

// A mutex that is held dies with its file: so the next one learns that its holder left it.
bool FileMutex::park() {
    const std::lock_guard guard(m_lock);
    if (m_file < 0 || m_owner != 0 || m_process != static_cast<pid_t>(GetCurrentProcessId())) return false;
    return !std::exchange(m_shownOpen, false) || lockByte(F_UNLCK, kExistenceByte);
}

bool FileMutex::adoptAfterFork() {
    if (m_process == static_cast<pid_t>(GetCurrentProcessId())) return true;
    closeFile();
    m_owner = 0;
    m_depth = 0;
    return openFile(true) && showOpen() && m_record.open(m_file);
}

bool FileMutex::lockByte(short type, long byte) const {
    struct flock range = rangeOf(type, byte);
    return platformCalls().lock(m_file, F_OFD_SETLK, &range) == 0;
}

FileMutex::Attempt FileMutex::tryFile() const {
    if (lockByte(F_WRLCK, kOwnershipByte)) return Attempt::Taken;
    return errno == EAGAIN || errno == EACCES ? Attempt::Busy : Attempt::Failed;
}

// The calling thread has the file and keeps the mutex.
DWORD FileMutex::keep(DWORD thread) {
    const bool died = m_record.isHeld();
    m_record.take(GetCurrentProcessId(), thread);
    const std::lock_guard guard(m_lock);
    m_depth = 1;
    return died ? WAIT_ABANDONED : WAIT_OBJECT_0;
}

void FileMutex::giveUp() {
    {
        const std::lock_guard guard(m_lock);
        m_owner = 0;
        m_depth = 0;
    }
    m_freed.notify_one();
}

DWORD FileMutex::waitForFile(const Deadline& deadline, DWORD thread) {
    microseconds pause = kFirstPause;
    for (;;) {
        switch (tryFile()) {
            case Attempt::Taken: return keep(thread);
            case Attempt::Failed:
                failWithErrno();
                giveUp();
                return WAIT_FAILED;
            case Attempt::Busy: break;
        }
        if (deadline.over()) {
            giveUp();
            return WAIT_TIMEOUT;
        }
        std::this_thread::sleep_until(deadline.within(pause));
        pause = std::min(pause * 2, kLongestPause);
    }
}

DWORD FileMutex::wait(DWORD duration) {
    const DWORD thread = GetCurrentThreadId();
    const Deadline deadline(duration);
    {
        std::unique_lock guard(m_lock);
        if (!adoptAfterFork()) {
            failWithErrno();
            return WAIT_FAILED;
        }
        if (m_owner == thread) {
            ++m_depth;
            return WAIT_OBJECT_0;
        }
        while (m_owner != 0) {
            if (!threadLives(m_owner)) {
                // Its lock on the file is this process's and passes on with the record still in it.
                const bool had = m_depth > 0;
                m_owner = thread;
                m_depth = had ? 1 : 0;
                if (!had) break;
                m_record.take(GetCurrentProcessId(), thread);
                return WAIT_ABANDONED;
            }
            if (deadline.over()) return WAIT_TIMEOUT;
            m_freed.wait_until(guard, deadline.within(kLivenessPeriod));
        }
        m_owner = thread;
    }
    return waitForFile(deadline, thread);
}

bool FileMutex::release() {
    {
        const std::lock_guard guard(m_lock);
        if (m_process != static_cast<pid_t>(GetCurrentProcessId()) || m_owner != GetCurrentThreadId() || m_depth == 0) return false;
        if (--m_depth > 0) return true;
        m_record.release();
        (void)lockByte(F_UNLCK, kOwnershipByte);
        m_owner = 0;
    }
    m_freed.notify_one();
    return true;
}

// A file name for any mutex name: what no file name should hold is written as its number.
std::string fileNameOf(WStringView name) {
    std::string out = "mutex-";
    for (const char byte : toUtf8(name)) {
        const bool plain =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '_' || byte == '-';
        if (plain) {
            out += byte;
            continue;
        }
        std::array<char, 4> number{};
        std::snprintf(number.data(), number.size(), "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        out += number.data();
    }
    return out + ".lock";
}

bool isGlobalName(WStringView name, WStringView& rest) {
    constexpr WStringView kGlobal = TEXT("Global\\");
    constexpr std::size_t kLongest = 60;  // in a file name each character may take nine bytes
    if (!name.starts_with(kGlobal)) return false;
    rest = name.substr(kGlobal.size());
    return !rest.empty() && rest.size() <= kLongest && rest.find(TEXT('\\')) == WStringView::npos;
}

// When its last handle is closed, a mutex waits in the host state for the next opening of its name: a store opens it for every
// load, and a new file with its mapping takes longer than all the rest of it.
void parkOrDelete(FileMutex* mutex, const std::string& path) {
    std::unique_ptr<FileMutex> owned(mutex);
    if (!owned->park()) return;
    HostState& state = hostState();
    const std::lock_guard guard(state.lock);
    state.parkedMutexes[path] = std::move(owned);
}

// One that waits for this name, or a new one. REQUIRES: the host state's lock is held.
std::unique_ptr<FileMutex> unopened(const std::string& path) {
    const auto parked = hostState().parkedMutexes.extract(path);
    if (parked.empty()) return std::make_unique<FileMutex>(path);
    return std::unique_ptr<FileMutex>(static_cast<FileMutex*>(parked.mapped().release()));
}

// The object of this process for a name, opened when it is not open yet. Empty with the last error set.
std::shared_ptr<NamedMutex> objectOf(WStringView name, bool create, bool& existed) {
    WStringView rest;
    if (!isGlobalName(name, rest)) {
        SetLastError(ERROR_INVALID_NAME);
        return nullptr;
    }
    const std::string path = lockFolderName() + '/' + fileNameOf(rest);
    HostState& state = hostState();
    const std::lock_guard guard(state.lock);
    if (auto open = state.mutexes[path].lock()) {
        existed = true;
        return open;
    }
    std::unique_ptr<FileMutex> made = unopened(path);
    bool opened = made->open(create, existed);
    // The first mutex of a data root finds no folder for its file.
    if (!opened && create && errno == ENOENT) opened = !lockFolder().empty() && made->open(create, existed);
    if (!opened) {
        failWithErrno();
        if (made->park()) state.parkedMutexes[path] = std::move(made);
        return nullptr;
    }
    std::shared_ptr<NamedMutex> open(made.release(), [path](FileMutex* mutex) { parkOrDelete(mutex, path); });
    state.mutexes[path] = open;
    return open;
}

HANDLE handleOf(std::shared_ptr<NamedMutex> mutex) {
    const HANDLE handle = hostState().handles.add({.kind = HandleKind::Mutex, .file = -1, .object = std::move(mutex)});
    if (handle != INVALID_HANDLE_VALUE) return handle;
    SetLastError(ERROR_TOO_MANY_OPEN_FILES);
    return nullptr;
}

}  // namespace

}  // namespace morvil

using namespace morvil;

HANDLE CreateMutexW(SECURITY_ATTRIBUTES*, BOOL initialOwner, LPCWSTR name) {
    if (refused("CreateMutexW")) return nullptr;
    bool existed = false;
    auto mutex = objectOf(viewOf(name), true, existed);
    if (!mutex) return nullptr;
    if (initialOwner != FALSE && !existed) mutex->wait(0);
    const HANDLE handle = handleOf(std::move(mutex));
    if (handle != nullptr) SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

HANDLE OpenMutexW(DWORD, BOOL, LPCWSTR name) {
    if (refused("OpenMutexW")) return nullptr;
    bool existed = false;
    auto mutex = objectOf(viewOf(name), false, existed);
    return mutex ? handleOf(std::move(mutex)) : nullptr;
}

// As OpenMutexW and CreateMutexW one after the other, but with one look at the file.
HANDLE morvil::openOrCreateMutex(const WCHAR* name, bool& existed) {
    const bool mayOpen = !refused("OpenMutexW");
    const bool mayCreate = !refused("CreateMutexW");
    existed = false;
    auto mutex = mayOpen || mayCreate ? objectOf(viewOf(name), mayCreate, existed) : nullptr;
    existed = existed && mayOpen;
    if (mutex) return handleOf(std::move(mutex));
    (void)refused("CreateMutexW");  // its error is the one that counts
    return nullptr;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    if (refused("WaitForSingleObject")) return WAIT_FAILED;
    const auto mutex = hostState().handles.get<NamedMutex>(handle, HandleKind::Mutex);
    if (mutex) return mutex->wait(milliseconds);
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
}

BOOL ReleaseMutex(HANDLE handle) {
    if (refused("ReleaseMutex")) return FALSE;
    const auto mutex = hostState().handles.get<NamedMutex>(handle, HandleKind::Mutex);
    if (!mutex) return failWith(ERROR_INVALID_HANDLE);
    return mutex->release() ? TRUE : failWith(ERROR_NOT_OWNER);
}
