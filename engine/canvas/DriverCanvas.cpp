#include "engine/canvas/DriverCanvas.h"

#include <array>

#include "engine/Pixels.h"

namespace morvil::engine {

DriverCanvas::DriverCanvas(const CanvasTarget& target, PageReport* report) : m_target(target), m_report(report) { setClip(std::nullopt); }

RECTL DriverCanvas::surfaceBounds() const { return {0, 0, m_target.surface->sizlBitmap.cx, m_target.surface->sizlBitmap.cy}; }

RECTL DriverCanvas::inBand(const RECTL& rectangle) const {
    return {rectangle.left, rectangle.top - m_target.bandTop, rectangle.right, rectangle.bottom - m_target.bandTop};
}

Path DriverCanvas::inBand(const Path& path) const {
    Path moved = path;
    if (m_target.bandTop != 0) moved.translate(0, -m_target.bandTop * kFixOne);
    return moved;
}

// Patterns stay where they are on the page, whatever band shows them.
Brush DriverCanvas::inBand(const Brush& brush) const {
    Brush moved = brush;
    moved.origin.y -= m_target.bandTop;
    return moved;
}

Path DriverCanvas::flat(const Path& path) const { return path.flattened({.seen = inBand(sight())}); }

void DriverCanvas::setClip(std::optional<Region> clip) {
    m_clip = Region(surfaceBounds());
    if (!clip) return;
    clip->translate(0, -m_target.bandTop);
    m_clip.intersect(*clip);
}

void DriverCanvas::setTextColours(COLORREF foreground, COLORREF background) {
    m_foreground = foreground;
    m_background = background;
}

DriverCanvas::Outcome DriverCanvas::outcomeOf(BOOL result, const char* call) {
    if (static_cast<ULONG>(result) == DDI_ERROR) {
        m_failedCall = call;
        return Outcome::Failed;
    }
    return result != FALSE ? Outcome::Done : Outcome::HandedBack;
}

void DriverCanvas::count(std::uint64_t PageReport::* counter) {
    if (m_report != nullptr) ++(m_report->*counter);
}

// A solid colour that the palette lacks is dithered where the driver asked for that, by its own hook or by the engine.
EngineBrush DriverCanvas::realizeFill(const Brush& brush) {
    EngineSurface& surface = *m_target.surface;
    const bool dithers = caps(GCAPS_COLOR_DITHER | GCAPS_MONO_DITHER) && m_target.ditherWidth != 0 && m_target.ditherHeight != 0;
    if (!dithers || brush.kind != BrushKind::Solid || hasExactColour(surface, brush.colour)) return realizeBrush(surface, inBand(brush), false);
    if (m_target.driver->ditherColor == nullptr) return realizeBrush(surface, inBand(brush), true);

    constexpr ULONG kColourDither = 1;
    constexpr ULONG kMaxCell = 64;
    std::array<ULONG, kMaxCell * kMaxCell> cell{};
    const bool fits = m_target.ditherWidth <= kMaxCell && m_target.ditherHeight <= kMaxCell;
    const ULONG answer = fits ? m_target.driver->ditherColor(surface.dhpdev, kColourDither, brush.colour, cell.data()) : DCR_HALFTONE;
    if (answer == DCR_SOLID) return realizeBrush(surface, inBand(brush), false);
    EngineBrush realized = realizeBrush(surface, inBand(brush), true);
    if (answer != DCR_DRIVER) return realized;
    realized.patternWidth = static_cast<LONG>(m_target.ditherWidth);
    realized.patternHeight = static_cast<LONG>(m_target.ditherHeight);
    realized.pattern.assign(cell.begin(), cell.begin() + static_cast<std::ptrdiff_t>(m_target.ditherWidth * m_target.ditherHeight));
    return realized;
}

}  // namespace morvil::engine
