// IniFile.h - one ini file as one operation sees it; see platform/posix/IniFile.h. The system reads the file for each question.
// Borrows the path.
#pragma once

#include <span>

#include "platform/common/FileStream.h"

namespace morvil {

class IniFile {
  public:
    explicit IniFile(const WCHAR* path) : m_path(path) {}
    [[nodiscard]] const WCHAR* path() const { return m_path; }

    [[nodiscard]] bool exists() const { return fileExists(m_path); }
    DWORD text(const WCHAR* section, const WCHAR* key, const WCHAR* missing, std::span<WCHAR> out) const {
        return GetPrivateProfileStringW(section, key, missing, out.data(), static_cast<DWORD>(out.size()), m_path);
    }
    [[nodiscard]] UINT number(const WCHAR* section, const WCHAR* key, INT missing) const {
        return GetPrivateProfileIntW(section, key, missing, m_path);
    }

  private:
    const WCHAR* m_path;
};

}  // namespace morvil
