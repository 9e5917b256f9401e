// NaiveHalftone.h - halftoning as it is defined, pixel by pixel, cell by cell, without any of what makes it fast. The raster
// folder's results are compared with it bit for bit.
#pragma once

#include <cstdint>
#include <vector>

namespace morvil::test {

using Bytes = std::vector<std::uint8_t>;

// Grey pixels without padding.
struct NaiveGrey {
    std::uint32_t width;
    std::uint32_t height;
    Bytes pixels;
};

// One-bit rows, each a multiple of 4 bytes; what stands behind the last pixel is zero.
Bytes naiveOrdered(const NaiveGrey& grey, unsigned side);     // matrix of 2, 4 or 8 rows
Bytes naiveGreyThresholds(const NaiveGrey& grey);             // method 7
Bytes naiveDiffusion(const NaiveGrey& grey, unsigned method);  // methods 0 and 2 to 6

// Pixels of one of several kinds: noise, black and white, around the threshold, flat, ramps.
NaiveGrey randomGrey(std::uint32_t width, std::uint32_t height, std::uint32_t seed);

}  // namespace morvil::test
