// Curves.cpp - round shapes.
#include "engine/metafile/Curves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace morvil::engine {

namespace {

constexpr double kQuarter = std::numbers::pi / 2;
constexpr double kFull = 2 * std::numbers::pi;

// Angle of the ray from the centre through `point`, measured on the circle that the ellipse is squeezed from.
double angleOf(const Box& box, Point point) {
    const Point centre = box.centre();
    const double x = (point.x - centre.x) * box.height();
    const double y = (point.y - centre.y) * box.width();
    return std::atan2(-y, x);
}

bool apart(Point a, Point b) {
    constexpr double kRounding = 1e-6;
    return std::fabs(a.x - b.x) > kRounding || std::fabs(a.y - b.y) > kRounding;
}

}  // namespace

Box Box::ordered() const { return {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)}; }

Box Box::inside(double inset) const {
    const double x = std::min(inset, width() / 2);
    const double y = std::min(inset, height() / 2);
    return {left + x, top + y, right - x, bottom - y};
}

void Outline::bezierTo(Point control1, Point control2, Point end) {
    m_path.bezierTo(toFix(m_toDevice.apply(control1)), toFix(m_toDevice.apply(control2)), toFix(m_toDevice.apply(end)));
}

Point Arc::at(double angle) const { return {centre.x + radiusX * std::cos(angle), centre.y - radiusY * std::sin(angle)}; }

Arc arcBetween(const Box& box, Point startRay, Point endRay, bool clockwise) {
    const double start = angleOf(box, startRay);
    double sweep = angleOf(box, endRay) - start;
    if (clockwise) {
        while (sweep >= 0.0) sweep -= kFull;
    } else {
        while (sweep <= 0.0) sweep += kFull;
    }
    return {box.centre(), box.width() / 2, box.height() / 2, start, sweep};
}

void addArc(Outline& outline, const Arc& arc) {
    constexpr double kRounding = 1e-9;
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(arc.sweep) / kQuarter - kRounding)));
    const double step = arc.sweep / pieces;
    const double reach = 4.0 / 3.0 * std::tan(step / 4);  // length of the handles on the unit circle
    const auto handle = [&arc](double angle, double length) {
        const Point point = arc.at(angle);
        return Point{point.x - length * arc.radiusX * std::sin(angle), point.y - length * arc.radiusY * std::cos(angle)};
    };
    for (int i = 0; i < pieces; ++i) {
        const double from = arc.start + step * i;
        const double to = arc.start + step * (i + 1);
        outline.bezierTo(handle(from, reach), handle(to, -reach), arc.at(to));
    }
}

void addRectangle(Outline& outline, const Box& box, bool clockwise) {
    outline.moveTo({box.right, box.top});
    if (clockwise) {
        outline.lineTo({box.right, box.bottom});
        outline.lineTo({box.left, box.bottom});
        outline.lineTo({box.left, box.top});
    } else {
        outline.lineTo({box.left, box.top});
        outline.lineTo({box.left, box.bottom});
        outline.lineTo({box.right, box.bottom});
    }
    outline.close();
}

void addEllipse(Outline& outline, const Box& box, bool clockwise) {
    const Arc arc{box.centre(), box.width() / 2, box.height() / 2, 0.0, clockwise ? -kFull : kFull};
    outline.moveTo(arc.first());
    addArc(outline, arc);
    outline.close();
}

void addRoundRectangle(Outline& outline, const Box& box, double width, double height, bool clockwise) {
    const double x = std::min(std::fabs(width), box.width()) / 2;
    const double y = std::min(std::fabs(height), box.height()) / 2;
    if (x <= 0.0 || y <= 0.0) {
        addRectangle(outline, box, clockwise);
        return;
    }
    const Arc corners[] = {{{box.right - x, box.top + y}, x, y, 0.0, kQuarter},
                           {{box.left + x, box.top + y}, x, y, kQuarter, kQuarter},
                           {{box.left + x, box.bottom - y}, x, y, 2 * kQuarter, kQuarter},
                           {{box.right - x, box.bottom - y}, x, y, 3 * kQuarter, kQuarter}};
    Point last;
    for (int i = 0; i < 4; ++i) {
        Arc corner = corners[clockwise ? 3 - i : i];
        if (clockwise) {
            corner.start += corner.sweep;
            corner.sweep = -corner.sweep;
        }
        if (i == 0) {
            outline.moveTo(corner.first());
        } else if (apart(last, corner.first())) {
            outline.lineTo(corner.first());
        }
        last = corner.last();
        addArc(outline, corner);
    }
    outline.close();
}

}  // namespace morvil::engine
