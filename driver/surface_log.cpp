#include "driver/surface_log.h"

#include "driver/log/Log.h"

namespace morvil {

void logSurface(const WCHAR* name, const SURFOBJ& surface) {
    logRend(1, kInformation, TEXT("%s, cjBits=%d, lDelta=%d, sizlBitmap.cx=%d, sizlBitmap.cy=%d, pvBits=%X"), name, surface.cjBits,
            surface.lDelta, surface.sizlBitmap.cx, surface.sizlBitmap.cy, low32(surface.pvBits), kLogEnd);
}

void logRectangle(const RECTL& rectangle) {
    logRend(1, kInformation, TEXT("left=%d, top=%d, right=%d, bottom=%d"), rectangle.left, rectangle.top, rectangle.right, rectangle.bottom,
            kLogEnd);
}

void logTranslation(const XLATEOBJ& translation) {
    logRend(1, kInformation, TEXT("cEntries=%d, pulXLate=%X, flXlate=%X"), translation.cEntries, low32(translation.pulXlate),
            translation.flXlate, kLogEnd);
}

}  // namespace morvil
