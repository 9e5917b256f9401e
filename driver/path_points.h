// path_points.h - reads the engine's paths: 28.4 fixed-point coordinates become whole device pixels, rounded toward minus
// infinity. Each helper restarts the path's enumeration.
#pragma once

#include <cstdint>
#include <span>

#include "platform/common/LocalBlock.h"
#include "platform/platform.h"

namespace morvil {

struct PixelOffset {
    std::int32_t x;
    std::int32_t y;
};

constexpr std::int32_t toPixels(FIX coordinate, std::int32_t offset) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(coordinate >> 4) - static_cast<std::uint32_t>(offset));
}

// Calls visit(record) for each record of the path, with or without points. The record that comes with FALSE is the last, and
// valid.
template <typename Visit>
void forEachRecord(PATHOBJ& path, Visit&& visit) {
    PATHOBJ_vEnumStart(&path);
    for (BOOL more = TRUE; more != FALSE;) {
        PATHDATA record{};
        more = PATHOBJ_bEnum(&path, &record);
        if (record.pptfx == nullptr) record.count = 0;
        visit(record);
    }
}

// x and y of a stroke's points, zero-filled.
struct PointArrays {
    LocalBlock<std::int32_t> xs;
    LocalBlock<std::int32_t> ys;
    explicit PointArrays(std::size_t count) : xs(count), ys(count) {}
    [[nodiscard]] bool allocated() const { return xs && ys; }
};

struct PathSummary {
    std::uint64_t points;  // of all records, and one for each closed figure
    bool hasBeziers;
};
PathSummary summarise(PATHOBJ& path);

// Copies every point of the path in order. Behind each closed figure stands the very first point of the path, until the next
// figure's first point takes its place.
BOOL bGetPoints(PATHOBJ& path, std::span<std::int32_t> xs, std::span<std::int32_t> ys, PixelOffset offset);

// Collects one figure after the other in the arrays, in a single walk over the path.
class FigureCollector {
  public:
    FigureCollector(std::span<std::int32_t> xs, std::span<std::int32_t> ys, PixelOffset offset) : m_xs(xs), m_ys(ys), m_offset(offset) {}

    void begin() {
        ++m_figure;
        m_count = 0;
    }
    // Records before the first figure's beginning belong to none.
    void add(const PATHDATA& record);
    [[nodiscard]] std::uint32_t count() const { return m_count; }
    [[nodiscard]] bool begun() const { return m_figure > 0; }

  private:
    void put(std::int32_t x, std::int32_t y);
    void close();

    std::span<std::int32_t> m_xs;
    std::span<std::int32_t> m_ys;
    PixelOffset m_offset;
    int m_figure = 0;  // counts from 1
    std::uint32_t m_count = 0;
};

// Calls visit(points in the arrays, possibly none) for each figure, numbered by the records that begin one. A closed figure ends in its
// first point. REQUIRES: room for summarise(path).points.
template <typename Visit>
void forEachFigure(PATHOBJ& path, PointArrays& arrays, PixelOffset offset, Visit&& visit) {
    FigureCollector figure(arrays.xs.span(), arrays.ys.span(), offset);
    forEachRecord(path, [&](const PATHDATA& record) {
        if ((record.flags & PD_BEGINSUBPATH) != 0) {
            if (figure.begun()) visit(figure.count());
            figure.begin();
        }
        figure.add(record);
    });
    if (figure.begun()) visit(figure.count());
}

}  // namespace morvil
