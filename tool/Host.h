// Host.h - sets up the platform's substitute for one run of the tool: data root, printing application, spool folder; and
// translates between the host's paths and the driver's.
#pragma once

#include <string>
#include <vector>

#include "platform/common/Text.h"

namespace morvil::tool {

// The one printer of this host.
inline constexpr const WCHAR* kPrinterName = TEXT("Morvil");

// Uses `home` as drive C: instead of $MORVIL_HOME; nothing when empty.
void useHome(const std::string& home);

// The process prints as this executable ("winword.exe"): naming rules and the job's comment line go by it.
void useApplication(const std::string& name);

// Job files of this run go to `folder` (a host path), whatever the job application's ini file says. That file is not changed.
void useSpoolFolder(const std::string& folder);

// "Z:\..." of a host path, made absolute.
WString windowsPath(const std::string& hostPath);
std::string hostPath(WStringView windowsPath);

// Collects the finished job files (".tsf") that this process makes while the object lives, in their order, as host paths.
class FinishedJobs {
  public:
    FinishedJobs();
    ~FinishedJobs();
    FinishedJobs(const FinishedJobs&) = delete;
    FinishedJobs& operator=(const FinishedJobs&) = delete;
    [[nodiscard]] const std::vector<std::string>& files() const { return m_files; }

  private:
    std::vector<std::string> m_files;
};

}  // namespace morvil::tool
