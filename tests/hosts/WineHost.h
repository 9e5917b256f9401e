// WineHost.h - the Windows host with the shipped driver file under Wine, on the data root of its prefix.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace morvil::hosts {

namespace fs = std::filesystem;

inline std::string inQuotes(const fs::path& path) { return "'" + path.string() + "'"; }

inline std::string read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class WineHost : public testing::Test {
  protected:
    void SetUp() override {
        if (!fs::exists(MORVIL_WINDOWS_HOST) || std::system("command -v wine >/dev/null 2>&1") != 0) GTEST_SKIP() << "no Wine, or " << MORVIL_WINDOWS_HOST << " is not built";
        std::string pattern = (fs::temp_directory_path() / "morvil-wine-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
    }
    void TearDown() override {
        if (!m_folder.empty()) fs::remove_all(m_folder);
    }

    // Records a print with these options of the tool and plays it, beginning with an empty data root.
    void record(const std::string& options) const {
        fs::remove_all(m_folder / "home");
        const std::string trace = std::string(MORVIL_TOOL) + " trace --quiet --home " + inQuotes(m_folder / "home") + " --title Plan --record " + inQuotes(recording()) +
                                  " --set PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5 " + options + " " +
                                  inQuotes(std::string(MORVIL_SAMPLES) + "/badge.emf");
        ASSERT_EQ(std::system((trace + " >/dev/null").c_str()), 0);
        const fs::path said = m_folder / "played";
        ASSERT_EQ(std::system((host() + inQuotes(m_folder / "out") + " " + inQuotes(recording()) + " >" + inQuotes(said) + " 2>&1").c_str()), 0) << read(said);
    }
    [[nodiscard]] fs::path recording() const { return m_folder / "Plan.rec"; }
    static std::string host() { return "WINEDEBUG=-all wine " + inQuotes(MORVIL_WINDOWS_HOST) + " " + inQuotes(MORVIL_WINDOWS_DRIVER) + " "; }

    static fs::path dataRoot() {
        const char* const prefix = std::getenv("WINEPREFIX");
        return (prefix != nullptr ? fs::path(prefix) : fs::path(std::getenv("HOME")) / ".wine") / "drive_c/ProgramData/Morvil";
    }
    static std::vector<fs::path> files(const std::string& extension) {
        std::vector<fs::path> list;
        for (const auto& entry : fs::recursive_directory_iterator(dataRoot())) {
            if (entry.path().extension() == extension) list.push_back(entry.path());
        }
        return list;
    }

    fs::path m_folder;
};

}  // namespace morvil::hosts
