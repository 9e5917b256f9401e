// CaseFold.h - comparison without regard to case for names, sections and keys: Latin with its supplements, Greek and Cyrillic
// pair by pair, one code unit at a time as the platform does. No state, no locale.
#pragma once

#include "platform/common/Text.h"

namespace morvil {

WCHAR upperOf(WCHAR unit);
bool equalIgnoringCase(WStringView a, WStringView b);
// Order by upper-case code units, the order in which folders list their names.
bool lessIgnoringCase(WStringView a, WStringView b);

}  // namespace morvil
