#include "support/TempHome.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"

namespace morvil::test {

namespace {

namespace fs = std::filesystem;

fs::path temporaryFolder() {
    std::error_code ignored;
    const fs::path memory = "/dev/shm";
    const bool inMemory = fs::is_directory(memory, ignored) && ::access(memory.c_str(), W_OK) == 0;
    std::string pattern = (inMemory ? memory : fs::temp_directory_path()) / "morvil-test-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return pattern;
}

fs::path hostPathOf(WStringView windowsPath) {
    HostPath path;
    EXPECT_TRUE(path.assign(windowsPath)) << toUtf8(windowsPath);
    return path.c_str();
}

}  // namespace

TempHome::TempHome() : m_folder(temporaryFolder()) {
    resetHostState();
    hostState().home = m_folder;
}

TempHome::~TempHome() {
    resetHostState();
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

std::vector<fs::path> TempHome::files() const {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(m_folder)) {
        if (entry.is_regular_file()) found.push_back(entry.path());
    }
    return found;
}

fs::path TempHome::hostPath(WStringView windowsPath) const { return hostPathOf(windowsPath); }

std::string readHostBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeHostBytes(const fs::path& file, std::string_view bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    EXPECT_TRUE(out.good()) << file;
}

std::string readBytes(WStringView windowsPath) { return readHostBytes(hostPathOf(windowsPath)); }
void writeBytes(WStringView windowsPath, std::string_view bytes) { writeHostBytes(hostPathOf(windowsPath), bytes); }
void makeFolder(WStringView windowsPath) { fs::create_directories(hostPathOf(windowsPath)); }
bool exists(WStringView windowsPath) { return fs::exists(hostPathOf(windowsPath)); }

}  // namespace morvil::test
