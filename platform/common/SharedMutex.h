// SharedMutex.h - opening a named mutex that several programs use, of which any may be the first. Any thread.
#pragma once

#include "platform/platform.h"

namespace morvil {

// Opens the mutex of that name (`existed`), or else creates it, not owned. Null, with the last error of creating it, when neither
// can be done. To be closed with CloseHandle.
HANDLE openOrCreateMutex(const WCHAR* name, bool& existed);

}  // namespace morvil
