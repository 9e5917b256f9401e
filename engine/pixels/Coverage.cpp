// Coverage.cpp - scan conversion by exact integer arithmetic. The drawing libraries at hand light other pixels than the platform's
// rule names (docs/engine-choices.md says which); here every crossing of an edge and a pixel row is a fraction whose numerator
// is carried from row to row, so that the same path gives the same pixels everywhere.
#include "engine/pixels/Coverage.h"

#include <algorithm>
#include <optional>

#include "engine/pixels/FixedMath.h"
#include "engine/pixels/Formats.h"

namespace morvil::engine {
namespace {

// The most frequent path of all: one rectangle along the axes.
std::optional<RECTL> asRectangle(const Path& path) {
    if (path.subpaths().size() != 1 || path.hasBeziers()) return std::nullopt;
    const std::vector<POINTFIX>& p = path.subpaths().front().points;
    const bool repeatsFirst = p.size() == 5 && p[4].x == p[0].x && p[4].y == p[0].y;
    if (p.size() != 4 && !repeatsFirst) return std::nullopt;
    const bool acrossFirst = p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
    const bool downFirst = p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
    if (!acrossFirst && !downFirst) return std::nullopt;
    const auto [left, right] = std::minmax(p[0].x, p[2].x);
    const auto [top, bottom] = std::minmax(p[0].y, p[2].y);
    return RECTL{ceilPixel(left), ceilPixel(top), ceilPixel(right), ceilPixel(bottom)};
}

// An edge and where it crosses the current row: the column is the first pixel whose centre is not to the left of the edge.
struct Edge {
    LONG firstRow;
    LONG endRow;
    int direction;  // 1 when the path runs downwards here
    SteppedQuotient column;
};

bool byColumn(const Edge& a, const Edge& b) { return a.column.value() < b.column.value(); }

std::optional<Edge> makeEdge(POINTFIX from, POINTFIX to, const RECTL& area) {
    POINTFIX upper = withinReach(from);
    POINTFIX lower = withinReach(to);
    int direction = 1;
    if (upper.y > lower.y) {
        std::swap(upper, lower);
        direction = -1;
    }
    // A row counts from the upper end, inclusive, to the lower, exclusive; a level edge crosses none.
    const LONG firstRow = std::max(ceilPixel(upper.y), area.top);
    const LONG endRow = std::min(ceilPixel(lower.y), area.bottom);
    if (firstRow >= endRow) return std::nullopt;
    const std::int64_t dx = static_cast<std::int64_t>(lower.x) - upper.x;
    const std::int64_t dy = static_cast<std::int64_t>(lower.y) - upper.y;
    const std::int64_t divisor = dy * kFixOne;
    const std::int64_t down = static_cast<std::int64_t>(firstRow) * kFixOne - upper.y;
    const std::int64_t crossing = upper.x * dy + dx * down + (divisor - 1);  // rounded up
    return Edge{.firstRow = firstRow, .endRow = endRow, .direction = direction, .column = SteppedQuotient(crossing, dx * kFixOne, divisor)};
}

// A figure that lies beside the area turns as often one way as the other before the area begins, or only behind it.
bool liesBeside(const Subpath& figure, const RECTL& area) {
    const auto [left, right] = std::minmax_element(figure.points.begin(), figure.points.end(), [](POINTFIX a, POINTFIX b) { return a.x < b.x; });
    return ceilPixel(withinReach(*right).x) <= area.left || ceilPixel(withinReach(*left).x) >= area.right;
}

// In the order in which a scan meets them: by row, then by column.
std::vector<Edge> edgesOf(const Path& flat, const RECTL& area) {
    std::vector<Edge> edges;
    for (const Subpath& figure : flat.subpaths()) {
        if (liesBeside(figure, area)) continue;
        POINTFIX last = figure.points.back();  // open figures are filled as if closed
        for (const POINTFIX& point : figure.points) {
            if (const std::optional<Edge> edge = makeEdge(last, point, area)) edges.push_back(*edge);
            last = point;
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.firstRow != b.firstRow ? a.firstRow < b.firstRow : byColumn(a, b); });
    return edges;
}

// Edges hardly change places from row to row, so insertion is cheap. Where they do, as in a scribble that crosses itself all the
// time, the work is left to a sort.
void sortByColumn(std::vector<Edge>& active) {
    constexpr std::size_t kMovesPerEdge = 16;
    std::size_t moves = active.size() * kMovesPerEdge;
    for (std::size_t i = 1; i < active.size(); ++i) {
        if (active[i - 1].column.value() <= active[i].column.value()) continue;
        const Edge moving = active[i];
        std::size_t place = i;
        for (; place > 0 && active[place - 1].column.value() > moving.column.value(); --place) active[place] = active[place - 1];
        active[place] = moving;
        if (i - place > moves) return std::sort(active.begin(), active.end(), byColumn);
        moves -= i - place;
    }
}

// Takes the edges that begin in this row in among the others, which are sorted.
void takeIn(std::vector<Edge>& active, const std::vector<Edge>& edges, std::size_t& next, LONG y) {
    const auto before = static_cast<std::ptrdiff_t>(active.size());
    while (next < edges.size() && edges[next].firstRow == y) active.push_back(edges[next++]);
    std::inplace_merge(active.begin(), active.begin() + before, active.end(), byColumn);
}

void emitRow(const std::vector<Edge>& active, bool alternate, LONG y, const RECTL& area, const std::function<void(const RECTL&)>& sink) {
    int winding = 0;
    std::int64_t begin = 0;
    for (const Edge& edge : active) {
        const bool wasInside = alternate ? (winding & 1) != 0 : winding != 0;
        winding += edge.direction;
        const bool isInside = alternate ? (winding & 1) != 0 : winding != 0;
        if (wasInside == isInside) continue;
        const std::int64_t column = std::clamp<std::int64_t>(edge.column.value(), area.left, area.right);
        if (isInside) {
            begin = column;
        } else if (begin < column) {
            sink({static_cast<LONG>(begin), y, static_cast<LONG>(column), y + 1});
        }
    }
}

}  // namespace

void coverPath(const Path& path, bool alternate, const RECTL& within, const std::function<void(const RECTL&)>& sink) {
    if (path.empty() || isEmpty(within)) return;
    if (const std::optional<RECTL> rectangle = asRectangle(path)) {
        const RECTL covered = intersection(*rectangle, within);
        if (!isEmpty(covered)) sink(covered);
        return;
    }
    const std::vector<Edge> edges = edgesOf(path.flattened(), within);
    std::vector<Edge> active;
    std::size_t next = 0;
    for (LONG y = edges.empty() ? within.bottom : edges.front().firstRow; y < within.bottom; ++y) {
        if (active.empty() && next == edges.size()) return;
        sortByColumn(active);
        takeIn(active, edges, next, y);
        emitRow(active, alternate, y, within, sink);
        std::erase_if(active, [y](const Edge& edge) { return edge.endRow == y + 1; });
        for (Edge& edge : active) edge.column.advance();
    }
}

}  // namespace morvil::engine
