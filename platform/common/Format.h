// Format.h - the one formatter behind every log line, job file line and built path, the same on both hosts.
// It understands the platform's wide printf: %d %i %u %x %X %c %s %f with flags, width and precision, `h` (16 bits) and
// `l` (32 bits, as LONG is on Windows), `%wc`, `%%`. %s takes UTF-16 text; %f always prints a point. Arguments carry their
// own type, so a format that asks for something else prints what fits instead of reading wrong memory.
// Surplus arguments are ignored; a missing argument prints as 0 or nothing.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <type_traits>

#include "platform/common/Text.h"

namespace morvil {

class FormatArg {
  public:
    enum class Kind : std::uint8_t { Integer, Real, Text };

    template <std::integral T>
    constexpr FormatArg(T value)  // NOLINT(google-explicit-constructor): arguments convert as printf's do
        : m_kind(Kind::Integer), m_integer(static_cast<std::int64_t>(value)) {}
    template <typename T>
    requires std::is_enum_v<T>
    constexpr FormatArg(T value) : m_kind(Kind::Integer), m_integer(static_cast<std::int64_t>(value)) {}  // NOLINT
    constexpr FormatArg(float value) : m_kind(Kind::Real), m_real(value) {}                               // NOLINT
    constexpr FormatArg(double value) : m_kind(Kind::Real), m_real(value) {}                              // NOLINT
    // A null text prints as on the platform.
    FormatArg(const WCHAR* text)
        : m_kind(Kind::Text), m_text(text == nullptr ? WStringView(TEXT("(null)")) : WStringView(text)) {}  // NOLINT
    FormatArg(WStringView text) : m_kind(Kind::Text), m_text(text) {}                                       // NOLINT
    FormatArg(const WString& text) : m_kind(Kind::Text), m_text(text) {}                                    // NOLINT

    [[nodiscard]] Kind kind() const { return m_kind; }
    // A real number without its fraction; 0 when no whole number of 64 bits comes near.
    [[nodiscard]] std::int64_t integer() const {
        if (m_kind != Kind::Real) return m_integer;
        return m_real > -9.2e18 && m_real < 9.2e18 ? static_cast<std::int64_t>(m_real) : 0;
    }
    [[nodiscard]] double real() const { return m_kind == Kind::Real ? m_real : static_cast<double>(m_integer); }
    [[nodiscard]] WStringView text() const { return m_text; }

  private:
    Kind m_kind;
    std::int64_t m_integer = 0;
    double m_real = 0.0;
    WStringView m_text;
};

// The low 32 bits of a pointer or handle, which is what "%X" prints of one on both hosts.
inline std::uint32_t low32(const void* pointer) { return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer)); }

// Appends the formatted text to `out`.
void formatTo(WString& out, WStringView format, std::span<const FormatArg> arguments);

template <typename... Args>
WString format(WStringView text, const Args&... arguments) {
    WString out;
    const std::initializer_list<FormatArg> list{FormatArg(arguments)...};
    formatTo(out, text, std::span<const FormatArg>(list.begin(), list.size()));
    return out;
}

// Formats into a fixed buffer; false when the text was cut. The buffer always ends with a zero character.
template <typename... Args>
bool formatInto(std::span<WCHAR> buffer, WStringView text, const Args&... arguments) {
    return copyText(buffer, format(text, arguments...));
}

}  // namespace morvil
