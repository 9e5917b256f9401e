// Stretch.h - copying with a change of size: which source pixels a target pixel takes, and rows of target pixels made of them.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/Objects.h"
#include "engine/pixels/RasterOp.h"

namespace morvil::engine {

// One direction of a stretch. The target's edges may be reversed, which mirrors; the source's are in order. Both rectangles run
// from half a pixel before their first to half a pixel before their end coordinate, so a target pixel stands for the source
// interval of its own length; sampling takes the source pixel in its middle.
class StretchAxis {
  public:
    StretchAxis(LONG targetFrom, LONG targetTo, LONG sourceFrom, LONG sourceTo);

    // Target pixels, in order.
    [[nodiscard]] LONG low() const { return m_low; }
    [[nodiscard]] LONG high() const { return m_high; }
    [[nodiscard]] bool valid() const { return m_high > m_low && m_sourceCount > 0; }
    [[nodiscard]] bool shrinks() const { return m_sourceCount > m_targetCount; }

    // The source pixel in the middle. REQUIRES for all below: low() <= target < high().
    [[nodiscard]] LONG middle(LONG target) const;
    // Shares the source pixels out among the target pixels of a shrinking axis: none is left out, none given twice.
    struct Range {
        LONG begin;
        LONG end;
    };
    [[nodiscard]] Range share(LONG target) const;
    // All source pixels that a target pixel touches, with the length of each that it covers in parts of `whole()`.
    [[nodiscard]] Range touched(LONG target) const;
    [[nodiscard]] std::int64_t weight(LONG target, LONG source) const;
    [[nodiscard]] std::int64_t whole() const { return m_sourceCount; }

    // Leaves only target pixels whose middle lies within the bounds.
    void limitSource(LONG begin, LONG end);

  private:
    // Position of a target pixel from the edge where the source begins.
    [[nodiscard]] std::int64_t fromStart(LONG target) const { return m_mirrored ? m_farthest - 1 - target : target - m_nearest; }

    bool m_mirrored;
    std::int64_t m_nearest;   // first target pixel of the whole axis
    std::int64_t m_farthest;  // one past its last
    std::int64_t m_targetCount;
    std::int64_t m_sourceCount;
    std::int64_t m_sourceStart;
    LONG m_low;
    LONG m_high;
};

// Makes rows of target pixel values from the source.
class StretchedRows {
  public:
    virtual ~StretchedRows() = default;
    // Pixels x0 to x1 - 1 of target row y; valid until the next call.
    virtual const std::vector<ULONG>& row(LONG y, LONG x0, LONG x1) = 0;
};

struct StretchJob {
    const EngineSurface& target;
    const EngineSurface& source;
    const XLATEOBJ* translation;
    const COLORADJUSTMENT* adjustment;
    POINTL ditherOrigin;
    const StretchAxis& columns;
    const StretchAxis& rows;
};

std::unique_ptr<StretchedRows> makeStretchedRows(const StretchJob& job, ULONG mode);

}  // namespace morvil::engine
