// CPrinterConfig.h - turns the items of PrinterDriver.xml into the typed configuration record and writes values back; the one
// place where every key, its type, default and range stands. The store is opened at the first use and read once per load.
// Raises only platform-like exceptions (ConfigurationError) where a caller must know; getConfig catches its own.
#pragma once

#include <memory>

#include "config/CMvConfig.h"
#include "config/ConfigurationRecord.h"

namespace morvil {

// Codes of the only exceptions of the system.
enum ConfigurationErrorCode : DWORD { kResolutionMissing = 10000, kColourTableWithoutConfiguration = 10001, kConfigurationFileMissing = 10002 };
struct ConfigurationError {
    DWORD code;
};

class CPrinterConfig {
  public:
    CPrinterConfig();
    ~CPrinterConfig();
    CPrinterConfig(const CPrinterConfig&) = delete;
    CPrinterConfig& operator=(const CPrinterConfig&) = delete;

    // Fills the record for the configuration `name` (empty: the active one). False when the file was missing (it is then
    // created, and the record holds the complete defaults), the name is refused, or the store cannot be had.
    bool getConfig(const WCHAR* name, ConfigurationRecord& record);
    // Writes every item of the record.
    bool setConfig(const WCHAR* name, const ConfigurationRecord& record);
    // Whether a stored configuration of that name exists.
    bool configurationExists(const WCHAR* name);
    bool bDumpConfig(const ConfigurationRecord& record);
    bool pathValid(const WCHAR* path);

    static ConfigurationRecord defaultConfiguration();

  private:
    struct Members;
    std::unique_ptr<Members> m;
};

// Name of a process mode, resolution of an index, name of a cut line: the tables of the model.
const WCHAR* processModeName(WORD processMode);

// Width or height in pixels: ceiling(mm / 25.4 * dpi) in single precision.
WORD pixelsOf(FLOAT millimetres, WORD dpi);

}  // namespace morvil
