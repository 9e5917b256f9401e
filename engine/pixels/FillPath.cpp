// FillPath.cpp - filling paths on the engine's bitmaps.
#include <algorithm>

#include "engine/Pixels.h"
#include "engine/pixels/Coverage.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/RasterOp.h"
#include "engine/pixels/Services.h"

namespace morvil::engine::services {

BOOL fillPath(SURFOBJ* surface, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* brushOrigin, MIX mix, FLONG options) {
    EngineSurface* const target = surfaceOf(surface);
    if (target == nullptr || path == nullptr) return FALSE;
    if (options != FP_ALTERNATEMODE && options != FP_WINDINGMODE) return FALSE;
    const std::uint8_t rop = ropOfMix(static_cast<int>(mix & 0xFFU));
    if (brush == nullptr && ropNeedsPattern(rop)) return FALSE;

    const Path& outline = static_cast<const EnginePath*>(path)->path;
    const RECTL box = outline.bounds();
    const RECTL pixels{box.left >> 4, box.top >> 4, (box.right >> 4) + 1, (box.bottom >> 4) + 1};
    const ClipRows rows(clip, intersection(pixels, boundsOf(*target)));
    if (rows.empty()) return TRUE;
    RowPainter painter(*target, static_cast<const EngineBrush*>(brush), brushOrigin, {rop, rop}, rows.bounds());
    coverPath(outline, options == FP_ALTERNATEMODE, rows.bounds(),
              [&](const RECTL& covered) { rows.clip(covered, [&painter](const RECTL& part) { painter.paintRectangle(part); }); });
    return TRUE;
}

}  // namespace morvil::engine::services
