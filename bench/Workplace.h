// Workplace.h - a data root of its own for a benchmark: a temporary folder that is drive C: while the object lives, with the
// configuration files of a first start. Logging is off.
#pragma once

#include <filesystem>

#include "config/ConfigurationRecord.h"
#include "platform/common/Text.h"

namespace morvil::bench {

class Workplace {
  public:
    Workplace();
    ~Workplace();
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    // As a document would load it.
    ConfigurationRecord configuration;
    // This host's path of a Windows path.
    [[nodiscard]] static std::filesystem::path hostPath(WStringView windowsPath);

  private:
    std::filesystem::path m_folder;
};

}  // namespace morvil::bench
