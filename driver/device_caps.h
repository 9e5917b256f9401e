// device_caps.h - the two capability records that an instance answers the engine with: page size, resolution, colour depth and
// default palette of the current process mode.
#pragma once

#include <optional>

#include "driver/Pdev.h"

namespace morvil {

struct CapabilityBuffers {
    ULONG patternCount;
    HSURF* patterns;
    ULONG capsSize;
    void* gdiInfo;
    ULONG devInfoSize;
    void* devInfo;
};

// Fills what the engine gave room for. FALSE when the page size that the application asks for cannot be a surface.
BOOL CommonStartPDEV(PDEV& pdev, const CapabilityBuffers& buffers);

// Works out the page size (kept in the instance's configuration) and fills the record. False when a side of the page has no
// pixels or more than 65535.
bool FillDeviceCaps(PDEV& pdev, GDIINFO& gdiInfo);

// Fills the record and makes the instance's default palette; succeeds without one.
BOOL fillPalette(PDEV& pdev, DEVINFO& devInfo);

// The smallest whole number whose square is at least 2 * dpi * dpi.
ULONG diagonalAspect(ULONG dpi);

struct ColourDepth {
    ULONG bitsPerPixel;
    ULONG halftoneFormat;
    std::optional<int> tableType;  // none: no palette
};
ColourDepth colourDepth(const ConfigurationRecord& configuration);
int paletteTableType(const ConfigurationRecord& configuration);

}  // namespace morvil
