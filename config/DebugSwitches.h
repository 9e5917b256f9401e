// DebugSwitches.h - the debug switches as one operation sees them: whether there is a file of them is asked once, for no
// customer's machine has one and a store is opened for every vector. What the file holds is read at each use.
#pragma once

#include "platform/platform.h"

namespace morvil {

class DebugSwitches {
  public:
    DebugSwitches();
    // The switch's whole number; -1 when it is missing.
    [[nodiscard]] int value(const WCHAR* key) const;

  private:
    bool m_present;
};

}  // namespace morvil
