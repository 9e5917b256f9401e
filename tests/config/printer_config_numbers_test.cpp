// The numbers and switches of the configuration: what a missing item reads as, an accepted one, and one out of range.
#include <functional>

#include "PrinterConfigFixture.h"

namespace morvil::test {

namespace {

constexpr const char* kMissing = nullptr;

struct NumberCase {
    const char* key;  // "%" stands for the root of the active configuration
    const char* attribute;
    const char* stored;
    double expected;
    std::function<double(const ConfigurationRecord&)> field;
};

std::string pathOf(const std::string& key) { return key[0] == '%' ? "PrinterDriver.Configuration" + key.substr(1) : key; }

#define FIELD(member) [](const ConfigurationRecord& record) { return static_cast<double>(record.member); }

const std::vector<NumberCase>& numberCases() {
    static const std::vector<NumberCase> cases{
        {"%.Print.SizeSettings.Template.Index", "value", kMissing, 0, FIELD(size.index)},
        {"%.Print.SizeSettings.Template.Index", "value", "7", 7, FIELD(size.index)},
        {"%.Print.SizeSettings.Template.Index", "value", "65535", 65535, FIELD(size.index)},
        {"%.Print.SizeSettings.Template.Index", "value", "65536", 0, FIELD(size.index)},
        {"%.Print.SizeSettings.Template.Index", "value", "-1", 0, FIELD(size.index)},
        {"%.Print.SizeSettings.Template.Width", "value", kMissing, 100, FIELD(size.width)},
        {"%.Print.SizeSettings.Template.Width", "value", "210.5", 210.5, FIELD(size.width)},
        {"%.Print.SizeSettings.Template.Width", "value", "210,5", 210.5, FIELD(size.width)},
        {"%.Print.SizeSettings.Template.Width", "value", "nan", 100, FIELD(size.width)},
        {"%.Print.SizeSettings.Template.Width", "value", "inf", 100, FIELD(size.width)},
        {"%.Print.SizeSettings.Template.Width", "value", "wide", 0, FIELD(size.width)},
        {"%.Print.SizeSettings.Template.Height", "value", kMissing, 100, FIELD(size.height)},
        {"%.Print.SizeSettings.Template.Height", "value", "12.25", 12.25, FIELD(size.height)},
        {"%.Print.SizeSettings.Template.Height", "value", "-3", -3, FIELD(size.height)},
        {"%.Print.SizeSettings.Template.TakeFromApplication", "value", kMissing, 0, FIELD(size.takeFromApplication)},
        {"%.Print.SizeSettings.Template.TakeFromApplication", "value", "1", 1, FIELD(size.takeFromApplication)},
        {"%.Print.SizeSettings.Template.TakeFromApplication", "value", "yes", 0, FIELD(size.takeFromApplication)},
        {"%.Print.Process.ProcessMode.ID", "value", kMissing, 1000, FIELD(processMode)},
        {"%.Print.Process.ProcessMode.ID", "value", "12000", 12000, FIELD(processMode)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "0", 1000, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "1", 600, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "2", 500, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "3", 333, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "4", 250, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "5", 125, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "6", 500, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "7", 500, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Resolution", "index", "fine", 1000, FIELD(resolution)},
        {"%.Print.Process.ProcessOption.Cutline", "index", kMissing, 0, FIELD(cutLineIndex)},
        {"%.Print.Process.ProcessOption.Cutline", "index", "3", 3, FIELD(cutLineIndex)},
        {"%.Print.Process.ProcessOption.Cutline", "index", "4", 0, FIELD(cutLineIndex)},
        {"%.Print.Process.ProcessOption.Cutline", "index", "-1", 0, FIELD(cutLineIndex)},
        {"%.Print.Process.ProcessOption.Layers", "value", kMissing, 2, FIELD(layers)},
        {"%.Print.Process.ProcessOption.Layers", "value", "1", 2, FIELD(layers)},
        {"%.Print.Process.ProcessOption.Layers", "value", "2", 2, FIELD(layers)},
        {"%.Print.Process.ProcessOption.Layers", "value", "3", 3, FIELD(layers)},
        {"%.Print.Process.ProcessOption.Layers", "value", "255", 255, FIELD(layers)},
        {"%.Print.Process.ProcessOption.Layers", "value", "256", 2, FIELD(layers)},
        {"%.Print.Process.ProcessOption.ZAdjustment", "value", kMissing, 0, FIELD(zAdjustment)},
        {"%.Print.Process.ProcessOption.ZAdjustment", "value", "5.0", 5, FIELD(zAdjustment)},
        {"%.Print.Process.ProcessOption.ZAdjustment", "value", "5.01", 0.01F, FIELD(zAdjustment)},
        {"%.Print.Process.ProcessOption.ZAdjustment", "value", "7.5", 0.01F, FIELD(zAdjustment)},
        {"%.Print.Process.ProcessOption.ZAdjustment", "value", "-0.1", 0.01F, FIELD(zAdjustment)},
        {"%.Print.Process.ProcessOption.ZAdjustment", "value", "nan", 0.01F, FIELD(zAdjustment)},
        {"%.Print.Process.ProcessOption.Rotary.Enabled", "value", kMissing, 0, FIELD(rotaryEnabled)},
        {"%.Print.Process.ProcessOption.Rotary.Enabled", "value", "true", 1, FIELD(rotaryEnabled)},
        {"%.Print.Process.ProcessOption.Rotary.Diameter", "value", kMissing, 123.4F, FIELD(rotaryDiameter)},
        {"%.Print.Process.ProcessOption.Rotary.Diameter", "value", "40", 40, FIELD(rotaryDiameter)},
        {"%.Print.Process.ProcessOption.Autoposition", "value", kMissing, 0, FIELD(autoPosition)},
        {"%.Print.Process.ProcessOption.Autoposition", "value", "1", 1, FIELD(autoPosition)},
        {"%.Print.Process.ProcessOption.VectorJob", "value", kMissing, 0, FIELD(vectorJob)},
        {"%.Print.Process.ProcessOption.VectorJob", "value", "1", 1, FIELD(vectorJob)},
        {"Print.Process.ProcessOption.PPOTreshold", "value", kMissing, 50000, FIELD(ppoThreshold)},
        {"Print.Process.ProcessOption.PPOTreshold", "value", "12", 12, FIELD(ppoThreshold)},
        {"%.Print.Process.ProcessOption.PPOTreshold", "value", "12", 50000, FIELD(ppoThreshold)},
        {"%.Print.QuickPrint", "value", kMissing, 0, FIELD(quickPrint)},
        {"%.Print.QuickPrint", "value", "1", 1, FIELD(quickPrint)},
        {"%.About.View", "act", kMissing, 2, FIELD(driverView)},
        {"%.About.View", "act", "1", 1, FIELD(driverView)},
        {"%.About.View", "act", "0", 1, FIELD(quickPrint)},
        {"%.About.View", "act", "9", 9, FIELD(driverView)},
        {"%.About.JobIdentification.Index", "value", kMissing, 0, FIELD(job.index)},
        {"%.About.JobIdentification.Index", "value", "-4", -4, FIELD(job.index)},
        {"%.About.JobIdentification.Number", "value", kMissing, 0, FIELD(job.number)},
        {"%.About.JobIdentification.Number", "value", "17", 17, FIELD(job.number)},
        {"%.Halftone.Enabled", "value", kMissing, 0, FIELD(halftone.enabled)},
        {"%.Halftone.Enabled", "value", "1", 1, FIELD(halftone.enabled)},
        {"PrinterDriver.Configuration.Halftone.Algorithm", "value", kMissing, 0, FIELD(halftone.algorithm)},
        {"PrinterDriver.Configuration.Halftone.Algorithm", "value", "5", 5, FIELD(halftone.algorithm)},
        {"PrinterDriver.Configuration.Halftone.Algorithm", "value", "6", 0, FIELD(halftone.algorithm)},
        {"PrinterDriver.Configuration.Halftone.Algorithm", "value", "-1", 0, FIELD(halftone.algorithm)},
        {"PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize", "value", kMissing, 0, FIELD(halftone.patternSize)},
        {"PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize", "value", "10000", 10000, FIELD(halftone.patternSize)},
        {"PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize", "value", "10001", 0, FIELD(halftone.patternSize)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast", "value", kMissing, 0, FIELD(halftone.adjustment.caContrast)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast", "value", "0", -100, FIELD(halftone.adjustment.caContrast)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast", "value", "200", 100, FIELD(halftone.adjustment.caContrast)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast", "value", "201", 0, FIELD(halftone.adjustment.caContrast)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast", "value", "high", -100, FIELD(halftone.adjustment.caContrast)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caBrightness", "value", kMissing, 0,
         FIELD(halftone.adjustment.caBrightness)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caBrightness", "value", "130", 30, FIELD(halftone.adjustment.caBrightness)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caBrightness", "value", "201", 0, FIELD(halftone.adjustment.caBrightness)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caRedGamma", "value", kMissing, 10000,
         FIELD(halftone.adjustment.caRedGamma)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caRedGamma", "value", "65535", 65535, FIELD(halftone.adjustment.caRedGamma)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caRedGamma", "value", "65536", 10000, FIELD(halftone.adjustment.caRedGamma)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caGreenGamma", "value", kMissing, 10000,
         FIELD(halftone.adjustment.caGreenGamma)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caGreenGamma", "value", "2500", 2500,
         FIELD(halftone.adjustment.caGreenGamma)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caBlueGamma", "value", kMissing, 10000,
         FIELD(halftone.adjustment.caBlueGamma)},
        {"PrinterDriver.Configuration.Halftone.ColorAdjustment.caBlueGamma", "value", "2501", 2501, FIELD(halftone.adjustment.caBlueGamma)},
        {"PrinterDriver.Bezier.Support", "value", kMissing, 0, FIELD(bezier.mode)},
        {"PrinterDriver.Bezier.Support", "value", "1", 1, FIELD(bezier.mode)},
        {"PrinterDriver.Bezier.Support", "value", "2", 2, FIELD(bezier.mode)},
        {"PrinterDriver.Bezier.Support", "value", "3", 3, FIELD(bezier.mode)},
        {"PrinterDriver.Bezier.Support", "value", "3", 4096, FIELD(bezier.step)},
        {"PrinterDriver.Bezier.Support", "value", "4", 0, FIELD(bezier.mode)},
        {"PrinterDriver.PrintingApplication.ID", "value", kMissing, 0, FIELD(application.processId)},
        {"PrinterDriver.PrintingApplication.ID", "value", "4711", 4711, FIELD(application.processId)},
        {"PrinterDriver.Logging.Enable", "value", kMissing, 0, FIELD(logging.enabled)},
        {"PrinterDriver.Logging.Enable", "value", "1", 1, FIELD(logging.enabled)},
        {"PrinterDriver.Logging.DebugLevel", "value", kMissing, 0, FIELD(logging.debugLevel)},
        {"PrinterDriver.Logging.DebugLevel", "value", "3", 3, FIELD(logging.debugLevel)},
        {"PrinterDriver.Logging.FileSize", "value", kMissing, 1'000'000, FIELD(logging.maxBytes)},
        {"PrinterDriver.Logging.FileSize", "value", "4294967295", 4294967295.0, FIELD(logging.maxBytes)},
        {"PrinterDriver.Diagnostic.Enable", "value", kMissing, 0, FIELD(diagnostic.enabled)},
        {"PrinterDriver.Diagnostic.Enable", "value", "1", 1, FIELD(diagnostic.enabled)},
    };
    return cases;
}

}  // namespace

TEST_F(PrinterConfigKeys, numbersAndSwitches_followTheKeyTable) {
    for (const NumberCase& c : numberCases()) {
        SCOPED_TRACE(std::string(c.key) + "@" + c.attribute + " = " + (c.stored == kMissing ? "(missing)" : c.stored));
        std::vector<Item> items;
        const std::string path = pathOf(c.key);
        if (path != kResolutionItem.path) items.push_back(kResolutionItem);
        if (c.stored != kMissing) items.push_back({path.c_str(), c.stored, c.attribute});
        writeItems(items);
        EXPECT_FLOAT_EQ(static_cast<float>(c.field(load())), static_cast<float>(c.expected));
    }
}

}  // namespace morvil::test
