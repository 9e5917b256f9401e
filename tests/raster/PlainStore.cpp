#include "raster/PlainStore.h"

#include <algorithm>

namespace morvil::test {

PlainStore::PlainStore(CBM& store, std::vector<std::uint8_t> bytes)
    : file(std::move(bytes)),
      pixelPosition(static_cast<std::size_t>(store.pixelPosition())),
      width(store.width()),
      height(store.height()),
      stride(store.stride()),
      bits(store.bitsPerPixel()),
      entries(store.colourTable().entries().begin(), store.colourTable().entries().end()) {}

bool PlainStore::seek(std::uint32_t toColumn, std::uint32_t row) {
    if (toColumn >= width || row >= height) return false;
    column = toColumn;
    position = pixelPosition + std::size_t{stride} * row + toColumn;
    return true;
}

bool PlainStore::readByte(std::uint8_t& byte) {
    if (position >= file.size()) return false;
    byte = file[position++];
    return true;
}

std::uint32_t PlainStore::getPixel() const {
    if (position >= file.size()) return 0;
    const std::uint8_t byte = file[position];
    if (bits == 8) return entries[std::min<std::size_t>(byte, entries.size() - 1)];
    return (byte & (1 << (7 - column % 7))) != 0 ? entries[1] : entries[0];
}

ContentBox PlainStore::boundingBox() {
    std::uint32_t left = width;
    std::uint32_t endRow = 0;
    std::uint32_t right = 0;
    std::uint32_t firstRow = height;
    std::uint32_t minimum = width;
    std::uint32_t maximum = 0;
    for (std::uint32_t r = 0; r < height; ++r) {
        seek(0, r);
        const std::uint32_t colour = getPixel();
        if (colour != 0xFFFFFF && colour != 0xFFFFFFFF) {
            left = 0;
            if (firstRow == height) firstRow = r;
            endRow = r;
        }
        const std::uint8_t* const row = file.data() + position;
        bool equal = true;
        std::vector<bool> differs(width);
        if (bits == 8) {
            for (std::uint32_t i = 0; i < width; ++i) differs[i] = row[i] != row[0];
        } else {
            const bool first = (row[0] & 0x80) != 0;
            for (std::uint32_t i = 0; i < width; ++i) differs[i] = ((row[i / 8] >> (7 - i % 8) & 1) != 0) != first;
        }
        for (std::uint32_t i = 0; i < width; ++i) equal = equal && !differs[i];
        if (equal) continue;
        if (firstRow == height) firstRow = r;
        endRow = r;
        for (std::uint32_t i = 0; i < width; ++i) {
            if (!differs[i]) continue;
            minimum = std::min(minimum, i);
            maximum = std::max(maximum, i);
        }
        if (left != 0) {
            left = minimum;
            right = maximum;
        } else {
            right = minimum - 1;
        }
    }
    return {.left = left, .endRow = endRow + 1, .right = right + 1, .firstRow = firstRow};
}

void PlainStore::readPart1(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t widthBits, std::uint32_t rows,
                           std::uint32_t fromColumn, std::uint32_t row) {
    firstBit = fromColumn % 8;
    std::uint32_t k = 0;
    if (fromColumn % 8 != 0) ++k;
    if (widthBits % 8 != 0) ++k;
    for (std::uint32_t i = 0; i < rows && row + i < height; ++i) {
        if (!seek(fromColumn / 8, row + i)) return;
        for (std::uint32_t b = 0; b < widthBits / 8 + k; ++b, ++dest) readByte(*dest);
    }
}

void PlainStore::readPart8(std::uint8_t* dest, std::uint32_t& firstBit, std::uint32_t partWidth, std::uint32_t rows,
                           std::uint32_t fromColumn, std::uint32_t row) {
    firstBit = 0;
    for (std::uint32_t i = 0; i < rows && row + i < height; ++i, dest += partWidth) {
        if (!seek(fromColumn, row + i)) return;
        for (std::uint32_t c = 0; c < partWidth && fromColumn + c < stride; ++c) readByte(dest[c]);
    }
}

void PlainStore::writePart1(const std::uint8_t* source, std::uint32_t sourceBit, std::uint32_t widthBits, std::uint32_t rows,
                            std::uint32_t toColumn, std::uint32_t row) {
    for (std::uint32_t r = row; r < row + rows && r < height; ++r) {
        std::uint8_t* const stored = file.data() + pixelPosition + std::size_t{stride} * r;
        for (std::uint32_t i = 0; i < widthBits && toColumn + i < stride * 8; ++i) {
            const bool bit = (source[(sourceBit + i) / 8] >> (7 - (sourceBit + i) % 8) & 1) != 0;
            const auto mask = static_cast<std::uint8_t>(0x80 >> ((toColumn + i) % 8));
            std::uint8_t& byte = stored[(toColumn + i) / 8];
            byte = static_cast<std::uint8_t>(bit ? byte | mask : byte & ~mask);
        }
        source += (sourceBit % 8 != 0 ? 1U : 0U) + (widthBits % 8 != 0 ? 1U : 0U) + widthBits / 8;
    }
}

void PlainStore::writePart8(const std::uint8_t* source, std::uint32_t partWidth, std::uint32_t rows, std::uint32_t toColumn,
                            std::uint32_t row) {
    for (std::uint32_t i = 0; i < rows && row + i < height; ++i, source += partWidth) {
        if (!seek(toColumn, row + i)) return;
        for (std::uint32_t c = 0; c < partWidth && toColumn + c < stride; ++c) file[position++] = source[c];
    }
}

std::vector<std::uint8_t> PlainStore::usedIndices() const {
    std::vector<std::uint8_t> list;
    for (std::uint32_t r = 0; r < height; ++r) {
        for (std::uint32_t c = 0; c < width; ++c) {
            const std::uint8_t byte = file[pixelPosition + std::size_t{stride} * r + c];
            if (std::find(list.begin(), list.end(), byte) == list.end()) list.push_back(byte);
        }
    }
    return list;
}

void PlainStore::whiten() {
    for (std::uint32_t r = 0; r < height; ++r) {
        for (std::uint32_t c = 0; c < width; ++c) {
            std::uint8_t* const pixel = file.data() + pixelPosition + std::size_t{stride} * r + std::size_t{c} * 3;
            if (pixel[2] >= 240 && pixel[1] <= 240 && pixel[0] <= 240) pixel[0] = pixel[1] = pixel[2] = 255;
        }
    }
}

}  // namespace morvil::test
