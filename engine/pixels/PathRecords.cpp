// PathRecords.cpp - path, clip and text objects, and a path's enumeration: each figure comes as records of one kind of segment,
// the first with the figure's start point before its segments.
#include <algorithm>
#include <utility>

#include "engine/Pixels.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/Services.h"

namespace morvil::engine {
namespace {

void addRecord(EnginePath& path, std::vector<POINTFIX> points, FLONG flags) {
    path.points.push_back(std::move(points));
    path.records.push_back({flags, static_cast<ULONG>(path.points.back().size()), path.points.back().data()});
}

void addFigure(EnginePath& path, const Subpath& figure) {
    FLONG begin = PD_BEGINSUBPATH;
    std::size_t nextPoint = 1;
    std::size_t first = 0;
    while (first < figure.segments.size()) {
        const SegmentKind kind = figure.segments[first];
        const auto sameKind = [kind](SegmentKind other) { return other == kind; };
        const auto run = figure.segments.begin() + static_cast<std::ptrdiff_t>(first);
        const auto length = static_cast<std::size_t>(std::find_if_not(run, figure.segments.end(), sameKind) - run);
        const std::size_t pointCount = length * (kind == SegmentKind::Bezier ? 3 : 1);
        std::vector<POINTFIX> points;
        if (begin != 0) points.push_back(figure.points.front());
        const auto from = figure.points.begin() + static_cast<std::ptrdiff_t>(nextPoint);
        points.insert(points.end(), from, from + static_cast<std::ptrdiff_t>(pointCount));
        nextPoint += pointCount;
        first += length;

        FLONG flags = begin;
        if (kind == SegmentKind::Bezier) flags |= PD_BEZIERS;
        if (first == figure.segments.size()) flags |= PD_ENDSUBPATH | (figure.closed ? PD_CLOSEFIGURE : 0U);
        addRecord(path, std::move(points), flags);
        begin = 0;
    }
}

}  // namespace

EnginePath makePath(const Path& path) {
    EnginePath result;
    result.path = path;
    // An ellipse's records hold curves, yet its flag takes the place of the one for curves.
    if (path.isEllipse()) {
        result.fl = PO_ELLIPSE;
    } else if (path.hasBeziers()) {
        result.fl = PO_BEZIERS;
    }
    result.cCurves = path.curveCount();
    return result;
}

EngineClip makeClip(const Region& region, const RECTL& surfaceBounds, const RECTL& target) {
    constexpr BYTE kOneRectangle = 1;
    constexpr BYTE kManyRectangles = 4;
    EngineClip clip{};
    clip.region = region;
    const RECTL drawn = intersection(target, surfaceBounds);
    Region outside = isEmpty(drawn) ? Region() : Region(drawn);
    outside.subtract(region);
    if (outside.empty()) {
        clip.iDComplexity = DC_TRIVIAL;
        clip.iFComplexity = kOneRectangle;
        clip.rclBounds = isEmpty(drawn) ? RECTL{} : drawn;
        return clip;
    }
    clip.region.intersect(Region(surfaceBounds));
    clip.rclBounds = clip.region.bounds();
    const bool single = clip.region.rectangles().size() <= 1;
    clip.iDComplexity = single ? DC_RECT : DC_COMPLEX;
    clip.iFComplexity = single ? kOneRectangle : kManyRectangles;
    return clip;
}

EngineText makeText(const GlyphRun& run) {
    EngineText text{};
    text.glyphs = run.glyphs;
    text.characters = run.characters;
    text.cGlyphs = static_cast<ULONG>(run.glyphs.size());
    text.rclBkGround = run.background;
    text.pwszOrg = text.characters.empty() ? nullptr : text.characters.data();
    return text;
}

}  // namespace morvil::engine

namespace morvil::engine::services {

VOID startPath(PATHOBJ* path) {
    if (path == nullptr) return;
    auto& full = *static_cast<EnginePath*>(path);
    full.records.clear();
    full.points.clear();
    full.next = 0;
    for (const Subpath& figure : full.path.subpaths()) addFigure(full, figure);
}

BOOL nextOfPath(PATHOBJ* path, PATHDATA* data) {
    if (data == nullptr) return FALSE;
    *data = {};
    if (path == nullptr) return FALSE;
    auto& full = *static_cast<EnginePath*>(path);
    if (full.next >= full.records.size()) return FALSE;
    *data = full.records[full.next++];
    return full.next < full.records.size() ? TRUE : FALSE;
}

}  // namespace morvil::engine::services
