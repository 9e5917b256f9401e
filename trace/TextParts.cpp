#include "trace/TextParts.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace morvil::trace {

namespace {

// Sixteenths of a pixel as pixels.
std::string pixels(FIX value) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%.10g", value / 16.0);
    return text.data();
}

// A piece is a whole figure or a part of one: records of a path may end in the middle.
std::string pieceText(FLONG flags) {
    const bool begins = (flags & PD_BEGINSUBPATH) != 0;
    const bool ends = (flags & PD_ENDSUBPATH) != 0;
    std::string text = begins && ends ? "figure" : begins ? "begin" : ends ? "end" : "middle";
    if ((flags & PD_CLOSEFIGURE) != 0) text += " closed";
    if ((flags & PD_BEZIERS) != 0) text += " curves";
    if ((flags & PD_RESETSTYLE) != 0) text += " style reset";
    return text;
}

std::string clipKind(std::uint8_t kind) {
    switch (kind) {
        case DC_TRIVIAL: return "trivial";
        case DC_RECT: return "rectangle";
        case DC_COMPLEX: return "complex";
        default: return "kind " + number(kind);
    }
}

}  // namespace

std::string number(std::int64_t value) { return std::to_string(value); }

std::string hex(std::uint64_t value) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(value));
    return text.data();
}

std::string counted(std::uint64_t count, const std::string& what) {
    if (count == 1) return "1 " + what;
    return std::to_string(count) + " " + what + (what.ends_with("sh") ? "es" : "s");
}

std::string depthText(std::uint32_t format) {
    constexpr std::array<std::uint32_t, 7> kDepths{0, 1, 4, 8, 16, 24, 32};
    return format >= BMF_1BPP && format <= BMF_32BPP ? counted(kDepths[format], "bit") : "format " + number(format);
}

std::string colourText(ULONG rgb) {
    constexpr ULONG kNone = 0xFFFFFFFF;
    if (rgb == kNone) return "none";
    return "(" + number(rgb & 0xFFU) + "," + number(rgb >> 8 & 0xFFU) + "," + number(rgb >> 16 & 0xFFU) + ")";
}

std::string pixelText(ULONG solidColour) {
    constexpr ULONG kNone = 0xFFFFFFFF;
    constexpr ULONG kLargestIndex = 255;
    if (solidColour == kNone) return "index none";
    return solidColour <= kLargestIndex ? "index " + number(solidColour) : "pixel " + hex(solidColour);
}

std::string flagsText(FLONG flags) { return flags == 0 ? "" : " flags " + hex(flags); }

std::string toText(const SIZEL& size) { return number(size.cx) + "x" + number(size.cy); }

std::string toText(const RECTL& area) {
    return "(" + number(area.left) + "," + number(area.top) + ")-(" + number(area.right) + "," + number(area.bottom) + ")";
}

std::string toText(const POINTL& point) { return "(" + number(point.x) + "," + number(point.y) + ")"; }

std::string toText(const SurfaceArgument& surface) {
    return std::string(surface.isPage != 0 ? "page " : "") + toText(surface.size) + " " + depthText(surface.format) +
           (surface.rowStep < 0 ? " bottom-up" : "");
}

std::string toText(const PathArgument& path) {
    std::string text = counted(path.curves, "segment") + flagsText(path.flags) + (path.parts.empty() ? "" : ":");
    for (const PathPart& part : path.parts) {
        text += " " + pieceText(part.flags) + " [";
        for (std::size_t i = 0; i < part.points.size(); ++i)
            text += (i == 0 ? "" : " ") + pixels(part.points[i].x) + "," + pixels(part.points[i].y);
        text += "]";
    }
    return text;
}

std::string toText(const BrushArgument& brush) { return pixelText(brush.solidColour) + " rgb " + colourText(brush.rgb); }

std::string toText(const LineArgument& line) {
    float real = 0;
    std::memcpy(&real, &line.width, sizeof(real));
    std::array<char, 32> width{};
    std::snprintf(width.data(), width.size(), "%g", static_cast<double>(real));
    const bool geometric = (line.flags & LA_GEOMETRIC) != 0;
    return (geometric ? "geometric width " + std::string(width.data()) : "cosmetic width " + number(line.width)) +
           flagsText(line.flags & ~FLONG{LA_GEOMETRIC}) + (line.style.empty() ? "" : " " + counted(line.style.size(), "dash"));
}

std::string toText(const ClipArgument& clip) { return clipKind(clip.kinds[0]) + " " + toText(clip.bounds); }

std::string toText(const TranslationArgument& translation) {
    return "table of " + number(static_cast<std::int64_t>(translation.table.size())) + flagsText(translation.flags) +
           (translation.sourcePalette.empty()
                ? ""
                : ", source palette of " + number(static_cast<std::int64_t>(translation.sourcePalette.size())));
}

std::string toText(const COLORADJUSTMENT& adjustment) {
    return "gamma " + number(adjustment.caRedGamma) + " " + number(adjustment.caGreenGamma) + " " + number(adjustment.caBlueGamma) +
           ", black " + number(adjustment.caReferenceBlack) + ", white " + number(adjustment.caReferenceWhite) + ", contrast " +
           number(adjustment.caContrast) + ", brightness " + number(adjustment.caBrightness) + ", colourfulness " +
           number(adjustment.caColorfulness) + ", tint " + number(adjustment.caRedGreenTint) + flagsText(adjustment.caFlags);
}

bool isPrintable(WCHAR character) { return character >= 0x20 && (character < 0x7F || character > 0x9F); }

std::string wideText(const Bytes& block) {
    if (block.empty()) return "none";
    WString text(block.size() / sizeof(WCHAR), WCHAR{0});
    std::memcpy(text.data(), block.data(), text.size() * sizeof(WCHAR));
    if (!text.empty() && text.back() == 0) text.pop_back();
    if (block.size() % 2 != 0 || !std::all_of(text.begin(), text.end(), isPrintable)) return counted(block.size(), "byte");
    return "\"" + toUtf8(text) + "\"";
}

}  // namespace morvil::trace
