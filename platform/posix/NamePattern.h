// NamePattern.h - the platform's file name patterns: "*" any run, "?" one character or, before a point or at the end, none.
// "*.*" finds every name; a "*" in front of a point ends at the name's last point; a point in front of "?" or "*" also
// matches the end of a name; points at the end of a pattern do not count, but "*." finds the names without a point. Case does not
// count. The work grows with pattern times name, whatever the pattern.
#pragma once

#include <vector>

#include "platform/common/Text.h"

namespace morvil {

class NamePattern {
  public:
    explicit NamePattern(WStringView pattern);
    [[nodiscard]] bool matches(WStringView name) const;

  private:
    enum class Kind : std::uint8_t {
        Literal,    // this character
        Any,        // any run
        AnyToLast,  // any run, not beyond the name's last point
        One,        // one character but a point; none before a point or at the end
        Point       // a point, or the end
    };
    struct Item {
        Kind kind;
        WCHAR unit;  // upper case, of a Literal
    };
    std::vector<Item> m_items;
};

}  // namespace morvil
