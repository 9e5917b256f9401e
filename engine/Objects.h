// Objects.h - the engine's records behind the objects that the driver interface passes by pointer: each begins with the public
// record, so that a pointer to one is a pointer to the other. Only the engine looks behind the public part.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/Drawing.h"
#include "engine/Path.h"
#include "engine/Region.h"
#include "platform/platform.h"

namespace morvil::engine {

// Colours 0x00BBGGRR by index; a direct palette (PAL_BGR and the like) has no entries.
struct Palette {
    ULONG mode = PAL_INDEXED;
    std::vector<COLORREF> entries;
};

struct EngineSurface : SURFOBJ {
    std::vector<std::uint8_t> storage;         // empty when the bits belong to somebody else
    std::shared_ptr<const Palette> palette;    // null: black and white for 1 bit, direct colour for 24
    FLONG hooks = 0;
    bool banding = false;                      // marked by EngMarkBandingSurface
    int locks = 0;
};

struct EnginePath : PATHOBJ {
    Path path;
    // Enumeration: records as the driver sees them, made by PATHOBJ_vEnumStart.
    std::vector<PATHDATA> records;
    std::vector<std::vector<POINTFIX>> points;
    std::size_t next = 0;
};

// A brush made ready for one surface: a solid index, or a pattern in the surface's own pixel values.
struct EngineBrush : BRUSHOBJ {
    bool solid = true;
    COLORREF rgb = 0;                        // 0x00BBGGRR of a solid brush, also of one that is dithered
    LONG patternWidth = 0;
    LONG patternHeight = 0;
    std::vector<ULONG> pattern;              // surface pixel values, row by row
    std::vector<std::uint8_t> opaque;        // 0 where the pattern leaves the target as it is; empty: all opaque
    POINTL origin{};
};

struct EngineClip : CLIPOBJ {
    Region region;
};

struct EngineXlate : XLATEOBJ {
    std::vector<ULONG> table;                 // behind pulXlate
    std::vector<COLORREF> sourcePalette;      // what XLATEOBJ_cGetPalette gives for XO_SRCPALETTE
    std::shared_ptr<const Palette> target;    // for direct-colour sources: nearest entry of this palette
};

struct EngineText : STROBJ {
    std::vector<PositionedGlyph> glyphs;
};

}  // namespace morvil::engine
