// PlayerState.cpp - mapping, drawing modes, and their saving.
#include <bit>
#include <cmath>

#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

constexpr std::size_t kDeepestSave = 65536;
constexpr std::size_t kMostSavedRectangles = std::size_t{1} << 22;

enum TransformMode : ULONG { kIdentity = 1, kLeftMultiply, kRightMultiply, kSet };

struct Scale {
    double xNumerator, xDenominator, yNumerator, yDenominator;
};

Scale readScale(const Record& record) {
    const Scale scale{static_cast<double>(record.i32(8)), static_cast<double>(record.i32(12)), static_cast<double>(record.i32(16)),
                      static_cast<double>(record.i32(20))};
    if (scale.xDenominator == 0.0 || scale.yDenominator == 0.0) throw DamagedRecord("a scale with denominator 0");
    return scale;
}

Matrix checked(const Matrix& matrix) {
    if (!matrix.finite()) throw DamagedRecord("the transform overflows");
    return matrix;
}

std::size_t rectanglesOf(const std::shared_ptr<const Region>& region) { return region ? region->rectangles().size() : 0; }

}  // namespace

void Player::setWindowExtent(const Record& record) { m_state.mapping.setWindowExtent(record.point(8)); }
void Player::setWindowOrigin(const Record& record) { m_state.mapping.setWindowOrigin(record.point(8)); }
void Player::setViewportExtent(const Record& record) { m_state.mapping.setViewportExtent(record.point(8)); }
void Player::setViewportOrigin(const Record& record) { m_state.mapping.setViewportOrigin(record.point(8)); }

void Player::scaleWindowExtent(const Record& record) {
    const Scale scale = readScale(record);
    m_state.mapping.scaleWindow(scale.xNumerator, scale.xDenominator, scale.yNumerator, scale.yDenominator);
}

void Player::scaleViewportExtent(const Record& record) {
    const Scale scale = readScale(record);
    m_state.mapping.scaleViewport(scale.xNumerator, scale.xDenominator, scale.yNumerator, scale.yDenominator);
}

void Player::setMapMode(const Record& record) {
    const ULONG mode = record.u32(8);
    if (!m_state.mapping.setMode(mode)) throw DamagedRecord("there is no mapping mode " + std::to_string(mode));
}

void Player::setWorldTransform(const Record& record) { m_state.world = Matrix::from(record.xform(8)); }

void Player::modifyWorldTransform(const Record& record) {
    const ULONG mode = record.u32(32);
    if (mode == kIdentity) {
        m_state.world = Matrix();
        return;
    }
    const Matrix change = Matrix::from(record.xform(8));
    switch (mode) {
        case kLeftMultiply: m_state.world = checked(change * m_state.world); break;
        case kRightMultiply: m_state.world = checked(m_state.world * change); break;
        case kSet: m_state.world = change; break;
        default: throw DamagedRecord("there is no way " + std::to_string(mode) + " to modify a transform");
    }
}

void Player::setLayout(const Record& record) {
    constexpr ULONG kRightToLeft = 1;
    m_state.mirrored = (record.u32(8) & kRightToLeft) != 0;
}

void Player::setBackgroundMode(const Record& record) {
    constexpr ULONG kOpaque = 2;
    m_state.opaqueBackground = record.u32(8) == kOpaque;
}

void Player::setBackgroundColour(const Record& record) { m_state.backgroundColour = record.u32(8); }
void Player::setTextColour(const Record& record) { m_state.textColour = record.u32(8); }
void Player::setTextAlign(const Record& record) { m_state.textAlign = record.u32(8); }

void Player::setTextJustification(const Record& record) {
    m_state.breakExtra = record.i32(8);
    m_state.breakCount = record.i32(12);
}

void Player::setPolyFillMode(const Record& record) {
    constexpr ULONG kWinding = 2;
    m_state.fillMode = record.u32(8) == kWinding ? FillMode::Winding : FillMode::Alternate;
}

void Player::setRop2(const Record& record) {
    const ULONG rop2 = record.u32(8);
    if (rop2 < 1 || rop2 > 16) throw DamagedRecord("there is no binary raster operation " + std::to_string(rop2));
    m_state.rop2 = static_cast<int>(rop2);
}

void Player::setStretchMode(const Record& record) {
    const ULONG mode = record.u32(8);
    if (mode < BLACKONWHITE || mode > HALFTONE) throw DamagedRecord("there is no stretching mode " + std::to_string(mode));
    m_state.stretchMode = static_cast<int>(mode);
}

void Player::setArcDirection(const Record& record) {
    constexpr ULONG kClockwise = 2;
    m_state.clockwise = record.u32(8) == kClockwise;
}

// Writers disagree whether the limit is a whole number or a floating-point one. Whole numbers in use are, read as the latter,
// smaller than any normal one.
void Player::setMiterLimit(const Record& record) {
    constexpr std::uint32_t kSmallestNormalFloat = 0x00800000;
    const std::uint32_t raw = record.u32(8);
    const float limit = raw < kSmallestNormalFloat ? static_cast<float>(raw) : record.f32(8);
    if (limit < 1.0F) throw DamagedRecord("a miter limit below 1");
    m_state.miterLimit = limit;
}

void Player::setBrushOrigin(const Record& record) { m_state.brushOrigin = record.point(8); }

void Player::saveState(const Record&) {
    const bool sameClip =
        !m_saved.empty() && m_saved.back().state.clip == m_state.clip && m_saved.back().state.metaClip == m_state.metaClip;
    const std::size_t added = sameClip ? 0 : rectanglesOf(m_state.clip) + rectanglesOf(m_state.metaClip);
    if (m_saved.size() >= kDeepestSave || added > kMostSavedRectangles - m_savedRectangles) throw DamagedRecord("too many saved states");
    m_savedRectangles += added;
    m_saved.push_back({m_state, added});
}

void Player::restoreState(const Record& record) {
    const std::int64_t which = record.i32(8);
    const auto depth = static_cast<std::int64_t>(m_saved.size());
    const std::int64_t index = which < 0 ? depth + which : which - 1;
    if (which == 0 || index < 0 || index >= depth) {
        throw DamagedRecord("state " + std::to_string(which) + " of " + std::to_string(depth) + " saved ones");
    }
    m_state = m_saved[static_cast<std::size_t>(index)].state;
    for (; static_cast<std::int64_t>(m_saved.size()) > index; m_saved.pop_back()) m_savedRectangles -= m_saved.back().rectangles;
}

}  // namespace morvil::engine
