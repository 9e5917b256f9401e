// path_recorder.h - the route of paths with very many curves: the points go to the recorder's file first and come back one
// curve at a time, so that the path is never held in memory twice.
#pragma once

#include <cstdint>

#include "platform/platform.h"

namespace morvil {

// Writes one polygon for each recorded curve. FALSE when there is no memory for a curve's points.
BOOL strokeRecorded(PATHOBJ& path, std::uint32_t colour, bool banded);

}  // namespace morvil
