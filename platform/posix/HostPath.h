// HostPath.h - a Windows path as the path of a file of this host.
// Promises: drive C: is the data root, drive Z: the root of the file system; "\" and "/" both separate; names are UTF-8 on
// this host; "." and ".." are worked out from the text and never leave the drive; a path without a drive that begins with a
// separator lies on C:, any other path without a drive lies in the current folder; "\\?\" in front is dropped; on C: blanks
// and points at the end of a name are dropped, as the platform does.
// Refuses: other drives (ERROR_PATH_NOT_FOUND), network paths (ERROR_BAD_NETPATH), on C: the characters that no name may hold
// (ERROR_INVALID_NAME), more than 4095 bytes (ERROR_FILENAME_EXCED_RANGE). Names on this host are told apart by case, unlike
// on Windows: a path must be spelt as it was made.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/common/Text.h"

namespace morvil {

class HostPath {
  public:
    HostPath() { m_bytes[0] = '\0'; }
    // False with the last error set when the path names nothing here.
    bool assign(const WCHAR* path);
    bool assign(WStringView path);
    [[nodiscard]] const char* c_str() const { return m_bytes.data(); }
    [[nodiscard]] std::string_view view() const { return {m_bytes.data(), m_size}; }

  private:
    bool put(char byte);
    bool putBytes(std::string_view bytes);
    bool putName(WStringView name);
    bool appendName(WStringView name, bool checked);
    void dropName();

    std::array<char, 4096> m_bytes;  // filled up to m_size, then a zero; not cleared, it is made for every call
    std::size_t m_size = 0;
    std::size_t m_base = 0;  // length of the drive's folder: ".." ends there
};

// The Windows path of an absolute path of this host: on C: inside the data root, else on Z:.
WString windowsPathOf(std::string_view hostPath);

// Makes a folder and those above it. False with the last error set.
bool makeFolders(const std::string& hostPath);

}  // namespace morvil
