// surface.h - the page surface: an engine bitmap in the pixel format of the process mode, whole or one band high.
#pragma once

#include "driver/Pdev.h"

namespace morvil {

struct SurfaceFormat {
    ULONG format;    // BMF_...
    ULONG rowBytes;  // a multiple of 4
};
SurfaceFormat surfaceFormat(const ConfigurationRecord& configuration);

// Sets every byte of the surface's bits to the low byte of `colour`. False when the surface cannot be locked.
bool FilleSurface(const SURFOBJ& surface, DWORD colour);

// What an empty page looks like in the working configuration; only the low byte reaches the bits.
DWORD backgroundColour();

}  // namespace morvil
