// PlayerPaths.cpp - path brackets and what is done with finished paths. A path is used once; it is no part of the state that
// SaveDC keeps.
#include "engine/Pixels.h"
#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

// Back within the range of coordinates.
POINTFIX limited(POINTFIX point) { return toFix(fromFix(point)); }

// The same figures with all points in range; `closeAll`: every figure ends where it began.
Path copyOf(const Path& path, bool closeAll) {
    Path copy;
    for (const Subpath& figure : path.subpaths()) {
        if (figure.points.empty()) continue;
        copy.moveTo(limited(figure.points[0]));
        std::size_t next = 1;
        for (const SegmentKind kind : figure.segments) {
            if (kind == SegmentKind::Line) {
                copy.lineTo(limited(figure.points[next]));
                next += 1;
            } else {
                copy.bezierTo(limited(figure.points[next]), limited(figure.points[next + 1]), limited(figure.points[next + 2]));
                next += 3;
            }
        }
        if (closeAll || figure.closed) copy.close();
    }
    if (path.isEllipse()) copy.markEllipse();
    return copy;
}

}  // namespace

void Player::beginPath(const Record&) {
    m_bracket = Bracket::Open;
    m_path = Path();
    m_startFigure = true;
    m_pathIsEllipse = false;
}

void Player::endPath(const Record&) {
    if (!inBracket()) throw DamagedRecord("no path has been begun");
    m_bracket = Bracket::Finished;
}

void Player::closeFigure(const Record&) {
    if (!inBracket()) throw DamagedRecord("no path has been begun");
    if (!m_startFigure) m_path.close();
    m_startFigure = true;
}

void Player::abortPath(const Record&) {
    m_bracket = Bracket::None;
    m_path = Path();
    m_pathIsEllipse = false;
}

void Player::fillPath(const Record&) { fillNow(takePath()); }

void Player::strokePath(const Record&) { strokeNow(takePath()); }

void Player::strokeAndFillPath(const Record&) { strokeAndFillNow(copyOf(takePath(), true)); }

void Player::flattenPath(const Record&) {
    if (m_bracket != Bracket::Finished) throw DamagedRecord("there is no finished path");
    m_path = m_path.flattened({.seen = m_canvas.sight()});
    m_pathIsEllipse = false;
}

// One-pixel lines have no width to widen to: their path stays.
void Player::widenPath(const Record&) {
    if (m_bracket != Bracket::Finished) throw DamagedRecord("there is no finished path");
    const Pen pen = realisePen();
    if (pen.null || !pen.geometric) return;
    const Path outline = morvil::engine::widenPath(m_path, pen, logicalToPage().toXform(), m_canvas.sight(), &m_canvas.dashBudget());
    m_path = copyOf(outline, false);  // it may lie farther out
    m_pathIsEllipse = false;
}

void Player::selectClipPath(const Record& record) {
    const ULONG mode = record.u32(8);
    const Path path = takePath();
    combineClip(Region::fromPath(path, m_state.fillMode == FillMode::Alternate, pageRectangle()), mode);
}

}  // namespace morvil::engine
