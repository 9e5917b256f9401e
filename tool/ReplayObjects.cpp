#include "tool/ReplayObjects.h"

#include "engine/EngineState.h"
#include "engine/Pixels.h"
#include "engine/pixels/MakeSurface.h"
#include "trace/Objects.h"

namespace morvil::tool {

namespace {

// The figures behind recorded pieces. A piece that begins no figure goes on from the last point.
engine::Path pathOf(const trace::PathArgument& recorded) {
    engine::Path path;
    for (const trace::PathPart& part : recorded.parts) {
        std::size_t next = 0;
        if ((part.flags & PD_BEGINSUBPATH) != 0 && !part.points.empty()) path.moveTo(part.points[next++]);
        if ((part.flags & PD_BEZIERS) != 0) {
            for (; next + 2 < part.points.size(); next += 3) path.bezierTo(part.points[next], part.points[next + 1], part.points[next + 2]);
        } else {
            for (; next < part.points.size(); ++next) path.lineTo(part.points[next]);
        }
        if ((part.flags & PD_CLOSEFIGURE) != 0) path.close();
    }
    if ((recorded.flags & PO_ELLIPSE) != 0) path.markEllipse();
    return path;
}

}  // namespace

HDEV ReplayObjects::openDevice() { return engine::registerDevice({}); }

void ReplayObjects::deviceReady(HDEV device, const GDIINFO& caps, const DEVINFO& info) {
    *engine::deviceOf(device) = {.palette = engine::paletteOf(info.hpalDefault), .xStyleStep = caps.xStyleStep, .yStyleStep = caps.yStyleStep, .denStyleStep = caps.denStyleStep};
}

void ReplayObjects::closeDevice(HDEV device) { engine::unregisterDevice(device); }

SURFOBJ* ReplayObjects::pageSurface(HSURF surface, DHPDEV instance) {
    engine::EngineSurface* const page = engine::surfaceOf(surface);
    if (page != nullptr) page->dhpdev = instance;
    return page;
}

SURFOBJ* ReplayObjects::otherSurface(const std::optional<trace::SurfaceArgument>& surface, std::size_t place) {
    if (!surface) return nullptr;
    m_surfaces.at(place) = engine::makeSurface({.width = surface->size.cx, .height = surface->size.cy, .rowBytes = 0, .format = surface->format, .flags = surface->rowStep > 0 ? BMF_TOPDOWN : 0U});
    return m_surfaces.at(place).get();
}

PATHOBJ* ReplayObjects::path(const std::optional<trace::PathArgument>& path) {
    if (!path) return nullptr;
    m_path = engine::makePath(pathOf(*path));
    m_path.fl = path->flags;
    m_path.cCurves = path->curves;
    return &m_path;
}

BRUSHOBJ* ReplayObjects::brush(const std::optional<trace::BrushArgument>& brush, std::size_t place) {
    if (!brush) return nullptr;
    engine::EngineBrush& made = m_brushes.at(place);
    made = {};
    trace::restore(made, *brush);
    made.solid = brush->rgb != 0xFFFFFFFF;
    made.rgb = brush->rgb;
    if (brush->solidColour == 0xFFFFFFFF) {  // a pattern; what it looks like does not matter here
        made.patternWidth = 1;
        made.patternHeight = 1;
        made.pattern = {0};
    }
    return &made;
}

CLIPOBJ* ReplayObjects::clip(const std::optional<trace::ClipArgument>& clip) {
    if (!clip) return nullptr;
    m_clip = {};
    trace::restore(m_clip, *clip);
    m_clip.region = engine::Region(clip->bounds);
    return &m_clip;
}

XLATEOBJ* ReplayObjects::translation(const std::optional<trace::TranslationArgument>& translation) {
    if (!translation) return nullptr;
    m_translation = engine::EngineXlate();
    trace::restore(m_translation, *translation, m_translation.table);
    m_translation.sourcePalette = translation->sourcePalette;
    return &m_translation;
}

STROBJ* ReplayObjects::text() { return &m_text; }

}  // namespace morvil::tool
