// ConfigurationItem.h - an item of the configuration as the command line names it: ITEM, ITEM@ATTRIBUTE, with "=VALUE" behind
// it where one is stored.
#pragma once

#include <optional>
#include <string>

#include "platform/common/Text.h"

namespace morvil::tool {

struct ConfigurationItem {
    WString path;
    WString attribute;  // "value" unless named
};

struct Setting {
    ConfigurationItem item;
    WString value;
};

// Nothing when the text is no item path: at most 260 characters, 1 to 10 parts of 1 to 19 characters, an attribute of 1 to 19.
std::optional<ConfigurationItem> parseItem(const std::string& text);
// Also nothing when "=" is missing or the value holds what the file cannot: "<", "&" or a quotation mark.
std::optional<Setting> parseSetting(const std::string& text);
bool isStorable(const std::string& value);

// Loads the configuration once, so that a missing file is created with its defaults. False when there is none afterwards.
bool ensureConfiguration();
// Stores a value; false when the store cannot be had or written.
bool store(const Setting& setting);

}  // namespace morvil::tool
