// LineAttributes.h - a pen as the driver interface describes lines, with the dash lengths that its record points to.
#pragma once

#include <vector>

#include "engine/Drawing.h"

namespace morvil::engine {

class LineAttributes {
  public:
    explicit LineAttributes(const Pen& pen);
    LineAttributes(const LineAttributes&) = delete;
    LineAttributes& operator=(const LineAttributes&) = delete;

    // Valid while this object lives; the driver may update the style state.
    [[nodiscard]] LINEATTRS* record() { return &m_record; }

  private:
    std::vector<FLOAT_LONG> m_style;
    LINEATTRS m_record{};
};

}  // namespace morvil::engine
