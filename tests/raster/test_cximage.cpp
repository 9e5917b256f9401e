// The image class by itself: creation, pixels, grey, saving. Its reduction to one bit: test_cximage_dither.cpp.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "raster/CxImage.h"
#include "raster/CxImageBMP.h"
#include "raster/NaiveHalftone.h"
#include "raster/Workspace.h"

using namespace morvil;
using test::Bytes;
using test::Workspace;
using testing::Each;
using testing::ElementsAre;

namespace {

constexpr const char* kNoSize = "CxImage::Create : width and height must be greater than zero";
constexpr const char* kNoMemory = "CxImage::Create can't allocate memory";

std::string errorOf(const CxImage& image) { return toUtf8(viewOf(image.GetLastError())); }
Bytes bitsOf(const CxImage& image) { return {image.GetBits().begin(), image.GetBits().end()}; }
bool same(RGBQUAD a, int red, int green, int blue) { return a.rgbRed == red && a.rgbGreen == green && a.rgbBlue == blue && a.rgbReserved == 0; }

void makeGrey(CxImage& image, const Bytes& pixels, std::uint32_t width, std::uint32_t height = 1) {
    ASSERT_TRUE(image.CreateFromArray(pixels.data(), width, height, 8, width, false));
}

// ---- creation -------------------------------------------------------------------------------------------------------------------

TEST(CxImageCreation, an_image_without_pixels_refuses_everything) {
    CxImage image;
    EXPECT_FALSE(image.DitherOrdered(0));
    EXPECT_FALSE(image.Dither(0));
    EXPECT_FALSE(image.GrayScale());
    EXPECT_FALSE(CxImageBMP(image).Save(TEXT("C:\\none.bmp")));
    EXPECT_EQ(image.GetPixelIndex(0, 0), 0);
    EXPECT_TRUE(image.GetBits().empty());
    EXPECT_TRUE(image.GetPalette().empty());
}

TEST(CxImageCreation, needs_width_and_height) {
    for (const auto& [width, height] : {std::pair{0U, 5U}, {5U, 0U}, {0U, 0U}}) {
        CxImage image;
        ASSERT_NE(image.Create(3, 3, 8), nullptr);
        EXPECT_EQ(image.Create(width, height, 8), nullptr);
        EXPECT_EQ(errorOf(image), kNoSize);
        EXPECT_TRUE(image.GetBits().empty());  // the previous pixels went first
    }
}

TEST(CxImageCreation, without_memory_says_so) {
    const Workspace workspace;
    test::FailingCalls faults(1, test::Fault::Persistent, "allocate");
    CxImage image;
    EXPECT_EQ(image.Create(10, 10, 8), nullptr);
    EXPECT_EQ(errorOf(image), kNoMemory);
}

TEST(CxImageCreation, sizes_that_wrap_around_pass_the_limit_and_find_no_memory) {
    CxImage image;
    EXPECT_EQ(image.Create(65536, 65536, 24), nullptr);  // 2^32 pixels are 0 in 32 bits
    EXPECT_EQ(errorOf(image), kNoMemory);
    EXPECT_EQ(image.Create(0xFFFFFFFF, 0xFFFFFFFF, 1), nullptr);
    EXPECT_EQ(errorOf(image), kNoMemory);
}

TEST(CxImageCreation, depths_are_rounded_up) {
    static constexpr struct {
        unsigned asked;
        unsigned got;
        std::size_t colours;
        std::size_t rowBytes;  // of 9 pixels
    } cases[] = {{0, 1, 2, 4}, {1, 1, 2, 4}, {2, 4, 16, 8}, {4, 4, 16, 8}, {5, 8, 256, 12}, {8, 8, 256, 12}, {9, 24, 0, 28}, {24, 24, 0, 28}, {32, 24, 0, 28}};
    for (const auto& tested : cases) {
        CxImage image;
        EXPECT_NE(image.Create(9, 5, tested.asked, 6), nullptr);
        EXPECT_EQ(image.GetBpp(), tested.got) << tested.asked;
        EXPECT_EQ(image.GetNumColors(), tested.colours) << tested.asked;
        EXPECT_EQ(image.GetEffWidth(), tested.rowBytes) << tested.asked;
        EXPECT_EQ(image.GetHeader().biSize, 40U);
        EXPECT_EQ(image.GetHeader().biPlanes, 1);
        EXPECT_EQ(image.GetHeader().biCompression, 0U);
        EXPECT_EQ(image.GetHeader().biSizeImage, tested.rowBytes * 5);
        EXPECT_EQ(image.GetDIB().size(), 40 + tested.colours * 4);
        EXPECT_EQ(image.GetBits().size(), tested.rowBytes * 5);
        EXPECT_EQ(image.GetType(), 6U);
        EXPECT_EQ(image.GetTransIndex(), -1);
        for (const RGBQUAD& entry : image.GetPalette()) EXPECT_TRUE(same(entry, 0, 0, 0));
    }
}

TEST(CxImageCreation, from_an_array_takes_five_depths) {
    const Bytes pixels(4000, 1);
    for (unsigned bits = 0; bits <= 33; ++bits) {
        const bool supported = bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32;
        CxImage image;
        EXPECT_EQ(image.CreateFromArray(pixels.data(), 10, 10, bits, 40, false), supported) << bits;
        EXPECT_EQ(image.AttachArray(pixels.data(), 10, 10, bits, 40), supported) << bits;
    }
    CxImage image;
    EXPECT_FALSE(image.CreateFromArray(nullptr, 10, 10, 8, 40, false));
    EXPECT_FALSE(image.AttachArray(nullptr, 10, 10, 8, 40));
}

TEST(CxImageCreation, from_an_array_gives_a_grey_palette_below_24_bits) {
    const Bytes pixels(64);
    static constexpr struct {
        unsigned bits;
        unsigned step;
    } cases[] = {{1, 255}, {4, 17}, {8, 1}};
    for (const auto& tested : cases) {
        CxImage image;
        ASSERT_TRUE(image.CreateFromArray(pixels.data(), 2, 2, tested.bits, 4, false));
        unsigned grey = 0;
        for (const RGBQUAD& entry : image.GetPalette()) {
            const int wanted = static_cast<int>(grey);
            EXPECT_TRUE(same(entry, wanted, wanted, wanted)) << tested.bits << " " << grey;
            grey += tested.step;
        }
    }
}

TEST(CxImageCreation, from_an_array_copies_rows_that_lie_a_scan_line_apart) {
    const Bytes pixels{1, 2, 3, 99, 99, 4, 5, 6, 98, 98};
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(pixels.data(), 3, 2, 8, 5, false));
    EXPECT_THAT(bitsOf(image), ElementsAre(1, 2, 3, 99, 4, 5, 6, 98));  // the padding comes along
    ASSERT_TRUE(image.CreateFromArray(pixels.data(), 3, 2, 8, 5, true));
    EXPECT_THAT(bitsOf(image), ElementsAre(4, 5, 6, 98, 1, 2, 3, 99));
    ASSERT_TRUE(image.CreateFromArray(pixels.data(), 3, 2, 8, 2, false));  // rows that lack pixels
    EXPECT_THAT(bitsOf(image), ElementsAre(1, 2, 0, 0, 3, 99, 0, 0));
}

TEST(CxImageCreation, from_an_array_drops_every_fourth_byte) {
    const Bytes pixels{1, 2, 3, 0xFF, 4, 5, 6, 0xFF};
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(pixels.data(), 2, 1, 32, 8, false));
    EXPECT_EQ(image.GetBpp(), 24U);
    EXPECT_THAT(bitsOf(image), ElementsAre(1, 2, 3, 4, 5, 6, 0, 0));
}

TEST(CxImageCreation, an_attached_array_is_reduced_like_a_copied_one_when_its_rows_are_short) {
    const Bytes pixels{200, 255, 30, 255};
    CxImage image;
    Bytes out(8, 77);
    ASSERT_TRUE(image.AttachArray(pixels.data(), 3, 2, 8, 2, out.data()));
    ASSERT_TRUE(image.DitherOrdered(0));
    CxImage copied;
    ASSERT_TRUE(copied.CreateFromArray(pixels.data(), 3, 2, 8, 2, false) && copied.DitherOrdered(0));
    EXPECT_EQ(bitsOf(image), bitsOf(copied));
    EXPECT_THAT(out, Each(77));  // rows that are shorter than those of the result are never written over
}

TEST(CxImageCreation, an_attached_array_offers_no_pixels_before_it_is_reduced) {
    const Bytes pixels(16, 255);
    CxImage image;
    ASSERT_TRUE(image.AttachArray(pixels.data(), 4, 4, 8, 4));
    EXPECT_EQ(image.GetBpp(), 8U);
    EXPECT_TRUE(image.GetBits().empty());
    EXPECT_FALSE(image.GrayScale());
    image.SetPixelIndex(0, 0, 7);
    EXPECT_THAT(pixels, Each(255));
    ASSERT_TRUE(image.Dither(0));
    EXPECT_EQ(image.GetHeader().biBitCount, 1);
    EXPECT_EQ(image.GetDIB().size(), 40U + 8);
    EXPECT_EQ(image.GetBits().size(), 16U);
}

// ---- pixels ---------------------------------------------------------------------------------------------------------------------

TEST(CxImagePixels, of_one_and_four_bits_begin_at_the_high_end) {
    CxImage image;
    ASSERT_NE(image.Create(10, 1, 1), nullptr);
    for (const std::uint32_t x : {0U, 3U, 9U}) image.SetPixelIndex(x, 0, 1);
    EXPECT_THAT(bitsOf(image), ElementsAre(0x90, 0x40, 0, 0));
    EXPECT_EQ(image.GetPixelIndex(3, 0), 1);
    EXPECT_EQ(image.GetPixelIndex(4, 0), 0);
    image.SetPixelIndex(3, 0, 0);
    EXPECT_THAT(bitsOf(image), ElementsAre(0x80, 0x40, 0, 0));

    ASSERT_NE(image.Create(3, 1, 4), nullptr);
    for (std::uint32_t x = 0; x < 3; ++x) image.SetPixelIndex(x, 0, static_cast<std::uint8_t>(x + 1));
    EXPECT_THAT(bitsOf(image), ElementsAre(0x12, 0x30, 0, 0));
    EXPECT_EQ(image.GetPixelIndex(1, 0), 2);
}

TEST(CxImagePixels, outside_are_the_background_or_the_first_byte) {
    CxImage image;
    makeGrey(image, {77, 1, 2, 3}, 4);
    EXPECT_EQ(image.GetPixelIndex(4, 0), 77);
    EXPECT_EQ(image.GetPixelIndex(0, 1), 77);
    image.SetTransIndex(9);
    EXPECT_EQ(image.GetPixelIndex(4, 0), 9);
    image.SetPixelIndex(4, 0, 5);
    image.SetPixelIndex(0, 1, 5);
    EXPECT_THAT(bitsOf(image), ElementsAre(77, 1, 2, 3));
}

TEST(CxImagePixels, have_colours) {
    CxImage image;
    ASSERT_NE(image.Create(2, 1, 24), nullptr);
    image.SetPixelColor(1, 0, {1, 2, 3, 0});
    image.SetPixelColor(2, 0, {9, 9, 9, 0});
    EXPECT_THAT(bitsOf(image), ElementsAre(0, 0, 0, 1, 2, 3, 0, 0));
    EXPECT_TRUE(same(image.GetPixelColor(1, 0), 3, 2, 1));
    ASSERT_NE(image.Create(2, 1, 8), nullptr);
    image.SetPaletteColor(5, 10, 20, 30);
    image.SetPixelIndex(1, 0, 5);
    EXPECT_TRUE(same(image.GetPixelColor(1, 0), 10, 20, 30));
}

// ---- grey -----------------------------------------------------------------------------------------------------------------------

TEST(CxImageGrey, of_colours) {
    static constexpr struct {
        std::uint8_t blue, green, red, grey;
    } cases[] = {{0, 0, 255, 76}, {0, 255, 0, 149}, {255, 0, 0, 29}, {255, 255, 255, 255}, {0, 0, 0, 0}, {10, 20, 30, 21}};
    for (const auto& tested : cases) {
        CxImage image;
        ASSERT_NE(image.Create(1, 1, 24), nullptr);
        image.SetPixelColor(0, 0, {tested.blue, tested.green, tested.red, 0});
        ASSERT_TRUE(image.GrayScale());
        EXPECT_EQ(image.GetBpp(), 8U);
        EXPECT_EQ(image.GetPixelIndex(0, 0), tested.grey);
        EXPECT_EQ(image.GetPalette()[100].rgbRed, 100);
    }
}

TEST(CxImageGrey, of_palettes) {
    for (const unsigned bits : {1U, 4U, 8U}) {
        CxImage image;
        ASSERT_NE(image.Create(3, 1, bits), nullptr);
        image.SetPaletteColor(0, 0, 255, 0);
        image.SetPaletteColor(1, 255, 0, 0);
        image.SetPixelIndex(1, 0, 1);
        image.SetTransIndex(1);
        ASSERT_TRUE(image.GrayScale());
        EXPECT_EQ(image.GetBpp(), 8U) << bits;
        EXPECT_THAT(bitsOf(image), ElementsAre(149, 76, 149, 0)) << bits;
        EXPECT_EQ(image.GetTransIndex(), 76) << bits;
        for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(image.GetPalette()[i].rgbGreen, i);
    }
}

TEST(CxImageGrey, of_a_palette_is_what_is_reduced) {
    CxImage image;
    ASSERT_NE(image.Create(4, 1, 8), nullptr);
    for (int i = 0; i < 256; ++i) image.SetPaletteColor(static_cast<std::uint8_t>(i), 255, 255, 255);
    image.SetPaletteColor(200, 0, 0, 0);
    image.SetPixelIndex(2, 0, 200);
    ASSERT_TRUE(image.DitherOrdered(0));
    EXPECT_EQ(bitsOf(image)[0], 0xD0);
}

// ---- saving ---------------------------------------------------------------------------------------------------------------------

std::uint32_t number(const Bytes& file, std::size_t at) {
    return file[at] | static_cast<std::uint32_t>(file[at + 1]) << 8 | static_cast<std::uint32_t>(file[at + 2]) << 16 | static_cast<std::uint32_t>(file[at + 3]) << 24;
}

TEST(CxImageBmp, holds_headers_palette_and_rows) {
    static constexpr struct {
        unsigned bits;
        std::uint32_t offset;
        std::uint32_t bytes;
    } cases[] = {{1, 62, 70}, {4, 118, 126}, {8, 1078, 1094}, {24, 54, 86}};
    const Workspace workspace;
    for (const auto& tested : cases) {
        CxImage image;
        ASSERT_NE(image.Create(5, 2, tested.bits), nullptr);
        image.SetGrayPalette();
        image.SetPixelIndex(0, 1, 1);
        image.SetPixelColor(0, 1, {7, 8, 9, 0});
        ASSERT_TRUE(CxImageBMP(image).Save(TEXT("C:\\image.bmp")));
        const Bytes file = Workspace::readFile(TEXT("C:\\image.bmp"));
        ASSERT_EQ(file.size(), tested.bytes) << tested.bits;
        EXPECT_EQ(file[0], 'B');
        EXPECT_EQ(file[1], 'M');
        EXPECT_EQ(number(file, 2), tested.bytes);
        EXPECT_EQ(number(file, 6), 0U);
        EXPECT_EQ(number(file, 10), tested.offset);
        EXPECT_EQ(number(file, 14), 40U);
        EXPECT_EQ(number(file, 18), 5U);
        EXPECT_EQ(number(file, 22), 2U);
        EXPECT_EQ(number(file, 26), 1U | tested.bits << 16);
        EXPECT_EQ(number(file, 34), tested.bytes - tested.offset);
        EXPECT_TRUE(std::equal(image.GetBits().begin(), image.GetBits().end(), file.begin() + tested.offset)) << tested.bits;
    }
}

TEST(CxImageBmp, a_file_that_takes_no_more_fails_the_saving) {
    Workspace workspace;
    CxImage image;
    ASSERT_NE(image.Create(5, 2, 8), nullptr);
    EXPECT_FALSE(CxImageBMP(image).Save(TEXT("C:\\missing\\image.bmp")));
    workspace.failWrites();
    EXPECT_FALSE(CxImageBMP(image).Save(TEXT("C:\\image.bmp")));
    workspace.endFaults();
}

TEST(CxIoFile, reads_what_was_written) {
    const Workspace workspace;
    CxIOFile file;
    ASSERT_TRUE(file.Open(TEXT("C:\\file"), OpenMode::Create));
    const Bytes bytes{1, 2, 3, 4};
    EXPECT_TRUE(file.Write(bytes));
    EXPECT_EQ(file.Tell(), 4);
    EXPECT_EQ(file.Size(), 4);
    EXPECT_TRUE(file.Seek(1));
    Bytes back(9);
    EXPECT_EQ(file.Read(back), 3U);
    EXPECT_EQ(back[2], 4);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(file.Tell(), -1);
}

}  // namespace
