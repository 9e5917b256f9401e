// Catalogue colours and one colour list: fields, texts, version filter, names by language, damaged files.
#include <gtest/gtest.h>

#include "raster/CMciColorsBase.h"
#include "raster/ColourListFiles.h"
#include "raster/Workspace.h"

using namespace morvil;
using test::colourXml;
using test::listXml;
using test::nameXml;
using test::Workspace;

namespace {

constexpr const WCHAR* kList = TEXT("C:\\list.xml");

std::string text(std::span<const WCHAR> buffer) { return toLatin1(viewOf(buffer)); }

class ColourList : public ::testing::Test {
  protected:
    // The list of a file that holds `bytes`, loaded with the filter.
    CMciColorsBase& load(const std::string& bytes, DWORD filter = 0, const WCHAR* language = TEXT("en")) {
        Workspace::writeFile(kList, bytes);
        m_list = std::make_unique<CMciColorsBase>(kList);
        m_list->setLanguage(language);
        m_list->setFilter(filter);
        m_list->load();
        return *m_list;
    }
    std::vector<std::string> ids() {
        std::vector<std::string> all;
        for (std::size_t i = 0; i < m_list->getCount(); ++i) all.push_back(text(m_list->getAt(i)->id));
        return all;
    }

    Workspace m_workspace;
    std::unique_ptr<CMciColorsBase> m_list;
};

const std::vector<std::string> kNothing;

}  // namespace

TEST_F(ColourList, missing_file_is_an_empty_list_of_version_0_0) {
    CMciColorsBase list(TEXT("C:\\nowhere\\list.xml"));
    EXPECT_FALSE(list.load());
    EXPECT_EQ(list.getCount(), 0U);
    EXPECT_EQ(viewOf(list.getVersion()), TEXT("0.0"));
    EXPECT_EQ(list.getNext(), nullptr);
    EXPECT_EQ(list.getAt(0), nullptr);
}

TEST_F(ColourList, null_or_too_long_path_is_ignored) {
    CMciColorsBase none(nullptr);
    EXPECT_FALSE(none.load());
    const WString path = TEXT("C:\\") + WString(260 - 3 - 8, TEXT('a')) + TEXT("list.xml");
    ASSERT_EQ(path.size(), 260U);
    m_workspace.forgetTexts();
    const CMciColorsBase tooLong(path.c_str());
    EXPECT_EQ(viewOf(tooLong.getVersion()), TEXT("0.0"));
    EXPECT_EQ(m_workspace.countDebug("CXml::CXml 2\n"), 0U);
    const CMciColorsBase longest((TEXT("C:\\") + path.substr(4)).c_str());
    EXPECT_EQ(m_workspace.countDebug("CXml::CXml 2\n"), 1U);
}

TEST_F(ColourList, list_without_a_file_has_version_0_9_and_opens_nothing) {
    m_workspace.forgetTexts();
    const CMciColorsBase list;
    EXPECT_EQ(viewOf(list.getVersion()), TEXT("0.9"));
    EXPECT_EQ(list.getCount(), 0U);
    EXPECT_EQ(m_workspace.debugLines(), kNothing);
}

TEST_F(ColourList, damaged_files_are_empty_lists) {
    const std::string noise("\x01\x02<<<>>>&&&\xFF\xFE\x00<Color", 19);
    for (const std::string& bytes :
         {std::string(), std::string(" "), noise, std::string("<MciColors"),
          std::string("<Other><Colors><Color ID=\"1\"/></Colors></Other>"), std::string("<MciColors><Colors/></MciColors>")}) {
        SCOPED_TRACE(bytes);
        CMciColorsBase& list = load(bytes);
        EXPECT_EQ(list.getCount(), 0U);
        EXPECT_EQ(viewOf(list.getVersion()), TEXT("0.0"));
    }
}

TEST_F(ColourList, cut_file_yields_the_colours_that_are_there) {
    const std::string whole = listXml("3.1", colourXml("1", 1, 2, 3) + colourXml("2", 4, 5, 6) + colourXml("3", 7, 8, 9));
    CMciColorsBase& list = load(whole.substr(0, whole.find("<Color ID=\"3\"")));
    EXPECT_EQ(ids(), (std::vector<std::string>{"1", "2"}));
    EXPECT_EQ(viewOf(list.getVersion()), TEXT("3.1"));
}

TEST_F(ColourList, every_attribute_lands_in_its_field) {
    load(listXml("2.7", R"(<Color ID="17" Target="9" Level="L5" Red="250" Green="0" Blue="65535" Version="1.1" ReplacedBy="18">)"
                        R"(<Name Lang="en" value="Signal red"/></Color>)"),
         3);
    ASSERT_EQ(m_list->getCount(), 1U);
    const CMciColor& colour = *m_list->getAt(0);
    EXPECT_EQ(text(colour.id), "17");
    EXPECT_EQ(colour.target, 9);
    EXPECT_EQ(text(colour.level), "L5");
    EXPECT_EQ(colour.red, 250);
    EXPECT_EQ(colour.green, 0);
    EXPECT_EQ(colour.blue, 65535);
    EXPECT_EQ(text(colour.version), "1.1");
    EXPECT_EQ(text(colour.replacedBy), "18");
    EXPECT_EQ(text(colour.name), "Signal red");
    EXPECT_EQ(viewOf(m_list->getVersion()), TEXT("2.7"));
}

TEST_F(ColourList, missing_and_malformed_attributes_read_as_nothing) {
    load(listXml("", R"(<Color/><Color Target="x" Red="007" Green="65536" Blue="-1"/>)"));
    ASSERT_EQ(m_list->getCount(), 2U);
    for (std::size_t i = 0; i < 2; ++i) EXPECT_TRUE(*m_list->getAt(i) == CMciColor()) << i;
    EXPECT_EQ(viewOf(m_list->getVersion()), TEXT(""));
}

TEST_F(ColourList, texts_are_cut_to_their_lengths) {
    const std::string twenty = "12345678901234567890";
    const std::string hundred = twenty + twenty + twenty + twenty + twenty;
    load(listXml(twenty + "v", "<Color ID=\"" + twenty + "i\" Level=\"" + twenty + "l\" Version=\"" + twenty + "v\" ReplacedBy=\"" +
                                   twenty + "r\">" + nameXml("en", hundred + "n") + "</Color>"));
    ASSERT_EQ(m_list->getCount(), 1U);
    const CMciColor& colour = *m_list->getAt(0);
    EXPECT_EQ(text(colour.id), twenty);
    EXPECT_EQ(text(colour.level), twenty);
    EXPECT_EQ(text(colour.version), twenty);
    EXPECT_EQ(text(colour.replacedBy), twenty);
    EXPECT_EQ(text(colour.name), hundred);
    EXPECT_EQ(toLatin1(viewOf(m_list->getVersion())), twenty);
}

TEST_F(ColourList, version_filter) {
    std::string colours;
    for (const char* const version : {"", "1.0", "1.1", "2.0", "1.2", "2"}) {
        const std::string attribute = *version == 0 ? std::string() : std::string("Version=\"") + version + "\" ";
        const std::string id = *version == 0 ? "none" : version;
        colours += colourXml(id, 1, 2, 3, attribute) + colourXml(id + "r", 1, 2, 3, attribute + "ReplacedBy=\"7\"");
    }
    static const struct {
        DWORD filter;
        std::vector<std::string> kept;
    } cases[] = {{0, {"none", "noner", "1.0", "1.0r", "1.2", "1.2r", "2", "2r"}},
                 {1, {"none", "1.0", "1.1", "1.2", "2"}},
                 {2, {"none", "1.0", "1.1", "2.0", "1.2", "2"}},
                 {3, {"none", "noner", "1.0", "1.0r", "1.1", "1.1r", "2.0", "2.0r", "1.2", "1.2r", "2", "2r"}}};
    for (const auto& [filter, kept] : cases) {
        load(listXml("1.0", colours), filter);
        EXPECT_EQ(ids(), kept) << "filter " << filter;
    }
}

TEST_F(ColourList, name_in_the_wanted_language) {
    static const struct {
        std::string names;
        const WCHAR* language;
        const char* expected;
    } cases[] = {
        {"", TEXT("en"), ""},
        {nameXml("de", "Rot"), TEXT("en"), ""},
        {nameXml("EN", "Red"), TEXT("en"), ""},
        {nameXml("e", "Red"), TEXT("en"), ""},
        {"<Name value=\"Red\"/>", TEXT("en"), ""},
        {"<Other Lang=\"en\" value=\"Red\"/>", TEXT("en"), ""},
        {"<Name Lang=\"en\"/>" + nameXml("en", "late"), TEXT("en"), ""},
        {nameXml("de", "Rot") + nameXml("en", "Red"), TEXT("en"), "Red"},
        {nameXml("en-GB", "Crimson") + nameXml("en", "Red"), TEXT("en"), "Red"},
        {nameXml("de", "Rot") + nameXml("en-GB", "Crimson") + nameXml("en-US", "Red"), TEXT("en"), "Crimson"},
        {nameXml("en", "first") + nameXml("en", "second"), TEXT("en"), "first"},
        {nameXml("en", "Red") + nameXml("en-US", "Scarlet"), TEXT("en-US"), "Scarlet"},
        {nameXml("de", "Rot") + nameXml("en", "Red"), TEXT("en-US"), "Red"},
        {nameXml("en", "Red") + nameXml("de", "Rot"), TEXT("de"), "Rot"},
    };
    for (const auto& [names, language, expected] : cases) {
        load(listXml("1.0", colourXml("1", 1, 2, 3, "", names)), 0, language);
        ASSERT_EQ(m_list->getCount(), 1U) << names;
        EXPECT_EQ(text(m_list->getAt(0)->name), expected) << names;
    }
}

TEST_F(ColourList, cursor_stays_at_the_end_until_reset) {
    load(listXml("1.0", colourXml("a", 1, 2, 3) + colourXml("b", 1, 2, 3)));
    ASSERT_NE(m_list->getNext(), nullptr);
    EXPECT_EQ(text(m_list->getNext()->id), "b");
    EXPECT_EQ(m_list->getNext(), nullptr);
    EXPECT_EQ(m_list->getNext(), nullptr);
    m_list->reset();
    EXPECT_EQ(text(m_list->getNext()->id), "a");
    m_list->load();
    EXPECT_EQ(text(m_list->getNext()->id), "a");
}

TEST_F(ColourList, positions) {
    load(listXml("1.0", colourXml("a", 1, 2, 3) + colourXml("b", 1, 2, 3)));
    EXPECT_EQ(m_list->getAt(2), nullptr);
    EXPECT_EQ(m_list->getAt(static_cast<std::size_t>(-1)), nullptr);
    EXPECT_EQ(text(m_list->getAt(1)->id), "b");
}

TEST_F(ColourList, contains_compares_every_field) {
    load(listXml("1.0", R"(<Color ID="1" Target="2" Level="3" Red="4" Green="5" Blue="6" Version="1.0" ReplacedBy="8">)" +
                            nameXml("en", "nine") + "</Color>"));
    ASSERT_EQ(m_list->getCount(), 1U);
    using Change = void (*)(CMciColor&);
    static constexpr Change changes[] = {
        [](CMciColor& c) { c.id[0] = TEXT('x'); }, [](CMciColor& c) { c.target = 0; },        [](CMciColor& c) { c.level[1] = TEXT('x'); },
        [](CMciColor& c) { c.red = 0; },           [](CMciColor& c) { c.green = 0; },         [](CMciColor& c) { c.blue = 0; },
        [](CMciColor& c) { c.version[0] = 0; },    [](CMciColor& c) { c.replacedBy[0] = 0; }, [](CMciColor& c) { c.name[0] = TEXT('N'); }};
    for (const Change change : changes) {
        CMciColor other(*m_list->getAt(0));
        change(other);
        EXPECT_FALSE(m_list->contains(other)) << &change - changes;
    }
    EXPECT_TRUE(m_list->contains(CMciColor(*m_list->getAt(0))));
}

TEST_F(ColourList, utf16_file_gives_the_same_list) {
    const std::string file = listXml("1.4", colourXml("a", 1, 2, 3, "", nameXml("en", "Alpha")) + colourXml("b", 4, 5, 6));
    load(file);
    const CMciColor first(*m_list->getAt(0));
    load(test::asUtf16File(file));
    ASSERT_EQ(m_list->getCount(), 2U);
    EXPECT_TRUE(*m_list->getAt(0) == first);
    EXPECT_EQ(viewOf(m_list->getVersion()), TEXT("1.4"));
}

TEST_F(ColourList, thousand_colours_in_file_order) {
    std::string colours;
    for (int i = 0; i < 1000; ++i) colours += colourXml(std::to_string(i), i % 256, 2, 3);
    load(listXml("1.0", colours));
    ASSERT_EQ(m_list->getCount(), 1000U);
    for (std::size_t i = 0; i < 1000; ++i) ASSERT_EQ(text(m_list->getAt(i)->id), std::to_string(i));
}

TEST_F(ColourList, making_loading_and_ending_are_announced) {
    Workspace::writeFile(kList, listXml("1.0", colourXml("a", 1, 2, 3)));
    m_workspace.forgetTexts();
    {
        CMciColorsBase list(kList);
        EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::CMciColorsBase\n"), 1U);
        EXPECT_EQ(m_workspace.debugLines().front(), "CMciColorsBase::CMciColorsBase\n");
        EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::destroy\n"), 0U);
        list.load();
        EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::destroy\n"), 1U);
        EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::destroy finished\n"), 1U);
        EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::~CMciColorsBase\n"), 0U);
        EXPECT_EQ(m_workspace.countDebugPrefix("CMciColor::CMciColor, ("), 1U);  // read in place, not copied
    }
    EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::~CMciColorsBase\n"), 1U);
    EXPECT_EQ(m_workspace.countDebug("CMciColorsBase::~CMciColorsBase finished\n"), 1U);
    EXPECT_EQ(m_workspace.countDebugPrefix("CMciColor::~CMciColor, ("), 1U);
    EXPECT_EQ(m_workspace.logLines(), kNothing);  // all of it goes to the debugger
}

TEST_F(ColourList, colours_are_announced_with_their_number) {
    m_workspace.forgetTexts();
    std::string number;
    {
        const CMciColor colour;
        ASSERT_EQ(m_workspace.debugLines().size(), 2U);
        number = m_workspace.debugLines()[0].substr(std::string("CMciColor::CMciColor, ").size());
        EXPECT_EQ(number.front(), '(');
        EXPECT_TRUE(number.ends_with(")\n"));
        EXPECT_EQ(m_workspace.debugLines()[0], "CMciColor::CMciColor, " + number);
        EXPECT_EQ(m_workspace.debugLines()[1], "CMciColor::CMciColor finished\n");
    }
    ASSERT_EQ(m_workspace.debugLines().size(), 4U);
    EXPECT_EQ(m_workspace.debugLines()[2], "CMciColor::~CMciColor, " + number);
    EXPECT_EQ(m_workspace.debugLines()[3], "CMciColor::~CMciColor finished\n");
    const CMciColor colour;
    m_workspace.forgetTexts();
    const CMciColor copy(colour);
    EXPECT_EQ(m_workspace.debugLines().back(), "CMciColor::CMciColor(CMciColor* pCopyFrom) finished\n");
    EXPECT_EQ(m_workspace.countDebug("CMciColor::CMciColor finished\n"), 0U);
}
