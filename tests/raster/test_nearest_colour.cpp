// The nearest palette entry: exact against the plain search with single-precision roots.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "raster/Workspace.h"
#include "raster/cColorTable.h"

using namespace morvil;

namespace {

float distance(std::uint32_t a, std::uint32_t b) {
    float sum = 0.0F;
    for (const unsigned shift : {0U, 8U, 16U}) {
        const float difference = static_cast<float>(a >> shift & 0xFFU) - static_cast<float>(b >> shift & 0xFFU);
        sum += difference * difference;
    }
    return std::sqrt(sum);
}

// The search as it is defined: start value 9999, strictly smaller wins.
std::uint8_t plainNearest(std::span<const std::uint32_t> entries, std::uint32_t colour) {
    float best = 9999.0F;
    int index = -1;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const float candidate = distance(entries[i], colour);
        if (candidate < best) {
            best = candidate;
            index = static_cast<int>(i);
        }
    }
    return static_cast<std::uint8_t>(index & 0xFF);
}

std::string iniOf(std::span<const std::uint32_t> colours) {
    std::string ini = "[ProcessColor]\r\nProcessColorCount=" + std::to_string(colours.size()) + "\r\n";
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const std::string item = "ProcessColor[" + std::to_string(i + 1) + "].";
        ini += item + "Red=" + std::to_string(colours[i] & 0xFFU) + "\r\n";
        ini += item + "Green=" + std::to_string(colours[i] >> 8 & 0xFFU) + "\r\n";
        ini += item + "Blue=" + std::to_string(colours[i] >> 16 & 0xFFU) + "\r\n";
    }
    return ini;
}

ConfigurationRecord recordWithIni() {
    ConfigurationRecord record{};
    copyText(record.files.processColourIni, TEXT("colours.ini"));
    return record;
}

}  // namespace

// Comparing squared distances replaces comparing their single-precision roots. That holds when the roots of all squares that
// occur are different and rise.
TEST(NearestColour, roots_of_all_squared_distances_rise_strictly_and_stay_below_the_start_value) {
    float previous = -1.0F;
    for (int squared = 0; squared <= 3 * 255 * 255; ++squared) {
        const float root = std::sqrt(static_cast<float>(squared));
        ASSERT_GT(root, previous) << squared;
        previous = root;
    }
    EXPECT_LT(previous, 9999.0F);
}

TEST(NearestColour, empty_table_answers_255) {
    cColorTable table;
    EXPECT_EQ(table.getNearestIndex(0x123456), 255);
    EXPECT_EQ(table.getNearestIndex(0x123456), 255);
    ASSERT_TRUE(table.BuildTable(kTrueColour));
    EXPECT_EQ(table.getNearestIndex(kWhite), 255);
}

TEST(NearestColour, white_of_the_two_entry_tables) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kBlackWhite));
    EXPECT_EQ(table.getNearestIndex(kWhite), 1);
    EXPECT_EQ(table.getNearestIndex(0), 0);
    ASSERT_TRUE(table.BuildTable(kWhiteBlack));
    EXPECT_EQ(table.getNearestIndex(kWhite), 0);
    EXPECT_EQ(table.getNearestIndex(0), 1);
}

TEST(NearestColour, cached_answer_ends_with_the_table) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kBlackWhite));
    EXPECT_EQ(table.getNearestIndex(kWhite), 1);
    EXPECT_EQ(table.getNearestIndex(kWhite), 1);
    ASSERT_TRUE(table.BuildTable(kGreyRamp));
    EXPECT_EQ(table.getNearestIndex(kWhite), 255);
    EXPECT_EQ(table.getNearestIndex(0x808080), 128);
    EXPECT_EQ(table.getNearestIndex(kWhite), 255);
}

TEST(NearestColour, high_byte_of_a_colour_is_no_colour) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kGreyRamp));
    EXPECT_EQ(table.getNearestIndex(0xFF010101), 1);
    EXPECT_EQ(table.getNearestIndex(0x00010101), 1);
}

TEST(NearestColour, lowest_index_wins_among_equal_distances) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kGreyRamp));
    // between 10 and 11: red + blue pull one way exactly as far as the other
    const std::uint32_t colour = 10U | 11U << 8 | 10U << 16;
    ASSERT_EQ(plainNearest(table.entries(), colour), 10);
    EXPECT_EQ(table.getNearestIndex(colour), 10);
    for (std::uint32_t level = 0; level < 255; ++level) {
        // equally far from all: the corners of the ramp's neighbourhood
        const std::uint32_t tie = level | level << 8 | (255U - level) << 16;
        ASSERT_EQ(table.getNearestIndex(tie), plainNearest(table.entries(), tie)) << level;
    }
}

TEST(NearestColour, as_the_plain_search_over_random_palettes_and_colours) {
    const test::Workspace workspace;
    const CMvConfig folders;
    const ConfigurationRecord record = recordWithIni();
    std::mt19937 random(7);
    for (const std::size_t count : {1U, 2U, 3U, 16U, 17U, 100U, 255U, 256U}) {
        for (const std::uint32_t mask : {0xFFFFFFU, 0xC0C0C0U, 0x030303U}) {  // few levels: many ties
            std::vector<std::uint32_t> colours(count);
            for (std::uint32_t& colour : colours) colour = static_cast<std::uint32_t>(random()) & mask;
            test::Workspace::writeFile(WString(folders.commonFiles()) + TEXT("\\colours.ini"), iniOf(colours));
            cColorTable table;
            table.SetConfig(&record);
            ASSERT_TRUE(table.BuildTable(kProcessColours));
            ASSERT_EQ(table.entries()[0], colours[0]);
            for (int i = 0; i < 2000; ++i) {
                const auto colour = static_cast<std::uint32_t>(random() & (i % 2 == 0 ? 0xFFFFFFU : mask));
                ASSERT_EQ(table.getNearestIndex(colour), plainNearest(table.entries(), colour)) << std::hex << colour;
            }
        }
    }
}
