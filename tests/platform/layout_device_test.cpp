// Sizes and offsets of the records in which driver and engine tell each other of the device, as 64-bit Windows lays them out.
// The same numbers hold on both hosts.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "support/Layout.h"

using morvil::test::expectLayout;

TEST(Layout, GDIINFO) {
    expectLayout("GDIINFO", sizeof(GDIINFO), 320,
                 {
                     MEMBER(GDIINFO, ulVersion, 0, 4),
                     MEMBER(GDIINFO, ulTechnology, 4, 4),
                     MEMBER(GDIINFO, ulHorzSize, 8, 4),
                     MEMBER(GDIINFO, ulVertSize, 12, 4),
                     MEMBER(GDIINFO, ulHorzRes, 16, 4),
                     MEMBER(GDIINFO, ulVertRes, 20, 4),
                     MEMBER(GDIINFO, cBitsPixel, 24, 4),
                     MEMBER(GDIINFO, cPlanes, 28, 4),
                     MEMBER(GDIINFO, ulNumColors, 32, 4),
                     MEMBER(GDIINFO, flRaster, 36, 4),
                     MEMBER(GDIINFO, ulLogPixelsX, 40, 4),
                     MEMBER(GDIINFO, ulLogPixelsY, 44, 4),
                     MEMBER(GDIINFO, flTextCaps, 48, 4),
                     MEMBER(GDIINFO, ulDACRed, 52, 4),
                     MEMBER(GDIINFO, ulDACGreen, 56, 4),
                     MEMBER(GDIINFO, ulDACBlue, 60, 4),
                     MEMBER(GDIINFO, ulAspectX, 64, 4),
                     MEMBER(GDIINFO, ulAspectY, 68, 4),
                     MEMBER(GDIINFO, ulAspectXY, 72, 4),
                     MEMBER(GDIINFO, xStyleStep, 76, 4),
                     MEMBER(GDIINFO, yStyleStep, 80, 4),
                     MEMBER(GDIINFO, denStyleStep, 84, 4),
                     MEMBER(GDIINFO, ptlPhysOffset, 88, 8),
                     MEMBER(GDIINFO, szlPhysSize, 96, 8),
                     MEMBER(GDIINFO, ulNumPalReg, 104, 4),
                     MEMBER(GDIINFO, ciDevice, 108, 120),
                     MEMBER(GDIINFO, ulDevicePelsDPI, 228, 4),
                     MEMBER(GDIINFO, ulPrimaryOrder, 232, 4),
                     MEMBER(GDIINFO, ulHTPatternSize, 236, 4),
                     MEMBER(GDIINFO, ulHTOutputFormat, 240, 4),
                     MEMBER(GDIINFO, flHTFlags, 244, 4),
                     MEMBER(GDIINFO, ulVRefresh, 248, 4),
                     MEMBER(GDIINFO, ulBltAlignment, 252, 4),
                     MEMBER(GDIINFO, ulPanningHorzRes, 256, 4),
                     MEMBER(GDIINFO, ulPanningVertRes, 260, 4),
                     MEMBER(GDIINFO, xPanningAlignment, 264, 4),
                     MEMBER(GDIINFO, yPanningAlignment, 268, 4),
                     MEMBER(GDIINFO, cxHTPat, 272, 4),
                     MEMBER(GDIINFO, cyHTPat, 276, 4),
                     MEMBER(GDIINFO, pHTPatA, 280, 8),
                     MEMBER(GDIINFO, pHTPatB, 288, 8),
                     MEMBER(GDIINFO, pHTPatC, 296, 8),
                     MEMBER(GDIINFO, flShadeBlend, 304, 4),
                     MEMBER(GDIINFO, ulPhysicalPixelCharacteristics, 308, 4),
                     MEMBER(GDIINFO, ulPhysicalPixelGamma, 312, 4),
                 });
}

TEST(Layout, COLORINFO) {
    expectLayout("COLORINFO", sizeof(COLORINFO), 120,
                 {
                     MEMBER(COLORINFO, Red, 0, 12),
                     MEMBER(COLORINFO, Green, 12, 12),
                     MEMBER(COLORINFO, Blue, 24, 12),
                     MEMBER(COLORINFO, Cyan, 36, 12),
                     MEMBER(COLORINFO, Magenta, 48, 12),
                     MEMBER(COLORINFO, Yellow, 60, 12),
                     MEMBER(COLORINFO, AlignmentWhite, 72, 12),
                     MEMBER(COLORINFO, RedGamma, 84, 4),
                     MEMBER(COLORINFO, GreenGamma, 88, 4),
                     MEMBER(COLORINFO, BlueGamma, 92, 4),
                     MEMBER(COLORINFO, MagentaInCyanDye, 96, 4),
                     MEMBER(COLORINFO, YellowInCyanDye, 100, 4),
                     MEMBER(COLORINFO, CyanInMagentaDye, 104, 4),
                     MEMBER(COLORINFO, YellowInMagentaDye, 108, 4),
                     MEMBER(COLORINFO, CyanInYellowDye, 112, 4),
                     MEMBER(COLORINFO, MagentaInYellowDye, 116, 4),
                 });
}

TEST(Layout, CIECHROMA) {
    expectLayout("CIECHROMA", sizeof(CIECHROMA), 12,
                 {
                     MEMBER(CIECHROMA, x, 0, 4),
                     MEMBER(CIECHROMA, y, 4, 4),
                     MEMBER(CIECHROMA, Y, 8, 4),
                 });
}

TEST(Layout, DEVINFO) {
    expectLayout("DEVINFO", sizeof(DEVINFO), 312,
                 {
                     MEMBER(DEVINFO, flGraphicsCaps, 0, 4),
                     MEMBER(DEVINFO, lfDefaultFont, 4, 92),
                     MEMBER(DEVINFO, lfAnsiVarFont, 96, 92),
                     MEMBER(DEVINFO, lfAnsiFixFont, 188, 92),
                     MEMBER(DEVINFO, cFonts, 280, 4),
                     MEMBER(DEVINFO, iDitherFormat, 284, 4),
                     MEMBER(DEVINFO, cxDither, 288, 2),
                     MEMBER(DEVINFO, cyDither, 290, 2),
                     MEMBER(DEVINFO, hpalDefault, 296, 8),
                     MEMBER(DEVINFO, flGraphicsCaps2, 304, 4),
                 });
}

TEST(Layout, LOGFONTW) {
    expectLayout("LOGFONTW", sizeof(LOGFONTW), 92,
                 {
                     MEMBER(LOGFONTW, lfHeight, 0, 4),
                     MEMBER(LOGFONTW, lfWidth, 4, 4),
                     MEMBER(LOGFONTW, lfEscapement, 8, 4),
                     MEMBER(LOGFONTW, lfOrientation, 12, 4),
                     MEMBER(LOGFONTW, lfWeight, 16, 4),
                     MEMBER(LOGFONTW, lfItalic, 20, 1),
                     MEMBER(LOGFONTW, lfUnderline, 21, 1),
                     MEMBER(LOGFONTW, lfStrikeOut, 22, 1),
                     MEMBER(LOGFONTW, lfCharSet, 23, 1),
                     MEMBER(LOGFONTW, lfOutPrecision, 24, 1),
                     MEMBER(LOGFONTW, lfClipPrecision, 25, 1),
                     MEMBER(LOGFONTW, lfQuality, 26, 1),
                     MEMBER(LOGFONTW, lfPitchAndFamily, 27, 1),
                     MEMBER(LOGFONTW, lfFaceName, 28, 64),
                 });
}

TEST(Layout, DRVENABLEDATA) {
    expectLayout("DRVENABLEDATA", sizeof(DRVENABLEDATA), 16,
                 {
                     MEMBER(DRVENABLEDATA, iDriverVersion, 0, 4),
                     MEMBER(DRVENABLEDATA, c, 4, 4),
                     MEMBER(DRVENABLEDATA, pdrvfn, 8, 8),
                 });
}

TEST(Layout, DRVFN) {
    expectLayout("DRVFN", sizeof(DRVFN), 16,
                 {
                     MEMBER(DRVFN, iFunc, 0, 4),
                     MEMBER(DRVFN, pfn, 8, 8),
                 });
}

TEST(Layout, DEVMODEW) {
    expectLayout("DEVMODEW", sizeof(DEVMODEW), 220,
                 {
                     MEMBER(DEVMODEW, dmDeviceName, 0, 64),    MEMBER(DEVMODEW, dmSpecVersion, 64, 2),
                     MEMBER(DEVMODEW, dmDriverVersion, 66, 2), MEMBER(DEVMODEW, dmSize, 68, 2),
                     MEMBER(DEVMODEW, dmDriverExtra, 70, 2),   MEMBER(DEVMODEW, dmFields, 72, 4),
                     MEMBER(DEVMODEW, dmOrientation, 76, 2),   MEMBER(DEVMODEW, dmPaperSize, 78, 2),
                     MEMBER(DEVMODEW, dmPaperLength, 80, 2),   MEMBER(DEVMODEW, dmPaperWidth, 82, 2),
                     MEMBER(DEVMODEW, dmScale, 84, 2),         MEMBER(DEVMODEW, dmCopies, 86, 2),
                     MEMBER(DEVMODEW, dmDefaultSource, 88, 2), MEMBER(DEVMODEW, dmPrintQuality, 90, 2),
                     MEMBER(DEVMODEW, dmColor, 92, 2),         MEMBER(DEVMODEW, dmDuplex, 94, 2),
                     MEMBER(DEVMODEW, dmYResolution, 96, 2),   MEMBER(DEVMODEW, dmTTOption, 98, 2),
                     MEMBER(DEVMODEW, dmCollate, 100, 2),      MEMBER(DEVMODEW, dmFormName, 102, 64),
                     MEMBER(DEVMODEW, dmLogPixels, 166, 2),    MEMBER(DEVMODEW, dmBitsPerPel, 168, 4),
                     MEMBER(DEVMODEW, dmPelsWidth, 172, 4),    MEMBER(DEVMODEW, dmPelsHeight, 176, 4),
                     MEMBER(DEVMODEW, dmDisplayFlags, 180, 4), MEMBER(DEVMODEW, dmDisplayFrequency, 184, 4),
                     MEMBER(DEVMODEW, dmICMMethod, 188, 4),    MEMBER(DEVMODEW, dmICMIntent, 192, 4),
                     MEMBER(DEVMODEW, dmMediaType, 196, 4),    MEMBER(DEVMODEW, dmDitherType, 200, 4),
                     MEMBER(DEVMODEW, dmReserved1, 204, 4),    MEMBER(DEVMODEW, dmReserved2, 208, 4),
                     MEMBER(DEVMODEW, dmPanningWidth, 212, 4), MEMBER(DEVMODEW, dmPanningHeight, 216, 4),
                 });
}
