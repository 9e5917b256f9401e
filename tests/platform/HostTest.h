// HostTest.h - what the tests of this host's own functions share: a data root of their own, and handles that close themselves.
#pragma once

#include <gtest/gtest.h>

#include "platform/posix/HostState.h"
#include "support/TempHome.h"

namespace morvil::test {

struct HostTest : testing::Test {
    TempHome home;
};

inline constexpr DWORD kSomePid = 3'999'999'999U;  // beyond what the system hands out

class Handle {
  public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    ~Handle() {
        if (m_handle != nullptr) CloseHandle(m_handle);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    operator HANDLE() const { return m_handle; }  // NOLINT(google-explicit-constructor)

  private:
    HANDLE m_handle;
};

}  // namespace morvil::test
