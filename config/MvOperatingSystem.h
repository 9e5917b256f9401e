// MvOperatingSystem.h - two questions about the machine: its processor architecture and the folder of its printer drivers.
#pragma once

#include "platform/common/Text.h"

namespace morvil {

class MvOperatingSystem {
  public:
    enum Architecture : int { kUnknown = 0, kX86 = 1, kX64 = 2, kIa64 = 3 };

    Architecture getHardwareArchitecture();
    // "C:\Windows\system32\spool\drivers\x64\3"; empty when the system folder or the architecture is not known.
    WString getPrinterDriverSubPath();
};

}  // namespace morvil
