// JobNameRules.h - how a title becomes a job name: one rule for each kind of printing application, and the replacement of
// characters. Functions without state.
#pragma once

#include "platform/common/Text.h"

namespace morvil {

inline constexpr const WCHAR* kDefaultJobName = TEXT("MorvilJob");

// Formats count from 1 in the order of the application lists; 0 is every other application. A rule that leaves nothing over
// falls back to the whole title.
WString reduceTitle(WStringView title, int format);

// Characters beyond Latin-1 become "_". A name of which a third or more was replaced says nothing any more: "ErrorJobname".
WString replaceUnusable(WStringView name);

}  // namespace morvil
