// DitherMatrices.h - what ordered dithering compares with: for each cell of a matrix that repeats over the image the smallest
// grey value that becomes white. Tables only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace morvil {

template <std::size_t Side>
using DitherMatrix = std::array<std::array<std::uint8_t, Side>, Side>;

inline constexpr DitherMatrix<2> kMatrix2x2{{{0, 2}, {3, 1}}};
inline constexpr DitherMatrix<4> kMatrix4x4{{{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}}};
// Bayer's matrix but for the 58 in the second row, where his has 56: engraved pages have always had it so.
inline constexpr DitherMatrix<8> kMatrix8x8{{{0, 32, 8, 40, 2, 34, 10, 42},
                                             {16, 48, 24, 58, 18, 50, 26, 58},
                                             {4, 36, 12, 44, 6, 38, 14, 46},
                                             {20, 52, 28, 60, 22, 54, 30, 62},
                                             {1, 33, 9, 41, 3, 35, 11, 43},
                                             {17, 49, 25, 57, 19, 51, 27, 59},
                                             {5, 37, 13, 45, 7, 39, 15, 47},
                                             {21, 53, 29, 61, 23, 55, 31, 63}}};

// The matrix spread over 8 rows and 32 columns, so that a row of it serves any run of pixels that begins at a multiple of 32.
struct Thresholds {
    static constexpr std::size_t kRows = 8;
    static constexpr std::size_t kColumns = 32;
    alignas(32) std::array<std::array<std::uint8_t, kColumns>, kRows> white{};

    [[nodiscard]] constexpr const std::uint8_t* row(std::uint32_t y) const { return white[y % kRows].data(); }
};

// Grey g has the level floor(g * N * N / 255). It is white at the highest level, N * N, and where the cell is below its level: that
// is from the grey value on at which the level passes the cell.
template <std::size_t Side>
constexpr Thresholds thresholdsOf(const DitherMatrix<Side>& matrix) {
    constexpr std::size_t kLevels = Side * Side;
    Thresholds out;
    for (std::size_t y = 0; y < Thresholds::kRows; ++y) {
        for (std::size_t x = 0; x < Thresholds::kColumns; ++x) {
            const std::size_t passed = std::size_t{matrix[y % Side][x % Side]} + 1;
            out.white[y][x] = static_cast<std::uint8_t>((255 * passed + kLevels - 1) / kLevels);
        }
    }
    return out;
}

// Where the matrix holds grey values itself, a pixel is white above its cell. The bits of row and column interleaved:
inline constexpr DitherMatrix<4> kGreyMatrix4x4{{{0, 192, 48, 240}, {128, 64, 176, 112}, {32, 224, 16, 208}, {160, 96, 144, 80}}};
constexpr Thresholds thresholdsAbove(const DitherMatrix<4>& greys) {
    Thresholds out;
    for (std::size_t y = 0; y < Thresholds::kRows; ++y) {
        for (std::size_t x = 0; x < Thresholds::kColumns; ++x) out.white[y][x] = static_cast<std::uint8_t>(greys[y % 4][x % 4] + 1);
    }
    return out;
}

inline constexpr Thresholds kThresholds2x2 = thresholdsOf(kMatrix2x2);
inline constexpr Thresholds kThresholds4x4 = thresholdsOf(kMatrix4x4);
inline constexpr Thresholds kThresholds8x8 = thresholdsOf(kMatrix8x8);
inline constexpr Thresholds kThresholdsAbove4x4 = thresholdsAbove(kGreyMatrix4x4);

}  // namespace morvil
