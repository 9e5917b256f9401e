// Errors.h - the system's error numbers as the platform's.
#pragma once

#include "platform/posix/kernel.h"

namespace morvil {

DWORD errorOf(int systemError);
// Sets the last error and answers FALSE, so that a failing function ends in one line.
BOOL failWith(DWORD error);
BOOL failWithErrno();
// For calls that took a path: a missing file is told from a missing folder.
BOOL failForPath(const char* hostPath);

}  // namespace morvil
