// PlayerGradients.cpp - gradient fills: upright rectangles as pictures of one row or column, all else as triangles pixel by pixel.
#include <algorithm>
#include <array>
#include <cmath>

#include "engine/metafile/Dib.h"
#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

constexpr std::uint8_t kSourceCopy = 0xCC;
enum GradientMode : ULONG { kHorizontal = 0, kVertical = 1, kTriangles = 2 };

struct Shade {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;  // 0 to 65535 each
};

struct Vertex {
    Point at;  // page pixels
    Shade shade;
};

Shade mix(const Shade& a, const Shade& b, double part) {
    return {a.red + (b.red - a.red) * part, a.green + (b.green - a.green) * part, a.blue + (b.blue - a.blue) * part};
}

COLORREF toColour(const Shade& shade) {
    const auto byte = [](double value) { return static_cast<unsigned>(std::clamp(value, 0.0, 65535.0)) >> 8; };
    return RGB(byte(shade.red), byte(shade.green), byte(shade.blue));
}

Vertex readVertex(const Record& record, std::size_t index, const Matrix& toPage) {
    const std::size_t at = 36 + 16 * index;
    return {toPage.apply(record.point(at)),
            {static_cast<double>(record.u16(at + 8)), static_cast<double>(record.u16(at + 10)), static_cast<double>(record.u16(at + 12))}};
}

}  // namespace

void Player::gradientFill(const Record& record) {
    constexpr std::size_t kVertices = 36;
    const std::size_t vertexCount = record.u32(24);
    const std::size_t figureCount = record.u32(28);
    const ULONG mode = record.u32(32);
    if (mode > kTriangles) throw DamagedRecord("there is no gradient mode " + std::to_string(mode));
    record.require(kVertices, vertexCount, 16, "vertices");
    const std::size_t corners = mode == kTriangles ? 3 : 2;
    const std::size_t indexes = kVertices + 16 * vertexCount;
    record.require(indexes, figureCount, 4 * corners, "figures");
    const Matrix matrix = logicalToPage();
    const auto vertex = [&](std::size_t figure, std::size_t corner) {
        const std::size_t index = record.u32(indexes + 4 * (corners * figure + corner));
        if (index >= vertexCount) throw DamagedRecord("there is no vertex " + std::to_string(index));
        return readVertex(record, index, matrix);
    };

    const auto triangle = [this](const Vertex& a, const Vertex& b, const Vertex& c) {
        const double area = (b.at.x - a.at.x) * (c.at.y - a.at.y) - (c.at.x - a.at.x) * (b.at.y - a.at.y);
        if (area == 0.0) return;
        const RECTL box{toPixel(std::min({a.at.x, b.at.x, c.at.x})) - 1, toPixel(std::min({a.at.y, b.at.y, c.at.y})) - 1,
                        toPixel(std::max({a.at.x, b.at.x, c.at.x})) + 1, toPixel(std::max({a.at.y, b.at.y, c.at.y})) + 1};
        drawComputed(box, kSourceCopy, [&](double x, double y, std::span<COLORREF> row) {
            for (COLORREF& pixel : row) {
                const double partB = ((x - a.at.x) * (c.at.y - a.at.y) - (c.at.x - a.at.x) * (y - a.at.y)) / area;
                const double partC = ((b.at.x - a.at.x) * (y - a.at.y) - (x - a.at.x) * (b.at.y - a.at.y)) / area;
                const double partA = 1.0 - partB - partC;
                x += 1.0;
                if (partA < 0.0 || partB < 0.0 || partC < 0.0) continue;
                const auto blend = [&](double first, double second, double third) {
                    return first * partA + second * partB + third * partC;
                };
                pixel = toColour({blend(a.shade.red, b.shade.red, c.shade.red), blend(a.shade.green, b.shade.green, c.shade.green),
                                  blend(a.shade.blue, b.shade.blue, c.shade.blue)});
            }
        });
    };

    // One row or column of colours over the visible part, spread over the rectangle by the canvas.
    const auto upright = [this, mode](const Vertex& first, const Vertex& second) {
        const RECTL page = pageRectangle();
        const RECTL whole{toPixel(std::min(first.at.x, second.at.x)), toPixel(std::min(first.at.y, second.at.y)),
                          toPixel(std::max(first.at.x, second.at.x)), toPixel(std::max(first.at.y, second.at.y))};
        const RECTL visible{std::max(whole.left, page.left), std::max(whole.top, page.top), std::min(whole.right, page.right),
                            std::min(whole.bottom, page.bottom)};
        if (visible.left >= visible.right || visible.top >= visible.bottom) return;
        const bool along = mode == kHorizontal;
        const LONG steps = along ? visible.right - visible.left : visible.bottom - visible.top;
        Image image = along ? makeColourImage(steps, 1) : makeColourImage(1, steps);
        const double from = along ? first.at.x : first.at.y;
        const double to = along ? second.at.x : second.at.y;
        for (LONG i = 0; i < steps; ++i) {
            const double at = (along ? visible.left : visible.top) + i + 0.5;
            const COLORREF pixel = toColour(mix(first.shade, second.shade, std::clamp((at - from) / (to - from), 0.0, 1.0)));
            setColour(image, along ? i : 0, along ? 0 : i, pixel);
        }
        prepareCanvas();
        m_canvas.drawImage(visible, image, {0, 0, image.width, image.height}, COLORONCOLOR, kSourceCopy << 8 | kSourceCopy,
                           realiseBrush(*m_state.brush), nullptr, {0, 0});
    };

    for (std::size_t i = 0; i < figureCount; ++i) {
        if (mode == kTriangles) {
            triangle(vertex(i, 0), vertex(i, 1), vertex(i, 2));
            continue;
        }
        const Vertex first = vertex(i, 0);
        const Vertex second = vertex(i, 1);
        if (matrix.axisAligned()) {
            upright(first, second);
            continue;
        }
        // Turned: the two other corners of the logical rectangle, then two triangles.
        const Matrix back = matrix.inverse();
        const Point a = back.apply(first.at);
        const Point b = back.apply(second.at);
        const Vertex across{matrix.apply({b.x, a.y}), mode == kHorizontal ? second.shade : first.shade};
        const Vertex below{matrix.apply({a.x, b.y}), mode == kHorizontal ? first.shade : second.shade};
        triangle(first, across, second);
        triangle(first, second, below);
    }
}

}  // namespace morvil::engine
