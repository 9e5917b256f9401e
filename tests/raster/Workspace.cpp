#include "raster/Workspace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "config/CMvConfig.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil::test {

Workspace::Workspace() {
    std::string pattern = (std::filesystem::temp_directory_path() / "morvil-raster-XXXXXX").string();
    m_root = ::mkdtemp(pattern.data());
    hostState().home = m_root;
    hostState().debugListener = [this](WStringView text) { m_debug.push_back(toLatin1(text)); };
    m_logging = {.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = 1U << 30};
    logState() = {};
    const CMvConfig folders;  // makes the folders and tells the log its own
    logState().settings = &m_logging;
    forgetTexts();
}

Workspace::~Workspace() {
    endFaults();
    logState() = {};
    resetHostState();
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}

std::vector<std::string> Workspace::logLines() const {
    const std::vector<std::uint8_t> bytes = readFile(logState().folder + TEXT("\\log_morvil.txt"));
    std::vector<std::string> lines;
    std::string line;
    for (const std::uint8_t byte : bytes) {
        if (byte == '\r') continue;
        if (byte != '\n') {
            line.push_back(static_cast<char>(byte));
            continue;
        }
        const std::size_t tab = line.find('\t');
        lines.push_back(tab == std::string::npos ? line : line.substr(tab + 1));
        line.clear();
    }
    return lines;
}

std::size_t Workspace::countLog(const std::string& text) const {
    const std::vector<std::string> lines = logLines();
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), text));
}

std::size_t Workspace::countDebug(const std::string& text) const {
    return static_cast<std::size_t>(std::count(m_debug.begin(), m_debug.end(), text));
}

std::size_t Workspace::countDebugPrefix(const std::string& prefix) const {
    return static_cast<std::size_t>(
        std::count_if(m_debug.begin(), m_debug.end(), [&](const std::string& text) { return text.starts_with(prefix); }));
}

void Workspace::forgetTexts() {
    m_debug.clear();
    DeleteFileW((logState().folder + TEXT("\\log_morvil.txt")).c_str());
}

void Workspace::writeFile(const WString& path, const std::string& bytes) {
    FileStream file(path.c_str(), OpenMode::Create);
    ASSERT_TRUE(file.isOpen()) << toUtf8(path);
    ASSERT_TRUE(file.write(bytes));
}

std::vector<std::uint8_t> Workspace::readFile(const WString& path) {
    FileStream file(path.c_str(), OpenMode::Read);
    if (!file.isOpen()) return {};
    return file.readAll(1U << 30).value_or(std::vector<std::uint8_t>());
}

void Workspace::failWrites() {
    platformCalls().write = [](int, const void*, std::size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
}

void Workspace::failAllocations() {
    platformCalls().allocate = [](std::size_t) -> void* { return nullptr; };
}

void Workspace::endFaults() { platformCalls() = systemCalls(); }

std::string asUtf16File(const std::string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char character : text) {
        bytes.push_back(character);
        bytes.push_back('\0');
    }
    return bytes;
}

}  // namespace morvil::test
