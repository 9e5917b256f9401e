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

    const WCHAR* find(const WCHAR* text, const WCHAR* pattern);
    bool replace(WCHAR* text, const WCHAR* from, const WCHAR* to);
    bool nextToken(const WCHAR* source, const WCHAR* delimiters, WCHAR* destination, int count, const WCHAR** rest = nullptr);

  private:
    static constexpr std::uint32_t m_capacity = 260;
    std::array<WCHAR, m_capacity> m_buffer{};
};

}  // namespace morvil
