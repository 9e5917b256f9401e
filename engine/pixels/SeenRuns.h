// SeenRuns.h - which stretches of a line can be seen. What lies beside needs no dashes, but their pattern goes on behind it.
#pragma once

#include <span>
#include <vector>

#include "engine/Path.h"

namespace morvil::engine {

struct RealPoint {
    double x;
    double y;
};

struct LinePoint {
    RealPoint world;
    RealPoint device;  // pixels
};

// Lengths in world units.
struct SeenRun {
    std::vector<RealPoint> points;  // in the world; at least two
    double before;                  // length of the line that lies before them
    double length;
};

// The stretches within the box of device pixels, in their order along the line.
std::vector<SeenRun> seenRuns(std::span<const LinePoint> line, const RECTL& box);

}  // namespace morvil::engine
