// The setters of single values and small blocks. A value out of range is refused before anything is written; one that lies in
// a block keeps the whole block from being written.
#include "config/CPrinterConfigMembers.h"
#include "config/CPrinterConfigTables.h"

namespace morvil {

namespace {

using Items = ConfigurationItems;

template <typename T, typename V>
bool fits(const keys::NumberKey<T>& key, V value) {
    return std::in_range<T>(value) && static_cast<T>(value) >= key.low && static_cast<T>(value) <= key.high;
}

bool fits(const keys::NumberKey<float>& key, float value) { return value >= key.low && value <= key.high; }

// Only the form of the number changes here; the range was checked.
template <typename T, typename V>
bool put(Items& items, const keys::NumberKey<T>& key, V value) {
    return items.put(key, static_cast<T>(value));
}

}  // namespace

bool CPrinterConfig::setSizeTemplate(const SizeTemplate& size) {
    if (!fits(keys::kWidth, size.width) || !fits(keys::kHeight, size.height) || !Items::storable(viewOf(size.name))) return false;
    return m->write([&](Items& items) {
        return items.put(keys::kWidth, size.width) && items.put(keys::kHeight, size.height) &&
               put(items, keys::kTemplateIndex, size.index) && items.put(keys::kTakeFromApplication, size.takeFromApplication != 0) &&
               items.put(keys::kTemplateName, items.uncut(items.element(keys::kTemplateName.path), size.name));
    });
}

bool CPrinterConfig::setMaterialGroup(const WCHAR* group) {
    return m->write([&](Items& items) { return items.put(keys::kMaterialGroup, viewOf(group)); });
}

bool CPrinterConfig::setMaterialName(const WCHAR* name) {
    return m->write([&](Items& items) { return items.put(keys::kMaterialName, viewOf(name)); });
}

bool CPrinterConfig::setProcessMode(WORD processMode) {
    if (!processKindOf(processMode)) return false;
    return m->write([&](Items& items) { return items.put(keys::kProcessMode, processMode); });
}

bool CPrinterConfig::setResolution(WORD index) {
    if (!fits(keys::kResolution, index)) return false;
    return m->write([&](Items& items) { return items.put(keys::kResolution, index); });
}

bool CPrinterConfig::setCutLine(SHORT index) {
    if (!fits(keys::kCutLine, index)) return false;
    return m->write([&](Items& items) { return items.put(keys::kCutLine, index); });
}

bool CPrinterConfig::setShoulderName(const WCHAR* name) {
    return m->write([&](Items& items) { return items.put(keys::kShoulderName, viewOf(name)); });
}

bool CPrinterConfig::removeShoulderName() {
    return m->write([&](Items& items) { return items.remove(keys::kShoulderName.path); });
}

bool CPrinterConfig::setShoulderIndex(LONG index) {
    if (!fits(keys::kShoulderIndex, index)) return false;
    return m->write([&](Items& items) { return put(items, keys::kShoulderIndex, index); });
}

bool CPrinterConfig::setLayers(WORD layers) {
    if (!fits(keys::kLayers, layers)) return false;
    return m->write([&](Items& items) { return items.put(keys::kLayers, layers); });
}

bool CPrinterConfig::setZAdjustment(FLOAT adjustment) {
    const auto& key = getUnit() == kInches ? keys::kZAdjustmentInches : keys::kZAdjustmentMillimetres;
    if (!fits(key, adjustment)) return false;
    return m->write([&](Items& items) { return items.put(key, adjustment); });
}

bool CPrinterConfig::setRotaryEnabled(bool enabled) {
    return m->write([&](Items& items) { return items.put(keys::kRotaryEnabled, enabled); });
}

bool CPrinterConfig::setRotaryDiameter(FLOAT diameter) {
    if (!fits(keys::kRotaryDiameter, diameter)) return false;
    return m->write([&](Items& items) { return items.put(keys::kRotaryDiameter, diameter); });
}

bool CPrinterConfig::setAutoPosition(bool on) {
    return m->write([&](Items& items) { return items.put(keys::kAutoPosition, on); });
}

bool CPrinterConfig::setVectorJob(bool on) {
    return m->write([&](Items& items) { return items.put(keys::kVectorJob, on); });
}

bool CPrinterConfig::setHalftone(const HalftoneBlock& halftone) {
    const COLORADJUSTMENT& adjustment = halftone.adjustment;
    const std::int32_t contrast = adjustment.caContrast + keys::kAdjustmentOffset;
    const std::int32_t brightness = adjustment.caBrightness + keys::kAdjustmentOffset;
    if (!fits(keys::kHalftoneAlgorithm, halftone.algorithm) || !fits(keys::kHalftonePattern, halftone.patternSize)) return false;
    if (!fits(keys::kContrast, contrast) || !fits(keys::kBrightness, brightness)) return false;
    return m->write([&](Items& items) {
        return items.put(keys::kHalftoneEnabled, halftone.enabled != 0) && put(items, keys::kHalftoneAlgorithm, halftone.algorithm) &&
               put(items, keys::kHalftonePattern, halftone.patternSize) && items.put(keys::kContrast, contrast) &&
               items.put(keys::kBrightness, brightness) && put(items, keys::kRedGamma, adjustment.caRedGamma) &&
               put(items, keys::kGreenGamma, adjustment.caGreenGamma) && put(items, keys::kBlueGamma, adjustment.caBlueGamma);
    });
}

bool CPrinterConfig::setDriverView(WORD view) {
    if (view > getDriverViewMaximum()) return false;
    return m->write([&](Items& items) { return items.put(keys::kDriverView, view); });
}

bool CPrinterConfig::setQuickPrint(bool on) {
    return m->write([&](Items& items) { return items.put(keys::kQuickPrint, on); });
}

bool CPrinterConfig::setJobIdentification(const JobIdentification& job) {
    const WStringView name = viewOf(std::span<const WCHAR>(job.name));
    bool storable = Items::storable(name);
    for (const auto& list : job.formats) storable = storable && Items::storable(viewOf(std::span<const WCHAR>(list)));
    if (!storable) return false;
    return m->write([&](Items& items) {
        if (!put(items, keys::kJobIndex, job.index) || !put(items, keys::kJobNumber, job.number)) return false;
        if (!items.put(keys::kJobName, name)) return false;
        for (std::size_t i = 0; i < kFormatCount; ++i) {
            const int n = static_cast<int>(i);
            if (!items.put(items.pathOf(keys::kJobFormat, n), items.uncut(items.element(keys::kJobFormat, n), job.formats[i])))
                return false;
        }
        return true;
    });
}

bool CPrinterConfig::setBezier(const BezierBlock& bezier) {
    if (bezier.mode > kHighestBezierMode) return false;
    return m->write(
        [&](Items& items) { return put(items, keys::kBezierSupport, bezier.mode) && put(items, keys::kBezierAccuracy, bezier.accuracy); });
}

bool CPrinterConfig::setPrintingApplication(const PrintingApplication& application) {
    if (!fits(keys::kApplicationId, application.processId) || !Items::storable(viewOf(application.name))) return false;
    return m->write([&](Items& items) {
        return put(items, keys::kApplicationId, application.processId) && items.put(keys::kApplicationName, viewOf(application.name));
    });
}

bool CPrinterConfig::setLogging(const LoggingBlock& logging) {
    return m->write([&](Items& items) {
        return items.put(keys::kLoggingEnable, logging.enabled != 0) && items.put(keys::kLoggingDebugLevel, logging.debugLevel) &&
               put(items, keys::kLoggingFileSize, logging.maxBytes);
    });
}

bool CPrinterConfig::setVersion(const WCHAR* version) {
    return m->write([&](Items& items) { return items.put(keys::kVersion, viewOf(version)); });
}

bool CPrinterConfig::setBoundingBoxOffset(const RECT& offset) {
    return m->write([&](Items& items) {
        const auto& [left, top, right, bottom] = keys::kBoundingBoxOffsets;
        return put(items, left, offset.left) && put(items, top, offset.top) && put(items, right, offset.right) &&
               put(items, bottom, offset.bottom);
    });
}

bool CPrinterConfig::setColourMatchingEnabled(bool enabled) {
    return m->write([&](Items& items) { return items.put(keys::kColourMatchingEnabled, enabled); });
}

}  // namespace morvil
