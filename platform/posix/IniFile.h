// IniFile.h - one ini file as one operation sees it. Promises: the file is looked at once, at the first question, and every
// answer comes from that state of it; each object looks anew, so what somebody wrote meanwhile is seen by the next. Values are
// those of GetPrivateProfileStringW and GetPrivateProfileIntW, which are each an object for a single question.
// Borrows the path. One thread at a time; short-lived.
#pragma once

#include <span>

#include "platform/common/Text.h"
#include "platform/posix/ProfileCache.h"

namespace morvil {

class IniFile {
  public:
    explicit IniFile(const WCHAR* path) : m_path(path) {}
    [[nodiscard]] const WCHAR* path() const { return m_path; }

    // Whether there is a file, also one that cannot be read.
    [[nodiscard]] bool exists();
    // The value, else `missing`, as far as it fits, with its terminator; the count without that. A null section asks for the
    // names of all sections, a null key for those of the section's keys.
    DWORD text(const WCHAR* section, const WCHAR* key, const WCHAR* missing, std::span<WCHAR> out);
    [[nodiscard]] UINT number(const WCHAR* section, const WCHAR* key, INT missing);

  private:
    const ProfileText* contents();

    const WCHAR* m_path;
    bool m_looked = false;
    ProfileCache::Text m_contents;  // null: the file cannot be read
};

// Reads a whole ini file of this host, and what the system says of it. False with the last error set.
bool readProfileBytes(const char* hostPath, std::string& bytes, struct stat& status);

}  // namespace morvil
