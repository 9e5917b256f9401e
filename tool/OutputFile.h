// OutputFile.h - writes a file that the command line named.
#pragma once

#include <span>
#include <string>

namespace morvil::tool {

// 0 or the error's number. `file` keeps its old content until the new one is complete; what is no file (a device, a pipe) is
// written to as it is, and never removed. The new content grows in `file`.part beside it, which an earlier one makes room for.
int writeOutputFile(const std::string& file, std::span<const char> bytes);

}  // namespace morvil::tool
