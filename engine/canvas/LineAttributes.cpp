#include "engine/canvas/LineAttributes.h"

#include <cmath>

namespace morvil::engine {

namespace {

// Geometric lengths are floats in world units, cosmetic ones whole style steps.
FLOAT_LONG lengthOf(float value, bool geometric) {
    FLOAT_LONG length{};
    if (geometric) {
        length.e = value;
    } else {
        length.l = static_cast<LONG>(std::lround(value));
    }
    return length;
}

}  // namespace

LineAttributes::LineAttributes(const Pen& pen) {
    m_record.fl = (pen.geometric ? LA_GEOMETRIC : 0U) | (pen.alternate ? LA_ALTERNATE : 0U) | (pen.style.empty() ? 0U : LA_STYLED);
    m_record.iJoin = pen.geometric ? pen.join : JOIN_ROUND;
    m_record.iEndCap = pen.geometric ? pen.endCap : ENDCAP_ROUND;
    m_record.elWidth = lengthOf(pen.geometric ? static_cast<float>(pen.width) : 1.0F, pen.geometric);
    m_record.eMiterLimit = pen.geometric ? pen.miterLimit : 0.0F;
    m_style.reserve(pen.style.size());
    for (const float length : pen.style) m_style.push_back(lengthOf(length, pen.geometric));
    m_record.cstyle = static_cast<ULONG>(m_style.size());
    m_record.pstyle = m_style.empty() ? nullptr : m_style.data();
    m_record.elStyleState = lengthOf(0.0F, pen.geometric);
}

}  // namespace morvil::engine
