// The texts of the configuration, and values that several items or files decide together.
#include <cmath>
#include <functional>

#include "PrinterConfigFixture.h"
#include "config/SizeTemplates.h"

namespace morvil::test {

namespace {

std::string pathOf(const std::string& key) { return key[0] == '%' ? "PrinterDriver.Configuration" + key.substr(1) : key; }

struct TextCase {
    const char* key;
    std::string stored;
    std::string expected;
    std::function<std::string(const ConfigurationRecord&)> field;
};

#define TEXT_FIELD(member) [](const ConfigurationRecord& record) { return text(record.member); }

std::string letters(std::size_t count) { return std::string(count, 'x'); }

}  // namespace

TEST_F(PrinterConfigKeys, missingTexts_readAsTheirDefaults) {
    writeItems({kResolutionItem});
    const ConfigurationRecord record = load();
    EXPECT_EQ(text(record.size.name), "User-defined Size");
    EXPECT_EQ(text(record.materialGroup), "Standard");
    EXPECT_EQ(text(record.materialName), "Standard");
    EXPECT_EQ(text(record.processName), "Standard");
    EXPECT_EQ(text(record.cutLineName), "none");
    EXPECT_EQ(text(record.shoulderName), "");
    EXPECT_EQ(text(record.job.name), "MorvilJob");
    EXPECT_EQ(text(record.job.formats[0]), "winword.exe;");
    EXPECT_EQ(text(record.job.formats[1]), "notepad.exe;editor.exe;");
    EXPECT_EQ(text(record.job.formats[2]), "aclt.exe;pm70.exe");
    EXPECT_EQ(text(record.job.formats[3]), "uedit32.exe;crazy browser.exe;firefox.exe;iexplore.exe");
    EXPECT_EQ(text(record.application.name), "");
    EXPECT_EQ(text(record.files.jobApplication), "Plotkeeper.exe");
    EXPECT_EQ(text(record.files.materialLibrary), "MvMaterial.dll");
    EXPECT_EQ(text(record.files.templateIni), "MvTemplate.ini");
    EXPECT_EQ(text(record.bezier.library), "MvBezier.dll");
}

TEST_F(PrinterConfigKeys, texts_followTheKeyTable) {
    const std::vector<TextCase> cases{
        {"%.Print.SizeSettings.Template.Name", "Table 3", "Table 3", TEXT_FIELD(size.name)},
        {"%.Print.SizeSettings.Template.Name", letters(60), letters(49), TEXT_FIELD(size.name)},
        {"%.Print.MaterialSettings.Group", letters(49), letters(49), TEXT_FIELD(materialGroup)},
        {"%.Print.MaterialSettings.Group", letters(50), "Standard", TEXT_FIELD(materialGroup)},
        {"%.Print.MaterialSettings.Name", "Oak", "Oak", TEXT_FIELD(materialName)},
        {"%.Print.MaterialSettings.Name", letters(50), "Standard", TEXT_FIELD(materialName)},
        {"%.Print.Process.ProcessOption.Shoulder.Name", letters(19), letters(19), TEXT_FIELD(shoulderName)},
        {"%.Print.Process.ProcessOption.Shoulder.Name", letters(20), "", TEXT_FIELD(shoulderName)},
        {"%.Print.Process.ProcessOption.Cutline@index", "1", "rectangular", TEXT_FIELD(cutLineName)},
        {"%.Print.Process.ProcessOption.Cutline@index", "2", "circular", TEXT_FIELD(cutLineName)},
        {"%.Print.Process.ProcessOption.Cutline@index", "3", "optimized", TEXT_FIELD(cutLineName)},
        {"%.Print.Process.ProcessOption.Cutline@index", "4", "none", TEXT_FIELD(cutLineName)},
        {"%.About.JobIdentification.Name", "Plates", "Plates", TEXT_FIELD(job.name)},
        {"%.About.JobIdentification.Name", letters(60), letters(49), TEXT_FIELD(job.name)},
        {"%.About.JobIdentification.Format_0", "writer.exe;", "writer.exe;", TEXT_FIELD(job.formats[0])},
        {"%.About.JobIdentification.Format_3", letters(80), letters(55), TEXT_FIELD(job.formats[3])},
        {"PrinterDriver.PrintingApplication.Name", letters(49), letters(49), TEXT_FIELD(application.name)},
        {"PrinterDriver.PrintingApplication.Name", letters(50), "", TEXT_FIELD(application.name)},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(std::string(c.key) + " = " + c.stored);
        std::string path = pathOf(c.key);
        const std::size_t at = path.find('@');
        const std::string attribute = at == std::string::npos ? "value" : path.substr(at + 1);
        path = path.substr(0, at);
        writeItems({kResolutionItem, {path.c_str(), c.stored.c_str(), attribute.c_str()}});
        EXPECT_EQ(c.field(load()), c.expected);
    }
}

TEST_F(PrinterConfigKeys, processModes_haveNameKindAndRaster) {
    static constexpr const char* kNames[] = {"Standard",     "Stamp",           "ColourStamp",     "Relief",
                                             "Layer",        "Test 1 (s/w)",    "Test 2 (Tracer)", "Test 3 (Banding)",
                                             "Test 4 (F/S)", "Test 5 (Jarvis)", "Test 6 (Stucki)", "Test 7 (Burkes)"};
    for (int i = 0; i < 12; ++i) {
        const std::string id = std::to_string((i + 1) * 1000);
        writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.Process.ProcessMode.ID", id.c_str()}});
        const ConfigurationRecord record = load();
        EXPECT_EQ(text(record.processName), kNames[i]);
        EXPECT_EQ(record.processKind, i);
        EXPECT_EQ(record.raster, i < 2 ? 1U : 0U);
        EXPECT_STREQ(text(processModeName(record.processMode)).c_str(), kNames[i]);
    }
    EXPECT_EQ(text(processModeName(13000)), "none");
    EXPECT_EQ(text(processModeName(0)), "none");
    EXPECT_EQ(text(processModeName(1500)), "none");
}

TEST_F(PrinterConfigKeys, raster_isOffForAHalftonedStandardJobButNotForAStamp) {
    const Item halftone{"PrinterDriver.Configuration.Halftone.Enabled", "1"};
    writeItems({kResolutionItem, halftone});
    EXPECT_EQ(load().raster, 0U);
    writeItems({kResolutionItem, halftone, {"PrinterDriver.Configuration.Print.Process.ProcessMode.ID", "2000"}});
    EXPECT_EQ(load().raster, 1U);
}

TEST_F(PrinterConfigKeys, mciVersion_isReadFromTheTopOfTheDocumentInMode3000Only) {
    static constexpr struct {
        const char* mode;
        const char* path;
        const char* stored;
        DWORD version;
    } cases[] = {
        {"3000", "Print.Process.ProcessMode.MciVersion", "V2.0", 2},
        {"3000", "Print.Process.ProcessMode.MciVersion", "v20", 2},
        {"3000", "Print.Process.ProcessMode.MciVersion", "2.0", 2},
        {"3000", "Print.Process.ProcessMode.MciVersion", "20", 2},
        {"3000", "Print.Process.ProcessMode.MciVersion", "V1.0", 0},
        {"3000", "Print.Process.ProcessMode.MciVersion", "v10", 0},
        {"3000", "Print.Process.ProcessMode.MciVersion", "1.0", 0},
        {"3000", "Print.Process.ProcessMode.MciVersion", "10", 0},
        {"3000", "Print.Process.ProcessMode.MciVersion", "v1.0.7", 0},
        {"3000", "Print.Process.ProcessMode.MciVersion", "v101", 3},
        {"3000", "Print.Process.ProcessMode.MciVersion", "1.05", 3},
        {"3000", "Print.Process.ProcessMode.MciVersion", "3.0", 3},
        {"3000", "Print.Process.ProcessMode.MciVersion", "", 3},
        {"4000", "Print.Process.ProcessMode.MciVersion", "V2.0", 3},
        {"3000", "PrinterDriver.Configuration.Print.Process.ProcessMode.MciVersion", "V2.0", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.mode) + " " + c.path + " " + c.stored);
        writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.Process.ProcessMode.ID", c.mode}, {c.path, c.stored}});
        EXPECT_EQ(load().mciVersion, c.version);
    }
}

TEST_F(PrinterConfigKeys, unit_comesFromTheJobApplication) {
    writeItems({kResolutionItem});
    EXPECT_EQ(load().unit, static_cast<DWORD>(kMillimetres));
    userSetup(TEXT("UseInch"), TEXT("1"));
    EXPECT_EQ(load().unit, static_cast<DWORD>(kInches));
    userSetup(TEXT("UseInch"), TEXT("0"));
    EXPECT_EQ(load().unit, static_cast<DWORD>(kMillimetres));
}

TEST_F(PrinterConfigKeys, zAdjustmentInInches_hasItsOwnRange) {
    userSetup(TEXT("UseInch"), TEXT("1"));
    static constexpr struct {
        const char* stored;
        float expected;
    } cases[] = {{"0.2", 0.2F}, {"0.21", 0.001F}, {"-1", 0.001F}, {"0", 0.0F}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.Process.ProcessOption.ZAdjustment", c.stored}});
        EXPECT_FLOAT_EQ(load().zAdjustment, c.expected);
    }
}

TEST_F(PrinterConfigKeys, shoulderIndex_isReadOnlyWhenTheJobApplicationAsksForIt) {
    const char* const path = "PrinterDriver.Configuration.Print.Process.ProcessOption.Shoulder.Index";
    static constexpr struct {
        const WCHAR* flags;
        const char* stored;
        LONG expected;
    } cases[] = {{TEXT("0"), "1", 0}, {TEXT("1"), "1", 0}, {TEXT("4"), "1", 0}, {TEXT("2"), "1", 1},
                 {TEXT("7"), "2", 2}, {TEXT("2"), "3", 0}, {TEXT("2"), "-1", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(text(c.flags) + " " + c.stored);
        userSetup(TEXT("Flags"), c.flags);
        writeItems({kResolutionItem, {path, c.stored}});
        const ConfigurationRecord record = load();
        EXPECT_EQ(record.shoulderIndex, c.expected);
        EXPECT_EQ(record.files.jobApplicationFlags, static_cast<DWORD>(std::stoi(text(c.flags))));
    }
}

TEST_F(PrinterConfigKeys, driverView_isTheIniValueWhenMissing) {
    driverSetup(TEXT("Driver_View"), TEXT("1"));
    writeItems({kResolutionItem});
    const ConfigurationRecord record = load();
    EXPECT_EQ(record.driverView, 1);
    EXPECT_EQ(record.driverViewMaximum, 1);
    EXPECT_EQ(record.quickPrint, 0U);
    driverSetup(TEXT("Driver_View"), TEXT("0"));
    EXPECT_EQ(load().driverView, 0);
    EXPECT_EQ(load().quickPrint, 1U);
}

TEST_F(PrinterConfigKeys, bezierAccuracy_isTakenOnlyWithAMode) {
    const Item accuracy{"PrinterDriver.Bezier.Accuracy", "25"};
    writeItems({kResolutionItem, accuracy, {"PrinterDriver.Bezier.Support", "2"}});
    EXPECT_EQ(load().bezier.accuracy, 25);
    writeItems({kResolutionItem, accuracy, {"PrinterDriver.Bezier.Support", "0"}});
    EXPECT_EQ(load().bezier.accuracy, 0);
    EXPECT_EQ(load().bezier.step, 4096U);
}

TEST_F(PrinterConfigKeys, missingTemplateIndex_isThatOfTheTemplateOfTheNameOrSize) {
    const WString ini = WString(folders.commonFiles()) + TEXT("\\MvTemplate.ini");
    writeBytes(ini,
               "[BDSIZETEMPLATE]\r\nSIZETEMPLATECOUNT=2\r\n"
               "SIZETEMPLATE[1].Name=Small\r\nSIZETEMPLATE[1].Height=20\r\nSIZETEMPLATE[1].Width=30\r\n"
               "SIZETEMPLATE[2].Name=Plate\r\nSIZETEMPLATE[2].Height=297\r\nSIZETEMPLATE[2].Width=210\r\n");
    const char* const name = "PrinterDriver.Configuration.Print.SizeSettings.Template.Name";
    const char* const width = "PrinterDriver.Configuration.Print.SizeSettings.Template.Width";
    const char* const height = "PrinterDriver.Configuration.Print.SizeSettings.Template.Height";
    writeItems({kResolutionItem, {name, "Plate"}});
    EXPECT_EQ(load().size.index, 2);
    const std::string longName = letters(80);
    writeBytes(ini, readBytes(ini) + "SIZETEMPLATE[3].Name=" + longName + "\r\nSIZETEMPLATE[3].Height=1\r\nSIZETEMPLATE[3].Width=1\r\n");
    writeItems({kResolutionItem, {name, longName.c_str()}});
    EXPECT_EQ(load().size.index, 3) << "found by the whole name, of which the record holds the beginning";
    writeItems({kResolutionItem, {width, "30.04"}, {height, "20"}});
    EXPECT_EQ(load().size.index, 1);
    writeItems({kResolutionItem, {width, "31"}, {height, "20"}});
    EXPECT_EQ(load().size.index, 0);
}

TEST_F(PrinterConfigKeys, pixels_followFromSizeAndResolution) {
    writeItems({kResolutionItem,
                {"PrinterDriver.Configuration.Print.SizeSettings.Template.Width", "297"},
                {"PrinterDriver.Configuration.Print.SizeSettings.Template.Height", "210"}});
    const ConfigurationRecord record = load();
    EXPECT_EQ(record.size.pixelWidth, 5847);
    EXPECT_EQ(record.size.pixelHeight, 4134);
}

TEST_F(PrinterConfigKeys, sizeTemplates_areReadWithTheReaderOfTheProcess) {
    writeBytes(WString(folders.commonFiles()) + TEXT("\\Own.ini"),
               "[BDSIZETEMPLATE]\r\nSIZETEMPLATE[1].Name=Plate\r\nSIZETEMPLATE[1].Height=1\r\nSIZETEMPLATE[1].Width=1\r\n");
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.SizeSettings.Template.Name", "Plate"}});
    CSizeTemplate reader(TEXT("Own.ini"));
    ConfigurationRecord record{};
    EXPECT_TRUE(CPrinterConfig(&reader).getConfig(TEXT(""), record));
    EXPECT_EQ(record.size.index, 1);
    EXPECT_EQ(reader.index(), 1);
    EXPECT_EQ(load().size.index, 0) << "the usual file has no such template";
}

TEST(PixelsOf, roundsUpAndRefusesSizesWithoutAPage) {
    static const struct {
        float millimetres;
        WORD dpi;
        WORD expected;
    } cases[] = {
        {0.0F, 1000, 0},         {-1.0F, 1000, 0},   {25.4F, 500, 500},  {25.41F, 500, 501},      {0.001F, 125, 1},
        {1664.58F, 1000, 65535}, {1664.7F, 1000, 0}, {1.0e30F, 1000, 0}, {std::nanf(""), 500, 0}, {100.0F, 0, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(pixelsOf(c.millimetres, c.dpi), c.expected) << c.millimetres << " mm at " << c.dpi;
}

TEST_F(PrinterConfigKeys, keysWithoutAnItem_haveTheirDefaults) {
    writeItems({kResolutionItem});
    const ConfigurationRecord record = load();
    EXPECT_EQ(record.processColour, 0);
    EXPECT_EQ(record.dumpBitmaps, 0U);
    EXPECT_EQ(record.job.nameMode, 1U);
    EXPECT_EQ(record.pageCounter, 0);
}

TEST_F(PrinterConfigKeys, storedConfiguration_hasItsOwnItemsBesideThoseOfTheDriver) {
    writeItems({kResolutionItem,
                {"PrinterDriver.ConfigurationStore.Wood.Print.Process.ProcessOption.Resolution", "5", "index"},
                {"PrinterDriver.ConfigurationStore.Wood.Print.MaterialSettings.Group", "Oak"},
                {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Steel"},
                {"PrinterDriver.Configuration.Halftone.Algorithm", "3"}});
    const ConfigurationRecord record = load(TEXT("Wood"));
    EXPECT_EQ(record.resolution, 125);
    EXPECT_EQ(text(record.materialGroup), "Oak");
    EXPECT_EQ(record.halftone.algorithm, 3U);
    EXPECT_EQ(text(load().materialGroup), "Steel");
}

}  // namespace morvil::test
