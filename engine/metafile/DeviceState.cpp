// DeviceState.cpp - the mapping modes.
#include "engine/metafile/DeviceState.h"

#include <cmath>

namespace morvil::engine {

namespace {

// Logical units per millimetre of the fixed modes; 0: pixels, or up to the application.
double unitsPerMillimetre(ULONG mode) {
    constexpr double kMillimetresPerInch = 25.4;
    switch (mode) {
        case kMapLoMetric:
        case kMapIsotropic: return 10.0;
        case kMapHiMetric: return 100.0;
        case kMapLoEnglish: return 100.0 / kMillimetresPerInch;
        case kMapHiEnglish: return 1000.0 / kMillimetresPerInch;
        case kMapTwips: return 1440.0 / kMillimetresPerInch;
        default: return 0.0;
    }
}

// As whole numbers, and never 0.
double scaled(double extent, double numerator, double denominator) {
    const double result = std::trunc(extent * numerator / denominator);
    return result == 0.0 ? 1.0 : result;
}

}  // namespace

bool Mapping::setMode(ULONG mode) {
    if (mode < kMapText || mode > kMapAnisotropic) return false;
    if (mode == m_mode) return true;
    m_mode = mode;
    if (mode == kMapText) {
        m_windowExtent = {1.0, 1.0};
        m_viewportExtent = {1.0, 1.0};
    } else if (mode != kMapAnisotropic) {
        const double units = unitsPerMillimetre(mode);
        m_windowExtent = {m_device.millimetres.cx * units, m_device.millimetres.cy * units};
        m_viewportExtent = {static_cast<double>(m_device.pixels.cx), -static_cast<double>(m_device.pixels.cy)};
    }
    if (mode == kMapIsotropic) keepIsotropic();
    return true;
}

void Mapping::setWindowExtent(Point extent) {
    if (!extentsFree() || extent.x == 0.0 || extent.y == 0.0) return;
    m_windowExtent = extent;
    if (m_mode == kMapIsotropic) keepIsotropic();
}

void Mapping::setViewportExtent(Point extent) {
    if (!extentsFree() || extent.x == 0.0 || extent.y == 0.0) return;
    m_viewportExtent = extent;
    if (m_mode == kMapIsotropic) keepIsotropic();
}

void Mapping::scaleWindow(double xNumerator, double xDenominator, double yNumerator, double yDenominator) {
    setWindowExtent({scaled(m_windowExtent.x, xNumerator, xDenominator), scaled(m_windowExtent.y, yNumerator, yDenominator)});
}

void Mapping::scaleViewport(double xNumerator, double xDenominator, double yNumerator, double yDenominator) {
    setViewportExtent({scaled(m_viewportExtent.x, xNumerator, xDenominator), scaled(m_viewportExtent.y, yNumerator, yDenominator)});
}

// The viewport shrinks in one direction until a unit is as long in both, in millimetres.
void Mapping::keepIsotropic() {
    const double x = std::fabs(m_viewportExtent.x * m_device.millimetres.cx / (m_device.pixels.cx * m_windowExtent.x));
    const double y = std::fabs(m_viewportExtent.y * m_device.millimetres.cy / (m_device.pixels.cy * m_windowExtent.y));
    if (x > y) {
        m_viewportExtent.x *= y / x;
    } else {
        m_viewportExtent.y *= x / y;
    }
}

Matrix Mapping::matrix() const {
    const double x = m_viewportExtent.x / m_windowExtent.x;
    const double y = m_viewportExtent.y / m_windowExtent.y;
    return {x, 0.0, 0.0, y, m_viewportOrigin.x - m_windowOrigin.x * x, m_viewportOrigin.y - m_windowOrigin.y * y};
}

}  // namespace morvil::engine
