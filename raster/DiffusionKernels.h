// DiffusionKernels.h - the kernels of error diffusion: which neighbours behind a pixel get which share of its error. Tables only.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace morvil {

struct DiffusionCell {
    int dx;
    int dy;
    int weight;
};

template <std::size_t Cells>
struct DiffusionKernel {
    int divisor;
    std::array<DiffusionCell, Cells> cells;

    [[nodiscard]] constexpr int reach() const {  // columns to either side
        int most = 0;
        for (const DiffusionCell& cell : cells) most = std::max({most, cell.dx, -cell.dx});
        return most;
    }
    [[nodiscard]] constexpr int rowsBelow() const { return cells.back().dy; }
    [[nodiscard]] constexpr int sum() const {
        int all = 0;
        for (const DiffusionCell& cell : cells) all += cell.weight;
        return all;
    }
};

// Floyd, Steinberg: An adaptive algorithm for spatial greyscale. Proceedings of the SID 17, 1976.
inline constexpr DiffusionKernel<4> kFloydSteinberg{16, {{{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}}}};

// Jarvis, Judice, Ninke: A survey of techniques for the display of continuous tone pictures on bilevel displays. Computer Graphics
// and Image Processing 5, 1976.
inline constexpr DiffusionKernel<12> kJarvisJudiceNinke{
    48, {{{1, 0, 7}, {2, 0, 5}, {-2, 1, 3}, {-1, 1, 5}, {0, 1, 7}, {1, 1, 5}, {2, 1, 3}, {-2, 2, 1}, {-1, 2, 3}, {0, 2, 5}, {1, 2, 3}, {2, 2, 1}}}};

// Stucki: MECCA, a multiple-error correcting computation algorithm for bilevel image hardcopy reproduction. IBM Research RZ1060, 1981.
inline constexpr DiffusionKernel<12> kStucki{
    42, {{{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}, {-2, 2, 1}, {-1, 2, 2}, {0, 2, 4}, {1, 2, 2}, {2, 2, 1}}}};

// Burkes, 1988: Stucki's first two rows.
inline constexpr DiffusionKernel<7> kBurkes{32, {{{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}}}};

// Sierra, 1989.
inline constexpr DiffusionKernel<10> kSierra{
    32, {{{1, 0, 5}, {2, 0, 3}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 5}, {1, 1, 4}, {2, 1, 2}, {-1, 2, 2}, {0, 2, 3}, {1, 2, 2}}}};

// Stevenson, Arce: Binary display of hexagonally sampled continuous-tone images. Journal of the Optical Society of America A 2, 1985.
inline constexpr DiffusionKernel<12> kStevensonArce{
    200,
    {{{2, 0, 32}, {-3, 1, 12}, {-1, 1, 26}, {1, 1, 30}, {3, 1, 16}, {-2, 2, 12}, {0, 2, 26}, {2, 2, 12}, {-3, 3, 5}, {-1, 3, 12}, {1, 3, 12}, {3, 3, 5}}}};

static_assert(kFloydSteinberg.sum() == kFloydSteinberg.divisor && kJarvisJudiceNinke.sum() == kJarvisJudiceNinke.divisor);
static_assert(kStucki.sum() == kStucki.divisor && kBurkes.sum() == kBurkes.divisor);
static_assert(kSierra.sum() == kSierra.divisor && kStevensonArce.sum() == kStevensonArce.divisor);

// A pixel above this becomes white and leaves the error v - 255, else black with the error v.
inline constexpr int kLastBlack = 128;

}  // namespace morvil
