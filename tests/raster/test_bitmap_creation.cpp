// The bytes of the bitmap section: header, palette, filling; sizes that are refused; faults.
#include <gtest/gtest.h>

#include "raster/BitmapFile.h"
#include "raster/BitmapHeader.h"
#include "raster/ColourListFiles.h"

using namespace morvil;
using test::BitmapFile;
using test::Workspace;
using Bytes = std::vector<std::uint8_t>;

namespace {

class BitmapCreation : public ::testing::Test {
  protected:
    Workspace m_workspace;
};

void append(Bytes& bytes, std::initializer_list<int> more) {
    for (const int byte : more) bytes.push_back(static_cast<std::uint8_t>(byte));
}

}  // namespace

TEST_F(BitmapCreation, header_and_palette_of_true_colour) {
    const BitmapFile file(kTrueColour, 1, 3);
    Bytes expected;
    append(expected, {'B', 'M', 66, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0});                             // 3 rows of 4 bytes
    append(expected, {40, 0, 0, 0, 1, 0, 0, 0, 3, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0, 0, 12, 0, 0, 0});  // image size 12
    append(expected, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(file.bytes(), expected);
    EXPECT_EQ(file.store.stride(), 4U);
    EXPECT_EQ(file.store.pixelPosition(), 54);
}

TEST_F(BitmapCreation, header_and_palette_of_the_one_bit_types) {
    static const struct {
        int type;
        std::initializer_list<int> palette;
    } cases[] = {{kBlackWhite, {0, 0, 0, 0, 255, 255, 255, 0}}, {kWhiteBlack, {255, 255, 255, 0, 0, 0, 0, 0}}};
    for (const auto& [type, palette] : cases) {
        const BitmapFile file(type, 9, 300);
        Bytes expected;
        append(expected, {'B', 'M', 0xEE, 0x04, 0, 0, 0, 0, 0, 0, 62, 0, 0, 0});  // 62 + 4 * 300 = 0x4EE
        append(expected, {0x28, 0, 0, 0, 9, 0, 0, 0, 0x2C, 1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0xB0, 4, 0, 0});
        append(expected, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        append(expected, palette);
        EXPECT_EQ(file.bytes(), expected) << type;
        EXPECT_EQ(file.store.stride(), 4U);
        EXPECT_EQ(file.store.imageSize(), 1200U);
    }
}

TEST_F(BitmapCreation, header_and_palette_of_the_grey_ramp) {
    const BitmapFile file(kGreyRamp, 258, 2);
    Bytes expected;
    append(expected, {'B', 'M', 0x3E, 0x06, 0, 0, 0, 0, 0, 0, 0x36, 4, 0, 0});  // 1078 + 2 * 260 = 0x63E
    append(expected, {40, 0, 0, 0, 2, 1, 0, 0, 2, 0, 0, 0, 1, 0, 8, 0, 0, 0, 0, 0, 8, 2, 0, 0});
    append(expected, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    for (int i = 0; i < 256; ++i) append(expected, {i, i, i, 0});
    EXPECT_EQ(file.bytes(), expected);
}

TEST_F(BitmapCreation, header_and_palette_of_the_process_colours) {
    const CMvConfig folders;
    Workspace::writeFile(
        WString(folders.commonFiles()) + TEXT("\\p.ini"),
        "[ProcessColor]\r\nProcessColorCount=1\r\nProcessColor[1].Red=1\r\nProcessColor[1].Green=2\r\nProcessColor[1].Blue=3\r\n");
    ConfigurationRecord record{};
    copyText(record.files.processColourIni, TEXT("p.ini"));
    FileStream stream(test::kBitmapPath, OpenMode::Create);
    CBM store;
    store.setStream(&stream);
    store.colourTable().SetConfig(&record);
    ASSERT_TRUE(store.CreateBitmap(kProcessColours, 1, 1));
    Bytes expected;
    append(expected, {'B', 'M', 0x3A, 4, 0, 0, 0, 0, 0, 0, 0x36, 4, 0, 0});  // 1078 + 4
    append(expected, {40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 8, 0, 0, 0, 0, 0, 4, 0, 0, 0});
    append(expected, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    append(expected, {3, 2, 1, 0});
    for (int i = 1; i < 256; ++i) append(expected, {255, 255, 255, 0});
    EXPECT_EQ(BitmapFile::bytes(), expected);
    EXPECT_EQ(store.stride(), 4U);
}

// Entries that no colour took have all bits set; the fourth byte in the file is 0 all the same.
TEST_F(BitmapCreation, header_and_palette_of_the_colour_lists) {
    test::writeCatalogue(test::listXml("1.0", test::colourXml("a", 1, 2, 3) + test::colourXml("b", 4, 5, 6)));
    const BitmapFile file(kMciColours, 4, 1);
    Bytes expected;
    append(expected, {'B', 'M', 0x3A, 4, 0, 0, 0, 0, 0, 0, 0x36, 4, 0, 0});
    append(expected, {40, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 1, 0, 8, 0, 0, 0, 0, 0, 4, 0, 0, 0});
    append(expected, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    append(expected, {3, 2, 1, 0, 6, 5, 4, 0, 0xE8, 0xE8, 0xE8, 0});
    for (int i = 3; i < 256; ++i) append(expected, {255, 255, 255, 0});
    EXPECT_EQ(file.bytes(), expected);
}

TEST_F(BitmapCreation, strides) {
    static constexpr struct {
        int type;
        std::uint32_t width;
        std::uint32_t stride;
    } cases[] = {{kGreyRamp, 1, 4},    {kGreyRamp, 4, 4},    {kGreyRamp, 5, 8},    {kBlackWhite, 1, 4},
                 {kBlackWhite, 9, 4},  {kBlackWhite, 32, 4}, {kBlackWhite, 33, 8}, {kTrueColour, 1, 4},
                 {kTrueColour, 4, 12}, {kTrueColour, 5, 16}, {kWhiteBlack, 64, 8}, {kWhiteBlack, 65, 12}};
    for (const auto& [type, width, stride] : cases) {
        const BitmapFile file(type, width, 7);
        EXPECT_EQ(file.store.stride(), stride) << type << " " << width;
        EXPECT_EQ(file.store.imageSize(), stride * 7) << type << " " << width;
    }
}

TEST_F(BitmapCreation, begins_where_the_stream_stands_and_ends_at_the_pixels) {
    BitmapFile file(kBlackWhite, 8, 2, 100);
    EXPECT_EQ(file.store.bitmapPosition(), 100);
    EXPECT_EQ(file.store.pixelPosition(), 162);
    EXPECT_EQ(file.stream.tell(), 162);
    EXPECT_EQ(file.bytes()[99], '#');
    EXPECT_EQ(file.bytes()[100], 'B');
    EXPECT_EQ(file.bytes()[102], 70);  // sizes count from the bitmap, not from the file
    EXPECT_EQ(m_workspace.countLog("CreateBitmap finished"), 1U);
}

TEST_F(BitmapCreation, width_or_height_of_0_keeps_the_previous_one) {
    BitmapFile file(kGreyRamp, 10, 20);
    ASSERT_TRUE(file.store.CreateBitmap(kGreyRamp, 0, 5));
    EXPECT_EQ(file.store.width(), 10U);
    EXPECT_EQ(file.store.height(), 5U);
    ASSERT_TRUE(file.store.CreateBitmap(kTrueColour, 30, 0));
    EXPECT_EQ(file.store.width(), 30U);
    EXPECT_EQ(file.store.height(), 5U);
    EXPECT_EQ(file.store.stride(), 92U);
}

TEST_F(BitmapCreation, sizes_beyond_2_gigabytes_are_refused_and_nothing_changes) {
    BitmapFile file(kGreyRamp, 10, 20);
    const Bytes before = file.bytes();
    static constexpr struct {
        int type;
        std::uint32_t width;
        std::uint32_t height;
    } cases[] = {
        {kGreyRamp, 0xFFFFFFFF, 1},   {kGreyRamp, 0x7FFFFFFD, 1},
        {kGreyRamp, 65536, 32768},    {kTrueColour, 0xFFFFFFFF, 0xFFFFFFFF},
        {kTrueColour, 0x55555556, 1}, {kTrueColour, 2863311530, 0x80000000},  // 2^33 bytes in 2^31 rows: the product is 0 in 64 bits
        {kBlackWhite, 0xFFFFFFFF, 4}, {kBlackWhite, 32, 0x20000000},
        {kGreyRamp, 4, 0xFFFFFFFF}};
    for (const auto& [type, width, height] : cases) {
        EXPECT_FALSE(file.store.CreateBitmap(type, width, height)) << width << " x " << height;
        EXPECT_EQ(file.store.width(), 10U);
        EXPECT_EQ(file.store.height(), 20U);
        EXPECT_EQ(file.store.bitsPerPixel(), 8);
    }
    EXPECT_FALSE(file.store.CreateBitmap(6, 1, 1));
    EXPECT_EQ(file.bytes(), before);
    EXPECT_TRUE(file.store.CreateBitmap(kGreyRamp, 65536, 32767));
}

TEST_F(BitmapCreation, measures_at_the_limit) {
    EXPECT_FALSE(measureBitmap(4, 0x20000000, 8).has_value());
    const auto largest = measureBitmap(4, 0x1FFFFFFF, 8);
    ASSERT_TRUE(largest.has_value());
    EXPECT_EQ(largest->imageSize, 0x7FFFFFFCU);
    EXPECT_EQ(measureBitmap(0, 0, 8)->imageSize, 0U);
}

TEST_F(BitmapCreation, no_stream_no_bitmap) {
    CBM store;
    EXPECT_FALSE(store.CreateBitmap(kGreyRamp, 1, 1));
    EXPECT_EQ(store.bitsPerPixel(), 8);
    EXPECT_EQ(store.width(), 0U);
    EXPECT_FALSE(store.Seek(0, 0));
    EXPECT_EQ(store.GetPixel(), 0U);
    EXPECT_FALSE(store.SetPixel(0));
    FileStream closed;
    store.setStream(&closed);
    EXPECT_FALSE(store.CreateBitmap(kGreyRamp, 1, 1));
}

TEST_F(BitmapCreation, failed_write_is_reported) {
    FileStream stream(test::kBitmapPath, OpenMode::Create);
    CBM store;
    store.setStream(&stream);
    m_workspace.failWrites();
    EXPECT_FALSE(store.CreateBitmap(kGreyRamp, 4, 4));
    EXPECT_TRUE(stream.failed());
    EXPECT_FALSE(store.Fill(0));
    const Bytes row(16);
    EXPECT_FALSE(store.WriteRow(row.data(), 0, true));
    EXPECT_FALSE(store.WriteBitmap(row.data()));
    ASSERT_TRUE(store.Seek(0, 0));
    EXPECT_FALSE(store.SetPixel(0));
    EXPECT_FALSE(store.WriteBitmapPart8BPP(row.data(), 0, 1, 1, 0, 0));
    m_workspace.endFaults();
    EXPECT_TRUE(stream.failed());  // until it is opened again
}

TEST_F(BitmapCreation, own_file) {
    CBM store;
    EXPECT_FALSE(store.Open(nullptr));
    EXPECT_FALSE(store.Open(TEXT("C:\\missing\\folder\\copy.bmp")));
    Workspace::writeFile(TEXT("C:\\copy.bmp"), std::string(5000, 'x'));
    ASSERT_TRUE(store.Open(TEXT("C:\\copy.bmp")));
    ASSERT_TRUE(store.CreateBitmap(kTrueColour, 2, 2));
    store.Close();
    EXPECT_EQ(Workspace::readFile(TEXT("C:\\copy.bmp")).size(), 54U);
    EXPECT_FALSE(store.Seek(0, 0));  // the file is gone
}

TEST_F(BitmapCreation, closing_leaves_a_lent_stream_open) {
    FileStream stream(test::kBitmapPath, OpenMode::Create);
    {
        CBM store;
        store.setStream(&stream);
        store.Close();
        EXPECT_TRUE(store.CreateBitmap(kGreyRamp, 1, 1));
    }
    EXPECT_TRUE(stream.isOpen());
}

TEST_F(BitmapCreation, fill) {
    static constexpr struct {
        int type;
        std::uint32_t value;
        std::uint8_t filled;
    } cases[] = {{kGreyRamp, 0x123456, 0},    {kGreyRamp, kWhite, 255},   {kGreyRamp, 0x070707, 7},      {kGreyRamp, 0x01070707, 0},
                 {kBlackWhite, kWhite, 0xFF}, {kBlackWhite, 0, 0},        {kBlackWhite, 0x808080, 0},    {kWhiteBlack, kWhite, 0},
                 {kWhiteBlack, 0, 0xFF},      {kTrueColour, kWhite, 255}, {kTrueColour, 0x1234AB, 0xAB}, {kProcessColours, kWhite, 17},
                 {kMciColours, kWhite, 5}};
    for (const auto& [type, value, filled] : cases) {
        for (const std::uint32_t width : {1U, 9U, 64U}) {
            BitmapFile file(type, width, 3);
            ASSERT_TRUE(file.store.Fill(value));
            Bytes expected(file.store.imageSize());
            for (std::uint32_t r = 0; r < 3; ++r) {
                for (std::uint32_t c = 0; c < file.rowBytes(); ++c) expected[std::size_t{r} * file.store.stride() + c] = filled;
            }
            EXPECT_EQ(file.pixels(), expected) << "type " << type << ", value " << value << ", width " << width;
            EXPECT_EQ(file.stream.tell(), file.store.pixelPosition() + file.store.imageSize());
        }
    }
}

TEST_F(BitmapCreation, fill_of_many_blocks_and_of_rows_beyond_16_bits) {
    {
        BitmapFile file(kGreyRamp, 1000, 5000);
        ASSERT_TRUE(file.store.Fill(kWhite));
        EXPECT_EQ(file.pixels(), Bytes(5000000, 255));
    }
    BitmapFile file(kTrueColour, 30000, 20);
    ASSERT_TRUE(file.store.Fill(kWhite));
    EXPECT_EQ(file.pixels(), Bytes(std::size_t{90000} * 20, 255));
}

TEST_F(BitmapCreation, fill_without_memory_does_nothing) {
    BitmapFile file(kGreyRamp, 4, 4);
    m_workspace.failAllocations();
    EXPECT_TRUE(file.store.Fill(kWhite));
    m_workspace.endFaults();
    EXPECT_TRUE(file.pixels().empty());
}
