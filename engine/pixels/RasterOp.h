// RasterOp.h - raster operations on rows of a surface. Every ternary code is a function of single bits, so operations work on
// whole bytes in the surface's own format: pattern, source and masks are brought into that format first.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/Objects.h"

namespace morvil::engine {

// Bit k of a ternary code is the result where pattern, source and target are the bits 2, 1 and 0 of k.
constexpr bool ropNeedsPattern(std::uint8_t rop) { return ((rop >> 4) & 0x0F) != (rop & 0x0F); }
constexpr bool ropNeedsSource(std::uint8_t rop) { return ((rop >> 2) & 0x33) != (rop & 0x33); }

// The ternary code of R2_BLACK (1) to R2_WHITE (16), with the pen in the pattern's place; other numbers count as R2_COPYPEN.
std::uint8_t ropOfMix(int rop2);

struct RasterCodes {
    std::uint8_t foreground = 0xF0;  // where the mask is 1, or everywhere
    std::uint8_t background = 0xF0;
};
constexpr RasterCodes rasterCodes(ROP4 rop4) {
    return {static_cast<std::uint8_t>(rop4 & 0xFFU), static_cast<std::uint8_t>((rop4 >> 8) & 0xFFU)};
}

// Changes pixels of one surface with one brush. Lives for one operation.
class RowPainter {
  public:
    // `extent` holds all pixels that will be painted; it lies within the surface. `brush` is needed for codes that use a pattern.
    RowPainter(EngineSurface& target, const EngineBrush* brush, const POINTL* brushOrigin, RasterCodes codes, const RECTL& extent);

    // Pixels x0 to x1 - 1 of row y. `source` and `mask` are packed as the target's row is: their first byte stands for the byte
    // that holds pixel x0. Mask pixels have all bits 0 or all bits 1. Null where the codes do not need them.
    void paint(LONG y, LONG x0, LONG x1, const std::uint8_t* source, const std::uint8_t* mask);
    void paintRectangle(const RECTL& area);  // pattern and target only

  private:
    struct Operands {
        const std::uint8_t* pattern;
        const std::uint8_t* source;
        const std::uint8_t* mask;
        const std::uint8_t* opaque;
    };
    struct PatternRow {
        std::vector<std::uint8_t> bits;
        std::vector<std::uint8_t> opaque;
        bool ready = false;
    };

    const PatternRow* patternRow(LONG y);
    void fillPatternRow(PatternRow& row, LONG patternY);
    void paintMiddle(std::uint8_t* target, const Operands& operands, std::size_t bytes) const;
    void paintPart(std::uint8_t* target, const Operands& operands, std::size_t at, std::uint8_t bits) const;

    EngineSurface& m_target;
    const EngineBrush* m_brush;
    POINTL m_origin{};
    RasterCodes m_codes;
    RECTL m_extent;
    int m_bits;
    bool m_usesPattern;
    bool m_hasHoles = false;
    bool m_solid = true;
    std::size_t m_firstByte = 0;  // of the extent in each row
    std::vector<PatternRow> m_rows;
};

// The rectangles of an area that a clip leaves.
class ClipRows {
  public:
    // `area` lies within the surface. A null or trivial clip leaves all of it.
    ClipRows(const CLIPOBJ* clip, const RECTL& area);
    [[nodiscard]] const std::vector<RECTL>& rectangles() const { return m_rectangles; }
    [[nodiscard]] bool empty() const { return m_rectangles.empty(); }
    // Smallest box around what is left.
    [[nodiscard]] const RECTL& bounds() const { return m_bounds; }

    // Calls `sink(RECTL)` for each part of the rectangle that is left.
    template <typename Sink>
    void clip(const RECTL& rectangle, Sink&& sink) const {
        for (std::size_t i = firstReaching(rectangle.top); i < m_rectangles.size() && m_rectangles[i].top < rectangle.bottom; ++i) {
            const RECTL& r = m_rectangles[i];
            const RECTL part{r.left > rectangle.left ? r.left : rectangle.left, r.top > rectangle.top ? r.top : rectangle.top,
                             r.right < rectangle.right ? r.right : rectangle.right,
                             r.bottom < rectangle.bottom ? r.bottom : rectangle.bottom};
            if (part.left < part.right && part.top < part.bottom) sink(part);
        }
    }

  private:
    // The first rectangle that ends below row y; they are in rows from top to bottom.
    [[nodiscard]] std::size_t firstReaching(LONG y) const;

    std::vector<RECTL> m_rectangles;
    RECTL m_bounds{};
};

}  // namespace morvil::engine
