// The getters of single values and small blocks. Ranges and defaults come from the key table.
#include <algorithm>

#include "config/CMvString.h"
#include "config/CPrinterConfigMembers.h"
#include "config/CPrinterConfigTables.h"

namespace morvil {

namespace {

BOOL asBool(bool value) { return value ? TRUE : FALSE; }

}  // namespace

CSizeTemplate& CPrinterConfig::Members::sizeTemplates() {
    if (templates != nullptr) return *templates;
    if (!ownTemplates) ownTemplates = std::make_unique<CSizeTemplate>();
    return *ownTemplates;
}

int CPrinterConfig::Members::templateIndexFor(const WString& name, const SizeTemplate& size) {
    const int byName = sizeTemplates().findByName(name.c_str());
    return byName != 0 ? byName : sizeTemplates().findBySize(size.width, size.height);
}

DWORD CPrinterConfig::getUnit() { return m->ini().useInch != 0 ? kInches : kMillimetres; }

SizeTemplate CPrinterConfig::getSizeTemplate() {
    ConfigurationItems items = m->items();
    SizeTemplate size{};
    size.width = items.number(keys::kWidth);
    size.height = items.number(keys::kHeight);
    size.takeFromApplication = static_cast<DWORD>(asBool(items.boolean(keys::kTakeFromApplication)));
    const WString name = items.text(keys::kTemplateName);  // longer ones than the record holds are found as well
    copyText(size.name, name);
    const std::optional<std::int32_t> index = items.find(keys::kTemplateIndex);
    size.index = static_cast<WORD>(index ? *index : m->templateIndexFor(name, size));
    return size;
}

WString CPrinterConfig::getMaterialGroup() { return m->items().text(keys::kMaterialGroup); }

WString CPrinterConfig::getMaterialName() { return m->items().text(keys::kMaterialName); }

WORD CPrinterConfig::getProcessMode() { return m->items().number(keys::kProcessMode); }

DWORD CPrinterConfig::getMciVersion(WORD processMode) {
    static constexpr DWORD kNewest = 3;
    if (processMode != kModeColourStamp) return kNewest;
    ConfigurationItems::Value value{};
    ConfigurationItems items = m->items();
    if (!items.read(items.element(keys::kMciVersion), value)) return kNewest;
    if (CMvString().toLower(value.data()) == nullptr) return kNewest;
    const WStringView version = viewOf(value.data()).substr(0, 4);
    const auto isOneOf = [version](auto... names) { return ((version == names) || ...); };
    if (isOneOf(TEXT("v1.0"), TEXT("v10"), TEXT("1.0"), TEXT("10"))) return 0;
    if (isOneOf(TEXT("v2.0"), TEXT("v20"), TEXT("2.0"), TEXT("20"))) return 2;
    return kNewest;
}

WORD CPrinterConfig::getResolution() {
    const std::optional<std::uint16_t> index = m->items().find(keys::kResolution);
    if (!index) {
        debugPrint(TEXT("PrinterConfig.getResolution is about to raise exception\n"));
        throw ConfigurationError{kResolutionMissing};
    }
    return resolutionOf(*index);
}

SHORT CPrinterConfig::getCutLine() { return m->items().number(keys::kCutLine); }

WString CPrinterConfig::getShoulderName() { return m->items().text(keys::kShoulderName); }

LONG CPrinterConfig::getShoulderIndex() {
    const bool byIndex = (getFileNames().jobApplicationFlags & kShoulderByIndex) != 0;
    return byIndex ? m->items().number(keys::kShoulderIndex) : 0;
}

WORD CPrinterConfig::getLayers() { return m->items().number(keys::kLayers); }

FLOAT CPrinterConfig::getZAdjustment() {
    return m->items().number(getUnit() == kInches ? keys::kZAdjustmentInches : keys::kZAdjustmentMillimetres);
}

bool CPrinterConfig::getRotaryEnabled() { return m->items().boolean(keys::kRotaryEnabled); }

FLOAT CPrinterConfig::getRotaryDiameter() { return m->items().number(keys::kRotaryDiameter); }

bool CPrinterConfig::getAutoPosition() { return m->items().boolean(keys::kAutoPosition); }

bool CPrinterConfig::getVectorJob() { return m->items().boolean(keys::kVectorJob); }

DWORD CPrinterConfig::getPpoThreshold() { return m->items().number(keys::kPpoThreshold); }

HalftoneBlock CPrinterConfig::getHalftone() {
    ConfigurationItems items = m->items();
    HalftoneBlock halftone = defaultConfiguration().halftone;
    halftone.enabled = static_cast<DWORD>(asBool(items.boolean(keys::kHalftoneEnabled)));
    halftone.algorithm = static_cast<DWORD>(items.number(keys::kHalftoneAlgorithm));
    halftone.patternSize = static_cast<DWORD>(items.number(keys::kHalftonePattern));
    halftone.adjustment.caContrast = static_cast<SHORT>(items.number(keys::kContrast) - keys::kAdjustmentOffset);
    halftone.adjustment.caBrightness = static_cast<SHORT>(items.number(keys::kBrightness) - keys::kAdjustmentOffset);
    halftone.adjustment.caRedGamma = static_cast<WORD>(items.number(keys::kRedGamma));
    halftone.adjustment.caGreenGamma = static_cast<WORD>(items.number(keys::kGreenGamma));
    halftone.adjustment.caBlueGamma = static_cast<WORD>(items.number(keys::kBlueGamma));
    return halftone;
}

WORD CPrinterConfig::getDriverViewMaximum() { return static_cast<WORD>(std::clamp(m->ini().driverView, 0, 0xFFFF)); }

WORD CPrinterConfig::getDriverView() {
    const std::optional<std::uint16_t> view = m->items().find(keys::kDriverView);
    return view ? *view : getDriverViewMaximum();
}

// The simplest view offers no choice: its jobs are always printed at once.
bool CPrinterConfig::getQuickPrint() { return getDriverView() == 0 || m->items().boolean(keys::kQuickPrint); }

JobIdentification CPrinterConfig::getJobIdentification() {
    ConfigurationItems items = m->items();
    JobIdentification job = defaultConfiguration().job;
    job.index = items.number(keys::kJobIndex);
    job.number = items.number(keys::kJobNumber);
    copyText(job.name, items.text(keys::kJobName));
    for (std::size_t i = 0; i < kFormatCount; ++i) {
        ConfigurationItems::Value list;
        if (items.read(items.element(keys::kJobFormat, static_cast<int>(i)), list)) copyText(job.formats[i], viewOf(list.data()));
    }
    return job;
}

FileNames CPrinterConfig::getFileNames() {
    FileNames files = defaultConfiguration().files;
    files.jobApplicationFlags = static_cast<DWORD>(m->ini().jobApplicationFlags);
    return files;
}

BezierBlock CPrinterConfig::getBezier() {
    ConfigurationItems items = m->items();
    BezierBlock bezier = defaultConfiguration().bezier;
    const std::int32_t mode = items.number(keys::kBezierSupport);
    if (mode < 1 || mode > kHighestBezierMode) return bezier;
    bezier.mode = static_cast<WORD>(mode);
    bezier.accuracy = static_cast<WORD>(items.number(keys::kBezierAccuracy));
    return bezier;
}

PrintingApplication CPrinterConfig::getPrintingApplication() {
    ConfigurationItems items = m->items();
    PrintingApplication application{};
    application.processId = static_cast<DWORD>(items.number(keys::kApplicationId));
    copyText(application.name, items.text(keys::kApplicationName));
    return application;
}

LoggingBlock CPrinterConfig::getLogging() {
    ConfigurationItems items = m->items();
    return {
        .enabled = static_cast<DWORD>(asBool(items.boolean(keys::kLoggingEnable))),
        .debugLevel = items.number(keys::kLoggingDebugLevel),
        .reserved = 0,
        .maxBytes = items.number(keys::kLoggingFileSize),
    };
}

WString CPrinterConfig::getVersion() { return m->items().text(keys::kVersion); }

RECT CPrinterConfig::getBoundingBoxOffset() {
    ConfigurationItems items = m->items();
    const auto& [left, top, right, bottom] = keys::kBoundingBoxOffsets;
    return {items.number(left), items.number(top), items.number(right), items.number(bottom)};
}

bool CPrinterConfig::getColourMatchingEnabled() { return m->items().boolean(keys::kColourMatchingEnabled); }

}  // namespace morvil
