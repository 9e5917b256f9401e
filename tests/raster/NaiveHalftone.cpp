#include "raster/NaiveHalftone.h"

#include <cmath>
#include <random>

namespace morvil::test {

namespace {

struct Cell {
    int dx;
    int dy;
    int weight;
};
struct Kernel {
    int divisor;
    std::vector<Cell> cells;
};

// The kernels as they are printed: X is the pixel, each row its weights from the leftmost column on.
Kernel kernelOf(int divisor, const std::vector<std::vector<int>>& rows) {
    Kernel kernel{divisor, {}};
    const int reach = static_cast<int>(rows[0].size());
    for (int i = 0; i < reach; ++i) kernel.cells.push_back({i + 1, 0, rows[0][static_cast<std::size_t>(i)]});
    for (std::size_t y = 1; y < rows.size(); ++y) {
        const int middle = static_cast<int>(rows[y].size()) / 2;
        for (int i = 0; i < static_cast<int>(rows[y].size()); ++i) {
            kernel.cells.push_back({i - middle, static_cast<int>(y), rows[y][static_cast<std::size_t>(i)]});
        }
    }
    return kernel;
}

Kernel kernelOf(unsigned method) {
    switch (method) {
        case 2: return kernelOf(32, {{8, 4}, {2, 4, 8, 4, 2}});
        case 3: return kernelOf(42, {{8, 4}, {2, 4, 8, 4, 2}, {1, 2, 4, 2, 1}});
        case 4: return kernelOf(48, {{7, 5}, {3, 5, 7, 5, 3}, {1, 3, 5, 3, 1}});
        case 5: return kernelOf(32, {{5, 3}, {2, 4, 5, 4, 2}, {2, 3, 2}});
        case 6: return kernelOf(200, {{0, 32}, {12, 0, 26, 0, 30, 0, 16}, {12, 0, 26, 0, 12}, {5, 0, 12, 0, 12, 0, 5}});
        default: return kernelOf(16, {{7}, {3, 5, 1}});
    }
}

class BitPage {
  public:
    explicit BitPage(const NaiveGrey& grey) : m_rowBytes((grey.width + 31) / 32 * 4), m_bits(m_rowBytes * grey.height) {}
    void set(std::uint32_t x, std::uint32_t y) {
        std::uint8_t& byte = m_bits[y * m_rowBytes + x / 8];
        byte = static_cast<std::uint8_t>(byte | 1U << (7 - x % 8));
    }
    Bytes take() { return std::move(m_bits); }

  private:
    std::size_t m_rowBytes;
    Bytes m_bits;
};

constexpr int kMatrix2[2][2] = {{0, 2}, {3, 1}};
constexpr int kMatrix4[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
constexpr int kMatrix8[8][8] = {{0, 32, 8, 40, 2, 34, 10, 42},   {16, 48, 24, 58, 18, 50, 26, 58}, {4, 36, 12, 44, 6, 38, 14, 46},
                                {20, 52, 28, 60, 22, 54, 30, 62}, {1, 33, 9, 41, 3, 35, 11, 43},    {17, 49, 25, 57, 19, 51, 27, 59},
                                {5, 37, 13, 45, 7, 39, 15, 47},   {21, 53, 29, 61, 23, 55, 31, 63}};

int matrixCell(unsigned side, std::uint32_t x, std::uint32_t y) {
    if (side == 2) return kMatrix2[y % 2][x % 2];
    return side == 4 ? kMatrix4[y % 4][x % 4] : kMatrix8[y % 8][x % 8];
}

}  // namespace

Bytes naiveOrdered(const NaiveGrey& grey, unsigned side) {
    const int levels = static_cast<int>(side * side);
    BitPage page(grey);
    for (std::uint32_t y = 0; y < grey.height; ++y) {
        for (std::uint32_t x = 0; x < grey.width; ++x) {
            const int level = static_cast<int>(std::floor(grey.pixels[y * grey.width + x] * levels / 255.0));
            if (level == levels || matrixCell(side, x, y) < level % levels) page.set(x, y);
        }
    }
    return page.take();
}

Bytes naiveGreyThresholds(const NaiveGrey& grey) {
    static constexpr int kTable[4][4] = {{0, 192, 48, 240}, {128, 64, 176, 112}, {32, 224, 16, 208}, {160, 96, 144, 80}};
    BitPage page(grey);
    for (std::uint32_t y = 0; y < grey.height; ++y) {
        for (std::uint32_t x = 0; x < grey.width; ++x) {
            if (grey.pixels[y * grey.width + x] > kTable[y % 4][x % 4]) page.set(x, y);
        }
    }
    return page.take();
}

Bytes naiveDiffusion(const NaiveGrey& grey, unsigned method) {
    const Kernel kernel = kernelOf(method);
    Bytes values = grey.pixels;
    BitPage page(grey);
    const auto width = static_cast<int>(grey.width);
    const auto height = static_cast<int>(grey.height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int value = values[static_cast<std::size_t>(y * width + x)];
            if (value > 128) page.set(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
            const int error = value > 128 ? value - 255 : value;
            for (const Cell& cell : kernel.cells) {
                const int toX = x + cell.dx;
                const int toY = y + cell.dy;
                if (toX < 0 || toX >= width || toY >= height) continue;
                std::uint8_t& target = values[static_cast<std::size_t>(toY * width + toX)];
                const int sum = target + error * cell.weight / kernel.divisor;
                target = static_cast<std::uint8_t>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
            }
        }
    }
    return page.take();
}

NaiveGrey randomGrey(std::uint32_t width, std::uint32_t height, std::uint32_t seed) {
    std::mt19937 random(seed);
    NaiveGrey grey{width, height, Bytes(std::size_t{width} * height)};
    const unsigned kind = seed % 5;
    for (std::size_t i = 0; i < grey.pixels.size(); ++i) {
        const auto number = static_cast<unsigned>(random());
        switch (kind) {
            case 0: grey.pixels[i] = static_cast<std::uint8_t>(number); break;
            case 1: grey.pixels[i] = (number & 1U) != 0 ? 255 : 0; break;
            case 2: grey.pixels[i] = static_cast<std::uint8_t>(120 + number % 16); break;
            case 3: grey.pixels[i] = static_cast<std::uint8_t>(seed / 5); break;
            default: grey.pixels[i] = static_cast<std::uint8_t>(i % width * 255 / width + number % 4); break;
        }
    }
    return grey;
}

}  // namespace morvil::test
