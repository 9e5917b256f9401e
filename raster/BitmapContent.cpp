// BitmapContent.cpp - looks at what the pixels hold: the box of the content, the palette indices in use, and the reddish pixels
// of true-colour images that become white.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

#include "raster/CBM.h"

namespace morvil {

namespace {

constexpr std::uint32_t kNoColour = 0xFFFFFFFF;  // an entry that no colour took; blank like white

using Word = std::uint64_t;

Word wordAt(const std::uint8_t* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

Word repeated(std::uint8_t byte) { return std::numeric_limits<Word>::max() / 0xFF * byte; }

// Whether all bytes are alike: each must equal its neighbour.
bool isUniform(std::span<const std::uint8_t> bytes) {
    return bytes.size() < 2 || std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

// Position of the first and the last byte other than `fill`; there is one.
std::size_t firstOther(std::span<const std::uint8_t> bytes, std::uint8_t fill) {
    std::size_t at = 0;
    while (at + sizeof(Word) <= bytes.size() && wordAt(bytes.data() + at) == repeated(fill)) at += sizeof(Word);
    while (bytes[at] == fill) ++at;
    return at;
}

std::size_t lastOther(std::span<const std::uint8_t> bytes, std::uint8_t fill) {
    std::size_t end = bytes.size();
    while (end >= sizeof(Word) && wordAt(bytes.data() + end - sizeof(Word)) == repeated(fill)) end -= sizeof(Word);
    while (bytes[end - 1] == fill) --end;
    return end - 1;
}

// Byte values in order of first occurrence.
class IndexCollector {
  public:
    explicit IndexCollector(std::vector<std::uint8_t>& list) : m_list(list) { m_list.clear(); }

    // Equal words behind each other, which most of a page is, are looked at once.
    void add(std::span<const std::uint8_t> bytes) {
        std::size_t at = 0;
        for (; at + sizeof(Word) <= bytes.size() && m_list.size() < m_seen.size(); at += sizeof(Word)) {
            const Word word = wordAt(bytes.data() + at);
            if (word == m_lastWord && m_hasWord) continue;
            addEach(bytes.subspan(at, sizeof(Word)));
            m_lastWord = word;
            m_hasWord = true;
        }
        addEach(bytes.subspan(at, std::min(bytes.size() - at, sizeof(Word) - 1)));
    }

  private:
    void addEach(std::span<const std::uint8_t> bytes) {
        for (const std::uint8_t byte : bytes) {
            if (m_seen[byte]) continue;
            m_seen[byte] = true;
            m_list.push_back(byte);
        }
    }

    std::vector<std::uint8_t>& m_list;
    std::array<bool, 256> m_seen{};
    Word m_lastWord = 0;
    bool m_hasWord = false;
};

}  // namespace

bool CBM::GetBoundingBox(ContentBox& box) {
    box = {};
    if (m_bitsPerPixel == 24) return false;
    const LocalBlock<std::uint8_t> block(std::size_t{rowsPerBlock()} * m_stride);
    if (!block) return false;
    ContentBox found{.left = m_width, .endRow = 0, .right = 0, .firstRow = m_height};
    Extent running{.left = m_width, .right = 0};  // of all rows so far
    for (std::uint32_t first = 0; first < m_height;) {
        const std::uint32_t rows = std::min(rowsPerBlock(), m_height - first);
        const std::span<std::uint8_t> stored = block.span().first(std::size_t{rows} * m_stride);
        if (!ReadRows(stored, first)) return false;
        for (std::uint32_t i = 0; i < rows; ++i)
            addRowContent(stored.subspan(std::size_t{i} * m_stride, rowBytes()), first + i, found, running);
        first += rows;
    }
    ++found.endRow;
    ++found.right;
    box = found;
    return true;
}

// A row whose first pixel is content pulls the box to the left border. From then on the right border is taken one pixel short,
// from the leftmost difference: the job application expects exactly this.
void CBM::addRowContent(std::span<std::uint8_t> row, std::uint32_t index, ContentBox& box, Extent& running) const {
    const std::uint32_t firstColour = colourOf(row[0], 0);
    if (firstColour != kWhite && firstColour != kNoColour) {
        box.left = 0;
        if (box.firstRow == m_height) box.firstRow = index;
        box.endRow = index;
    }
    std::uint8_t fill = row[0];
    if (m_bitsPerPixel == 1) {
        fill = (row[0] & 0x80) != 0 ? 0xFF : 0x00;
        // bits behind the last pixel count as equal
        const unsigned behind = m_width % 8 != 0 ? 0xFFU >> (m_width % 8) : 0U;
        row.back() = static_cast<std::uint8_t>((row.back() & ~behind) | (fill & behind));
    }
    if (row[0] == fill && isUniform(row)) return;

    if (box.firstRow == m_height) box.firstRow = index;
    box.endRow = index;
    auto first = static_cast<std::uint32_t>(firstOther(row, fill));
    auto last = static_cast<std::uint32_t>(lastOther(row, fill));
    if (m_bitsPerPixel == 1) {
        first = first * 8 + static_cast<std::uint32_t>(std::countl_zero(static_cast<std::uint8_t>(row[first] ^ fill)));
        last = last * 8 + 7 - static_cast<std::uint32_t>(std::countr_zero(static_cast<std::uint8_t>(row[last] ^ fill)));
    }
    running.left = std::min(running.left, first);
    running.right = std::max(running.right, last);
    if (box.left != 0) {
        box.left = running.left;
        box.right = running.right;
    } else {
        box.right = running.left - 1;
    }
}

bool CBM::GetUsedIndices8BPP(std::span<const std::uint8_t> buffer, std::vector<std::uint8_t>& list) {
    IndexCollector indices(list);
    if (m_bitsPerPixel != 8) return false;
    indices.add(buffer);
    return true;
}

bool CBM::GetUsedIndices8BPP(const std::uint8_t* image, std::vector<std::uint8_t>& list) {
    IndexCollector indices(list);
    if (m_bitsPerPixel != 8) return false;
    for (std::uint32_t row = 0; row < m_height; ++row) indices.add({image + std::size_t{row} * m_stride, m_width});
    return true;
}

// The test is mixed on purpose: a strong red whose green and blue are at most 240; a nearly white pixel stays as it is.
void CBM::whitenRow(std::uint8_t* row) const {
    constexpr std::uint8_t kLimit = 240;
    for (std::uint32_t i = 0; i < m_width; ++i, row += 3) {
        if (row[2] >= kLimit && row[1] <= kLimit && row[0] <= kLimit) row[0] = row[1] = row[2] = 0xFF;
    }
}

bool CBM::WhitenPixels24BPP(std::uint8_t* image) {
    if (m_bitsPerPixel != 24) return false;
    for (std::uint32_t row = 0; row < m_height; ++row) whitenRow(image + std::size_t{row} * m_stride);
    return true;
}

bool CBM::CopyWhitened24BPP(const WCHAR* path) {
    if (m_bitsPerPixel != 24) return false;
    CBM copy;
    if (!copy.Open(path) || !copy.CreateBitmap(m_colours.type(), m_width, m_height)) return false;
    const LocalBlock<std::uint8_t> block(std::size_t{rowsPerBlock()} * m_stride);
    if (!block) return false;
    for (std::uint32_t first = 0; first < m_height;) {
        const std::uint32_t rows = std::min(rowsPerBlock(), m_height - first);
        const std::span<std::uint8_t> stored = block.span().first(std::size_t{rows} * m_stride);
        if (!ReadRows(stored, first)) return false;
        for (std::uint32_t i = 0; i < rows; ++i) whitenRow(stored.data() + std::size_t{i} * m_stride);
        if (!copy.WriteRows(stored, first)) return false;
        first += rows;
    }
    return true;
}

}  // namespace morvil
