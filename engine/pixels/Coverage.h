// Coverage.h - which pixels a path covers. A pixel counts by its centre, which lies at whole coordinates; a centre on a left or
// upper edge is inside, one on a right or lower edge is not.
#pragma once

#include <functional>

#include "engine/Path.h"

namespace morvil::engine {

// Hands the covered pixels within the box to `sink`: rectangles that do not overlap, from top to bottom and left to right.
// Curves are flattened. Takes memory for the path's edges only, never for pixels. REQUIRES: the box is at most 2^22 columns wide.
void coverPath(const Path& path, bool alternate, const RECTL& within, const std::function<void(const RECTL&)>& sink);

}  // namespace morvil::engine
