// Descriptor.h - an open file of the system that is closed with its scope.
#pragma once

#include <utility>

#include "platform/posix/PlatformCalls.h"

namespace morvil {

class Descriptor {
  public:
    explicit Descriptor(int file) : m_file(file) {}
    ~Descriptor() {
        if (m_file >= 0) platformCalls().close(m_file);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    // Negative when the opening failed.
    [[nodiscard]] int get() const { return m_file; }
    bool close() { return platformCalls().close(std::exchange(m_file, -1)) == 0; }

  private:
    int m_file;
};

}  // namespace morvil
