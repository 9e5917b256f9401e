// raster_hooks.cpp - block transfers, copies and text: logged, then rendered by the engine with the arguments as they came.
#include <algorithm>

#include "driver/Hooks.h"
#include "driver/Pdev.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/log/Log.h"
#include "driver/page_operations.h"
#include "driver/surface_log.h"

using namespace morvil;

namespace {

struct BlitCall {
    SURFOBJ* psoDst;
    SURFOBJ* psoSrc;
    SURFOBJ* psoMask;
    CLIPOBJ* pco;
    XLATEOBJ* pxlo;
    RECTL* prclDst;
    POINTL* pptlSrc;
    POINTL* pptlMask;
    BRUSHOBJ* pbo;
    POINTL* brushOrigin;
    ROP4 rop4;
};

void logOwner(const SURFOBJ& surface) {
    const HPALETTE palette = isInstance(surface.dhpdev) ? pdevOf(surface.dhpdev)->hPalette : nullptr;
    if (palette == nullptr) {
        logRend(1, kInformation, TEXT("dhsurf=%X, hsurf=%X, dhpdev=%X"), low32(surface.dhsurf), low32(surface.hsurf), low32(surface.dhpdev),
                kLogEnd);
        return;
    }
    logRend(1, kInformation, TEXT("dhsurf=%X, hsurf=%X, dhpdev=%X, hPalette=%X"), low32(surface.dhsurf), low32(surface.hsurf),
            low32(surface.dhpdev), low32(palette), kLogEnd);
}

void logTranslationTable(const XLATEOBJ& translation) {
    logTranslation(translation);
    if (translation.pulXlate == nullptr) return;
    for (ULONG i = 0; i < translation.cEntries; ++i) {
        logRend(1, kInformation, TEXT("TableEntry[%i]=%X"), i, translation.pulXlate[i], kLogEnd);
    }
}

void logBlit(const BlitCall& call) {
    if (call.psoDst != nullptr) {
        logSurface(TEXT("psoDst"), *call.psoDst);
        logOwner(*call.psoDst);
    }
    if (call.psoSrc != nullptr) {
        logSurface(TEXT("psoSrc"), *call.psoSrc);
        logOwner(*call.psoSrc);
    }
    if (call.pbo != nullptr) {
        logRend(1, kInformation, TEXT("iSolidColor=%X, Color=%X, flColorType=%d"), call.pbo->iSolidColor,
                BRUSHOBJ_ulGetBrushColor(call.pbo), call.pbo->flColorType, kLogEnd);
    }
    if (call.pxlo != nullptr) logTranslationTable(*call.pxlo);
    if (call.pptlSrc != nullptr) {
        logRend(1, kInformation, TEXT("src.x=%d, src.y=%d"), call.pptlSrc->x, call.pptlSrc->y, kLogEnd);
    } else {
        logRend(1, kInformation, TEXT("pptlSrc=%X"), 0, kLogEnd);
    }
    if (call.prclDst != nullptr) logRectangle(*call.prclDst);
}

BOOL bitBlt(const BlitCall& call) {
    debugPrint(TEXT("DrvBitblt\n"));
    logRend(1, kInformation, TEXT("DrvBitblt Rop4=%X"), call.rop4, kLogEnd);
    if (call.psoDst != nullptr && validInstance(call.psoDst) == nullptr) return FALSE;
    if (call.psoSrc != nullptr) {
        dumpSurface(*call.psoSrc, TEXT("drvBitBltSrc_"));
        dumpThreePartBitmap(*call.psoSrc);
    }
    if (logEnabled()) logBlit(call);
    const BOOL result = EngBitBlt(call.psoDst, call.psoSrc, call.psoMask, call.pco, call.pxlo, call.prclDst, call.pptlSrc, call.pptlMask,
                                  call.pbo, call.brushOrigin, call.rop4);
    debugPrint(TEXT("DrvBitblt finished\n"));
    logRend(1, kInformation, TEXT("DrvBitblt finished"), kLogEnd);
    return result;
}

struct CopyCall {
    SURFOBJ* psoDst;
    SURFOBJ* psoSrc;
    CLIPOBJ* pco;
    XLATEOBJ* pxlo;
    RECTL* prclDst;
    POINTL* pptlSrc;
};

void logCopiedSurfaces(const CopyCall& call) {
    if (const SURFOBJ* const dst = call.psoDst) {
        logRend(1, kInformation,
                TEXT("Dst, cjBits=%d, lDelta=%d, sizlBitmap.cx=%d, sizlBitmap.cy=%d, pvBits=%X, iType=%d, iBitmapFormat=%d"), dst->cjBits,
                dst->lDelta, dst->sizlBitmap.cx, dst->sizlBitmap.cy, low32(dst->pvBits), dst->iType, dst->iBitmapFormat, kLogEnd);
    }
    if (const SURFOBJ* const src = call.psoSrc) {
        logRend(1, kInformation,
                TEXT("Src, cjBits=%d, lDelta=%d, sizlBitmap.cx=%d, sizlBitmap.cy=%d, pvBits=%X , iType=%d, iBitmapFormat=%d, dhpdev=%X, ")
                    TEXT("dhsurf=%X, hdev=%X, hsurf=%X"),
                src->cjBits, src->lDelta, src->sizlBitmap.cx, src->sizlBitmap.cy, low32(src->pvBits), src->iType, src->iBitmapFormat,
                low32(src->dhpdev), low32(src->dhsurf), low32(src->hdev), low32(src->hsurf), kLogEnd);
    }
}

void keepSourcePalette(XLATEOBJ& translation) {
    logTranslation(translation);
    XLATEOBJ_cGetPalette(&translation, XO_SRCPALETTE, kPaletteEntries, state().sourcePalette.data());
}

void logCopiedArea(const CopyCall& call) {
    if (const RECTL* const dst = call.prclDst) {
        logRend(1, kInformation, TEXT("prclDst, left=%d, top=%d, bottom=%d, right=%d"), dst->left, dst->top, dst->bottom, dst->right,
                kLogEnd);
    }
    if (call.pptlSrc != nullptr) logRend(1, kInformation, TEXT("pptlSrc, x=%d, y=%d"), call.pptlSrc->x, call.pptlSrc->y, kLogEnd);
    if (call.pco != nullptr) {
        const RECTL& clip = call.pco->rclBounds;
        logRend(1, kInformation, TEXT("pco, top=%d, left=%d, bottom=%d, right=%d"), clip.top, clip.left, clip.bottom, clip.right, kLogEnd);
    }
}

BOOL copyBits(const CopyCall& call) {
    debugPrint(TEXT("DrvCopyBits\n"));
    logRend(1, kInformation, TEXT("DrvCopyBits"), kLogEnd);
    if (call.psoDst != nullptr && validInstance(call.psoDst) == nullptr) {
        logRend(1, kError, TEXT("DrvCopyBits, pPDev invalid"), kLogEnd);
        return FALSE;
    }
    logCopiedSurfaces(call);
    if (call.pxlo != nullptr) keepSourcePalette(*call.pxlo);
    logCopiedArea(call);
    const BOOL result = EngCopyBits(call.psoDst, call.psoSrc, call.pco, call.pxlo, call.prclDst, call.pptlSrc);
    logRend(1, kInformation, TEXT("DrvCopyBits finished"), kLogEnd);
    debugPrint(TEXT("DrvCopyBits finished\n"));
    return result;
}

}  // namespace

extern "C" {

BOOL APIENTRY DrvBitBlt(SURFOBJ* psoDst, SURFOBJ* psoSrc, SURFOBJ* psoMask, CLIPOBJ* pco, XLATEOBJ* pxlo, RECTL* prclDst, POINTL* pptlSrc,
                        POINTL* pptlMask, BRUSHOBJ* pbo, POINTL* brushOrigin, ROP4 rop4) {
    const BlitCall call{psoDst, psoSrc, psoMask, pco, pxlo, prclDst, pptlSrc, pptlMask, pbo, brushOrigin, rop4};
    return guarded(TEXT("DrvBitBlt"), BOOL{FALSE}, [&] { return bitBlt(call); });
}

BOOL APIENTRY DrvCopyBits(SURFOBJ* psoDst, SURFOBJ* psoSrc, CLIPOBJ* pco, XLATEOBJ* pxlo, RECTL* prclDst, POINTL* pptlSrc) {
    return guarded(TEXT("DrvCopyBits"), BOOL{FALSE}, [&] { return copyBits({psoDst, psoSrc, pco, pxlo, prclDst, pptlSrc}); });
}

BOOL APIENTRY DrvTextOut(SURFOBJ* pso, STROBJ* pstro, FONTOBJ* pfo, CLIPOBJ* pco, RECTL* prclExtra, RECTL* prclOpaque, BRUSHOBJ* pboFore,
                         BRUSHOBJ* pboOpaque, POINTL* brushOrigin, MIX mix) {
    return guarded(TEXT("DrvTextOut"), BOOL{FALSE}, [=] {
        logRend(1, kInformation, TEXT("DrvTextOut"), kLogEnd);
        return EngTextOut(pso, pstro, pfo, pco, prclExtra, prclOpaque, pboFore, pboOpaque, brushOrigin, mix);
    });
}

ULONG APIENTRY DrvGetGlyphMode(DHPDEV /*dhpdev*/, FONTOBJ* /*pfo*/) {
    guarded(TEXT("DrvGetGlyphMode"), [] { logRend(1, kInformation, TEXT("DrvGetGlyphMode"), kLogEnd); });
    return FO_GLYPHBITS;
}

// Colours are left to the engine's own dithering.
ULONG APIENTRY DrvDitherColor(DHPDEV /*dhpdev*/, ULONG iMode, ULONG rgbColor, ULONG* pulDither) {
    guarded(TEXT("DrvDitherColor"), [=] {
        logRend(1, kInformation, TEXT("DrvDitherColor iMode=%d, rgbColor=%X, pulDither=%X, Ret=%d"), iMode, rgbColor, low32(pulDither),
                DCR_HALFTONE, kLogEnd);
    });
    return DCR_HALFTONE;
}

}  // extern "C"
