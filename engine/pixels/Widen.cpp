// Widen.cpp - outlines of wide lines, by AGG. Dashes, joins and caps are made in world space, where the pen is round, and only
// the outline is brought into device space, so that a sheared transform shears the pen too.
#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>
#include <agg_path_storage.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "engine/Pixels.h"

namespace morvil::engine {
namespace {

// AGG keeps chords within an eighth of the unit that its scale is for; device coordinates have sixteenths of a pixel.
constexpr double kFineness = 4.0;

struct WorldPoint {
    double x;
    double y;
};

class WorldTransform {
  public:
    static std::optional<WorldTransform> make(const XFORM& form) {
        const double determinant = static_cast<double>(form.eM11) * form.eM22 - static_cast<double>(form.eM12) * form.eM21;
        constexpr double kFlat = 1e-12;
        if (!std::isfinite(determinant) || std::abs(determinant) < kFlat) return std::nullopt;
        return WorldTransform(form, determinant);
    }

    [[nodiscard]] WorldPoint toWorld(POINTFIX point) const {
        const double x = point.x / 16.0 - m_form.eDx;
        const double y = point.y / 16.0 - m_form.eDy;
        return {(x * m_form.eM22 - y * m_form.eM21) / m_determinant, (y * m_form.eM11 - x * m_form.eM12) / m_determinant};
    }
    [[nodiscard]] POINTFIX toDevice(double x, double y) const {
        return {toFix(x * m_form.eM11 + y * m_form.eM21 + m_form.eDx), toFix(x * m_form.eM12 + y * m_form.eM22 + m_form.eDy)};
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
    const WorldPoint start = world(0);
    path.move_to(start.x, start.y);
    std::size_t next = 1;
    for (const SegmentKind kind : figure.segments) {
        if (kind == SegmentKind::Line) {
            const WorldPoint end = world(next++);
            path.line_to(end.x, end.y);
            continue;
        }
        const WorldPoint control1 = world(next);
        const WorldPoint control2 = world(next + 1);
        const WorldPoint end = world(next + 2);
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
    const WorldPoint centre = transform.toWorld(figure.points[0]);
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

double deviceLength(const Subpath& figure) {
    double length = 0.0;
    for (std::size_t i = 1; i < figure.points.size(); ++i) {
        length += std::hypot((figure.points[i].x - figure.points[i - 1].x) / 16.0, (figure.points[i].y - figure.points[i - 1].y) / 16.0);
    }
    return length;
}

// The path with AGG left to cut those curves alone that lie where they are seen, and altogether into no more lines than memory
// easily holds.
Path withoutFarCurves(const Path& path, const Pen& pen, double width, const WorldTransform& transform, const std::optional<RECTL>& seen) {
    constexpr FIX kTolerance = 2;  // an eighth of a pixel, as AGG's
    constexpr std::size_t kMostLines = std::size_t{1} << 20;
    Flattening how{.tolerance = kTolerance, .seen = seen, .keepsNear = true, .mostLines = kMostLines};
    if (seen) {
        // No cap, corner or miter reaches farther from the path.
        constexpr double kMost = 1 << 28;
        const double reach = std::max(2.0, static_cast<double>(pen.miterLimit)) * (width / 2.0) * transform.stretch();
        const auto room = static_cast<LONG>(std::ceil(std::clamp(reach, 0.0, kMost)));
        how.seen = RECTL{seen->left - room, seen->top - room, seen->right + room, seen->bottom + room};
    }
    return path.flattened(how);
}

}  // namespace

Path widenPath(const Path& wholePath, const Pen& pen, const XFORM& worldToDevice, const std::optional<RECTL>& seen) {
    Path result;
    const std::optional<WorldTransform> transform = WorldTransform::make(worldToDevice);
    if (!transform || pen.null) return result;
    // A pen thinner than a pixel still draws one.
    const double width = std::max(std::abs(pen.width), 1.0 / transform->scale());
    if (!std::isfinite(width)) return result;
    const Path path = withoutFarCurves(wholePath, pen, width, *transform, seen);
    const std::vector<double> dashes = dashesOf(pen);
    double period = 0.0;
    for (const double dash : dashes) period += dash;
    double corners = 0.0;
    for (const Subpath& figure : path.subpaths()) corners += static_cast<double>(figure.points.size());
    for (const Subpath& figure : path.subpaths()) {
        if (isPoint(figure)) {
            addDot(result, figure, pen, width, *transform);
            continue;
        }
        agg::path_storage world = worldPath(figure, *transform);
        agg::conv_curve<agg::path_storage> curves(world);
        curves.approximation_scale(kFineness * transform->scale());
        // A pattern that repeats far below a pixel is solid to the eye and would only take memory.
        constexpr double kMostPeriods = 1e6;
        const double periods = dashes.empty() ? 0.0 : deviceLength(figure) / (period * transform->scale());
        if (dashes.empty() || periods >= kMostPeriods) {
            addOutline(result, curves, pen, width, corners, *transform);
            continue;
        }
        agg::conv_dash<agg::conv_curve<agg::path_storage>> dash(curves);
        for (std::size_t i = 0; i + 1 < dashes.size(); i += 2) dash.add_dash(dashes[i], dashes[i + 1]);
        addOutline(result, dash, pen, width, corners + periods * static_cast<double>(dashes.size()), *transform);
    }
    return result;
}

}  // namespace morvil::engine
