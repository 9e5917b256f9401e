// SeenRuns.cpp - a line cut along a box, segment by segment (Liang and Barsky, A New Concept and Method for Line Clipping, 1984).
#include "engine/pixels/SeenRuns.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace morvil::engine {
namespace {

RealPoint between(RealPoint a, RealPoint b, double t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}; }

// A part of a segment; 0 is its beginning and 1 its end.
struct Part {
    double begin = 0.0;
    double end = 1.0;

    // Keeps what lies from `low` to `high` along one axis.
    void keep(double from, double to, double low, double high) {
        if (from == to) {
            if (from < low || from > high) end = -1.0;
            return;
        }
        const auto [enter, leave] = std::minmax({(low - from) / (to - from), (high - from) / (to - from)});
        begin = std::max(begin, enter);
        end = std::min(end, leave);
    }
};

std::optional<Part> partWithin(RealPoint a, RealPoint b, const RECTL& box) {
    Part part;
    part.keep(a.x, b.x, box.left, box.right);
    part.keep(a.y, b.y, box.top, box.bottom);
    if (!(part.begin < part.end)) return std::nullopt;
    return part;
}

}  // namespace

std::vector<SeenRun> seenRuns(std::span<const LinePoint> line, const RECTL& box) {
    std::vector<SeenRun> runs;
    double before = 0.0;
    bool goesOn = false;  // the last run ends where the segment begins
    for (std::size_t i = 1; i < line.size(); ++i) {
        const LinePoint& from = line[i - 1];
        const LinePoint& to = line[i];
        const double length = std::hypot(to.world.x - from.world.x, to.world.y - from.world.y);
        const std::optional<Part> part = partWithin(from.device, to.device, box);
        if (part) {
            goesOn = goesOn && part->begin == 0.0;
            const RealPoint entry = between(from.world, to.world, part->begin);
            if (!goesOn) runs.push_back({.points = {entry}, .before = before + length * part->begin, .length = 0.0});
            runs.back().points.push_back(part->end == 1.0 ? to.world : between(from.world, to.world, part->end));
            runs.back().length += length * (part->end - part->begin);
        }
        goesOn = part && part->end == 1.0;
        before += length;
    }
    return runs;
}

}  // namespace morvil::engine
