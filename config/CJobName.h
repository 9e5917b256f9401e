// CJobName.h - gives each print job its name: reduces the document's title by the rule for the printing application, replaces
// unusable characters and adds a four-digit number when jobs of that name lie in the spool or work folder.
#pragma once

#include <array>

#include "config/CMvConfig.h"
#include "config/ConfigurationRecord.h"

namespace morvil {

class CJobName {
  public:
    CJobName();

    // A null record is ignored.
    void setPrinterConfig(const ConfigurationRecord* record);
    // Works out spool, work and fallback folder.
    void getDirectories();
    // The job name for a document title; null stands for a missing title. Valid until the next call.
    const WCHAR* getJobName(const WCHAR* documentName);
    // The base name of a numbered job name ("Plan 0003" gives "Plan").
    static WString withoutNumber(WStringView name);
    // The name as a file name: what no file name may hold becomes "_".
    static WString asFileName(WStringView name);

  private:
    struct Folders {
        WString spool;
        WString work;
        WString fallback;
    };
    Folders m_folders;
    ConfigurationRecord m_config{};
    std::array<WCHAR, kPathCharacters> m_reduced{};
    std::array<WCHAR, kPathCharacters> m_name{};
};

}  // namespace morvil
