// BitmapFile.h - a bitmap store over a file of its own for tests, and images to put into it.
#pragma once

#include <gtest/gtest.h>

#include <random>

#include "raster/CBM.h"
#include "raster/Workspace.h"

namespace morvil::test {

inline constexpr const WCHAR* kBitmapPath = TEXT("C:\\job.tsa");

// `lead` bytes of other content stand in front of the bitmap.
class BitmapFile {
  public:
    BitmapFile(int type, std::uint32_t width, std::uint32_t height, std::size_t lead = 0) {
        EXPECT_TRUE(stream.open(kBitmapPath, OpenMode::Create));
        EXPECT_TRUE(stream.write(std::string(lead, '#')));
        store.setStream(&stream);
        EXPECT_TRUE(store.CreateBitmap(type, width, height));
    }
    // Writes the pixel rows, padding and all.
    void put(const std::vector<std::uint8_t>& image) { EXPECT_TRUE(store.WriteRows(image, 0)); }
    // Random pixels; with few kinds of bytes some rows are uniform. Padding is 0.
    void putRandom(std::mt19937& random, unsigned kinds) {
        std::vector<std::uint8_t> image(store.imageSize());
        for (std::uint32_t r = 0; r < store.height(); ++r) {
            const bool blank = random() % 3 == 0;
            for (std::uint32_t c = 0; c < rowBytes(); ++c) {
                const auto byte = static_cast<std::uint8_t>(random() % kinds * 255 / std::max(kinds - 1, 1U));
                image[std::size_t{r} * store.stride() + c] = blank && random() % 16 != 0 ? 255 : byte;
            }
        }
        put(image);
    }
    [[nodiscard]] std::uint32_t rowBytes() const {
        if (store.bitsPerPixel() == 1) return (store.width() + 7) / 8;
        return store.width() * static_cast<std::uint32_t>(store.bitsPerPixel() / 8);
    }
    [[nodiscard]] static std::vector<std::uint8_t> bytes() { return Workspace::readFile(kBitmapPath); }
    // The rows as they are stored.
    [[nodiscard]] std::vector<std::uint8_t> pixels() const {
        const std::vector<std::uint8_t> all = bytes();
        return {all.begin() + static_cast<std::ptrdiff_t>(store.pixelPosition()), all.end()};
    }

    FileStream stream;
    CBM store;
};

}  // namespace morvil::test
