// The default configuration: the defaults of the key table, and a choice for everything that has none.
#include <array>

#include "config/CPrinterConfigMembers.h"
#include "config/CPrinterConfigTables.h"

namespace morvil {

namespace {

constexpr WORD kBezierStep = 4096;

// Neutral for the platform: gammas of 1, full range from black to white, no shift.
constexpr COLORADJUSTMENT kNeutralAdjustment{
    .caSize = sizeof(COLORADJUSTMENT),
    .caFlags = 0,
    .caIlluminantIndex = 0,
    .caRedGamma = 10000,
    .caGreenGamma = 10000,
    .caBlueGamma = 10000,
    .caReferenceBlack = 0,
    .caReferenceWhite = 10000,
    .caContrast = 0,
    .caBrightness = 0,
    .caColorfulness = 0,
    .caRedGreenTint = 0,
};

// Chromaticities, gammas and dye values in units of 1/10000. Cyan's Y of 65534 is what the machine was tuned with.
constexpr COLORINFO kColourInfo{
    .Red = {6380, 3350, 0},
    .Green = {2345, 6075, 0},
    .Blue = {1410, 932, 0},
    .Cyan = {2000, 2450, 65534},
    .Magenta = {5210, 2100, 0},
    .Yellow = {4750, 5100, 0},
    .AlignmentWhite = {3127, 3290, 0},
    .RedGamma = 12500,
    .GreenGamma = 12500,
    .BlueGamma = 12500,
    .MagentaInCyanDye = 585,
    .YellowInCyanDye = 120,
    .CyanInMagentaDye = 0,
    .YellowInMagentaDye = 0,
    .CyanInYellowDye = 0,
    .MagentaInYellowDye = 10000,
};

// Executable names that select the job-name formats 1 to 4.
constexpr std::array<const WCHAR*, kFormatCount> kApplicationLists{
    TEXT("winword.exe;"),
    TEXT("notepad.exe;editor.exe;"),
    TEXT("aclt.exe;pm70.exe"),
    TEXT("uedit32.exe;crazy browser.exe;firefox.exe;iexplore.exe"),
};

void fillSize(ConfigurationRecord& record) {
    record.size.width = keys::kWidth.missing;
    record.size.height = keys::kHeight.missing;
    record.size.pixelWidth = pixelsOf(record.size.width, record.resolution);
    record.size.pixelHeight = pixelsOf(record.size.height, record.resolution);
    copyText(record.size.name, keys::kTemplateName.missing);
}

void fillNames(ConfigurationRecord& record) {
    copyText(record.materialGroup, keys::kMaterialGroup.missing);
    copyText(record.materialName, keys::kMaterialName.missing);
    copyText(record.job.name, keys::kJobName.missing);
    for (std::size_t i = 0; i < kFormatCount; ++i) copyText(record.job.formats[i], kApplicationLists[i]);
    copyText(record.files.processColourIni, TEXT("MvColor.ini"));
    copyText(record.files.templateIni, TEXT("MvTemplate.ini"));
    copyText(record.files.materialLibrary, TEXT("MvMaterial.dll"));
    copyText(record.files.jobApplication, TEXT("Plotkeeper.exe"));
    copyText(record.bezier.library, TEXT("MvBezier.dll"));
}

ConfigurationRecord madeDefaults() {
    ConfigurationRecord record{};
    record.unit = kMillimetres;
    record.processMode = keys::kProcessMode.missing;
    record.processKind = *processKindOf(record.processMode);
    copyText(record.processName, processModeName(record.processMode));
    record.raster = TRUE;  // Standard without halftoning
    record.mciVersion = 3;
    record.resolution = resolutionOf(keys::kResolution.missing);
    fillSize(record);
    fillNames(record);
    copyText(record.cutLineName, cutLineName(record.cutLineIndex));
    record.layers = keys::kLayers.missing;
    record.rotaryDiameter = keys::kRotaryDiameter.missing;
    record.ppoThreshold = keys::kPpoThreshold.missing;
    record.halftone.adjustment = kNeutralAdjustment;
    record.halftone.colourInfo = kColourInfo;
    record.driverView = keys::kDriverView.missing;
    record.driverViewMaximum = keys::kDriverView.missing;
    record.job.nameMode = 1;
    record.bezier.step = kBezierStep;
    record.logging.maxBytes = keys::kLoggingFileSize.missing;  // logging itself is off, debug level 0
    record.flags = MV_FL_POLYGON_CLIPPING;                     // as a new file has it (see doUpdate)
    return record;
}

}  // namespace

const ConfigurationRecord& CPrinterConfig::defaultConfiguration() {
    static const ConfigurationRecord defaults = madeDefaults();
    return defaults;
}

ConfigurationRecord CPrinterConfig::localDefaults() {
    ConfigurationRecord record = defaultConfiguration();
    record.unit = getUnit();
    record.driverViewMaximum = getDriverViewMaximum();
    record.driverView = record.driverViewMaximum;
    record.quickPrint = record.driverView == 0 ? TRUE : FALSE;
    record.files = getFileNames();
    record.timeStamp = Members::timeStampNow();
    return record;
}

}  // namespace morvil
