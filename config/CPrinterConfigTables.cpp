#include "config/CPrinterConfigTables.h"

#include <algorithm>

#include "config/CPrinterConfig.h"
#include "config/CPrinterConfigKeys.h"

namespace morvil {

namespace {

constexpr std::array kProcessModeNames{
    TEXT("Standard"),     TEXT("Stamp"),           TEXT("ColourStamp"),     TEXT("Relief"),
    TEXT("Layer"),        TEXT("Test 1 (s/w)"),    TEXT("Test 2 (Tracer)"), TEXT("Test 3 (Banding)"),
    TEXT("Test 4 (F/S)"), TEXT("Test 5 (Jarvis)"), TEXT("Test 6 (Stucki)"), TEXT("Test 7 (Burkes)"),
    TEXT("none"),
};
constexpr std::array kShoulderNames{TEXT("flat"), TEXT("medium"), TEXT("steep"), TEXT("none")};
constexpr std::array kCutLineNames{TEXT("none"), TEXT("rectangular"), TEXT("circular"), TEXT("optimized")};

constexpr std::array<WORD, 6> kResolutions{1000, 600, 500, 333, 250, 125};
constexpr std::size_t kFallbackResolution = 2;

constexpr std::array<FlagName, 20> kFlagNames{{
    {TEXT("MV_FL_TMPJOB"), MV_FL_TMPJOB},
    {TEXT("MV_FL_IMAGEOP_COLORADJUSTMENT"), MV_FL_IMAGEOP_COLORADJUSTMENT},
    {TEXT("MV_FL_IMAGEOP_COLORADJUSTMENT_DIS"), MV_FL_IMAGEOP_COLORADJUSTMENT_DIS},
    {TEXT("MV_FL_IMAGEOP_FLIP_VERTICAL"), MV_FL_IMAGEOP_FLIP_VERTICAL},
    {TEXT("MV_FL_IMAGEOP_FLIP_HORIZONTAL"), MV_FL_IMAGEOP_FLIP_HORIZONTAL},
    {TEXT("MV_FL_IMAGEOP_INVERT"), MV_FL_IMAGEOP_INVERT},
    {TEXT("MV_FL_IMAGEOP_BOTTOM_UP"), MV_FL_IMAGEOP_BOTTOM_UP},
    {TEXT("MV_FL_GEOMETRICWIDE"), MV_FL_GEOMETRICWIDE},
    {TEXT("MV_FL_BITMAP_BANDING"), MV_FL_BITMAP_BANDING},
    {TEXT("MV_FL_JOBNAME_FROM_CONFIG"), MV_FL_JOBNAME_FROM_CONFIG},
    {TEXT("MV_FL_SHRINK_TO_BOUNDING_BOX"), MV_FL_SHRINK_TO_BOUNDING_BOX},
    {TEXT("MV_FL_POLYGON_CLIPPING"), MV_FL_POLYGON_CLIPPING},
    {TEXT("MV_FL_IMAGEOP_DUMMY_1"), MV_FL_IMAGEOP_DUMMY_1},
    {TEXT("MV_FL_IMAGEOP_DUMMY_2"), MV_FL_IMAGEOP_DUMMY_2},
    {TEXT("MV_FL_IMAGEOP_DUMMY_3"), MV_FL_IMAGEOP_DUMMY_3},
    {TEXT("MV_FL_DIAGNOSTIC"), MV_FL_DIAGNOSTIC},
    {TEXT("MV_FL_IMAGEOP_RA_FS"), MV_FL_IMAGEOP_RA_FS},
    {TEXT("MV_FL_IMAGEOP_RA_JARVIS"), MV_FL_IMAGEOP_RA_JARVIS},
    {TEXT("MV_FL_IMAGEOP_RA_STUCKI"), MV_FL_IMAGEOP_RA_STUCKI},
    {TEXT("MV_FL_IMAGEOP_RA_BURKES"), MV_FL_IMAGEOP_RA_BURKES},
}};

// Items 0 to 8 match one grey exactly, items 9 to 11 a range two greys wide.
constexpr std::array<ColourMatchingItem, 12> kColourMatching{{
    {TEXT("0x00363636"), TEXT("0x00363636"), TEXT("0x000000FF")},
    {TEXT("0x00B7B7B7"), TEXT("0x00B7B7B7"), TEXT("0x0000FF00")},
    {TEXT("0x00121212"), TEXT("0x00121212"), TEXT("0x00FF0000")},
    {TEXT("0x00818181"), TEXT("0x00818181"), TEXT("0x000000FF")},
    {TEXT("0x00DBDBDB"), TEXT("0x00DBDBDB"), TEXT("0x0000FF00")},
    {TEXT("0x00474747"), TEXT("0x00474747"), TEXT("0x00FF0000")},
    {TEXT("0x00525252"), TEXT("0x00525252"), TEXT("0x000000FF")},
    {TEXT("0x004C4C4C"), TEXT("0x004C4C4C"), TEXT("0x000000FF")},
    {TEXT("0x00C6C6C6"), TEXT("0x00C6C6C6"), TEXT("0x0000FF00")},
    {TEXT("0x007F7F7F"), TEXT("0x00808080"), TEXT("0x0000FF00")},
    {TEXT("0x001E1E1E"), TEXT("0x001F1F1F"), TEXT("0x00FF0000")},
    {TEXT("0x002A2A2A"), TEXT("0x002B2B2B"), TEXT("0x00FF0000")},
}};

}  // namespace

std::span<const WCHAR* const> processModeNames() { return kProcessModeNames; }

std::span<const WCHAR* const> shoulderNames() { return kShoulderNames; }

const WCHAR* cutLineName(int index) {
    const bool known = index >= 0 && static_cast<std::size_t>(index) < kCutLineNames.size();
    return kCutLineNames[known ? static_cast<std::size_t>(index) : 0];
}

const WCHAR* shoulderName(int index) {
    const bool known = index >= 0 && static_cast<std::size_t>(index) < kShoulderNames.size();
    return known ? kShoulderNames[static_cast<std::size_t>(index)] : kShoulderNames.back();
}

std::optional<WORD> processKindOf(WORD processMode) {
    if (processMode < kModeStandard || processMode > kModeTest7 || processMode % kModeStandard != 0) return std::nullopt;
    return static_cast<WORD>(processMode / kModeStandard - 1);
}

const WCHAR* processModeName(WORD processMode) {
    const std::optional<WORD> kind = processKindOf(processMode);
    return kind ? kProcessModeNames[*kind] : kProcessModeNames.back();
}

WORD resolutionOf(WORD index) { return index < kResolutions.size() ? kResolutions[index] : kResolutions[kFallbackResolution]; }

std::optional<WORD> resolutionIndexOf(WORD dpi) {
    const auto* const found = std::ranges::find(kResolutions, dpi);
    if (found == kResolutions.end()) return std::nullopt;
    return static_cast<WORD>(found - kResolutions.begin());
}

std::span<const FlagName> flagNames() { return kFlagNames; }

DWORD flagBit(WStringView name) {
    const auto* const found = std::ranges::find_if(kFlagNames, [name](const FlagName& flag) { return name == flag.name; });
    return found == kFlagNames.end() ? 0 : found->bit;
}

std::span<const ColourMatchingItem> defaultColourMatching() { return kColourMatching; }

bool isValid(const ConfigurationRecord& record) {
    return processKindOf(record.processMode).has_value() && resolutionIndexOf(record.resolution).has_value() &&
           record.cutLineIndex >= keys::kCutLine.low && record.cutLineIndex <= keys::kCutLine.high &&
           record.shoulderIndex >= keys::kShoulderIndex.low && record.shoulderIndex <= keys::kShoulderIndex.high &&
           record.halftone.algorithm <= static_cast<DWORD>(keys::kHalftoneAlgorithm.high) && record.bezier.mode <= kHighestBezierMode;
}

}  // namespace morvil
