// CBM.h - the bitmap section store: creates a complete BMP image inside an open file, fills it, reads and writes pixels, rows
// and rectangles of it and finds the box of its content. It works on a stream that the job writer lends it and never closes it.
// Layout: docs/job-file-format.md. Rows and columns count from 0; positions are absolute file positions. The file is touched in
// whole rows or blocks of rows, never byte by byte (single pixels apart). Printing thread only.
// Operations return false when the stream is missing, too short or fails; a failed write also shows in the stream's failed().
// Where the buffer for rows cannot be had, ReadRow, WriteRow and Fill do nothing and return true, the others return false.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/common/FileStream.h"
#include "platform/common/LocalBlock.h"
#include "raster/cColorTable.h"

namespace morvil {

// Columns and rows that hold content; right and endRow are one past the last.
struct ContentBox {
    std::uint32_t left;
    std::uint32_t endRow;
    std::uint32_t right;
    std::uint32_t firstRow;
};

class CBM {
  public:
    CBM();
    CBM(const CBM&) = delete;  // m_stream may point at the store's own file
    CBM& operator=(const CBM&) = delete;

    // The stream to work on; lent, not owned. Null takes it back.
    void setStream(FileStream* stream) { m_stream = stream; }
    // A separate file of its own ("w+b"), used for copies.
    bool Open(const WCHAR* path);
    // Closes that file. A lent stream stays as it is.
    void Close();

    // Writes header and palette at the stream's position, which then stands at the pixel data. A width or height of 0 keeps the
    // previous one. Nothing is written, and the store stays as it was, when the image would exceed 2^31 - 1 bytes.
    bool CreateBitmap(int type, std::uint32_t width, std::uint32_t height);
    // The column counts bytes within the row for every bit depth.
    bool Seek(std::uint32_t column, std::uint32_t row);
    // The colour of the byte at the stream's position, which stays; 0 when it cannot be read.
    std::uint32_t GetPixel();
    bool SetPixel(std::uint32_t colour);
    // `whole`: the buffer holds stride() bytes, else the bytes of the row's pixels.
    bool ReadRow(std::uint8_t* buffer, std::uint32_t row, bool whole);
    bool WriteRow(const std::uint8_t* buffer, std::uint32_t row, bool whole);
    // Whole stored rows from `first` on, as many as the buffer holds (a multiple of stride() bytes).
    bool ReadRows(std::span<std::uint8_t> buffer, std::uint32_t first);
    bool WriteRows(std::span<const std::uint8_t> buffer, std::uint32_t first);
    bool Fill(std::uint32_t value);
    // `dest` holds rows * partBytes1BPP(widthBits, column) bytes.
    bool ReadBitmapPart1BPP(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t widthBits, std::uint32_t rows, std::uint32_t column,
                            std::uint32_t row);
    bool ReadBitmapPart8BPP(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t width, std::uint32_t rows, std::uint32_t column,
                            std::uint32_t row);
    // `source` holds rows * partBytes1BPP(widthBits, sourceBit) bytes, and sourceBit / 8 more.
    bool WriteBitmapPart1BPP(const std::uint8_t* source, std::uint32_t sourceBit, std::uint32_t widthBits, std::uint32_t rows,
                             std::uint32_t column, std::uint32_t row);
    bool WriteBitmapPart8BPP(const std::uint8_t* source, std::uint32_t ignored, std::uint32_t width, std::uint32_t rows,
                             std::uint32_t column, std::uint32_t row);
    bool WriteBitmap(const std::uint8_t* buffer);
    // For 1 and 8 bits. False leaves an empty box (all zero).
    bool GetBoundingBox(ContentBox& box);
    // Byte values in order of first occurrence: of a buffer, and of an image of this store's size whose rows lie stride() apart.
    bool GetUsedIndices8BPP(std::span<const std::uint8_t> buffer, std::vector<std::uint8_t>& list);
    bool GetUsedIndices8BPP(const std::uint8_t* image, std::vector<std::uint8_t>& list);
    bool WhitenPixels24BPP(std::uint8_t* image);
    bool CopyWhitened24BPP(const WCHAR* path);

    // Bytes that ReadBitmapPart1BPP copies for each row, and WriteBitmapPart1BPP takes for each row when the source begins at
    // bit `firstBit` of a byte: one more for each side that straddles a byte.
    static constexpr std::uint32_t partBytes1BPP(std::uint32_t widthBits, std::uint32_t firstBit) {
        return widthBits / 8 + (firstBit % 8 != 0 ? 1U : 0U) + (widthBits % 8 != 0 ? 1U : 0U);
    }

    cColorTable& colourTable() { return m_colours; }
    [[nodiscard]] std::uint32_t width() const { return m_width; }
    [[nodiscard]] std::uint32_t height() const { return m_height; }
    [[nodiscard]] std::uint32_t stride() const { return m_stride; }
    [[nodiscard]] std::uint32_t imageSize() const { return m_imageSize; }
    [[nodiscard]] int bitsPerPixel() const { return m_bitsPerPixel; }
    [[nodiscard]] std::int64_t pixelPosition() const { return m_pixelPosition; }
    [[nodiscard]] std::int64_t bitmapPosition() const { return m_bitmapPosition; }

  private:
    struct Extent {
        std::uint32_t left;
        std::uint32_t right;
    };

    [[nodiscard]] std::uint32_t rowBytes() const { return m_stride - m_rowPadding; }
    [[nodiscard]] std::uint32_t rowsPerBlock() const;
    [[nodiscard]] std::uint32_t colourOf(std::uint8_t byte, std::uint32_t column) const;
    [[nodiscard]] std::uint8_t fillByteOf(std::uint32_t value) const;
    bool readExactly(std::span<std::uint8_t> buffer);
    void addRowContent(std::span<std::uint8_t> row, std::uint32_t index, ContentBox& box, Extent& running) const;
    void whitenRow(std::uint8_t* row) const;

    FileStream* m_stream = nullptr;
    FileStream m_own;
    std::uint32_t m_width = 0;
    std::uint32_t m_height = 0;
    std::uint32_t m_column = 0;
    std::uint32_t m_row = 0;
    std::uint32_t m_stride = 0;
    std::uint32_t m_imageSize = 0;
    std::int64_t m_pixelPosition = 0;
    std::int64_t m_bitmapPosition = 0;
    std::uint32_t m_rowPadding = 0;
    int m_bitsPerPixel = 8;
    cColorTable m_colours;
};

}  // namespace morvil
