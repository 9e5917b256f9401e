// Printer.h - installs a printer with the driver file in this machine's spooler, so that the driver finds what it asks the
// spooler for: its own file, the printer's names, forms.
#pragma once

#include <filesystem>
#include <string>

#include "platform/platform.h"

namespace morvil::host {

// Both: empty on success, else which call failed.
// Puts the file where the spooler keeps drivers, in place of what an earlier run has left there.
std::string installDriverFile(const std::filesystem::path& driverFile);
// Does nothing when the printer is there.
std::string installPrinter(const std::wstring& name, const std::filesystem::path& driverFile);

}  // namespace morvil::host
