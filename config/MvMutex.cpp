#include "config/MvMutex.h"

#include "driver/log/Log.h"
#include "platform/common/SharedMutex.h"

namespace morvil {

namespace {

constexpr int kOpenAttempts = 5;
constexpr DWORD kPauseBetweenAttempts = 1000;  // milliseconds

}  // namespace

int MvMutex::timeoutOf(const DebugSwitches& switches) {
    constexpr int kUsual = 10000;
    const int timeout = switches.value(TEXT("MvMutexTimeOut"));
    return timeout >= 0 ? timeout : kUsual;
}

MvMutex::MvMutex(const WCHAR* name, const DebugSwitches& switches)
    : m_timeout(timeoutOf(switches)), m_processId(GetCurrentProcessId()), m_threadId(GetCurrentThreadId()) {
    for (int attempt = 1; attempt <= kOpenAttempts; ++attempt) {
        open(name);
        if (m_handle != nullptr) return;
        debugPrint(TEXT("!!! MvMutex::MvMutex last error=%d\n"), GetLastError());
        if (attempt < kOpenAttempts) Sleep(kPauseBetweenAttempts);
    }
}

void MvMutex::open(const WCHAR* name) {
    bool existed = false;
    m_handle = openOrCreateMutex(name, existed);
    if (m_handle == nullptr) return;
    debugPrint(existed ? TEXT("MvMutex::MvMutex use existing mutex (%X), processID=%d, threadID=%d, msTimeOut=%d\n")
                       : TEXT("MvMutex::MvMutex create new mutex (%X), processID=%d, threadID=%d, msTimeOut=%d\n"),
               low32(m_handle), m_processId, m_threadId, m_timeout);
}

MvMutex::~MvMutex() {
    debugPrint(TEXT("MvMutex::~MvMutex close mutex, processID=%d, threadID=%d\n"), m_processId, m_threadId);
    if (m_handle != nullptr) CloseHandle(m_handle);
}

bool MvMutex::grant() const {
    if (m_handle == nullptr) return false;
    const DWORD result = WaitForSingleObject(m_handle, static_cast<DWORD>(m_timeout));
    // Its last owner died inside: what it guards may be half done, so this caller goes without. But it owns the mutex now, and
    // everybody else would wait for it.
    if (result == WAIT_ABANDONED) ReleaseMutex(m_handle);
    return result == WAIT_OBJECT_0;
}

bool MvMutex::wait() {
    if (!grant()) {
        debugPrint(TEXT("!!! MvMutex::wait timeout during wait for mutex, processID=%d, threadID=%d, msTimeOut=%d\n"), m_processId,
                   m_threadId, m_timeout);
        return false;
    }
    debugPrint(TEXT("MvMutex::wait got mutex (%X), processID=%d, threadID=%d, msTimeOut=%d\n"), low32(m_handle), m_processId, m_threadId,
               m_timeout);
    return true;
}

void MvMutex::release() {
    debugPrint(TEXT("MvMutex::release 1 mutex (%X), processID=%d, threadID=%d\n"), low32(m_handle), m_processId, m_threadId);
    ReleaseMutex(m_handle);
    debugPrint(TEXT("MvMutex::release 2 mutex (%X), processID=%d, threadID=%d\n"), low32(m_handle), m_processId, m_threadId);
}

}  // namespace morvil
