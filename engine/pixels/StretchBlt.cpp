// StretchBlt.cpp - stretching onto the engine's bitmaps, with mask, clip and raster operation.
#include <algorithm>

#include "engine/Pixels.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/MakeSurface.h"
#include "engine/pixels/RasterOp.h"
#include "engine/pixels/Services.h"
#include "engine/pixels/Stretch.h"
#include "engine/pixels/Translation.h"

namespace morvil::engine {

bool stretchRop(const StretchRequest& request) {
    EngineSurface* const target = surfaceOf(request.target);
    const EngineSurface* source = surfaceOf(request.source);
    const EngineSurface* const mask = surfaceOf(request.mask);
    if (target == nullptr || source == nullptr) return false;
    if (request.mask != nullptr && (mask == nullptr || bitsOf(*mask) != 1)) return false;
    if (request.mode < BLACKONWHITE || request.mode > HALFTONE) return false;
    RasterCodes codes = rasterCodes(request.rop4);
    if (mask == nullptr) codes.background = codes.foreground;
    if (request.brush == nullptr && (ropNeedsPattern(codes.foreground) || ropNeedsPattern(codes.background))) return false;

    const RECTL& from = request.sourceRectangle;
    StretchAxis columns(request.targetRectangle.left, request.targetRectangle.right, from.left, from.right);
    StretchAxis rows(request.targetRectangle.top, request.targetRectangle.bottom, from.top, from.bottom);
    if (!columns.valid() || !rows.valid()) return false;
    columns.limitSource(0, source->sizlBitmap.cx);
    rows.limitSource(0, source->sizlBitmap.cy);
    // From source pixels to mask pixels.
    const LONG maskX = request.maskOrigin.x - from.left;
    const LONG maskY = request.maskOrigin.y - from.top;
    if (mask != nullptr) {
        columns.limitSource(-maskX, mask->sizlBitmap.cx - maskX);
        rows.limitSource(-maskY, mask->sizlBitmap.cy - maskY);
    }
    const RECTL area = intersection({columns.low(), rows.low(), columns.high(), rows.high()}, boundsOf(*target));
    const ClipRows clip(request.clip, area);
    if (clip.empty()) return true;
    std::unique_ptr<EngineSurface> copy;
    if (source->pvBits == target->pvBits) {
        copy = copySurface(*source);
        if (copy == nullptr) return false;
        source = copy.get();
    }

    const int bits = bitsOf(*target);
    const LONG width = clip.bounds().right - clip.bounds().left;
    RowPainter painter(*target, request.brush, request.brushOrigin, codes, clip.bounds());
    const POINTL ditherOrigin = request.brushOrigin == nullptr ? POINTL{} : *request.brushOrigin;
    const auto stretched = makeStretchedRows({.target = *target,
                                              .source = *source,
                                              .translation = request.translation,
                                              .adjustment = request.adjustment,
                                              .ditherOrigin = ditherOrigin,
                                              .columns = columns,
                                              .rows = rows},
                                             request.mode);
    std::vector<std::uint8_t> packed(static_cast<std::size_t>(packedRowBytes(width, bits)) + 1);
    std::vector<std::uint8_t> packedMask(mask == nullptr ? 0 : packed.size());
    std::vector<ULONG> maskValues(mask == nullptr ? 0 : static_cast<std::size_t>(width));
    for (const RECTL& part : clip.rectangles()) {
        const LONG count = part.right - part.left;
        for (LONG y = part.top; y < part.bottom; ++y) {
            packPixels(stretched->row(y, part.left, part.right).data(), bits, part.left, count, packed.data());
            if (mask != nullptr) {
                const std::uint8_t* const maskRow = rowOf(*mask, rows.middle(y) + maskY);
                for (LONG x = part.left; x < part.right; ++x) {
                    ULONG bit = 0;
                    unpackPixels(maskRow, 1, columns.middle(x) + maskX, 1, &bit);
                    maskValues[static_cast<std::size_t>(x - part.left)] = bit == 0 ? 0 : 0xFFFFFFFFU;
                }
                packPixels(maskValues.data(), bits, part.left, count, packedMask.data());
            }
            painter.paint(y, part.left, part.right, packed.data(), mask == nullptr ? nullptr : packedMask.data());
        }
    }
    return true;
}

}  // namespace morvil::engine

namespace morvil::engine::services {

BOOL stretchBlt(SURFOBJ* to, SURFOBJ* from, SURFOBJ* mask, CLIPOBJ* clip, XLATEOBJ* translation, COLORADJUSTMENT* adjustment,
                POINTL* brushOrigin, RECTL* target, RECTL* source, POINTL* maskOrigin, ULONG mode) {
    if (target == nullptr || source == nullptr || (mask != nullptr && maskOrigin == nullptr)) return FALSE;
    constexpr ROP4 kCopy = 0xCCCC;
    constexpr ROP4 kCopyMasked = 0xAACC;  // the source where the mask is 1, nothing where it is 0
    return stretchRop({.target = to,
                       .source = from,
                       .mask = mask,
                       .clip = clip,
                       .translation = translation,
                       .adjustment = adjustment,
                       .targetRectangle = *target,
                       .sourceRectangle = *source,
                       .maskOrigin = maskOrigin == nullptr ? POINTL{} : *maskOrigin,
                       .mode = mode,
                       .rop4 = mask == nullptr ? kCopy : kCopyMasked,
                       .brush = nullptr,
                       .brushOrigin = brushOrigin})
               ? TRUE
               : FALSE;
}

}  // namespace morvil::engine::services
