// Sizes and offsets of the objects that an engine draws with, and of pictures, as 64-bit Windows lays them out.
// The same numbers hold on both hosts.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "support/Layout.h"

using morvil::test::expectLayout;

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
