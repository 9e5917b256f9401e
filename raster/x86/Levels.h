// Levels.h - what the sources of this folder offer each other.
#pragma once

#include "raster/WideHalftone.h"

namespace morvil {

extern const WideHalftone kSse2Halftone;
extern const WideHalftone kAvx2Halftone;  // its functions run only where the processor has AVX2

}  // namespace morvil
