// TempHome.h - a data root of its own for one test: a fresh temporary folder (in memory where the machine offers that) set as
// drive C:, with the host state reset before and after. Removed with everything in it when the object goes.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/Text.h"

namespace morvil::test {

class TempHome {
  public:
    TempHome();
    ~TempHome();
    TempHome(const TempHome&) = delete;
    TempHome& operator=(const TempHome&) = delete;

    // The folder of this host that is drive C:.
    [[nodiscard]] const std::filesystem::path& folder() const { return m_folder; }
    // What a Windows path stands for on this host.
    [[nodiscard]] static std::filesystem::path hostPath(WStringView windowsPath);
    // Every file that was put there.
    [[nodiscard]] std::vector<std::filesystem::path> files() const;

  private:
    std::filesystem::path m_folder;
};

// A file's bytes, by host path; a missing file fails the test and reads as empty.
std::string readHostBytes(const std::filesystem::path& file);
// Writes a file, making the folders above it.
void writeHostBytes(const std::filesystem::path& file, std::string_view bytes);

// The same with Windows paths.
std::string readBytes(WStringView windowsPath);
void writeBytes(WStringView windowsPath, std::string_view bytes);
void makeFolder(WStringView windowsPath);
bool exists(WStringView windowsPath);

}  // namespace morvil::test
