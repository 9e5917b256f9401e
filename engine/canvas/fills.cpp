// fills.cpp - filled paths and pattern blits on the driver's surface.
#include <algorithm>

#include "engine/Pixels.h"
#include "engine/canvas/DriverCanvas.h"
#include "engine/canvas/Mix.h"

namespace morvil::engine {

namespace {

FLONG optionsOf(FillMode mode) { return mode == FillMode::Alternate ? FP_ALTERNATEMODE : FP_WINDINGMODE; }

}  // namespace

void DriverCanvas::fillPath(const Path& path, const Brush& brush, FillMode mode, int rop2) {
    if (!ok() || brush.kind == BrushKind::Null || path.empty()) return;
    EngineBrush realized = realizeFill(brush);
    fillRealized(inBand(path), realized, mode, rop2, false);
    if (ok()) count(&PageReport::fills);
}

// Offers the fill, first with its curves where the driver takes curves, then flattened.
DriverCanvas::Outcome DriverCanvas::offerFill(const Path& path, EngineBrush& brush, FillMode mode, int rop2) {
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), surfaceBounds());
    const auto offer = [&](const Path& form) {
        EnginePath object = makePath(form);
        return outcomeOf(m_target.driver->fillPath(m_target.surface, &object, &clipObject, &brush, &brush.origin, mixOf(rop2), optionsOf(mode)), "DrvFillPath");
    };
    const bool curves = path.hasBeziers();
    if (curves && caps(GCAPS_BEZIERS)) {
        const Outcome outcome = offer(path);
        if (outcome != Outcome::HandedBack) return outcome;
    }
    return offer(curves ? flat(path) : path);
}

// The driver sees a fill only in a mode that its capability flags name; the outline of a widened stroke is offered always.
void DriverCanvas::fillRealized(const Path& path, EngineBrush& brush, FillMode mode, int rop2, bool alwaysOffer) {
    const bool modeTaken = caps(mode == FillMode::Alternate ? GCAPS_ALTERNATEFILL : GCAPS_WINDINGFILL);
    const bool offered = hooked(HOOK_FILLPATH) && m_target.driver->fillPath != nullptr && (modeTaken || alwaysOffer);
    if (offered && offerFill(path, brush, mode, rop2) != Outcome::HandedBack) return;
    EnginePath object = makePath(flat(path));
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), surfaceBounds());
    EngFillPath(m_target.surface, &object, &clipObject, &brush, &brush.origin, mixOf(rop2), optionsOf(mode));
}

void DriverCanvas::patBlt(const RECTL& target, const Brush& brush, std::uint8_t rop3) {
    if (!ok()) return;
    EngineBrush realized = realizeFill(brush);
    blit(inBand(target), nullptr, nullptr, {}, nullptr, {}, realized, static_cast<ROP4>(rop3 | (rop3 << 8)));
    if (ok()) count(&PageReport::fills);
}

}  // namespace morvil::engine
