// The image class's reduction to one bit: matrices, thresholds, errors, progress and escape, by their rules.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "raster/CxImage.h"
#include "raster/NaiveHalftone.h"
#include "raster/Workspace.h"

using namespace morvil;
using test::Bytes;
using test::Workspace;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kNoMemory = "CxImage::Create can't allocate memory";

std::string errorOf(const CxImage& image) { return toUtf8(viewOf(image.GetLastError())); }
Bytes bitsOf(const CxImage& image) { return {image.GetBits().begin(), image.GetBits().end()}; }
bool same(RGBQUAD a, int red, int green, int blue) { return a.rgbRed == red && a.rgbGreen == green && a.rgbBlue == blue && a.rgbReserved == 0; }

void makeGrey(CxImage& image, const Bytes& pixels, std::uint32_t width, std::uint32_t height = 1) {
    ASSERT_TRUE(image.CreateFromArray(pixels.data(), width, height, 8, width, false));
}

TEST(CxImageDither, leaves_one_bit_as_it_is) {
    const Bytes bits{0xA5, 0x5A, 0xFF, 0x13};
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(bits.data(), 13, 1, 1, 4, false));
    EXPECT_TRUE(image.DitherOrdered(0));
    EXPECT_TRUE(image.Dither(0));
    EXPECT_EQ(bitsOf(image), bits);
}

TEST(CxImageDither, ends_with_black_and_white) {
    CxImage image;
    makeGrey(image, {0, 255}, 2);
    image.SetTransIndex(3);
    ASSERT_TRUE(image.Dither(0));
    ASSERT_EQ(image.GetNumColors(), 2U);
    EXPECT_TRUE(same(image.GetPalette()[0], 0, 0, 0));
    EXPECT_TRUE(same(image.GetPalette()[1], 255, 255, 255));
    EXPECT_THAT(bitsOf(image), ElementsAre(0x40, 0, 0, 0));
    EXPECT_EQ(image.GetTransIndex(), -1);
}

TEST(CxImageDither, ordered_2x2_by_levels) {
    static constexpr struct {
        std::uint8_t grey;
        Bytes::value_type first, second;  // of an image of 2 x 2
    } cases[] = {{0, 0x00, 0x00}, {63, 0x00, 0x00}, {64, 0x80, 0x00}, {128, 0x80, 0x40}, {192, 0xC0, 0x40}, {254, 0xC0, 0x40}, {255, 0xC0, 0xC0}};
    for (const auto& tested : cases) {
        CxImage image;
        makeGrey(image, Bytes(4, tested.grey), 2, 2);
        ASSERT_TRUE(image.DitherOrdered(0));
        EXPECT_EQ(bitsOf(image)[0], tested.first) << int{tested.grey};
        EXPECT_EQ(bitsOf(image)[4], tested.second) << int{tested.grey};
    }
}

// Grey 230 has the level 57 of 64: every cell below 57 is white, and 58 stands twice in the second row.
TEST(CxImageDither, ordered_8x8_has_58_twice) {
    CxImage image;
    makeGrey(image, Bytes(64, 230), 8, 8);
    ASSERT_TRUE(image.DitherOrdered(1));
    EXPECT_EQ(image.GetRow(1)[0], 0xEE);
}

TEST(CxImageDither, pattern_sizes_select_and_name_the_matrix) {
    static constexpr struct {
        std::uint32_t size;
        const char* text;
    } cases[] = {{0, "CxImage::DitherOrdered, 2x2\n"}, {1, "CxImage::DitherOrdered, 8x8\n"}, {2, "CxImage::DitherOrdered, 4x4\n"},
                 {3, "CxImage::DitherOrdered, 8x8\n"}, {10000, "CxImage::DitherOrdered, 8x8\n"}};
    Workspace workspace;
    for (const auto& tested : cases) {
        workspace.forgetTexts();
        CxImage image;
        makeGrey(image, {1}, 1);
        ASSERT_TRUE(image.DitherOrdered(tested.size));
        EXPECT_THAT(workspace.debugLines(), ElementsAre(tested.text)) << tested.size;
        EXPECT_THAT(workspace.logLines(), IsEmpty());
    }
}

TEST(CxImageDither, a_single_pixel_diffuses_nothing) {
    CxImage image;
    makeGrey(image, {129}, 1);
    ASSERT_TRUE(image.Dither(0));
    EXPECT_EQ(bitsOf(image)[0], 0x80);
}

TEST(CxImageDither, grey_128_is_black_and_turns_its_neighbour_white) {
    CxImage image;
    makeGrey(image, {128, 128}, 2);
    ASSERT_TRUE(image.Dither(0));
    EXPECT_EQ(bitsOf(image)[0], 0x40);
}

// White 254 leaves the error -1, of which no share is a whole one: 129 stays white. Rounded down, it would become 128 and black.
TEST(CxImageDither, shares_of_negative_errors_are_cut_toward_zero) {
    for (const CpuLevel level : {CpuLevel::Plain, bestCpuLevel()}) {
        CxImage image;
        makeGrey(image, {254, 129}, 2);
        image.SetCpuLevel(level);
        ASSERT_TRUE(image.Dither(0));
        EXPECT_EQ(bitsOf(image)[0], 0xC0);
    }
}

TEST(CxImageDither, progress_ends_at_the_last_row) {
    for (const CpuLevel level : {CpuLevel::Plain, bestCpuLevel()}) {
        CxImage image;
        makeGrey(image, Bytes(300, 100), 3, 100);
        image.SetCpuLevel(level);
        ASSERT_TRUE(image.Dither(0));
        EXPECT_EQ(image.GetProgress(), 99);
        makeGrey(image, Bytes(300, 100), 3, 100);
        ASSERT_TRUE(image.DitherOrdered(0));
        EXPECT_EQ(image.GetProgress(), 99);
    }
}

TEST(CxImageDither, begins_with_the_escape_flag_down) {
    CxImage image;
    makeGrey(image, Bytes(300, 100), 3, 100);
    image.SetEscape(true);
    EXPECT_TRUE(image.Dither(0));
}

TEST(CxImageDither, stops_when_another_thread_says_so) {
    CxImage image;
    image.SetCpuLevel(CpuLevel::Plain);
    makeGrey(image, Bytes(std::size_t{2000} * 20000, 100), 2000, 20000);
    std::atomic<bool> done = false;
    std::thread other([&] {
        while (!done) image.SetEscape(true);
    });
    EXPECT_FALSE(image.Dither(6));
    done = true;
    other.join();
    EXPECT_EQ(image.GetBpp(), 8U);
    EXPECT_EQ(image.GetPixelIndex(1999, 19999), 100);
}

TEST(CxImageDither, without_memory_stays_as_it_is) {
    const Workspace workspace;
    for (const CpuLevel level : {CpuLevel::Plain, bestCpuLevel()}) {
        for (int n = 1; n < 20; ++n) {
            CxImage image;
            image.SetCpuLevel(level);
            makeGrey(image, {1, 2, 3, 4}, 2, 2);
            test::FailingCalls faults(n, test::Fault::Transient, "allocate");
            const bool done = image.Dither(0);
            if (faults.fired() == 0) {
                EXPECT_TRUE(done);
                EXPECT_GT(n, 2);  // the result's block and the diffusion's
                break;
            }
            EXPECT_FALSE(done);
            EXPECT_EQ(errorOf(image), kNoMemory);
            EXPECT_EQ(image.GetBpp(), 8U);
            EXPECT_EQ(image.GetPixelIndex(1, 1), 4);
        }
    }
}

}  // namespace
