// fill_path.cpp - filled paths are raster: the engine renders them into the page surface.
#include "driver/Hooks.h"
#include "driver/Pdev.h"
#include "driver/guard.h"
#include "driver/log/Log.h"

using namespace morvil;

namespace {

struct FillCall {
    SURFOBJ* pso;
    PATHOBJ* ppo;
    CLIPOBJ* pco;
    BRUSHOBJ* pbo;
    POINTL* brushOrigin;
    MIX mix;
    FLONG options;
};

void logFill(const FillCall& call) {
    logRend(1, kInformation, TEXT("DrvFillPath, MIX=%lu, Flags=%d"), call.mix, call.options, kLogEnd);
    if (call.pso != nullptr) {
        logRend(1, kInformation, TEXT("pso->sizlBitmap, lDelta=%d, x=%lu, y=%lu, Format=%d"), call.pso->lDelta, call.pso->sizlBitmap.cx,
                call.pso->sizlBitmap.cy, call.pso->iBitmapFormat, kLogEnd);
    }
    if (call.pbo != nullptr) {
        logRend(1, kInformation, TEXT("pbo->iSolidColor=%X, flColorType=%d, pvRbrush=%X"), call.pbo->iSolidColor, call.pbo->flColorType,
                low32(call.pbo->pvRbrush), kLogEnd);
        logRend(1, kInformation, TEXT("Color=%lX"), BRUSHOBJ_ulGetBrushColor(call.pbo), kLogEnd);
    }
    if (call.ppo != nullptr) logRend(1, kInformation, TEXT("ppo, CntPoints=%d, Flags=%d"), call.ppo->cCurves, call.ppo->fl, kLogEnd);
    if (call.brushOrigin != nullptr) {
        logRend(1, kInformation, TEXT("pptlBrushOrg, x=%d, y=%d"), call.brushOrigin->x, call.brushOrigin->y, kLogEnd);
    }
    logRend(1, kInformation, TEXT("DrvFillPath, EngFillPath"), kLogEnd);
}

BOOL fillPath(const FillCall& call) {
    debugPrint(TEXT("DrvFillPath\n"));
    if (call.pso != nullptr && validInstance(call.pso) == nullptr) {
        logRend(1, kError, TEXT("DrvFillPath, pPDev invalid"), kLogEnd);
        return FALSE;
    }
    if (logEnabled()) logFill(call);
    const BOOL result = EngFillPath(call.pso, call.ppo, call.pco, call.pbo, call.brushOrigin, call.mix, call.options);
    logRend(1, kInformation, TEXT("DrvFillPath finished, Return=%d"), result, kLogEnd);
    debugPrint(TEXT("DrvFillPath finished\n"));
    return result;
}

}  // namespace

extern "C" {

BOOL APIENTRY DrvFillPath(SURFOBJ* pso, PATHOBJ* ppo, CLIPOBJ* pco, BRUSHOBJ* pbo, POINTL* brushOrigin, MIX mix, FLONG options) {
    return guarded(TEXT("DrvFillPath"), BOOL{FALSE}, [&] { return fillPath({pso, ppo, pco, pbo, brushOrigin, mix, options}); });
}

// The engine then sends outline and interior on their own.
BOOL APIENTRY DrvStrokeAndFillPath(SURFOBJ* /*pso*/, PATHOBJ* /*ppo*/, CLIPOBJ* /*pco*/, XFORMOBJ* /*pxo*/, BRUSHOBJ* /*strokeBrush*/,
                                   LINEATTRS* /*lineAttrs*/, BRUSHOBJ* /*fillBrush*/, POINTL* /*brushOrigin*/, MIX /*mix*/,
                                   FLONG /*options*/) {
    guarded(TEXT("DrvStrokeAndFillPath"),
            [] { logRend(1, kInformation, TEXT("DrvStrokeandFillPath not supported through the driver"), kLogEnd); });
    return FALSE;
}

}  // extern "C"
