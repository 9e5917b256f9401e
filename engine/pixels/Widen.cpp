// Widen.cpp - outlines of wide lines, by AGG. Dashes, joins and caps are made in world space, where the pen is round, and only
// the outline is brought into device space, so that a sheared transform shears the pen too.
#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <limits>
#include <optional>

#include "engine/Pixels.h"
#include "engine/pixels/SeenRuns.h"

namespace morvil::engine {
namespace {

// AGG keeps chords within an eighth of the unit that its scale is for; device coordinates have sixteenths of a pixel.
constexpr double kFineness = 4.0;

class WorldTransform {
  public:
    static std::optional<WorldTransform> make(const XFORM& form) {
        const double determinant = static_cast<double>(form.eM11) * form.eM22 - static_cast<double>(form.eM12) * form.eM21;
        constexpr double kFlat = 1e-12;
        if (!std::isfinite(determinant) || std::abs(determinant) < kFlat) return std::nullopt;
        return WorldTransform(form, determinant);
    }

    [[nodiscard]] RealPoint toWorld(POINTFIX point) const {
        const double x = point.x / 16.0 - m_form.eDx;
        const double y = point.y / 16.0 - m_form.eDy;
        return {(x * m_form.eM22 - y * m_form.eM21) / m_determinant, (y * m_form.eM11 - x * m_form.eM12) / m_determinant};
    }
    [[nodiscard]] RealPoint toPixels(double x, double y) const {
        return {x * m_form.eM11 + y * m_form.eM21 + m_form.eDx, x * m_form.eM12 + y * m_form.eM22 + m_form.eDy};
    }
    [[nodiscard]] POINTFIX toDevice(double x, double y) const {
        const RealPoint pixels = toPixels(x, y);
        return {toFix(pixels.x), toFix(pixels.y)};
    }
    // Device pixels of a world unit, the mean over all directions.
    [[nodiscard]] double scale() const { return std::sqrt(std::abs(m_determinant)); }
    // At least as many as in the direction that has most.
    [[nodiscard]] double stretch() const { return std::hypot(std::hypot(m_form.eM11, m_form.eM12), std::hypot(m_form.eM21, m_form.eM22)); }

  private:
    WorldTransform(const XFORM& form, double determinant) : m_form(form), m_determinant(determinant) {}
    static FIX toFix(double pixels) {
        constexpr double kMost = 2147483647.0;
        return static_cast<FIX>(std::lround(std::clamp(pixels * 16.0, -kMost, kMost)));
    }

    XFORM m_form;
    double m_determinant;
};

agg::path_storage worldPath(const Subpath& figure, const WorldTransform& transform) {
    agg::path_storage path;
    const auto world = [&](std::size_t i) { return transform.toWorld(figure.points[i]); };
    const RealPoint start = world(0);
    path.move_to(start.x, start.y);
    std::size_t next = 1;
    for (const SegmentKind kind : figure.segments) {
        if (kind == SegmentKind::Line) {
            const RealPoint end = world(next++);
            path.line_to(end.x, end.y);
            continue;
        }
        const RealPoint control1 = world(next);
        const RealPoint control2 = world(next + 1);
        const RealPoint end = world(next + 2);
        path.curve4(control1.x, control1.y, control2.x, control2.y, end.x, end.y);
        next += 3;
    }
    if (figure.closed) path.close_polygon();
    return path;
}

bool isPoint(const Subpath& figure) {
    return std::all_of(figure.points.begin(), figure.points.end(),
                       [&](const POINTFIX& p) { return p.x == figure.points[0].x && p.y == figure.points[0].y; });
}

// A figure without length shows its caps alone: a dot, a square, or nothing.
void addDot(Path& result, const Subpath& figure, const Pen& pen, double width, const WorldTransform& transform) {
    if (pen.endCap == ENDCAP_BUTT) return;
    const RealPoint centre = transform.toWorld(figure.points[0]);
    const double radius = width / 2.0;
    const bool square = pen.endCap == ENDCAP_SQUARE;
    // Chords that stay within a thirty-second of a pixel, as for round caps.
    const double round = std::ceil(std::numbers::pi / std::acos(std::max(0.0, 1.0 - 1.0 / (32.0 * radius * transform.scale()))));
    const int corners = square ? 4 : static_cast<int>(std::clamp(round, 8.0, 512.0));
    const double reach = square ? radius * std::numbers::sqrt2 : radius;
    const double turn = square ? std::numbers::pi / 4.0 : 0.0;
    for (int i = 0; i < corners; ++i) {
        const double angle = turn + 2.0 * std::numbers::pi * i / corners;
        const POINTFIX point = transform.toDevice(centre.x + reach * std::cos(angle), centre.y + reach * std::sin(angle));
        if (i == 0) {
            result.moveTo(point);
        } else {
            result.lineTo(point);
        }
    }
    result.close();
}

// AGG's measure for how finely an outline of `pieces` corners and caps is made: fine enough for the device, but no full turn takes
// more than a thousand chords, and fewer where a file asks for so many turns that nothing else would bound the memory they take.
double fineness(double pieces, double width, const WorldTransform& transform) {
    constexpr double kMostChords = 4e6;
    const double chords = std::clamp(kMostChords / std::max(pieces, 1.0), 16.0, 1024.0);
    const double perRadian = chords / (2.0 * std::numbers::pi);  // AGG takes the square root of radius times scale
    return std::min(kFineness * transform.scale(), perRadian * perRadian / (width / 2.0));
}

template <typename Source>
void addOutline(Path& result, Source& source, const Pen& pen, double width, double pieces, const WorldTransform& transform) {
    agg::conv_stroke<Source> stroke(source);
    stroke.width(width);
    // Past its limit a miter becomes a bevel.
    stroke.line_join(pen.join == JOIN_ROUND ? agg::round_join : pen.join == JOIN_BEVEL ? agg::bevel_join : agg::miter_join_revert);
    stroke.line_cap(pen.endCap == ENDCAP_ROUND ? agg::round_cap : pen.endCap == ENDCAP_SQUARE ? agg::square_cap : agg::butt_cap);
    stroke.miter_limit(std::max(1.0, static_cast<double>(pen.miterLimit)));
    stroke.inner_join(agg::inner_round);  // keeps the inside of sharp bends covered
    stroke.approximation_scale(fineness(pieces, width, transform));
    stroke.rewind(0);
    double x = 0.0;
    double y = 0.0;
    for (unsigned command = stroke.vertex(&x, &y); !agg::is_stop(command); command = stroke.vertex(&x, &y)) {
        if (agg::is_move_to(command)) {
            result.moveTo(transform.toDevice(x, y));
        } else if (agg::is_vertex(command)) {
            result.lineTo(transform.toDevice(x, y));
        } else if (agg::is_close(command)) {
            result.close();
        }
    }
}

// Lengths of dash and gap in turn; none for a solid line. An odd list is run through twice.
std::vector<double> dashesOf(const Pen& pen) {
    std::vector<double> dashes;
    const std::size_t count = pen.style.size() * (pen.style.size() % 2 + 1);
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        dashes.push_back(std::max(0.0, static_cast<double>(pen.style[i % pen.style.size()])));
        sum += dashes.back();
    }
    constexpr std::size_t kMostDashes = 32;  // agg::vcgen_dash holds no more; pens of the platform have at most 16
    if (!(sum > 0.0) || !std::isfinite(sum) || dashes.size() > kMostDashes) dashes.clear();
    return dashes;
}

// Within which a part of the line may show something. No cap, corner or miter reaches farther from the line than the room.
std::optional<RECTL> reachedFrom(const std::optional<RECTL>& seen, const Pen& pen, double width, const WorldTransform& transform) {
    if (!seen) return std::nullopt;
    constexpr double kMost = 1 << 28;
    const double reach = std::max(2.0, static_cast<double>(pen.miterLimit)) * (width / 2.0) * transform.stretch();
    const auto room = static_cast<LONG>(std::ceil(std::clamp(reach, 0.0, kMost)));
    return RECTL{seen->left - room, seen->top - room, seen->right + room, seen->bottom + room};
}

using Curves = agg::conv_curve<agg::path_storage>;

std::vector<LinePoint> pointsOf(Curves& curves, bool closed, const WorldTransform& transform) {
    std::vector<LinePoint> points;
    double x = 0.0;
    double y = 0.0;
    curves.rewind(0);
    for (unsigned command = curves.vertex(&x, &y); !agg::is_stop(command); command = curves.vertex(&x, &y)) {
        if (agg::is_vertex(command)) points.push_back({.world = {x, y}, .device = transform.toPixels(x, y)});
    }
    if (closed && !points.empty()) points.push_back(points.front());
    return points;
}

// One pass over the figures of a path.
class Widener {
  public:
    Widener(const Pen& pen, double width, const WorldTransform& transform, const std::optional<RECTL>& reached, DashBudget& budget)
        : m_pen(pen), m_width(width), m_transform(transform), m_budget(budget), m_dashes(dashesOf(pen)) {
        constexpr LONG kFar = std::numeric_limits<LONG>::max();
        m_reached = reached.value_or(RECTL{-kFar, -kFar, kFar, kFar});
        for (const double dash : m_dashes) m_period += dash;
        m_budget.beginPath();
    }

    Path run(const Path& path) {
        for (const Subpath& figure : path.subpaths()) m_corners += static_cast<double>(figure.points.size());
        for (const Subpath& figure : path.subpaths()) addFigure(figure);
        return std::move(m_outline);
    }

  private:
    void addFigure(const Subpath& figure) {
        if (isPoint(figure)) return addDot(m_outline, figure, m_pen, m_width, m_transform);
        agg::path_storage world = worldPath(figure, m_transform);
        Curves curves(world);
        curves.approximation_scale(kFineness * m_transform.scale());
        if (!addDashes(curves, figure.closed)) addOutline(m_outline, curves, m_pen, m_width, m_corners, m_transform);
    }

    // False when the line is to be drawn solid.
    bool addDashes(Curves& curves, bool closed) {
        if (m_dashes.empty()) return false;
        const std::vector<SeenRun> runs = seenRuns(pointsOf(curves, closed, m_transform), m_reached);
        double repeats = 0.0;
        for (const SeenRun& run : runs) repeats += run.length / m_period;
        if (!m_budget.take(repeats)) return false;
        const double pieces = m_corners + repeats * static_cast<double>(m_dashes.size());
        for (const SeenRun& run : runs) addRun(run, pieces);
        return true;
    }

    void addRun(const SeenRun& run, double pieces) {
        agg::path_storage line;
        line.move_to(run.points.front().x, run.points.front().y);
        for (std::size_t i = 1; i < run.points.size(); ++i) line.line_to(run.points[i].x, run.points[i].y);
        agg::conv_dash<agg::path_storage> dash(line);
        for (std::size_t i = 0; i + 1 < m_dashes.size(); i += 2) dash.add_dash(m_dashes[i], m_dashes[i + 1]);
        dash.dash_start(std::fmod(run.before, m_period));
        addOutline(m_outline, dash, m_pen, m_width, pieces, m_transform);
    }

    const Pen& m_pen;
    double m_width;
    const WorldTransform& m_transform;
    DashBudget& m_budget;
    std::vector<double> m_dashes;
    double m_period = 0.0;
    RECTL m_reached{};
    double m_corners = 0.0;
    Path m_outline;
};

}  // namespace

Path widenPath(const Path& path, const Pen& pen, const XFORM& worldToDevice, const std::optional<RECTL>& seen, DashBudget* budget) {
    const std::optional<WorldTransform> transform = WorldTransform::make(worldToDevice);
    if (!transform || pen.null) return {};
    // A pen thinner than a pixel still draws one.
    const double width = std::max(std::abs(pen.width), 1.0 / transform->scale());
    if (!std::isfinite(width)) return {};
    const std::optional<RECTL> reached = reachedFrom(seen, pen, width, *transform);
    // AGG is left to cut those curves alone that lie where they are seen, and altogether into no more lines than memory easily holds.
    constexpr FIX kTolerance = 2;  // an eighth of a pixel, as AGG's
    constexpr std::size_t kMostLines = std::size_t{1} << 20;
    const Path nearCurves = path.flattened({.tolerance = kTolerance, .seen = reached, .keepsNear = true, .mostLines = kMostLines});
    DashBudget own;
    return Widener(pen, width, *transform, reached, budget != nullptr ? *budget : own).run(nearCurves);
}

}  // namespace morvil::engine
