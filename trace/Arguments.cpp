#include "trace/Arguments.h"

#include <cstring>

namespace morvil::trace {

namespace {

constexpr ULONG kMostColours = 256;

ULONG bitsOf(const FLOAT_LONG& value) {
    ULONG bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

}  // namespace

std::optional<SurfaceArgument> describe(const SURFOBJ* surface) {
    if (surface == nullptr) return std::nullopt;
    return SurfaceArgument{.isPage = surface->dhpdev != nullptr ? 1U : 0U,
                           .size = surface->sizlBitmap,
                           .rowStep = surface->lDelta,
                           .format = surface->iBitmapFormat,
                           .bytes = surface->cjBits,
                           .flags = surface->fjBitmap};
}

std::optional<PathArgument> describe(PATHOBJ* path) {
    if (path == nullptr) return std::nullopt;
    PathArgument argument{.flags = path->fl, .curves = path->cCurves, .parts = {}};
    PATHOBJ_vEnumStart(path);
    for (bool more = true; more;) {
        PATHDATA data{};
        more = PATHOBJ_bEnum(path, &data) != FALSE;
        if (data.pptfx == nullptr && !more) break;
        argument.parts.push_back({data.flags, {data.pptfx, data.pptfx + data.count}});
    }
    return argument;
}

std::optional<BrushArgument> describe(BRUSHOBJ* brush) {
    if (brush == nullptr) return std::nullopt;
    return BrushArgument{.solidColour = brush->iSolidColor, .colourType = brush->flColorType, .rgb = BRUSHOBJ_ulGetBrushColor(brush)};
}

std::optional<ClipArgument> describe(const CLIPOBJ* clip) {
    if (clip == nullptr) return std::nullopt;
    return ClipArgument{.bounds = clip->rclBounds, .kinds = {clip->iDComplexity, clip->iFComplexity, clip->iMode, clip->fjOptions}};
}

std::optional<TranslationArgument> describe(XLATEOBJ* translation) {
    if (translation == nullptr) return std::nullopt;
    TranslationArgument argument{.flags = translation->flXlate, .sourceType = translation->iSrcType, .targetType = translation->iDstType, .table = {}, .sourcePalette = {}};
    if (translation->pulXlate != nullptr) argument.table.assign(translation->pulXlate, translation->pulXlate + translation->cEntries);
    argument.sourcePalette.resize(kMostColours);
    argument.sourcePalette.resize(XLATEOBJ_cGetPalette(translation, XO_SRCPALETTE, kMostColours, argument.sourcePalette.data()));
    return argument;
}

std::optional<LineArgument> describe(const LINEATTRS* line) {
    if (line == nullptr) return std::nullopt;
    LineArgument argument{.flags = line->fl, .join = line->iJoin, .endCap = line->iEndCap, .width = bitsOf(line->elWidth), .miterLimit = 0, .style = {}, .styleState = bitsOf(line->elStyleState)};
    std::memcpy(&argument.miterLimit, &line->eMiterLimit, sizeof(argument.miterLimit));
    for (ULONG i = 0; line->pstyle != nullptr && i < line->cstyle; ++i) argument.style.push_back(bitsOf(line->pstyle[i]));
    return argument;
}

Bytes blockBytes(const void* data, std::size_t bytes) {
    const auto* const begin = static_cast<const std::uint8_t*>(data);
    return data == nullptr ? Bytes() : Bytes(begin, begin + bytes);
}

Bytes textBytes(const WCHAR* text) { return text == nullptr ? Bytes() : blockBytes(text, (WStringView(text).size() + 1) * sizeof(WCHAR)); }

}  // namespace morvil::trace
