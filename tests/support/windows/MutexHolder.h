// MutexHolder.h - a process of its own that holds a named mutex until it is let go or ended. It is this test program, started with
// an option that main() hands on to holdMutex.
#pragma once

#include <string>

#include "platform/platform.h"

namespace morvil::test {

inline constexpr char kHoldMutexOption[] = "--hold-mutex";

// The other process: takes the mutex, says so on its standard output, lets go when its standard input ends. Its exit status.
int holdMutex(const char* name);

class MutexHolder {
  public:
    explicit MutexHolder(const std::string& name);
    // Ends the process when nobody waited for it.
    ~MutexHolder();
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

    // Waits until the process has the mutex; false when it ended without.
    [[nodiscard]] bool holds() const;
    void letGo();
    // Waits for the end; the exit status.
    DWORD finish();
    // Ends the process at once, with the mutex in its hands.
    void kill();

  private:
    HANDLE m_process = nullptr;
    HANDLE m_toHolder = nullptr;
    HANDLE m_fromHolder = nullptr;
};

}  // namespace morvil::test
