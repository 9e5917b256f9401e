// CMvConfig.h - works out, once for each object, every folder and file that the driver and its partner programs share, and
// creates what is missing. A path that cannot be built stays empty; failures are only logged. Building one announces the log
// folder and the base folder to the log. One thread at a time.
#pragma once

#include <array>
#include <optional>

#include "config/ConfigurationRecord.h"
#include "platform/common/Text.h"

namespace morvil {

class CMvConfig {
  public:
    using Path = std::array<WCHAR, kPathCharacters>;

    CMvConfig();

    // Folders carry no trailing backslash.
    [[nodiscard]] const WCHAR* dataRoot() const { return m_dataRoot.data(); }
    [[nodiscard]] const WCHAR* commonFiles() const { return m_commonFiles.data(); }
    [[nodiscard]] const WCHAR* mainIni() const { return m_mainIni.data(); }
    [[nodiscard]] const WCHAR* debugIni() const { return m_debugIni.data(); }
    [[nodiscard]] const WCHAR* programCommonFiles() const { return m_programCommonFiles.data(); }
    [[nodiscard]] const WCHAR* jobApplicationFolder() const { return m_jobApplicationFolder.data(); }
    [[nodiscard]] const WCHAR* jobApplicationIni() const { return m_jobApplicationIni.data(); }
    [[nodiscard]] const WCHAR* applicationPath() const { return m_applicationPath.data(); }
    [[nodiscard]] const WCHAR* spoolFolder() const { return m_spoolFolder.data(); }
    [[nodiscard]] const WCHAR* workFolder() const { return m_workFolder.data(); }
    [[nodiscard]] const WCHAR* driverDataFolder() const { return m_driverDataFolder.data(); }
    [[nodiscard]] const WCHAR* driverVersionFolder() const { return m_driverVersionFolder.data(); }
    [[nodiscard]] const WCHAR* driverProgramFolder() const { return m_driverProgramFolder.data(); }
    [[nodiscard]] const WCHAR* configurationFile() const { return m_configurationFile.data(); }
    [[nodiscard]] const WCHAR* coloursGaspen() const { return colourLists().gaspen.data(); }
    [[nodiscard]] const WCHAR* coloursCustomer() const { return colourLists().customer.data(); }
    [[nodiscard]] const WCHAR* diagnosticsFile() const { return m_diagnosticsFile.data(); }
    // Used when the spool folder cannot be written: driver data folder + "\Spool.Default", made when asked for.
    [[nodiscard]] WString fallbackSpoolFolder() const;

  private:
    struct ColourLists {
        Path gaspen;
        Path customer;
    };

    void buildPathCommon();
    // `version`: the acting one of the program whose folders these are.
    void buildPathJobApplication(const Path& version);
    void buildPathDriver(const Path& version);
    // Where they lie is looked up at the first question, for a load of the configuration has none.
    const ColourLists& colourLists() const;

    Path m_dataRoot{};
    Path m_commonFiles{};
    Path m_mainIni{};
    Path m_debugIni{};
    Path m_programs{};
    Path m_programCommonFiles{};
    Path m_jobApplicationFolder{};
    Path m_jobApplicationIni{};
    Path m_applicationPath{};
    Path m_spoolFolder{};
    Path m_workFolder{};
    Path m_driverDataFolder{};
    Path m_driverVersionFolder{};
    Path m_driverProgramFolder{};
    Path m_configurationFile{};
    Path m_diagnosticsFile{};
    mutable std::optional<ColourLists> m_colourLists;
    bool m_hasPrograms = false;  // the driver program folder was there
};

// The data root inside the common application-data folder; empty when that is not known or too long, which is logged.
CMvConfig::Path dataRootIn(const CMvConfig::Path& commonFolder);

}  // namespace morvil
