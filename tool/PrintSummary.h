// PrintSummary.h - tells what a print came to: paths for scripts, a line a page for people, everything as JSON.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "config/ConfigurationRecord.h"
#include "engine/Document.h"
#include "engine/Metafile.h"
#include "tool/PageSetup.h"

namespace morvil::tool {

struct PrintResult {
    const engine::PrintReport& report;
    const std::vector<std::string>& jobs;  // host paths, in page order
    std::vector<std::string> warnings;
    const ConfigurationRecord& record;
    double seconds = 0.0;
};

void printPaths(const PrintResult& result, std::ostream& out);
void printSummary(const PrintResult& result, std::ostream& err);
void printJson(const PrintResult& result, std::ostream& out);

std::string doesNotFitText(const std::string& file, const engine::MetafileHeader& drawing, const PageSetup& setup);

}  // namespace morvil::tool
