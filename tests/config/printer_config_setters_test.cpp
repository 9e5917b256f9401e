// Writing values back: ranges first, the text in the file, and the whole record there and back.
#include <cmath>
#include <cstring>
#include <functional>

#include "PrinterConfigFixture.h"

namespace morvil::test {

namespace {

struct SetterCase {
    const char* what;
    std::function<bool(CPrinterConfig&)> set;
    const char* path;  // "%" stands for the root of the active configuration; null: must be refused
    const char* attribute;
    const char* expected;
};

std::string pathOf(const std::string& key) { return key[0] == '%' ? "PrinterDriver.Configuration" + key.substr(1) : key; }

SizeTemplate sizeOf(float width, float height) {
    SizeTemplate size{};
    size.width = width;
    size.height = height;
    size.index = 12;
    size.takeFromApplication = 1;
    copyText(size.name, TEXT("Table"));
    return size;
}

template <typename Change>
HalftoneBlock halftoneWith(Change change) {
    HalftoneBlock halftone = CPrinterConfig::defaultConfiguration().halftone;
    change(halftone);
    return halftone;
}

constexpr const WCHAR* k49 = TEXT("1234567890123456789012345678901234567890123456789");
constexpr const WCHAR* k50 = TEXT("12345678901234567890123456789012345678901234567890");

#define SET(call) [](CPrinterConfig& config) { return config.call; }

}  // namespace

// A text of so many characters.
static std::string letters(std::size_t count) { return std::string(count, 'l'); }

class PrinterConfigSetters : public PrinterConfigTest {};

TEST_F(PrinterConfigSetters, valuesOutOfRange_areRefusedWithoutWriting) {
    writeItems({kResolutionItem});
    const std::string before = fileBytes();
    const std::vector<std::pair<const char*, std::function<bool(CPrinterConfig&)>>> cases{
        {"mode 999", SET(setProcessMode(999))},
        {"mode 0", SET(setProcessMode(0))},
        {"mode 13000", SET(setProcessMode(13000))},
        {"mode 1500 is no mode", SET(setProcessMode(1500))},
        {"resolution 6", SET(setResolution(6))},
        {"cut line -1", SET(setCutLine(-1))},
        {"cut line 4", SET(setCutLine(4))},
        {"shoulder index -1", SET(setShoulderIndex(-1))},
        {"shoulder index 3", SET(setShoulderIndex(3))},
        {"empty shoulder name", SET(setShoulderName(TEXT("")))},
        {"missing shoulder name", SET(setShoulderName(nullptr))},
        {"shoulder name of 20", SET(setShoulderName(TEXT("12345678901234567890")))},
        {"layers 1", SET(setLayers(1))},
        {"layers 256", SET(setLayers(256))},
        {"z below 0", SET(setZAdjustment(-0.001F))},
        {"z above 5 mm", SET(setZAdjustment(5.01F))},
        {"z no number", SET(setZAdjustment(std::nanf("")))},
        {"width no number", SET(setSizeTemplate(sizeOf(std::nanf(""), 1)))},
        {"height without end", SET(setSizeTemplate(sizeOf(1, INFINITY)))},
        {"diameter without end", SET(setRotaryDiameter(INFINITY))},
        {"material group of 50", SET(setMaterialGroup(k50))},
        {"material name of 50", SET(setMaterialName(k50))},
        {"text that breaks the file: <", SET(setMaterialName(TEXT("a<b")))},
        {"text that breaks the file: &", SET(setMaterialName(TEXT("a&b")))},
        {"text that breaks the file: quotation mark", SET(setMaterialName(TEXT("19\" plate")))},
        {"algorithm 6", SET(setHalftone(halftoneWith([](auto& h) { h.algorithm = 6; })))},
        {"pattern 10001", SET(setHalftone(halftoneWith([](auto& h) { h.patternSize = 10001; })))},
        {"contrast -101", SET(setHalftone(halftoneWith([](auto& h) { h.adjustment.caContrast = -101; })))},
        {"contrast 101", SET(setHalftone(halftoneWith([](auto& h) { h.adjustment.caContrast = 101; })))},
        {"brightness 101", SET(setHalftone(halftoneWith([](auto& h) { h.adjustment.caBrightness = 101; })))},
        {"view above the maximum", SET(setDriverView(3))},
        {"bezier mode 4", SET(setBezier({.mode = 4, .accuracy = 0, .step = 4096, .library = {}}))},
        {"process id beyond an integer", SET(setPrintingApplication({.processId = 0x80000000U, .name = {}}))},
        {"17 colours",
         [](CPrinterConfig& config) {
             const VectorColour colours[kVectorColours]{};
             return config.setColours(colours, 17);
         }},
    };
    for (const auto& [what, set] : cases) {
        CPrinterConfig config;
        EXPECT_FALSE(set(config)) << what;
        EXPECT_EQ(fileBytes(), before) << what;
    }
}

TEST_F(PrinterConfigSetters, values_areWrittenInTheFormOfTheirKey) {
    const std::vector<SetterCase> cases{
        {"width", SET(setSizeTemplate(sizeOf(210.126F, 0.5F))), "%.Print.SizeSettings.Template.Width", "value", "210.13"},
        {"height", SET(setSizeTemplate(sizeOf(210.126F, 0.5F))), "%.Print.SizeSettings.Template.Height", "value", "0.50"},
        {"index", SET(setSizeTemplate(sizeOf(1, 1))), "%.Print.SizeSettings.Template.Index", "value", "12"},
        {"from application", SET(setSizeTemplate(sizeOf(1, 1))), "%.Print.SizeSettings.Template.TakeFromApplication", "value", "1"},
        {"template name", SET(setSizeTemplate(sizeOf(1, 1))), "%.Print.SizeSettings.Template.Name", "value", "Table"},
        {"group", SET(setMaterialGroup(k49)), "%.Print.MaterialSettings.Group", "value",
         "1234567890123456789012345678901234567890123456789"},
        {"name", SET(setMaterialName(TEXT(""))), "%.Print.MaterialSettings.Name", "value", ""},
        {"lowest mode", SET(setProcessMode(1000)), "%.Print.Process.ProcessMode.ID", "value", "1000"},
        {"highest mode", SET(setProcessMode(12000)), "%.Print.Process.ProcessMode.ID", "value", "12000"},
        {"resolution", SET(setResolution(5)), "%.Print.Process.ProcessOption.Resolution", "index", "5"},
        {"cut line", SET(setCutLine(3)), "%.Print.Process.ProcessOption.Cutline", "index", "3"},
        {"shoulder name", SET(setShoulderName(TEXT("1234567890123456789"))), "%.Print.Process.ProcessOption.Shoulder.Name", "value",
         "1234567890123456789"},
        {"shoulder index", SET(setShoulderIndex(2)), "%.Print.Process.ProcessOption.Shoulder.Index", "value", "2"},
        {"layers", SET(setLayers(255)), "%.Print.Process.ProcessOption.Layers", "value", "255"},
        {"z", SET(setZAdjustment(0.0126F)), "%.Print.Process.ProcessOption.ZAdjustment", "value", "0.013"},
        {"rotary", SET(setRotaryEnabled(true)), "%.Print.Process.ProcessOption.Rotary.Enabled", "value", "1"},
        {"diameter", SET(setRotaryDiameter(40.0F)), "%.Print.Process.ProcessOption.Rotary.Diameter", "value", "40.00"},
        {"position", SET(setAutoPosition(false)), "%.Print.Process.ProcessOption.Autoposition", "value", "0"},
        {"vector job", SET(setVectorJob(true)), "%.Print.Process.ProcessOption.VectorJob", "value", "1"},
        {"quick print", SET(setQuickPrint(true)), "%.Print.QuickPrint", "value", "1"},
        {"view", SET(setDriverView(2)), "%.About.View", "act", "2"},
        {"halftone", SET(setHalftone(halftoneWith([](auto& h) { h.enabled = 1; }))), "%.Halftone.Enabled", "value", "1"},
        {"algorithm", SET(setHalftone(halftoneWith([](auto& h) { h.algorithm = 5; }))), "PrinterDriver.Configuration.Halftone.Algorithm",
         "value", "5"},
        {"pattern", SET(setHalftone(halftoneWith([](auto& h) { h.patternSize = 10000; }))),
         "PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize", "value", "10000"},
        {"contrast", SET(setHalftone(halftoneWith([](auto& h) { h.adjustment.caContrast = -100; }))),
         "PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast", "value", "0"},
        {"brightness", SET(setHalftone(halftoneWith([](auto& h) { h.adjustment.caBrightness = 100; }))),
         "PrinterDriver.Configuration.Halftone.ColorAdjustment.caBrightness", "value", "200"},
        {"gamma", SET(setHalftone(halftoneWith([](auto& h) { h.adjustment.caBlueGamma = 65535; }))),
         "PrinterDriver.Configuration.Halftone.ColorAdjustment.caBlueGamma", "value", "65535"},
        {"bezier", SET(setBezier({.mode = 3, .accuracy = 9, .step = 0, .library = {}})), "PrinterDriver.Bezier.Support", "value", "3"},
        {"accuracy", SET(setBezier({.mode = 3, .accuracy = 9, .step = 0, .library = {}})), "PrinterDriver.Bezier.Accuracy", "value", "9"},
        {"application", SET(setPrintingApplication({.processId = 77, .name = {'a', '.', 'e', 'x', 'e'}})),
         "PrinterDriver.PrintingApplication.Name", "value", "a.exe"},
        {"process", SET(setPrintingApplication({.processId = 77, .name = {}})), "PrinterDriver.PrintingApplication.ID", "value", "77"},
        {"logging", SET(setLogging({.enabled = 1, .debugLevel = 2, .reserved = 0, .maxBytes = 4000000000U})),
         "PrinterDriver.Logging.FileSize", "value", "4000000000"},
        {"version", SET(setVersion(TEXT("6.1.0.2"))), "PrinterDriver.Version", "value", "6.1.0.2"},
        {"offset", SET(setBoundingBoxOffset({1, 2, 3, 4})), "PrinterDriver.BoundingBox.Offset.Bottom", "value", "4"},
        {"matching", SET(setColourMatchingEnabled(false)), "PrinterDriver.ColorMatching.Enabled", "value", "0"},
    };
    for (const SetterCase& c : cases) {
        SCOPED_TRACE(c.what);
        writeItems({kResolutionItem});
        CPrinterConfig config;
        EXPECT_TRUE(c.set(config));
        EXPECT_EQ(stored(pathOf(c.path), c.attribute), c.expected);
    }
}

TEST_F(PrinterConfigSetters, zAdjustmentInInches_hasItsOwnRange) {
    userSetup(TEXT("UseInch"), TEXT("1"));
    writeItems({kResolutionItem});
    CPrinterConfig config;
    EXPECT_FALSE(config.setZAdjustment(0.201F));
    EXPECT_TRUE(config.setZAdjustment(0.2F));
    EXPECT_EQ(stored("PrinterDriver.Configuration.Print.Process.ProcessOption.ZAdjustment"), "0.200");
}

TEST_F(PrinterConfigSetters, driverView_isBoundByTheIniValue) {
    driverSetup(TEXT("Driver_View"), TEXT("1"));
    writeItems({kResolutionItem});
    CPrinterConfig config;
    EXPECT_FALSE(config.setDriverView(2));
    EXPECT_TRUE(config.setDriverView(1));
}

TEST_F(PrinterConfigSetters, selectedConfiguration_isWhatSettersWriteTo) {
    writeItems({kResolutionItem});
    CPrinterConfig config;
    ASSERT_TRUE(config.select(TEXT("Wood")));
    EXPECT_TRUE(config.setLayers(9));
    EXPECT_EQ(stored("PrinterDriver.ConfigurationStore.Wood.Print.Process.ProcessOption.Layers"), "9");
    EXPECT_FALSE(config.select(TEXT("2")));
    EXPECT_EQ(config.getLayers(), 9);
    ASSERT_TRUE(config.select(nullptr));
    EXPECT_EQ(config.getLayers(), 2);
}

TEST_F(PrinterConfigSetters, setterOnAMissingFile_createsIt) {
    EXPECT_TRUE(CPrinterConfig().setLayers(7));
    EXPECT_EQ(stored("PrinterDriver.Configuration.Print.Process.ProcessOption.Layers"), "7");
}

TEST_F(PrinterConfigSetters, wholeRecord_comesBackAsItWas) {
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    record.size = sizeOf(210.25F, 148.5F);
    record.resolution = 333;
    record.size.pixelWidth = pixelsOf(210.25F, 333);
    record.size.pixelHeight = pixelsOf(148.5F, 333);
    copyText(record.materialGroup, TEXT("Wood"));
    copyText(record.materialName, TEXT("Oak \u00E4"));
    record.processMode = kModeLayer;
    record.processKind = 4;
    record.raster = 0;
    copyText(record.processName, TEXT("Layer"));
    record.cutLineIndex = 2;
    copyText(record.cutLineName, TEXT("circular"));
    copyText(record.shoulderName, TEXT("special"));
    record.layers = 11;
    record.zAdjustment = 0.125F;
    record.rotaryEnabled = 1;
    record.rotaryDiameter = 40.5F;
    record.autoPosition = 1;
    record.vectorJob = 1;
    record.colourCount = 2;
    record.colours[0] = {.red = 255, .green = 1, .blue = 2, .reserved = 0, .mode = 1};
    record.colours[1] = {.red = 0, .green = 128, .blue = 0, .reserved = 0, .mode = 0};
    record.halftone.enabled = 1;
    record.halftone.algorithm = 4;
    record.halftone.patternSize = 2;
    record.halftone.adjustment.caContrast = -30;
    record.halftone.adjustment.caBrightness = 20;
    record.halftone.adjustment.caRedGamma = 20000;
    record.driverView = 1;
    record.quickPrint = 1;
    record.job.index = 3;
    record.job.number = 44;
    copyText(record.job.name, TEXT("Plates"));
    copyText(record.job.formats[2], TEXT("cad.exe;"));
    record.bezier.mode = 2;
    record.bezier.accuracy = 7;
    record.application.processId = 1234;
    copyText(record.application.name, TEXT("draw.exe"));
    record.logging = {.enabled = 1, .debugLevel = 2, .reserved = 0, .maxBytes = 5000};
    record.flags = MV_FL_TMPJOB | MV_FL_IMAGEOP_RA_BURKES | MV_FL_DIAGNOSTIC;
    record.diagnostic.enabled = 1;
    record.diagnostic.signals[0] = 0x81;
    record.diagnostic.signals[31] = 0x80;
    EXPECT_TRUE(CPrinterConfig().setConfig(TEXT(""), record));
    ConfigurationRecord back = load();
    back.timeStamp = record.timeStamp;
    EXPECT_EQ(std::memcmp(&record, &back, sizeof record), 0);
}

// Fields of the record are shorter than what the file may hold: writing back what was read loses nothing.
TEST_F(PrinterConfigSetters, textsLongerThanTheirFields_surviveBeingReadAndWritten) {
    const std::string list = letters(70) + ".exe";
    const std::string name = letters(80);
    const std::string listPath = "PrinterDriver.Configuration.About.JobIdentification.Format_1";
    const std::string namePath = "PrinterDriver.Configuration.Print.SizeSettings.Template.Name";
    writeItems({kResolutionItem, {listPath.c_str(), list.c_str()}, {namePath.c_str(), name.c_str()}});
    ConfigurationRecord record = load();
    EXPECT_TRUE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(stored(listPath), list);
    EXPECT_EQ(stored(namePath), name);
    record.size.name[3] = TEXT('x');
    record.job.formats[1][3] = TEXT('x');
    EXPECT_TRUE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(stored(listPath), toUtf8(viewOf(std::span<const WCHAR>(record.job.formats[1]))));
    EXPECT_EQ(stored(namePath), toUtf8(viewOf(std::span<const WCHAR>(record.size.name))));
}

TEST_F(PrinterConfigSetters, eachItemOfAConfiguration_isWrittenAtOnce) {
    writeItems({kResolutionItem});
    CPrinterConfig config;
    debug.clear();
    EXPECT_TRUE(config.setConfig(TEXT("Wood"), CPrinterConfig::defaultConfiguration()));
    EXPECT_GT(debug.count("CXml::archive finishedd\n"), 40U);
}

TEST_F(PrinterConfigSetters, oneValueOutOfRange_isReportedAndTheRestIsWritten) {
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    record.layers = 1;
    copyText(record.materialName, TEXT("Oak"));
    record.diagnostic.enabled = 1;
    EXPECT_FALSE(CPrinterConfig().setConfig(TEXT(""), record));
    const ConfigurationRecord back = load();
    EXPECT_EQ(back.layers, 2);
    EXPECT_EQ(text(back.materialName), "Oak");
    EXPECT_EQ(back.diagnostic.enabled, 1);
}

TEST_F(PrinterConfigSetters, resolutionThatIsNoneOfTheList_isRefused) {
    writeItems({kResolutionItem});
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    record.resolution = 300;
    EXPECT_FALSE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(stored(kResolutionItem.path, "index"), "2");
}

TEST_F(PrinterConfigSetters, emptyShoulderName_takesTheItemOut) {
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    copyText(record.shoulderName, TEXT("steep"));
    ASSERT_TRUE(CPrinterConfig().setConfig(TEXT(""), record));
    copyText(record.shoulderName, TEXT(""));
    EXPECT_TRUE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(stored("PrinterDriver.Configuration.Print.Process.ProcessOption.Shoulder.Name"), "(none)");
}

TEST_F(PrinterConfigSetters, keysOutsideTheDriver_areNeverWritten) {
    ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
    record.processMode = kModeColourStamp;
    record.mciVersion = 0;
    record.ppoThreshold = 17;
    EXPECT_TRUE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(fileBytes().find("MciVersion"), std::string::npos);
    EXPECT_EQ(fileBytes().find("PPOTreshold"), std::string::npos);
    EXPECT_EQ(load().ppoThreshold, 50000U);
    EXPECT_EQ(load().mciVersion, 3U);
}

// A block is refused as a whole when one of its texts could not be written as an attribute.
TEST_F(PrinterConfigSetters, textsThatNoAttributeHolds_keepTheirBlockFromBeingWritten) {
    writeItems({kResolutionItem});
    const std::string before = fileBytes();
    const ConfigurationRecord defaults = CPrinterConfig::defaultConfiguration();
    CPrinterConfig config;
    for (const WCHAR* const text : {TEXT("a<b"), TEXT("a&b"), TEXT("a\"b")}) {
        SizeTemplate size = defaults.size;
        copyText(size.name, text);
        EXPECT_FALSE(config.setSizeTemplate(size));
        JobIdentification job = defaults.job;
        copyText(job.name, text);
        EXPECT_FALSE(config.setJobIdentification(job));
        job = defaults.job;
        copyText(job.formats[3], text);
        EXPECT_FALSE(config.setJobIdentification(job));
        PrintingApplication application = defaults.application;
        copyText(application.name, text);
        EXPECT_FALSE(config.setPrintingApplication(application));
    }
    EXPECT_EQ(fileBytes(), before);
}

}  // namespace morvil::test
