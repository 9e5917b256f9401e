// CBM.cpp - creating the section, single pixels, rows and filling. Rectangles: BitmapParts.cpp; content: BitmapContent.cpp.
#include "raster/CBM.h"

#include <algorithm>
#include <cstring>

#include "driver/log/Log.h"
#include "raster/BitmapHeader.h"

namespace morvil {

namespace {

constexpr std::uint32_t kBlockBytes = 1U << 20;  // rows are read and written in blocks of about this size

int bitsOfType(int type) {
    if (type == kBlackWhite || type == kWhiteBlack) return 1;
    return type == kTrueColour ? 24 : 8;
}

// Row byte counts are held in 16 bits: a longer row is truncated to what the count keeps.
constexpr std::uint32_t rowCount(std::uint32_t bytes) { return static_cast<std::uint16_t>(bytes); }

}  // namespace

CBM::CBM() = default;

bool CBM::Open(const WCHAR* path) {
    if (path == nullptr || !m_own.open(path, OpenMode::Create)) return false;
    m_stream = &m_own;
    return true;
}

void CBM::Close() {
    if (m_stream == &m_own) m_stream = nullptr;
    m_own.close();
}

bool CBM::CreateBitmap(int type, std::uint32_t width, std::uint32_t height) {
    const auto geometry = measureBitmap(width != 0 ? width : m_width, height != 0 ? height : m_height, bitsOfType(type));
    if (m_stream == nullptr || !geometry) return false;
    if (!m_colours.BuildTable(type)) return false;
    const std::int64_t start = m_stream->tell();
    if (start < 0) return false;

    m_width = geometry->width;
    m_height = geometry->height;
    m_bitsPerPixel = geometry->bitsPerPixel;
    m_stride = geometry->stride;
    m_rowPadding = geometry->stride - geometry->rowBytes;
    m_imageSize = geometry->imageSize;
    const std::vector<std::uint8_t> header = bitmapHeader(*geometry, m_colours.entries());
    m_bitmapPosition = start;
    m_pixelPosition = start + static_cast<std::int64_t>(header.size());
    const bool written = m_stream->write(header);
    logMorvil(1, kInformation, TEXT("CreateBitmap finished"), kLogEnd);
    return written;
}

bool CBM::Seek(std::uint32_t column, std::uint32_t row) {
    if (m_stream == nullptr || column >= m_width || row >= m_height) return false;
    m_column = column;
    m_row = row;
    return m_stream->seek(m_pixelPosition + std::int64_t{m_stride} * row + column);
}

// The bit of a 1-bit pixel counts columns modulo 7, not 8: the lowest bit of a byte is never tested. Readers of job files
// rely on it.
std::uint32_t CBM::colourOf(std::uint8_t byte, std::uint32_t column) const {
    const std::span<const std::uint32_t> entries = m_colours.entries();
    if (entries.empty()) return 0;
    const std::size_t last = entries.size() - 1;
    if (m_bitsPerPixel == 8) return entries[std::min<std::size_t>(byte, last)];
    const bool set = (byte >> (7 - column % 7) & 1) != 0;
    return entries[set ? std::min<std::size_t>(1, last) : 0];
}

std::uint32_t CBM::GetPixel() {
    if (m_stream == nullptr) return 0;
    const std::int64_t position = m_stream->tell();
    std::uint8_t byte = 0;
    if (m_stream->read({&byte, 1}) != 1) return 0;
    m_stream->seek(position);
    return colourOf(byte, m_column);
}

bool CBM::SetPixel(std::uint32_t colour) {
    if (m_stream == nullptr) return false;
    const std::int64_t position = m_stream->tell();
    const std::uint8_t index = m_colours.getNearestIndex(colour);
    return m_stream->write({&index, 1}) && m_stream->seek(position);
}

bool CBM::readExactly(std::span<std::uint8_t> buffer) { return m_stream->read(buffer) == buffer.size(); }

bool CBM::ReadRow(std::uint8_t* buffer, std::uint32_t row, bool whole) {
    LocalBlock<std::uint8_t> stored(m_stride);
    if (!stored) return true;
    if (!Seek(0, row) || !readExactly(stored.span())) return false;
    if (whole) {
        std::memcpy(buffer, stored.get(), m_stride);
    } else if (m_bitsPerPixel != 24) {
        std::memcpy(buffer, stored.get(), rowBytes());
        // the bits behind the last pixel are no part of the row
        if (m_bitsPerPixel == 1 && m_width % 8 != 0) buffer[m_width / 8] &= static_cast<std::uint8_t>(0xFF << (8 - m_width % 8));
    }
    return true;
}

bool CBM::WriteRow(const std::uint8_t* buffer, std::uint32_t row, bool whole) {
    const std::uint32_t bytes = rowCount(whole ? m_stride : rowBytes());
    LocalBlock<std::uint8_t> stored(std::size_t{bytes} + (whole ? 0 : m_rowPadding));  // what follows the pixels stays 0
    if (!stored) return true;
    std::memcpy(stored.get(), buffer, bytes);
    return Seek(0, row) && m_stream->write(stored.span());
}

bool CBM::ReadRows(std::span<std::uint8_t> buffer, std::uint32_t first) { return Seek(0, first) && readExactly(buffer); }

bool CBM::WriteRows(std::span<const std::uint8_t> buffer, std::uint32_t first) { return Seek(0, first) && m_stream->write(buffer); }

std::uint32_t CBM::rowsPerBlock() const {
    if (m_stride == 0) return std::max(m_height, 1U);
    return std::clamp(kBlockBytes / m_stride, 1U, std::max(m_height, 1U));
}

std::uint8_t CBM::fillByteOf(std::uint32_t value) const {
    if (m_bitsPerPixel == 24) return static_cast<std::uint8_t>(value & 0xFFU);
    const std::span<const std::uint32_t> entries = m_colours.entries();
    const auto found = std::find(entries.begin(), entries.end(), value);
    if (found == entries.end()) return 0;
    const auto index = static_cast<std::uint8_t>(found - entries.begin());
    if (m_bitsPerPixel == 1) return index != 0 ? 0xFF : 0x00;
    return index;
}

bool CBM::Fill(std::uint32_t value) {
    const std::uint32_t blockRows = rowsPerBlock();
    const LocalBlock<std::uint8_t> block(std::size_t{blockRows} * m_stride);  // zero, so the padding is
    if (!block) return true;
    const std::uint8_t byte = fillByteOf(value);
    for (std::uint32_t row = 0; row < blockRows; ++row) std::memset(block.get() + std::size_t{row} * m_stride, byte, rowBytes());
    for (std::uint32_t row = 0; row < m_height; row += std::min(blockRows, m_height - row)) {
        const std::uint32_t rows = std::min(blockRows, m_height - row);
        if (!WriteRows(block.span().first(std::size_t{rows} * m_stride), row)) return false;
    }
    return true;
}

bool CBM::WriteBitmap(const std::uint8_t* buffer) {
    if (!Seek(0, 0)) return false;
    const bool written = m_stream->write({buffer, m_imageSize});
    logMorvil(1, kInformation, TEXT("CBM::WriteBitmap, m_uiSizeBuffer=%d"), m_imageSize, kLogEnd);
    return written;
}

}  // namespace morvil
