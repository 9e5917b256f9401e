// ErrorDiffusion.h - error diffusion of grey rows: rows downwards, columns to the right, never turning. Each pixel takes the shares
// of its neighbours one by one, each sum clamped to a byte at once, so the order in which they come is part of the result. Pure.
#pragma once

#include <cstdint>

#include "raster/GreyRows.h"
#include "raster/HalftoneRun.h"
#include "raster/WideHalftone.h"

namespace morvil {

enum class Diffusion : std::uint8_t { FloydSteinberg, Burkes, Stucki, JarvisJudiceNinke, Sierra, StevensonArce };

// False when there is no memory or the run was stopped; some rows may be written then.
bool diffuseErrors(GreyRows& grey, Diffusion kernel, const BitRows& out, HalftoneRun& run, CpuLevel level);

// The same with many rows at once, for the kernels that have it.
bool diffuseWavefront(GreyRows& grey, WideKernel kernel, const BitRows& out, HalftoneRun& run, const WideHalftone& wide);

}  // namespace morvil
