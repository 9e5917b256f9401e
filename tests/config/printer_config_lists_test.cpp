// Flags, diagnostic signals and the colour list.
#include <cstring>

#include "PrinterConfigFixture.h"

namespace morvil::test {

namespace {

using testing::ElementsAre;

struct Flag {
    const char* name;
    DWORD bit;
};
constexpr Flag kFlags[] = {
    {"MV_FL_TMPJOB", 0x1},
    {"MV_FL_IMAGEOP_COLORADJUSTMENT", 0x2},
    {"MV_FL_IMAGEOP_COLORADJUSTMENT_DIS", 0x400},
    {"MV_FL_IMAGEOP_FLIP_VERTICAL", 0x4},
    {"MV_FL_IMAGEOP_FLIP_HORIZONTAL", 0x8},
    {"MV_FL_IMAGEOP_INVERT", 0x10},
    {"MV_FL_IMAGEOP_BOTTOM_UP", 0x20},
    {"MV_FL_GEOMETRICWIDE", 0x40},
    {"MV_FL_BITMAP_BANDING", 0x80},
    {"MV_FL_JOBNAME_FROM_CONFIG", 0x100},
    {"MV_FL_SHRINK_TO_BOUNDING_BOX", 0x200},
    {"MV_FL_POLYGON_CLIPPING", 0x800},
    {"MV_FL_IMAGEOP_DUMMY_1", 0x10000},
    {"MV_FL_IMAGEOP_DUMMY_2", 0x20000},
    {"MV_FL_IMAGEOP_DUMMY_3", 0x40000},
    {"MV_FL_DIAGNOSTIC", 0x2000},
    {"MV_FL_IMAGEOP_RA_FS", 0x80000},
    {"MV_FL_IMAGEOP_RA_JARVIS", 0x100000},
    {"MV_FL_IMAGEOP_RA_STUCKI", 0x200000},
    {"MV_FL_IMAGEOP_RA_BURKES", 0x400000},
};
constexpr DWORD kAllNamed = 0x7F2FFF;

std::string flagPath(std::size_t n) { return "PrinterDriver.Flags.FL_" + std::to_string(n); }
std::string signalPath(int n) { return "PrinterDriver.Diagnostic.Signals.FL_" + std::to_string(n); }

const std::string kColour = "PrinterDriver.Configuration.Print.Process.Colors.";

}  // namespace

class PrinterConfigLists : public PrinterConfigTest {};

TEST_F(PrinterConfigLists, flagNames_setTheirBits) {
    for (const Flag& flag : kFlags) {
        writeItems({{"PrinterDriver.Flags.FL_1", flag.name}});
        EXPECT_EQ(CPrinterConfig().getFlags(), flag.bit) << flag.name;
    }
}

TEST_F(PrinterConfigLists, flags_areCollectedFromOneUpward) {
    struct Case {
        std::vector<Item> items;
        DWORD mask;
    };
    const std::vector<Case> cases{
        {{}, 0},
        {{{"PrinterDriver.Flags.FL_1", "MV_FL_TMPJOB"}, {"PrinterDriver.Flags.FL_2", "MV_FL_POLYGON_CLIPPING"}}, 0x801},
        {{{"PrinterDriver.Flags.FL_1", "MV_FL_TMPJOB"}, {"PrinterDriver.Flags.FL_3", "MV_FL_POLYGON_CLIPPING"}}, 0x1},
        {{{"PrinterDriver.Flags.FL_0", "MV_FL_TMPJOB"}}, 0},
        {{{"PrinterDriver.Flags.FL_1", "MV_FL_UNKNOWN"}, {"PrinterDriver.Flags.FL_2", "MV_FL_TMPJOB"}}, 0x1},
        {{{"PrinterDriver.Flags.FL_1", "mv_fl_tmpjob"}, {"PrinterDriver.Flags.FL_2", "MV_FL_INVERT"}}, 0},
        {{{"PrinterDriver.Flags.FL_1", "4096"}}, 0},
    };
    for (const Case& c : cases) {
        writeItems(c.items);
        EXPECT_EQ(CPrinterConfig().getFlags(), c.mask);
    }
}

TEST_F(PrinterConfigLists, twentiethFlag_isNotRead) {
    std::vector<std::string> paths;
    for (std::size_t n = 1; n <= 20; ++n) paths.push_back(flagPath(n));
    std::vector<Item> items;
    for (std::size_t n = 1; n <= 20; ++n)
        items.push_back({paths[n - 1].c_str(), n == 19 ? "MV_FL_TMPJOB" : n == 20 ? "MV_FL_DIAGNOSTIC" : "other"});
    writeItems(items);
    EXPECT_EQ(CPrinterConfig().getFlags(), 0x1U);
}

TEST_F(PrinterConfigLists, writtenFlags_areNumberedWithoutGapsInTheirOrder) {
    writeItems({{"PrinterDriver.Flags.FL_1", "MV_FL_TMPJOB"}, {"PrinterDriver.Flags.FL_7", "old"}, {"PrinterDriver.Flags.FL_0", "old"}});
    EXPECT_TRUE(CPrinterConfig().setFlags(0xFFFFFFFF));
    for (std::size_t n = 1; n <= std::size(kFlags); ++n) EXPECT_EQ(stored(flagPath(n)), kFlags[n - 1].name);
    EXPECT_EQ(stored(flagPath(0)), "(none)");
    EXPECT_EQ(stored(flagPath(21)), "(none)");
    DWORD all = 0;
    for (const Flag& flag : kFlags) all |= flag.bit;
    EXPECT_EQ(all, kAllNamed);
}

TEST_F(PrinterConfigLists, flagsWithoutAName_areNotWritten) {
    writeItems({{"PrinterDriver.Flags.FL_1", "MV_FL_TMPJOB"}});
    EXPECT_TRUE(CPrinterConfig().setFlags(0x1000 | 0x4000 | 0x8000));
    EXPECT_EQ(fileBytes().find("FL_"), std::string::npos);
    EXPECT_EQ(CPrinterConfig().getFlags(), 0U);
}

TEST_F(PrinterConfigLists, noFlags_areWrittenAsNoElement) {
    writeItems({{"PrinterDriver.Flags.FL_1", "MV_FL_TMPJOB"}});
    EXPECT_TRUE(CPrinterConfig().setFlags(0));
    EXPECT_EQ(fileBytes().find("<Flags"), std::string::npos);
    EXPECT_TRUE(CPrinterConfig().setFlags(0));
}

TEST_F(PrinterConfigLists, signals_setTheBitOfTheirValueWhereverTheyStand) {
    writeItems({{"PrinterDriver.Diagnostic.Signals.FL_0", "0"},
                {"PrinterDriver.Diagnostic.Signals.FL_1", "9"},
                {"PrinterDriver.Diagnostic.Signals.FL_5", "256"},
                {"PrinterDriver.Diagnostic.Signals.FL_6", "-1"},
                {"PrinterDriver.Diagnostic.Signals.FL_7", "15"},
                {"PrinterDriver.Diagnostic.Signals.FL_255", "255"},
                {"PrinterDriver.Diagnostic.Signals.FL_256", "100"}});
    const DiagnosticBlock diagnostic = CPrinterConfig().getDiagnostic();
    BYTE expected[32] = {};
    expected[0] = 0x01;
    expected[1] = 0x82;
    expected[31] = 0x80;
    EXPECT_EQ(std::memcmp(diagnostic.signals, expected, sizeof expected), 0);
    EXPECT_EQ(diagnostic.enabled, 0);
}

TEST_F(PrinterConfigLists, setDiagnostic_writesEachSignalAndLogs) {
    writeItems({{"PrinterDriver.Diagnostic.Signals.FL_9", "77"}});
    DiagnosticBlock diagnostic{};
    diagnostic.enabled = 1;
    diagnostic.signals[0] = 0x05;
    diagnostic.signals[31] = 0x80;
    EXPECT_TRUE(CPrinterConfig().setDiagnostic(diagnostic));
    EXPECT_EQ(stored("PrinterDriver.Diagnostic.Enable"), "1");
    EXPECT_EQ(stored(signalPath(0)), "0");
    EXPECT_EQ(stored(signalPath(1)), "2");
    EXPECT_EQ(stored(signalPath(2)), "255");
    EXPECT_EQ(stored(signalPath(9)), "(none)");
    EXPECT_THAT(log(), ElementsAre("setDiagnostic, 1", "setDiagnostic finished Enable=1"));
}

TEST_F(PrinterConfigLists, allSignals_comeBack) {
    DiagnosticBlock diagnostic{};
    std::memset(diagnostic.signals, 0xFF, sizeof diagnostic.signals);
    EXPECT_TRUE(CPrinterConfig().setDiagnostic(diagnostic));
    const DiagnosticBlock back = CPrinterConfig().getDiagnostic();
    EXPECT_EQ(std::memcmp(back.signals, diagnostic.signals, sizeof back.signals), 0);
}

TEST_F(PrinterConfigLists, colours_endAtTheFirstIncompleteEntry) {
    const std::string first = kColour + "0";
    const std::string second = kColour + "1";
    const std::string third = kColour + "2";
    for (const char* missing : {"red", "green", "blue", "mode"}) {
        std::vector<Item> items{kResolutionItem};
        for (const char* attribute : {"red", "green", "blue", "mode"}) {
            items.push_back({first.c_str(), "7", attribute});
            if (attribute != missing) items.push_back({second.c_str(), "8", attribute});
            items.push_back({third.c_str(), "9", attribute});
        }
        writeItems(items);
        const ConfigurationRecord record = load();
        EXPECT_EQ(record.colourCount, 1) << missing;
        EXPECT_EQ(record.colours[0].red, 7);
        EXPECT_EQ(record.colours[0].mode, 7);
        EXPECT_EQ(record.colours[1].red, 0);
        EXPECT_EQ(record.colours[1].green, 0);
    }
}

TEST_F(PrinterConfigLists, colours_holdSixteenEntriesAndSaturate) {
    std::vector<std::string> paths;
    for (int n = 0; n < 20; ++n) paths.push_back(kColour + std::to_string(n));
    std::vector<Item> items{kResolutionItem};
    for (const std::string& path : paths) {
        items.push_back({path.c_str(), "300", "red"});
        items.push_back({path.c_str(), "255", "green"});
        items.push_back({path.c_str(), "-1", "blue"});
        items.push_back({path.c_str(), "1", "mode"});
    }
    writeItems(items);
    const ConfigurationRecord record = load();
    EXPECT_EQ(record.colourCount, 16);
    EXPECT_EQ(record.colours[15].red, 255);
    EXPECT_EQ(record.colours[15].green, 255);
    EXPECT_EQ(record.colours[15].blue, 0);
    EXPECT_EQ(record.colours[15].mode, 1);
}

TEST_F(PrinterConfigLists, writtenColours_replaceTheWholeList) {
    CPrinterConfig config;
    VectorColour colours[kVectorColours]{};
    colours[0] = {.red = 1, .green = 2, .blue = 3, .reserved = 0, .mode = 1};
    EXPECT_TRUE(config.setColours(colours, 3));
    EXPECT_TRUE(config.setColours(colours, 1));
    EXPECT_EQ(stored(kColour + "0", "red"), "1");
    EXPECT_EQ(stored(kColour + "0", "green"), "2");
    EXPECT_EQ(stored(kColour + "0", "blue"), "3");
    EXPECT_EQ(stored(kColour + "0", "mode"), "1");
    EXPECT_EQ(stored(kColour + "1", "red"), "(none)");
}

}  // namespace morvil::test
