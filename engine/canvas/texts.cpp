// texts.cpp - text on the driver's surface, as positioned one-bit glyphs.
#include "engine/Pixels.h"
#include "engine/canvas/DriverCanvas.h"
#include "engine/canvas/Mix.h"

namespace morvil::engine {

// Asked once for each realised font. Only bitmaps are offered: a driver that wants outlines or handles gets bitmaps as well,
// which the interface allows the engine.
void DriverCanvas::askGlyphMode(ULONG font) {
    if (m_target.driver->getGlyphMode == nullptr || m_target.fontsAsked == nullptr || !m_target.fontsAsked->insert(font).second) return;
    FONTOBJ object{};
    object.iUniq = font;
    m_target.driver->getGlyphMode(m_target.surface->dhpdev, &object);
}

void DriverCanvas::textOut(const GlyphRun& run, COLORREF colour, const RECTL* opaque, COLORREF background) {
    if (!ok() || (run.glyphs.empty() && opaque == nullptr)) return;
    askGlyphMode(run.font);
    GlyphRun moved = run;
    for (PositionedGlyph& glyph : moved.glyphs) glyph.position.y -= m_target.bandTop;
    moved.background = inBand(run.background);
    EngineText text = makeText(moved);
    EngineBrush fore = realizeBrush(*m_target.surface, Brush{.kind = BrushKind::Solid, .colour = colour}, false);
    EngineBrush back = realizeBrush(*m_target.surface, Brush{.kind = BrushKind::Solid, .colour = background}, false);
    RECTL opaqueInBand = opaque != nullptr ? inBand(*opaque) : RECTL{};
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), surfaceBounds());
    FONTOBJ font{};
    font.iUniq = run.font;
    constexpr MIX kCopyMix = mixOf(13);
    const bool offered = hooked(HOOK_TEXTOUT) && m_target.driver->textOut != nullptr;
    const auto call = offered ? m_target.driver->textOut : &EngTextOut;
    outcomeOf(call(m_target.surface, &text, &font, &clipObject, nullptr, opaque != nullptr ? &opaqueInBand : nullptr, &fore, &back, &fore.origin, kCopyMix),
              "DrvTextOut");
    if (ok()) count(&PageReport::texts);
}

}  // namespace morvil::engine
