// WideHalftone.h - the inner loops of halftoning for processors with wide registers, chosen when the program runs. Which there are
// depends on the processor that the build is for: raster/x86 or raster/portable. All of them yield what the plain loops yield, bit
// for bit. Called by OrderedDither.cpp and ErrorDiffusionWavefront.cpp alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "raster/HalftoneRun.h"

namespace morvil {

enum class WideKernel : std::uint8_t { FloydSteinberg, JarvisJudiceNinke, Stucki, Burkes };
inline constexpr std::size_t kWideKernels = 4;

// The rows of one band, one in each lane, that run together, each some columns behind the one above it.
struct DiffusionBand {
    const std::uint8_t* const* fresh;  // one row for each lane: the lowest that the lane's row reaches, as it is in the image
    // Grey values less 128 of the band's first row and, for kernels that reach two rows down, of its second, as the band above left
    // them. The band leaves those of the rows behind it. Each has kCarryBefore bytes in front of column 0, kCarryBehind behind the last.
    std::uint8_t* carried;
    std::uint8_t* carriedBelow;
    std::uint8_t* skewed;  // room for skewedBytes for each lane
    std::size_t skewedBytes;
    std::uint8_t* bits;  // room for a row of stagedBytes in each lane; its pixels begin kStagedBefore bytes from its start
    std::size_t stagedBytes;
    std::uint32_t width;
};

inline constexpr std::uint32_t kBandStep = 16;  // columns at once
inline constexpr std::size_t kCarryBefore = 256;
inline constexpr std::size_t kCarryBehind = 256;
inline constexpr std::size_t kStagedBefore = 64;
inline constexpr std::size_t kStagedBesides = 192;  // bytes of a staged row besides those of its pixels
inline constexpr std::size_t kSkewedBesides = 64;

struct WideHalftone {
    unsigned lanes;
    std::array<void (*)(const DiffusionBand&), kWideKernels> diffuseBand;  // by WideKernel
    // One row; `thresholds` repeat every 32 columns. Writes whole groups of four bytes, zero behind the last pixel.
    void (*orderedRow)(const std::uint8_t* grey, std::uint32_t width, const std::uint8_t* thresholds, std::uint8_t* bits);
};

// Null for Plain and for what this processor does not have.
const WideHalftone* wideHalftone(CpuLevel level);
CpuLevel bestCpuLevel();

}  // namespace morvil
