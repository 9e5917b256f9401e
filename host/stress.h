// stress.h - one process's share of a fight for configuration and spool folder.
#pragma once

#include <filesystem>
#include <string>

#include "trace/Recording.h"

namespace morvil::host {

struct StressLoad {
    std::wstring item;  // of the configuration, stored over and over with a growing number
    int stores = 0;
    int jobs = 0;  // spread among the stores
};

// Prints what it did to standard output: "stored N, printed N". Empty, or what failed first; a store that could not be had
// because the lock's holder died is counted, not a failure.
std::string stress(const std::filesystem::path& driverFile, const trace::Recording& recording, const StressLoad& load);

}  // namespace morvil::host
