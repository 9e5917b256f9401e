// PlayerDrawing.cpp - what all drawing handlers share: the transform, pens and brushes made ready, the way to the canvas.
#include <algorithm>
#include <cmath>

#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

// An old-style pen up to this device width is a one-pixel line; above, an outline to be filled.
constexpr double kWidestCosmetic = 1.5;
constexpr int kLastHatch = 5;

// Dash and gap lengths of the platform's line styles, in style steps of a cosmetic pen.
std::vector<float> cosmeticStyle(ULONG lineStyle) {
    switch (lineStyle) {
        case kPenDash: return {6, 2};
        case kPenDot: return {1, 1};
        case kPenDashDot: return {3, 2, 1, 2};
        case kPenDashDotDot: return {3, 1, 1, 1, 1, 1};
        default: return {};
    }
}

// The same in pen widths of a geometric pen.
std::vector<float> geometricStyle(ULONG lineStyle, double width) {
    std::vector<float> style;
    switch (lineStyle) {
        case kPenDash: style = {3, 1}; break;
        case kPenDot: style = {1, 1}; break;
        case kPenDashDot: style = {3, 1, 1, 1}; break;
        case kPenDashDotDot: style = {3, 1, 1, 1, 1, 1}; break;
        default: break;
    }
    for (float& length : style) length = static_cast<float>(length * width);
    return style;
}

// A style whose lengths are all 0 would never get on: it is a solid line.
std::vector<float> usable(std::vector<float> style) {
    const bool some = std::ranges::any_of(style, [](float length) { return length > 0.0F; });
    return some ? std::move(style) : std::vector<float>();
}

}  // namespace

Matrix Player::logicalToPage() const {
    const Matrix page = m_state.world * m_state.mapping.matrix() * m_deviceToPage;
    if (!m_state.mirrored) return page;
    // Right to left: mirrored within the picture.
    return page * Matrix{-1.0, 0.0, 0.0, 1.0, static_cast<double>(m_target.left) + m_target.right + 1.0, 0.0};
}

RECTL Player::pageRectangle() const {
    const SIZEL size = m_canvas.pageSize();
    return {0, 0, size.cx, size.cy};
}

Brush Player::realiseBrush(const BrushObject& object) const {
    Brush brush;
    brush.foreground = colour(m_state.textColour);
    brush.background = colour(m_state.backgroundColour);
    const Point origin = m_deviceToPage.apply(m_state.brushOrigin);
    brush.origin = {toPixel(origin.x), toPixel(origin.y)};
    switch (object.style) {
        case BrushStyle::Null: brush.kind = BrushKind::Null; break;
        case BrushStyle::Solid: brush.colour = colour(object.colour); break;
        case BrushStyle::Hatched:
            brush.colour = colour(object.colour);
            if (object.hatch > kLastHatch) break;  // beyond the hatches: solid
            brush.kind = BrushKind::Hatch;
            brush.hatch = static_cast<int>(object.hatch);
            brush.transparent = !m_state.opaqueBackground;
            break;
        case BrushStyle::Monochrome:
        case BrushStyle::Pattern:
            brush.kind = BrushKind::Pattern;
            brush.pattern = object.pattern;
            brush.monochromePattern = object.style == BrushStyle::Monochrome;
            break;
    }
    return brush;
}

Pen Player::realisePen() const {
    const PenObject& object = *m_state.pen;
    Pen pen;
    pen.null = object.lineStyle == kPenNull || object.brush.style == BrushStyle::Null;
    if (pen.null) return pen;
    pen.brush = realiseBrush(object.brush);
    pen.join = object.join;
    pen.endCap = object.endCap;
    pen.miterLimit = m_state.miterLimit;
    const double deviceWidth = object.width * std::sqrt(std::fabs(logicalToPage().determinant()));
    const bool wideOld = object.kind == PenObject::Kind::Old && deviceWidth > kWidestCosmetic;
    pen.geometric = wideOld || (object.kind == PenObject::Kind::Geometric && object.width > 0.0);
    if (!pen.geometric) {
        pen.width = 1.0;
        pen.alternate = object.lineStyle == kPenAlternate;
        pen.style = usable(object.lineStyle == kPenUserStyle ? object.userStyle : cosmeticStyle(object.lineStyle));
        if (pen.brush.kind != BrushKind::Solid) pen.brush.kind = BrushKind::Solid;
        return pen;
    }
    pen.width = object.width;
    if (wideOld) return pen;  // wider than a device unit: old-style pens are solid
    pen.style = usable(object.lineStyle == kPenUserStyle ? object.userStyle : geometricStyle(object.lineStyle, object.width));
    return pen;
}

void Player::prepareCanvas() {
    if (!m_told.anything || m_told.clip != m_state.clip || m_told.metaClip != m_state.metaClip) {
        std::optional<Region> clip;
        if (m_state.clip) clip = *m_state.clip;
        if (m_state.metaClip && clip) clip->intersect(*m_state.metaClip);
        if (m_state.metaClip && !clip) clip = *m_state.metaClip;
        m_canvas.setClip(std::move(clip));
        m_told.clip = m_state.clip;
        m_told.metaClip = m_state.metaClip;
    }
    const COLORREF text = colour(m_state.textColour);
    const COLORREF background = colour(m_state.backgroundColour);
    if (!m_told.anything || m_told.text != text || m_told.background != background) m_canvas.setTextColours(text, background);
    m_told.text = text;
    m_told.background = background;
    m_told.anything = true;
}

void Player::strokeNow(const Path& path) {
    const Pen pen = realisePen();
    if (pen.null || path.empty()) return;
    prepareCanvas();
    m_canvas.strokePath(path, pen, logicalToPage().toXform(), m_state.rop2);
}

void Player::fillNow(const Path& path) {
    const Brush brush = realiseBrush(*m_state.brush);
    if (brush.kind == BrushKind::Null || path.empty()) return;
    prepareCanvas();
    m_canvas.fillPath(path, brush, m_state.fillMode, m_state.rop2);
}

void Player::strokeAndFillNow(const Path& path) {
    const Brush brush = realiseBrush(*m_state.brush);
    const Pen pen = realisePen();
    if (pen.null) {
        fillNow(path);
    } else if (brush.kind == BrushKind::Null) {
        strokeNow(path);
    } else if (!path.empty()) {
        prepareCanvas();
        m_canvas.strokeAndFillPath(path, pen, logicalToPage().toXform(), brush, m_state.fillMode, m_state.rop2);
    }
}

void Player::drawOutline(Path path) {
    if (!inBracket()) {
        strokeNow(path);
        return;
    }
    m_path.append(path);
    m_pathIsEllipse = false;
    m_startFigure = true;
}

void Player::drawFigure(Path path, bool ellipse) {
    if (inBracket()) {
        m_pathIsEllipse = ellipse && m_path.empty();
        m_path.append(path);
        m_startFigure = true;
        return;
    }
    if (ellipse) path.markEllipse();
    strokeAndFillNow(path);
}

Path& Player::figureFromPosition(Path& separate) {
    Path& path = inBracket() ? m_path : separate;
    if (!inBracket() || m_startFigure) path.moveTo(toFix(logicalToPage().apply(m_state.position)));
    if (inBracket()) {
        m_startFigure = false;
        m_pathIsEllipse = false;
    }
    return path;
}

void Player::finishLines(Path& separate) {
    if (!inBracket()) strokeNow(separate);
}

// The finished path, which is used up.
Path Player::takePath() {
    if (m_bracket != Bracket::Finished) throw DamagedRecord("there is no finished path");
    m_bracket = Bracket::None;
    Path path = std::move(m_path);
    m_path = Path();
    if (m_pathIsEllipse) path.markEllipse();
    m_pathIsEllipse = false;
    return path;
}

}  // namespace morvil::engine
