// Flattening.cpp - curves of a path replaced by lines. A curve is cut at equal steps of its parameter, which the tolerance
// counts; where it runs beside all that can be seen, only the last of these points is kept. Both the lines of a curve and their
// sum over a path have a bound, so that no file decides how much memory its curves take.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "engine/Path.h"

namespace morvil::engine {
namespace {

struct RealPoint {
    double x;
    double y;
};

// A cubic, or a part of one, by its control points.
using Cubic = std::array<RealPoint, 4>;

RealPoint real(POINTFIX point) { return {static_cast<double>(point.x), static_cast<double>(point.y)}; }

RealPoint between(RealPoint a, RealPoint b, double t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}; }

FIX roundToFix(double value) {
    constexpr double kLimit = 2147483647.0;
    return static_cast<FIX>(std::lround(std::clamp(value, -kLimit, kLimit)));
}

POINTFIX pointAt(const Cubic& p, int i, int steps) {
    const double t = static_cast<double>(i) / steps;
    const double s = 1.0 - t;
    const double b0 = s * s * s;
    const double b1 = 3.0 * s * s * t;
    const double b2 = 3.0 * s * t * t;
    const double b3 = t * t * t;
    return {roundToFix(b0 * p[0].x + b1 * p[1].x + b2 * p[2].x + b3 * p[3].x),
            roundToFix(b0 * p[0].y + b1 * p[1].y + b2 * p[2].y + b3 * p[3].y)};
}

// How many equal parameter steps keep the chords of a cubic within the tolerance: the second derivative of the curve is at
// most 6 * d with d the larger second difference of the control points, and a chord of step h strays by at most 6 * d * h^2 / 8.
int stepsFor(const Cubic& p, double tolerance) {
    const auto difference = [](RealPoint a, RealPoint b, RealPoint c) { return std::hypot(a.x - 2.0 * b.x + c.x, a.y - 2.0 * b.y + c.y); };
    const double d = std::max(difference(p[0], p[1], p[2]), difference(p[1], p[2], p[3]));
    constexpr double kMostSteps = 4096.0;  // a curve across the largest page needs some hundreds
    const double steps = std::ceil(std::sqrt(0.75 * d / std::max(tolerance, 1.0)));
    return static_cast<int>(std::clamp(steps, 1.0, kMostSteps));
}

// The two parts of a curve before and behind parameter t.
std::pair<Cubic, Cubic> cut(const Cubic& p, double t) {
    const RealPoint a = between(p[0], p[1], t);
    const RealPoint b = between(p[1], p[2], t);
    const RealPoint c = between(p[2], p[3], t);
    const RealPoint ab = between(a, b, t);
    const RealPoint bc = between(b, c, t);
    const RealPoint middle = between(ab, bc, t);
    return {Cubic{p[0], a, ab, middle}, Cubic{middle, bc, c, p[3]}};
}

// The box that is seen, in sixteenths, with room for what rounding moves.
class Sight {
  public:
    explicit Sight(const RECTL& pixels)
        : m_left(edge(pixels.left, -1)), m_top(edge(pixels.top, -1)), m_right(edge(pixels.right, 1)), m_bottom(edge(pixels.bottom, 1)) {}

    // A curve lies within the hull of its control points.
    [[nodiscard]] bool holds(const Cubic& curve) const {
        return std::ranges::all_of(curve,
                                   [this](RealPoint p) { return p.x >= m_left && p.x <= m_right && p.y >= m_top && p.y <= m_bottom; });
    }
    [[nodiscard]] bool liesBeside(const Cubic& curve) const {
        return std::ranges::all_of(curve, [this](RealPoint p) { return p.x < m_left; }) ||
               std::ranges::all_of(curve, [this](RealPoint p) { return p.x > m_right; }) ||
               std::ranges::all_of(curve, [this](RealPoint p) { return p.y < m_top; }) ||
               std::ranges::all_of(curve, [this](RealPoint p) { return p.y > m_bottom; });
    }

  private:
    static double edge(LONG pixel, int room) { return (static_cast<double>(pixel) + room) * kFixOne; }

    double m_left;
    double m_top;
    double m_right;
    double m_bottom;
};

// One run over all figures of a path, which may take a number of lines for its curves.
class Flattener {
  public:
    Flattener(const std::optional<RECTL>& seen, double tolerance, bool keepsNear, std::size_t lines)
        : m_tolerance(tolerance), m_keepsNear(keepsNear), m_linesLeft(lines) {
        if (seen) m_sight.emplace(*seen);
    }

    // Nothing when the lines are too few.
    std::optional<Subpath> run(const Subpath& figure) {
        m_flat = {.points = {figure.points.front()}, .segments = {}, .closed = figure.closed};
        std::size_t next = 1;
        for (const SegmentKind kind : figure.segments) {
            if (kind == SegmentKind::Line) {
                addLine(figure.points[next++]);
                continue;
            }
            addCurve(&figure.points[next - 1]);
            if (m_isShort) return std::nullopt;
            next += 3;
        }
        return std::move(m_flat);
    }

  private:
    // Four control points, the first of which the figure has already.
    void addCurve(const POINTFIX* points) {
        m_curve = {real(points[0]), real(points[1]), real(points[2]), real(points[3])};
        m_steps = stepsFor(m_curve, m_tolerance);
        m_end = points[3];
        if (!m_keepsNear || (m_sight && !m_sight->holds(m_curve))) return addSteps(m_curve, 0, m_steps);
        if (!take(static_cast<std::size_t>(m_steps))) return;
        m_flat.points.insert(m_flat.points.end(), points + 1, points + 4);
        m_flat.segments.push_back(SegmentKind::Bezier);
    }

    // The part of the curve from one step to another: whole, as one line, or cut in two.
    void addSteps(const Cubic& part, int from, int to) {
        if (m_isShort) return;
        if (to - from == 1 || (m_sight && m_sight->liesBeside(part))) return addStep(to);
        if (!m_sight || m_sight->holds(part)) {
            for (int i = from + 1; i <= to && !m_isShort; ++i) addStep(i);
            return;
        }
        const int middle = from + (to - from) / 2;
        const auto [before, behind] = cut(part, static_cast<double>(middle - from) / (to - from));
        addSteps(before, from, middle);
        addSteps(behind, middle, to);
    }

    void addStep(int step) {
        if (!take(1)) return;
        if (step == m_steps) return addLine(m_end);  // also where it adds no length: a curve leaves at least one line
        const POINTFIX point = pointAt(m_curve, step, m_steps);
        if (point.x != m_flat.points.back().x || point.y != m_flat.points.back().y) addLine(point);
    }

    void addLine(POINTFIX end) {
        m_flat.points.push_back(end);
        m_flat.segments.push_back(SegmentKind::Line);
    }

    bool take(std::size_t lines) {
        m_isShort = lines > m_linesLeft;
        if (!m_isShort) m_linesLeft -= lines;
        return !m_isShort;
    }

    std::optional<Sight> m_sight;
    double m_tolerance;
    bool m_keepsNear;
    std::size_t m_linesLeft;
    bool m_isShort = false;
    Subpath m_flat;
    Cubic m_curve{};  // the one that is being cut
    int m_steps = 0;
    POINTFIX m_end{};
};

}  // namespace

Path Path::flattened(const Flattening& how) const {
    if (!hasBeziers()) return *this;
    std::size_t curves = 0;
    for (const Subpath& figure : m_subpaths) curves += static_cast<std::size_t>(std::ranges::count(figure.segments, SegmentKind::Bezier));
    const std::size_t most = std::max(how.mostLines, curves);
    const auto attempt = [&](double tolerance, bool keepsNear) {
        std::optional<Path> result(std::in_place);
        result->m_start = m_start;
        Flattener flattener(how.seen, tolerance, keepsNear, most);
        for (const Subpath& figure : m_subpaths) {
            std::optional<Subpath> flat = flattener.run(figure);
            if (!flat) return std::optional<Path>();
            result->m_subpaths.push_back(*std::move(flat));
        }
        return result;
    };
    // Four times the tolerance takes half the lines, in the end one for each curve.
    double tolerance = how.tolerance;
    std::optional<Path> result = attempt(tolerance, how.keepsNear);
    for (; !result; result = attempt(tolerance, false)) tolerance *= 4.0;
    return *std::move(result);
}

}  // namespace morvil::engine
