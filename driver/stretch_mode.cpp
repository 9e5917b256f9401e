#include "driver/stretch_mode.h"

#include "driver/Hooks.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/log/Log.h"
#include "driver/page_operations.h"
#include "driver/surface_log.h"

namespace morvil {

namespace {

// The debug switch makes the engine halftone sources that are black and white already.
ULONG chooseForRaster(ULONG sourceFormat, ULONG requestedMode) {
    logRend(1, kInformation, TEXT("DrvStretchBlt, raster process, iMode=%d"), requestedMode, kLogEnd);
    if (getDebugValue(TEXT("Kx2898")) > 0) return HALFTONE;
    if (sourceFormat == BMF_1BPP) {
        logRend(1, kInformation, TEXT("Source image already ratered skip further rastering"), kLogEnd);
        return COLORONCOLOR;
    }
    logRend(1, kInformation, TEXT("Source image will be rastered"), kLogEnd);
    return HALFTONE;
}

struct StretchCall {
    SURFOBJ* psoDst;
    SURFOBJ* psoSrc;
    SURFOBJ* psoMask;
    CLIPOBJ* pco;
    XLATEOBJ* pxlo;
    COLORADJUSTMENT* pca;
    POINTL* brushOrigin;
    RECTL* prclDest;
    RECTL* prclSrc;
    POINTL* pptlMask;
    ULONG iMode;
};

void logStretch(const StretchCall& call) {
    logRend(1, kInformation, TEXT("DrvStretchBlt, iMode=%d, psoDst=%X, psoSrc=%X, psoMask=%X, prclDest=%X"), call.iMode, low32(call.psoDst),
            low32(call.psoSrc), low32(call.psoMask), low32(call.prclDest), kLogEnd);
    if (call.psoDst != nullptr) logSurface(TEXT("psoDst"), *call.psoDst);
    if (call.psoSrc != nullptr) logSurface(TEXT("psoSrc"), *call.psoSrc);
    if (call.psoMask != nullptr) logRend(1, kInformation, TEXT("psoMask->pvBits=%X"), low32(call.psoMask->pvBits), kLogEnd);
    if (call.prclDest != nullptr) logRectangle(*call.prclDest);
    if (call.prclSrc != nullptr) logRectangle(*call.prclSrc);
    if (call.pca == nullptr) return;
    logRend(1, kInformation, TEXT("pca=%X, caRedGamma=%X, caGreenGamma=%X, caBlueGamma=%X, caFlags=%X"), low32(call.pca),
            call.pca->caRedGamma, call.pca->caGreenGamma, call.pca->caBlueGamma, call.pca->caFlags, kLogEnd);
}

BOOL stretch(const StretchCall& call) {
    debugPrint(TEXT("DrvStretchBlt\n"));
    if (call.psoDst != nullptr && validInstance(call.psoDst) == nullptr) return FALSE;
    if (logEnabled()) logStretch(call);
    const ULONG mode = chooseStretchMode(state().configuration, call.psoSrc != nullptr ? call.psoSrc->iBitmapFormat : 0, call.iMode);
    debugPrint(TEXT("DrvStretchBlt finished\n"));
    const BOOL result = EngStretchBlt(call.psoDst, call.psoSrc, call.psoMask, call.pco, call.pxlo, call.pca, call.brushOrigin,
                                      call.prclDest, call.prclSrc, call.pptlMask, mode);
    if (call.psoSrc != nullptr) dumpSurface(*call.psoSrc, TEXT("DrvStretchBlt_Src_"));
    if (call.psoDst != nullptr) dumpSurface(*call.psoDst, TEXT("DrvStretchBlt_Dst_"));
    logRend(1, kInformation, TEXT("DrvStretchBlt finished"), kLogEnd);
    return result;
}

}  // namespace

ULONG chooseStretchMode(const ConfigurationRecord& configuration, ULONG sourceFormat, ULONG requestedMode) {
    if (configuration.raster != 0) return chooseForRaster(sourceFormat, requestedMode);
    switch (configuration.processMode) {
        case kModeColourStamp:
        case kModeRelief:
        case kModeLayer: return COLORONCOLOR;
        case kModeTest1: logRend(1, kError, TEXT("DrvStretchBlt, PROCESSMODE_VAL_TEST_1"), kLogEnd); return COLORONCOLOR;
        case kModeTest2: logRend(1, kError, TEXT("DrvStretchBlt, PROCESSMODE_VAL_TEST_2"), kLogEnd); return HALFTONE;
        default: logRend(1, kInformation, TEXT("DrvStretchBlt, colAdjustment"), kLogEnd); return HALFTONE;
    }
}

}  // namespace morvil

using namespace morvil;

extern "C" {

BOOL APIENTRY DrvStretchBlt(SURFOBJ* psoDst, SURFOBJ* psoSrc, SURFOBJ* psoMask, CLIPOBJ* pco, XLATEOBJ* pxlo, COLORADJUSTMENT* pca,
                            POINTL* brushOrigin, RECTL* prclDest, RECTL* prclSrc, POINTL* pptlMask, ULONG iMode) {
    const StretchCall call{psoDst, psoSrc, psoMask, pco, pxlo, pca, brushOrigin, prclDest, prclSrc, pptlMask, iMode};
    return guarded(TEXT("DrvStretchBlt"), BOOL{FALSE}, [&] { return stretch(call); });
}

}  // extern "C"
