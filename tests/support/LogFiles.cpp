#include "support/LogFiles.h"

#include <filesystem>

#include "support/TempHome.h"

namespace morvil::test {

namespace {

constexpr WStringView kMorvil = TEXT("C:\\log\\log_morvil.txt");
constexpr WStringView kRend = TEXT("C:\\log\\log_rend.txt");

std::string bytesIfThere(WStringView path) { return exists(path) ? readBytes(path) : std::string(); }

// "HH:MM:SS<tab>text" and "<tab><tab>text" without what stands in front of the text.
std::string messageOf(const std::string& line) {
    if (line.starts_with("\t\t")) return line.substr(2);
    const bool timed = line.size() >= 9 && line[2] == ':' && line[5] == ':' && line[8] == '\t';
    return timed ? line.substr(9) : line;
}

}  // namespace

LogFiles::LogFiles(DWORD maxBytes) : settings{.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = maxBytes}, m_before(logState()) {
    makeFolder(TEXT("C:\\log"));
    makeFolder(TEXT("C:\\base"));
    logState() = {.settings = &settings, .folder = TEXT("C:\\log"), .baseFolder = TEXT("C:\\base")};
}

LogFiles::~LogFiles() { logState() = m_before; }

std::string LogFiles::morvil() const { return bytesIfThere(kMorvil); }
std::string LogFiles::rend() const { return bytesIfThere(kRend); }
std::vector<std::string> LogFiles::morvilMessages() const { return messagesOf(morvil()); }
std::vector<std::string> LogFiles::rendMessages() const { return messagesOf(rend()); }

void LogFiles::clear() {
    DeleteFileW(WString(kMorvil).c_str());
    DeleteFileW(WString(kRend).c_str());
}

std::vector<std::string> messagesOf(const std::string& logBytes) {
    std::vector<std::string> messages;
    for (std::size_t at = 0; at < logBytes.size();) {
        const std::size_t end = std::min(logBytes.find("\r\n", at), logBytes.size());
        messages.push_back(messageOf(logBytes.substr(at, end - at)));
        at = end + 2;
    }
    return messages;
}

}  // namespace morvil::test
