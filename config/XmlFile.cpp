#include "config/XmlFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "platform/common/FileStream.h"

namespace morvil {

namespace {

constexpr std::size_t kPieceBytes = 4095;

bool isUtf16(std::span<const std::uint8_t> piece) { return IsTextUnicode(piece.data(), static_cast<INT>(piece.size()), nullptr) != FALSE; }

// `out` may lie between two characters: behind an odd number of bytes of UTF-16.
void widen(std::span<const std::uint8_t> piece, std::uint8_t* out) {
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const WCHAR unit = piece[i];
        std::memcpy(out + i * sizeof(unit), &unit, sizeof(unit));
    }
}

}  // namespace

bool readFileBytes(const WCHAR* path, std::uint64_t limit, std::vector<std::uint8_t>& bytes) {
    bytes.clear();
    FileStream file;
    if (!file.open(path, OpenMode::Read)) return false;
    const std::int64_t size = file.size();
    if (size < 0 || static_cast<std::uint64_t>(size) > limit) return false;
    bytes.resize(static_cast<std::size_t>(size));
    bytes.resize(file.read(bytes));
    if (file.failed()) bytes.clear();
    return !file.failed();
}

WString decodeFileBytes(std::span<const std::uint8_t> bytes, std::size_t& length, WString room) {
    WString text = std::move(room);
    text.resize(bytes.size());  // as much as the widest reading needs: two bytes for each
    auto* const out = reinterpret_cast<std::uint8_t*>(text.data());
    length = 0;
    while (!bytes.empty()) {
        const auto piece = bytes.first(std::min(kPieceBytes, bytes.size()));
        bytes = bytes.subspan(piece.size());
        if (isUtf16(piece)) {
            std::memcpy(out + length, piece.data(), piece.size());
            length += piece.size();
        } else {
            widen(piece, out + length);
            length += piece.size() * sizeof(WCHAR);
        }
    }
    text.resize(length / sizeof(WCHAR));
    return text;
}

bool loadFile(const WCHAR* path, WString& text, std::size_t& length) {
    length = 0;
    text.clear();
    try {
        std::vector<std::uint8_t> bytes;
        if (!readFileBytes(path, std::numeric_limits<INT>::max(), bytes)) return false;
        text = decodeFileBytes(bytes, length);
    } catch (const std::bad_alloc&) {
        length = 0;
    }
    return length > 0;
}

}  // namespace morvil
