// CMvString.h - typed conversions between configuration texts and numbers, with the round-trip rule: a text is a whole
// number only if printing the number back gives exactly that text. Short-lived; holds no value between calls. A failure sends
// one line to the debugger output and yields 0, 0.0, false or null; nothing throws.
#pragma once

#include <array>
#include <cstdint>

#include "platform/common/Text.h"

namespace morvil {

class CMvString {
  public:
    CMvString() {}  // NOLINT(modernize-use-equals-default): the default one would clear the buffer, for each conversion

    std::uint32_t asUnsignedInt(const WCHAR* text);
    std::int32_t asInt(const WCHAR* text);
    std::uint16_t asUnsignedShort(const WCHAR* text);
    std::int16_t asShort(const WCHAR* text);
    std::int32_t asLong(const WCHAR* text);
    float asFloat(const WCHAR* text);
    bool asBoolean(const WCHAR* text);

    // `buffer` holds at least 261 characters; the result is `buffer`, or null when nothing was printed.
    WCHAR* asPWchar(std::uint32_t value, WCHAR* buffer);
    WCHAR* asPWchar(std::int32_t value, WCHAR* buffer);
    WCHAR* asPWchar(std::uint16_t value, WCHAR* buffer);
    WCHAR* asPWcharLong(std::uint32_t value, WCHAR* buffer);  // the platform's unsigned long

    WCHAR* toLower(WCHAR* text);
    WCHAR* toUTF8(const WCHAR* source, WCHAR* destination);

    // The first occurrence; null for none, and for texts that are empty or m_capacity characters or longer.
    const WCHAR* find(const WCHAR* text, const WCHAR* pattern);
    // Replaces every occurrence in place. False, and nothing done, when `to` is longer than `from` or `from` is empty or too long.
    bool replace(WCHAR* text, const WCHAR* from, const WCHAR* to);
    // Takes `count` tokens in turn and copies the last of them, up to 259 characters, into `destination`; `rest` is where the
    // next token begins, the end of the text when there is none. What lies behind the last token is an empty one. False, and
    // nothing written, on wrong use (1 to 9 delimiters).
    bool nextToken(const WCHAR* source, const WCHAR* delimiters, WCHAR* destination, int count, const WCHAR** rest = nullptr);

  private:
    static constexpr std::uint32_t m_capacity = 260;

    template <typename T>
    T wholeNumber(const WCHAR* text, const WCHAR* operation);
    template <typename T>
    WCHAR* printNumber(T value, WCHAR* buffer, const WCHAR* operation);
    bool printsAsHexadecimal(std::uint32_t value, WStringView text);
    void send(WStringView text);
    void reportParameter(const WCHAR* operation);
    void reportConversion(const WCHAR* operation, WStringView text);
    static void copyPart(WCHAR* destination, WStringView token);

    std::array<WCHAR, m_capacity> m_buffer;
};

}  // namespace morvil
