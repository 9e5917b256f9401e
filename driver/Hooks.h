// Hooks.h - the driver interface functions that the engine reaches through the function table, under the platform's names and
// signatures. None lets an exception out (guard.h).
#pragma once

#include "platform/platform.h"

extern "C" {
// instance
DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW* devmode, LPWSTR logAddress, ULONG patternCount, HSURF* patterns, ULONG capsSize, ULONG* gdiInfo,
                              ULONG devInfoSize, DEVINFO* devInfo, HDEV hdev, LPWSTR deviceName, HANDLE hPrinter);
BOOL APIENTRY DrvResetPDEV(DHPDEV oldPdev, DHPDEV newPdev);
VOID APIENTRY DrvCompletePDEV(DHPDEV dhpdev, HDEV hdev);
VOID APIENTRY DrvDisablePDEV(DHPDEV dhpdev);
HSURF APIENTRY DrvEnableSurface(DHPDEV dhpdev);
VOID APIENTRY DrvDisableSurface(DHPDEV dhpdev);

// document, page and band
BOOL APIENTRY DrvStartDoc(SURFOBJ* pso, LPWSTR docName, DWORD jobId);
BOOL APIENTRY DrvEndDoc(SURFOBJ* pso, FLONG flags);
BOOL APIENTRY DrvStartPage(SURFOBJ* pso);
BOOL APIENTRY DrvSendPage(SURFOBJ* pso);
BOOL APIENTRY DrvStartBanding(SURFOBJ* pso, POINTL* origin);
BOOL APIENTRY DrvNextBand(SURFOBJ* pso, POINTL* origin);

// vectors
BOOL APIENTRY DrvStrokePath(SURFOBJ* pso, PATHOBJ* ppo, CLIPOBJ* pco, XFORMOBJ* pxo, BRUSHOBJ* pbo, POINTL* brushOrigin,
                            LINEATTRS* lineAttrs, MIX mix);
BOOL APIENTRY DrvFillPath(SURFOBJ* pso, PATHOBJ* ppo, CLIPOBJ* pco, BRUSHOBJ* pbo, POINTL* brushOrigin, MIX mix, FLONG options);
BOOL APIENTRY DrvStrokeAndFillPath(SURFOBJ* pso, PATHOBJ* ppo, CLIPOBJ* pco, XFORMOBJ* pxo, BRUSHOBJ* strokeBrush, LINEATTRS* lineAttrs,
                                   BRUSHOBJ* fillBrush, POINTL* brushOrigin, MIX mix, FLONG options);

// raster
BOOL APIENTRY DrvBitBlt(SURFOBJ* psoDst, SURFOBJ* psoSrc, SURFOBJ* psoMask, CLIPOBJ* pco, XLATEOBJ* pxlo, RECTL* prclDst, POINTL* pptlSrc,
                        POINTL* pptlMask, BRUSHOBJ* pbo, POINTL* brushOrigin, ROP4 rop4);
BOOL APIENTRY DrvStretchBlt(SURFOBJ* psoDst, SURFOBJ* psoSrc, SURFOBJ* psoMask, CLIPOBJ* pco, XLATEOBJ* pxlo, COLORADJUSTMENT* pca,
                            POINTL* brushOrigin, RECTL* prclDest, RECTL* prclSrc, POINTL* pptlMask, ULONG iMode);
BOOL APIENTRY DrvCopyBits(SURFOBJ* psoDst, SURFOBJ* psoSrc, CLIPOBJ* pco, XLATEOBJ* pxlo, RECTL* prclDst, POINTL* pptlSrc);
BOOL APIENTRY DrvTextOut(SURFOBJ* pso, STROBJ* pstro, FONTOBJ* pfo, CLIPOBJ* pco, RECTL* prclExtra, RECTL* prclOpaque, BRUSHOBJ* pboFore,
                         BRUSHOBJ* pboOpaque, POINTL* brushOrigin, MIX mix);
ULONG APIENTRY DrvGetGlyphMode(DHPDEV dhpdev, FONTOBJ* pfo);
ULONG APIENTRY DrvDitherColor(DHPDEV dhpdev, ULONG iMode, ULONG rgbColor, ULONG* pulDither);
ULONG APIENTRY DrvEscape(SURFOBJ* pso, ULONG iEsc, ULONG cjIn, PVOID pvIn, ULONG cjOut, PVOID pvOut);
}
