// PlayerShapes.cpp - rectangles, ellipses and arcs. The records' boxes hold their edges: what a device context in compatible
// mode left out on the right and at the bottom, the recorder already took away.
#include <cmath>
#include <numbers>

#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

Box readBox(const Record& record) {
    const RECTL box = record.rect(8);
    return Box{static_cast<double>(box.left), static_cast<double>(box.top), static_cast<double>(box.right), static_cast<double>(box.bottom)}
        .ordered();
}

// An inside-frame pen draws its whole width within the box.
Box within(const Box& box, const PenObject& pen) { return pen.lineStyle == kPenInsideFrame ? box.inside(pen.width / 2) : box; }

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

}  // namespace

void Player::rectangle(const Record& record) {
    const Box box = within(readBox(record), *m_state.pen);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    addRectangle(outline, box, m_state.clockwise);
    drawFigure(std::move(path));
}

void Player::roundRectangle(const Record& record) {
    const Box box = within(readBox(record), *m_state.pen);
    const Point corner = record.point(24);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    addRoundRectangle(outline, box, corner.x, corner.y, m_state.clockwise);
    drawFigure(std::move(path));
}

void Player::ellipse(const Record& record) {
    const Box box = within(readBox(record), *m_state.pen);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    addEllipse(outline, box, m_state.clockwise);
    // Turned or sheared it is no longer inscribed in its bounds.
    drawFigure(std::move(path), matrix.axisAligned());
}

void Player::arc(const Record& record) {
    const Arc arc = arcBetween(within(readBox(record), *m_state.pen), record.point(24), record.point(32), m_state.clockwise);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    outline.moveTo(arc.first());
    addArc(outline, arc);
    drawOutline(std::move(path));
}

void Player::arcTo(const Record& record) {
    const Arc arc = arcBetween(within(readBox(record), *m_state.pen), record.point(24), record.point(32), m_state.clockwise);
    Path separate;
    const Matrix matrix = logicalToPage();
    Outline outline(figureFromPosition(separate), matrix);
    outline.lineTo(arc.first());
    addArc(outline, arc);
    m_state.position = arc.last();
    finishLines(separate);
}

void Player::chord(const Record& record) {
    const Arc arc = arcBetween(within(readBox(record), *m_state.pen), record.point(24), record.point(32), m_state.clockwise);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    outline.moveTo(arc.first());
    addArc(outline, arc);
    outline.close();
    drawFigure(std::move(path));
}

void Player::pie(const Record& record) {
    const Arc arc = arcBetween(within(readBox(record), *m_state.pen), record.point(24), record.point(32), m_state.clockwise);
    Path path;
    const Matrix matrix = logicalToPage();
    Outline outline(path, matrix);
    outline.moveTo(arc.centre);
    outline.lineTo(arc.first());
    addArc(outline, arc);
    outline.close();
    drawFigure(std::move(path));
}

void Player::angleArc(const Record& record) {
    constexpr double kTurn = 360.0;
    const double radius = record.u32(16);
    const double start = std::fmod(record.f32(20), kTurn);
    double sweep = record.f32(24);
    // More than one turn covers the circle once and ends where it ends.
    if (std::fabs(sweep) > kTurn) sweep = std::fmod(sweep, kTurn) + std::copysign(kTurn, sweep);
    const Arc arc{record.point(8), radius, radius, radians(start), radians(sweep)};
    Path separate;
    const Matrix matrix = logicalToPage();
    Outline outline(figureFromPosition(separate), matrix);
    outline.lineTo(arc.first());
    addArc(outline, arc);
    m_state.position = arc.last();
    finishLines(separate);
}

}  // namespace morvil::engine
