#include "trace/TextTrace.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "trace/TextParts.h"

namespace morvil::trace {

namespace {

// What a function's arguments are called, in the order in which an event has them; null for those that it does not have. A number
// whose name begins with "#" is one of bits and printed as such, with "~" a colour, with "?" told only when it is not zero.
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
    {INDEX_DrvStrokePath, {"?transform", "#mix"}, {}, {"brush origin"}},
    {INDEX_DrvFillPath, {"#mix", "#options"}, {}, {"brush origin"}},
    {INDEX_DrvStrokeAndFillPath, {"?transform", "#mix", "#options"}, {}, {"brush origin"}, {"area", "source area"}, {"stroke brush", "fill brush"}},
    {INDEX_DrvBitBlt, {"#rop"}, {}, {"from", "mask from", "brush origin"}},
    {INDEX_DrvCopyBits, {}, {}, {"from"}},
    {INDEX_DrvStretchBlt, {"mode"}, {}, {"brush origin", "mask from"}},
    {INDEX_DrvTextOut, {"#mix"}, {"text"}, {"brush origin"}, {"extra area", "opaque area"}, {"brush", "back brush"}},
    {INDEX_DrvGetGlyphMode, {"instance"}, {}, {}},
    {INDEX_DrvDitherColor, {"instance", "mode", "~rgb"}, {}, {}},
    {INDEX_DrvEscape, {"code", "out bytes"}, {"in"}, {}}};

Names namesOf(ULONG function) {
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames), [function](const Names& names) { return names.function == function; });
    return found != std::end(kNames) ? *found : Names{.function = function, .numbers = {}, .blocks = {}, .points = {}};
}

std::string bytes(const Bytes& block) { return counted(block.size(), "byte"); }

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
    if (name[0] == '?') return value != 0 ? std::string(" ") + (name + 1) + " given" : std::string();
    if (name[0] == '~') return std::string(" ") + (name + 1) + " " + colourText(static_cast<ULONG>(value));
    if (name[0] == '#') return std::string(" ") + (name + 1) + " " + hex(static_cast<std::uint64_t>(value));
    return std::string(" ") + name + " " + number(value);
}

// Functions without a result have none to tell, and of handles a recording keeps a number or whether there was one.
std::string resultText(const Event& event) {
    switch (event.function) {
        case INDEX_DrvCompletePDEV:
        case INDEX_DrvDisablePDEV:
        case INDEX_DrvDisableSurface:
        case INDEX_DrvDisableDriver: return {};
        case INDEX_DrvEnablePDEV: return event.result != 0 ? " = instance " + number(event.result) : " = none";
        case INDEX_DrvStrokePath:
        case INDEX_DrvFillPath:
        case INDEX_DrvStrokeAndFillPath: return event.result != 0 ? " = " + number(event.result) : " = 0, handed back";
        case INDEX_DrvEnableSurface: return event.result != 0 ? " = surface" : " = none";
        default: return " = " + number(event.result);
    }
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
    add(line, "clip", event.clip);
    add(line, "translation", event.translation);
    add(line, "adjustment", event.adjustment);
    for (std::size_t i = 0; i < event.rectangles.size(); ++i) add(line, names.areas[i], event.rectangles[i]);
    for (std::size_t i = 0; i < event.points.size(); ++i) add(line, names.points[i] != nullptr ? names.points[i] : "point", event.points[i]);
    return line + resultText(event);
}

}  // namespace morvil::trace
