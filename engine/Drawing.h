// Drawing.h - what a drawing call carries: pens, brushes, images and glyph runs, as a document describes them, in device
// coordinates unless said otherwise. Plain data without any link to a surface.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/platform.h"

namespace morvil::engine {

// A device-independent bitmap with its palette. Rows are as stored; `topDown` tells their order.
struct Image {
    LONG width = 0;
    LONG height = 0;       // positive
    int bitsPerPixel = 0;  // 1, 4, 8, 16, 24 or 32
    LONG rowBytes = 0;
    bool topDown = false;
    std::vector<COLORREF> palette{};       // 0x00BBGGRR; for 1, 4 and 8 bits
    std::array<std::uint32_t, 3> masks{};  // red, green, blue; for 16 and 32 bits
    std::vector<std::uint8_t> bits{};
    ULONG compression = BI_RGB;  // BI_RLE8 and BI_RLE4: `bits` holds the run lengths, rowBytes does not matter
};

enum class BrushKind : std::uint8_t { Null, Solid, Hatch, Pattern };

struct Brush {
    BrushKind kind = BrushKind::Solid;
    COLORREF colour = 0;
    int hatch = 0;                         // HS_HORIZONTAL (0) to HS_DIAGCROSS (5)
    std::shared_ptr<const Image> pattern;  // a 1-bit pattern without own colours takes text and background colour
    bool monochromePattern = false;
    COLORREF foreground = 0;  // text colour, for monochrome patterns
    COLORREF background = 0xFFFFFF;
    bool transparent = false;  // hatch gaps stay as they are
    POINTL origin{};
};

struct Pen {
    bool null = false;
    bool geometric = false;  // width in world units and widened; otherwise cosmetic: one device pixel
    double width = 0.0;
    Brush brush;  // solid for cosmetic pens
    ULONG join = JOIN_ROUND;
    ULONG endCap = ENDCAP_ROUND;
    float miterLimit = 10.0F;
    // Lengths of dash and gap in turn: world units when geometric, style steps when cosmetic; empty: solid.
    std::vector<float> style;
    bool alternate = false;  // every other pixel, cosmetic only
};

// How often the patterns of wide dashed lines may still repeat. A small file may ask for very many repeats, and nothing else would
// bound the time and memory that their outlines take: some 1.2 KB each until their path is filled.
class DashBudget {
  public:
    static constexpr double kMostOfOnePath = 250'000.0;
    static constexpr double kMost = 4e6;

    // False, and nothing taken, when so many are not left.
    bool take(double repeats) {
        if (!(repeats <= std::min(m_left, m_leftOfPath))) return false;
        m_left -= repeats;
        m_leftOfPath -= repeats;
        return true;
    }
    void beginPath() { m_leftOfPath = kMostOfOnePath; }

  private:
    double m_left = kMost;
    double m_leftOfPath = kMostOfOnePath;
};

// A glyph as a one-bit picture; `origin` is from the pen position to its upper left, y down. Rows are byte-aligned, leftmost
// pixel in the highest bit.
struct GlyphBitmap {
    POINTL origin{};
    SIZEL size{};
    LONG rowBytes = 0;
    std::vector<std::uint8_t> bits;
};

struct PositionedGlyph {
    std::shared_ptr<const GlyphBitmap> bitmap;
    ULONG index = 0;
    POINTL position{};  // pen position in device pixels
};

struct GlyphRun {
    ULONG font = 0;  // number of the realised font (face, size and transform); 0 when unknown
    std::vector<PositionedGlyph> glyphs;
    RECTL background{};  // box of the text's cells
    std::vector<WCHAR> characters;
};

}  // namespace morvil::engine
