// bezier_library.h - the curve-fitting library of the partner programs, which recognises an arc in a stroke's points. Loaded for
// one stroke and freed again, so that it can be replaced while applications print. Without it a stroke writes nothing.
#pragma once

#include <cstdint>
#include <span>

#include "platform/platform.h"

namespace morvil {

// Hands the points to the library and writes the arc that it finds in the colour. FALSE when the library takes the points for
// no arc.
BOOL writeFittedArc(std::span<const std::int32_t> xs, std::span<const std::int32_t> ys, std::uint32_t colour);

}  // namespace morvil
