// DriverCanvas.h - the canvas on a driver's surface: sends each drawing call to the driver's hook in the form that its
// capability flags allow, and draws itself whatever the driver does not hook or hands back.
// Refers to the surface and the table of a living instance; one canvas per band. Printing thread only.
#pragma once

#include <set>

#include "engine/Canvas.h"
#include "engine/Document.h"
#include "engine/Objects.h"
#include "engine/canvas/DriverTable.h"

namespace morvil::engine {

// What a canvas draws on. `bandTop` is the page row of the surface's first row.
struct CanvasTarget {
    const DriverTable* driver = nullptr;
    EngineSurface* surface = nullptr;
    FLONG graphicsCaps = 0;
    ULONG ditherWidth = 0;
    ULONG ditherHeight = 0;
    SIZEL page{};
    double dpi = 0.0;
    LONG bandTop = 0;
    // Fonts whose glyph mode the driver was already asked for; lives as long as the instance.
    std::set<ULONG>* fontsAsked = nullptr;
};

class DriverCanvas : public Canvas {
  public:
    // Counts into `report`, unless it is null (every band but the first plays the same calls again).
    DriverCanvas(const CanvasTarget& target, PageReport* report);

    [[nodiscard]] SIZEL pageSize() const override { return m_target.page; }
    [[nodiscard]] double dpi() const override { return m_target.dpi; }
    [[nodiscard]] bool ok() const override { return m_failedCall == nullptr; }
    // The driver call that failed, null while all is well.
    [[nodiscard]] const char* failedCall() const { return m_failedCall; }

    void setClip(std::optional<Region> clip) override;
    void strokePath(const Path& path, const Pen& pen, const XFORM& worldToDevice, int rop2) override;
    void fillPath(const Path& path, const Brush& brush, FillMode mode, int rop2) override;
    void strokeAndFillPath(const Path& path, const Pen& pen, const XFORM& worldToDevice, const Brush& brush, FillMode mode, int rop2) override;
    void patBlt(const RECTL& target, const Brush& brush, std::uint8_t rop3) override;
    void drawImage(const RECTL& target, const Image& source, const RECTL& sourceRect, int stretchMode, ROP4 rop4, const Brush& brush,
                   const Image* mask, POINTL maskOrigin) override;
    void setTextColours(COLORREF foreground, COLORREF background) override;
    void textOut(const GlyphRun& run, COLORREF colour, const RECTL* opaque, COLORREF background) override;

  private:
    enum class Outcome : std::uint8_t { Done, HandedBack, Failed };

    [[nodiscard]] bool caps(FLONG flag) const { return (m_target.graphicsCaps & flag) != 0; }
    [[nodiscard]] bool hooked(FLONG hook) const { return (m_target.surface->hooks & hook) != 0; }
    [[nodiscard]] RECTL surfaceBounds() const;
    [[nodiscard]] RECTL inBand(const RECTL& rectangle) const;
    [[nodiscard]] Path inBand(const Path& path) const;
    [[nodiscard]] Brush inBand(const Brush& brush) const;
    // A path that has been brought into the band, without curves.
    [[nodiscard]] Path flat(const Path& path) const;
    // The clip in surface pixels.
    [[nodiscard]] const Region& clip() const { return m_clip; }
    [[nodiscard]] EngineBrush realizeFill(const Brush& brush);
    Outcome outcomeOf(BOOL result, const char* call);
    void count(std::uint64_t PageReport::* counter);

    void strokeGeometric(const Path& path, const Pen& pen, const XFORM& worldToDevice, int rop2);
    void strokeThin(const Path& path, const Pen& pen, int rop2);
    Outcome offerStroke(const Path& path, const Pen& pen, const XFORM* worldToDevice, EngineBrush& brush, int rop2);
    Outcome offerFill(const Path& path, EngineBrush& brush, FillMode mode, int rop2);
    void fillRealized(const Path& path, EngineBrush& brush, FillMode mode, int rop2, bool alwaysOffer);
    bool offerStrokeAndFill(const Path& path, const Pen& pen, const XFORM& worldToDevice, const Brush& brush, FillMode mode, int rop2);

    void blit(const RECTL& target, EngineSurface* source, EngineXlate* translation, POINTL sourceOrigin, EngineSurface* mask,
              POINTL maskOrigin, EngineBrush& brush, ROP4 rop4);
    void copy(const RECTL& target, EngineSurface& source, EngineXlate& translation, POINTL sourceOrigin);
    void stretch(const RECTL& target, EngineSurface& source, EngineXlate& translation, const RECTL& sourceRect, EngineSurface* mask,
                 POINTL maskOrigin, int mode, const Brush& brush);
    void stretchWithRop(const RECTL& target, EngineSurface& source, EngineXlate& translation, const RECTL& sourceRect,
                        EngineSurface* mask, POINTL maskOrigin, int mode, EngineBrush& brush, ROP4 rop4);
    void askGlyphMode(ULONG font);

    CanvasTarget m_target;
    PageReport* m_report;
    Region m_clip;
    COLORREF m_foreground = 0;
    COLORREF m_background = 0xFFFFFF;
    const char* m_failedCall = nullptr;
};

}  // namespace morvil::engine
