#include "trace/TextTrace.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <span>

namespace morvil::trace {

namespace {

// What a function's arguments are called, in the order in which an event has them; null for those that it does not have. A number
// whose name begins with "#" is one of bits or colours and printed as such.
struct Names {
    ULONG function;
    std::array<const char*, 3> numbers;
    std::array<const char*, 3> blocks;
    std::array<const char*, 3> points;
    std::array<const char*, 2> areas{"area", "source area"};
    std::array<const char*, 2> brushes{"brush", "second brush"};
};
constexpr Names kNames[] = {
    {INDEX_DrvEnablePDEV, {"patterns", "caps bytes", "info bytes"}, {"device mode", "log address", "device"}, {}},
    {INDEX_DrvCompletePDEV, {"instance"}, {}, {}},
    {INDEX_DrvResetPDEV, {"from instance", "to instance"}, {}, {}},
    {INDEX_DrvDisablePDEV, {"instance"}, {}, {}},
    {INDEX_DrvEnableSurface, {"instance"}, {}, {}},
    {INDEX_DrvDisableSurface, {"instance"}, {}, {}},
    {INDEX_DrvStartDoc, {"job"}, {"title"}, {}},
    {INDEX_DrvStartPage, {}, {}, {}},
    {INDEX_DrvSendPage, {}, {"bits"}, {}},
    {INDEX_DrvStartBanding, {}, {}, {"origin"}},
    {INDEX_DrvNextBand, {}, {"bits"}, {"origin"}},
    {INDEX_DrvEndDoc, {"#flags"}, {}, {}},
    {INDEX_DrvStrokePath, {"transform", "#mix"}, {}, {"brush origin"}},
    {INDEX_DrvFillPath, {"#mix", "#options"}, {}, {"brush origin"}},
    {INDEX_DrvStrokeAndFillPath, {"transform", "#mix", "#options"}, {}, {"brush origin"}, {"area", "source area"}, {"stroke brush", "fill brush"}},
    {INDEX_DrvBitBlt, {"#rop"}, {}, {"from", "mask from", "brush origin"}},
    {INDEX_DrvCopyBits, {}, {}, {"from"}},
    {INDEX_DrvStretchBlt, {"mode"}, {}, {"brush origin", "mask from"}},
    {INDEX_DrvTextOut, {"#mix"}, {"text"}, {"brush origin"}, {"extra area", "opaque area"}, {"brush", "back brush"}},
    {INDEX_DrvGetGlyphMode, {"instance"}, {}, {}},
    {INDEX_DrvDitherColor, {"instance", "mode", "#rgb"}, {}, {}},
    {INDEX_DrvEscape, {"code", "out bytes"}, {"in"}, {}}};

Names namesOf(ULONG function) {
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames), [function](const Names& names) { return names.function == function; });
    return found != std::end(kNames) ? *found : Names{.function = function, .numbers = {}, .blocks = {}, .points = {}};
}

std::string hex(std::uint64_t value) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(value));
    return text.data();
}

std::string number(std::int64_t value) { return std::to_string(value); }

// Sixteenths of a pixel as pixels.
std::string pixels(FIX value) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%.10g", value / 16.0);
    return text.data();
}

std::string toText(const RECTL& area) { return "(" + number(area.left) + "," + number(area.top) + ")-(" + number(area.right) + "," + number(area.bottom) + ")"; }
std::string toText(const POINTL& point) { return "(" + number(point.x) + "," + number(point.y) + ")"; }

std::string toText(const SurfaceArgument& surface) {
    return number(surface.size.cx) + "x" + number(surface.size.cy) + " format " + number(surface.format) + (surface.rowStep < 0 ? " bottom-up" : "");
}

std::string toText(const PathArgument& path) {
    std::string text = "flags " + hex(path.flags) + ", " + number(path.curves) + " segments:";
    for (const PathPart& part : path.parts) {
        text += " " + hex(part.flags) + "[";
        for (std::size_t i = 0; i < part.points.size(); ++i) text += (i == 0 ? "" : " ") + pixels(part.points[i].x) + "," + pixels(part.points[i].y);
        text += "]";
    }
    return text;
}

std::string toText(const BrushArgument& brush) { return "index " + (brush.solidColour == 0xFFFFFFFF ? std::string("none") : number(brush.solidColour)) + " rgb " + hex(brush.rgb); }

std::string toText(const LineArgument& line) {
    float real = 0;
    std::memcpy(&real, &line.width, sizeof(real));
    const bool geometric = (line.flags & LA_GEOMETRIC) != 0;
    return (geometric ? "geometric width " + std::to_string(real) : "cosmetic width " + number(line.width)) + " flags " + hex(line.flags) + (line.style.empty() ? "" : " " + number(static_cast<std::int64_t>(line.style.size())) + " dashes");
}

std::string toText(const TranslationArgument& translation) {
    return "flags " + hex(translation.flags) + ", table of " + number(static_cast<std::int64_t>(translation.table.size())) + ", source palette of " + number(static_cast<std::int64_t>(translation.sourcePalette.size()));
}

std::string toText(const COLORADJUSTMENT& adjustment) {
    return "flags " + hex(adjustment.caFlags) + ", gamma " + number(adjustment.caRedGamma) + " " + number(adjustment.caGreenGamma) + " " + number(adjustment.caBlueGamma) +
           ", black " + number(adjustment.caReferenceBlack) + ", white " + number(adjustment.caReferenceWhite) + ", contrast " + number(adjustment.caContrast) + ", brightness " +
           number(adjustment.caBrightness) + ", colourfulness " + number(adjustment.caColorfulness) + ", tint " + number(adjustment.caRedGreenTint);
}

std::string bytes(const Bytes& block) { return number(static_cast<std::int64_t>(block.size())) + " bytes"; }

bool isPrintable(WCHAR character) { return character >= 0x20 && (character < 0x7F || character > 0x9F); }

// UTF-16 with or without a terminator; what is none of it by its size.
std::string wideText(const Bytes& block) {
    if (block.empty()) return "none";
    WString text(block.size() / sizeof(WCHAR), WCHAR{0});
    std::memcpy(text.data(), block.data(), text.size() * sizeof(WCHAR));
    if (!text.empty() && text.back() == 0) text.pop_back();
    if (block.size() % 2 != 0 || !std::all_of(text.begin(), text.end(), isPrintable)) return bytes(block);
    return "\"" + toUtf8(text) + "\"";
}

// Names of configurations are texts of 8-bit characters, codes and counts are numbers.
std::string escapeInput(const Bytes& block) {
    const WString text(block.begin(), block.end());
    if (!text.empty() && std::all_of(text.begin(), text.end(), isPrintable)) return "\"" + toUtf8(text) + "\"";
    std::uint32_t value = 0;
    if (block.size() != sizeof(value)) return block.empty() ? "none" : bytes(block);
    std::memcpy(&value, block.data(), sizeof(value));
    return number(value);
}

std::string deviceMode(const Bytes& block) {
    DEVMODEW mode{};
    if (block.empty()) return "none";
    if (block.size() < sizeof(mode)) return bytes(block);
    std::memcpy(&mode, block.data(), sizeof(mode));
    return bytes(block) + ", private " + number(mode.dmDriverExtra) + ", paper " + number(mode.dmPaperSize) + " " + number(mode.dmPaperWidth) + "x" + number(mode.dmPaperLength) +
           (mode.dmOrientation == DMORIENT_LANDSCAPE ? " landscape" : "") + ", copies " + number(mode.dmCopies);
}

std::string blockText(const Event& event, std::size_t index) {
    const Bytes& block = event.blocks[index];
    switch (event.function) {
        case INDEX_DrvEnablePDEV: return index == 0 ? deviceMode(block) : wideText(block);
        case INDEX_DrvStartDoc:
        case INDEX_DrvTextOut: return wideText(block);
        case INDEX_DrvEscape: return escapeInput(block);
        default: return bytes(block);
    }
}

std::string numberText(const char* name, std::int64_t value) {
    if (name == nullptr) return " " + number(value);
    if (name[0] == '#') return std::string(" ") + (name + 1) + " " + hex(static_cast<std::uint64_t>(value));
    return std::string(" ") + name + " " + number(value);
}

const char* nameAt(std::span<const char* const> names, std::size_t index) { return index < names.size() ? names[index] : nullptr; }

template <typename T>
void add(std::string& line, const char* name, const std::optional<T>& argument) {
    if (argument) line += std::string(" ") + name + " {" + toText(*argument) + "}";
}

}  // namespace

std::string toText(const Event& event) {
    const Names names = namesOf(event.function);
    std::string line = functionName(event.function);
    for (std::size_t i = 0; i < event.numbers.size(); ++i) line += numberText(nameAt(names.numbers, i), event.numbers[i]);
    for (std::size_t i = 0; i < event.blocks.size(); ++i) {
        const char* const name = nameAt(names.blocks, i);
        line += std::string(" ") + (name != nullptr ? name : "block") + " [" + blockText(event, i) + "]";
    }
    add(line, "target", event.surfaces[0]);
    add(line, "source", event.surfaces[1]);
    add(line, "mask", event.surfaces[2]);
    add(line, "path", event.path);
    add(line, "line", event.line);
    for (std::size_t i = 0; i < event.brushes.size(); ++i) add(line, names.brushes[i], event.brushes[i]);
    if (event.clip) line += " clip {kind " + number(event.clip->kinds[0]) + " " + toText(event.clip->bounds) + "}";
    add(line, "translation", event.translation);
    add(line, "adjustment", event.adjustment);
    for (std::size_t i = 0; i < event.rectangles.size(); ++i) add(line, names.areas[i], event.rectangles[i]);
    for (std::size_t i = 0; i < event.points.size(); ++i) add(line, names.points[i] != nullptr ? names.points[i] : "point", event.points[i]);
    return line + " = " + number(event.result);
}

}  // namespace morvil::trace
