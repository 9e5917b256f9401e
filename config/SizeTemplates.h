// SizeTemplates.h - the named sizes of the engraving table, read from the template ini file that the job application shares.
// One reader lives as long as the process state that owns it; every query reloads the folder paths first, so that a file
// which appears later is found. Printing thread only.
#pragma once

#include <span>

#include "config/CMvConfig.h"

namespace morvil {

class CSizeTemplate {
  public:
    static constexpr std::size_t kTemplateNameCharacters = 100;

    // `iniName` names the file ("MvTemplate.ini"); it is looked for in the common files folder, then in the program's.
    explicit CSizeTemplate(const WCHAR* iniName = TEXT("MvTemplate.ini"));

    // Looks for the ini file in the folders of a path set. Null throws the short value 10001.
    void setPaths(const CMvConfig* folders);

    // False when the name, the height or the width is missing. Indices count from 1.
    bool readEntry(int index);
    // `name` holds kTemplateNameCharacters. On failure 100.0, 100.0 and "ERROR". A null output is left out.
    bool getTemplate(int index, float* width, float* height, WCHAR* name);
    // The first template that bears exactly this name, or whose sides each lie within 0.05 mm; 0 when nothing matches.
    int findByName(const WCHAR* name);
    int findBySize(float width, float height);
    int getCount();

    // The entry read last.
    [[nodiscard]] float width() const { return m_width; }
    [[nodiscard]] float height() const { return m_height; }
    [[nodiscard]] int mciId() const { return m_mciId; }  // -1 when missing
    [[nodiscard]] int index() const { return m_index; }

  private:
    void reloadPaths();
    bool read(int index);
    int count();
    [[nodiscard]] bool matches(float width, float height) const;
    // False for a missing value. `value` holds kTemplateNameCharacters.
    bool readValue(const WCHAR* keyFormat, int index, std::span<WCHAR> value) const;

    WString m_iniName;
    WString m_path;
    int m_index = 0;
    WString m_name;
    float m_width = 0.0F;
    float m_height = 0.0F;
    int m_mciId = -1;
};

}  // namespace morvil
