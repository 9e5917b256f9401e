// PlayerLines.cpp - lines, polygons and Bezier curves, in 16 and 32 bit. Their layouts differ only in the size of a point.
#include "engine/metafile/Player.h"
#include "engine/metafile/RecordTypes.h"

namespace morvil::engine {

namespace {

enum PointType : std::uint8_t { kCloseFigure = 1, kLine = 2, kBezier = 4, kMove = 6 };

bool isShort(const Record& record) { return record.type() >= emr::kPOLYBEZIER16 && record.type() <= emr::kPOLYDRAW16; }

std::vector<Point> readPoints(const Record& record, std::size_t offset, std::size_t count) {
    return isShort(record) ? record.points16(offset, count) : record.points32(offset, count);
}

// The points of a record that holds one figure.
std::vector<Point> readFigure(const Record& record) { return readPoints(record, 28, record.u32(24)); }

// The points of a record that holds several figures, one after the other.
std::vector<std::vector<Point>> readFigures(const Record& record) {
    constexpr std::size_t kCounts = 32;
    const std::size_t figures = record.u32(24);
    const std::size_t points = record.u32(28);
    record.require(kCounts, figures, 4, "figures");
    const std::size_t start = kCounts + 4 * figures;
    const std::size_t pointSize = isShort(record) ? 4 : 8;
    record.require(start, points, pointSize, "points");
    std::vector<std::vector<Point>> result(figures);
    std::size_t used = 0;
    for (std::size_t i = 0; i < figures; ++i) {
        const std::size_t count = record.u32(kCounts + 4 * i);
        if (count > points - used) throw DamagedRecord("figure " + std::to_string(i + 1) + " has more points than are left");
        result[i] = readPoints(record, start + pointSize * used, count);
        used += count;
    }
    return result;
}

void addFigure(Outline& outline, const std::vector<Point>& points, bool closed) {
    if (points.size() < 2) return;
    outline.moveTo(points[0]);
    for (std::size_t i = 1; i < points.size(); ++i) outline.lineTo(points[i]);
    if (closed) outline.close();
}

// None at all is harmless: some writers begin each figure so.
void requireCurves(std::size_t pointsAfterFirst) {
    if (pointsAfterFirst % 3 != 0) {
        throw DamagedRecord(std::to_string(pointsAfterFirst) + " points are no whole number of curves");
    }
}

}  // namespace

void Player::moveTo(const Record& record) {
    m_state.position = record.point(8);
    m_startFigure = true;
}

void Player::lineTo(const Record& record) {
    const Point end = record.point(8);
    Path separate;
    const Matrix matrix = logicalToPage();
    Outline(figureFromPosition(separate), matrix).lineTo(end);
    m_state.position = end;
    finishLines(separate);
}

void Player::polyline(const Record& record) {
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    addFigure(outline, readFigure(record), false);
    drawOutline(std::move(path));
}

void Player::polygon(const Record& record) {
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    addFigure(outline, readFigure(record), true);
    drawFigure(std::move(path));
}

void Player::polyBezier(const Record& record) {
    const auto points = readFigure(record);
    if (points.size() < 2) return;
    requireCurves(points.size() - 1);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    outline.moveTo(points[0]);
    for (std::size_t i = 1; i + 2 < points.size(); i += 3) outline.bezierTo(points[i], points[i + 1], points[i + 2]);
    drawOutline(std::move(path));
}

void Player::polylineTo(const Record& record) {
    const auto points = readFigure(record);
    if (points.empty()) return;
    Path separate;
    const Matrix matrix = logicalToPage();
    Outline outline(figureFromPosition(separate), matrix);
    for (const Point& point : points) outline.lineTo(point);
    m_state.position = points.back();
    finishLines(separate);
}

void Player::polyBezierTo(const Record& record) {
    const auto points = readFigure(record);
    requireCurves(points.size());
    if (points.empty()) return;
    Path separate;
    const Matrix matrix = logicalToPage();
    Outline outline(figureFromPosition(separate), matrix);
    for (std::size_t i = 0; i + 2 < points.size(); i += 3) outline.bezierTo(points[i], points[i + 1], points[i + 2]);
    m_state.position = points.back();
    finishLines(separate);
}

void Player::polyPolyline(const Record& record) {
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    for (const auto& figure : readFigures(record)) addFigure(outline, figure, false);
    drawOutline(std::move(path));
}

void Player::polyPolygon(const Record& record) {
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    for (const auto& figure : readFigures(record)) addFigure(outline, figure, true);
    drawFigure(std::move(path));
}

void Player::polyDraw(const Record& record) {
    const std::size_t count = record.u32(24);
    const auto points = readFigure(record);
    const auto types = record.block(28 + count * (isShort(record) ? 4 : 8), count);
    for (std::size_t i = 0; i < count; ++i) {
        const int kind = types[i] & ~kCloseFigure;
        if (kind != kMove && kind != kLine && kind != kBezier) throw DamagedRecord("point " + std::to_string(i + 1) + " has no known kind");
        if (kind != kBezier) continue;
        const bool whole = i + 2 < count && (types[i + 1] & ~kCloseFigure) == kBezier && (types[i + 2] & ~kCloseFigure) == kBezier;
        if (!whole) throw DamagedRecord("the curve at point " + std::to_string(i + 1) + " lacks points");
        i += 2;
    }
    Path separate;
    const Matrix matrix = logicalToPage();
    bool fresh = !inBracket() || m_startFigure;  // the next line starts a figure
    Point start = m_state.position;
    if (inBracket()) m_pathIsEllipse = false;
    Outline outline(inBracket() ? m_path : separate, matrix);
    for (std::size_t i = 0; i < count; ++i) {
        const int kind = types[i] & ~kCloseFigure;
        if (kind == kMove) {
            start = points[i];
            m_state.position = start;
            fresh = true;
            continue;
        }
        if (fresh) outline.moveTo(m_state.position);
        fresh = false;
        if (kind == kLine) {
            outline.lineTo(points[i]);
        } else {
            outline.bezierTo(points[i], points[i + 1], points[i + 2]);
            i += 2;
        }
        m_state.position = points[i];
        if ((types[i] & kCloseFigure) == 0) continue;
        outline.close();
        m_state.position = start;
        fresh = true;
    }
    m_startFigure = fresh;
    finishLines(separate);
}

// One pixel of the page, whatever the scale.
void Player::setPixel(const Record& record) {
    const Point at = logicalToPage().apply(record.point(8));
    Brush brush;
    brush.colour = colour(record.u32(16));
    const LONG x = toPixel(at.x);
    const LONG y = toPixel(at.y);
    constexpr std::uint8_t kPatCopy = 0xF0;
    prepareCanvas();
    m_canvas.patBlt({x, y, x + 1, y + 1}, brush, kPatCopy);
}

}  // namespace morvil::engine
