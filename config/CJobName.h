// CJobName.h - gives each print job its name: reduces the document's title by the rule for the printing application, replaces
// unusable characters and adds a four-digit number when jobs of that name lie in the spool or work folder.
// One object serves one document; it remembers the name that it gave, so that naming the same job again for its next page
// counts on. Printing thread only.
#pragma once

#include <array>

#include "config/CMvConfig.h"
#include "config/ConfigurationRecord.h"

namespace morvil {

// Room for a number behind the name is part of it.
inline constexpr std::size_t kLongestJobName = 50;

class CJobName {
  public:
    CJobName();

    // A null record is ignored.
    void setPrinterConfig(const ConfigurationRecord* record);
    // Works out spool, work and fallback folder. The first naming does it when nobody has before.
    void getDirectories();
    // The job name, at most kLongestJobName characters, for a document title; null stands for a missing title. A name that this object
    // gave last first loses the number that was added then. Valid until the next call.
    const WCHAR* getJobName(const WCHAR* documentName);
    // The base name of a numbered job name ("Plan 0003" gives "Plan").
    static WString withoutNumber(WStringView name);
    // The name as a file name of the same length: what no file name may hold becomes "_", and the last character of a name that
    // means a device ("NUL").
    static WString asFileName(WStringView name);

  private:
    struct Folders {
        WString spool;
        WString work;
        WString fallback;
    };

    // Reduced by the rule of the printing application, with unusable characters replaced.
    WString usableName(WStringView title) const;
    WString GetFileNameFromJobName(WStringView title) const;

    Folders m_folders;
    ConfigurationRecord m_config{};
    WString m_base;  // the name given last, before a number was added
    std::array<WCHAR, kPathCharacters> m_name{};
};

}  // namespace morvil
