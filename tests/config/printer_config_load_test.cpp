// Loading a configuration: names, the first start, and the repair of an invalid file.
#include <chrono>

#include "PrinterConfigFixture.h"
#include "platform/posix/HostState.h"
#include "support/FailingCalls.h"

namespace morvil::test {

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const std::string kExceptionText = "!!! PrinterConfig.getConfig Exception\n";
const std::string kRaiseText = "PrinterConfig.getConfig is about to raise exception\n";
const std::string kResolutionText = "PrinterConfig.getResolution is about to raise exception\n";
const std::string kRepairText = "!!! No valid Configuration found, DefaultConfiguration is created";

}  // namespace

TEST_F(PrinterConfigLoad, missingFile_isCreatedAndReportedAsAFailureWithTheDefaults) {
    ConfigurationRecord record = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_EQ(debug.count(kRaiseText), 1U);
    EXPECT_EQ(debug.count(kExceptionText), 1U);
    EXPECT_THAT(log(), Contains("!!! Exception in getConfig"));
    EXPECT_TRUE(fileThere());
    EXPECT_EQ(stored("PrinterDriver.Flags.FL_1"), "MV_FL_POLYGON_CLIPPING");
    EXPECT_EQ(stored("PrinterDriver.ColorMatching.Enabled"), "1");
    EXPECT_EQ(stored(kResolutionItem.path, "index"), "(none)");
}

TEST_F(PrinterConfigLoad, emptyFile_isTreatedAsMissing) {
    writeFile("");
    ConfigurationRecord record = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(nullptr, record));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_EQ(debug.count(kRaiseText), 1U);
    EXPECT_THAT(fileBytes(), HasSubstr("MV_FL_POLYGON_CLIPPING"));
}

TEST_F(PrinterConfigLoad, secondLoadAfterTheFirstStart_repairsAndSucceedsWithTheSameSettings) {
    ConfigurationRecord first{};
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), first));
    debug.clear();
    clearLog();
    ConfigurationRecord second = sentinel();
    EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), second));
    EXPECT_TRUE(sameSettings(first, second));
    EXPECT_EQ(debug.count(kResolutionText), 1U);
    EXPECT_EQ(debug.count(kExceptionText), 0U);
    EXPECT_THAT(log(), Contains(kRepairText));
    EXPECT_EQ(stored(kResolutionItem.path, "index"), "2");
}

TEST_F(PrinterConfigLoad, thirdLoad_findsAValidConfiguration) {
    ConfigurationRecord record{};
    CPrinterConfig().getConfig(TEXT(""), record);
    CPrinterConfig().getConfig(TEXT(""), record);
    const std::string before = fileBytes();
    clearLog();
    EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_THAT(log(), Not(Contains(kRepairText)));
    EXPECT_EQ(fileBytes(), before);
}

TEST_F(PrinterConfigLoad, oneObject_seesWhatWasWrittenSince) {
    writeItems({kResolutionItem});
    CPrinterConfig config;
    ConfigurationRecord record{};
    ASSERT_TRUE(config.getConfig(TEXT(""), record));
    writeItems({{kResolutionItem.path, "0", "index"}});
    ASSERT_TRUE(config.getConfig(TEXT(""), record));
    EXPECT_EQ(record.resolution, 1000);
}

TEST_F(PrinterConfigLoad, openingReadsTheFileOnce) {
    writeItems({kResolutionItem});
    ConfigurationRecord record{};
    EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_EQ(debug.count("CXml::CXml 1\n"), 1U);
    EXPECT_EQ(debug.count("CXml::reload"), 1U);
}

TEST_F(PrinterConfigLoad, missingResolution_raises10000FromTheGetter) {
    writeItems({{"PrinterDriver.Configuration.Print.QuickPrint", "1"}});
    CPrinterConfig config;
    try {
        config.getResolution();
        FAIL() << "nothing was raised";
    } catch (const ConfigurationError& error) {
        EXPECT_EQ(error.code, 10000U);
    }
    EXPECT_EQ(debug.count(kResolutionText), 1U);
}

TEST_F(PrinterConfigLoad, resolutionWithoutTheAttribute_countsAsMissing) {
    writeItems({{kResolutionItem.path, "3", "value"}});
    EXPECT_EQ(load().resolution, 500);
    EXPECT_THAT(log(), Contains(kRepairText));
}

TEST_F(PrinterConfigLoad, processModeOutsideTheList_isRepairedWithTheDefaults) {
    for (const char* mode : {"500", "0", "13000", "1500", "standard"}) {
        SCOPED_TRACE(mode);
        clearLog();
        writeItems({kResolutionItem,
                    {"PrinterDriver.Configuration.Print.Process.ProcessMode.ID", mode},
                    {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
        const ConfigurationRecord record = load();
        EXPECT_EQ(record.processMode, 1000);
        EXPECT_EQ(text(record.materialGroup), "Standard");
        EXPECT_THAT(log(), Contains(kRepairText));
    }
}

TEST_F(PrinterConfigLoad, repair_keepsStoredConfigurations) {
    writeItems({{"PrinterDriver.ConfigurationStore.Wood.Print.Process.ProcessOption.Resolution", "4", "index"}});
    load();
    EXPECT_EQ(load(TEXT("Wood")).resolution, 250);
}

TEST_F(PrinterConfigLoad, repairThatCannotBeWritten_endsWithTheDefaults) {
    writeItems({{"PrinterDriver.Configuration.Print.QuickPrint", "1"}});
    const std::string before = fileBytes();
    ConfigurationRecord record = sentinel();
    CPrinterConfig config;
    {
        FailingCalls full(1, Fault::Persistent, "write");
        EXPECT_FALSE(config.getConfig(TEXT(""), record));
        EXPECT_GT(full.fired(), 0);
    }
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_EQ(fileBytes(), before);
}

TEST_F(PrinterConfigLoad, refusedNames_failAndTouchNothing) {
    writeItems({kResolutionItem});
    const std::string before = fileBytes();
    for (const WCHAR* name : {TEXT("2"), TEXT("-3"), TEXT("Wood.7"), TEXT("7.Wood"), TEXT("a b"), TEXT("a<b"), TEXT("."), TEXT("Wood."),
                              TEXT("a..b"), TEXT("a.b.c.d"), TEXT("\u65E5"), TEXT("a%db")}) {
        SCOPED_TRACE(text(name));
        ConfigurationRecord record = sentinel();
        const ConfigurationRecord untouched = sentinel();
        CPrinterConfig config;
        EXPECT_FALSE(config.getConfig(name, record));
        EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);
        EXPECT_FALSE(config.setConfig(name, CPrinterConfig::defaultConfiguration()));
        EXPECT_FALSE(config.configurationExists(name));
        EXPECT_EQ(fileBytes(), before);
    }
}

TEST_F(PrinterConfigLoad, acceptedNames_leadToTheirOwnRoot) {
    for (const WCHAR* name : {TEXT("Wood"), TEXT("0"), TEXT("007"), TEXT("2a"), TEXT("Oak.thin"), TEXT("a.b.c"), TEXT("B\u00FCro_1-x")}) {
        SCOPED_TRACE(text(name));
        writeItems({kResolutionItem});
        CPrinterConfig config;
        EXPECT_FALSE(config.configurationExists(name));
        ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
        record.resolution = 250;
        EXPECT_TRUE(config.setConfig(name, record));
        EXPECT_TRUE(CPrinterConfig().configurationExists(name));
        EXPECT_EQ(stored("PrinterDriver.ConfigurationStore." + text(name) + ".Print.Process.ProcessOption.Resolution", "index"), "4");
        EXPECT_EQ(load(name).resolution, 250);
        EXPECT_EQ(load().resolution, 500);
    }
}

// The deepest items below the longest name that is taken: none of them falls together with another on one element.
TEST_F(PrinterConfigLoad, longestAcceptedName_leavesEachItemItsOwnElement) {
    userSetup(TEXT("Flags"), TEXT("2"));
    writeItems({kResolutionItem});
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    record.rotaryEnabled = 1;
    record.rotaryDiameter = 45.5F;
    copyText(record.shoulderName, TEXT("steep"));
    record.shoulderIndex = 2;
    ASSERT_TRUE(CPrinterConfig().setConfig(TEXT("a.b.c"), record));
    const ConfigurationRecord found = load(TEXT("a.b.c"));
    EXPECT_EQ(found.rotaryEnabled, 1U);
    EXPECT_EQ(found.rotaryDiameter, 45.5F);
    EXPECT_EQ(text(found.shoulderName), "steep");
    EXPECT_EQ(found.shoulderIndex, 2);
}

TEST_F(PrinterConfigLoad, nameUnderWhichNothingIsStored_failsAndKeepsTheActiveConfiguration) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    const std::string before = fileBytes();
    ConfigurationRecord record = sentinel();
    const ConfigurationRecord untouched = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT("Typo"), record));
    EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(debug.count(kResolutionText), 1U);
    EXPECT_EQ(debug.count(kExceptionText), 1U);
    EXPECT_THAT(log(), Contains("!!! Exception in getConfig"));
}

TEST_F(PrinterConfigLoad, storedConfigurationThatIsNotValid_fails) {
    writeItems({kResolutionItem,
                {"PrinterDriver.ConfigurationStore.Wood.Print.Process.ProcessOption.Resolution", "1", "index"},
                {"PrinterDriver.ConfigurationStore.Wood.Print.Process.ProcessMode.ID", "99"}});
    const std::string before = fileBytes();
    ConfigurationRecord record{};
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT("Wood"), record));
    EXPECT_EQ(fileBytes(), before);
    EXPECT_THAT(log(), Contains("!!! CPrinterConfig::getConfig, configuration PrinterDriver.ConfigurationStore.Wood is not valid"));
}

TEST_F(PrinterConfigLoad, timeStamp_isTheLocalTimeInBytes) {
    writeItems({kResolutionItem});
    std::tm parts{};
    parts.tm_year = 124;
    parts.tm_mon = 1;
    parts.tm_mday = 3;
    parts.tm_hour = 9;
    parts.tm_min = 8;
    parts.tm_sec = 7;
    hostState().fixedTime = std::chrono::system_clock::from_time_t(std::mktime(&parts)) + std::chrono::milliseconds(654);
    // Milliseconds reach beyond their byte.
    EXPECT_EQ(load().timeStamp, ((9U * 256 + 8) * 256 + 7) * 256 + 654);
}

TEST_F(PrinterConfigLoad, load_leavesTheLocaleAtC) {
    writeItems({kResolutionItem});
    load();
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

// A long name is cut in the file, but no item path may be longer than 260 characters.
TEST_F(PrinterConfigLoad, storedConfiguration_whoseItemPathsAreTooLong_isNotThere) {
    writeFile(
        "<PrinterDriver><ConfigurationStore><aaaaaaaaaaaaaaaaaaa><Print><MaterialSettings><Group value=\"Oak\"/>"
        "</MaterialSettings></Print></aaaaaaaaaaaaaaaaaaa></ConfigurationStore></PrinterDriver>");
    const std::size_t root = viewOf(TEXT("PrinterDriver.ConfigurationStore.")).size();
    const std::size_t group = viewOf(TEXT(".Print.MaterialSettings.Group")).size();
    const struct {
        std::size_t length;
        bool exists;
        const char* group;
    } cases[] = {
        {260 - root - group, true, "Oak"},
        {261 - root - group, true, "Standard"},
        {260 - root, true, "Standard"},
        {261 - root, false, "Standard"},
    };
    for (const auto& tested : cases) {
        CPrinterConfig config;
        EXPECT_EQ(config.configurationExists(WString(tested.length, TEXT('a')).c_str()), tested.exists) << tested.length;
        EXPECT_EQ(toUtf8(config.getMaterialGroup()), tested.group) << tested.length;
    }
}

}  // namespace morvil::test
