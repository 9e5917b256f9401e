// Brushes.cpp - brushes in the pixel values of one surface.
#include <algorithm>
#include <array>

#include "engine/Pixels.h"
#include "engine/pixels/Colours.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/Services.h"
#include "engine/pixels/Translation.h"

namespace morvil::engine {
namespace {

constexpr ULONG kNotSolid = 0xFFFFFFFF;
constexpr LONG kHatchSide = 8;

// Rows of the six hatches from HS_HORIZONTAL to HS_DIAGCROSS; the leftmost pixel is the highest bit.
constexpr std::array<std::array<std::uint8_t, 8>, 6> kHatches{{
    {0x00, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00},
    {0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08},
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},
    {0x08, 0x08, 0x08, 0xFF, 0x08, 0x08, 0x08, 0x08},
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},
}};

void makeInvisible(EngineBrush& brush) {
    brush.solid = false;
    brush.iSolidColor = kNotSolid;
    brush.patternWidth = brush.patternHeight = 1;
    brush.pattern = {0};
    brush.opaque = {0};
}

void realizeSolid(EngineBrush& brush, const EngineSurface& surface, COLORREF colour, bool dither) {
    brush.rgb = colour & 0xFFFFFFU;
    brush.iSolidColor = nearestPixel(surface, colour);
    if (!dither || hasExactColour(surface, colour)) return;
    const DitherCell cell = ditherCell(entriesOf(surface), colour);
    brush.iSolidColor = kNotSolid;
    brush.patternWidth = brush.patternHeight = kDitherSide;
    brush.pattern.assign(cell.begin(), cell.end());
}

void realizeHatch(EngineBrush& brush, const EngineSurface& surface, const Brush& document) {
    brush.solid = false;
    brush.iSolidColor = kNotSolid;
    brush.patternWidth = brush.patternHeight = kHatchSide;
    const auto& rows = kHatches[static_cast<std::size_t>(std::clamp(document.hatch, 0, static_cast<int>(kHatches.size()) - 1))];
    const ULONG line = nearestPixel(surface, document.colour);
    const ULONG gap = nearestPixel(surface, document.background);
    for (const std::uint8_t row : rows) {
        for (unsigned x = 0; x < kHatchSide; ++x) {
            const bool inLine = (row & (0x80U >> x)) != 0;
            brush.pattern.push_back(inLine ? line : gap);
            if (document.transparent) brush.opaque.push_back(inLine ? 1 : 0);
        }
    }
}

void realizePattern(EngineBrush& brush, const EngineSurface& surface, const Brush& document, bool dither) {
    std::unique_ptr<EngineSurface> source = document.pattern == nullptr ? nullptr : makeSource(*document.pattern);
    if (source == nullptr) {
        makeInvisible(brush);
        return;
    }
    if (document.monochromePattern) source->palette = nullptr;
    brush.solid = false;
    brush.iSolidColor = kNotSolid;
    brush.patternWidth = source->sizlBitmap.cx;
    brush.patternHeight = source->sizlBitmap.cy;
    const auto width = static_cast<std::size_t>(brush.patternWidth);
    brush.pattern.resize(width * static_cast<std::size_t>(brush.patternHeight));

    const auto sourceLayout = directLayoutOf(*source);
    const auto targetLayout = directLayoutOf(surface);
    const EngineXlate translation = makeTranslation(surface, *source, document.foreground, document.background);
    const std::vector<COLORREF>& colours = translation.sourcePalette;
    DitheredColour dithered(entriesOf(surface));
    NearestColour nearest(entriesOf(surface));
    for (LONG y = 0; y < brush.patternHeight; ++y) {
        ULONG* const row = brush.pattern.data() + static_cast<std::size_t>(y) * width;
        unpackPixels(rowOf(*source, y), bitsOf(*source), 0, brush.patternWidth, row);
        for (LONG x = 0; x < brush.patternWidth; ++x) {
            const COLORREF colour =
                sourceLayout ? sourceLayout->colourOf(row[x]) : colours[std::min<std::size_t>(row[x], colours.size() - 1)];
            if (targetLayout) {
                row[x] = targetLayout->valueOf(colour);
            } else {
                row[x] = dither ? dithered(colour, x, y) : nearest(colour);
            }
        }
    }
}

}  // namespace

EngineBrush realizeBrush(const EngineSurface& surface, const Brush& brush, bool dither) {
    EngineBrush result{};
    result.origin = brush.origin;
    switch (brush.kind) {
        case BrushKind::Null: makeInvisible(result); break;
        case BrushKind::Solid: realizeSolid(result, surface, brush.colour, dither); break;
        case BrushKind::Hatch: realizeHatch(result, surface, brush); break;
        case BrushKind::Pattern: realizePattern(result, surface, brush, dither); break;
    }
    return result;
}

}  // namespace morvil::engine

namespace morvil::engine::services {

ULONG brushColour(BRUSHOBJ* brush) {
    constexpr ULONG kNotSolid = 0xFFFFFFFF;
    if (brush == nullptr) return kNotSolid;
    const auto& full = *static_cast<const EngineBrush*>(brush);
    return full.solid ? full.rgb : kNotSolid;
}

}  // namespace morvil::engine::services
