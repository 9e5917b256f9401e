// The same calls to the same driver on both hosts: every recording is played by the command line tool and, under Wine, into the
// shipped driver file. Job files must agree byte for byte with each other and with the ones that were printed, logs message for
// message once times, addresses, process numbers and user names are masked.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Case {
    std::string name;
    std::string file;
    std::string options;
};

std::string inQuotes(const fs::path& path) { return "'" + path.string() + "'"; }

std::vector<Case> allCases() {
    constexpr const char* kMode = "--set PrinterDriver.Configuration.Print.Process.ProcessMode.ID=";
    constexpr const char* kFlag = " --set PrinterDriver.Flags.FL_1=";
    std::vector<Case> cases;
    for (const fs::path& folder : {fs::path(MORVIL_SAMPLES), fs::path(MORVIL_SAMPLES) / "../../shared/emf"}) {
        std::error_code missing;
        for (const auto& entry : fs::directory_iterator(folder, missing)) {
            if (entry.path().extension() == ".emf") cases.push_back({entry.path().stem().string(), entry.path().string(), ""});
        }
    }
    const std::string shades = std::string(MORVIL_SAMPLES) + "/shades.emf";
    const std::string badge = std::string(MORVIL_SAMPLES) + "/badge.emf";
    for (int mode = 1000; mode <= 12000; mode += 1000) {
        const std::string number = std::to_string(mode);
        cases.push_back({"mode" + number + "_plain", shades, kMode + number});
        cases.push_back({"mode" + number + "_halftoned", badge, "--halftone " + (kMode + number)});
        cases.push_back({"mode" + number + "_mirrored", badge, kMode + number + kFlag + "MV_FL_IMAGEOP_FLIP_HORIZONTAL"});
        cases.push_back({"mode" + number + "_shrunk", badge, kMode + number + kFlag + "MV_FL_SHRINK_TO_BOUNDING_BOX"});
        cases.push_back({"mode" + number + "_banded", badge, kMode + number + kFlag + "MV_FL_BITMAP_BANDING"});
    }
    for (Case& each : cases) std::replace_if(each.name.begin(), each.name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    std::sort(cases.begin(), cases.end(), [](const Case& a, const Case& b) { return a.name < b.name; });
    return cases;
}

std::string read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Files of a folder and everything below it, by name.
std::map<std::string, std::string> filesWith(const fs::path& folder, const std::string& beginning, const std::string& extension) {
    std::map<std::string, std::string> files;
    std::error_code missing;
    for (const auto& entry : fs::recursive_directory_iterator(folder, missing)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(beginning) && name.ends_with(extension)) files[name] = read(entry.path());
    }
    return files;
}

// Everything is played once, before the first comparison.
class Hosts : public testing::TestWithParam<Case> {
  protected:
    static void SetUpTestSuite() {
        if (!fs::exists(MORVIL_WINDOWS_HOST) || std::system("command -v wine >/dev/null 2>&1") != 0) return;
        std::string pattern = (fs::temp_directory_path() / "morvil-hosts-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        s_folder = pattern;
        for (const char* const part : {"recordings", "windows"}) fs::create_directory(s_folder / part);
        for (const Case& each : allCases()) playHere(each);
        const std::string wine = "cd " + inQuotes(s_folder / "recordings") + " && wine " + inQuotes(MORVIL_WINDOWS_HOST) + " " + inQuotes(MORVIL_WINDOWS_DRIVER) + " " +
                                 inQuotes(s_folder / "windows") + " *.rec > ../windows.txt 2>../wine.txt </dev/null";
        s_wineStatus = std::system(wine.c_str());
    }
    static void TearDownTestSuite() {
        if (!s_folder.empty() && std::getenv("MORVIL_KEEP_FILES") == nullptr) fs::remove_all(s_folder);
    }
    void SetUp() override {
        if (s_folder.empty()) GTEST_SKIP() << "no Wine, or " << MORVIL_WINDOWS_HOST << " is not built";
    }

    // Prints with the shipped driver file where it is installed, so that both hosts read its version; then plays the recording.
    static void playHere(const Case& each) {
        for (const char* const home : {"printed", "replayed"}) {
            const fs::path drivers = s_folder / home / each.name / "Windows/System32/spool/drivers/x64/3";
            fs::create_directories(drivers);
            fs::copy_file(MORVIL_WINDOWS_DRIVER, drivers / "morvil.dll");
        }
        const std::string recording = inQuotes(s_folder / "recordings" / (each.name + ".rec"));
        const std::string quiet = " >/dev/null 2>" + inQuotes(s_folder / (each.name + ".txt"));
        const std::string trace = std::string(MORVIL_TOOL) + " trace --quiet --home " + inQuotes(s_folder / "printed" / each.name) + " --title " + each.name +
                                  " --set PrinterDriver.Logging.Enable=1 --set PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5 " + each.options +
                                  " --record " + recording + " " + inQuotes(each.file) + quiet;
        const std::string replay = std::string(MORVIL_TOOL) + " replay --home " + inQuotes(s_folder / "replayed" / each.name) + " " + recording + quiet;
        s_status[each.name] = std::system(trace.c_str());
        if (s_status[each.name] == 0) s_status[each.name] = std::system(replay.c_str());
    }

    static inline fs::path s_folder;
    static inline std::map<std::string, int> s_status;
    static inline int s_wineStatus = -1;
};

TEST_P(Hosts, make_the_same_job_files) {
    const std::string& name = GetParam().name;
    ASSERT_EQ(s_status[name], 0) << read(s_folder / (name + ".txt"));
    const std::string played = read(s_folder / "windows.txt");
    ASSERT_NE(played.find(name + ": done"), std::string::npos) << played << read(s_folder / "wine.txt");
    const auto printed = filesWith(s_folder / "printed" / name, "", ".tsf");
    const auto here = filesWith(s_folder / "replayed" / name, "", ".tsf");
    const auto windows = filesWith(s_folder / "windows" / name, "", ".tsf");
    ASSERT_FALSE(printed.empty());
    EXPECT_TRUE(here == printed);
    ASSERT_EQ(windows.size(), printed.size());
    for (const auto& [file, bytes] : printed) {
        ASSERT_TRUE(windows.contains(file)) << file;
        const std::string& other = windows.at(file);
        const auto [mine, theirs] = std::mismatch(bytes.begin(), bytes.end(), other.begin(), other.end());
        EXPECT_TRUE(mine == bytes.end() && theirs == other.end()) << file << " differs at byte " << mine - bytes.begin();
    }
    EXPECT_TRUE(filesWith(s_folder / "windows" / name, "", ".tsa").empty());
}

struct Difference {
    std::regex expression;
    std::string text;
};

std::vector<Difference> forcedDifferences() {
    std::vector<Difference> list;
    std::istringstream lines(read(MORVIL_DIFFERENCES));
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.front() == '#') continue;
        EXPECT_NE(line.find('\t'), std::string::npos) << "without a reason: " << line;
        const std::string text = line.substr(0, line.find('\t'));
        list.push_back({std::regex(text), text});
    }
    return list;
}

// Those that occurred; the list holds no others.
std::set<std::string>& occurred() {
    static std::set<std::string> texts;
    return texts;
}

// One message a line, with what two runs cannot share taken out.
std::vector<std::string> messages(const std::string& log) {
    static const std::vector<Difference> forced = forcedDifferences();
    static const std::regex time("^\\d\\d:\\d\\d:\\d\\d\t");
    static const std::regex date("^(\t*)\\d\\d/\\d\\d/\\d\\d,");
    static const std::regex address(
        "\\b((?:pPDev(?:Old|New|->hBitmap)?|pso(?:Dst|Src|Mask)?|psoMask->pvBits|prclDest|pvBits|dhsurf|hsurf|dhpdev|hdev|hPalette|pulXLate|HBitmap|pPlotDMIn|hMem\\w+DC|pca|pptlSrc|"
        "pulDither|pPrinterConfig|pBuffer|ghInstance|Handle|Spool)=)[0-9A-F]+\\b(?!:)");
    static const std::regex process("\\b(ProcessID|PID|Instance|ID)=[0-9A-F]+");
    static const std::regex user("(UserName|ProcessOwner|User)=[^,]*");
    std::vector<std::string> list;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        while (!line.empty() && line.back() == '\r') line.pop_back();
        line = std::regex_replace(line, time, "\t");
        line = std::regex_replace(line, date, "$1DATE,");
        line = std::regex_replace(line, address, "$1*");
        line = std::regex_replace(line, process, "$1=*");
        line = std::regex_replace(line, user, "$1=*");
        for (const Difference& difference : forced) {
            const std::string left = std::regex_replace(line, difference.expression, "*");
            if (left != line) occurred().insert(difference.text);
            line = left;
        }
        if (line != "\t*") list.push_back(line);  // a message that differs as a whole
    }
    return list;
}

TEST_P(Hosts, write_the_same_logs) {
    const std::string& name = GetParam().name;
    const auto here = filesWith(s_folder / "replayed" / name, "log_", ".txt");
    const auto windows = filesWith(s_folder / "windows" / name, "log_", ".txt");
    ASSERT_TRUE(here.contains("log_morvil.txt"));
    for (const auto& [file, log] : here) {
        ASSERT_TRUE(windows.contains(file)) << file;
        const std::vector<std::string> mine = messages(log);
        const std::vector<std::string> theirs = messages(windows.at(file));
        for (std::size_t i = 0; i < std::min(mine.size(), theirs.size()); ++i) ASSERT_EQ(mine[i], theirs[i]) << file << ", line " << i + 1;
        EXPECT_EQ(mine.size(), theirs.size()) << file;
    }
    EXPECT_EQ(here.size(), windows.size());
    for (const Difference& difference : forcedDifferences()) EXPECT_TRUE(occurred().contains(difference.text)) << difference.text << " is not forced apart any more";
}

INSTANTIATE_TEST_SUITE_P(Recordings, Hosts, testing::ValuesIn(allCases()), [](const testing::TestParamInfo<Case>& tested) { return tested.param.name; });

}  // namespace
