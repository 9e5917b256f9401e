// page_operations.h - what happens to a rendered page or band before it is stored: colour adjustment, mirroring, halftoning,
// and dumps of it for diagnosis. The operations never abort a page; one that cannot be done leaves the bits as they are.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/platform.h"

namespace morvil {

// The bits to store: the surface's own, or what halftoning made of them. Rows follow each other without gaps.
struct PageBits {
    const std::uint8_t* bits;
    std::size_t bytes;
    std::uint32_t rowBytes;
};
PageBits surfaceBits(const SURFOBJ& surface);

// The tracing mode looks for red outlines in the page and makes polygons of them.
void tracePage(const SURFOBJ& surface);
void adjustColours(SURFOBJ& surface);
void flipHorizontal(SURFOBJ& surface);
// Sets the working configuration's algorithm by process mode first.
PageBits halftone(SURFOBJ& surface);

// Dumps are made only while the configuration's dump switch is on.
void dumpSurface(const SURFOBJ& surface, const WCHAR* prefix);
void dumpThreePartBitmap(const SURFOBJ& surface);

}  // namespace morvil
