#include "config/Scan.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

namespace morvil {

namespace {

bool isSpace(WCHAR unit) { return unit == TEXT(' ') || (unit >= TEXT('\t') && unit <= TEXT('\r')); }

// -1 for what is no digit in any base up to 16.
int digitOf(WCHAR unit) {
    if (unit >= TEXT('0') && unit <= TEXT('9')) return unit - TEXT('0');
    if (unit >= TEXT('a') && unit <= TEXT('f')) return unit - TEXT('a') + 10;
    if (unit >= TEXT('A') && unit <= TEXT('F')) return unit - TEXT('A') + 10;
    return -1;
}

bool isDigitOf(WStringView text, std::size_t at, int base) {
    if (at >= text.size()) return false;
    const int digit = digitOf(text[at]);
    return digit >= 0 && digit < base;
}

// Drops white space and a sign from the front of `text`; true when the sign was a minus.
bool takeSign(WStringView& text) {
    const auto start = std::find_if_not(text.begin(), text.end(), isSpace);
    text.remove_prefix(static_cast<std::size_t>(start - text.begin()));
    if (text.empty() || (text[0] != TEXT('-') && text[0] != TEXT('+'))) return false;
    const bool negative = text[0] == TEXT('-');
    text.remove_prefix(1);
    return negative;
}

bool opensHexadecimal(WStringView text) {
    return text.size() > 2 && text[0] == TEXT('0') && (text[1] == TEXT('x') || text[1] == TEXT('X')) && digitOf(text[2]) >= 0;
}

std::uint64_t accumulate(WStringView text, unsigned base) {
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t value = 0;
    for (std::size_t at = 0; isDigitOf(text, at, static_cast<int>(base)); ++at) {
        const auto digit = static_cast<std::uint64_t>(digitOf(text[at]));
        if (value >= kLargest / 16 && value > (kLargest - digit) / base) return kLargest;  // most numbers need no division
        value = value * base + digit;
    }
    return value;
}

// The front of `text` that may belong to a number, as plain bytes; anything beyond ASCII ends it.
std::string asciiFront(WStringView text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (const WCHAR unit : text) {
        if (unit == 0 || unit > 0x7F) break;
        bytes.push_back(static_cast<char>(unit));
    }
    return bytes;
}

// Whether the magnitude that from_chars refused was too large (and not too small): the power of ten of its first digit
// other than zero, or of two for hexadecimal, tells.
bool isLarge(std::string_view number, bool hexadecimal) {
    const std::size_t exponentAt = number.find_first_of(hexadecimal ? "pP" : "eE");
    const std::string_view mantissa = number.substr(0, exponentAt);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_not_of("0.");
    std::int64_t magnitude = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(std::min(first, mantissa.size()));
    if (exponentAt == std::string_view::npos) return magnitude > 0;
    std::string_view digits = number.substr(exponentAt + 1);
    if (!digits.empty() && digits[0] == '+') digits.remove_prefix(1);
    std::int64_t exponent = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (result.ec == std::errc::result_out_of_range) return digits[0] != '-';
    return magnitude * (hexadecimal ? 4 : 1) + exponent > 0;
}

}  // namespace

std::optional<std::uint32_t> scanInteger(WStringView text, ScanBase base) {
    const bool negative = takeSign(text);
    unsigned radix = static_cast<unsigned>(base);
    if (base != ScanBase::Decimal && opensHexadecimal(text)) {
        text.remove_prefix(2);
        radix = 16;
    } else if (base == ScanBase::Detect) {
        radix = !text.empty() && text[0] == TEXT('0') ? 8 : 10;
    }
    if (!isDigitOf(text, 0, static_cast<int>(radix))) return std::nullopt;
    const std::uint64_t magnitude = accumulate(text, radix);
    return static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude);
}

std::optional<float> scanFloat(WStringView text) {
    const bool negative = takeSign(text);
    if (!text.empty() && text[0] == TEXT('-')) return std::nullopt;  // from_chars would take a second sign
    const bool hexadecimal = opensHexadecimal(text);
    if (hexadecimal) text.remove_prefix(2);
    const std::string bytes = asciiFront(text);
    float value = 0.0F;
    const auto form = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    const auto result = std::from_chars(bytes.data(), bytes.data() + bytes.size(), value, form);
    if (result.ec == std::errc::invalid_argument) return std::nullopt;
    if (result.ec == std::errc::result_out_of_range) {
        const std::string_view number(bytes.data(), static_cast<std::size_t>(result.ptr - bytes.data()));
        value = isLarge(number, hexadecimal) ? std::numeric_limits<float>::infinity() : 0.0F;
    }
    return negative ? -value : value;
}

}  // namespace morvil
