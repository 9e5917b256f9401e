// CodePage.h - texts of documents as Unicode characters, each with the number of code units that it took in the document (as
// many advance widths belong to it).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/platform.h"

namespace morvil::engine {

struct TextCharacter {
    char32_t character = 0;
    std::size_t units = 1;
};

// One-byte texts by the font's character set (1252 for the Western one and for unknown ones). What a code page lacks is U+FFFD.
std::vector<TextCharacter> decodeNarrow(std::span<const std::uint8_t> text, BYTE charSet);
// Little-endian UTF-16; unpaired surrogates become U+FFFD.
std::vector<TextCharacter> decodeWide(std::span<const std::uint8_t> text);

}  // namespace morvil::engine
