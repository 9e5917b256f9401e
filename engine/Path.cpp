// Path.cpp - building and measuring paths.
#include "engine/Path.h"

#include <algorithm>
#include <limits>

namespace morvil::engine {
namespace {

bool same(POINTFIX a, POINTFIX b) { return a.x == b.x && a.y == b.y; }

FIX addSaturated(FIX value, FIX delta) {
    const std::int64_t sum = static_cast<std::int64_t>(value) + delta;
    return static_cast<FIX>(std::clamp<std::int64_t>(sum, std::numeric_limits<FIX>::min(), std::numeric_limits<FIX>::max()));
}

}  // namespace

void Path::moveTo(POINTFIX point) {
    m_start = point;
    m_ellipse = false;
}

Subpath& Path::openFigure(POINTFIX fallback) {
    m_ellipse = false;
    const bool continues = !m_start && !m_subpaths.empty() && !m_subpaths.back().closed;
    if (continues) return m_subpaths.back();
    POINTFIX start = fallback;
    if (m_start) {
        start = *m_start;
    } else if (!m_subpaths.empty()) {
        start = m_subpaths.back().points.front();
    }
    m_start.reset();
    return m_subpaths.emplace_back(Subpath{.points = {start}, .segments = {}, .closed = false});
}

void Path::lineTo(POINTFIX point) {
    Subpath& figure = openFigure(point);
    figure.points.push_back(point);
    figure.segments.push_back(SegmentKind::Line);
}

void Path::bezierTo(POINTFIX control1, POINTFIX control2, POINTFIX end) {
    Subpath& figure = openFigure(control1);
    figure.points.insert(figure.points.end(), {control1, control2, end});
    figure.segments.push_back(SegmentKind::Bezier);
}

void Path::close() {
    if (m_start || m_subpaths.empty()) return;
    m_subpaths.back().closed = true;
}

void Path::append(const Path& other) {
    const bool onlyOther = m_subpaths.empty();
    m_subpaths.insert(m_subpaths.end(), other.m_subpaths.begin(), other.m_subpaths.end());
    m_start = other.m_start;
    m_ellipse = onlyOther && other.m_ellipse;
}

bool Path::hasBeziers() const {
    return std::any_of(m_subpaths.begin(), m_subpaths.end(), [](const Subpath& figure) {
        return std::find(figure.segments.begin(), figure.segments.end(), SegmentKind::Bezier) != figure.segments.end();
    });
}

ULONG Path::curveCount() const {
    std::size_t count = 0;
    for (const Subpath& figure : m_subpaths) {
        count += figure.segments.size();
        if (figure.closed && !same(figure.points.front(), figure.points.back())) ++count;
    }
    return static_cast<ULONG>(count);
}

RECTL Path::bounds() const {
    if (m_subpaths.empty()) return {};
    const POINTFIX first = m_subpaths.front().points.front();
    RECTL box{first.x, first.y, first.x, first.y};
    for (const Subpath& figure : m_subpaths) {
        for (const POINTFIX& point : figure.points) {
            box.left = std::min(box.left, point.x);
            box.top = std::min(box.top, point.y);
            box.right = std::max(box.right, point.x);
            box.bottom = std::max(box.bottom, point.y);
        }
    }
    box.right = addSaturated(box.right, 1);
    box.bottom = addSaturated(box.bottom, 1);
    return box;
}

void Path::translate(FIX dx, FIX dy) {
    const auto move = [dx, dy](POINTFIX& point) { point = {addSaturated(point.x, dx), addSaturated(point.y, dy)}; };
    for (Subpath& figure : m_subpaths) std::for_each(figure.points.begin(), figure.points.end(), move);
    if (m_start) move(*m_start);
}

}  // namespace morvil::engine
