// Loading a configuration: names, the first start, the repair of an invalid file, and files that cannot be had.
#include <array>
#include <chrono>
#include <cstring>

#include "PrinterConfigFixture.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "support/ChildProcess.h"
#include "support/FailingCalls.h"

namespace morvil::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string kExceptionText = "!!! PrinterConfig.getConfig Exception\n";
const std::string kRaiseText = "PrinterConfig.getConfig is about to raise exception\n";
const std::string kResolutionText = "PrinterConfig.getResolution is about to raise exception\n";
const std::string kRepairText = "!!! No valid Configuration found, DefaultConfiguration is created";
const std::string kDefaultsText = "CPrinterConfig::getConfig, m_DefaultPrinterConfig will be used";

// All of two records but the time at which they were made.
bool sameSettings(ConfigurationRecord a, ConfigurationRecord b) {
    a.timeStamp = b.timeStamp = 0;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool isWhole(const std::string& bytes) { return bytes.ends_with("</PrinterDriver>\r\n") || bytes.ends_with("<PrinterDriver/>\r\n"); }

ConfigurationRecord sentinel() {
    ConfigurationRecord record;
    std::memset(&record, 0x5A, sizeof record);
    return record;
}

// Another process that holds the lock of the configuration until it is let go.
int holdLock(const ChildProcess::Link& link) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\PRINTERCONFIGSYNCH"));
    if (WaitForSingleObject(mutex, 5000) != WAIT_OBJECT_0) return 1;
    link.ready();
    link.waitForParent();
    ReleaseMutex(mutex);
    return 0;
}

}  // namespace

class PrinterConfigLoad : public PrinterConfigTest {};

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

TEST_F(PrinterConfigLoad, fileCutInTheMiddle_isReadAsFarAsItGoes) {
    ConfigurationRecord record{};
    ASSERT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    ASSERT_TRUE(CPrinterConfig().setConfig(TEXT(""), CPrinterConfig::defaultConfiguration()));
    const std::string whole = fileBytes();
    ASSERT_GT(whole.size(), 1000U);
    for (std::size_t length = 1; length < whole.size(); length += 37) {
        SCOPED_TRACE(length);
        const std::string cut = whole.substr(0, length);
        writeFile(cut);
        EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
        EXPECT_EQ(record.resolution, 500);
        const bool resolutionLost = cut.find("<Resolution index=\"2\"/>") == std::string::npos;
        EXPECT_EQ(isWhole(fileBytes()), resolutionLost);
    }
}

TEST_F(PrinterConfigLoad, noise_isRepairedBesideIt) {
    writeFile("nothing of an element in here & nowhere");
    ConfigurationRecord record = sentinel();
    EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_EQ(load().resolution, 500);
}

TEST_F(PrinterConfigLoad, fileTooLargeForAConfiguration_givesTheDefaultsAndStays) {
    std::string noise(50'000'000, 'x');
    for (std::size_t i = 0; i < noise.size(); i += 13) noise[i] = static_cast<char>('<' + i % 3);
    writeFile(noise);
    ConfigurationRecord record = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_THAT(log(), Contains(kDefaultsText));
    EXPECT_FALSE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(fileBytes().size(), noise.size());
}

TEST_F(PrinterConfigLoad, lockedByAnotherProcess_givesTheDefaultsAndChangesNothing) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("MvMutexTimeOut"), TEXT("50"), folders.debugIni());
    const std::string before = fileBytes();
    {
        const ChildProcess lock(holdLock);
        ASSERT_TRUE(lock.waitUntilReady());
        const auto begin = std::chrono::steady_clock::now();
        ConfigurationRecord record = sentinel();
        EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
        EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
        EXPECT_FALSE(CPrinterConfig().setConfig(TEXT(""), CPrinterConfig::defaultConfiguration()));
        EXPECT_FALSE(CPrinterConfig().setLayers(9));
        // Each of the three waits at most twice.
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
        EXPECT_THAT(log(), Contains(kDefaultsText));
        EXPECT_EQ(fileBytes(), before);
    }
    EXPECT_EQ(text(load().materialGroup), "Oak");
}

TEST_F(PrinterConfigLoad, lockedSinceTheLastLoad_givesTheDefaults) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("MvMutexTimeOut"), TEXT("0"), folders.debugIni());
    CPrinterConfig config;
    ConfigurationRecord record{};
    ASSERT_TRUE(config.getConfig(TEXT(""), record));
    const ChildProcess lock(holdLock);
    ASSERT_TRUE(lock.waitUntilReady());
    EXPECT_FALSE(config.getConfig(TEXT(""), record));
    EXPECT_EQ(text(record.materialGroup), "Standard");
}

TEST_F(PrinterConfigLoad, missingFileWhileLocked_isNotCreatedAndDoesNotHang) {
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("MvMutexTimeOut"), TEXT("20"), folders.debugIni());
    const ChildProcess lock(holdLock);
    ASSERT_TRUE(lock.waitUntilReady());
    const auto begin = std::chrono::steady_clock::now();
    ConfigurationRecord record = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_THAT(log(), Contains(kDefaultsText));
    EXPECT_FALSE(fileThere());
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

// Whatever call fails, the load ends with settings that can be printed with, and with the whole old file, a whole new one or none.
TEST_F(PrinterConfigLoad, everyCallFailing_leavesUsableSettingsAndAWholeFile) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    const std::string valid = fileBytes();
    for (const bool there : {false, true}) {
        for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
            for (int n = 1, fired = 1; fired != 0; ++n) {
                DeleteFileW(folders.configurationFile());
                if (there) writeFile(valid);
                ConfigurationRecord record{};
                std::string call;
                {
                    FailingCalls faults(n, fault);
                    platformCalls().sleep = [](std::uint32_t) {};  // nobody waits for a mutex that cannot be made
                    CPrinterConfig().getConfig(TEXT(""), record);
                    fired = faults.fired();
                    call = faults.failedCall();
                }
                SCOPED_TRACE(std::to_string(n) + " " + call);
                EXPECT_EQ(record.processMode, 1000);
                EXPECT_EQ(record.resolution, 500);
                if (there) {
                    EXPECT_EQ(fileBytes(), valid);
                } else if (fileThere()) {
                    EXPECT_TRUE(isWhole(fileBytes())) << fileBytes();
                }
            }
        }
    }
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
