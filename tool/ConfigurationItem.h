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

// Nothing when the text is no item path: at most 260 characters, 1 to 10 names of 1 to 19 characters (letters and digits of
// Latin-1, "_", ":" and "-"), an attribute that is such a name.
std::optional<ConfigurationItem> parseItem(const std::string& text);
// Also nothing when "=" is missing or the value cannot be stored.
std::optional<Setting> parseSetting(const std::string& text);
// Whether the file gives the value back as it was.
bool isStorable(const std::string& value);
std::string notStorableText();

// Loads the configuration once, so that a missing file is created with its defaults. False when there is none afterwards;
// `reason` names the file and what is wrong with it.
bool ensureConfiguration(std::string& reason);
// Stores a value; false when the store cannot be had or written.
bool store(const Setting& setting);
// For people: the file, the item and what may be the reason.
std::string notStoredText(const ConfigurationItem& item);

}  // namespace morvil::tool
