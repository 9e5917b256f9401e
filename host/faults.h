// faults.h - plays a recording into the driver file with one thing going wrong each time.
#pragma once

#include <filesystem>
#include <string>

#include "trace/Recording.h"

namespace morvil::host {

// Ends the document between any two calls; has the engine answer that it was aborted, from each question on; refuses each
// engine service once; all of it twice. Prints how many of each to standard output: "cut N, aborted N, refused N". Empty when the
// driver gave back every surface, palette and lock each time, has no more handles open behind the second round than behind the
// first, and prints as ever; else what first went wrong.
std::string faults(const std::filesystem::path& driverFile, const trace::Recording& recording);

}  // namespace morvil::host
