// OrderedDither.h - ordered dithering of grey rows: each pixel for itself against a matrix of thresholds. Pure.
#pragma once

#include "raster/DitherMatrices.h"
#include "raster/GreyRows.h"
#include "raster/HalftoneRun.h"

namespace morvil {

// False when there is no memory or the run was stopped; some rows may be written then.
bool ditherOrdered(GreyRows& grey, const Thresholds& thresholds, const BitRows& out, HalftoneRun& run, CpuLevel level);

}  // namespace morvil
