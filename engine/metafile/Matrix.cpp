// Matrix.cpp - arithmetic of the affine transforms.
#include "engine/metafile/Matrix.h"

#include <algorithm>
#include <cmath>

namespace morvil::engine {

namespace {

double limited(double value) { return std::isnan(value) ? 0.0 : std::clamp(value, -kFarthestPixel, kFarthestPixel); }

LONG nearest(double value) { return static_cast<LONG>(std::floor(value + 0.5)); }

float toFloat(double value) {
    constexpr double kLargest = 3.0e38;
    return static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

}  // namespace

Point Matrix::apply(Point point) const { return {point.x * m11 + point.y * m21 + dx, point.x * m12 + point.y * m22 + dy}; }

Point Matrix::applyToVector(Point vector) const { return {vector.x * m11 + vector.y * m21, vector.x * m12 + vector.y * m22}; }

bool Matrix::finite() const {
    return std::isfinite(m11) && std::isfinite(m12) && std::isfinite(m21) && std::isfinite(m22) && std::isfinite(dx) && std::isfinite(dy);
}

bool Matrix::axisAligned() const {
    constexpr double kNegligible = 1e-9;
    const double largest = std::max({std::fabs(m11), std::fabs(m12), std::fabs(m21), std::fabs(m22)});
    return std::fabs(m12) <= largest * kNegligible && std::fabs(m21) <= largest * kNegligible;
}

XFORM Matrix::toXform() const { return {toFloat(m11), toFloat(m12), toFloat(m21), toFloat(m22), toFloat(dx), toFloat(dy)}; }

Matrix Matrix::from(const XFORM& xform) { return {xform.eM11, xform.eM12, xform.eM21, xform.eM22, xform.eDx, xform.eDy}; }

Matrix Matrix::inverse() const {
    const double d = determinant();
    if (d == 0.0 || !std::isfinite(d)) return {};
    const Matrix linear{m22 / d, -m12 / d, -m21 / d, m11 / d, 0.0, 0.0};
    const Point shift = linear.applyToVector({dx, dy});
    return {linear.m11, linear.m12, linear.m21, linear.m22, -shift.x, -shift.y};
}

Matrix operator*(const Matrix& first, const Matrix& second) {
    const Point row1 = second.applyToVector({first.m11, first.m12});
    const Point row2 = second.applyToVector({first.m21, first.m22});
    const Point shift = second.apply({first.dx, first.dy});
    return {row1.x, row1.y, row2.x, row2.y, shift.x, shift.y};
}

POINTFIX toFix(Point point) { return {nearest(limited(point.x) * 16.0), nearest(limited(point.y) * 16.0)}; }

Point fromFix(POINTFIX point) { return {point.x / 16.0, point.y / 16.0}; }

LONG toPixel(double value) { return nearest(limited(value)); }

}  // namespace morvil::engine
