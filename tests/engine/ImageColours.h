// ImageColours.h - what an image of the engine shows, pixel by pixel.
#pragma once

#include <vector>

#include "engine/metafile/Dib.h"

namespace morvil::test {

inline COLORREF colourAt(const engine::Image& image, LONG x, LONG y) { return engine::colourOf(image, engine::pixelAt(image, x, y)); }

// All pixels, row by row from the top.
inline std::vector<COLORREF> colours(const engine::Image& image) {
    std::vector<COLORREF> all;
    for (LONG y = 0; y < image.height; ++y) {
        for (LONG x = 0; x < image.width; ++x) all.push_back(colourAt(image, x, y));
    }
    return all;
}

}  // namespace morvil::test
