// Palettes by type, the process colour ini file, counts and the log.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "raster/Workspace.h"
#include "raster/cColorTable.h"

using namespace morvil;
using test::Workspace;

namespace {

constexpr const WCHAR* kIniName = TEXT("colours.ini");

class ProcessColours : public ::testing::Test {
  protected:
    ProcessColours() { copyText(m_record.files.processColourIni, kIniName); }

    void writeIni(const std::string& text, bool second = false) {
        const WString folder = second ? m_folders.programCommonFiles() : m_folders.commonFiles();
        Workspace::writeFile(folder + TEXT("\\") + kIniName, text);
    }
    void build() {
        m_table.SetConfig(&m_record);
        m_workspace.forgetTexts();
        ASSERT_TRUE(m_table.BuildTable(kProcessColours));
        ASSERT_EQ(m_table.entries().size(), 256U);
    }
    void expectDefaultTable() {
        const std::vector<std::uint32_t> expected = {0x000000, 0x0000FF, 0xFF0000, 0x996633, 0xFFFF00, 0x00FF00,
                                                     0x339900, 0x336600, 0x339999, 0x336699, 0x003366, 0x660066,
                                                     0xCC0099, 0xFF00FF, 0x0066FF, 0x00FFFF, 0x00FFFF};
        const auto entries = m_table.entries();
        for (std::size_t i = 0; i < entries.size(); ++i) EXPECT_EQ(entries[i], i < expected.size() ? expected[i] : kWhite) << i;
        EXPECT_EQ(m_workspace.countLog("Default color table is used"), 1U);
        EXPECT_EQ(m_workspace.countLog("Add last color second time"), 1U);
    }

    Workspace m_workspace;
    CMvConfig m_folders;
    ConfigurationRecord m_record{};
    cColorTable m_table;
};

std::string item(int number, const std::string& red, const std::string& green, const std::string& blue) {
    const std::string prefix = "ProcessColor[" + std::to_string(number) + "].";
    return prefix + "Red=" + red + "\r\n" + prefix + "Green=" + green + "\r\n" + prefix + "Blue=" + blue + "\r\n";
}

std::string counted(const std::string& count, int items) {
    std::string text = "[ProcessColor]\r\nProcessColorCount=" + count + "\r\n";
    for (int i = 1; i <= items; ++i) text += item(i, std::to_string(i % 256), "2", "3");
    return text;
}

}  // namespace

TEST(ColourTable, null_configuration_raises_10001_and_keeps_the_table) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kBlackWhite));
    DWORD code = 0;
    try {
        table.SetConfig(nullptr);
    } catch (const ConfigurationError& error) {
        code = error.code;
    }
    EXPECT_EQ(code, 10001U);
    EXPECT_THROW(table.getWhiteIndex(nullptr), ConfigurationError);
    EXPECT_EQ(table.entries().size(), 2U);
}

TEST(ColourTable, unknown_type_is_refused_and_leaves_no_entries) {
    cColorTable table;
    for (const int type : {-1, 6, 255}) {
        EXPECT_FALSE(table.BuildTable(type));
        EXPECT_TRUE(table.entries().empty());
    }
}

TEST(ColourTable, fixed_palettes) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kGreyRamp));
    ASSERT_EQ(table.entries().size(), 256U);
    for (std::uint32_t i = 0; i < 256; ++i) EXPECT_EQ(table.entries()[i], i * 0x010101U);
    ASSERT_TRUE(table.BuildTable(kBlackWhite));
    EXPECT_TRUE(std::ranges::equal(table.entries(), std::array<std::uint32_t, 2>{0x000000, 0xFFFFFF}));
    ASSERT_TRUE(table.BuildTable(kWhiteBlack));
    EXPECT_TRUE(std::ranges::equal(table.entries(), std::array<std::uint32_t, 2>{0xFFFFFF, 0x000000}));
    EXPECT_EQ(table.type(), 3);
    ASSERT_TRUE(table.BuildTable(kTrueColour));
    EXPECT_TRUE(table.entries().empty());
}

TEST(ColourTable, counts_of_the_types_are_logged) {
    static constexpr struct {
        int type;
        int count;
    } cases[] = {{0, 256}, {1, 256}, {2, 2}, {3, 2}, {4, 256}, {5, 256}, {-7, 256}, {99, 256}};
    Workspace workspace;
    cColorTable table;
    for (const auto& [type, count] : cases) {
        workspace.forgetTexts();
        EXPECT_EQ(table.getCntEntries(type), count) << type;
        EXPECT_EQ(workspace.logLines(), std::vector<std::string>{"cColorTable::getCntEntries, Count=" + std::to_string(count)});
    }
}

TEST_F(ProcessColours, missing_file_gives_the_default_table) {
    build();
    expectDefaultTable();
    EXPECT_EQ(m_workspace.logLines(),
              (std::vector<std::string>{"ColorTable Count=0", "Default color table is used", "Add last color second time"}));
    EXPECT_EQ(m_table.getNearestIndex(kWhite), 17);
}

TEST_F(ProcessColours, table_without_configuration_is_the_default_table) {
    cColorTable table;
    ASSERT_TRUE(table.BuildTable(kProcessColours));
    EXPECT_EQ(table.entries()[16], 0x00FFFFU);
    EXPECT_EQ(m_workspace.countLog("ColorTable Count=0"), 1U);
}

TEST_F(ProcessColours, counts_outside_the_palette_give_the_default_table) {
    for (const char* const count : {"0", "-1", "-2147483648", "257", "100000", "2147483647", "4294967295", "none"}) {
        SCOPED_TRACE(count);
        writeIni(counted(count, 3));
        build();
        expectDefaultTable();
        EXPECT_EQ(m_workspace.countLog("ColorTable Count=0"), std::string(count) == "0" || std::string(count) == "none" ? 1U : 0U);
        EXPECT_EQ(m_workspace.countLog("ColorTable Item_4 not found"), 0U);
    }
}

TEST_F(ProcessColours, incomplete_item_gives_the_default_table_and_is_named) {
    static const struct {
        const char* what;
        std::string second;
    } cases[] = {{"green of 300", item(2, "1", "300", "3")},
                 {"red of 256", item(2, "256", "2", "3")},
                 {"negative blue", item(2, "1", "2", "-1")},
                 {"no blue", "ProcessColor[2].Red=1\r\nProcessColor[2].Green=2\r\n"},
                 {"nothing", ""}};
    for (const auto& [what, second] : cases) {
        SCOPED_TRACE(what);
        writeIni("[ProcessColor]\r\nProcessColorCount=3\r\n" + item(1, "1", "2", "3") + second + item(3, "4", "5", "6"));
        build();
        expectDefaultTable();
        EXPECT_EQ(m_workspace.countLog("ColorTable Item_2 not found"), 1U);
        EXPECT_EQ(m_workspace.countLog("ColorTable Item_1 not found"), 0U);
        EXPECT_EQ(m_workspace.countLog("ColorTable Item_3 not found"), 0U);
    }
}

TEST_F(ProcessColours, every_incomplete_item_of_a_lying_count_is_named_once) {
    writeIni(counted("6", 4));
    build();
    expectDefaultTable();
    EXPECT_EQ(m_workspace.logLines(), (std::vector<std::string>{"ColorTable Item_5 not found", "ColorTable Item_6 not found",
                                                                "Default color table is used", "Add last color second time"}));
}

TEST_F(ProcessColours, cut_file_gives_the_default_table) {
    const std::string whole = counted("40", 40);
    for (const std::size_t length : {whole.size() - 20, whole.size() / 2, std::size_t{40}, std::size_t{5}}) {
        writeIni(whole.substr(0, length));
        build();
        expectDefaultTable();
    }
}

TEST_F(ProcessColours, file_of_another_encoding) {
    writeIni(test::asUtf16File(counted("4", 4)));
    build();
    EXPECT_EQ(m_table.entries()[3], 0x030204U);
    EXPECT_EQ(m_workspace.logLines(), (std::vector<std::string>{"ColorTable validated, Count=4", "Add last color second time"}));
}

TEST_F(ProcessColours, odd_count_is_taken_without_a_duplicate) {
    writeIni("[ProcessColor]\r\nProcessColorCount=3\r\n" + item(1, "1", "2", "3") + item(2, "255", "0", "128") + item(3, "0", "0", "0"));
    build();
    const auto entries = m_table.entries();
    EXPECT_EQ(entries[0], 0x030201U);
    EXPECT_EQ(entries[1], 0x8000FFU);
    EXPECT_EQ(entries[2], 0x000000U);
    for (std::size_t i = 3; i < 256; ++i) EXPECT_EQ(entries[i], kWhite) << i;
    EXPECT_EQ(m_workspace.logLines(), std::vector<std::string>{"ColorTable validated, Count=3"});
}

TEST_F(ProcessColours, even_count_repeats_the_last_colour) {
    writeIni(counted("4", 4));
    build();
    const auto entries = m_table.entries();
    EXPECT_EQ(entries[3], 0x030204U);
    EXPECT_EQ(entries[4], entries[3]);
    EXPECT_EQ(entries[5], kWhite);
    EXPECT_EQ(m_workspace.logLines(), (std::vector<std::string>{"ColorTable validated, Count=4", "Add last color second time"}));
}

TEST_F(ProcessColours, largest_counts) {
    static constexpr struct {
        int count;
        std::size_t doubled;
    } cases[] = {{254, 1}, {255, 0}, {256, 0}};
    for (const auto& [count, doubled] : cases) {
        SCOPED_TRACE(count);
        writeIni(counted(std::to_string(count), count));
        build();
        EXPECT_EQ(m_table.entries()[252], 0x0302FDU);
        EXPECT_EQ(m_table.entries()[253], 0x0302FEU);
        EXPECT_EQ(m_table.entries()[254], count == 254 ? 0x0302FEU : 0x0302FFU);
        EXPECT_EQ(m_table.entries()[255], count == 256 ? 0x030200U : kWhite);
        EXPECT_EQ(m_workspace.countLog("ColorTable validated, Count=" + std::to_string(count)), 1U);
        EXPECT_EQ(m_workspace.countLog("Add last color second time"), doubled);
    }
}

TEST_F(ProcessColours, second_folder_serves_when_the_first_has_no_file) {
    writeIni(counted("1", 1), true);
    build();
    EXPECT_EQ(m_workspace.countLog("ColorTable validated, Count=1"), 1U);
    EXPECT_EQ(WString(m_table.iniPath()), WString(m_folders.programCommonFiles()) + TEXT("\\") + kIniName);
    writeIni(counted("3", 3));
    build();
    EXPECT_EQ(m_workspace.countLog("ColorTable validated, Count=3"), 1U);
    EXPECT_EQ(WString(m_table.iniPath()), WString(m_folders.commonFiles()) + TEXT("\\") + kIniName);
}

TEST_F(ProcessColours, white_index_asks_the_table_built_last) {
    EXPECT_EQ(m_table.getWhiteIndex(&m_record), 255);  // nothing built yet
    build();
    EXPECT_EQ(m_table.getWhiteIndex(&m_record), 17);
    ASSERT_TRUE(m_table.BuildTable(kGreyRamp));
    EXPECT_EQ(m_table.getWhiteIndex(&m_record), 255);
    ASSERT_TRUE(m_table.BuildTable(kWhiteBlack));
    EXPECT_EQ(m_table.getWhiteIndex(&m_record), 0);
}
