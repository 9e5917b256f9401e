// OutputFile.h - writes a file that the command line named.
#pragma once

#include <span>
#include <string>

namespace morvil::tool {

// 0 or the error's number. `file` keeps its old content until the new one is complete; what is no file (a device, a pipe) is
// written to as it is. Nothing that was there before is ever removed.
int writeOutputFile(const std::string& file, std::span<const char> bytes);

}  // namespace morvil::tool
