#include "support/TempHome.h"

#include <gtest/gtest.h>
#include <unistd.h>

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

fs::path TempHome::hostPath(WStringView windowsPath) {
    HostPath path;
    EXPECT_TRUE(path.assign(windowsPath)) << toUtf8(windowsPath);
    return path.c_str();
}

}  // namespace morvil::test
