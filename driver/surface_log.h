// surface_log.h - lines of the rendering log that several raster hooks share.
#pragma once

#include "platform/platform.h"

namespace morvil {

// "psoDst, cjBits=..." with the name that the caller gives the surface ("psoDst" or "psoSrc").
void logSurface(const WCHAR* name, const SURFOBJ& surface);
void logRectangle(const RECTL& rectangle);
void logTranslation(const XLATEOBJ& translation);

}  // namespace morvil
