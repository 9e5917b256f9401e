// Every method at every register width, bit for bit against the plain definition.
#include <gtest/gtest.h>

#include "raster/CxImage.h"
#include "raster/NaiveHalftone.h"

using namespace morvil;
using test::Bytes;
using test::NaiveGrey;

namespace {

enum Method { kOrdered2 = 10, kOrdered4, kOrdered8 };  // others: the number of CxImage::Dither

struct Case {
    const char* name;
    int method;
};

Bytes expected(const NaiveGrey& grey, int method) {
    switch (method) {
        case kOrdered2: return test::naiveOrdered(grey, 2);
        case 1:
        case kOrdered4: return test::naiveOrdered(grey, 4);
        case kOrdered8: return test::naiveOrdered(grey, 8);
        case 7: return test::naiveGreyThresholds(grey);
        default: return test::naiveDiffusion(grey, static_cast<unsigned>(method));
    }
}

bool reduce(CxImage& image, int method) {
    switch (method) {
        case kOrdered2: return image.DitherOrdered(0);
        case kOrdered4: return image.DitherOrdered(2);
        case kOrdered8: return image.DitherOrdered(1);
        default: return image.Dither(static_cast<unsigned>(method));
    }
}

Bytes bitsOf(const CxImage& image) { return {image.GetBits().begin(), image.GetBits().end()}; }

std::vector<CpuLevel> levels() {
    std::vector<CpuLevel> list{CpuLevel::Plain};
    for (const CpuLevel level : {CpuLevel::Wide128, CpuLevel::Wide256}) {
        if (wideHalftone(level) != nullptr) list.push_back(level);
    }
    return list;
}

class HalftoneExact : public testing::TestWithParam<Case> {
  protected:
    // The page in rows of whole words, its result written over it.
    static void overThePage(const NaiveGrey& grey, CpuLevel level, const Bytes& wanted, const std::string& what) {
        const std::uint32_t scanLine = (grey.width + 3) / 4 * 4;
        Bytes page(std::size_t{scanLine} * grey.height, 0xEE);
        for (std::uint32_t y = 0; y < grey.height; ++y) std::copy_n(grey.pixels.data() + y * grey.width, grey.width, page.data() + y * scanLine);
        const Bytes before = page;
        CxImage image;
        image.SetCpuLevel(level);
        ASSERT_TRUE(image.AttachArray(page.data(), grey.width, grey.height, 8, scanLine, page.data()) && reduce(image, GetParam().method));
        ASSERT_EQ(image.GetBits().data(), page.data());
        ASSERT_TRUE(bitsOf(image) == wanted) << what << ", level " << static_cast<int>(level) << ", over the page";
        const auto rest = static_cast<long>(wanted.size());
        ASSERT_TRUE(std::equal(page.begin() + rest, page.end(), before.begin() + rest)) << what;
    }

    // The pixels end where their block ends, so that a loop which reads further is seen by the sanitisers.
    static void compare(const NaiveGrey& grey, const std::string& what) {
        const Bytes wanted = expected(grey, GetParam().method);
        for (const CpuLevel level : levels()) {
            for (const bool attached : {false, true}) {
                CxImage image;
                image.SetCpuLevel(level);
                const bool made = attached ? image.AttachArray(grey.pixels.data(), grey.width, grey.height, 8, grey.width)
                                           : image.CreateFromArray(grey.pixels.data(), grey.width, grey.height, 8, grey.width, false);
                ASSERT_TRUE(made && reduce(image, GetParam().method));
                ASSERT_EQ(image.GetBpp(), 1U);
                ASSERT_TRUE(bitsOf(image) == wanted) << what << ", level " << static_cast<int>(level) << ", attached " << attached;
            }
            overThePage(grey, level, wanted, what);
        }
    }
};

TEST_P(HalftoneExact, every_small_width) {
    for (std::uint32_t width = 1; width <= 67; ++width) {
        for (const std::uint32_t height : {1U, 2U, 3U, 15U, 16U, 17U, 31U, 32U, 33U, 50U, 64U, 65U, 70U}) {
            compare(test::randomGrey(width, height, width * 71 + height), std::to_string(width) + " x " + std::to_string(height));
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(HalftoneExact, wide_enough_for_the_rows_to_run_together) {
    for (const std::uint32_t width : {255U, 400U, 601U, 777U, 1500U}) {
        for (std::uint32_t seed = 0; seed < 5; ++seed) {
            compare(test::randomGrey(width, 131, seed + width * 5), std::to_string(width) + " of kind " + std::to_string(seed));
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(HalftoneExact, a_large_image) { compare(test::randomGrey(2999, 1003, 20), "large"); }

constexpr Case kCases[] = {{"FloydSteinberg", 0},    {"ordered4x4AsMethod", 1}, {"Burkes", 2},           {"Stucki", 3},
                           {"JarvisJudiceNinke", 4}, {"Sierra", 5},             {"StevensonArce", 6},    {"greyThresholds", 7},
                           {"methodsAboveRunFloydSteinberg", 8},                {"ordered2x2", kOrdered2}, {"ordered4x4", kOrdered4},
                           {"ordered8x8", kOrdered8}};
INSTANTIATE_TEST_SUITE_P(Methods, HalftoneExact, testing::ValuesIn(kCases), [](const auto& tested) { return std::string(tested.param.name); });

// Other depths, at all widths: what is reduced is their grey.
class HalftoneDepths : public testing::TestWithParam<unsigned> {};

TEST_P(HalftoneDepths, are_reduced_as_their_grey) {
    const unsigned bits = GetParam();
    for (std::uint32_t width = 1; width <= 67; ++width) {
        const std::uint32_t height = 1 + width % 37;
        const std::uint32_t scanLine = (width * bits + 31) / 32 * 4;
        const NaiveGrey noise = test::randomGrey(scanLine, height, width * 5);
        NaiveGrey grey{width, height, Bytes(std::size_t{width} * height)};
        for (std::uint32_t y = 0; y < height; ++y) {
            for (std::uint32_t x = 0; x < width; ++x) {
                const std::uint8_t* const row = noise.pixels.data() + std::size_t{y} * scanLine;
                const std::uint8_t* const pixel = row + x * bits / 8;
                const int nibble = x % 2 == 0 ? row[x / 2] / 16 : row[x / 2] % 16;
                const int colour = bits < 24 ? 0 : (pixel[0] * 117 + pixel[1] * 601 + pixel[2] * 306) / 1024;
                grey.pixels[y * width + x] = static_cast<std::uint8_t>(bits == 4 ? nibble * 17 : bits == 8 ? *pixel : colour);
            }
        }
        for (const int method : {0, 4, static_cast<int>(kOrdered8)}) {
            const Bytes wanted = expected(grey, method);
            for (const CpuLevel level : levels()) {
                for (const bool attached : {false, true}) {
                    CxImage image;
                    image.SetCpuLevel(level);
                    if (attached) ASSERT_TRUE(image.AttachArray(noise.pixels.data(), width, height, bits, scanLine));
                    else ASSERT_TRUE(image.CreateFromArray(noise.pixels.data(), width, height, bits, scanLine, false));
                    ASSERT_TRUE(reduce(image, method));
                    ASSERT_TRUE(bitsOf(image) == wanted) << width << " method " << method << " attached " << attached;
                }
            }
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Bits, HalftoneDepths, testing::Values(4U, 8U, 24U, 32U), [](const auto& tested) { return "Bits" + std::to_string(tested.param); });

}  // namespace
