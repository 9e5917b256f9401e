// bands.cpp - walks a banded page: the engine renders the page once per band and asks for the next one's origin.
#include "driver/Hooks.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/job_writer.h"
#include "driver/log/Log.h"
#include "driver/surface.h"

using namespace morvil;

namespace {

BOOL startBanding(POINTL* origin) {
    state().uiBandPosition = 0;
    logMorvil(1, kInformation, TEXT("DrvStartBanding"), kLogEnd);
    if (origin != nullptr) *origin = {0, 0};
    logMorvil(1, kInformation, TEXT("DrvStartBanding finished"), kLogEnd);
    return TRUE;
}

void logNextBand(const SURFOBJ* pso, const POINTL* origin) {
    if (pso == nullptr || origin == nullptr) {
        logMorvil(1, kError, TEXT("DrvNextBand invalid parameters"), kLogEnd);
        return;
    }
    logMorvil(1, kInformation, TEXT("DrvNextBand SizlBitmap.cy=%d, uiBandPosition=%d"), pso->sizlBitmap.cy, state().uiBandPosition,
              kLogEnd);
}

// A page whose last band did not come through has a hole in it: its completion runs like any other, but gives nothing away.
void finishPage(bool sent) {
    if (!sent && state().spoolFile) state().spoolFile->MarkDamaged();
    completeJob();
    logMorvil(1, kInformation, TEXT("DrvNextBand finished through Bitmap size"), kLogEnd);
}

// The last band answers FALSE together with the origin (-1, -1); the engine goes by the origin.
BOOL nextBand(SURFOBJ* pso, POINTL* origin) {
    logNextBand(pso, origin);
    BOOL result = DrvSendPage(pso);
    const bool sent = result != FALSE;
    const DWORD error = GetLastError();
    if (pso != nullptr) state().uiBandPosition += static_cast<std::uint32_t>(pso->sizlBitmap.cy);

    POINTL next{0, static_cast<LONG>(state().uiBandPosition)};
    if (state().uiBandPosition >= state().configuration.size.pixelHeight) {
        next = {-1, -1};
        finishPage(sent);
        result = FALSE;
    }
    if (origin != nullptr) *origin = next;
    logMorvil(1, kInformation, TEXT("DrvNextBand finished, x=%ld, y=%ld"), next.x, next.y, kLogEnd);
    if (state().configuration.vectorJob == 0 && pso != nullptr) FilleSurface(*pso, backgroundColour());
    if (!sent) SetLastError(error);  // what came behind has asked the system for other things
    return result;
}

}  // namespace

extern "C" {

BOOL APIENTRY DrvStartBanding(SURFOBJ* /*pso*/, POINTL* origin) {
    return guarded(TEXT("DrvStartBanding"), BOOL{FALSE}, [=] { return startBanding(origin); });
}

BOOL APIENTRY DrvNextBand(SURFOBJ* pso, POINTL* origin) {
    return guarded(TEXT("DrvNextBand"), BOOL{FALSE}, [=] { return nextBand(pso, origin); });
}

}  // extern "C"
