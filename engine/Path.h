// Path.h - a path in device coordinates (28.4 fixed point), built figure by figure. Plain data; copies are cheap enough for
// what drawings hold. Curves are cubic Beziers; ellipses and arcs arrive as Beziers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/platform.h"

namespace morvil::engine {

inline constexpr FIX kFixOne = 16;  // one pixel

enum class SegmentKind : std::uint8_t { Line, Bezier };

// Points behind the first belong to segments: one point for a line, three for a curve.
struct Subpath {
    std::vector<POINTFIX> points;
    std::vector<SegmentKind> segments;
    bool closed = false;
};

// How curves become lines.
struct Flattening {
    FIX tolerance = 4;  // in sixteenths of a pixel
    // Box in pixels around all that can be seen. What of a curve lies on one side of it becomes a single line on that side: the
    // lines within the box, and what the path encloses there, are the same as without.
    std::optional<RECTL> seen;
    bool keepsNear = false;  // curves that lie wholly within the box stay curves
    // Beyond this many lines all curves become coarser, however many they are; one line for each is the least.
    std::size_t mostLines = std::size_t{1} << 20;
};

class Path {
  public:
    // Where the next segment begins; no figure exists before its first segment.
    void moveTo(POINTFIX point);
    // Without a start the segment begins at the first point of the figure closed last, or is of no length at `point`.
    void lineTo(POINTFIX point);
    void bezierTo(POINTFIX control1, POINTFIX control2, POINTFIX end);
    void close();
    void append(const Path& other);
    // Marks the path as exactly one ellipse inscribed in its bounds.
    void markEllipse() { m_ellipse = true; }

    [[nodiscard]] const std::vector<Subpath>& subpaths() const { return m_subpaths; }
    [[nodiscard]] bool empty() const { return m_subpaths.empty(); }
    [[nodiscard]] bool hasBeziers() const;
    [[nodiscard]] bool isEllipse() const { return m_ellipse; }
    // Number of lines and curves, as PATHOBJ::cCurves counts them (a closing line counts when it has a length).
    [[nodiscard]] ULONG curveCount() const;
    // Smallest box around all points in sixteenths of a pixel, right and bottom exclusive by one; all zero when empty.
    [[nodiscard]] RECTL bounds() const;
    // Coordinates stop at the ends of the number range.
    void translate(FIX dx, FIX dy);
    // Curves replaced by lines (Flattening.cpp).
    [[nodiscard]] Path flattened(const Flattening& how = {}) const;

  private:
    Subpath& openFigure(POINTFIX fallback);

    std::vector<Subpath> m_subpaths;
    std::optional<POINTFIX> m_start;  // of a figure that has no segment yet
    bool m_ellipse = false;
};

}  // namespace morvil::engine
