// XmlFile.h - brings a configuration file into memory and decides how its bytes are characters.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/common/Text.h"

namespace morvil {

// All bytes of a file. False, and `bytes` empty, when it cannot be opened or read, or holds more than `limit` bytes.
bool readFileBytes(const WCHAR* path, std::uint64_t limit, std::vector<std::uint8_t>& bytes);

// The bytes as UTF-16, judged in pieces of 4095 bytes each: one that is UTF-16 is taken as it stands, every other is widened
// from Latin-1. A file must therefore be all of one kind, and one of UTF-16 must fit into a piece. Returns the size of the text
// in bytes, so a widened piece counts twice. REQUIRES: `out` has a character for each byte.
std::size_t decodeFileBytes(std::span<const std::uint8_t> bytes, std::span<WCHAR> out);

// Both in one. True when at least one byte was read.
bool loadFile(const WCHAR* path, WString& text, std::size_t& length);

}  // namespace morvil
