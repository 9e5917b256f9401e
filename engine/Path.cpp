// Path.cpp - building, measuring and flattening paths.
#include "engine/Path.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace morvil::engine {
namespace {

bool same(POINTFIX a, POINTFIX b) { return a.x == b.x && a.y == b.y; }

FIX addSaturated(FIX value, FIX delta) {
    const std::int64_t sum = static_cast<std::int64_t>(value) + delta;
    return static_cast<FIX>(std::clamp<std::int64_t>(sum, std::numeric_limits<FIX>::min(), std::numeric_limits<FIX>::max()));
}

FIX roundToFix(double value) {
    constexpr double kLimit = 2147483647.0;
    return static_cast<FIX>(std::lround(std::clamp(value, -kLimit, kLimit)));
}

// How many equal parameter steps keep the chords of a cubic within the tolerance: the second derivative of the curve is at
// most 6 * d with d the larger second difference of the control points, and a chord of step h strays by at most 6 * d * h^2 / 8.
int stepsFor(const POINTFIX& p0, const POINTFIX& p1, const POINTFIX& p2, const POINTFIX& p3, FIX tolerance) {
    const auto difference = [](const POINTFIX& a, const POINTFIX& b, const POINTFIX& c) {
        return std::hypot(static_cast<double>(a.x) - 2.0 * b.x + c.x, static_cast<double>(a.y) - 2.0 * b.y + c.y);
    };
    const double d = std::max(difference(p0, p1, p2), difference(p1, p2, p3));
    constexpr double kMostSteps = 4096.0;  // a curve across the largest page needs some hundreds
    const double steps = std::ceil(std::sqrt(0.75 * d / std::max<FIX>(tolerance, 1)));
    return static_cast<int>(std::clamp(steps, 1.0, kMostSteps));
}

void appendChords(Subpath& figure, POINTFIX p0, POINTFIX p1, POINTFIX p2, POINTFIX p3, FIX tolerance) {
    const int steps = stepsFor(p0, p1, p2, p3, tolerance);
    for (int i = 1; i < steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        const double s = 1.0 - t;
        const double b0 = s * s * s;
        const double b1 = 3.0 * s * s * t;
        const double b2 = 3.0 * s * t * t;
        const double b3 = t * t * t;
        const POINTFIX point{roundToFix(b0 * p0.x + b1 * p1.x + b2 * p2.x + b3 * p3.x),
                             roundToFix(b0 * p0.y + b1 * p1.y + b2 * p2.y + b3 * p3.y)};
        if (same(point, figure.points.back())) continue;
        figure.points.push_back(point);
        figure.segments.push_back(SegmentKind::Line);
    }
    figure.points.push_back(p3);
    figure.segments.push_back(SegmentKind::Line);
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

Path Path::flattened(FIX tolerance) const {
    if (!hasBeziers()) return *this;
    Path result;
    result.m_start = m_start;
    for (const Subpath& figure : m_subpaths) {
        Subpath& flat = result.m_subpaths.emplace_back(Subpath{.points = {figure.points.front()}, .segments = {}, .closed = figure.closed});
        std::size_t next = 1;
        for (const SegmentKind kind : figure.segments) {
            if (kind == SegmentKind::Line) {
                flat.points.push_back(figure.points[next++]);
                flat.segments.push_back(SegmentKind::Line);
                continue;
            }
            appendChords(flat, figure.points[next - 1], figure.points[next], figure.points[next + 1], figure.points[next + 2], tolerance);
            next += 3;
        }
    }
    return result;
}

}  // namespace morvil::engine
