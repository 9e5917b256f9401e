// BitBlt.cpp - copying at the same size, with quaternary raster operations.
#include <algorithm>

#include "engine/Pixels.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/MakeSurface.h"
#include "engine/pixels/RasterOp.h"
#include "engine/pixels/Services.h"
#include "engine/pixels/Translation.h"

namespace morvil::engine::services {

namespace {

LONG clampToLong(std::int64_t value) { return static_cast<LONG>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX)); }

// Where the pixels of `surface` come to lie when its `from` falls on `to`.
RECTL placed(const SURFOBJ& surface, POINTL from, POINTL to) {
    const std::int64_t dx = static_cast<std::int64_t>(to.x) - from.x;
    const std::int64_t dy = static_cast<std::int64_t>(to.y) - from.y;
    return {clampToLong(dx), clampToLong(dy), clampToLong(dx + surface.sizlBitmap.cx), clampToLong(dy + surface.sizlBitmap.cy)};
}

}  // namespace

BOOL bitBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source,
            POINTL* maskOrigin, BRUSHOBJ* brush, POINTL* brushOrigin, ROP4 rop) {
    EngineSurface* const surface = surfaceOf(to);
    if (surface == nullptr || target == nullptr) return FALSE;
    RasterCodes codes = rasterCodes(rop);
    const bool usesMask = codes.foreground != codes.background && mask != nullptr;
    if (!usesMask) codes.background = codes.foreground;
    const bool usesSource = ropNeedsSource(codes.foreground) || ropNeedsSource(codes.background);
    const bool usesPattern = ropNeedsPattern(codes.foreground) || ropNeedsPattern(codes.background);
    const EngineSurface* sourceSurface = usesSource ? surfaceOf(from) : nullptr;
    const EngineSurface* const maskSurface = usesMask ? surfaceOf(mask) : nullptr;
    if (usesSource && (sourceSurface == nullptr || source == nullptr)) return FALSE;
    if (usesMask && (maskSurface == nullptr || maskOrigin == nullptr || bitsOf(*maskSurface) != 1)) return FALSE;
    if (usesPattern && brush == nullptr) return FALSE;

    const POINTL corner{target->left, target->top};
    RECTL area = intersection(*target, boundsOf(*surface));
    if (usesSource) area = intersection(area, placed(*sourceSurface, *source, corner));
    if (usesMask) area = intersection(area, placed(*maskSurface, *maskOrigin, corner));
    const ClipRows rows(clip, area);
    if (rows.empty()) return TRUE;

    RowPainter painter(*surface, static_cast<const EngineBrush*>(brush), brushOrigin, codes, rows.bounds());
    if (!usesSource && !usesMask) {
        for (const RECTL& part : rows.rectangles()) painter.paintRectangle(part);
        return TRUE;
    }
    // On itself a surface is read row by row before it is written, from the end when it moves down; several rectangles could
    // spoil one another's source, so they read from a copy.
    const bool onItself = usesSource && sourceSurface->pvBits == surface->pvBits;
    std::unique_ptr<EngineSurface> copy;
    if (onItself && rows.rectangles().size() > 1) {
        copy = copySurface(*sourceSurface);
        if (copy == nullptr) return FALSE;
        sourceSurface = copy.get();
    }
    const bool upwards = onItself && usesSource && source->y < corner.y;
    const LONG width = rows.bounds().right - rows.bounds().left;
    std::optional<SourceRows> sourceRows;
    if (usesSource)
        sourceRows.emplace(*sourceSurface, bitsOf(*surface), PixelTranslator(*sourceSurface, *surface, translation), width, onItself);
    std::optional<SourceRows> maskRows;
    if (usesMask) maskRows.emplace(*maskSurface, bitsOf(*surface), PixelTranslator(std::vector<ULONG>{0, 0xFFFFFFFF}), width, false);
    for (const RECTL& part : rows.rectangles()) {
        const LONG count = part.right - part.left;
        for (LONG i = 0; i < part.bottom - part.top; ++i) {
            const LONG y = upwards ? part.bottom - 1 - i : part.top + i;
            const std::uint8_t* sourceRow = nullptr;
            const std::uint8_t* maskRow = nullptr;
            if (usesSource) sourceRow = sourceRows->row(source->x + (part.left - corner.x), source->y + (y - corner.y), count, part.left);
            if (usesMask) maskRow = maskRows->row(maskOrigin->x + (part.left - corner.x), maskOrigin->y + (y - corner.y), count, part.left);
            painter.paint(y, part.left, part.right, sourceRow, maskRow);
        }
    }
    return TRUE;
}

BOOL copyBits(SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* translation, RECTL* target, POINTL* source) {
    constexpr ROP4 kCopySource = 0xCCCC;
    return bitBlt(to, from, nullptr, clip, translation, target, source, nullptr, nullptr, nullptr, kCopySource);
}

}  // namespace morvil::engine::services
