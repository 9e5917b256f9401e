// Printer.h - installs a printer with the driver file in this machine's spooler, unless it is there, so that the driver finds
// what it asks the spooler for: its own file, the printer's names, forms.
#pragma once

#include <filesystem>
#include <string>

#include "platform/platform.h"

namespace morvil::host {

// Empty on success, else which call failed.
std::string installPrinter(const std::wstring& name, const std::filesystem::path& driverFile);

}  // namespace morvil::host
