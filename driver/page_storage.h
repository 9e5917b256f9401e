// page_storage.h - hands the finished bits of a page or band to the job writer's bitmap section.
#pragma once

#include "driver/page_operations.h"

namespace morvil {

struct Band {
    std::uint32_t position;    // first row within the page
    std::uint32_t height;      // rows of the surface
    std::uint32_t pageHeight;  // rows
    std::uint32_t rowBytes;
    std::size_t bytes;  // of the bits
    bool flipVertical;  // bottom-up bands are stored from the end
};
// Where the rows of a band that reach into the page go within the pixel area.
struct BandPlace {
    std::uint64_t bytes;
    std::uint64_t offset;
};
bool isLastBand(const Band& band);
BandPlace placeBand(const Band& band);

// The whole page, or its band at the current band position. Skipped when there is no writer.
void storePage(const SURFOBJ& surface, const PageBits& page);

}  // namespace morvil
