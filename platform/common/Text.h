// Text.h - UTF-16 text helpers that both hosts share: length, comparison, Latin-1 conversion and fixed buffers.
// No state; any thread.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace morvil {

using WString = std::basic_string<WCHAR>;
using WStringView = std::basic_string_view<WCHAR>;

// Texts that the driver keeps in fixed buffers are cut to the buffer and always end with a zero character.
inline constexpr std::size_t kPathCharacters = 260;

// The text behind a pointer; empty for null.
inline WStringView viewOf(const WCHAR* text) { return text == nullptr ? WStringView() : WStringView(text); }

// The text in a fixed buffer, up to its first zero character or its end.
WStringView viewOf(std::span<const WCHAR> buffer);

// Copies as much of `text` as fits, ends it with a zero character and clears the rest. Returns false when it was cut.
bool copyText(std::span<WCHAR> buffer, WStringView text);

// One byte per character; what Latin-1 lacks becomes '?'.
std::string toLatin1(WStringView text);
WString fromLatin1(std::string_view bytes);

// UTF-8 for the world outside the driver (command line, JSON, host file names). Unpaired surrogates become U+FFFD.
std::string toUtf8(WStringView text);
WString fromUtf8(std::string_view bytes);

}  // namespace morvil
