// Sizes and offsets of every record that crosses to the engine, the spooler or the system, as 64-bit Windows lays them out.
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

TEST(Layout, SURFOBJ) {
    expectLayout("SURFOBJ", sizeof(SURFOBJ), 80,
                 {
                     MEMBER(SURFOBJ, dhsurf, 0, 8),
                     MEMBER(SURFOBJ, hsurf, 8, 8),
                     MEMBER(SURFOBJ, dhpdev, 16, 8),
                     MEMBER(SURFOBJ, hdev, 24, 8),
                     MEMBER(SURFOBJ, sizlBitmap, 32, 8),
                     MEMBER(SURFOBJ, cjBits, 40, 4),
                     MEMBER(SURFOBJ, pvBits, 48, 8),
                     MEMBER(SURFOBJ, pvScan0, 56, 8),
                     MEMBER(SURFOBJ, lDelta, 64, 4),
                     MEMBER(SURFOBJ, iUniq, 68, 4),
                     MEMBER(SURFOBJ, iBitmapFormat, 72, 4),
                     MEMBER(SURFOBJ, iType, 76, 2),
                     MEMBER(SURFOBJ, fjBitmap, 78, 2),
                 });
}

TEST(Layout, CLIPOBJ) {
    expectLayout("CLIPOBJ", sizeof(CLIPOBJ), 24,
                 {
                     MEMBER(CLIPOBJ, iUniq, 0, 4),
                     MEMBER(CLIPOBJ, rclBounds, 4, 16),
                     MEMBER(CLIPOBJ, iDComplexity, 20, 1),
                     MEMBER(CLIPOBJ, iFComplexity, 21, 1),
                     MEMBER(CLIPOBJ, iMode, 22, 1),
                     MEMBER(CLIPOBJ, fjOptions, 23, 1),
                 });
}

TEST(Layout, BRUSHOBJ) {
    expectLayout("BRUSHOBJ", sizeof(BRUSHOBJ), 24,
                 {
                     MEMBER(BRUSHOBJ, iSolidColor, 0, 4),
                     MEMBER(BRUSHOBJ, pvRbrush, 8, 8),
                     MEMBER(BRUSHOBJ, flColorType, 16, 4),
                 });
}

TEST(Layout, XLATEOBJ) {
    expectLayout("XLATEOBJ", sizeof(XLATEOBJ), 24,
                 {
                     MEMBER(XLATEOBJ, iUniq, 0, 4),
                     MEMBER(XLATEOBJ, flXlate, 4, 4),
                     MEMBER(XLATEOBJ, iSrcType, 8, 2),
                     MEMBER(XLATEOBJ, iDstType, 10, 2),
                     MEMBER(XLATEOBJ, cEntries, 12, 4),
                     MEMBER(XLATEOBJ, pulXlate, 16, 8),
                 });
}

TEST(Layout, PATHOBJ) {
    expectLayout("PATHOBJ", sizeof(PATHOBJ), 8,
                 {
                     MEMBER(PATHOBJ, fl, 0, 4),
                     MEMBER(PATHOBJ, cCurves, 4, 4),
                 });
}

TEST(Layout, PATHDATA) {
    expectLayout("PATHDATA", sizeof(PATHDATA), 16,
                 {
                     MEMBER(PATHDATA, flags, 0, 4),
                     MEMBER(PATHDATA, count, 4, 4),
                     MEMBER(PATHDATA, pptfx, 8, 8),
                 });
}

TEST(Layout, LINEATTRS) {
    expectLayout("LINEATTRS", sizeof(LINEATTRS), 40,
                 {
                     MEMBER(LINEATTRS, fl, 0, 4),
                     MEMBER(LINEATTRS, iJoin, 4, 4),
                     MEMBER(LINEATTRS, iEndCap, 8, 4),
                     MEMBER(LINEATTRS, elWidth, 12, 4),
                     MEMBER(LINEATTRS, eMiterLimit, 16, 4),
                     MEMBER(LINEATTRS, cstyle, 20, 4),
                     MEMBER(LINEATTRS, pstyle, 24, 8),
                     MEMBER(LINEATTRS, elStyleState, 32, 4),
                 });
}

TEST(Layout, FLOAT_LONG) {
    expectLayout("FLOAT_LONG", sizeof(FLOAT_LONG), 4,
                 {
                     MEMBER(FLOAT_LONG, e, 0, 4),
                     MEMBER(FLOAT_LONG, l, 0, 4),
                 });
}

TEST(Layout, POINTL) {
    expectLayout("POINTL", sizeof(POINTL), 8,
                 {
                     MEMBER(POINTL, x, 0, 4),
                     MEMBER(POINTL, y, 4, 4),
                 });
}

TEST(Layout, SIZEL) {
    expectLayout("SIZEL", sizeof(SIZEL), 8,
                 {
                     MEMBER(SIZEL, cx, 0, 4),
                     MEMBER(SIZEL, cy, 4, 4),
                 });
}

TEST(Layout, RECTL) {
    expectLayout("RECTL", sizeof(RECTL), 16,
                 {
                     MEMBER(RECTL, left, 0, 4),
                     MEMBER(RECTL, top, 4, 4),
                     MEMBER(RECTL, right, 8, 4),
                     MEMBER(RECTL, bottom, 12, 4),
                 });
}

TEST(Layout, POINTFIX) {
    expectLayout("POINTFIX", sizeof(POINTFIX), 8,
                 {
                     MEMBER(POINTFIX, x, 0, 4),
                     MEMBER(POINTFIX, y, 4, 4),
                 });
}

TEST(Layout, GLYPHBITS) {
    expectLayout("GLYPHBITS", sizeof(GLYPHBITS), 20,
                 {
                     MEMBER(GLYPHBITS, ptlOrigin, 0, 8),
                     MEMBER(GLYPHBITS, sizlBitmap, 8, 8),
                     MEMBER(GLYPHBITS, aj, 16, 1),
                 });
}

TEST(Layout, GLYPHPOS) {
    expectLayout("GLYPHPOS", sizeof(GLYPHPOS), 24,
                 {
                     MEMBER(GLYPHPOS, hg, 0, 4),
                     MEMBER(GLYPHPOS, pgdf, 8, 8),
                     MEMBER(GLYPHPOS, ptl, 16, 8),
                 });
}

TEST(Layout, STROBJ) {
    expectLayout("STROBJ", sizeof(STROBJ), 48,
                 {
                     MEMBER(STROBJ, cGlyphs, 0, 4),
                     MEMBER(STROBJ, flAccel, 4, 4),
                     MEMBER(STROBJ, ulCharInc, 8, 4),
                     MEMBER(STROBJ, rclBkGround, 12, 16),
                     MEMBER(STROBJ, pgp, 32, 8),
                     MEMBER(STROBJ, pwszOrg, 40, 8),
                 });
}

TEST(Layout, FONTOBJ) {
    expectLayout("FONTOBJ", sizeof(FONTOBJ), 64,
                 {
                     MEMBER(FONTOBJ, iUniq, 0, 4),
                     MEMBER(FONTOBJ, iFace, 4, 4),
                     MEMBER(FONTOBJ, cxMax, 8, 4),
                     MEMBER(FONTOBJ, flFontType, 12, 4),
                     MEMBER(FONTOBJ, iTTUniq, 16, 8),
                     MEMBER(FONTOBJ, iFile, 24, 8),
                     MEMBER(FONTOBJ, sizLogResPpi, 32, 8),
                     MEMBER(FONTOBJ, ulStyleSize, 40, 4),
                     MEMBER(FONTOBJ, pvConsumer, 48, 8),
                     MEMBER(FONTOBJ, pvProducer, 56, 8),
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

TEST(Layout, BITMAPFILEHEADER) {
    expectLayout("BITMAPFILEHEADER", sizeof(BITMAPFILEHEADER), 14,
                 {
                     MEMBER(BITMAPFILEHEADER, bfType, 0, 2),
                     MEMBER(BITMAPFILEHEADER, bfSize, 2, 4),
                     MEMBER(BITMAPFILEHEADER, bfReserved1, 6, 2),
                     MEMBER(BITMAPFILEHEADER, bfReserved2, 8, 2),
                     MEMBER(BITMAPFILEHEADER, bfOffBits, 10, 4),
                 });
}

TEST(Layout, BITMAPINFOHEADER) {
    expectLayout("BITMAPINFOHEADER", sizeof(BITMAPINFOHEADER), 40,
                 {
                     MEMBER(BITMAPINFOHEADER, biSize, 0, 4),
                     MEMBER(BITMAPINFOHEADER, biWidth, 4, 4),
                     MEMBER(BITMAPINFOHEADER, biHeight, 8, 4),
                     MEMBER(BITMAPINFOHEADER, biPlanes, 12, 2),
                     MEMBER(BITMAPINFOHEADER, biBitCount, 14, 2),
                     MEMBER(BITMAPINFOHEADER, biCompression, 16, 4),
                     MEMBER(BITMAPINFOHEADER, biSizeImage, 20, 4),
                     MEMBER(BITMAPINFOHEADER, biXPelsPerMeter, 24, 4),
                     MEMBER(BITMAPINFOHEADER, biYPelsPerMeter, 28, 4),
                     MEMBER(BITMAPINFOHEADER, biClrUsed, 32, 4),
                     MEMBER(BITMAPINFOHEADER, biClrImportant, 36, 4),
                 });
}

TEST(Layout, BITMAPINFO) {
    expectLayout("BITMAPINFO", sizeof(BITMAPINFO), 44,
                 {
                     MEMBER(BITMAPINFO, bmiHeader, 0, 40),
                     MEMBER(BITMAPINFO, bmiColors, 40, 4),
                 });
}

TEST(Layout, RGBQUAD) {
    expectLayout("RGBQUAD", sizeof(RGBQUAD), 4,
                 {
                     MEMBER(RGBQUAD, rgbBlue, 0, 1),
                     MEMBER(RGBQUAD, rgbGreen, 1, 1),
                     MEMBER(RGBQUAD, rgbRed, 2, 1),
                     MEMBER(RGBQUAD, rgbReserved, 3, 1),
                 });
}

TEST(Layout, XFORM) {
    expectLayout("XFORM", sizeof(XFORM), 24,
                 {
                     MEMBER(XFORM, eM11, 0, 4),
                     MEMBER(XFORM, eM12, 4, 4),
                     MEMBER(XFORM, eM21, 8, 4),
                     MEMBER(XFORM, eM22, 12, 4),
                     MEMBER(XFORM, eDx, 16, 4),
                     MEMBER(XFORM, eDy, 20, 4),
                 });
}

TEST(Layout, COLORADJUSTMENT) {
    expectLayout("COLORADJUSTMENT", sizeof(COLORADJUSTMENT), 24,
                 {
                     MEMBER(COLORADJUSTMENT, caSize, 0, 2),
                     MEMBER(COLORADJUSTMENT, caFlags, 2, 2),
                     MEMBER(COLORADJUSTMENT, caIlluminantIndex, 4, 2),
                     MEMBER(COLORADJUSTMENT, caRedGamma, 6, 2),
                     MEMBER(COLORADJUSTMENT, caGreenGamma, 8, 2),
                     MEMBER(COLORADJUSTMENT, caBlueGamma, 10, 2),
                     MEMBER(COLORADJUSTMENT, caReferenceBlack, 12, 2),
                     MEMBER(COLORADJUSTMENT, caReferenceWhite, 14, 2),
                     MEMBER(COLORADJUSTMENT, caContrast, 16, 2),
                     MEMBER(COLORADJUSTMENT, caBrightness, 18, 2),
                     MEMBER(COLORADJUSTMENT, caColorfulness, 20, 2),
                     MEMBER(COLORADJUSTMENT, caRedGreenTint, 22, 2),
                 });
}

TEST(Layout, PRINTER_INFO_2W) {
    expectLayout("PRINTER_INFO_2W", sizeof(PRINTER_INFO_2W), 136,
                 {
                     MEMBER(PRINTER_INFO_2W, pServerName, 0, 8),
                     MEMBER(PRINTER_INFO_2W, pPrinterName, 8, 8),
                     MEMBER(PRINTER_INFO_2W, pShareName, 16, 8),
                     MEMBER(PRINTER_INFO_2W, pPortName, 24, 8),
                     MEMBER(PRINTER_INFO_2W, pDriverName, 32, 8),
                     MEMBER(PRINTER_INFO_2W, pComment, 40, 8),
                     MEMBER(PRINTER_INFO_2W, pLocation, 48, 8),
                     MEMBER(PRINTER_INFO_2W, pDevMode, 56, 8),
                     MEMBER(PRINTER_INFO_2W, pSepFile, 64, 8),
                     MEMBER(PRINTER_INFO_2W, pPrintProcessor, 72, 8),
                     MEMBER(PRINTER_INFO_2W, pDatatype, 80, 8),
                     MEMBER(PRINTER_INFO_2W, pParameters, 88, 8),
                     MEMBER(PRINTER_INFO_2W, pSecurityDescriptor, 96, 8),
                     MEMBER(PRINTER_INFO_2W, Attributes, 104, 4),
                     MEMBER(PRINTER_INFO_2W, Priority, 108, 4),
                     MEMBER(PRINTER_INFO_2W, DefaultPriority, 112, 4),
                     MEMBER(PRINTER_INFO_2W, StartTime, 116, 4),
                     MEMBER(PRINTER_INFO_2W, UntilTime, 120, 4),
                     MEMBER(PRINTER_INFO_2W, Status, 124, 4),
                     MEMBER(PRINTER_INFO_2W, cJobs, 128, 4),
                     MEMBER(PRINTER_INFO_2W, AveragePPM, 132, 4),
                 });
}

TEST(Layout, DRIVER_INFO_2W) {
    expectLayout("DRIVER_INFO_2W", sizeof(DRIVER_INFO_2W), 48,
                 {
                     MEMBER(DRIVER_INFO_2W, cVersion, 0, 4),
                     MEMBER(DRIVER_INFO_2W, pName, 8, 8),
                     MEMBER(DRIVER_INFO_2W, pEnvironment, 16, 8),
                     MEMBER(DRIVER_INFO_2W, pDriverPath, 24, 8),
                     MEMBER(DRIVER_INFO_2W, pDataFile, 32, 8),
                     MEMBER(DRIVER_INFO_2W, pConfigFile, 40, 8),
                 });
}

TEST(Layout, FORM_INFO_1W) {
    expectLayout("FORM_INFO_1W", sizeof(FORM_INFO_1W), 40,
                 {
                     MEMBER(FORM_INFO_1W, Flags, 0, 4),
                     MEMBER(FORM_INFO_1W, pName, 8, 8),
                     MEMBER(FORM_INFO_1W, Size, 16, 8),
                     MEMBER(FORM_INFO_1W, ImageableArea, 24, 16),
                 });
}

TEST(Layout, WIN32_FIND_DATAW) {
    expectLayout("WIN32_FIND_DATAW", sizeof(WIN32_FIND_DATAW), 592,
                 {
                     MEMBER(WIN32_FIND_DATAW, dwFileAttributes, 0, 4),
                     MEMBER(WIN32_FIND_DATAW, ftCreationTime, 4, 8),
                     MEMBER(WIN32_FIND_DATAW, ftLastAccessTime, 12, 8),
                     MEMBER(WIN32_FIND_DATAW, ftLastWriteTime, 20, 8),
                     MEMBER(WIN32_FIND_DATAW, nFileSizeHigh, 28, 4),
                     MEMBER(WIN32_FIND_DATAW, nFileSizeLow, 32, 4),
                     MEMBER(WIN32_FIND_DATAW, dwReserved0, 36, 4),
                     MEMBER(WIN32_FIND_DATAW, dwReserved1, 40, 4),
                     MEMBER(WIN32_FIND_DATAW, cFileName, 44, 520),
                     MEMBER(WIN32_FIND_DATAW, cAlternateFileName, 564, 28),
                 });
}

TEST(Layout, OSVERSIONINFOW) {
    expectLayout("OSVERSIONINFOW", sizeof(OSVERSIONINFOW), 276,
                 {
                     MEMBER(OSVERSIONINFOW, dwOSVersionInfoSize, 0, 4),
                     MEMBER(OSVERSIONINFOW, dwMajorVersion, 4, 4),
                     MEMBER(OSVERSIONINFOW, dwMinorVersion, 8, 4),
                     MEMBER(OSVERSIONINFOW, dwBuildNumber, 12, 4),
                     MEMBER(OSVERSIONINFOW, dwPlatformId, 16, 4),
                     MEMBER(OSVERSIONINFOW, szCSDVersion, 20, 256),
                 });
}

TEST(Layout, SYSTEM_INFO) {
    expectLayout("SYSTEM_INFO", sizeof(SYSTEM_INFO), 48,
                 {
                     MEMBER(SYSTEM_INFO, wProcessorArchitecture, 0, 2),
                     MEMBER(SYSTEM_INFO, wReserved, 2, 2),
                     MEMBER(SYSTEM_INFO, dwPageSize, 4, 4),
                     MEMBER(SYSTEM_INFO, lpMinimumApplicationAddress, 8, 8),
                     MEMBER(SYSTEM_INFO, lpMaximumApplicationAddress, 16, 8),
                     MEMBER(SYSTEM_INFO, dwActiveProcessorMask, 24, 8),
                     MEMBER(SYSTEM_INFO, dwNumberOfProcessors, 32, 4),
                     MEMBER(SYSTEM_INFO, dwProcessorType, 36, 4),
                     MEMBER(SYSTEM_INFO, dwAllocationGranularity, 40, 4),
                     MEMBER(SYSTEM_INFO, wProcessorLevel, 44, 2),
                     MEMBER(SYSTEM_INFO, wProcessorRevision, 46, 2),
                 });
}

TEST(Layout, SYSTEMTIME) {
    expectLayout("SYSTEMTIME", sizeof(SYSTEMTIME), 16,
                 {
                     MEMBER(SYSTEMTIME, wYear, 0, 2),
                     MEMBER(SYSTEMTIME, wMonth, 2, 2),
                     MEMBER(SYSTEMTIME, wDayOfWeek, 4, 2),
                     MEMBER(SYSTEMTIME, wDay, 6, 2),
                     MEMBER(SYSTEMTIME, wHour, 8, 2),
                     MEMBER(SYSTEMTIME, wMinute, 10, 2),
                     MEMBER(SYSTEMTIME, wSecond, 12, 2),
                     MEMBER(SYSTEMTIME, wMilliseconds, 14, 2),
                 });
}

TEST(Layout, VS_FIXEDFILEINFO) {
    expectLayout("VS_FIXEDFILEINFO", sizeof(VS_FIXEDFILEINFO), 52,
                 {
                     MEMBER(VS_FIXEDFILEINFO, dwSignature, 0, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwStrucVersion, 4, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileVersionMS, 8, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileVersionLS, 12, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwProductVersionMS, 16, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwProductVersionLS, 20, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileFlagsMask, 24, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileFlags, 28, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileOS, 32, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileType, 36, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileSubtype, 40, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileDateMS, 44, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileDateLS, 48, 4),
                 });
}

TEST(Layout, SECURITY_DESCRIPTOR) {
    expectLayout("SECURITY_DESCRIPTOR", sizeof(SECURITY_DESCRIPTOR), 40,
                 {
                     MEMBER(SECURITY_DESCRIPTOR, Revision, 0, 1),
                     MEMBER(SECURITY_DESCRIPTOR, Sbz1, 1, 1),
                     MEMBER(SECURITY_DESCRIPTOR, Control, 2, 2),
                     MEMBER(SECURITY_DESCRIPTOR, Owner, 8, 8),
                     MEMBER(SECURITY_DESCRIPTOR, Group, 16, 8),
                     MEMBER(SECURITY_DESCRIPTOR, Sacl, 24, 8),
                     MEMBER(SECURITY_DESCRIPTOR, Dacl, 32, 8),
                 });
}

TEST(Layout, ACL) {
    expectLayout("ACL", sizeof(ACL), 8,
                 {
                     MEMBER(ACL, AclRevision, 0, 1),
                     MEMBER(ACL, Sbz1, 1, 1),
                     MEMBER(ACL, AclSize, 2, 2),
                     MEMBER(ACL, AceCount, 4, 2),
                     MEMBER(ACL, Sbz2, 6, 2),
                 });
}

TEST(Layout, ACE_HEADER) {
    expectLayout("ACE_HEADER", sizeof(ACE_HEADER), 4,
                 {
                     MEMBER(ACE_HEADER, AceType, 0, 1),
                     MEMBER(ACE_HEADER, AceFlags, 1, 1),
                     MEMBER(ACE_HEADER, AceSize, 2, 2),
                 });
}

TEST(Layout, ACL_SIZE_INFORMATION) {
    expectLayout("ACL_SIZE_INFORMATION", sizeof(ACL_SIZE_INFORMATION), 12,
                 {
                     MEMBER(ACL_SIZE_INFORMATION, AceCount, 0, 4),
                     MEMBER(ACL_SIZE_INFORMATION, AclBytesInUse, 4, 4),
                     MEMBER(ACL_SIZE_INFORMATION, AclBytesFree, 8, 4),
                 });
}

TEST(Layout, TOKEN_USER) {
    expectLayout("TOKEN_USER", sizeof(TOKEN_USER), 16,
                 {
                     MEMBER(TOKEN_USER, User, 0, 16),
                 });
}

TEST(Layout, SID_AND_ATTRIBUTES) {
    expectLayout("SID_AND_ATTRIBUTES", sizeof(SID_AND_ATTRIBUTES), 16,
                 {
                     MEMBER(SID_AND_ATTRIBUTES, Sid, 0, 8),
                     MEMBER(SID_AND_ATTRIBUTES, Attributes, 8, 4),
                 });
}

TEST(Layout, scalars) {
    EXPECT_EQ(sizeof(LONG), 4U);
    EXPECT_EQ(sizeof(ULONG), 4U);
    EXPECT_EQ(sizeof(DWORD), 4U);
    EXPECT_EQ(sizeof(WCHAR), 2U);
    EXPECT_EQ(sizeof(BOOL), 4U);
    EXPECT_EQ(sizeof(HANDLE), 8U);
    EXPECT_EQ(sizeof(LARGE_INTEGER), 8U);
}
