// Seeking, single pixels, single rows and the whole image.
#include <gtest/gtest.h>

#include "raster/BitmapFile.h"

using namespace morvil;
using test::BitmapFile;
using test::Workspace;
using Bytes = std::vector<std::uint8_t>;

namespace {

class BitmapRows : public ::testing::Test {
  protected:
    Workspace m_workspace;
};

}  // namespace

TEST_F(BitmapRows, seek_outside_fails_without_moving) {
    BitmapFile file(kGreyRamp, 5, 3, 11);
    file.put(Bytes(24));
    ASSERT_TRUE(file.store.Seek(4, 2));
    EXPECT_EQ(file.stream.tell(), 11 + 1078 + 2 * 8 + 4);
    for (const auto& [column, row] : {std::pair{5U, 0U}, {0U, 3U}, {7U, 1U}, {0xFFFFFFFFU, 0U}, {0U, 0xFFFFFFFFU}}) {
        EXPECT_FALSE(file.store.Seek(column, row));
        EXPECT_EQ(file.stream.tell(), 11 + 1078 + 2 * 8 + 4);
    }
}

TEST_F(BitmapRows, seek_counts_bytes_for_every_depth) {
    for (const int type : {kBlackWhite, kGreyRamp, kTrueColour}) {
        BitmapFile file(type, 40, 3);
        ASSERT_TRUE(file.store.Seek(3, 2));
        EXPECT_EQ(file.stream.tell(), file.store.pixelPosition() + 2 * std::int64_t{file.store.stride()} + 3) << type;
    }
}

TEST_F(BitmapRows, pixel_of_8_bits_is_the_entry_and_the_stream_stays) {
    BitmapFile file(kGreyRamp, 3, 1);
    file.put({0, 7, 255, 0});
    static constexpr std::uint32_t expected[] = {0x000000, 0x070707, 0xFFFFFF};
    for (std::uint32_t column = 0; column < 3; ++column) {
        ASSERT_TRUE(file.store.Seek(column, 0));
        const std::int64_t position = file.stream.tell();
        EXPECT_EQ(file.store.GetPixel(), expected[column]);
        EXPECT_EQ(file.store.GetPixel(), expected[column]);
        EXPECT_EQ(file.stream.tell(), position);
    }
}

TEST_F(BitmapRows, pixel_behind_the_file_is_0) {
    BitmapFile file(kWhiteBlack, 8, 2);
    file.put({0, 0, 0, 0});
    ASSERT_TRUE(file.store.Seek(0, 0));
    EXPECT_EQ(file.store.GetPixel(), kWhite);
    ASSERT_TRUE(file.store.Seek(0, 1));
    EXPECT_EQ(file.store.GetPixel(), 0U);
}

// Each column reads its own byte (the column is a byte offset), and the bit is the column modulo 7.
TEST_F(BitmapRows, pixel_of_1_bit_tests_the_column_modulo_7) {
    static constexpr struct {
        std::uint32_t column;
        std::uint8_t mask;
    } cases[] = {{0, 0x80}, {1, 0x40}, {2, 0x20}, {5, 0x04}, {6, 0x02}, {7, 0x80}, {8, 0x40}, {13, 0x02}, {14, 0x80}};
    for (const auto& [column, mask] : cases) {
        BitmapFile file(kBlackWhite, 160, 1);
        file.put(Bytes(20, static_cast<std::uint8_t>(~mask)));
        ASSERT_TRUE(file.store.Seek(column, 0));
        EXPECT_EQ(file.store.GetPixel(), 0U) << column;
        file.put(Bytes(20, mask));
        ASSERT_TRUE(file.store.Seek(column, 0));
        EXPECT_EQ(file.store.GetPixel(), kWhite) << column;
        file.put(Bytes(20, 0x01));  // a bit that is never tested
        ASSERT_TRUE(file.store.Seek(column, 0));
        EXPECT_EQ(file.store.GetPixel(), 0U) << column;
    }
}

TEST_F(BitmapRows, set_pixel_writes_the_nearest_index_and_stays) {
    BitmapFile file(kGreyRamp, 4, 1);
    file.put({1, 2, 3, 4});
    ASSERT_TRUE(file.store.Seek(2, 0));
    const std::int64_t position = file.stream.tell();
    EXPECT_TRUE(file.store.SetPixel(0xE8E8E8));
    EXPECT_EQ(file.stream.tell(), position);
    EXPECT_EQ(file.store.GetPixel(), 0xE8E8E8U);
    EXPECT_EQ(file.pixels(), (Bytes{1, 2, 0xE8, 4}));
}

TEST_F(BitmapRows, read_row_of_8_bits) {
    BitmapFile file(kGreyRamp, 5, 2);
    file.put({1, 2, 3, 4, 5, 9, 9, 9, 6, 7, 8, 9, 10, 8, 8, 8});
    Bytes row(8, 0x55);
    EXPECT_FALSE(file.store.ReadRow(row.data(), 2, true));
    EXPECT_EQ(row, Bytes(8, 0x55));
    EXPECT_TRUE(file.store.ReadRow(row.data(), 1, false));
    EXPECT_EQ(row, (Bytes{6, 7, 8, 9, 10, 0x55, 0x55, 0x55}));
    EXPECT_TRUE(file.store.ReadRow(row.data(), 0, true));
    EXPECT_EQ(row, (Bytes{1, 2, 3, 4, 5, 9, 9, 9}));
}

TEST_F(BitmapRows, read_row_of_1_bit_keeps_only_the_pixels_of_the_last_byte) {
    for (const std::uint32_t width : {1U, 7U, 8U, 9U, 13U, 16U, 31U, 32U}) {
        BitmapFile file(kBlackWhite, width, 1);
        file.put({0xFF, 0xFF, 0xFF, 0xFF});
        Bytes row(4, 0x55);
        ASSERT_TRUE(file.store.ReadRow(row.data(), 0, false));
        Bytes expected(4, 0x55);
        for (std::uint32_t i = 0; i < (width + 7) / 8; ++i) expected[i] = 0;
        for (std::uint32_t i = 0; i < width; ++i) expected[i / 8] = static_cast<std::uint8_t>(expected[i / 8] | 0x80 >> i % 8);
        EXPECT_EQ(row, expected) << width;
    }
}

TEST_F(BitmapRows, read_row_of_24_bits_copies_only_when_whole) {
    BitmapFile file(kTrueColour, 1, 1);
    file.put({1, 2, 3, 4});
    Bytes row(4, 0x55);
    EXPECT_TRUE(file.store.ReadRow(row.data(), 0, false));
    EXPECT_EQ(row, Bytes(4, 0x55));
    EXPECT_TRUE(file.store.ReadRow(row.data(), 0, true));
    EXPECT_EQ(row, (Bytes{1, 2, 3, 4}));
}

TEST_F(BitmapRows, read_row_behind_the_file_fails) {
    BitmapFile file(kGreyRamp, 4, 2);
    file.put({1, 2, 3, 4, 5, 6});
    Bytes row(4, 0x55);
    EXPECT_TRUE(file.store.ReadRow(row.data(), 0, true));
    EXPECT_FALSE(file.store.ReadRow(row.data(), 1, true));
}

TEST_F(BitmapRows, write_row_pads_with_zeros_or_takes_the_padding_along) {
    static constexpr struct {
        int type;
        std::uint32_t width;
        std::size_t bytes;
    } cases[] = {{kGreyRamp, 5, 5}, {kGreyRamp, 8, 8}, {kBlackWhite, 9, 2}, {kBlackWhite, 64, 8}, {kTrueColour, 1, 3}, {kTrueColour, 2, 6}};
    for (const auto& [type, width, bytes] : cases) {
        BitmapFile file(type, width, 2);
        const std::size_t stride = file.store.stride();
        file.put(Bytes(stride * 2, 0x55));
        const Bytes source(stride, 0xC3);
        ASSERT_TRUE(file.store.WriteRow(source.data(), 1, false));
        Bytes expected(stride * 2, 0x55);
        for (std::size_t i = 0; i < stride; ++i) expected[stride + i] = i < bytes ? 0xC3 : 0;
        EXPECT_EQ(file.pixels(), expected) << type << " " << width;
        ASSERT_TRUE(file.store.WriteRow(source.data(), 1, true));
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(stride), expected.end(), std::uint8_t{0xC3});
        EXPECT_EQ(file.pixels(), expected) << type << " " << width;
        EXPECT_FALSE(file.store.WriteRow(source.data(), 2, true));
    }
}

TEST_F(BitmapRows, rows_of_more_than_65535_bytes_are_truncated) {
    BitmapFile file(kTrueColour, 21846, 1);  // 65538 bytes, stride 65540
    ASSERT_EQ(file.store.stride(), 65540U);
    file.put(Bytes(65540, 0x55));
    const Bytes source(65540, 0xC3);
    ASSERT_TRUE(file.store.WriteRow(source.data(), 0, false));
    Bytes expected(65540, 0x55);
    expected[0] = expected[1] = 0xC3;  // 65538 keeps 2 in 16 bits; two bytes of padding follow
    expected[2] = expected[3] = 0;
    EXPECT_EQ(file.pixels(), expected);
    ASSERT_TRUE(file.store.WriteRow(source.data(), 0, true));
    expected[2] = expected[3] = 0xC3;  // 65540 keeps 4
    EXPECT_EQ(file.pixels(), expected);
}

TEST_F(BitmapRows, without_memory_rows_are_not_touched_and_nothing_is_reported) {
    BitmapFile file(kGreyRamp, 4, 1);
    file.put({1, 2, 3, 4});
    Bytes row(4, 0x55);
    m_workspace.failAllocations();
    EXPECT_TRUE(file.store.ReadRow(row.data(), 0, true));
    EXPECT_TRUE(file.store.WriteRow(row.data(), 0, true));
    m_workspace.endFaults();
    EXPECT_EQ(row, Bytes(4, 0x55));
    EXPECT_EQ(file.pixels(), (Bytes{1, 2, 3, 4}));
}

TEST_F(BitmapRows, blocks_of_rows) {
    BitmapFile file(kGreyRamp, 3, 4);
    file.put(Bytes(16, 1));
    ASSERT_TRUE(file.store.WriteRows(Bytes{2, 2, 2, 2, 3, 3, 3, 3}, 1));
    Bytes rows(8);
    ASSERT_TRUE(file.store.ReadRows(rows, 2));
    EXPECT_EQ(rows, (Bytes{3, 3, 3, 3, 1, 1, 1, 1}));
    EXPECT_FALSE(file.store.ReadRows(rows, 4));
    EXPECT_FALSE(file.store.ReadRows(rows, 3));  // one row is missing
    EXPECT_FALSE(file.store.WriteRows(rows, 4));
}

TEST_F(BitmapRows, whole_image) {
    BitmapFile file(kGreyRamp, 3, 2, 5);
    const Bytes image{1, 2, 3, 0, 4, 5, 6, 0};
    ASSERT_TRUE(file.store.WriteBitmap(image.data()));
    EXPECT_EQ(file.pixels(), image);
    EXPECT_EQ(m_workspace.countLog("CBM::WriteBitmap, m_uiSizeBuffer=8"), 1U);
    EXPECT_EQ(file.stream.tell(), file.store.pixelPosition() + 8);
}
