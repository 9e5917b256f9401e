// Mix.h - the mix of a drawing call: the code for the foreground in the low byte, the same for the background in the next.
#pragma once

#include "platform/platform.h"

namespace morvil::engine {

// `rop2` is R2_BLACK (1) to R2_WHITE (16).
constexpr MIX mixOf(int rop2) { return static_cast<MIX>(rop2) | (static_cast<MIX>(rop2) << 8); }

}  // namespace morvil::engine
