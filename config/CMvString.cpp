#include "config/CMvString.h"

#include <algorithm>
#include <charconv>
#include <clocale>

#include "config/Scan.h"
#include "platform/common/DebugChannel.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

// Writes bytes of plain ASCII as UTF-16, as far as they fit; returns how many were written.
std::size_t widenInto(std::span<WCHAR> out, std::string_view bytes) {
    const std::size_t count = std::min(out.size(), bytes.size());
    std::transform(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count), out.begin(),
                   [](char byte) { return static_cast<WCHAR>(static_cast<unsigned char>(byte)); });
    return count;
}

using Digits = std::array<char, 16>;  // the longest is "-2147483648"

template <typename T>
std::string_view printDecimal(Digits& digits, T value) {
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), static_cast<std::size_t>(end - digits.data())};
}

std::string_view printHexadecimal(Digits& digits, std::uint32_t value) {
    if (value == 0) return {};  // a precision of 0 prints nothing of a zero; larger ones are filled with zeros anyway
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
    std::transform(digits.data(), end, digits.data(), [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return {digits.data(), static_cast<std::size_t>(end - digits.data())};
}

}  // namespace

void CMvString::send(WStringView text) {
    copyText(m_buffer, text);
    OutputDebugStringW(m_buffer.data());
}

void CMvString::reportParameter(const WCHAR* operation) {
    if (debugOutputWanted()) send(format(TEXT("CMvString::%s, Error parameter"), operation));
}

void CMvString::reportConversion(const WCHAR* operation, WStringView text) {
    if (debugOutputWanted()) send(format(TEXT("CMvString::%s, Error during conversion of (%s)\n"), operation, text));
}

template <typename T>
T CMvString::wholeNumber(const WCHAR* text, const WCHAR* operation) {
    if (text == nullptr) {
        reportParameter(operation);
        return 0;
    }
    const WStringView source(text);
    const T value = static_cast<T>(scanInteger(source, ScanBase::Decimal).value_or(0));
    Digits digits;
    const std::size_t printed = widenInto(m_buffer, printDecimal(digits, value));
    if (WStringView(m_buffer.data(), printed) == source) return value;
    reportConversion(operation, source);
    return 0;
}

std::uint32_t CMvString::asUnsignedInt(const WCHAR* text) { return wholeNumber<std::uint32_t>(text, TEXT("asUnsignedInt")); }
std::int32_t CMvString::asInt(const WCHAR* text) { return wholeNumber<std::int32_t>(text, TEXT("asInt")); }
std::uint16_t CMvString::asUnsignedShort(const WCHAR* text) { return wholeNumber<std::uint16_t>(text, TEXT("asUnsignedShort")); }
std::int16_t CMvString::asShort(const WCHAR* text) { return wholeNumber<std::int16_t>(text, TEXT("asShort")); }

std::int32_t CMvString::asLong(const WCHAR* text) {
    constexpr const WCHAR* kOperation = TEXT("asLong");
    const WStringView source = viewOf(text);
    if (source.find(TEXT('x')) == WStringView::npos) return wholeNumber<std::int32_t>(text, kOperation);
    const std::uint32_t value = scanInteger(source, ScanBase::Hexadecimal).value_or(0);
    if (printsAsHexadecimal(value, source)) return static_cast<std::int32_t>(value);
    reportConversion(kOperation, source);
    return 0;
}

// "0x%.NlX" with N two less than the length of the text, printed and compared over at most m_capacity characters.
bool CMvString::printsAsHexadecimal(std::uint32_t value, WStringView text) {
    if (text.size() < 2) return false;
    Digits digits;
    const std::string_view printed = printHexadecimal(digits, value);
    const std::size_t precision = text.size() - 2;
    std::string line("0x");
    line.append(precision > printed.size() ? precision - printed.size() : 0, '0').append(printed);
    const std::size_t length = widenInto(m_buffer, line);
    return WStringView(m_buffer.data(), length) == text.substr(0, m_capacity);
}

float CMvString::asFloat(const WCHAR* text) {
    if (text == nullptr) {
        reportParameter(TEXT("asFloat"));
        return 0.0F;
    }
    // The category is put back to the name that this call returns, which is "C" itself: it stays "C" from here on.
    const char* const name = std::setlocale(LC_NUMERIC, "C");
    const WStringView source = viewOf(text).substr(0, m_capacity - 1);
    const auto end = std::replace_copy(source.begin(), source.end(), m_buffer.begin(), TEXT(','), TEXT('.'));
    const std::optional<float> value = scanFloat({m_buffer.begin(), end});
    if (!value) reportConversion(TEXT("asFloat"), text);
    std::setlocale(LC_NUMERIC, name == nullptr ? "" : name);
    return value.value_or(0.0F);
}

bool CMvString::asBoolean(const WCHAR* text) {
    if (text == nullptr) {
        reportParameter(TEXT("asBoolean"));
        return false;
    }
    const WStringView source(text);
    if (const auto number = scanInteger(source, ScanBase::Detect)) return *number != 0;
    if (!source.empty() && source.size() < m_capacity) {
        copyText(m_buffer, source);
        const WStringView word = toLower(m_buffer.data());
        if (word == TEXT("false")) return false;
        if (word == TEXT("true")) return true;
    }
    reportConversion(TEXT("asBoolean"), source);
    return false;
}

template <typename T>
WCHAR* CMvString::printNumber(T value, WCHAR* buffer, const WCHAR* operation) {
    if (buffer == nullptr) {
        reportParameter(operation);
        return nullptr;
    }
    Digits digits;
    buffer[widenInto({buffer, m_capacity}, printDecimal(digits, value))] = 0;
    return buffer;
}

WCHAR* CMvString::asPWchar(std::uint32_t value, WCHAR* buffer) { return printNumber(value, buffer, TEXT("asPWchar <unsigned int>")); }
WCHAR* CMvString::asPWchar(std::int32_t value, WCHAR* buffer) { return printNumber(value, buffer, TEXT("asPWchar <int>")); }
WCHAR* CMvString::asPWchar(std::uint16_t value, WCHAR* buffer) { return printNumber(value, buffer, TEXT("asPWchar <unsigned short>")); }
WCHAR* CMvString::asPWcharLong(std::uint32_t value, WCHAR* buffer) { return printNumber(value, buffer, TEXT("asPWchar <unsigned long>")); }

}  // namespace morvil
