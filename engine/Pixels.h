// Pixels.h - the engine's own drawing on its bitmaps, behind the Eng services: surfaces, palettes, colour translation, brushes,
// raster operations, stretching, coverage. No decisions about hooks are made here (see Canvas).
#pragma once

#include <memory>

#include "engine/Objects.h"

namespace morvil::engine {

// The surface behind a handle or SURFOBJ; null for anything that is not ours.
EngineSurface* surfaceOf(HSURF handle);
EngineSurface* surfaceOf(SURFOBJ* object);
std::shared_ptr<const Palette> paletteOf(HPALETTE handle);
// Handles that are still alive, for leak tests.
std::size_t liveSurfaces();
std::size_t livePalettes();

// A bitmap of the image's format with its bits copied, for use as a blit's source. Owned by the caller.
std::unique_ptr<EngineSurface> makeSource(const Image& image);

// The surface pixel value nearest to a colour.
ULONG nearestPixel(const EngineSurface& surface, COLORREF colour);
// Whether the surface's palette holds the colour exactly (always for direct colour).
bool hasExactColour(const EngineSurface& surface, COLORREF colour);

// `dither`: solid colours that the palette lacks become a pattern; otherwise the nearest entry.
EngineBrush realizeBrush(const EngineSurface& surface, const Brush& brush, bool dither);
// From the source image's colours to the surface's pixel values. `foreground` and `background` serve 1-bit sources without
// palette and colour sources on 1-bit targets.
EngineXlate makeTranslation(const EngineSurface& target, const EngineSurface& source, COLORREF foreground, COLORREF background);
EngineClip makeClip(const Region& region, const RECTL& surfaceBounds, const RECTL& target);
EnginePath makePath(const Path& path);
EngineText makeText(const GlyphRun& run);

// Stretching with a raster operation, which drivers are never asked for. The target's edges may be reversed.
struct StretchRequest {
    SURFOBJ* target = nullptr;
    SURFOBJ* source = nullptr;
    SURFOBJ* mask = nullptr;  // one bit: chooses between the codes of `rop4`
    const CLIPOBJ* clip = nullptr;
    const XLATEOBJ* translation = nullptr;
    const COLORADJUSTMENT* adjustment = nullptr;  // for HALFTONE; null: none
    RECTL targetRectangle{};
    RECTL sourceRectangle{};
    POINTL maskOrigin{};  // the mask's pixel that belongs to the upper left of the source rectangle
    ULONG mode = COLORONCOLOR;
    ROP4 rop4 = 0xCCCC;
    const EngineBrush* brush = nullptr;   // needed by codes with a pattern
    const POINTL* brushOrigin = nullptr;  // also the place of the dither cell
};
bool stretchRop(const StretchRequest& request);

// A one-pixel line as the engine draws it itself (diamond rule, styles), for strokes that the driver answers FALSE. The length
// of a style unit comes from the surface's device.
void strokeCosmetic(EngineSurface& surface, const Path& path, const EngineClip& clip, const EngineBrush& brush, const Pen& pen, int rop2);
// The outline of a stroked path: joins, caps and dashes in world units, result in device coordinates, to be filled winding.
// Beyond `seen` curves are coarser and there are no dashes, as far as the width of the pen lets nothing of that show. Dashes are
// taken from the budget (null: one for this path alone); a figure for which it lacks them becomes solid.
Path widenPath(const Path& path, const Pen& pen, const XFORM& worldToDevice, const std::optional<RECTL>& seen = std::nullopt,
               DashBudget* budget = nullptr);

}  // namespace morvil::engine
