// check_command.cpp - is this a well-formed job file?
#include <nlohmann/json.hpp>
#include <ostream>
#include <system_error>

#include "tool/Commands.h"
#include "tool/JobFile.h"
#include "tool/MappedFile.h"

namespace morvil::tool {

namespace {

nlohmann::json toJson(const std::string& file, const JobFile& job) {
    nlohmann::json violations = nlohmann::json::array();
    for (const Violation& v : job.violations) violations.push_back({{"position", v.position}, {"group", v.group}, {"rule", v.rule}, {"found", v.found}});
    return {{"file", file}, {"valid", job.violationCount == 0}, {"violations", violations}, {"violationCount", job.violationCount}};
}

void print(const std::string& file, const JobFile& job, std::ostream& out) {
    if (job.violationCount == 0) {
        out << file << ": well-formed\n";
        return;
    }
    for (const Violation& v : job.violations) out << file << ": byte " << v.position << ", " << v.group << ": expected " << v.rule << "; found \"" << v.found << "\"\n";
    if (job.violationCount > job.violations.size()) out << file << ": and " << job.violationCount - job.violations.size() << " more\n";
}

}  // namespace

int runCheck(const CheckOptions& options, const Streams& streams) {
    nlohmann::json report = nlohmann::json::array();
    int status = kDone;
    for (const std::string& file : options.files) {
        try {
            const MappedFile mapped(file);
            const JobFile job = readJobFile(mapped.bytes());
            if (job.violationCount > 0 && status == kDone) status = kWrong;
            if (options.json) report.push_back(toJson(file, job));
            else if (!options.quiet) print(file, job, streams.out);
        } catch (const std::system_error& error) {
            streams.err << "morvil check: " << error.what() << "\n";
            status = kUsage;
        }
    }
    if (options.json) streams.out << report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    return status;
}

}  // namespace morvil::tool
