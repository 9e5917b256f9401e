#include "tool/NumberReading.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <tuple>

#include "config/CPrinterConfig.h"
#include "config/CPrinterConfigItems.h"

namespace morvil::tool {

namespace {

// All numbers of the key table but the Z adjustment, which has a key for each unit.
constexpr auto kNumbers = std::tuple_cat(
    std::tuple(keys::kWidth, keys::kHeight, keys::kTemplateIndex, keys::kProcessMode, keys::kResolution, keys::kCutLine, keys::kShoulderIndex, keys::kLayers),
    std::tuple(keys::kRotaryDiameter, keys::kPpoThreshold, keys::kHalftoneAlgorithm, keys::kHalftonePattern, keys::kContrast, keys::kBrightness, keys::kRedGamma),
    std::tuple(keys::kGreenGamma, keys::kBlueGamma, keys::kDriverView, keys::kJobIndex, keys::kJobNumber, keys::kBezierSupport, keys::kBezierAccuracy),
    std::tuple(keys::kApplicationId, keys::kLoggingDebugLevel, keys::kLoggingFileSize), keys::kBoundingBoxOffsets);

// The root of the configuration that the item belongs to, when the key is the item's; empty otherwise.
WString rootOf(const ConfigurationItem& item, const keys::KeyPath& key) {
    const WStringView path = item.path;
    const WStringView below = key.item().text();
    if (!key.isBelowRoot()) return path == below ? WString(keys::kActiveRoot) : WString();
    if (path.size() <= below.size() + 1 || !path.ends_with(below)) return {};
    const WStringView root = path.substr(0, path.size() - below.size() - 1);
    const bool isStored = root.starts_with(TEXT("PrinterDriver.ConfigurationStore."));
    return path[root.size()] == '.' && (root == keys::kActiveRoot || isStored) ? WString(root) : WString();
}

// The number that the text begins with, as people read it.
std::optional<double> numberIn(std::string text) {
    std::ranges::replace(text, ',', '.');
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    double number = 0.0;
    const auto [end, error] = std::from_chars(begin, text.data() + text.size(), number);
    if (end == begin || error != std::errc()) return std::nullopt;
    return number;
}

template <typename T>
std::string shortText(T number) {
    char text[32]{};
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

// The driver's own numbers of 32 bits keep seven digits of a fraction.
template <typename T>
bool isSame(T read, double meant) {
    constexpr double kPrecision = 1e-6;
    if constexpr (std::is_integral_v<T>) return static_cast<double>(read) == meant;
    else return std::fabs(static_cast<double>(read) - meant) <= kPrecision * std::fabs(meant);
}

template <typename T>
std::string textFor(const Setting& setting, const keys::NumberKey<T>& key) {
    const WString root = rootOf(setting.item, key.path);
    if (root.empty() || setting.item.attribute != key.attribute) return {};
    CXml xml;
    const ItemPath rootPath(root.c_str());
    const std::optional<T> read = ConfigurationItems(xml, rootPath).find(key);
    const std::string value = toUtf8(setting.value);
    const std::optional<double> meant = numberIn(value);
    if (!read || (meant && isSame(*read, *meant))) return {};
    const bool hasRange = key.low != std::numeric_limits<T>::lowest() || key.high != std::numeric_limits<T>::max();
    const std::string range = hasRange ? "; it takes " + shortText(key.low) + " to " + shortText(key.high) : std::string();
    const std::string attribute = setting.item.attribute == keys::kValue ? std::string() : "@" + toUtf8(setting.item.attribute);
    return toUtf8(setting.item.path) + attribute + ": the driver reads \"" + value + "\" as " + shortText(*read) + range;
}

}  // namespace

std::string differentReadingText(const Setting& setting) {
    std::string text;
    const auto tryKey = [&](const auto& key) { text = text.empty() ? textFor(setting, key) : text; };
    std::apply([&](const auto&... key) { (tryKey(key), ...); }, kNumbers);
    tryKey(CPrinterConfig().getUnit() == kInches ? keys::kZAdjustmentInches : keys::kZAdjustmentMillimetres);
    return text;
}

}  // namespace morvil::tool
