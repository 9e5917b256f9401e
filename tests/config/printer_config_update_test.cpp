// The version update, the default configuration, the dump into the log and the test of a folder.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "PrinterConfigFixture.h"
#include "platform/posix/HostState.h"
#include "support/FailingCalls.h"
#include "support/VersionedProgram.h"

namespace morvil::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const WStringView kDriverFile = TEXT("C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.dll");

}  // namespace

class PrinterConfigUpdate : public PrinterConfigTest {};

TEST_F(PrinterConfigUpdate, update_writesEveryItem) {
    writeItems({{"PrinterDriver.BoundingBox.Offset.Top", "17"}, {"PrinterDriver.Flags.FL_1", "MV_FL_DIAGNOSTIC"}});
    ConfigurationRecord record{};
    record.flags = MV_FL_TMPJOB;
    EXPECT_TRUE(CPrinterConfig().doUpdate(record));
    EXPECT_EQ(record.flags, 0x801U);
    EXPECT_EQ(stored("PrinterDriver.BoundingBox.Offset.Left"), "0");
    EXPECT_EQ(stored("PrinterDriver.BoundingBox.Offset.Top"), "17");
    EXPECT_EQ(stored("PrinterDriver.BoundingBox.Offset.Right"), "0");
    EXPECT_EQ(stored("PrinterDriver.BoundingBox.Offset.Bottom"), "0");
    EXPECT_EQ(stored("PrinterDriver.ColorMatching.GrayscaledVectors", "MappTo"), "0x000000FF");
    EXPECT_EQ(stored("PrinterDriver.Flags.FL_1"), "MV_FL_TMPJOB");
    EXPECT_EQ(stored("PrinterDriver.Flags.FL_2"), "MV_FL_POLYGON_CLIPPING");
    EXPECT_EQ(stored("PrinterDriver.Flags.FL_3"), "(none)");
    EXPECT_EQ(stored("PrinterDriver.Configuration.About.JobIdentification.Format_3"),
              "uedit32.exe;crazy browser.exe;firefox.exe;iexplore.exe");
    EXPECT_EQ(stored("PrinterDriver.Logging.FileSize"), "1000000");
    EXPECT_EQ(stored("PrinterDriver.ColorMatching.Enabled"), "1");
}

TEST_F(PrinterConfigUpdate, colourMatchingItems_areWrittenInOrder) {
    static constexpr const char* kItems[12][3] = {
        {"0x00363636", "0x00363636", "0x000000FF"}, {"0x00B7B7B7", "0x00B7B7B7", "0x0000FF00"}, {"0x00121212", "0x00121212", "0x00FF0000"},
        {"0x00818181", "0x00818181", "0x000000FF"}, {"0x00DBDBDB", "0x00DBDBDB", "0x0000FF00"}, {"0x00474747", "0x00474747", "0x00FF0000"},
        {"0x00525252", "0x00525252", "0x000000FF"}, {"0x004C4C4C", "0x004C4C4C", "0x000000FF"}, {"0x00C6C6C6", "0x00C6C6C6", "0x0000FF00"},
        {"0x007F7F7F", "0x00808080", "0x0000FF00"}, {"0x001E1E1E", "0x001F1F1F", "0x00FF0000"}, {"0x002A2A2A", "0x002B2B2B", "0x00FF0000"},
    };
    writeItems({{"PrinterDriver.ColorMatching.Item3", "0x00000000", "to"}, {"PrinterDriver.ColorMatching.Item3", "0x00000001", "from"}});
    ConfigurationRecord record{};
    EXPECT_TRUE(CPrinterConfig().doUpdate(record));
    for (int n = 0; n < 12; ++n) {
        const std::string item =
            "<Item" + std::to_string(n) + " from=\"" + kItems[n][0] + "\" to=\"" + kItems[n][1] + "\" color=\"" + kItems[n][2] + "\"/>";
        EXPECT_THAT(fileBytes(), HasSubstr(item));
    }
    EXPECT_EQ(stored("PrinterDriver.ColorMatching.Item12", "from"), "(none)");
}

TEST_F(PrinterConfigUpdate, versions_areLoggedThoughLoggingIsOff) {
    settings.enabled = 0;
    writeItems({{"PrinterDriver.Version", "5.9.0.1"}});
    writeBytes(kDriverFile, programWithVersion({6, 12, 3, 45}));
    ConfigurationRecord record{};
    EXPECT_TRUE(CPrinterConfig().doUpdate(record));
    EXPECT_THAT(log(), ElementsAre("!!! CPrinterConfig::doUpdate, Config.version=5.9.0.1, Driver.version=6.12.3.45"));
    EXPECT_EQ(logState().settings, &settings);
}

TEST_F(PrinterConfigUpdate, versions_areNotLoggedWhenOneIsMissing) {
    settings.enabled = 0;
    ConfigurationRecord record{};
    writeItems({{"PrinterDriver.Version", "5.9.0.1"}});
    EXPECT_TRUE(CPrinterConfig().doUpdate(record));
    writeItems({kResolutionItem});
    writeBytes(kDriverFile, programWithVersion({6, 12, 3, 45}));
    EXPECT_TRUE(CPrinterConfig().doUpdate(record));
    EXPECT_TRUE(log().empty());
}

TEST_F(PrinterConfigUpdate, version_hasADefault) {
    writeItems({kResolutionItem});
    CPrinterConfig config;
    EXPECT_EQ(toUtf8(config.getVersion()), "6.0.0.0");
    EXPECT_TRUE(config.setVersion(TEXT("6.1.0.0")));
    EXPECT_EQ(toUtf8(config.getVersion()), "6.1.0.0");
}

TEST_F(PrinterConfigUpdate, offsets_comeBack) {
    CPrinterConfig config;
    const RECT none = config.getBoundingBoxOffset();
    EXPECT_EQ(none.left + none.top + none.right + none.bottom, 0);
    EXPECT_TRUE(config.setBoundingBoxOffset({1, 2, 3, 4}));
    const RECT back = config.getBoundingBoxOffset();
    EXPECT_EQ(back.left, 1);
    EXPECT_EQ(back.top, 2);
    EXPECT_EQ(back.right, 3);
    EXPECT_EQ(back.bottom, 4);
}

TEST(PrinterConfigDefaults, record_holdsTheDefaultsOfTheKeyTable) {
    const ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    EXPECT_EQ(record.processMode, 1000);
    EXPECT_EQ(record.resolution, 500);
    EXPECT_EQ(record.layers, 2);
    EXPECT_FLOAT_EQ(record.rotaryDiameter, 123.4F);
    EXPECT_EQ(record.ppoThreshold, 50000U);
    EXPECT_FLOAT_EQ(record.size.width, 100.0F);
    EXPECT_FLOAT_EQ(record.size.height, 100.0F);
    EXPECT_EQ(record.size.pixelWidth, 1969);
    EXPECT_EQ(record.size.pixelHeight, 1969);
    EXPECT_EQ(record.raster, 1U);
    EXPECT_EQ(record.logging.enabled, 0U);
    EXPECT_EQ(record.logging.maxBytes, 1'000'000U);
    EXPECT_EQ(record.job.nameMode, 1U);
    EXPECT_EQ(record.mciVersion, 3U);
    EXPECT_EQ(record.bezier.step, 4096U);
    const COLORADJUSTMENT& adjustment = record.halftone.adjustment;
    EXPECT_EQ(adjustment.caSize, 24);
    EXPECT_EQ(adjustment.caRedGamma, 10000);
    EXPECT_EQ(adjustment.caGreenGamma, 10000);
    EXPECT_EQ(adjustment.caBlueGamma, 10000);
    EXPECT_EQ(adjustment.caReferenceBlack, 0);
    EXPECT_EQ(adjustment.caReferenceWhite, 10000);
}

TEST(PrinterConfigDefaults, colourInformation_isThatOfTheMachine) {
    static constexpr LONG kExpected[30] = {6380, 3350, 0, 2345, 6075, 0, 1410,  932,   0,     2000, 2450, 65534, 5210, 2100, 0,
                                           4750, 5100, 0, 3127, 3290, 0, 12500, 12500, 12500, 585,  120,  0,     0,    0,    10000};
    const COLORINFO information = CPrinterConfig::defaultConfiguration().halftone.colourInfo;
    static_assert(sizeof information == sizeof kExpected);
    EXPECT_EQ(std::memcmp(&information, kExpected, sizeof kExpected), 0);
}

TEST_F(PrinterConfigUpdate, dump_logsTheRecordLineByLine) {
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    record.unit = kInches;
    record.size.index = 4;
    record.size.takeFromApplication = 1;
    record.quickPrint = 1;
    record.files.jobApplicationFlags = 2;
    record.application.processId = 4711;
    copyText(record.application.name, TEXT("editor.exe"));
    record.flags = 0x801;
    EXPECT_TRUE(CPrinterConfig().bDumpConfig(record));
    EXPECT_THAT(log(), ElementsAre("CPrinterConfig::bDumpConfig", "Unit=1",
                                   "fWidth=100.000000, fHeight=100.000000, usWidth=1969, usHeight=1969, usIndex=4, bTakeFromApplication=1, "
                                   "wcName=User-defined Size",
                                   "MaterialGroup=Standard, MaterialName=Standard", "ProcessModeValue=1000, bRaster=1", "HalftoneOff=1",
                                   "QuickPrint=1", "DriverView=2", "JobName=MorvilJob, JobNameFormat=notepad.exe;editor.exe;",
                                   "ConfigIni=" + text(folders.jobApplicationIni()) + ", PathAppData=" + text(folders.dataRoot()) +
                                       ", PlotkeepeRExecutable=Plotkeeper.exe, Flags=2",
                                   "AppName=editor.exe, ProcessID=4711", "Flags=2049"));
}

TEST_F(PrinterConfigUpdate, pathWithoutAFolder_isNotValid) {
    CPrinterConfig config;
    EXPECT_FALSE(config.pathValid(nullptr));
    EXPECT_FALSE(config.pathValid(TEXT("")));
    EXPECT_FALSE(config.pathValid(TEXT("C:\\Nowhere")));
    writeBytes(TEXT("C:\\file.txt"), "x");
    EXPECT_FALSE(config.pathValid(TEXT("C:\\file.txt")));
    EXPECT_THAT(log(), ElementsAre("!!! pathValid Error 1", "!!! pathValid Error 1", "!!! pathValid Error 2", "!!! pathValid Error 2"));
}

TEST_F(PrinterConfigUpdate, folderThatCannotBeWritten_isNotValid) {
    makeFolder(TEXT("C:\\Closed"));
    CPrinterConfig config;
    {
        FailingCalls faults(1, Fault::Transient, "open");
        EXPECT_FALSE(config.pathValid(TEXT("C:\\Closed")));
    }
    EXPECT_THAT(log(), ElementsAre("!!! pathValid Error 4 Path=C:\\Closed, Handle=FFFFFFFF, Error=5"));
}

TEST_F(PrinterConfigUpdate, writableFolder_isValidAndLeftClean) {
    makeFolder(TEXT("C:\\Open"));
    CPrinterConfig config;
    EXPECT_TRUE(config.pathValid(TEXT("C:\\Open")));
    EXPECT_TRUE(config.pathValid(TEXT("C:\\Open\\")));
    EXPECT_FALSE(exists(TEXT("C:\\Open\\test.dat")));
    EXPECT_FALSE(exists(TEXT("C:\\Open\\TestIfWriteProtection.dat")));
    EXPECT_TRUE(log().empty());
}

TEST_F(PrinterConfigUpdate, filesOfTheTestsName_survive) {
    writeBytes(TEXT("C:\\Open\\test.dat"), "mine");
    EXPECT_TRUE(CPrinterConfig().pathValid(TEXT("C:\\Open\\")));
    EXPECT_EQ(readBytes(TEXT("C:\\Open\\test.dat")), "mine");
}

}  // namespace morvil::test
