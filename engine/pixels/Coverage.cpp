// Coverage.cpp - scan conversion by AGG. Only where an edge crosses a row of pixels is computed here, as a fraction whose numerator
// is carried from row to row: the platform's rule asks for it exactly, and the drawing libraries at hand round it
// (docs/engine-choices.md says which). So the same path gives the same pixels everywhere.
#include "engine/pixels/Coverage.h"

#include <agg_rasterizer_scanline_aa_nogamma.h>
#include <agg_rasterizer_sl_clip.h>
#include <agg_scanline_bin.h>

#include <algorithm>
#include <limits>
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

// By row, as a scan meets them.
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
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.firstRow < b.firstRow; });
    return edges;
}

// One row of pixels after the other. AGG sorts the crossings, counts the turns by either rule and joins the spans. It gets
// every crossing as the left side of a whole pixel, so none is ever covered in part. Turns are counted up to 32767.
class PixelRow {
  public:
    explicit PixelRow(bool alternate) { m_rasterizer.filling_rule(alternate ? agg::fill_even_odd : agg::fill_non_zero); }

    void clear() { m_rasterizer.reset(); }
    void cross(int column, int direction) {
        const int x = column * agg::poly_subpixel_scale;
        const int from = direction > 0 ? 0 : agg::poly_subpixel_scale;
        m_rasterizer.edge(x, from, x, agg::poly_subpixel_scale - from);
    }
    // Hands out first column and end column of each span.
    template <typename Sink>
    void sweep(Sink sink) {
        if (!m_rasterizer.rewind_scanlines()) return;
        m_spans.reset(m_rasterizer.min_x(), m_rasterizer.max_x());
        if (!m_rasterizer.sweep_scanline(m_spans)) return;
        auto span = m_spans.begin();
        for (unsigned i = 0; i < m_spans.num_spans(); ++i, ++span) sink(span->x, span->x + span->len);
    }

  private:
    static constexpr unsigned kNoLimit = std::numeric_limits<unsigned>::max();  // by default AGG drops crossings after four million

    agg::rasterizer_scanline_aa_nogamma<agg::rasterizer_sl_no_clip> m_rasterizer{kNoLimit};
    agg::scanline32_bin m_spans;
};

}  // namespace

void coverPath(const Path& path, bool alternate, const RECTL& within, const std::function<void(const RECTL&)>& sink) {
    if (path.empty() || isEmpty(within)) return;
    if (const std::optional<RECTL> rectangle = asRectangle(path)) {
        const RECTL covered = intersection(*rectangle, within);
        if (!isEmpty(covered)) sink(covered);
        return;
    }
    const std::vector<Edge> edges = edgesOf(path.flattened({.seen = within}), within);
    std::vector<Edge> active;
    std::size_t next = 0;
    PixelRow row(alternate);
    const std::int64_t width = static_cast<std::int64_t>(within.right) - within.left;
    for (LONG y = edges.empty() ? within.bottom : edges.front().firstRow; y < within.bottom; ++y) {
        if (active.empty() && next == edges.size()) return;
        while (next < edges.size() && edges[next].firstRow == y) active.push_back(edges[next++]);
        row.clear();
        for (Edge& edge : active) {
            row.cross(static_cast<int>(std::clamp<std::int64_t>(edge.column.value() - within.left, 0, width)), edge.direction);
            edge.column.advance();
        }
        row.sweep([&](LONG begin, LONG end) { sink({within.left + begin, y, within.left + end, y + 1}); });
        std::erase_if(active, [y](const Edge& edge) { return edge.endRow == y + 1; });
    }
}

}  // namespace morvil::engine
