// Printer.h - installs a printer with the driver file in this machine's spooler, so that the driver finds what it asks the
// spooler for: its own file, the printer's names, forms.
#pragma once

#include <filesystem>
#include <string>

#include "platform/platform.h"

namespace morvil::host {

// Both: empty on success, else which call failed.
// Installs the file as the driver of that name, in place of what an earlier run has left in the spooler's folders.
std::string installDriver(const std::wstring& name, const std::filesystem::path& driverFile);
// Adds a queue of the driver's name, with the driver. Does nothing when the queue is there.
std::string installPrinter(const std::wstring& name, const std::filesystem::path& driverFile);

}  // namespace morvil::host
