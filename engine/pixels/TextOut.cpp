// TextOut.cpp - glyph bits on the engine's bitmaps.
#include "engine/Pixels.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/RasterOp.h"
#include "engine/pixels/Services.h"

namespace morvil::engine::services {

namespace {

bool glyphBit(const std::uint8_t* row, LONG x) { return (row[x / 8] & (0x80U >> (x % 8))) != 0; }

void paintGlyph(RowPainter& painter, const ClipRows& rows, const GlyphBitmap& glyph, POINTL corner) {
    if (glyph.rowBytes < packedRowBytes(glyph.size.cx, 1)) return;
    if (static_cast<std::uint64_t>(glyph.rowBytes) * static_cast<std::uint64_t>(glyph.size.cy) > glyph.bits.size()) return;
    for (LONG y = 0; y < glyph.size.cy; ++y) {
        const std::uint8_t* const row = glyph.bits.data() + static_cast<std::ptrdiff_t>(y) * glyph.rowBytes;
        LONG x = 0;
        while (x < glyph.size.cx) {
            if (!glyphBit(row, x)) {
                ++x;
                continue;
            }
            const LONG first = x;
            while (x < glyph.size.cx && glyphBit(row, x)) ++x;
            rows.clip({corner.x + first, corner.y + y, corner.x + x, corner.y + y + 1},
                      [&painter](const RECTL& part) { painter.paintRectangle(part); });
        }
    }
}

}  // namespace

BOOL textOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* /*font*/, CLIPOBJ* clip, RECTL* /*extra*/, RECTL* opaque, BRUSHOBJ* fore,
             BRUSHOBJ* back, POINTL* brushOrigin, MIX mix) {
    EngineSurface* const target = surfaceOf(surface);
    if (target == nullptr || text == nullptr || fore == nullptr) return FALSE;
    const RECTL bounds = boundsOf(*target);
    if (opaque != nullptr && back != nullptr) {
        constexpr std::uint8_t kCopyPattern = 0xF0;
        const ClipRows rows(clip, intersection(*opaque, bounds));
        if (!rows.empty()) {
            RowPainter painter(*target, static_cast<const EngineBrush*>(back), brushOrigin, {kCopyPattern, kCopyPattern}, rows.bounds());
            for (const RECTL& part : rows.rectangles()) painter.paintRectangle(part);
        }
    }
    const std::uint8_t rop = ropOfMix(static_cast<int>(mix & 0xFFU));
    const ClipRows rows(clip, bounds);
    if (rows.empty()) return TRUE;
    RowPainter painter(*target, static_cast<const EngineBrush*>(fore), brushOrigin, {rop, rop}, rows.bounds());
    for (const PositionedGlyph& glyph : static_cast<const EngineText*>(text)->glyphs) {
        if (glyph.bitmap == nullptr) continue;
        const GlyphBitmap& bitmap = *glyph.bitmap;
        paintGlyph(painter, rows, bitmap, {glyph.position.x + bitmap.origin.x, glyph.position.y + bitmap.origin.y});
    }
    return TRUE;
}

}  // namespace morvil::engine::services
