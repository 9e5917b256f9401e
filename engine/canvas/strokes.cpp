// strokes.cpp - how strokes reach the driver: as cosmetic lines, as geometric lines where it takes wide ones, else as the fill
// of their widened outline; curves only where it takes curves. What it answers FALSE the engine draws into the surface.
#include <algorithm>
#include <cmath>

#include "engine/EngineState.h"
#include "engine/Pixels.h"
#include "engine/canvas/DriverCanvas.h"
#include "engine/canvas/LineAttributes.h"
#include "engine/canvas/Mix.h"

namespace morvil::engine {

namespace {

// A geometric line up to this many device pixels wide is a line without width: nobody could tell its outline from it, and to
// a cutting machine it is the path that counts. See docs/engine-choices.md.
constexpr double kThinnest = 1.5;

double scaleOf(const XFORM& xform) {
    return std::sqrt(std::fabs(static_cast<double>(xform.eM11) * static_cast<double>(xform.eM22) - static_cast<double>(xform.eM12) * static_cast<double>(xform.eM21)));
}

// The cosmetic pen that a thin geometric one amounts to; dash lengths go from world units to whole style steps.
Pen asCosmetic(const Pen& pen, double scale, LONG pixelsPerStep) {
    Pen thin = pen;
    thin.geometric = false;
    thin.width = 1.0;
    for (float& length : thin.style) length = static_cast<float>(std::max(1.0, std::round(static_cast<double>(length) * scale / pixelsPerStep)));
    return thin;
}

// World-to-device transform as a driver sees it: opaque, valid during the call.
struct EngineXform : XFORMOBJ {
    XFORM worldToDevice{};
};

}  // namespace

void DriverCanvas::strokePath(const Path& path, const Pen& pen, const XFORM& worldToDevice, int rop2) {
    if (!ok() || pen.null || path.empty()) return;
    const Path moved = inBand(path);
    const double scale = scaleOf(worldToDevice);
    const bool wide = pen.geometric && pen.width * scale > kThinnest;
    if (wide) return strokeGeometric(moved, pen, worldToDevice, rop2);
    const Device* const device = deviceOf(m_target.surface->hdev);
    const LONG pixelsPerStep = device != nullptr && device->xStyleStep > 0 ? std::max(1, device->denStyleStep / device->xStyleStep) : 1;
    strokeThin(moved, pen.geometric ? asCosmetic(pen, scale, pixelsPerStep) : pen, rop2);
}

// Offers the stroke, first with its curves where the driver takes curves, then flattened.
DriverCanvas::Outcome DriverCanvas::offerStroke(const Path& path, const Pen& pen, const XFORM* worldToDevice, EngineBrush& brush, int rop2) {
    if (!hooked(HOOK_STROKEPATH) || m_target.driver->strokePath == nullptr) return Outcome::HandedBack;
    EngineXform xform;
    if (worldToDevice != nullptr) xform.worldToDevice = *worldToDevice;
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), surfaceBounds());
    const auto offer = [&](const Path& form) {
        EnginePath object = makePath(form);
        LineAttributes line(pen);
        return outcomeOf(m_target.driver->strokePath(m_target.surface, &object, &clipObject, worldToDevice != nullptr ? &xform : nullptr, &brush,
                                                     &brush.origin, line.record(), mixOf(rop2)),
                         "DrvStrokePath");
    };
    const bool curves = path.hasBeziers();
    if (curves && caps(GCAPS_BEZIERS)) {
        const Outcome outcome = offer(path);
        if (outcome != Outcome::HandedBack) return outcome;
    }
    return offer(curves ? flat(path) : path);
}

void DriverCanvas::strokeThin(const Path& path, const Pen& pen, int rop2) {
    EngineBrush brush = realizeBrush(*m_target.surface, inBand(pen.brush), false);
    switch (offerStroke(path, pen, nullptr, brush, rop2)) {
        case Outcome::Done: return count(&PageReport::strokesToDriver);
        case Outcome::Failed: return;
        case Outcome::HandedBack: break;
    }
    const EngineClip clipObject = makeClip(clip(), surfaceBounds(), surfaceBounds());
    strokeCosmetic(*m_target.surface, flat(path), clipObject, brush, pen, rop2);
    count(&PageReport::strokesByEngine);
}

// A wide line that the driver does not take, or hands back, comes again as the fill of its outline.
void DriverCanvas::strokeGeometric(const Path& path, const Pen& pen, const XFORM& worldToDevice, int rop2) {
    EngineBrush brush = realizeFill(pen.brush);
    if (caps(GCAPS_GEOMETRICWIDE)) {
        const Outcome outcome = offerStroke(path, pen, &worldToDevice, brush, rop2);
        if (outcome == Outcome::Done) count(&PageReport::strokesToDriver);
        if (outcome != Outcome::HandedBack) return;
    }
    XFORM inBandTransform = worldToDevice;
    inBandTransform.eDy -= static_cast<FLOAT>(m_target.bandTop);
    const Path outline = widenPath(path, pen, inBandTransform, inBand(sight()), &dashBudget());
    fillRealized(outline, brush, FillMode::Winding, rop2, true);
    count(&PageReport::strokesByEngine);
}

bool DriverCanvas::offerStrokeAndFill(const Path& path, const Pen& pen, const XFORM& worldToDevice, const Brush& brush, FillMode mode, int rop2) {
    const bool widthTaken = !pen.geometric || pen.width * scaleOf(worldToDevice) <= kThinnest || caps(GCAPS_GEOMETRICWIDE);
    if (!hooked(HOOK_STROKEANDFILLPATH) || m_target.driver->strokeAndFillPath == nullptr || !widthTaken) return false;
    EngineBrush strokeBrush = realizeBrush(*m_target.surface, inBand(pen.brush), false);
    EngineBrush fillBrush = realizeFill(brush);
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), surfaceBounds());
    EngineXform xform;
    xform.worldToDevice = worldToDevice;
    const FLONG options = mode == FillMode::Alternate ? FP_ALTERNATEMODE : FP_WINDINGMODE;
    const auto offer = [&](const Path& form) {
        EnginePath object = makePath(form);
        LineAttributes line(pen);
        return outcomeOf(m_target.driver->strokeAndFillPath(m_target.surface, &object, &clipObject, pen.geometric ? &xform : nullptr, &strokeBrush,
                                                            line.record(), &fillBrush, &fillBrush.origin, mixOf(rop2), options),
                         "DrvStrokeAndFillPath");
    };
    const bool curves = path.hasBeziers();
    if (curves && caps(GCAPS_BEZIERS) && offer(path) != Outcome::HandedBack) return true;
    return offer(curves ? flat(path) : path) != Outcome::HandedBack;
}

// On two refusals the interior is filled and the outline stroked above it.
void DriverCanvas::strokeAndFillPath(const Path& path, const Pen& pen, const XFORM& worldToDevice, const Brush& brush, FillMode mode, int rop2) {
    if (!ok() || path.empty()) return;
    if (pen.null) return fillPath(path, brush, mode, rop2);
    if (brush.kind == BrushKind::Null) return strokePath(path, pen, worldToDevice, rop2);
    if (offerStrokeAndFill(inBand(path), pen, worldToDevice, brush, mode, rop2)) return count(&PageReport::strokesToDriver);
    fillPath(path, brush, mode, rop2);
    strokePath(path, pen, worldToDevice, rop2);
}

}  // namespace morvil::engine
