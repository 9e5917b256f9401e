// ddi.h - the printer driver interface of the graphics engine: records, constants and engine services, layouts as on
// 64-bit Windows. The services are implemented by the embedded engine; coordinates of paths are 28.4 fixed point.
#pragma once

#include "platform/posix/base_types.h"
#include "platform/posix/gdi.h"

MORVIL_DECLARE_HANDLE(HDEV);
MORVIL_DECLARE_HANDLE(HSURF);
MORVIL_DECLARE_HANDLE(DHPDEV);
MORVIL_DECLARE_HANDLE(DHSURF);

using FLONG = ULONG;
using FIX = LONG;
using MIX = ULONG;
using ROP4 = ULONG;
using FLOATL = FLOAT;
using LDECI4 = LONG;
using PFN = LONG_PTR (*)();

struct POINTFIX {
    FIX x;
    FIX y;
};
union FLOAT_LONG {
    FLOATL e;
    LONG l;
};
struct DRVFN {
    ULONG iFunc;
    PFN pfn;
};
struct DRVENABLEDATA {
    ULONG iDriverVersion;
    ULONG c;
    DRVFN* pdrvfn;
};
struct CIECHROMA {
    LDECI4 x;
    LDECI4 y;
    LDECI4 Y;
};
struct COLORINFO {
    CIECHROMA Red;
    CIECHROMA Green;
    CIECHROMA Blue;
    CIECHROMA Cyan;
    CIECHROMA Magenta;
    CIECHROMA Yellow;
    CIECHROMA AlignmentWhite;
    LDECI4 RedGamma;
    LDECI4 GreenGamma;
    LDECI4 BlueGamma;
    LDECI4 MagentaInCyanDye;
    LDECI4 YellowInCyanDye;
    LDECI4 CyanInMagentaDye;
    LDECI4 YellowInMagentaDye;
    LDECI4 CyanInYellowDye;
    LDECI4 MagentaInYellowDye;
};
struct GDIINFO {
    ULONG ulVersion;
    ULONG ulTechnology;
    ULONG ulHorzSize;
    ULONG ulVertSize;
    ULONG ulHorzRes;
    ULONG ulVertRes;
    ULONG cBitsPixel;
    ULONG cPlanes;
    ULONG ulNumColors;
    ULONG flRaster;
    ULONG ulLogPixelsX;
    ULONG ulLogPixelsY;
    ULONG flTextCaps;
    ULONG ulDACRed;
    ULONG ulDACGreen;
    ULONG ulDACBlue;
    ULONG ulAspectX;
    ULONG ulAspectY;
    ULONG ulAspectXY;
    LONG xStyleStep;
    LONG yStyleStep;
    LONG denStyleStep;
    POINTL ptlPhysOffset;
    SIZEL szlPhysSize;
    ULONG ulNumPalReg;
    COLORINFO ciDevice;
    ULONG ulDevicePelsDPI;
    ULONG ulPrimaryOrder;
    ULONG ulHTPatternSize;
    ULONG ulHTOutputFormat;
    ULONG flHTFlags;
    ULONG ulVRefresh;
    ULONG ulBltAlignment;
    ULONG ulPanningHorzRes;
    ULONG ulPanningVertRes;
    ULONG xPanningAlignment;
    ULONG yPanningAlignment;
    ULONG cxHTPat;
    ULONG cyHTPat;
    LPBYTE pHTPatA;
    LPBYTE pHTPatB;
    LPBYTE pHTPatC;
    ULONG flShadeBlend;
    ULONG ulPhysicalPixelCharacteristics;
    ULONG ulPhysicalPixelGamma;
};
struct DEVINFO {
    FLONG flGraphicsCaps;
    LOGFONTW lfDefaultFont;
    LOGFONTW lfAnsiVarFont;
    LOGFONTW lfAnsiFixFont;
    ULONG cFonts;
    ULONG iDitherFormat;
    USHORT cxDither;
    USHORT cyDither;
    HPALETTE hpalDefault;
    FLONG flGraphicsCaps2;
};
struct SURFOBJ {
    DHSURF dhsurf;
    HSURF hsurf;
    DHPDEV dhpdev;
    HDEV hdev;
    SIZEL sizlBitmap;
    ULONG cjBits;
    PVOID pvBits;
    PVOID pvScan0;
    LONG lDelta;
    ULONG iUniq;
    ULONG iBitmapFormat;
    USHORT iType;
    USHORT fjBitmap;
};
struct CLIPOBJ {
    ULONG iUniq;
    RECTL rclBounds;
    BYTE iDComplexity;
    BYTE iFComplexity;
    BYTE iMode;
    BYTE fjOptions;
};
struct BRUSHOBJ {
    ULONG iSolidColor;
    PVOID pvRbrush;
    FLONG flColorType;
};
struct XLATEOBJ {
    ULONG iUniq;
    FLONG flXlate;
    USHORT iSrcType;
    USHORT iDstType;
    ULONG cEntries;
    ULONG* pulXlate;
};
struct PATHOBJ {
    FLONG fl;
    ULONG cCurves;
};
struct PATHDATA {
    FLONG flags;
    ULONG count;
    POINTFIX* pptfx;
};
struct LINEATTRS {
    FLONG fl;
    ULONG iJoin;
    ULONG iEndCap;
    FLOAT_LONG elWidth;
    FLOATL eMiterLimit;
    ULONG cstyle;
    FLOAT_LONG* pstyle;
    FLOAT_LONG elStyleState;
};
struct XFORMOBJ {
    ULONG ulReserved;
};
struct GLYPHBITS {
    POINTL ptlOrigin;
    SIZEL sizlBitmap;
    BYTE aj[1];
};
union GLYPHDEF {
    GLYPHBITS* pgb;
    PATHOBJ* ppo;
};
using HGLYPH = ULONG;
struct GLYPHPOS {
    HGLYPH hg;
    GLYPHDEF* pgdf;
    POINTL ptl;
};
struct STROBJ {
    ULONG cGlyphs;
    FLONG flAccel;
    ULONG ulCharInc;
    RECTL rclBkGround;
    GLYPHPOS* pgp;
    LPWSTR pwszOrg;
};
struct FONTOBJ {
    ULONG iUniq;
    ULONG iFace;
    ULONG cxMax;
    FLONG flFontType;
    ULONG_PTR iTTUniq;
    ULONG_PTR iFile;
    SIZE sizLogResPpi;
    ULONG ulStyleSize;
    PVOID pvConsumer;
    PVOID pvProducer;
};

// Indices of the functions that a driver may hook.
#define INDEX_DrvEnablePDEV 0
#define INDEX_DrvCompletePDEV 1
#define INDEX_DrvDisablePDEV 2
#define INDEX_DrvEnableSurface 3
#define INDEX_DrvDisableSurface 4
#define INDEX_DrvResetPDEV 7
#define INDEX_DrvDisableDriver 8
#define INDEX_DrvDitherColor 13
#define INDEX_DrvStrokePath 14
#define INDEX_DrvFillPath 15
#define INDEX_DrvStrokeAndFillPath 16
#define INDEX_DrvBitBlt 18
#define INDEX_DrvCopyBits 19
#define INDEX_DrvStretchBlt 20
#define INDEX_DrvTextOut 23
#define INDEX_DrvEscape 24
#define INDEX_DrvSendPage 32
#define INDEX_DrvStartPage 33
#define INDEX_DrvEndDoc 34
#define INDEX_DrvStartDoc 35
#define INDEX_DrvGetGlyphMode 37
#define INDEX_DrvStartBanding 57
#define INDEX_DrvNextBand 58

#define DRVQUERY_USERMODE 1
#define STYPE_BITMAP 0

#define BMF_1BPP 1U
#define BMF_4BPP 2U
#define BMF_8BPP 3U
#define BMF_16BPP 4U
#define BMF_24BPP 5U
#define BMF_32BPP 6U
#define BMF_4RLE 7U
#define BMF_8RLE 8U
#define BMF_TOPDOWN 0x1U
#define BMF_NOZEROINIT 0x2U

#define HOOK_BITBLT 0x1U
#define HOOK_STRETCHBLT 0x2U
#define HOOK_TEXTOUT 0x8U
#define HOOK_STROKEPATH 0x20U
#define HOOK_FILLPATH 0x40U
#define HOOK_STROKEANDFILLPATH 0x80U
#define HOOK_COPYBITS 0x400U

#define GCAPS_BEZIERS 0x1U
#define GCAPS_GEOMETRICWIDE 0x2U
#define GCAPS_ALTERNATEFILL 0x4U
#define GCAPS_WINDINGFILL 0x8U
#define GCAPS_HALFTONE 0x10U
#define GCAPS_COLOR_DITHER 0x20U
#define GCAPS_HORIZSTRIKE 0x40U
#define GCAPS_VERTSTRIKE 0x80U
#define GCAPS_OPAQUERECT 0x100U
#define GCAPS_VECTORFONT 0x200U
#define GCAPS_MONO_DITHER 0x400U

#define HT_FORMAT_1BPP 0U
#define HT_FORMAT_8BPP 4U
#define HT_FORMAT_24BPP 6U
#define HT_FLAG_HAS_BLACK_DYE 0x2U

#define PAL_INDEXED 0x1U
#define PAL_BITFIELDS 0x2U
#define PAL_RGB 0x4U
#define PAL_BGR 0x8U

#define PD_BEGINSUBPATH 0x1U
#define PD_ENDSUBPATH 0x2U
#define PD_RESETSTYLE 0x4U
#define PD_CLOSEFIGURE 0x8U
#define PD_BEZIERS 0x10U
#define PO_BEZIERS 0x1U
#define PO_ELLIPSE 0x2U
#define PO_ALL_INTEGERS 0x4U
#define LA_GEOMETRIC 0x1U
#define LA_ALTERNATE 0x2U
#define LA_STARTGAP 0x4U
#define LA_STYLED 0x8U
#define JOIN_ROUND 0U
#define JOIN_BEVEL 1U
#define JOIN_MITER 2U
#define ENDCAP_ROUND 0U
#define ENDCAP_SQUARE 1U
#define ENDCAP_BUTT 2U
#define FP_ALTERNATEMODE 1U
#define FP_WINDINGMODE 2U

#define DC_TRIVIAL 0
#define DC_RECT 1
#define DC_COMPLEX 3
#define XO_TRIVIAL 0x1U
#define XO_TABLE 0x2U
#define XO_TO_MONO 0x4U
#define XO_SRCPALETTE 1U
#define XO_DESTPALETTE 2U
#define DCR_SOLID 0U
#define DCR_DRIVER 1U
#define DCR_HALFTONE 2U
#define FO_HGLYPHS 0U
#define FO_GLYPHBITS 1U
#define FO_PATHOBJ 2U
#define ED_ABORTDOC 0x1U
#define DDI_ERROR 0xFFFFFFFFU

#define QUERYESCSUPPORT 8
#define SETCOPYCOUNT 17
#define PASSTHROUGH 19
#define POSTSCRIPT_PASSTHROUGH 4115

extern "C" {
// What a driver exports.
BOOL DrvEnableDriver(ULONG engineVersion, ULONG size, DRVENABLEDATA* data);
VOID DrvDisableDriver();
BOOL DrvQueryDriverInfo(DWORD mode, PVOID buffer, DWORD bufferSize, PDWORD needed);
BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

// What the engine offers it.
HBITMAP EngCreateBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags, PVOID bits);
BOOL EngDeleteSurface(HSURF surface);
BOOL EngMarkBandingSurface(HSURF surface);
BOOL EngAssociateSurface(HSURF surface, HDEV device, FLONG hooks);
HPALETTE EngCreatePalette(ULONG mode, ULONG colours, ULONG* entries, FLONG red, FLONG green, FLONG blue);
BOOL EngDeletePalette(HPALETTE palette);
SURFOBJ* EngLockSurface(HSURF surface);
VOID EngUnlockSurface(SURFOBJ* surface);
BOOL EngCheckAbort(SURFOBJ* surface);
BOOL EngBitBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source,
               POINTL* maskOrigin, BRUSHOBJ* brush, POINTL* brushOrigin, ROP4 rop);
BOOL EngStretchBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, COLORADJUSTMENT* adjustment,
                   POINTL* brushOrigin, RECTL* target, RECTL* source, POINTL* maskOrigin, ULONG mode);
BOOL EngCopyBits(SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source);
BOOL EngFillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brushOrigin, MIX mix, FLONG options);
BOOL EngTextOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip, RECTL* extra, RECTL* opaque, BRUSHOBJ* fore, BRUSHOBJ* back,
                POINTL* brushOrigin, MIX mix);
VOID PATHOBJ_vEnumStart(PATHOBJ* path);
BOOL PATHOBJ_bEnum(PATHOBJ* path, PATHDATA* data);
ULONG BRUSHOBJ_ulGetBrushColor(BRUSHOBJ* brush);
ULONG XLATEOBJ_cGetPalette(XLATEOBJ* translation, ULONG kind, ULONG count, ULONG* entries);
}
