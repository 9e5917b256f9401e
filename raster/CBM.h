// CBM.h - the bitmap section store: creates a complete BMP image inside an open file, fills it, reads and writes pixels, rows
// and rectangles of it and finds the box of its content. It works on a stream that the job writer lends it and never closes it.
// Layout: docs/job-file-format.md. Rows and columns count from 0; positions are absolute file positions. Printing thread only.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/common/FileStream.h"
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

    // The stream to work on; lent, not owned. Null takes it back.
    void setStream(FileStream* stream) { m_stream = stream; }
    // A separate file of its own ("w+b"), used for copies.
    bool Open(const WCHAR* path);
    void Close();

    bool CreateBitmap(int type, std::uint32_t width, std::uint32_t height);
    bool Seek(std::uint32_t column, std::uint32_t row);
    std::uint32_t GetPixel();
    bool SetPixel(std::uint32_t colour);
    bool ReadRow(std::uint8_t* buffer, std::uint32_t row, bool whole);
    bool WriteRow(const std::uint8_t* buffer, std::uint32_t row, bool whole);
    bool Fill(std::uint32_t value);
    bool ReadBitmapPart1BPP(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t widthBits, std::uint32_t rows, std::uint32_t column, std::uint32_t row);
    bool ReadBitmapPart8BPP(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t width, std::uint32_t rows, std::uint32_t column, std::uint32_t row);
    bool WriteBitmapPart1BPP(const std::uint8_t* source, std::uint32_t sourceBit, std::uint32_t widthBits, std::uint32_t rows, std::uint32_t column, std::uint32_t row);
    bool WriteBitmapPart8BPP(const std::uint8_t* source, std::uint32_t ignored, std::uint32_t width, std::uint32_t rows, std::uint32_t column, std::uint32_t row);
    bool WriteBitmap(const std::uint8_t* buffer);
    bool GetBoundingBox(ContentBox& box);
    bool GetUsedIndices8BPP(std::span<const std::uint8_t> image, std::vector<std::uint8_t>& list);
    bool WhitenPixels24BPP(std::uint8_t* image);
    bool CopyWhitened24BPP(const WCHAR* path);

    cColorTable& colourTable() { return m_colours; }
    [[nodiscard]] std::uint32_t width() const { return m_width; }
    [[nodiscard]] std::uint32_t height() const { return m_height; }
    [[nodiscard]] std::uint32_t stride() const { return m_stride; }
    [[nodiscard]] std::uint32_t imageSize() const { return m_imageSize; }
    [[nodiscard]] int bitsPerPixel() const { return m_bitsPerPixel; }
    [[nodiscard]] std::int64_t pixelPosition() const { return m_pixelPosition; }

  private:
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
