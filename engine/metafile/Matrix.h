// Matrix.h - the affine transforms of a metafile, in doubles, and the step from there to the 28.4 coordinates of paths.
// Row vectors as in XFORM: x' = x*m11 + y*m21 + dx, y' = x*m12 + y*m22 + dy.
#pragma once

#include "platform/platform.h"

namespace morvil::engine {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

struct Matrix {
    double m11 = 1.0;
    double m12 = 0.0;
    double m21 = 0.0;
    double m22 = 1.0;
    double dx = 0.0;
    double dy = 0.0;

    [[nodiscard]] Point apply(Point point) const;
    [[nodiscard]] Point applyToVector(Point vector) const;  // without the shift
    [[nodiscard]] double determinant() const { return m11 * m22 - m12 * m21; }
    [[nodiscard]] bool finite() const;
    // Horizontal lines stay horizontal and vertical ones vertical (scales and flips only).
    [[nodiscard]] bool axisAligned() const;
    [[nodiscard]] XFORM toXform() const;
    [[nodiscard]] static Matrix from(const XFORM& xform);
    // What undoes this one; the unit matrix when nothing does.
    [[nodiscard]] Matrix inverse() const;
};

// `first`, then `second`.
Matrix operator*(const Matrix& first, const Matrix& second);

// No coordinate on the page goes beyond this many pixels: differences of two points then still fit into 28.4.
inline constexpr double kFarthestPixel = 67108863.0;

POINTFIX toFix(Point point);
Point fromFix(POINTFIX point);
// Nearest whole pixel, halves upwards, within +-kFarthestPixel.
LONG toPixel(double value);

}  // namespace morvil::engine
