// SizeTemplates.h - the named sizes of the engraving table, read from the template ini file that the job application shares.
// One reader lives as long as the process state that owns it; every query reloads the folder paths first.
#pragma once

#include <memory>

#include "config/CMvConfig.h"

namespace morvil {

class CSizeTemplate {
  public:
    // `iniName` names the file ("MvTemplate.ini"); it is looked for in the common files folder, then in the program's.
    explicit CSizeTemplate(const WCHAR* iniName = TEXT("MvTemplate.ini"));

    // False when the name, the height or the width is missing. Indices count from 1.
    bool readEntry(int index);
    // `name` holds 100 characters. On failure 100.0, 100.0 and "ERROR".
    bool getTemplate(int index, float* width, float* height, WCHAR* name);
    // 0 when nothing matches.
    int findByName(const WCHAR* name);
    int findBySize(float width, float height);
    int getCount();

    [[nodiscard]] float width() const { return m_width; }
    [[nodiscard]] float height() const { return m_height; }
    [[nodiscard]] int mciId() const { return m_mciId; }  // -1 when missing
    [[nodiscard]] int index() const { return m_index; }

  private:
    void reloadPaths();

    WString m_iniName;
    WString m_path;
    int m_index = 0;
    WString m_name;
    float m_width = 0.0F;
    float m_height = 0.0F;
    int m_mciId = -1;
};

}  // namespace morvil
