// stroke_path.cpp - strokes are the machine's cutting and marking lines: they leave the raster and become vector commands along
// their centre line. Width, style and joins do not matter. FALSE leaves a stroke to the engine, which draws it into the page.
#include <cstdlib>
#include <limits>

#include "driver/Hooks.h"
#include "driver/Pdev.h"
#include "driver/State.h"
#include "driver/bezier_library.h"
#include "driver/guard.h"
#include "driver/log/Log.h"
#include "driver/path_points.h"
#include "driver/path_recorder.h"

using namespace morvil;

namespace {

constexpr ULONG kColourMask = 0xFFFFFF;  // an engine without a colour answers -1, which is white here
constexpr int kColourTolerance = 20;     // sum of the differences of red, green and blue
constexpr WORD kNotAsVector = 1;         // mode of a vector colour that stays in the raster
constexpr WORD kFitArcs = 1;             // Bezier switch: through the curve-fitting library
constexpr std::uint64_t kMostPoints = std::numeric_limits<std::int32_t>::max();

void logLineAttributes(const LINEATTRS& attributes) {
    const auto width = attributes.elWidth;
    const FLOATL miter = attributes.eMiterLimit;
    logRend(1, kInformation, TEXT("DrvStrokePath cStyle=%d"), attributes.cstyle, kLogEnd);
    if ((attributes.fl & LA_ALTERNATE) != 0) {
        logRend(1, kInformation, TEXT("DrvStrokePath LA_ALTERNATE, elWidth=%lu, eMiterLimit=%lu"), width.l, miter, kLogEnd);
    }
    if ((attributes.fl & LA_GEOMETRIC) != 0) {
        logRend(1, kInformation, TEXT("DrvStrokePath LA_GEOMETRIC, elWidth=%f, eMiterLimit=%f"), width.e, miter, kLogEnd);
    } else {
        logRend(1, kInformation, TEXT("DrvStrokePath elWidth=%f, elWidth=%lu, eMiterLimit=%f"), width.e, width.l, miter, kLogEnd);
    }
    if ((attributes.fl & LA_STARTGAP) != 0) {
        logRend(1, kInformation, TEXT("DrvStrokePath LA_STARTGAP, elWidth=%lu, eMiterLimit=%lu"), width.l, miter, kLogEnd);
    }
    if ((attributes.fl & LA_STYLED) != 0) {
        logRend(1, kInformation, TEXT("DrvStrokePath LA_STYLED, elWidth=%lu, eMiterLimit=%lu"), width.l, miter, kLogEnd);
    }
}

COLORREF strokeColour(BRUSHOBJ* pbo) {
    if (pbo == nullptr) return 0;
    logRend(1, kInformation, TEXT("DrvStrokePath pbo->iSolidColor=%lu"), pbo->iSolidColor, kLogEnd);
    const COLORREF colour = BRUSHOBJ_ulGetBrushColor(pbo) & kColourMask;
    logRend(1, kInformation, TEXT("DrvStrokePath pColor=%lX"), colour, kLogEnd);
    if (pbo->pvRbrush != nullptr) logRend(1, kInformation, TEXT("DrvStrokePath pvRbrush=%lX"), low32(pbo->pvRbrush), kLogEnd);
    return colour;
}

int distance(const VectorColour& entry, COLORREF colour) {
    return std::abs(entry.red - GetRValue(colour)) + std::abs(entry.green - GetGValue(colour)) + std::abs(entry.blue - GetBValue(colour));
}

bool staysInRaster(COLORREF colour) {
    int index = 0;
    for (const VectorColour& entry : state().configuration.colours) {
        logRend(1, kInformation, TEXT("Color[%d] R=%X, G=%X, B=%X, mode=%d"), index++, entry.red, entry.green, entry.blue, entry.mode,
                kLogEnd);
        if (entry.mode == kNotAsVector && distance(entry, colour) <= kColourTolerance) return true;
    }
    return false;
}

void writeFigures(PATHOBJ& path, PointArrays& points, COLORREF colour, bool banded) {
    const PixelOffset toPage{0, -static_cast<std::int32_t>(state().uiBandPosition)};
    forEachFigure(path, points, toPage, [&](std::uint32_t count) {
        if (state().spoolFile) state().spoolFile->WritePolygon(points.xs.get(), points.ys.get(), count, colour, banded);
    });
}

BOOL strokeDirect(PATHOBJ& path, COLORREF colour, bool banded) {
    const PathSummary summary = summarise(path);
    logRend(1, kInformation, TEXT("DrvStrokePath 1, cPoint=%u, cCurves=%d"), summary.points, path.cCurves, kLogEnd);
    if (summary.points > kMostPoints) return FALSE;
    PointArrays points(static_cast<std::size_t>(summary.points));
    if (!points.allocated()) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    bGetPoints(path, points.xs.span(), points.ys.span(), {0, 0});
    if (!summary.hasBeziers) {
        writeFigures(path, points, colour, banded);
        return TRUE;
    }
    if (state().configuration.bezier.mode == kFitArcs) return writeFittedArc(points.xs.span(), points.ys.span(), colour);
    if (state().spoolFile) {
        state().spoolFile->WriteBezier(points.xs.get(), points.ys.get(), static_cast<std::uint32_t>(summary.points), colour);
    }
    return TRUE;
}

BOOL strokePath(SURFOBJ* pso, PATHOBJ* ppo, BRUSHOBJ* pbo, const LINEATTRS* lineAttrs) {
    logMorvil(1, kInformation, TEXT("DrvStrokePath, pso=%X"), low32(pso), kLogEnd);
    logRend(1, kInformation, TEXT("DrvStrokePath, pso=%X"), low32(pso), kLogEnd);
    if (pso != nullptr && validInstance(pso) == nullptr) {
        logRend(1, kError, TEXT("Invalid PPDEV Handle DrvStartPage"), kLogEnd);
        return FALSE;
    }
    if (lineAttrs != nullptr) logLineAttributes(*lineAttrs);
    const COLORREF colour = strokeColour(pbo);
    if (staysInRaster(colour) || ppo == nullptr) return FALSE;
    const bool banded = (state().configuration.flags & MV_FL_BITMAP_BANDING) != 0;
    return ppo->cCurves <= state().configuration.ppoThreshold ? strokeDirect(*ppo, colour, banded) : strokeRecorded(*ppo, colour, banded);
}

}  // namespace

extern "C" {

BOOL APIENTRY DrvStrokePath(SURFOBJ* pso, PATHOBJ* ppo, CLIPOBJ* /*pco*/, XFORMOBJ* /*pxo*/, BRUSHOBJ* pbo, POINTL* /*brushOrigin*/,
                            LINEATTRS* lineAttrs, MIX /*mix*/) {
    return guarded(TEXT("DrvStrokePath"), BOOL{FALSE}, [=] { return strokePath(pso, ppo, pbo, lineAttrs); });
}

}  // extern "C"
