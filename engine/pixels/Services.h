// Services.h - what stands behind the exported services of the same arguments (engine/Services.cpp). Parts of the engine that
// need one without asking it as a driver does call it here.
#pragma once

#include "platform/platform.h"

namespace morvil::engine::services {

HBITMAP createBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags, PVOID bits);
BOOL deleteSurface(HSURF surface);
BOOL markBandingSurface(HSURF surface);
BOOL associateSurface(HSURF surface, HDEV device, FLONG hooks);
SURFOBJ* lockSurface(HSURF surface);
VOID unlockSurface(SURFOBJ* surface);
HPALETTE createPalette(ULONG mode, ULONG colours, ULONG* entries, FLONG red, FLONG green, FLONG blue);
BOOL deletePalette(HPALETTE palette);
BOOL checkAbort(SURFOBJ* surface);

BOOL bitBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source,
            POINTL* maskOrigin, BRUSHOBJ* brush, POINTL* brushOrigin, ROP4 rop);
BOOL stretchBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, COLORADJUSTMENT* adjustment,
                POINTL* brushOrigin, RECTL* target, RECTL* source, POINTL* maskOrigin, ULONG mode);
BOOL copyBits(SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source);
BOOL fillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brushOrigin, MIX mix, FLONG options);
BOOL textOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip, RECTL* extra, RECTL* opaque, BRUSHOBJ* fore, BRUSHOBJ* back,
             POINTL* brushOrigin, MIX mix);

VOID startPath(PATHOBJ* path);
BOOL nextOfPath(PATHOBJ* path, PATHDATA* data);
ULONG brushColour(BRUSHOBJ* brush);
ULONG translationPalette(XLATEOBJ* translation, ULONG kind, ULONG count, ULONG* entries);

}  // namespace morvil::engine::services
