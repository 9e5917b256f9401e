// CMciColor.h - one colour of the machine's colour catalogue, as a colour list file names it. A plain value; texts are cut to
// their lengths and end with a zero character. Construction and destruction are announced to the debugger output.
#pragma once

#include <array>
#include <cstdint>

#include "platform/common/Text.h"

namespace morvil {

inline constexpr std::size_t kMciTextCharacters = 20;  // without the terminator
inline constexpr std::size_t kMciNameCharacters = 100;

using MciText = std::array<WCHAR, kMciTextCharacters + 1>;
using MciName = std::array<WCHAR, kMciNameCharacters + 1>;

class CMciColor {
  public:
    CMciColor();
    CMciColor(const CMciColor& copyFrom);
    CMciColor& operator=(const CMciColor&) = default;
    ~CMciColor();

    // Equal in every field.
    bool operator==(const CMciColor&) const = default;

    MciText id{};
    std::uint8_t target = 0;
    MciText level{};
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
    MciText version{};
    MciText replacedBy{};  // empty: the colour is current
    MciName name{};
};

}  // namespace morvil
