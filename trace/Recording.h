// Recording.h - the calls that an engine makes to a driver while it prints, with everything that the driver can see of their
// arguments, the bits of the page before each page or band is sent, and the files that the driver found. Plain data without
// pointers: the same on both hosts, saved and loaded by RecordingFile.h.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/Text.h"
#include "platform/platform.h"

namespace morvil::trace {

using Bytes = std::vector<std::uint8_t>;

// A surface as its object shows it. The page's own surface is known by the instance that it belongs to.
struct SurfaceArgument {
    std::uint32_t isPage = 0;
    SIZEL size{};
    std::int32_t rowStep = 0;  // lDelta
    std::uint32_t format = 0;
    std::uint32_t bytes = 0;
    std::uint32_t flags = 0;  // fjBitmap
};

struct PathPart {
    FLONG flags = 0;
    std::vector<POINTFIX> points;
};
struct PathArgument {
    FLONG flags = 0;
    ULONG curves = 0;
    std::vector<PathPart> parts;
};

struct BrushArgument {
    ULONG solidColour = 0;
    FLONG colourType = 0;
    ULONG rgb = 0;  // what the engine answers when asked for the colour
};

struct ClipArgument {
    RECTL bounds{};
    std::array<std::uint8_t, 4> kinds{};  // iDComplexity, iFComplexity, iMode, fjOptions
};

struct TranslationArgument {
    FLONG flags = 0;
    std::uint32_t sourceType = 0;
    std::uint32_t targetType = 0;
    std::vector<ULONG> table;
    std::vector<ULONG> sourcePalette;
};

struct LineArgument {
    FLONG flags = 0;
    ULONG join = 0;
    ULONG endCap = 0;
    ULONG width = 0;  // bits of a LONG or a FLOAT, by the flags
    ULONG miterLimit = 0;
    std::vector<ULONG> style;
    ULONG styleState = 0;
};

// One call. Which members are filled depends on the function; numbers and blocks stand in the order of its arguments.
struct Event {
    ULONG function = 0;  // INDEX_Drv...
    std::int64_t result = 0;
    std::vector<std::int64_t> numbers;
    std::vector<Bytes> blocks;
    std::array<std::optional<SurfaceArgument>, 3> surfaces;  // target, source, mask
    std::optional<PathArgument> path;
    std::array<std::optional<BrushArgument>, 2> brushes;
    std::optional<ClipArgument> clip;
    std::optional<TranslationArgument> translation;
    std::optional<LineArgument> line;
    std::array<std::optional<RECTL>, 2> rectangles;
    std::array<std::optional<POINTL>, 3> points;
    std::optional<COLORADJUSTMENT> adjustment;
};

// A file below drive C: as it was before the document; the path begins behind "C:\".
struct KeptFile {
    WString path;
    Bytes content;
};

struct Recording {
    WString printer;
    std::vector<KeptFile> files;
    std::uint64_t largestSurface = 0;  // bytes; what the engine refused above
    std::vector<Event> events;
};

// "DrvStrokePath"; "function 99" for one that no driver of ours has.
std::string functionName(ULONG function);

}  // namespace morvil::trace
