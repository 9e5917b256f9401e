// BitmapDump.h - writes bitmaps as BMP files to drive C: for diagnosis. Called by the page flow and the raster hooks while the
// configuration's dump switch is on. Failures are logged; a file that could not be written whole is removed again.
#pragma once

#include <cstdint>
#include <span>

#include "platform/platform.h"

namespace morvil {

// The bitmap as the graphics system gives it, bottom row first. Always 1.
int dumpBitmap(HBITMAP bitmap, const WCHAR* path);

// A file "drvBitBltSrc3_N.bmp" of the bitmap's header and palette with these bits, as they lie in memory. Always 1.
int dumpBitmap3(HBITMAP bitmap, std::span<const std::uint8_t> bits);

// dumpBitmap to the first "C:\<prefix>N.bmp", N from 1000 to 11000, that does not exist; the last is overwritten when all do.
void dumpSurface(HBITMAP bitmap, const WCHAR* prefix);

}  // namespace morvil
