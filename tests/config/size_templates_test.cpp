// Size templates of the engraving table: reading, looking up by name and size, files that lie or are missing.
#include <gtest/gtest.h>

#include <array>

#include "config/SizeTemplates.h"
#include "support/DebugCapture.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

struct SizeTemplates : testing::Test {
    TempHome home;
    DebugCapture debug;
    CMvConfig folders;
    CSizeTemplate templates;

    void writeIni(const std::string& body) {
        writeBytes(WString(folders.commonFiles()) + TEXT("\\MvTemplate.ini"), "[BDSIZETEMPLATE]\r\n" + body);
    }
    void writeProgramIni(const std::string& body) {
        writeBytes(WString(folders.programCommonFiles()) + TEXT("\\MvTemplate.ini"), "[BDSIZETEMPLATE]\r\n" + body);
    }
};

std::string entry(int n, const std::string& name, const std::string& width, const std::string& height, const std::string& more = "") {
    const std::string key = "SIZETEMPLATE[" + std::to_string(n) + "].";
    return key + "Name=" + name + "\r\n" + key + "Height=" + height + "\r\n" + key + "Width=" + width + "\r\n" + more;
}

}  // namespace

TEST_F(SizeTemplates, missingFile_findsNothing) {
    EXPECT_FALSE(templates.readEntry(1));
    EXPECT_EQ(templates.getCount(), 0);
    EXPECT_EQ(templates.findByName(TEXT("Plate")), 0);
    EXPECT_EQ(templates.findBySize(100, 100), 0);
    float width = 0;
    float height = 0;
    std::array<WCHAR, CSizeTemplate::kTemplateNameCharacters> name{};
    EXPECT_FALSE(templates.getTemplate(1, &width, &height, name.data()));
    EXPECT_FLOAT_EQ(width, 100.0F);
    EXPECT_FLOAT_EQ(height, 100.0F);
    EXPECT_EQ(toUtf8(viewOf(name)), "ERROR");
}

TEST_F(SizeTemplates, missingPathSet_throws10001) {
    try {
        templates.setPaths(nullptr);
        FAIL() << "nothing was thrown";
    } catch (short error) {
        EXPECT_EQ(error, 10001);
    }
}

TEST_F(SizeTemplates, entry_needsNameHeightAndWidth) {
    const std::string key = "SIZETEMPLATE[1].";
    const std::array<std::string, 3> lines{key + "Name=Plate\r\n", key + "Height=297\r\n", key + "Width=210\r\n"};
    for (std::size_t missing = 0; missing < lines.size(); ++missing) {
        std::string body = key + "MCI_ID=5\r\n";
        for (std::size_t i = 0; i < lines.size(); ++i) body += i == missing ? "" : lines[i];
        writeIni(body);
        EXPECT_FALSE(templates.readEntry(1)) << missing;
        EXPECT_EQ(templates.mciId(), 5) << "the other keys are read all the same";
    }
    writeIni(entry(1, "ERROR", "1", "1"));
    EXPECT_FALSE(templates.readEntry(1)) << "ERROR stands for a missing value";
}

TEST_F(SizeTemplates, entry_isReadWithEitherDecimalSeparator) {
    writeIni(entry(1, "Plate", "210,5", "297.25", "SIZETEMPLATE[1].MCI_ID=17\r\n") + entry(2, "Small", "30", "20"));
    EXPECT_TRUE(templates.readEntry(1));
    EXPECT_FLOAT_EQ(templates.width(), 210.5F);
    EXPECT_FLOAT_EQ(templates.height(), 297.25F);
    EXPECT_EQ(templates.mciId(), 17);
    EXPECT_EQ(templates.index(), 1);
    EXPECT_TRUE(templates.readEntry(2));
    EXPECT_EQ(templates.mciId(), -1);
}

TEST_F(SizeTemplates, getTemplate_givesSizeAndName) {
    const std::string longName(120, 'n');
    writeIni(entry(1, "Plate", "210", "297") + entry(2, longName, "1", "2"));
    float width = 0;
    float height = 0;
    std::array<WCHAR, CSizeTemplate::kTemplateNameCharacters> name{};
    EXPECT_TRUE(templates.getTemplate(1, &width, &height, name.data()));
    EXPECT_FLOAT_EQ(width, 210.0F);
    EXPECT_FLOAT_EQ(height, 297.0F);
    EXPECT_EQ(toUtf8(viewOf(name)), "Plate");
    EXPECT_TRUE(templates.getTemplate(2, nullptr, nullptr, name.data()));
    EXPECT_EQ(viewOf(name).size(), 99U);
}

TEST_F(SizeTemplates, count_followsTheRoundTripRule) {
    static constexpr struct {
        const char* stored;
        int count;
    } cases[] = {{"3", 3}, {"0x0A", 10}, {"010", 0}, {"0x0a", 0}, {"many", 0}, {"-2", -2}};
    for (const auto& c : cases) {
        writeIni("SIZETEMPLATECOUNT=" + std::string(c.stored) + "\r\n");
        EXPECT_EQ(templates.getCount(), c.count) << c.stored;
    }
}

TEST_F(SizeTemplates, findByName_isExactAndStopsAtAGap) {
    writeIni(entry(1, "Small", "30", "20") + entry(2, "Plate", "210", "297") + entry(3, "Plate", "1", "1") + entry(5, "Behind", "5", "5"));
    EXPECT_EQ(templates.findByName(TEXT("Plate")), 2);
    EXPECT_EQ(templates.index(), 2);
    EXPECT_EQ(templates.findByName(TEXT("plate")), 0);
    EXPECT_EQ(templates.findByName(TEXT("Plat")), 0);
    EXPECT_EQ(templates.findByName(TEXT("Behind")), 0);
    EXPECT_EQ(templates.findByName(nullptr), 0);
    EXPECT_EQ(templates.index(), 2) << "a failed search restores the index";
}

TEST_F(SizeTemplates, findBySize_takesTheFirstWithinTheTolerance) {
    writeIni("SIZETEMPLATECOUNT=5\r\n" + entry(1, "Out", "210.06", "297") + entry(2, "In", "210.03", "296.98") +
             entry(3, "Same", "210", "297") + entry(5, "Gap", "50", "50"));
    EXPECT_EQ(templates.findBySize(210, 297), 2);
    EXPECT_EQ(templates.findBySize(297, 210), 0);
    EXPECT_EQ(templates.findBySize(50, 50), 5) << "an entry that cannot be read is passed over";
    EXPECT_EQ(templates.findBySize(210.06F, 297), 1);
}

TEST_F(SizeTemplates, findBySize_looksNoFurtherThanTheCount) {
    writeIni("SIZETEMPLATECOUNT=1\r\n" + entry(1, "A", "10", "10") + entry(2, "B", "20", "20"));
    EXPECT_EQ(templates.findBySize(20, 20), 0);
    writeIni(entry(1, "A", "10", "10"));
    EXPECT_EQ(templates.findBySize(10, 10), 0) << "a missing count means no templates";
    writeIni("SIZETEMPLATECOUNT=-1\r\n" + entry(1, "A", "10", "10"));
    EXPECT_EQ(templates.findBySize(10, 10), 0);
}

TEST_F(SizeTemplates, programsFolder_servesWhenTheCommonFileIsMissing) {
    writeProgramIni(entry(1, "FromProgram", "1", "2"));
    EXPECT_TRUE(templates.readEntry(1));
    EXPECT_FLOAT_EQ(templates.height(), 2.0F);
    writeIni(entry(1, "FromCommon", "3", "4"));
    EXPECT_TRUE(templates.readEntry(1)) << "paths are looked up again for each query";
    EXPECT_FLOAT_EQ(templates.height(), 4.0F);
}

}  // namespace morvil::test
