// CommaLocale.h - a country whose numbers have a comma: while the object lives, the C library of this process prints and reads
// them so. What goes into files must not follow it.
#pragma once

#include <filesystem>
#include <string>

namespace morvil::test {

class CommaLocale {
  public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    // False on a machine that knows no such country; the case is then to be skipped.
    [[nodiscard]] bool isSet() const;
    // Where the C library stands now, as it tells it.
    [[nodiscard]] static std::string current();

  private:
    std::string m_before;
    std::filesystem::path m_folder;  // of a locale that was made for this object
};

}  // namespace morvil::test
