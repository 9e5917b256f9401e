// Objects.h - the engine's records behind the objects that the driver interface passes by pointer: each begins with the public
// record, so that a pointer to one is a pointer to the other. Only the engine looks behind the public part.
#pragma once

#include <array>
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
    std::array<ULONG, 3> masks{};  // red, green, blue; for PAL_BITFIELDS
};

// Pixel memory as the system hands it out: zero-filled pages that cost nothing before they are touched.
struct FreePixels {
    void operator()(std::uint8_t* bits) const;
};
using PixelMemory = std::unique_ptr<std::uint8_t[], FreePixels>;

// Known to the engine by handle and by pointer from construction to destruction, whoever owns it.
struct EngineSurface : SURFOBJ {
    EngineSurface();
    ~EngineSurface();
    EngineSurface(const EngineSurface&) = delete;
    EngineSurface& operator=(const EngineSurface&) = delete;

    PixelMemory storage;                     // empty when the bits belong to somebody else
    std::shared_ptr<const Palette> palette;  // null: black and white for 1 bit, a grey ramp for 4 and 8, direct colour else
    std::array<ULONG, 3> masks{};            // red, green, blue of a direct-colour surface; all 0: the format's usual ones
    FLONG hooks = 0;
    bool banding = false;     // marked by EngMarkBandingSurface
    bool dibSection = false;  // made by CreateDIBSection
    int locks = 0;
};

// Holds pointers into itself, so it moves but does not copy; so do the other records with tables behind them.
struct EnginePath : PATHOBJ {
    EnginePath() : PATHOBJ{} {}
    EnginePath(EnginePath&&) = default;
    EnginePath& operator=(EnginePath&&) = default;
    EnginePath(const EnginePath&) = delete;
    EnginePath& operator=(const EnginePath&) = delete;
    ~EnginePath() = default;

    Path path;
    // Enumeration: records as the driver sees them, made by PATHOBJ_vEnumStart.
    std::vector<PATHDATA> records;
    std::vector<std::vector<POINTFIX>> points;
    std::size_t next = 0;
};

// A brush made ready for one surface: a solid index, or a pattern in the surface's own pixel values.
struct EngineBrush : BRUSHOBJ {
    bool solid = true;  // the document's brush is of one colour, though it may be dithered here
    COLORREF rgb = 0;   // 0x00BBGGRR of a solid brush, also of one that is dithered
    LONG patternWidth = 0;
    LONG patternHeight = 0;
    std::vector<ULONG> pattern;        // surface pixel values, row by row
    std::vector<std::uint8_t> opaque;  // 0 where the pattern leaves the target as it is; empty: all opaque
    POINTL origin{};
};

struct EngineClip : CLIPOBJ {
    Region region;
};

struct EngineXlate : XLATEOBJ {
    EngineXlate() : XLATEOBJ{} {}
    EngineXlate(EngineXlate&&) = default;
    EngineXlate& operator=(EngineXlate&&) = default;
    EngineXlate(const EngineXlate&) = delete;
    EngineXlate& operator=(const EngineXlate&) = delete;
    ~EngineXlate() = default;

    std::vector<ULONG> table;               // behind pulXlate
    std::vector<COLORREF> sourcePalette;    // what XLATEOBJ_cGetPalette gives for XO_SRCPALETTE
    std::shared_ptr<const Palette> target;  // for direct-colour sources: nearest entry of this palette
    COLORREF monoBackground = 0xFFFFFF;     // with XO_TO_MONO: this colour becomes 1, every other 0
};

struct EngineText : STROBJ {
    std::vector<PositionedGlyph> glyphs;
    std::vector<WCHAR> characters;  // behind pwszOrg
};

}  // namespace morvil::engine
