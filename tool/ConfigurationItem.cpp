#include "tool/ConfigurationItem.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "config/CMvConfig.h"
#include "config/CPrinterConfig.h"
#include "config/CXml.h"
#include "config/MvMutex.h"
#include "config/ParsedDocumentCache.h"
#include "platform/host/HostState.h"
#include "tool/Host.h"

namespace morvil::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxPath = 260;
constexpr std::size_t kMaxParts = 10;
constexpr std::size_t kMaxName = 19;

// What the file gives back as a name: anything else would end the name there, or the whole element, and damage what follows.
bool isNameCharacter(WCHAR c) {
    if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) return true;
    return c == '_' || c == ':' || c == '-' || (c >= 0xC0 && c <= 0xFF && c != 0xD7 && c != 0xF7);
}

bool isName(WStringView name) { return !name.empty() && name.size() <= kMaxName && std::ranges::all_of(name, isNameCharacter); }

bool isPath(const WString& path) {
    if (path.empty() || path.size() > kMaxPath) return false;
    std::size_t parts = 0;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find(TEXT('.'), start), path.size());
        if (!isName(WStringView(path).substr(start, end - start)) || ++parts > kMaxParts) return false;
        start = end + 1;
    }
    return true;
}

std::string configurationPath() { return hostPath(CMvConfig().configurationFile()); }

// Milliseconds, when another process had the configuration's lock all the time; else 0. A holder that died is no obstacle.
DWORD waitedForLockInVain() {
    const auto patience = static_cast<DWORD>(MvMutex::timeoutOf({}));  // as the store itself
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, kConfigurationMutex);
    if (mutex == nullptr) return 0;
    const DWORD result = WaitForSingleObject(mutex, patience);
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) ReleaseMutex(mutex);
    CloseHandle(mutex);
    return result == WAIT_TIMEOUT ? std::max<DWORD>(1, patience) : 0;
}

std::string systemText(int error) { return std::generic_category().message(error); }

std::string troubleReading(const std::string& file) {
    if (fs::is_directory(file)) return file + ": " + systemText(EISDIR);
    if (::access(file.c_str(), R_OK) != 0) return file + ": " + systemText(errno);
    std::error_code unknown;
    const std::uintmax_t size = fs::file_size(file, unknown);
    if (!unknown && size > kLargestConfigurationFile) {
        return file + ": " + std::to_string(size) + " bytes are more than a configuration may have (" + std::to_string(kLargestConfigurationFile) + "); without the file the defaults are used";
    }
    return file + ": damaged, and cannot be written anew (is the disk full, or the folder not writable?)";
}

// What stands in the way is the lowest folder that is there, when that cannot be written.
std::string troubleCreating(const fs::path& file) {
    fs::path folder = file;
    while (!fs::exists(folder) && folder.has_relative_path()) folder = folder.parent_path();
    if (!fs::is_directory(folder)) return folder.string() + ": " + systemText(ENOTDIR);
    if (::access(folder.c_str(), W_OK | X_OK) != 0) return folder.string() + ": " + systemText(errno);
    return file.string() + ": cannot be created (is the disk full?)";
}

}  // namespace

std::optional<ConfigurationItem> parseItem(const std::string& text) {
    const std::size_t at = text.find('@');
    ConfigurationItem item{fromUtf8(text.substr(0, at)), at == std::string::npos ? WString(TEXT("value")) : fromUtf8(text.substr(at + 1))};
    if (!isPath(item.path) || !isName(item.attribute)) return std::nullopt;
    return item;
}

bool isStorable(const std::string& value) {
    const WString text = fromUtf8(value);
    if (text.size() >= CXml::kValueCharacters) return false;
    if (!text.empty() && (text.front() == ' ' || text.back() == ' ')) return false;
    return std::ranges::none_of(text, [](WCHAR c) { return c < ' ' || c == 0x7F || c > 0xFF || c == '<' || c == '&' || c == '"'; });
}

std::string notStorableText() {
    return "a value holds at most " + std::to_string(CXml::kValueCharacters - 1) +
           " characters, all of Latin-1, none of them < & \" or a control character, and no blank at either end";
}

std::optional<Setting> parseSetting(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || !isStorable(text.substr(equals + 1))) return std::nullopt;
    const auto item = parseItem(text.substr(0, equals));
    if (!item) return std::nullopt;
    return Setting{*item, fromUtf8(text.substr(equals + 1))};
}

bool ensureConfiguration(std::string& reason) {
    const std::string file = configurationPath();
    if (file.empty()) {  // not even its folder could be made
        reason = troubleCreating(hostState().home);
        return false;
    }
    if (const DWORD waited = waitedForLockInVain(); waited > 0) {
        reason = file + ": locked by another process (waited for " + std::to_string(waited) + " ms)";
        return false;
    }
    ConfigurationRecord record{};
    if (CPrinterConfig().getConfig(TEXT(""), record)) return true;
    if (CPrinterConfig().getConfig(TEXT(""), record)) return true;  // the first load of all creates the file and reports failure
    reason = fs::exists(fs::path(file)) ? troubleReading(file) : troubleCreating(file);
    return false;
}

bool store(const Setting& setting) { return CXml().putItem(setting.item.path.c_str(), setting.value.c_str(), setting.item.attribute.c_str()); }

std::string notStoredText(const ConfigurationItem& item) {
    return configurationPath() + ": the item " + toUtf8(item.path) + " could not be stored (is the file locked or not writable, or the disk full?)";
}

}  // namespace morvil::tool
