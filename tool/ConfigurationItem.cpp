#include "tool/ConfigurationItem.h"

#include <algorithm>

#include "config/CPrinterConfig.h"
#include "config/CXml.h"

namespace morvil::tool {

namespace {

constexpr std::size_t kMaxPath = 260;
constexpr std::size_t kMaxParts = 10;
constexpr std::size_t kMaxName = 19;

bool isPath(const WString& path) {
    if (path.empty() || path.size() > kMaxPath) return false;
    std::size_t parts = 0;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find(TEXT('.'), start), path.size());
        if (end == start || end - start > kMaxName || ++parts > kMaxParts) return false;
        start = end + 1;
    }
    return true;
}

}  // namespace

std::optional<ConfigurationItem> parseItem(const std::string& text) {
    const std::size_t at = text.find('@');
    ConfigurationItem item{fromUtf8(text.substr(0, at)), at == std::string::npos ? WString(TEXT("value")) : fromUtf8(text.substr(at + 1))};
    if (!isPath(item.path) || item.attribute.empty() || item.attribute.size() > kMaxName) return std::nullopt;
    return item;
}

bool isStorable(const std::string& value) { return value.find_first_of("<&\"") == std::string::npos && fromUtf8(value).size() < CXml::kValueCharacters; }

std::optional<Setting> parseSetting(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || !isStorable(text.substr(equals + 1))) return std::nullopt;
    const auto item = parseItem(text.substr(0, equals));
    if (!item) return std::nullopt;
    return Setting{*item, fromUtf8(text.substr(equals + 1))};
}

bool ensureConfiguration() {
    ConfigurationRecord record{};
    if (CPrinterConfig().getConfig(TEXT(""), record)) return true;
    return CPrinterConfig().getConfig(TEXT(""), record);  // the first load of all creates the file and reports failure
}

bool store(const Setting& setting) { return CXml().putItem(setting.item.path.c_str(), setting.value.c_str(), setting.item.attribute.c_str()); }

}  // namespace morvil::tool
