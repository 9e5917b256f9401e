// MakeSurface.h - making bitmaps inside the engine, with the checks that EngCreateBitmap promises.
#pragma once

#include <memory>

#include "engine/Objects.h"

namespace morvil::engine {

struct SurfaceRequest {
    LONG width = 0;
    LONG height = 0;
    LONG rowBytes = 0;     // 0: as many as the pixels need, rounded up to four
    ULONG format = 0;      // BMF_
    FLONG flags = 0;       // BMF_TOPDOWN, BMF_NOZEROINIT
    PVOID bits = nullptr;  // null: the surface brings its own, zero-filled
};

// Null when the size is not between 1 and 65535 a side, the format has no fixed rows, the rows are too short, or the whole is
// too large or not to be had.
std::unique_ptr<EngineSurface> makeSurface(const SurfaceRequest& request);
// A copy with the same pixels, palette and layout, from the top down; null when there is no memory left.
std::unique_ptr<EngineSurface> copySurface(const EngineSurface& surface);
// Gives the surface to the engine's state, where it lives until it is deleted by its handle.
HSURF keepSurface(std::unique_ptr<EngineSurface> surface);

// Null when there is no memory left.
PixelMemory allocatePixels(std::uint64_t bytes);

}  // namespace morvil::engine
