// DeviceText.h - what a driver tells of its device when an instance is enabled, for people: the members that are not zero, by
// their names, a line for each record.
#pragma once

#include <string>
#include <vector>

#include "trace/Recording.h"

namespace morvil::trace {

std::vector<std::string> toLines(const GDIINFO& caps);
// `palette` is what the line says of hpalDefault.
std::string toText(const DEVINFO& info, const std::string& palette);

}  // namespace morvil::trace
