// The installation script for Windows machines, read as it lies in the package: whatever a line names is there.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace morvil::tool {
namespace {

namespace fs = std::filesystem;
using Entry = std::pair<std::string, std::string>;  // a line without "=" is a key alone

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\"");
    return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(" \t\r\"") - begin + 1);
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');) parts.push_back(trimmed(part));
    return parts;
}

class InstallationScript : public testing::Test {
  protected:
    void SetUp() override {
        std::ifstream stream(packaging() / "morvil.inf");
        std::string section;
        for (std::string line; std::getline(stream, line);) {
            line = trimmed(line.substr(0, line.find(';')));
            if (line.empty()) continue;
            if (line.front() == '[') {
                section = line.substr(1, line.size() - 2);
                EXPECT_FALSE(m_sections.contains(section)) << section << " is there twice";
                m_sections[section];
                continue;
            }
            const std::size_t equals = line.find('=');
            m_sections[section].push_back({trimmed(line.substr(0, equals)), equals == std::string::npos ? "" : trimmed(line.substr(equals + 1))});
        }
        ASSERT_FALSE(m_sections.empty());
    }

    static fs::path packaging() { return fs::path(MORVIL_SAMPLES) / "../packaging"; }
    static std::string productVersion() {
        std::ifstream stream(fs::path(MORVIL_SAMPLES) / "../CMakeLists.txt");
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        const std::size_t begin = text.find("VERSION ", text.find("project(")) + 8;
        return text.substr(begin, text.find(' ', begin) - begin);
    }
    [[nodiscard]] const std::vector<Entry>& section(const std::string& name) const {
        static const std::vector<Entry> none;
        const auto found = m_sections.find(name);
        EXPECT_NE(found, m_sections.end()) << "no section " << name;
        return found == m_sections.end() ? none : found->second;
    }
    [[nodiscard]] std::string value(const std::string& name, const std::string& key) const {
        for (const Entry& entry : section(name)) {
            if (entry.first == key) return entry.second;
        }
        ADD_FAILURE() << "no " << key << " in " << name;
        return {};
    }
    [[nodiscard]] std::vector<std::string> copied() const {
        std::vector<std::string> files;
        for (const std::string& list : split(value("MORVIL", "CopyFiles"))) {
            for (const Entry& entry : section(list)) files.push_back(split(entry.first).front());
        }
        return files;
    }

    std::map<std::string, std::vector<Entry>> m_sections;
};

TEST_F(InstallationScript, is_one_for_printers_of_this_version) {
    EXPECT_EQ(value("Version", "Signature"), "$Windows NT$");
    EXPECT_EQ(value("Version", "Class"), "Printer");
    EXPECT_EQ(value("Version", "ClassGUID"), "{4D36E979-E325-11CE-BFC1-08002BE10318}");
    EXPECT_EQ(value("Version", "CatalogFile"), "morvil.cat");
    EXPECT_EQ(split(value("Version", "DriverVer")).at(1), productVersion());
}

TEST_F(InstallationScript, leads_from_the_manufacturer_to_the_driver) {
    const std::vector<std::string> models = split(value("Manufacturer", "%Provider%"));
    ASSERT_EQ(models.size(), 2U);
    EXPECT_EQ(models[1], "NTamd64");
    const std::vector<std::string> model = split(value(models[0] + "." + models[1], "%Printer%"));
    ASSERT_EQ(model.size(), 2U) << "its section and the name that it is recognised by";
    const std::string data = value(model[0], "DataSection");
    EXPECT_EQ(value(data, "DriverFile"), "morvil.dll");
    EXPECT_EQ(value(data, "ConfigFile"), "MorvilUI.dll");
    EXPECT_FALSE(value(data, "DataFile").empty()) << "the driver makes no instance without one";
}

TEST_F(InstallationScript, copies_the_files_that_it_names_and_that_are_in_the_package) {
    const std::vector<std::string> files = copied();
    for (const char* const key : {"DriverFile", "DataFile"}) EXPECT_NE(std::find(files.begin(), files.end(), value("MORVIL_DATA", key)), files.end()) << key;
    EXPECT_EQ(std::find(files.begin(), files.end(), value("MORVIL_DATA", "ConfigFile")), files.end()) << "it comes with its own package";
    EXPECT_EQ(section("SourceDisksFiles").size(), files.size());
    for (const std::string& file : files) {
        const std::vector<std::string> source = split(value("SourceDisksFiles", file));
        EXPECT_FALSE(value("SourceDisksNames", source.at(0)).empty()) << file;
        if (file == "morvil.dll") continue;  // is built
        EXPECT_TRUE(fs::is_regular_file(packaging() / (source.size() > 1 ? source[1] : ".") / file)) << file;
    }
}

// Folders that the installation makes belong to the administrator. The driver would leave them as they are, and nobody else
// could store a setting or a job's number.
TEST_F(InstallationScript, copies_into_the_spoolers_folder_alone) {
    for (const std::string& list : split(value("MORVIL", "CopyFiles"))) EXPECT_EQ(value("DestinationDirs", list), "66000");
    for (const Entry& entry : section("DestinationDirs")) EXPECT_EQ(entry.second, "66000") << entry.first;
}

TEST_F(InstallationScript, has_a_text_for_each_name) {
    for (const auto& [name, entries] : m_sections) {
        for (const auto& [key, text] : entries) {
            for (const std::string& part : {key, text}) {
                const std::size_t begin = part.find('%');
                if (begin == std::string::npos) continue;
                EXPECT_FALSE(value("Strings", part.substr(begin + 1, part.find('%', begin + 1) - begin - 1)).empty()) << name;
            }
        }
    }
}

}  // namespace
}  // namespace morvil::tool
