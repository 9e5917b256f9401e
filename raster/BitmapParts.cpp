// BitmapParts.cpp - copies rectangles out of and into the bitmap section. Rectangles of 1-bit images begin and end anywhere
// within bytes; those bits are kept (reading copies the bytes that hold them, writing leaves the neighbours alone).
#include <algorithm>

#include "driver/log/Log.h"
#include "raster/CBM.h"

namespace morvil {

namespace {

// The 8 bits of `source` from bit `position` on, most significant first. Bytes from `bytes` on count as 0.
std::uint8_t bitsAt(const std::uint8_t* source, std::uint64_t position, std::uint64_t bytes) {
    const std::uint64_t at = position / 8;
    const auto shift = static_cast<unsigned>(position % 8);
    const unsigned high = at < bytes ? source[at] : 0U;
    const unsigned low = shift != 0 && at + 1 < bytes ? source[at + 1] : 0U;
    return static_cast<std::uint8_t>((high << 8 | low) >> (8 - shift));
}

// Replaces the bits `first` to `end` - 1 of `row` by those of `source` from `sourceBit` on.
void replaceBits(std::uint8_t* row, std::uint64_t first, std::uint64_t end, const std::uint8_t* source, std::uint64_t sourceBit) {
    const std::uint64_t sourceBytes = (sourceBit + (end - first) + 7) / 8;
    for (std::uint64_t bit = first; bit < end;) {
        const auto offset = static_cast<unsigned>(bit % 8);
        const auto count = static_cast<unsigned>(std::min<std::uint64_t>(8 - offset, end - bit));
        const unsigned mask = (0xFFU << (8 - count) & 0xFFU) >> offset;
        const unsigned bits = static_cast<unsigned>(bitsAt(source, sourceBit + (bit - first), sourceBytes)) >> offset;
        row[bit / 8] = static_cast<std::uint8_t>((row[bit / 8] & ~mask) | (bits & mask));
        bit += count;
    }
}

}  // namespace

bool CBM::ReadBitmapPart1BPP(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t widthBits, std::uint32_t rows, std::uint32_t column,
                             std::uint32_t row) {
    logMorvil(1, kInformation, TEXT("CBM::ReadBitmapPart1BPP"), kLogEnd);
    firstBit = column % 8;
    const std::uint32_t bytes = partBytes1BPP(widthBits, column);
    bool done = true;
    for (std::uint32_t i = 0; done && i < rows && row < m_height - std::min(i, m_height); ++i) {
        // A rectangle at the right border may take its last byte from the next row, or from behind the image, where the file
        // may end: only bytes of the row itself must be there.
        const std::uint32_t own = std::min(bytes, m_stride - std::min(column / 8, m_stride));
        done = Seek(column / 8, row + i) && m_stream->read({dest, bytes}) >= own;
        dest += bytes;
    }
    logMorvil(1, kInformation, TEXT("CBM::ReadBitmapPart1BPP finished"), kLogEnd);
    return done;
}

bool CBM::ReadBitmapPart8BPP(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t width, std::uint32_t rows, std::uint32_t column,
                             std::uint32_t row) {
    logMorvil(1, kInformation, TEXT("CBM::ReadBitmapPart8BPP"), kLogEnd);
    firstBit = 0;
    const std::uint32_t bytes = std::min(width, m_stride - std::min(column, m_stride));
    bool done = true;
    for (std::uint32_t i = 0; done && i < rows && row < m_height - std::min(i, m_height); ++i) {
        done = Seek(column, row + i) && readExactly({dest, bytes});
        dest += width;
    }
    logMorvil(1, kInformation, TEXT("CBM::ReadBitmapPart8BPP finished"), kLogEnd);
    return done;
}

bool CBM::WriteBitmapPart1BPP(const std::uint8_t* source, std::uint32_t sourceBit, std::uint32_t widthBits, std::uint32_t rows,
                              std::uint32_t column, std::uint32_t row) {
    logMorvil(1, kInformation, TEXT("CBM::WriteBitmapPart1BPP"), kLogEnd);
    const std::uint32_t advance = partBytes1BPP(widthBits, sourceBit);
    const std::uint64_t end = std::min(std::uint64_t{column} + widthBits, std::uint64_t{m_stride} * 8);
    const auto endRow = static_cast<std::uint32_t>(std::min<std::uint64_t>(std::uint64_t{row} + rows, m_height));
    const LocalBlock<std::uint8_t> block(std::size_t{rowsPerBlock()} * m_stride);
    bool done = static_cast<bool>(block);
    while (done && row < endRow) {
        const std::uint32_t blockRows = std::min(rowsPerBlock(), endRow - row);
        const std::span<std::uint8_t> stored = block.span().first(std::size_t{blockRows} * m_stride);
        done = ReadRows(stored, row);
        for (std::uint32_t i = 0; done && column < end && i < blockRows; ++i, source += advance) {
            replaceBits(stored.data() + std::size_t{i} * m_stride, column, end, source, sourceBit);
        }
        done = done && WriteRows(stored, row);
        row += blockRows;
    }
    logMorvil(1, kInformation, TEXT("CBM::WriteBitmapPart1BPP finished"), kLogEnd);
    return done;
}

bool CBM::WriteBitmapPart8BPP(const std::uint8_t* source, std::uint32_t /*ignored*/, std::uint32_t width, std::uint32_t rows,
                              std::uint32_t column, std::uint32_t row) {
    logMorvil(1, kInformation, TEXT("CBM::WriteBitmapPart8BPP"), kLogEnd);
    const std::uint32_t bytes = std::min(width, m_stride - std::min(column, m_stride));
    bool done = true;
    for (std::uint32_t i = 0; done && i < rows && row < m_height - std::min(i, m_height); ++i) {
        done = Seek(column, row + i) && m_stream->write({source, bytes});
        source += width;
    }
    logMorvil(1, kInformation, TEXT("CBM::WriteBitmapPart8BPP finished"), kLogEnd);
    return done;
}

}  // namespace morvil
