// PlayerPaths.cpp - path brackets and what is done with finished paths. A path is used once; it is no part of the state that
// SaveDC keeps.
#include "engine/Pixels.h"
#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

// Every figure ends where it began.
Path closedPath(const Path& path) {
    Path closed;
    for (const Subpath& figure : path.subpaths()) {
        if (figure.points.empty()) continue;
        closed.moveTo(figure.points[0]);
        std::size_t next = 1;
        for (const SegmentKind kind : figure.segments) {
            if (kind == SegmentKind::Line) {
                closed.lineTo(figure.points[next]);
                next += 1;
            } else {
                closed.bezierTo(figure.points[next], figure.points[next + 1], figure.points[next + 2]);
                next += 3;
            }
        }
        closed.close();
    }
    if (path.isEllipse()) closed.markEllipse();
    return closed;
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

void Player::strokeAndFillPath(const Record&) { strokeAndFillNow(closedPath(takePath())); }

void Player::flattenPath(const Record&) {
    if (m_bracket != Bracket::Finished) throw DamagedRecord("there is no finished path");
    m_path = m_path.flattened();
    m_pathIsEllipse = false;
}

// One-pixel lines have no width to widen to: their path stays.
void Player::widenPath(const Record&) {
    if (m_bracket != Bracket::Finished) throw DamagedRecord("there is no finished path");
    const Pen pen = realisePen();
    if (pen.null || !pen.geometric) return;
    m_path = morvil::engine::widenPath(m_path, pen, logicalToPage().toXform());
    m_pathIsEllipse = false;
}

void Player::selectClipPath(const Record& record) {
    const ULONG mode = record.u32(8);
    const Path path = takePath();
    combineClip(Region::fromPath(path, m_state.fillMode == FillMode::Alternate, pageRectangle()), mode);
}

}  // namespace morvil::engine
