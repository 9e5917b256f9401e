// JobSummary.h - what a job file holds, in numbers: vectors by kind and colour, extent, what the bitmap shows.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "tool/JobFile.h"

namespace morvil::tool {

struct Extent {  // device pixels, inclusive
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};

struct JobSummary {
    std::size_t polygons = 0;
    std::size_t beziers = 0;
    std::size_t arcs = 0;
    std::map<std::string, std::size_t> byColour;  // "#RRGGBB"
    std::optional<Extent> extent;                  // of polygons and curves; none without points
    std::uint64_t paintedPixels = 0;               // pixels of the bitmap that are not white
};

JobSummary summarize(const JobFile& job);

// Latin-1 bytes of a job file as UTF-8.
std::string utf8FromLatin1(std::string_view bytes);

}  // namespace morvil::tool
