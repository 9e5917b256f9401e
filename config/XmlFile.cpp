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

// The file is read into the room that the one before left, and one byte more, so that a single call usually tells its end as
// well. Only of a larger file the size is asked.
bool readFileBytes(const WCHAR* path, std::uint64_t limit, std::vector<std::uint8_t>& bytes) {
    constexpr std::size_t kUsualFile = std::size_t{8} << 10;
    FileStream file(path, OpenMode::Read);
    bytes.resize(std::max(bytes.size() + 1, kUsualFile));
    std::size_t total = file.readOnce(bytes);
    bool whole = file.isOpen();
    if (total == bytes.size()) {
        const auto size = static_cast<std::uint64_t>(file.size());  // one that is not told lies beyond every limit
        whole = whole && size <= limit;
        if (whole && size > total) bytes.resize(static_cast<std::size_t>(size));
        total += file.read(std::span(bytes).subspan(total));
    }
    whole = whole && !file.failed() && total <= limit;
    bytes.resize(whole ? total : 0);
    return whole;
}

std::size_t decodeFileBytes(std::span<const std::uint8_t> bytes, std::span<WCHAR> out) {
    auto* const text = reinterpret_cast<std::uint8_t*>(out.data());
    std::size_t length = 0;
    while (!bytes.empty()) {
        const auto piece = bytes.first(std::min(kPieceBytes, bytes.size()));
        bytes = bytes.subspan(piece.size());
        if (isUtf16(piece)) {
            std::memcpy(text + length, piece.data(), piece.size());
            length += piece.size();
        } else {
            widen(piece, text + length);
            length += piece.size() * sizeof(WCHAR);
        }
    }
    return length;
}

bool loadFile(const WCHAR* path, WString& text, std::size_t& length) {
    length = 0;
    text.clear();
    try {
        std::vector<std::uint8_t> bytes;
        if (!readFileBytes(path, std::numeric_limits<INT>::max(), bytes)) return false;
        text.resize(bytes.size());
        length = decodeFileBytes(bytes, text);
        text.resize(length / sizeof(WCHAR));
    } catch (const std::bad_alloc&) {
        length = 0;
    }
    return length > 0;
}

}  // namespace morvil
