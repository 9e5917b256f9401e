// Scan.h - reads a number from the front of a UTF-16 text as the C library's scanf does: white space first, then a sign, then
// the longest number; what follows is not looked at. The same on both hosts. No state; any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/common/Text.h"

namespace morvil {

enum class ScanBase : std::uint8_t {
    Detect = 0,  // "%i": 0x opens hexadecimal, 0 opens octal
    Decimal = 10,
    Hexadecimal = 16  // "%x": 0x may stand in front
};

// The low 32 bits of the number, as storing it into a 32-bit variable leaves them; callers of 16-bit forms cut further.
// Numbers beyond 64 bits stop at the largest before they are cut. Nothing when no digit stands there.
std::optional<std::uint32_t> scanInteger(WStringView text, ScanBase base);

// "%f": decimal and hexadecimal forms, infinity and nan. Too large a number is infinite, too small a one is zero.
std::optional<float> scanFloat(WStringView text);

}  // namespace morvil
