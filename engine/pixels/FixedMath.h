// FixedMath.h - exact arithmetic on 28.4 coordinates.
#pragma once

#include <algorithm>
#include <cstdint>

#include "engine/Path.h"

namespace morvil::engine {

// First pixel whose centre does not lie before the coordinate.
inline LONG ceilPixel(FIX value) { return static_cast<LONG>((static_cast<std::int64_t>(value) + kFixOne - 1) >> 4); }

// REQUIRES: divisor > 0.
inline std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    const std::int64_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

// Products of two differences of such points stay within 64 bits. The limit is 2^25 pixels; what lies farther away is bent, but
// stays far outside any page.
inline POINTFIX withinReach(POINTFIX point) {
    constexpr FIX kReach = 1 << 29;
    return {std::clamp(point.x, -kReach, kReach), std::clamp(point.y, -kReach, kReach)};
}

// floor(numerator / divisor) for numerators that grow by the same step from call to call. REQUIRES: divisor > 0.
class SteppedQuotient {
  public:
    SteppedQuotient(std::int64_t numerator, std::int64_t step, std::int64_t divisor)
        : m_quotient(floorDivide(numerator, divisor)),
          m_remainder(numerator - m_quotient * divisor),
          m_quotientStep(floorDivide(step, divisor)),
          m_remainderStep(step - m_quotientStep * divisor),
          m_divisor(divisor) {}

    [[nodiscard]] std::int64_t value() const { return m_quotient; }
    void advance() {
        m_quotient += m_quotientStep;
        m_remainder += m_remainderStep;
        if (m_remainder < m_divisor) return;
        m_remainder -= m_divisor;
        ++m_quotient;
    }

  private:
    std::int64_t m_quotient;
    std::int64_t m_remainder;
    std::int64_t m_quotientStep;
    std::int64_t m_remainderStep;
    std::int64_t m_divisor;
};

}  // namespace morvil::engine
