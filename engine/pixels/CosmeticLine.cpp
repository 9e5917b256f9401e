// CosmeticLine.cpp - lines of one pixel. Along its longer axis a line lights, on each grid line that it crosses, the pixel
// nearest to the crossing (of two equally near the one with the smaller coordinate). At its ends the diamond around each pixel
// decides: a pixel is lit when the line leaves its diamond, so the pixel of the start is lit and that of the end is not.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "engine/EngineState.h"
#include "engine/Pixels.h"
#include "engine/pixels/FixedMath.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/RasterOp.h"

namespace morvil::engine {
namespace {

// Which pixels along a figure are lit, by their count from its start.
class LineStyle {
  public:
    LineStyle(const Pen& pen, const Device* device) {
        if (pen.alternate) {
            m_ends = {1, 2};
            return;
        }
        const Device steps = device == nullptr ? Device{} : *device;
        m_xStep = std::max<LONG>(steps.xStyleStep, 1);
        m_yStep = std::max<LONG>(steps.yStyleStep, 1);
        const double denominator = std::max<LONG>(steps.denStyleStep, 1);
        constexpr double kLongest = 1e12;
        std::int64_t end = 0;
        // An odd list is run through twice, since dashes and gaps take turns.
        const std::size_t count = pen.style.size() * (pen.style.size() % 2 + 1);
        for (std::size_t i = 0; i < count; ++i) {
            const double length = std::clamp(static_cast<double>(pen.style[i % pen.style.size()]) * denominator, 0.0, kLongest);
            end += std::llround(length);
            m_ends.push_back(end);
        }
        if (end == 0) m_ends.clear();
    }

    void restart() { m_position = 0; }
    // The next line begins: style parts that a pixel of it covers, and its pixels before the first that is looked at.
    void beginLine(bool alongX, std::int64_t skipped) {
        m_step = alongX ? m_xStep : m_yStep;
        skip(skipped);
    }
    void skip(std::int64_t pixels) {
        if (!m_ends.empty()) m_position = (m_position + pixels % m_ends.back() * m_step) % m_ends.back();
    }
    // Whether the next pixel is lit.
    bool next() {
        if (m_ends.empty()) return true;
        const auto part = std::upper_bound(m_ends.begin(), m_ends.end(), m_position) - m_ends.begin();
        m_position = (m_position + m_step) % m_ends.back();
        return part % 2 == 0;
    }

  private:
    std::vector<std::int64_t> m_ends;  // of each dash and gap; empty: solid
    std::int64_t m_position = 0;
    LONG m_xStep = 1;
    LONG m_yStep = 1;
    LONG m_step = 1;
};

// Nearest pixel, the smaller of two equally near.
std::int64_t nearestPixelTo(std::int64_t value) { return (value + kFixOne / 2 - 1) >> 4; }

class LinePainter {
  public:
    LinePainter(RowPainter& painter, const ClipRows& rows, LineStyle& style) : m_painter(painter), m_rows(rows), m_style(style) {}

    void draw(POINTFIX from, POINTFIX to) {
        from = withinReach(from);
        to = withinReach(to);
        m_alongX = std::abs(to.x - from.x) >= std::abs(to.y - from.y);
        // u runs along the line, always upwards; v across.
        std::int64_t u0 = m_alongX ? from.x : from.y;
        std::int64_t u1 = m_alongX ? to.x : to.y;
        const std::int64_t v0 = m_alongX ? from.y : from.x;
        const std::int64_t v1 = m_alongX ? to.y : to.x;
        if (u0 == u1) return;
        m_mirrored = u1 < u0;
        if (m_mirrored) {
            u0 = -u0;
            u1 = -u1;
        }
        std::int64_t first = -floorDivide(-u0, kFixOne);
        if (inDiamond(u0, v0, first - 1, nearestPixelTo(v0))) --first;
        std::int64_t end = -floorDivide(-u1, kFixOne);  // one past the last
        const std::int64_t du = u1 - u0;
        const std::int64_t dv = v1 - v0;
        if (end > first) {
            // Nearest pixel to v0 + dv * (16 * u - u0) / du.
            const auto across = [&](std::int64_t u) { return v0 * du + dv * (u * kFixOne - u0) + (kFixOne / 2) * du - 1; };
            const std::int64_t divisor = du * kFixOne;
            if (inDiamond(u1, v1, end - 1, floorDivide(across(end - 1), divisor))) --end;
            drawPixels(first, end, across, dv * kFixOne, divisor);
        }
    }

  private:
    static bool inDiamond(std::int64_t u, std::int64_t v, std::int64_t pixelU, std::int64_t pixelV) {
        return std::abs(u - pixelU * kFixOne) + std::abs(v - pixelV * kFixOne) < kFixOne / 2;
    }

    template <typename Across>
    void drawPixels(std::int64_t first, std::int64_t end, const Across& across, std::int64_t step, std::int64_t divisor) {
        // Only the part beside the clip's box is walked; the style counts the rest.
        const RECTL& box = m_rows.bounds();
        std::int64_t low = m_alongX ? box.left : box.top;
        std::int64_t high = m_alongX ? box.right : box.bottom;
        if (m_mirrored) {
            const std::int64_t swapped = 1 - high;
            high = 1 - low;
            low = swapped;
        }
        const std::int64_t begin = std::clamp(low, first, std::max(first, end));
        const std::int64_t stop = std::clamp(high, begin, std::max(begin, end));
        m_style.beginLine(m_alongX, begin - first);
        SteppedQuotient v(across(begin), step, divisor);
        std::int64_t runStart = begin;
        std::int64_t runV = v.value();
        bool lit = false;
        for (std::int64_t u = begin; u < stop; ++u) {
            const bool nowLit = m_style.next();
            if (nowLit != lit || v.value() != runV) {
                if (lit) paintRun(runStart, u, runV);
                runStart = u;
                runV = v.value();
                lit = nowLit;
            }
            v.advance();
        }
        if (lit) paintRun(runStart, stop, runV);
        m_style.skip(std::max<std::int64_t>(end - stop, 0));
    }

    void paintRun(std::int64_t from, std::int64_t to, std::int64_t v) {
        if (m_mirrored) {
            const std::int64_t swapped = 1 - to;
            to = 1 - from;
            from = swapped;
        }
        const auto u0 = static_cast<LONG>(from);
        const auto u1 = static_cast<LONG>(to);
        const auto line = static_cast<LONG>(v);
        const RECTL run = m_alongX ? RECTL{u0, line, u1, line + 1} : RECTL{line, u0, line + 1, u1};
        m_rows.clip(run, [this](const RECTL& part) { m_painter.paintRectangle(part); });
    }

    RowPainter& m_painter;
    const ClipRows& m_rows;
    LineStyle& m_style;
    bool m_alongX = true;
    bool m_mirrored = false;
};

}  // namespace

void strokeCosmetic(EngineSurface& surface, const Path& path, const EngineClip& clip, const EngineBrush& brush, const Pen& pen, int rop2) {
    if (pen.null || path.empty()) return;
    const Path flat = path.flattened();
    const RECTL box = flat.bounds();
    const RECTL pixels{(box.left >> 4) - 1, (box.top >> 4) - 1, (box.right >> 4) + 2, (box.bottom >> 4) + 2};
    const ClipRows rows(&clip, intersection(pixels, boundsOf(surface)));
    if (rows.empty()) return;
    const std::uint8_t rop = ropOfMix(rop2);
    RowPainter painter(surface, &brush, nullptr, {rop, rop}, rows.bounds());
    LineStyle style(pen, deviceOf(surface.hdev));
    LinePainter line(painter, rows, style);
    for (const Subpath& figure : flat.subpaths()) {
        style.restart();
        for (std::size_t i = 1; i < figure.points.size(); ++i) line.draw(figure.points[i - 1], figure.points[i]);
        if (figure.closed) line.draw(figure.points.back(), figure.points.front());
    }
}

}  // namespace morvil::engine
