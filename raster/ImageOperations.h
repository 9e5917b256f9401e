// ImageOperations.h - colour adjustment and mirroring of the page surface. The bits are copied into bitmap sections of memory
// device contexts, where the graphics system does the pixel work, and back. Called by the page flow before a page is halftoned
// and stored, on the printing thread. A failure is logged and leaves the surface as it was.
// Memory: two copies of the surface while an operation runs, a third while mirrored bits are read back.
#pragma once

#include "platform/platform.h"

namespace morvil {

// Applies the adjustment to every pixel. Always 0.
int doColorAdjustment(const SURFOBJ& surface, const COLORADJUSTMENT& adjustment);

// Mirrors every row left to right. 1 when the mirrored bits stand in the surface, else 0.
int doFlipHorizontal(const SURFOBJ& surface);

}  // namespace morvil
