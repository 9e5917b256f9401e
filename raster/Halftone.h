// Halftone.h - the page's reduction to one bit per pixel, as the page flow calls it between rendering and storing.
#pragma once

#include <cstdint>

#include "config/ConfigurationRecord.h"
#include "platform/platform.h"
#include "raster/CxImage.h"

namespace morvil {

// Halftones the page at `source` by the parameters' algorithm and writes its one-bit rows, and nothing else, to `destination`, which
// may be the same buffer; `sizeOut` then holds their bytes. `image` is kept between pages. A source of more than one bit must not
// overlap the destination unless both are the same.
// `header` describes the source; its rows are image size / height bytes long. With `dump` of 1 or more the result also goes to the
// first unused name of C:\result_0.bmp, C:\result_1.bmp, ...
// 0: an argument is missing. 1: done, or left alone: algorithms from 7 on, and pages that cannot be halftoned, leave destination and
// size as they were.
int Dither(CxImage& image, const std::uint8_t* source, std::uint8_t* destination, std::uint32_t* sizeOut, const BITMAPINFOHEADER* header,
           const HalftoneBlock* parameters, int dump);

}  // namespace morvil
