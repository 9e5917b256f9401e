// Handle.h - owns a kernel handle for the length of a scope.
#pragma once

#include "platform/platform.h"

namespace morvil {

class Handle {
  public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    ~Handle() {
        if (m_handle != nullptr) CloseHandle(m_handle);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    explicit operator bool() const { return m_handle != nullptr; }
    [[nodiscard]] HANDLE get() const { return m_handle; }

  private:
    HANDLE m_handle;
};

}  // namespace morvil
