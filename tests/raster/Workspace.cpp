#include "raster/Workspace.h"

#include <algorithm>

#include "config/CMvConfig.h"

namespace morvil::test {

// Working out the folders tells the log the driver's own folder, where it writes from then on.
Workspace::Workspace() {
    const CMvConfig folders;
    forgetTexts();
}

std::vector<std::string> Workspace::logLines() const {
    const std::vector<std::uint8_t> bytes = readFile(logState().folder + TEXT("\\log_morvil.txt"));
    return messagesOf({bytes.begin(), bytes.end()});
}

std::size_t Workspace::countLog(const std::string& text) const {
    const std::vector<std::string> lines = logLines();
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), text));
}

std::size_t Workspace::countDebugPrefix(const std::string& prefix) const {
    const std::vector<std::string>& texts = m_debug.texts();
    return static_cast<std::size_t>(
        std::count_if(texts.begin(), texts.end(), [&](const std::string& text) { return text.starts_with(prefix); }));
}

void Workspace::forgetTexts() {
    m_debug.clear();
    DeleteFileW((logState().folder + TEXT("\\log_morvil.txt")).c_str());
}

std::vector<std::uint8_t> Workspace::readFile(WStringView path) {
    if (!exists(path)) return {};
    const std::string bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

std::string asUtf16File(const std::string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char character : text) {
        bytes.push_back(character);
        bytes.push_back('\0');
    }
    return bytes;
}

}  // namespace morvil::test
