#include "jobfile/CommandText.h"

#include <array>
#include <charconv>
#include <limits>

#include "jobfile/JobFileFormat.h"
#include "platform/common/FileStream.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

struct Channels {
    std::int32_t red;
    std::int32_t green;
    std::int32_t blue;
};

Channels channelsOf(std::uint32_t colour) {
    return {static_cast<std::int32_t>(colour & 0xFF), static_cast<std::int32_t>((colour >> 8) & 0xFF),
            static_cast<std::int32_t>((colour >> 16) & 0xFF)};
}

void appendNumber(std::string& out, std::int32_t number) {
    std::array<char, 12> digits{};
    out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

}  // namespace

void appendNumbers(std::string& out, WStringView text, std::initializer_list<std::int32_t> numbers) {
    const auto* number = numbers.begin();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == TEXT('%') && number != numbers.end()) {
            appendNumber(out, *number++);
            ++i;  // the conversion's letter
        } else {
            out.push_back(static_cast<char>(text[i]));
        }
    }
}

void appendOpening(std::string& out, const WCHAR* opening, std::size_t count, std::uint32_t colour) {
    const Channels channels = channelsOf(colour);
    appendNumbers(out, opening, {static_cast<std::int32_t>(count), channels.red, channels.green, channels.blue});
}

// The one that long strokes consist of, so it goes without reading the template.
void appendPoint(std::string& out, std::int32_t x, std::int32_t y) {
    static_assert(WStringView(kPointPart) == TEXT(";%i;%i"));
    out.push_back(';');
    appendNumber(out, x);
    out.push_back(';');
    appendNumber(out, y);
}

void appendClosing(std::string& out) {
    static_assert(WStringView(kCommandClosing) == TEXT(">\n"));
    out += ">\r\n";
}

void appendArc(std::string& out, const ArcRecord& arc, std::uint32_t colour) {
    const Channels channels = channelsOf(colour);
    appendNumbers(out, kArcOpening, {channels.red, channels.green, channels.blue});
    appendNumbers(out, kArcCoordinates, {truncated(arc.coordinates[1]), truncated(arc.coordinates[2]), truncated(arc.coordinates[0])});
    out += toFileBytes(format(kArcValues, arc.values[0], arc.values[1]));
    appendNumbers(out, kArcNumber, {arc.sixth});
    appendClosing(out);
}

std::int32_t truncated(double value) {
    constexpr double kBelow = -2147483649.0;
    constexpr double kAbove = 2147483648.0;
    return value > kBelow && value < kAbove ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

}  // namespace morvil
