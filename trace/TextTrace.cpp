#include "trace/TextTrace.h"

#include <cstdio>
#include <cstring>

namespace morvil::trace {

namespace {

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

// A block is a text, a device mode or bits: printed as text where it is one, else by its size.
std::string toText(const Bytes& block) {
    std::string text;
    for (std::size_t i = 0; i + 3 < block.size() && block.size() % 2 == 0; i += 2) {
        if (block[i + 1] != 0 || block[i] < 0x20 || block[i] > 0x7E) return number(static_cast<std::int64_t>(block.size())) + " bytes";
        text += static_cast<char>(block[i]);
    }
    return text.empty() ? number(static_cast<std::int64_t>(block.size())) + " bytes" : "\"" + text + "\"";
}

template <typename T>
void add(std::string& line, const char* name, const std::optional<T>& argument) {
    if (argument) line += std::string(" ") + name + " {" + toText(*argument) + "}";
}

}  // namespace

std::string toText(const Event& event) {
    std::string line = functionName(event.function);
    for (const std::int64_t value : event.numbers) line += " " + number(value);
    for (const Bytes& block : event.blocks) line += " [" + toText(block) + "]";
    add(line, "target", event.surfaces[0]);
    add(line, "source", event.surfaces[1]);
    add(line, "mask", event.surfaces[2]);
    add(line, "path", event.path);
    add(line, "line", event.line);
    add(line, "brush", event.brushes[0]);
    add(line, "second brush", event.brushes[1]);
    if (event.clip) line += " clip {kind " + number(event.clip->kinds[0]) + " " + toText(event.clip->bounds) + "}";
    add(line, "translation", event.translation);
    add(line, "area", event.rectangles[0]);
    add(line, "source area", event.rectangles[1]);
    for (const auto& point : event.points) add(line, "point", point);
    return line + " = " + number(event.result);
}

}  // namespace morvil::trace
