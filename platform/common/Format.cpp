#include "platform/common/Format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace morvil {

namespace {

enum class Length : std::uint8_t { None, Half, Long };

// One conversion as written between '%' and its letter.
struct Conversion {
    bool left = false;
    bool zero = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    std::size_t width = 0;
    int precision = -1;
    Length length = Length::None;
    WCHAR letter = 0;
};

// Widths beyond this are taken as this: no line of ours comes near, and a hostile format must not eat memory.
constexpr std::size_t kMaxWidth = 4096;

bool isDigit(WCHAR unit) { return unit >= TEXT('0') && unit <= TEXT('9'); }

std::size_t readNumber(WStringView format, std::size_t& at) {
    std::size_t value = 0;
    for (; at < format.size() && isDigit(format[at]); ++at)
        value = std::min(kMaxWidth, value * 10 + static_cast<std::size_t>(format[at] - TEXT('0')));
    return value;
}

bool readFlag(WCHAR unit, Conversion& conversion) {
    switch (unit) {
        case TEXT('-'): conversion.left = true; return true;
        case TEXT('0'): conversion.zero = true; return true;
        case TEXT('+'): conversion.plus = true; return true;
        case TEXT(' '): conversion.blank = true; return true;
        case TEXT('#'): conversion.alternate = true; return true;
        default: return false;
    }
}

// Reads the conversion behind a '%'; `at` ends up behind its letter.
Conversion readConversion(WStringView format, std::size_t& at) {
    Conversion conversion;
    while (at < format.size() && readFlag(format[at], conversion)) ++at;
    conversion.width = readNumber(format, at);
    if (at < format.size() && format[at] == TEXT('.')) {
        ++at;
        conversion.precision = static_cast<int>(readNumber(format, at));
    }
    for (; at < format.size(); ++at) {
        if (format[at] == TEXT('h'))
            conversion.length = Length::Half;
        else if (format[at] == TEXT('l'))
            conversion.length = Length::Long;
        else if (format[at] != TEXT('w'))
            break;
    }
    if (at < format.size()) conversion.letter = format[at++];
    return conversion;
}

void appendAscii(WString& out, std::string_view bytes) {
    for (const char byte : bytes) out.push_back(static_cast<WCHAR>(static_cast<unsigned char>(byte)));
}

// Sign or prefix, zero padding, digits, all within the field width.
void appendNumber(WString& out, const Conversion& conversion, std::string_view prefix, std::string_view digits, bool zeroPad) {
    const std::size_t used = prefix.size() + digits.size();
    const std::size_t padding = conversion.width > used ? conversion.width - used : 0;
    if (!conversion.left && !zeroPad) out.append(padding, TEXT(' '));
    appendAscii(out, prefix);
    if (!conversion.left && zeroPad) out.append(padding, TEXT('0'));
    appendAscii(out, digits);
    if (conversion.left) out.append(padding, TEXT(' '));
}

std::string_view signOf(bool negative, const Conversion& conversion) {
    if (negative) return "-";
    if (conversion.plus) return "+";
    return conversion.blank ? " " : "";
}

// A zero with a precision of 0 prints no digit at all.
std::string withPrecision(std::string_view digits, int precision) {
    if (precision == 0 && digits == "0") return {};
    const std::size_t wanted = precision < 0 ? 1 : static_cast<std::size_t>(precision);
    std::string out(digits.size() < wanted ? wanted - digits.size() : 0, '0');
    return out.append(digits);
}

void appendInteger(WString& out, const Conversion& conversion, std::int64_t value) {
    const bool isSigned = conversion.letter == TEXT('d') || conversion.letter == TEXT('i');
    const bool hex = conversion.letter == TEXT('x') || conversion.letter == TEXT('X');
    const std::uint32_t bits = conversion.length == Length::Half ? static_cast<std::uint16_t>(value) : static_cast<std::uint32_t>(value);
    std::int64_t printed = bits;
    if (isSigned) printed = conversion.length == Length::Half ? static_cast<std::int16_t>(bits) : static_cast<std::int32_t>(bits);
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), printed < 0 ? -printed : printed, hex ? 16 : 10).ptr;
    std::string text = withPrecision({digits.data(), static_cast<std::size_t>(end - digits.data())}, conversion.precision);
    if (conversion.letter == TEXT('X'))
        std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    const std::string_view hexPrefix = conversion.letter == TEXT('X') ? "0X" : "0x";
    const std::string_view prefix =
        isSigned ? signOf(printed < 0, conversion) : (hex && conversion.alternate && printed != 0 ? hexPrefix : "");
    appendNumber(out, conversion, prefix, text, conversion.zero && conversion.precision < 0);
}

void appendReal(WString& out, const Conversion& conversion, double value) {
    std::array<char, 512> digits{};
    const int precision = conversion.precision < 0 ? 6 : std::min(conversion.precision, 100);
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), std::fabs(value), std::chars_format::fixed, precision);
    appendNumber(out, conversion, signOf(std::signbit(value), conversion),
                 {digits.data(), static_cast<std::size_t>(result.ptr - digits.data())}, conversion.zero && std::isfinite(value));
}

void appendText(WString& out, const Conversion& conversion, WStringView text) {
    if (conversion.precision >= 0) text = text.substr(0, static_cast<std::size_t>(conversion.precision));
    const std::size_t padding = conversion.width > text.size() ? conversion.width - text.size() : 0;
    if (!conversion.left) out.append(padding, TEXT(' '));
    out.append(text);
    if (conversion.left) out.append(padding, TEXT(' '));
}

// A number handed to %s would be a stray pointer on the platform; it prints as a number here.
void appendAsText(WString& out, const Conversion& conversion, const FormatArg& argument) {
    if (argument.kind() == FormatArg::Kind::Text) return appendText(out, conversion, argument.text());
    Conversion number = conversion;
    number.letter = TEXT('d');
    number.precision = -1;
    appendInteger(out, number, argument.integer());
}

void appendConversion(WString& out, const Conversion& conversion, const FormatArg& argument) {
    switch (conversion.letter) {
        case TEXT('d'):
        case TEXT('i'):
        case TEXT('u'):
        case TEXT('x'):
        case TEXT('X'): return appendInteger(out, conversion, argument.integer());
        case TEXT('f'): return appendReal(out, conversion, argument.real());
        case TEXT('c'): {
            const WCHAR unit = argument.kind() == FormatArg::Kind::Text && !argument.text().empty()
                                   ? argument.text().front()
                                   : static_cast<WCHAR>(argument.integer());
            return appendText(out, conversion, WStringView(&unit, 1));
        }
        case TEXT('s'): return appendAsText(out, conversion, argument);
        default: return;
    }
}

}  // namespace

void formatTo(WString& out, WStringView format, std::span<const FormatArg> arguments) {
    std::size_t next = 0;
    for (std::size_t at = 0; at < format.size();) {
        const std::size_t percent = format.find(TEXT('%'), at);
        out.append(format.substr(at, percent == WStringView::npos ? WStringView::npos : percent - at));
        if (percent == WStringView::npos) return;
        at = percent + 1;
        const Conversion conversion = readConversion(format, at);
        if (conversion.letter == TEXT('%')) {
            out.push_back(TEXT('%'));
            continue;
        }
        static const FormatArg kMissing(0);
        appendConversion(out, conversion, next < arguments.size() ? arguments[next] : kMissing);
        ++next;
    }
}

}  // namespace morvil
