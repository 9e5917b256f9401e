// Canvas.h - what a document draws on: the engine's side of a device context. Each call decides, by the surface's hooks and the
// driver's capability flags, whether the driver gets it (and in which form) or the engine draws it itself.
// Coordinates are those of the page in device pixels (28.4 for paths); the canvas moves them into the current band.
// Lives for one page of one document; printing thread only. A call that the driver fails with an error makes ok() false.
#pragma once

#include <algorithm>
#include <optional>

#include "engine/Drawing.h"
#include "engine/Path.h"
#include "engine/Region.h"

namespace morvil::engine {

enum class FillMode : std::uint8_t { Alternate, Winding };

class Canvas {
  public:
    virtual ~Canvas() = default;

    [[nodiscard]] virtual SIZEL pageSize() const = 0;   // whole page in pixels
    [[nodiscard]] virtual double dpi() const = 0;
    // The page and as much again on each side: where curves keep their shape exactly, and beyond which they become coarse.
    [[nodiscard]] RECTL sight() const {
        const SIZEL page = pageSize();
        const LONG around = std::max(page.cx, page.cy);
        return {-around, -around, page.cx + around, page.cy + around};
    }
    // Of the page, or of the band.
    [[nodiscard]] DashBudget& dashBudget() { return m_dashBudget; }
    [[nodiscard]] virtual bool ok() const = 0;          // false: the page was aborted or the driver failed

    // The clip of all following calls, in page pixels; none: the whole page.
    virtual void setClip(std::optional<Region> clip) = 0;

    // `rop2` is R2_BLACK (1) to R2_WHITE (16); R2_COPYPEN is 13. `worldToDevice` matters for geometric pens only.
    virtual void strokePath(const Path& path, const Pen& pen, const XFORM& worldToDevice, int rop2) = 0;
    virtual void fillPath(const Path& path, const Brush& brush, FillMode mode, int rop2) = 0;
    virtual void strokeAndFillPath(const Path& path, const Pen& pen, const XFORM& worldToDevice, const Brush& brush, FillMode mode, int rop2) = 0;

    // Pattern and destination only (PATCOPY, BLACKNESS, ...); `rop3` is the high word's byte of the ternary code.
    virtual void patBlt(const RECTL& target, const Brush& brush, std::uint8_t rop3) = 0;
    // `target` and `source` may be of different size and the target mirrored (edges unordered). `mask`, one bit, selects between
    // the foreground (1) and background code of `rop4`; without a mask both bytes of rop4 are equal.
    virtual void drawImage(const RECTL& target, const Image& source, const RECTL& sourceRect, int stretchMode, ROP4 rop4, const Brush& brush,
                           const Image* mask, POINTL maskOrigin) = 0;
    // Colours for 1-bit sources without palette, and the background colour for 1-bit targets.
    virtual void setTextColours(COLORREF foreground, COLORREF background) = 0;
    virtual void textOut(const GlyphRun& run, COLORREF colour, const RECTL* opaque, COLORREF background) = 0;

  private:
    DashBudget m_dashBudget;
};

// Something that can draw itself, a page at a time and any number of times (once per band).
class PageSource {
  public:
    virtual ~PageSource() = default;
    virtual void play(Canvas& canvas) = 0;
};

}  // namespace morvil::engine
