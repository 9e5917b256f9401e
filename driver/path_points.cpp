#include "driver/path_points.h"

#include "driver/log/Log.h"

namespace morvil {

namespace {

bool closesFigure(const PATHDATA& record) { return (record.flags & PD_CLOSEFIGURE) != 0; }

}  // namespace

PathSummary summarise(PATHOBJ& path) {
    // An ellipse that comes whole does not say that it is made of curves, but its records do.
    PathSummary summary{0, (path.fl & PO_BEZIERS) != 0};
    forEachRecord(path, [&](const PATHDATA& record) {
        summary.points += record.count;
        if (closesFigure(record)) ++summary.points;
        if ((record.flags & PD_BEZIERS) != 0) summary.hasBeziers = true;
    });
    return summary;
}

BOOL bGetPoints(PATHOBJ& path, std::span<std::int32_t> xs, std::span<std::int32_t> ys, PixelOffset offset) {
    std::size_t count = 0;
    forEachRecord(path, [&](const PATHDATA& record) {
        for (ULONG i = 0; i < record.count && count < xs.size(); ++i, ++count) {
            xs[count] = toPixels(record.pptfx[i].x, offset.x);
            ys[count] = toPixels(record.pptfx[i].y, offset.y);
        }
        if (!closesFigure(record) || count >= xs.size()) return;
        xs[count] = xs[0];
        ys[count] = ys[0];
        logRend(1, kInformation, TEXT("bGetPoints close figure x=%d, y=%d"), xs[count], ys[count], kLogEnd);
    });
    return TRUE;
}

void FigureCollector::put(std::int32_t x, std::int32_t y) {
    if (m_count >= m_xs.size()) return;
    m_xs[m_count] = x;
    m_ys[m_count] = y;
    ++m_count;
}

void FigureCollector::add(const PATHDATA& record) {
    if (m_figure == 0) return;
    for (ULONG i = 0; i < record.count; ++i) put(toPixels(record.pptfx[i].x, m_offset.x), toPixels(record.pptfx[i].y, m_offset.y));
    if (closesFigure(record)) close();
}

void FigureCollector::close() {
    if (m_count == 0) return;
    const std::uint32_t last = m_count - 1;
    if (m_xs[last] == m_xs[0] && m_ys[last] == m_ys[0]) return;
    logRend(1, kInformation, TEXT("Curve[%d], PointClose=%d"), m_figure, m_count, kLogEnd);
    logRend(1, kInformation, TEXT("pX[0]=%d, pX[j-1]=%d, pY[0]=%d, pY[j-1]=%d"), m_xs[0], m_xs[last], m_ys[0], m_ys[last], kLogEnd);
    put(m_xs[0], m_ys[0]);
}

}  // namespace morvil
