#include "jobfile/MvPolygonClipping.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "driver/log/Log.h"

namespace morvil {

namespace {

constexpr std::size_t kDumpedPoints = 100;

double roundHalfAwayFromZero(double value) { return std::trunc(value > 0 ? value + 0.5 : value - 0.5); }

bool liesBetween(double value, std::int64_t one, std::int64_t other) {
    return value >= static_cast<double>(std::min(one, other)) && value <= static_cast<double>(std::max(one, other));
}

// One dumped line: to the log, and with a line end to the debugger.
template <typename... Args>
void dumpLine(const WCHAR* text, const Args&... arguments) {
    if (!logEnabled() && !debugOutputWanted()) return;
    const WString line = format(text, arguments...);
    logMorvil(1, kInformation, TEXT("%s"), line, kLogEnd);
    debugPrint(TEXT("%s\n"), line);
}

}  // namespace

std::size_t ClipPointHash::operator()(const ClipPoint& point) const {
    std::uint64_t mixed = (static_cast<std::uint64_t>(static_cast<std::uint32_t>(point.x)) << 32) | static_cast<std::uint32_t>(point.y);
    mixed ^= (static_cast<std::uint64_t>(point.deleted) << 63) ^ (static_cast<std::uint64_t>(point.moved) << 31);
    mixed = (mixed ^ (mixed >> 32)) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(mixed ^ (mixed >> 29));
}

MvPolygonClipping::MvPolygonClipping() {
    debugPrint(TEXT("MvPolygon::MvPolygon\n"));
    debugPrint(TEXT("MvPolygonClipping::MvPolygonClipping finished\n"));
}

MvPolygonClipping::~MvPolygonClipping() {
    debugPrint(TEXT("MvPolygonClipping::MvPolygonClipping finished\n"));  // the constructor's text, on purpose
    debugPrint(TEXT("MvPolygonClipping::~MvPolygonClipping finished\n"));
}

void MvPolygonClipping::setJobArea(std::int32_t width, std::int32_t height) {
    m_width = width;
    m_height = height;
    const std::int64_t right = std::int64_t{width} - 1;
    const std::int64_t bottom = std::int64_t{height} - 1;
    m_edges = {Segment{0, 0, right, 0}, Segment{right, 0, 0, bottom}, Segment{right, bottom, -right, 0}, Segment{0, bottom, 0, -bottom}};
}

std::uint32_t MvPolygonClipping::setPoints(const std::int32_t* xs, const std::int32_t* ys, std::uint32_t count) {
    logMorvil(1, kInformation, TEXT("MvPolygonClipping::setPoints, uiCount=%d"), count, kLogEnd);
    m_PointsOrg.clear();
    m_intersections.clear();
    m_PointsCorrected.clear();
    m_known = {};  // not clear(), which would go through the buckets that a large polygon left
    m_piecePoints.clear();
    m_pieceStarts.clear();
    m_isSplit = false;

    const auto repaired = [](std::int32_t coordinate) {
        if (coordinate != -1) return coordinate;
        logMorvil(1, kInformation, TEXT("MvPolygonClipping::setPoints, -1 corrected"), kLogEnd);
        return std::int32_t{0};
    };
    m_PointsOrg.reserve(count);
    bool anyOutside = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::int32_t x = repaired(xs[i]);
        m_PointsOrg.push_back({.x = x, .y = repaired(ys[i]), .deleted = 0, .moved = 0});
        anyOutside = anyOutside || !isInside(m_PointsOrg.back());
    }
    if (anyOutside) {
        logMorvil(1, kInformation, TEXT("MvPolygonClipping::setPoints point outside of jobdimensions found"), kLogEnd);
        clip();
    } else {
        m_PointsCorrected = m_PointsOrg;
    }
    logMorvil(1, kInformation, TEXT("MvPolygonClipping::setPoints finished"), kLogEnd);
    return count;
}

bool MvPolygonClipping::isInside(const ClipPoint& point) const {
    return point.x >= 0 && point.x < m_width && point.y >= 0 && point.y < m_height;
}

// The outline counts as open: the segment from the last point back to the first is never looked at.
void MvPolygonClipping::clip() {
    const std::size_t count = m_PointsOrg.size();
    for (std::size_t i = 0; i < count; ++i) {
        const ClipPoint point = m_PointsOrg[i];
        if (isInside(point)) {
            m_intersections.clear();
            addIntersection(point);
            moveIntersections(DuplicateTest::No);
        }
        if (i + 1 < count) {
            intersect(point, m_PointsOrg[i + 1]);
            moveIntersections(DuplicateTest::Yes);
        }
        if (i > 0) {
            intersect(point, m_PointsOrg[i - 1]);
            moveIntersections(DuplicateTest::Yes);
        }
    }
    dump();
}

// Collects where the segment meets the four border lines; returns how many points were found.
std::size_t MvPolygonClipping::intersect(const ClipPoint& from, const ClipPoint& to) {
    m_intersections.clear();
    std::uint8_t deleted = 0;
    std::uint8_t moved = 0;
    const double fromX = from.x;
    const double fromY = from.y;
    const double sx = static_cast<double>(to.x) - fromX;
    const double sy = static_cast<double>(to.y) - fromY;
    for (const Segment& edge : m_edges) {
        const auto ex = static_cast<double>(edge.dx);
        const auto ey = static_cast<double>(edge.dy);
        const double denominator = ex * sy - ey * sx;
        if (denominator == 0) continue;  // parallel
        const double t = (ex * (static_cast<double>(edge.startY) - fromY) - ey * (static_cast<double>(edge.startX) - fromX)) / denominator;
        const double exactX = roundHalfAwayFromZero(fromX + sx * t);
        const double exactY = roundHalfAwayFromZero(fromY + sy * t);
        if (!liesBetween(exactX, from.x, to.x) || !liesBetween(exactY, from.y, to.y)) continue;
        if (exactX < 0 || exactX >= m_width || exactY < 0 || exactY >= m_height) continue;

        const auto x = static_cast<std::int32_t>(exactX);
        const auto y = static_cast<std::int32_t>(exactY);
        const ClipPoint crossing{.x = x, .y = y, .deleted = deleted, .moved = moved};
        if (crossing != from && crossing != to) {
            addIntersection({.x = x, .y = y, .deleted = deleted, .moved = 1});
            moved = 1;
            continue;
        }
        const bool isCorner = (x == 0 || x == m_width - 1) && (y == 0 || y == m_height - 1);
        if (isCorner || (isInside(from) && isInside(to))) continue;
        addIntersection({.x = x, .y = y, .deleted = 1, .moved = moved});
        deleted = 1;
    }
    return m_intersections.size();
}

void MvPolygonClipping::addIntersection(const ClipPoint& point) {
    m_intersections.push_back(point);
    debugPrint(TEXT("Add Intersection point, x=%d, y=%d\n"), point.x, point.y);
}

// A duplicate ends the batch: what follows it in the batch is dropped as well, duplicate or not.
void MvPolygonClipping::moveIntersections(DuplicateTest test) {
    for (const ClipPoint& point : m_intersections) {
        const bool isNew = m_known.insert(point).second;
        if (test == DuplicateTest::Yes && !isNew) return;
        m_PointsCorrected.push_back(point);
        debugPrint(TEXT("Add Corrected point, x=%d, y=%d\n"), point.x, point.y);
    }
}

std::uint32_t MvPolygonClipping::getCntPolygons() {
    if (!m_isSplit) split();
    debugPrint(TEXT("Count Polygons=%d, Count corrected=%d\n"), m_pieceCount, m_PointsCorrected.size());
    logMorvil(1, kInformation, TEXT("MvPolygonClipping::getCntPolygons, uiCntPolygons=%d, m_PointsCorrected=%d"), m_pieceCount,
              m_PointsCorrected.size(), kLogEnd);
    return m_pieceCount;
}

// A border point ends the piece that it belongs to and the next point opens a new one; a piece's own first point never ends it.
// Repeated coordinates are merged, also across the gap between two pieces, so a piece may end up without points.
void MvPolygonClipping::split() {
    m_pieceStarts.push_back(0);
    m_pieceCount = 0;
    m_isSplit = true;
    std::int32_t lastX = -1;
    std::int32_t lastY = -1;
    bool isFirst = true;
    for (std::size_t k = 0; k < m_PointsCorrected.size(); ++k) {
        const ClipPoint& point = m_PointsCorrected[k];
        if (point.x != lastX || point.y != lastY) {
            m_piecePoints.push_back(point);
            lastX = point.x;
            lastY = point.y;
        }
        if (!isFirst && (point.moved != 0 || point.deleted != 0)) {
            ++m_pieceCount;
            m_pieceStarts.push_back(m_piecePoints.size());
            isFirst = true;
        } else if (k + 1 != m_PointsCorrected.size()) {
            isFirst = false;
        } else {
            ++m_pieceCount;
            isFirst = true;
        }
    }
}

std::span<const ClipPoint> MvPolygonClipping::getPolygon(std::uint32_t index) const {
    if (m_pieceStarts.empty()) return {};
    const std::size_t piece = std::min<std::size_t>(index, m_pieceStarts.size() - 1);
    const std::size_t end = piece + 1 < m_pieceStarts.size() ? m_pieceStarts[piece + 1] : m_piecePoints.size();
    return std::span(m_piecePoints).subspan(m_pieceStarts[piece], end - m_pieceStarts[piece]);
}

void MvPolygonClipping::dump() const {
    if (!logEnabled() && !debugOutputWanted()) return;
    logMorvil(1, kInformation, TEXT("MvPolygonClipping::dump, m_PointsOrg(%d), m_ItPointsCorrected(%d)"), m_PointsOrg.size(),
              m_PointsCorrected.size(), kLogEnd);
    for (std::size_t i = 0; i < std::min(kDumpedPoints, m_PointsOrg.size()); ++i) {
        const ClipPoint& point = m_PointsOrg[i];
        dumpLine(TEXT("Point original (%d), x=%d, y=%d, moved=%d"), i, point.x, point.y, point.moved);
    }
    for (std::size_t i = 0; i < std::min(kDumpedPoints, m_PointsCorrected.size()); ++i) {
        const ClipPoint& point = m_PointsCorrected[i];
        dumpLine(TEXT("Corrected points (%d), x=%d, y=%d, moved=%d, deleted=%d"), i, point.x, point.y, point.moved, point.deleted);
    }
    logMorvil(1, kInformation, TEXT("MvPolygonClipping::dump finished"), kLogEnd);
}

}  // namespace morvil
