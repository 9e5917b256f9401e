// MvMutex.h - the named mutex that guards the configuration files across processes, and a scope that holds it.
// Owns its handle. The timeout is looked up once, when the mutex is opened. One thread at a time.
#pragma once

#include "config/DebugSwitches.h"
#include "platform/platform.h"

namespace morvil {

inline constexpr const WCHAR* kConfigurationMutex = TEXT("Global\\PRINTERCONFIGSYNCH");

class MvMutex {
  public:
    // Opens the mutex or creates it, not owned. When that cannot be done every wait fails.
    explicit MvMutex(const WCHAR* name, const DebugSwitches& switches = {});
    ~MvMutex();
    MvMutex(const MvMutex&) = delete;
    MvMutex& operator=(const MvMutex&) = delete;

    // Milliseconds for which one that is opened now waits.
    [[nodiscard]] static int timeoutOf(const DebugSwitches& switches);

    // True when the mutex is had. An abandoned one counts as a failure and is let go at once.
    bool wait();
    // REQUIRES: the last wait succeeded.
    void release();

  private:
    void open(const WCHAR* name);
    [[nodiscard]] bool grant() const;

    HANDLE m_handle = nullptr;
    int m_timeout;          // milliseconds
    DWORD m_processId;      // of the creator, for the texts
    DWORD m_threadId;
};

class MvMutexLock {
  public:
    explicit MvMutexLock(MvMutex& mutex) : m_mutex(mutex), m_held(mutex.wait()) {}
    ~MvMutexLock() {
        if (m_held) m_mutex.release();
    }
    MvMutexLock(const MvMutexLock&) = delete;
    MvMutexLock& operator=(const MvMutexLock&) = delete;

    [[nodiscard]] bool held() const { return m_held; }

  private:
    MvMutex& m_mutex;
    bool m_held;
};

}  // namespace morvil
