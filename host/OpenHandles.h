// OpenHandles.h - how many handles of the system this process has open, for whoever looks for leaks.
#pragma once

#include <cstdint>

#include "platform/platform.h"

namespace morvil::host {

// Asks for each handle that a small process can have: Wine does not answer GetProcessHandleCount.
inline std::size_t openHandles() {
    constexpr std::uintptr_t kStep = 4;  // between two handles
    constexpr std::uintptr_t kBeyond = 1024 * kStep;
    std::size_t count = 0;
    for (std::uintptr_t value = kStep; value < kBeyond; value += kStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE) ++count;
    }
    return count;
}

}  // namespace morvil::host
