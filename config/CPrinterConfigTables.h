// CPrinterConfigTables.h - the fixed lists of the configuration model: process modes, resolutions, cut lines, shoulders,
// flag names and the colour-matching items of a new configuration. Constants, and look-ups in them.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "config/ConfigurationRecord.h"
#include "platform/common/Text.h"

namespace morvil {

// Each name list ends with "none", which is also what an index beyond the list gives.
std::span<const WCHAR* const> processModeNames();
std::span<const WCHAR* const> shoulderNames();

// The four cut lines; index 0 is itself named "none".
const WCHAR* cutLineName(int index);
const WCHAR* shoulderName(int index);

// ID / 1000 - 1 for the process modes of the list, nothing for any other value.
std::optional<WORD> processKindOf(WORD processMode);

// Dots per inch of a resolution index; an index beyond the list gives that of index 2.
WORD resolutionOf(WORD index);
std::optional<WORD> resolutionIndexOf(WORD dpi);

struct FlagName {
    WStringView name;
    DWORD bit;
};
// In the order in which flags are written.
std::span<const FlagName> flagNames();
// 0 for a name that is not in the list; upper and lower case differ.
DWORD flagBit(WStringView name);

struct ColourMatchingItem {
    const WCHAR* from;
    const WCHAR* to;
    const WCHAR* colour;
};
std::span<const ColourMatchingItem> defaultColourMatching();
inline constexpr const WCHAR* kDefaultGreyVectors = TEXT("0x000000FF");

// Whether every index and mode of a record lies in its range; the pixel sizes are not judged, no page of that size is made.
bool isValid(const ConfigurationRecord& record);

}  // namespace morvil
