// faults.h - plays a recording into the driver file with one thing going wrong each time.
#pragma once

#include <filesystem>
#include <string>

#include "trace/Recording.h"

namespace morvil::host {

// Ends the document between any two calls; has the engine answer that it was aborted, from each question on; refuses each
// engine service once. Prints how often to standard output: "cut N, aborted N, refused N". Empty when the driver gave back every
// surface, palette and handle each time and prints as ever behind it; else what first went wrong.
std::string faults(const std::filesystem::path& driverFile, const trace::Recording& recording);

}  // namespace morvil::host
