// PlainStore.h - the bitmap store in its plainest form: one file as a vector of bytes, every operation byte by byte, bit by bit,
// in the order in which it is defined. Slow; what the store does with blocks of rows is compared with it.
#pragma once

#include <cstdint>
#include <vector>

#include "raster/CBM.h"

namespace morvil::test {

struct PlainStore {
    std::vector<std::uint8_t> file;
    std::size_t pixelPosition = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t stride = 0;
    int bits = 8;
    std::vector<std::uint32_t> entries;
    std::size_t position = 0;
    std::uint32_t column = 0;

    // The same image as `store`, whose file holds `bytes`.
    PlainStore(CBM& store, std::vector<std::uint8_t> bytes);

    bool seek(std::uint32_t toColumn, std::uint32_t row);
    std::uint32_t getPixel() const;
    ContentBox boundingBox();
    void readPart1(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t widthBits, std::uint32_t rows, std::uint32_t fromColumn,
                   std::uint32_t row);
    void readPart8(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t partWidth, std::uint32_t rows, std::uint32_t fromColumn,
                   std::uint32_t row);
    void writePart1(const std::uint8_t* source, std::uint32_t sourceBit, std::uint32_t widthBits, std::uint32_t rows,
                    std::uint32_t toColumn, std::uint32_t row);
    void writePart8(const std::uint8_t* source, std::uint32_t partWidth, std::uint32_t rows, std::uint32_t toColumn, std::uint32_t row);
    std::vector<std::uint8_t> usedIndices() const;
    void whiten();

  private:
    bool readByte(std::uint8_t& byte);
};

}  // namespace morvil::test
