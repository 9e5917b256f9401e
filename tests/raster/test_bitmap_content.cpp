// Box of the content, indices in use, whitening: rules and comparison with the plain formulation.
#include <gtest/gtest.h>

#include <algorithm>

#include "raster/BitmapFile.h"
#include "raster/PlainStore.h"

using namespace morvil;
using test::BitmapFile;
using test::PlainStore;
using test::Workspace;
using Bytes = std::vector<std::uint8_t>;
using Box = std::array<std::uint32_t, 4>;  // left, end row, right, first row

namespace {

class BitmapContent : public ::testing::Test {
  protected:
    static Box boxOf(BitmapFile& file) {
        ContentBox box{1, 2, 3, 4};
        EXPECT_TRUE(file.store.GetBoundingBox(box));
        return {box.left, box.endRow, box.right, box.firstRow};
    }
    static Box plainBoxOf(BitmapFile& file) {
        const ContentBox box = PlainStore(file.store, file.bytes()).boundingBox();
        return {box.left, box.endRow, box.right, box.firstRow};
    }

    Workspace m_workspace;
    std::mt19937 m_random{5};
};

}  // namespace

TEST_F(BitmapContent, true_colour_has_no_box) {
    BitmapFile file(kTrueColour, 2, 2);
    file.put(Bytes(16));
    ContentBox box{1, 2, 3, 4};
    EXPECT_FALSE(file.store.GetBoundingBox(box));
    EXPECT_TRUE(box.left == 0 && box.endRow == 0 && box.right == 0 && box.firstRow == 0);
}

TEST_F(BitmapContent, cut_file_has_no_box) {
    BitmapFile file(kGreyRamp, 4, 4);
    file.put(Bytes(15, 0));
    ContentBox box{1, 2, 3, 4};
    EXPECT_FALSE(file.store.GetBoundingBox(box));
    EXPECT_EQ(box.right, 0U);
    EXPECT_EQ(box.endRow, 0U);
}

TEST_F(BitmapContent, no_memory_no_box) {
    BitmapFile file(kGreyRamp, 4, 4);
    file.put(Bytes(16, 0));
    ContentBox box{1, 2, 3, 4};
    m_workspace.failAllocations();
    EXPECT_FALSE(file.store.GetBoundingBox(box));
    m_workspace.endFaults();
    EXPECT_EQ(box.right, 0U);
}

TEST_F(BitmapContent, white_page_has_an_inverted_box) {
    BitmapFile file(kGreyRamp, 5, 3);
    ASSERT_TRUE(file.store.Fill(kWhite));
    EXPECT_EQ(boxOf(file), (Box{5, 1, 1, 3}));
    BitmapFile one(kWhiteBlack, 13, 3);
    ASSERT_TRUE(one.store.Fill(kWhite));
    EXPECT_EQ(boxOf(one), (Box{13, 1, 1, 3}));
}

TEST_F(BitmapContent, content_inside) {
    BitmapFile file(kGreyRamp, 6, 5);
    Bytes image(40, 255);
    image[1 * 8 + 3] = 0;
    image[3 * 8 + 2] = 0;
    image[3 * 8 + 4] = 9;
    image[2 * 8 + 7] = 0;  // padding is no content
    file.put(image);
    EXPECT_EQ(boxOf(file), (Box{2, 4, 5, 1}));
}

TEST_F(BitmapContent, content_inside_1_bit) {
    BitmapFile file(kBlackWhite, 13, 4);
    Bytes image(16, 0xFF);
    image[1 * 4 + 1] = 0xF7;  // column 12
    image[2 * 4 + 0] = 0xDF;  // column 2
    image[3 * 4 + 1] = 0xF8;  // behind the width
    file.put(image);
    EXPECT_EQ(boxOf(file), (Box{2, 3, 13, 1}));
}

// A row that begins with content pulls the left border to 0, and from then on differing rows set the right border from the
// leftmost difference.
TEST_F(BitmapContent, content_at_the_left_border) {
    BitmapFile file(kGreyRamp, 8, 3);
    Bytes image(24, 255);
    image[1 * 8 + 0] = 0;  // the rest of the row differs from it: columns 1 to 7
    file.put(image);
    EXPECT_EQ(boxOf(file), (Box{0, 2, 1, 1}));
    image[0 * 8 + 5] = 0;  // a row above that begins white
    file.put(image);
    EXPECT_EQ(boxOf(file), (Box{0, 2, 1, 0}));
    image.assign(24, 255);
    std::fill(image.begin() + 8, image.begin() + 16, std::uint8_t{0});  // a uniform row of content
    file.put(image);
    EXPECT_EQ(boxOf(file), (Box{0, 2, 1, 1}));
    image[2 * 8 + 6] = 0;  // below it a row that begins white
    file.put(image);
    EXPECT_EQ(boxOf(file), (Box{0, 3, 6, 1}));
}

// Entries of the colour lists' palette that no colour took are as blank as white.
TEST_F(BitmapContent, unused_entry_is_blank) {
    BitmapFile file(kMciColours, 4, 2);
    file.put(Bytes(8, 200));
    EXPECT_EQ(boxOf(file), (Box{4, 1, 1, 2}));
    file.put(Bytes(8, 0));
    EXPECT_EQ(boxOf(file), (Box{0, 2, 1, 0}));
}

TEST_F(BitmapContent, box_is_as_plain) {
    for (const int type : {kGreyRamp, kMciColours, kProcessColours, kBlackWhite, kWhiteBlack}) {
        for (std::uint32_t width = 1; width <= 67; ++width) {
            for (const unsigned kinds : {1U, 2U, 256U}) {
                BitmapFile file(type, width, 9, width % 3);
                file.putRandom(m_random, kinds);
                ASSERT_EQ(boxOf(file), plainBoxOf(file)) << "type " << type << ", width " << width << ", kinds " << kinds;
            }
            // mostly white pages with few marks, which reach the running box
            BitmapFile file(type, width, 9);
            ASSERT_TRUE(file.store.Fill(kWhite));
            Bytes image = file.pixels();
            for (int marks = 0; marks < 3; ++marks) {
                image[m_random() % 9 * file.store.stride() + m_random() % file.rowBytes()] ^=
                    static_cast<std::uint8_t>(1U << m_random() % 8);
                file.put(image);
                ASSERT_EQ(boxOf(file), plainBoxOf(file)) << "type " << type << ", width " << width;
            }
        }
    }
}

TEST_F(BitmapContent, box_over_many_blocks_is_as_plain) {
    for (const int type : {kGreyRamp, kBlackWhite}) {
        BitmapFile file(type, 2003, 2500);
        ASSERT_TRUE(file.store.Fill(kWhite));
        Bytes image = file.pixels();
        for (const std::size_t row : {600U, 1700U, 2400U}) image[row * file.store.stride() + 20 + row / 20] = 0x10;
        file.put(image);
        EXPECT_EQ(boxOf(file), plainBoxOf(file));
        EXPECT_EQ(boxOf(file)[3], 600U);
        EXPECT_EQ(boxOf(file)[1], 2401U);
    }
}

TEST_F(BitmapContent, used_indices_fail_for_other_depths) {
    for (const int type : {kBlackWhite, kTrueColour}) {
        BitmapFile file(type, 8, 1);
        Bytes list{1, 2};
        const Bytes image(24, 7);
        EXPECT_FALSE(file.store.GetUsedIndices8BPP(image.data(), list));
        EXPECT_TRUE(list.empty());
        list = {1};
        EXPECT_FALSE(file.store.GetUsedIndices8BPP(std::span(image), list));
        EXPECT_TRUE(list.empty());
    }
}

TEST_F(BitmapContent, used_indices_in_order_of_first_occurrence) {
    BitmapFile file(kGreyRamp, 3, 2);
    Bytes list{77};
    const Bytes image{9, 0, 9, 200, 5, 0, 255, 201};  // 200 and 201 are padding
    EXPECT_TRUE(file.store.GetUsedIndices8BPP(image.data(), list));
    EXPECT_EQ(list, (Bytes{9, 0, 5, 255}));
    EXPECT_TRUE(file.store.GetUsedIndices8BPP(std::span(image), list));
    EXPECT_EQ(list, (Bytes{9, 0, 200, 5, 255, 201}));
    EXPECT_TRUE(file.store.GetUsedIndices8BPP(std::span<const std::uint8_t>(), list));
    EXPECT_TRUE(list.empty());
}

TEST_F(BitmapContent, used_indices_are_as_plain) {
    for (std::uint32_t width = 1; width <= 67; ++width) {
        for (const unsigned kinds : {1U, 3U, 256U}) {
            BitmapFile file(kGreyRamp, width, 9);
            file.putRandom(m_random, kinds);
            Bytes list;
            const Bytes image = file.pixels();
            ASSERT_TRUE(file.store.GetUsedIndices8BPP(image.data(), list));
            ASSERT_EQ(list, PlainStore(file.store, file.bytes()).usedIndices()) << width << " " << kinds;
        }
    }
}

TEST_F(BitmapContent, all_256_indices) {
    Bytes image(1024);
    for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(255 - i % 256);
    BitmapFile file(kGreyRamp, 1024, 1);
    Bytes list;
    ASSERT_TRUE(file.store.GetUsedIndices8BPP(image.data(), list));
    ASSERT_EQ(list.size(), 256U);
    EXPECT_EQ(list.front(), 255);
    EXPECT_EQ(list.back(), 0);
}

TEST_F(BitmapContent, whitening_is_for_true_colour_only) {
    BitmapFile file(kGreyRamp, 3, 1);
    Bytes image{0, 0, 255, 0};
    EXPECT_FALSE(file.store.WhitenPixels24BPP(image.data()));
    EXPECT_EQ(image, (Bytes{0, 0, 255, 0}));
    EXPECT_FALSE(file.store.CopyWhitened24BPP(TEXT("C:\\copy.bmp")));
    EXPECT_TRUE(Workspace::readFile(TEXT("C:\\copy.bmp")).empty());
}

TEST_F(BitmapContent, whitening_takes_red_from_240_with_green_and_blue_up_to_240) {
    static constexpr struct {
        std::uint8_t blue, green, red;
        bool whitened;
    } cases[] = {{200, 200, 250, true},  {250, 250, 250, false}, {240, 240, 240, true},  {240, 240, 239, false},
                 {241, 240, 240, false}, {240, 241, 240, false}, {0, 0, 255, true},      {0, 0, 239, false},
                 {0, 255, 255, false},   {255, 0, 255, false},   {255, 255, 255, false}, {0, 0, 0, false}};
    BitmapFile file(kTrueColour, 1, 1);
    for (const auto& [blue, green, red, whitened] : cases) {
        Bytes image{blue, green, red, 9};
        EXPECT_TRUE(file.store.WhitenPixels24BPP(image.data()));
        EXPECT_EQ(image, whitened ? (Bytes{255, 255, 255, 9}) : (Bytes{blue, green, red, 9}));
    }
}

TEST_F(BitmapContent, whitened_copy_is_as_plain_and_leaves_the_original) {
    for (const std::uint32_t width : {1U, 2U, 3U, 4U, 5U, 67U, 30000U}) {
        BitmapFile file(kTrueColour, width, 40, 3);
        file.putRandom(m_random, 16);
        const Bytes before = file.bytes();
        PlainStore plain(file.store, before);
        plain.whiten();
        ASSERT_TRUE(file.store.CopyWhitened24BPP(TEXT("C:\\copy.bmp")));
        const Bytes copy = Workspace::readFile(TEXT("C:\\copy.bmp"));
        EXPECT_TRUE(copy == Bytes(plain.file.begin() + 3, plain.file.end())) << width;
        EXPECT_TRUE(file.bytes() == before);
        Bytes image = file.pixels();
        ASSERT_TRUE(file.store.WhitenPixels24BPP(image.data()));
        EXPECT_TRUE(std::equal(image.begin(), image.end(), plain.file.begin() + static_cast<std::ptrdiff_t>(plain.pixelPosition))) << width;
    }
}

TEST_F(BitmapContent, whitened_copy_reports_what_goes_wrong) {
    BitmapFile file(kTrueColour, 4, 4);
    file.put(Bytes(40));  // cut
    EXPECT_FALSE(file.store.CopyWhitened24BPP(nullptr));
    EXPECT_FALSE(file.store.CopyWhitened24BPP(TEXT("C:\\missing\\copy.bmp")));
    EXPECT_FALSE(file.store.CopyWhitened24BPP(TEXT("C:\\copy.bmp")));
    file.put(Bytes(48));
    EXPECT_TRUE(file.store.CopyWhitened24BPP(TEXT("C:\\copy.bmp")));
    m_workspace.failWrites();
    EXPECT_FALSE(file.store.CopyWhitened24BPP(TEXT("C:\\copy.bmp")));
}
