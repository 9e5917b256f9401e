#include "support/CommaLocale.h"

#include <clocale>
#include <cstdlib>
#include <random>

#include "support/Environment.h"

namespace morvil::test {

namespace {

// As Linux and Windows call the country; the last is what is made below.
bool setGerman() {
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "German_Germany.1252", "de-DE"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) return true;
    }
    return false;
}

}  // namespace

// Most test machines have no locale but "C"; where the sources of the others lie, one can be made in a second.
CommaLocale::CommaLocale() : m_before(current()) {
    if (setGerman()) return;
    std::error_code error;
    m_folder = std::filesystem::temp_directory_path(error) / ("morvil-locale-" + std::to_string(std::random_device{}()));
    if (!std::filesystem::create_directory(m_folder, error)) return;
    const std::string target = (m_folder / "de_DE.UTF-8").string();
    const std::string make = "localedef -c -i de_DE -f UTF-8 \"" + target + "\" >\"" + target + ".log\" 2>&1";
    if (std::system(make.c_str()) != 0) return;
    setEnvironment("LOCPATH", m_folder.string().c_str());
    setGerman();
}

CommaLocale::~CommaLocale() {
    std::setlocale(LC_ALL, m_before.c_str());
    if (m_folder.empty()) return;
    clearEnvironment("LOCPATH");
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

bool CommaLocale::isSet() const { return std::localeconv()->decimal_point[0] == ','; }

std::string CommaLocale::current() { return std::setlocale(LC_ALL, nullptr); }

}  // namespace morvil::test
