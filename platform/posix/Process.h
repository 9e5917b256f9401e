// Process.h - what a process handle refers to, and the accounts behind user numbers.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/posix/HostState.h"

namespace morvil {

struct ProcessObject final : HandleObject {
    DWORD number = 0;
    std::uint32_t owner = 0;  // user number
    WString moduleName;
};

// Fills in what is known of a process. False with the last error set.
bool describeProcess(DWORD number, ProcessObject& process);
// The process behind a handle, the own one included; empty for any other handle.
std::shared_ptr<ProcessObject> processOf(HANDLE handle);
// Name and domain (the name of this host) of a user; empty when nobody has this number.
Account accountOf(std::uint32_t user);

}  // namespace morvil
