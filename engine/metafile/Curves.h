// Curves.h - ellipses, arcs and rounded rectangles as cubic Beziers, in logical coordinates (y down), and the collector that
// carries such outlines through a transform into a path.
#pragma once

#include "engine/Path.h"
#include "engine/metafile/Matrix.h"

namespace morvil::engine {

// Corners of a logical rectangle in any order; edges belong to it.
struct Box {
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    [[nodiscard]] Point centre() const { return {(left + right) / 2, (top + bottom) / 2}; }
    [[nodiscard]] double width() const { return right - left; }
    [[nodiscard]] double height() const { return bottom - top; }
    [[nodiscard]] Box ordered() const;
    // Smaller by `inset` on each side, not beyond its centre. REQUIRES: ordered.
    [[nodiscard]] Box inside(double inset) const;
};

// Takes outlines in logical coordinates and writes them into `path` in device coordinates.
class Outline {
  public:
    Outline(Path& path, const Matrix& toDevice) : m_path(path), m_toDevice(toDevice) {}
    void moveTo(Point point) { m_path.moveTo(toFix(m_toDevice.apply(point))); }
    void lineTo(Point point) { m_path.lineTo(toFix(m_toDevice.apply(point))); }
    void bezierTo(Point control1, Point control2, Point end);
    void close() { m_path.close(); }

  private:
    Path& m_path;
    const Matrix& m_toDevice;
};

// A part of an ellipse: angles in radians, counted as seen on the page (counterclockwise is positive), 0 pointing right.
struct Arc {
    Point centre;
    double radiusX = 0.0;
    double radiusY = 0.0;
    double start = 0.0;
    double sweep = 0.0;
    [[nodiscard]] Point at(double angle) const;
    [[nodiscard]] Point first() const { return at(start); }
    [[nodiscard]] Point last() const { return at(start + sweep); }
};

// The arc of the ellipse in `box` between the rays through two points. Equal rays give the whole ellipse.
Arc arcBetween(const Box& box, Point startRay, Point endRay, bool clockwise);

// Curves of at most a quarter turn each; the outline already stands on the arc's first point.
void addArc(Outline& outline, const Arc& arc);
void addRectangle(Outline& outline, const Box& box, bool clockwise);
void addEllipse(Outline& outline, const Box& box, bool clockwise);
// `width` and `height` are those of the corners' ellipse.
void addRoundRectangle(Outline& outline, const Box& box, double width, double height, bool clockwise);

}  // namespace morvil::engine
