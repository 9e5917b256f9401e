// NumberReading.h - how the driver reads a number that a setting has stored: outside of the item's range another one takes its
// place, silently, and the tool has to tell.
#pragma once

#include "tool/ConfigurationItem.h"

namespace morvil::tool {

// A sentence for people when the driver reads a stored setting as another number than it says; empty when it takes it as it
// stands, and for items that are no numbers.
std::string differentReadingText(const Setting& setting);

}  // namespace morvil::tool
