// config_command.cpp - reads and changes items of the printer configuration.
#include <nlohmann/json.hpp>
#include <ostream>

#include "config/CXml.h"
#include "tool/Commands.h"
#include "tool/ConfigurationItem.h"
#include "tool/Host.h"
#include "tool/NumberReading.h"

namespace morvil::tool {

namespace {

using Line = std::pair<std::string, std::string>;  // "ITEM@ATTRIBUTE", value

// Every attribute of the document, in its order.
void collect(const XmlNode& node, const std::string& path, std::vector<Line>& lines) {
    for (const XmlAttribute& attribute : node.attributes) {
        const std::string name = toUtf8(attribute.name);
        lines.emplace_back(name == "value" ? path : path + "@" + name, toUtf8(attribute.value.value_or(WString())));
    }
    for (const auto& child : node.children) {
        if (child.type == XmlType::Element && child.name) collect(child, path + "." + toUtf8(*child.name), lines);
    }
}

int dump(const ConfigOptions& options, const Streams& streams) {
    CXml xml;
    std::vector<Line> lines;
    if (const XmlNode* const top = xml.first(TEXT("PrinterDriver"))) collect(*top, "PrinterDriver", lines);
    if (options.json) {
        nlohmann::ordered_json items = nlohmann::ordered_json::object();
        for (const auto& [item, value] : lines) items[item] = value;
        streams.out << items.dump(2) << "\n";
        return kDone;
    }
    for (const auto& [item, value] : lines) streams.out << item << "=" << value << "\n";
    return kDone;
}

int get(const ConfigurationItem& item, const ConfigOptions& options, const Streams& streams) {
    CXml xml;
    WCHAR value[CXml::kValueCharacters]{};
    if (!xml.getItem(item.path.c_str(), value, item.attribute.c_str())) {
        streams.err << "morvil config: " << options.item << " is not set\n";
        return kWrong;
    }
    if (options.json) streams.out << nlohmann::json{{"item", options.item}, {"value", toUtf8(value)}}.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    else streams.out << toUtf8(value) << "\n";
    return kDone;
}

int set(const ConfigurationItem& item, const ConfigOptions& options, const Streams& streams) {
    if (!isStorable(options.value)) {
        streams.err << "morvil config: " << notStorableText() << "\n";
        return kUsage;
    }
    const Setting setting{item, fromUtf8(options.value)};
    if (!store(setting)) {
        streams.err << "morvil config: " << notStoredText(item) << "\n";
        return kSystemFailed;
    }
    if (const std::string different = differentReadingText(setting); !different.empty()) streams.err << "morvil config: " << different << "\n";
    return kDone;
}

int remove(const ConfigurationItem& item, const ConfigOptions& options, const Streams& streams) {
    if (options.item.find('@') != std::string::npos) {
        streams.err << "morvil config: " << options.item << ": only whole items can be removed, not single attributes\n";
        return kUsage;
    }
    CXml xml;
    if (xml.first(item.path.c_str()) == nullptr) {
        streams.err << "morvil config: " << options.item << " is not there\n";
        return kWrong;
    }
    if (xml.removeItem(item.path.c_str())) return kDone;
    streams.err << "morvil config: " << options.item << " could not be removed\n";
    return kSystemFailed;
}

}  // namespace

int runConfig(const ConfigOptions& options, const Streams& streams) {
    useHome(options.home);
    if (std::string reason; !ensureConfiguration(reason)) {
        streams.err << "morvil config: " << reason << "\n";
        return kSystemFailed;
    }
    if (options.action == ConfigOptions::Action::Dump) return dump(options, streams);
    const auto item = parseItem(options.item);
    if (!item) {
        streams.err << "morvil config: \"" << options.item << "\" is no item path (up to 10 names of 1 to 19 letters, digits or _ : -, joined by dots, then @ATTRIBUTE if it is not \"value\")\n";
        return kUsage;
    }
    switch (options.action) {
        case ConfigOptions::Action::Get: return get(*item, options, streams);
        case ConfigOptions::Action::Set: return set(*item, options, streams);
        default: return remove(*item, options, streams);
    }
}

}  // namespace morvil::tool
