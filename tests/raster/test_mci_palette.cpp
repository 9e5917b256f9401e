// The three colour lists together and the palette that is made of them.
#include <gtest/gtest.h>

#include "raster/CMciColorHandler.h"
#include "raster/ColourListFiles.h"
#include "raster/Workspace.h"
#include "raster/cColorTable.h"

using namespace morvil;
using test::colourXml;
using test::listXml;
using test::nameXml;
using test::Workspace;

namespace {

const std::string kSwitch = "CMciColorHandler::getNext, switch to ColorsSystem count=2";
constexpr std::uint32_t kUnused = 0xFFFFFFFF;

std::string grey(int i) { return colourXml(std::to_string(i), i % 200, i % 200, i % 200); }

std::string greys(int count) {
    std::string colours;
    for (int i = 0; i < count; ++i) colours += grey(i);
    return colours;
}

class MciPalette : public ::testing::Test {
  protected:
    void build(DWORD version = 0) {
        ConfigurationRecord record{};
        record.mciVersion = version;
        m_table.SetConfig(&record);
        m_workspace.forgetTexts();
        ASSERT_TRUE(m_table.BuildTable(kMciColours));
        ASSERT_EQ(m_table.entries().size(), 256U);
    }
    void expectEntries(const std::vector<std::uint32_t>& expected) {
        for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(m_table.entries()[i], i < expected.size() ? expected[i] : kUnused) << i;
    }
    static std::vector<std::string> walk(CMciColorHandler& lists) {
        std::vector<std::string> ids;
        for (const CMciColor* colour = lists.getFirst(); colour != nullptr; colour = lists.getNext())
            ids.push_back(toLatin1(viewOf(colour->id.data())));
        return ids;
    }

    Workspace m_workspace;
    cColorTable m_table;
};

}  // namespace

TEST_F(MciPalette, lists_without_files_hold_border_and_white) {
    CMciColorHandler lists;
    EXPECT_EQ(lists.getCount(), 2U);
    EXPECT_EQ(lists.colorsGaspen().getCount(), 0U);
    EXPECT_EQ(lists.colorsCustomer().getCount(), 0U);
    EXPECT_EQ(viewOf(lists.colorsGaspen().getVersion()), TEXT("0.0"));
    EXPECT_EQ(viewOf(lists.colorsCustomer().getVersion()), TEXT("0.0"));
    EXPECT_EQ(viewOf(lists.colorsSystem().getVersion()), TEXT("0.9"));
    const CMciColor& border = *lists.colorsSystem().getAt(0);
    const CMciColor& white = *lists.colorsSystem().getAt(1);
    EXPECT_EQ(viewOf(border.id.data()), TEXT("232.232.232"));
    EXPECT_EQ(viewOf(border.name.data()), TEXT("border"));
    EXPECT_EQ(viewOf(border.version.data()), TEXT("1.0"));
    EXPECT_TRUE(border.red == 232 && border.green == 232 && border.blue == 232);
    EXPECT_EQ(viewOf(white.id.data()), TEXT("255.255.255"));
    EXPECT_EQ(viewOf(white.name.data()), TEXT("white"));
    EXPECT_EQ(viewOf(white.version.data()), TEXT("1.0"));
    EXPECT_TRUE(white.red == 255 && white.green == 255 && white.blue == 255);
    EXPECT_EQ(walk(lists), (std::vector<std::string>{"232.232.232", "255.255.255"}));
}

TEST_F(MciPalette, handler_announces_itself_and_its_lists) {
    m_workspace.forgetTexts();
    { const CMciColorHandler lists; }
    EXPECT_EQ(m_workspace.countDebug("CMciColorHandler::CMciColorHandler (1)\n"), 1U);
    EXPECT_EQ(m_workspace.debugLines().front(), "CMciColorHandler::CMciColorHandler (1)\n");
    EXPECT_EQ(m_workspace.countDebug("CMciColorHandler::CMciColorHandler (1) finished\n"), 1U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::CMciColorsBase\n"), 2U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorHandler::~CMciColorHandler\n"), 1U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorHandler::~CMciColorHandler finished\n"), 1U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::~CMciColorsBase\n"), 3U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::~CMciColorsBase finished\n"), 3U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::destroy\n"), 2U);
}

TEST_F(MciPalette, walk_takes_catalogue_then_customer_then_system) {
    test::writeCatalogue(listXml("1.0", colourXml("g0", 1, 1, 1) + colourXml("g1", 2, 2, 2)));
    test::writeCustomer(listXml("5.0", colourXml("c0", 3, 3, 3)));
    CMciColorHandler lists;
    m_workspace.forgetTexts();
    const std::vector<std::string> order = {"g0", "g1", "c0", "232.232.232", "255.255.255"};
    EXPECT_EQ(walk(lists), order);
    EXPECT_EQ(m_workspace.countLog(kSwitch), 4U);  // each time the catalogue has no more
    EXPECT_EQ(walk(lists), order);                 // starts over
    EXPECT_EQ(viewOf(lists.colorsCustomer().getVersion()), TEXT("5.0"));
}

TEST_F(MciPalette, walk_without_a_catalogue_begins_with_the_first_system_colour) {
    test::writeCatalogue(listXml("1.0", ""));
    test::writeCustomer(listXml("1.0", colourXml("c0", 3, 3, 3) + colourXml("c1", 3, 3, 3)));
    CMciColorHandler lists;
    EXPECT_EQ(walk(lists), (std::vector<std::string>{"232.232.232", "c0", "c1", "255.255.255"}));
}

TEST_F(MciPalette, index_runs_across_catalogue_customer_and_system) {
    test::writeCatalogue(listXml("1.0", colourXml("g0", 1, 1, 1) + colourXml("g1", 2, 2, 2)));
    test::writeCustomer(listXml("1.0", colourXml("c0", 3, 3, 3)));
    const CMciColorHandler lists;
    m_workspace.forgetTexts();
    for (const std::size_t beyond : {std::size_t{5}, std::size_t{1000}, static_cast<std::size_t>(-1)}) EXPECT_EQ(lists[beyond], nullptr);
    EXPECT_EQ(m_workspace.countDebug("CMciColorHandler::operator [], invalid index\n"), 3U);
    static constexpr const WCHAR* kIds[] = {TEXT("g0"), TEXT("g1"), TEXT("c0"), TEXT("232.232.232"), TEXT("255.255.255")};
    for (std::size_t i = 0; i < 5; ++i) {
        ASSERT_NE(lists[i], nullptr) << i;
        EXPECT_EQ(viewOf(lists[i]->id.data()), viewOf(kIds[i])) << i;
    }
    EXPECT_EQ(m_workspace.countDebug("CMciColorHandler::operator [], invalid index\n"), 3U);
}

TEST_F(MciPalette, version_filters_both_file_lists) {
    const std::string colours = colourXml("a", 1, 1, 1) + colourXml("b", 1, 1, 1, R"(Version="1.1")") +
                                colourXml("c", 1, 1, 1, R"(Version="2.0")") + colourXml("d", 1, 1, 1, R"(Version="1.1" ReplacedBy="c")");
    test::writeCatalogue(listXml("1.0", colours));
    test::writeCustomer(listXml("1.0", colours));
    CMciColorHandler lists;
    EXPECT_EQ(lists.getCount(), 1U + 1U + 2U);
    static constexpr struct {
        DWORD version;
        std::size_t count;
    } cases[] = {{1, 2}, {2, 3}, {3, 4}, {0, 1}, {2, 3}, {4, 1}, {3, 4}, {0xFFFFFFFF, 1}};
    for (const auto& [version, count] : cases) {
        lists.setMciVersion(version);
        EXPECT_EQ(lists.colorsGaspen().getCount(), count) << version;
        EXPECT_EQ(lists.colorsCustomer().getCount(), count) << version;
        EXPECT_EQ(lists.colorsSystem().getCount(), 2U) << version;
    }
}

TEST_F(MciPalette, both_lists_come_from_the_common_folder_when_the_catalogue_is_missing) {
    const CMvConfig folders;
    test::writeCustomer(listXml("1.0", colourXml("here", 1, 1, 1)));
    Workspace::writeFile(WString(folders.commonFiles()) + TEXT("\\ColorsGaspen.xml"), listXml("1.0", colourXml("g", 1, 1, 1)));
    Workspace::writeFile(WString(folders.commonFiles()) + TEXT("\\ColorsCustomer.xml"), listXml("1.0", colourXml("there", 1, 1, 1)));
    CMciColorHandler lists;
    EXPECT_EQ(walk(lists), (std::vector<std::string>{"g", "there", "232.232.232", "255.255.255"}));
}

TEST_F(MciPalette, default_table_without_files) {
    build(3);
    expectEntries({0x000000, 0x0000FF, 0x00FF00, 0xFF0000, 0xE8E8E8, 0xFFFFFF, 0xFFFFFF});
    EXPECT_EQ(m_workspace.logLines(),
              (std::vector<std::string>{"MciVersion=3", "Default color table is used", "Add last color second time", "Cnt=6"}));
    EXPECT_EQ(m_workspace.debugLines().front(), "cColorTable::BuildTable_8BPPMci\n");
    EXPECT_EQ(m_workspace.countDebug("cColorTable::BuildTable_8BPPMci finished\n"), 1U);
    EXPECT_EQ(m_table.getNearestIndex(kWhite), 5);
}

TEST_F(MciPalette, white_on_an_odd_index_is_left_there) {
    test::writeCatalogue(listXml("1.0", colourXml("a", 1, 2, 3, "", nameXml("en", "Alpha")) + colourXml("b", 4, 5, 6)));
    build();
    expectEntries({0x030201, 0x060504, 0xE8E8E8, 0xFFFFFF});
    EXPECT_EQ(m_workspace.logLines(),
              (std::vector<std::string>{"MciVersion=0", "Colors count=4", "ColorID=a, Name=Alpha, actColEntry=0",
                                        "ColorID=b, Name=, actColEntry=1", kSwitch, "ColorID=232.232.232, Name=border, actColEntry=2",
                                        kSwitch, "ColorID=255.255.255, Name=white, actColEntry=3", kSwitch}));
    EXPECT_EQ(m_workspace.countDebug("ColorID=a, Name=Alpha, actColEntry=0\n"), 1U);
    EXPECT_EQ(m_workspace.countDebug("ColorID=255.255.255, Name=white, actColEntry=3\n"), 1U);
    EXPECT_EQ(m_table.getNearestIndex(kWhite), 3);
}

TEST_F(MciPalette, colour_before_white_is_doubled_to_make_its_index_odd) {
    test::writeCatalogue(listXml("1.0", colourXml("a", 1, 2, 3)));
    build();
    expectEntries({0x030201, 0xE8E8E8, 0xE8E8E8, 0xFFFFFF});
    EXPECT_EQ(m_workspace.countLog("Add color second time"), 1U);
    EXPECT_EQ(m_workspace.countLog("ColorID=255.255.255, Name=white, actColEntry=2"), 1U);
}

TEST_F(MciPalette, only_the_first_white_at_an_even_index_doubles) {
    test::writeCatalogue(listXml("1.0", colourXml("w", 255, 255, 255) + colourXml("a", 1, 2, 3) + colourXml("v", 255, 255, 255) +
                                            colourXml("b", 4, 5, 6) + colourXml("c", 7, 8, 9) + colourXml("u", 255, 255, 255)));
    build();
    // w is the very first; v at 2 doubles a and lands on 3; u stays at 6 and the system's white at 8
    expectEntries({0xFFFFFF, 0x030201, 0x030201, 0xFFFFFF, 0x060504, 0x090807, 0xFFFFFF, 0xE8E8E8, 0xFFFFFF});
    EXPECT_EQ(m_workspace.countLog("Add color second time"), 1U);
}

TEST_F(MciPalette, nearly_white_does_not_double) {
    test::writeCatalogue(listXml("1.0", colourXml("a", 1, 2, 3) + colourXml("b", 4, 5, 6) + colourXml("n", 255, 255, 254)));
    build();
    expectEntries({0x030201, 0x060504, 0xFEFFFF, 0xE8E8E8, 0xE8E8E8, 0xFFFFFF});
}

TEST_F(MciPalette, full_palette_ends_the_walk) {
    static constexpr struct {
        int colours;
        std::uint32_t last[3];  // entries 253 to 255
        std::size_t doubled;
    } cases[] = {{252, {0xFFFFFF, kUnused, kUnused}, 0},   {253, {0xE8E8E8, 0xE8E8E8, 0xFFFFFF}, 1},
                 {254, {0x353535, 0xE8E8E8, 0xFFFFFF}, 0}, {255, {0x353535, 0x363636, 0xE8E8E8}, 0},
                 {256, {0x353535, 0x363636, 0x373737}, 0}, {1000, {0x353535, 0x363636, 0x373737}, 0}};
    for (const auto& [colours, last, doubled] : cases) {
        SCOPED_TRACE(colours);
        test::writeCatalogue(listXml("1.0", greys(colours)));
        build();
        EXPECT_EQ(m_table.entries()[253], last[0]);
        EXPECT_EQ(m_table.entries()[254], last[1]);
        EXPECT_EQ(m_table.entries()[255], last[2]);
        EXPECT_EQ(m_workspace.countLog("Add color second time"), doubled);
        EXPECT_EQ(m_workspace.countLog("Colors count=" + std::to_string(colours + 2)), 1U);
    }
}

TEST_F(MciPalette, version_of_the_configuration_filters_the_lists) {
    test::writeCatalogue(listXml("1.0", colourXml("a", 1, 2, 3) + colourXml("b", 4, 5, 6, R"(Version="2.0")")));
    build(1);
    EXPECT_EQ(m_workspace.countLog("MciVersion=1"), 1U);
    expectEntries({0x030201, 0xE8E8E8, 0xE8E8E8, 0xFFFFFF});
    build(2);
    expectEntries({0x030201, 0x060504, 0xE8E8E8, 0xFFFFFF});
}

TEST_F(MciPalette, damaged_catalogue_gives_the_default_table) {
    test::writeCatalogue("<MciColors><Colors");
    build();
    EXPECT_EQ(m_workspace.countLog("Default color table is used"), 1U);
    EXPECT_EQ(m_table.entries()[4], 0xE8E8E8U);
}
