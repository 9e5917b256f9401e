#include "platform/posix/HostPath.h"

#include <algorithm>
#include <cerrno>

#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil {

namespace {

constexpr bool isSeparator(WCHAR unit) { return unit == TEXT('\\') || unit == TEXT('/'); }

// A table, because every opening of a file asks it for each character of the path.
constexpr auto kForbidden = [] {
    std::array<bool, 0x80> forbidden{};
    for (std::size_t unit = 0; unit < 0x20; ++unit) forbidden[unit] = true;
    for (const char unit : std::string_view("<>:\"|?*")) forbidden[static_cast<std::size_t>(unit)] = true;
    return forbidden;
}();

constexpr bool mayStandInName(WCHAR unit) { return unit >= kForbidden.size() || !kForbidden[unit]; }

WStringView withoutTrailingPoints(WStringView name) {
    while (!name.empty() && (name.back() == TEXT('.') || name.back() == TEXT(' '))) name.remove_suffix(1);
    return name;
}

// The part of a path behind its drive, and the folder of this host that the drive stands for.
struct Split {
    std::string_view base;
    WStringView rest;
    bool checked = true;  // names must be such as the platform allows
    DWORD error = ERROR_SUCCESS;
};

Split splitDrive(WStringView path) {
    constexpr WStringView kLongPath = TEXT("\\\\?\\");
    if (path.starts_with(kLongPath)) path.remove_prefix(kLongPath.size());
    if (path.size() >= 2 && path[1] == TEXT(':')) {
        const WStringView rest = path.substr(2);
        if (path[0] == TEXT('C') || path[0] == TEXT('c')) return {.base = hostState().home, .rest = rest};
        if (path[0] == TEXT('Z') || path[0] == TEXT('z')) return {.base = "", .rest = rest, .checked = false};
        return {.error = ERROR_PATH_NOT_FOUND};
    }
    if (path.empty()) return {.error = ERROR_PATH_NOT_FOUND};
    if (!isSeparator(path[0])) return {.base = ".", .rest = path};
    if (path.size() >= 2 && isSeparator(path[1])) return {.error = ERROR_BAD_NETPATH};
    return {.base = hostState().home, .rest = path};
}

}  // namespace

bool HostPath::put(char byte) {
    if (m_size + 1 >= m_bytes.size()) return false;
    m_bytes[m_size++] = byte;
    return true;
}

bool HostPath::putBytes(std::string_view bytes) {
    if (bytes.size() >= m_bytes.size() - m_size) return false;
    bytes.copy(m_bytes.data() + m_size, bytes.size());
    m_size += bytes.size();
    return true;
}

// ASCII goes byte by byte; the rest of a name with other characters is converted in one piece.
bool HostPath::putName(WStringView name) {
    const std::size_t room = m_bytes.size() - 1 - m_size;
    const std::size_t most = std::min(room, name.size());
    char* const out = m_bytes.data() + m_size;
    std::size_t plain = 0;  // characters that stay one byte
    for (; plain < most && name[plain] < 0x80; ++plain) out[plain] = static_cast<char>(name[plain]);
    m_size += plain;
    return plain == name.size() || (plain < room && putBytes(toUtf8(name.substr(plain))));
}

void HostPath::dropName() {
    while (m_size > m_base && m_bytes[m_size - 1] != '/') --m_size;
    if (m_size > m_base) --m_size;
}

bool HostPath::appendName(WStringView name, bool checked) {
    if (checked) {
        name = withoutTrailingPoints(name);
        if (name.empty()) return true;
        for (const WCHAR unit : name) {
            if (!mayStandInName(unit)) return failWith(ERROR_INVALID_NAME) != FALSE;
        }
    }
    const bool fits = put('/') && putName(name);
    if (!fits) SetLastError(ERROR_FILENAME_EXCED_RANGE);
    return fits;
}

bool HostPath::assign(const WCHAR* path) {
    if (path != nullptr) return assign(WStringView(path));
    SetLastError(ERROR_PATH_NOT_FOUND);
    return false;
}

bool HostPath::assign(WStringView path) {
    m_size = 0;
    m_bytes[0] = '\0';
    const Split split = splitDrive(path);
    if (split.error != ERROR_SUCCESS) return failWith(split.error) != FALSE;
    if (!putBytes(split.base)) return failWith(ERROR_FILENAME_EXCED_RANGE) != FALSE;
    m_base = m_size;
    for (std::size_t at = 0; at < split.rest.size();) {
        std::size_t end = at;
        while (end < split.rest.size() && !isSeparator(split.rest[end])) ++end;
        const WStringView name = split.rest.substr(at, end - at);
        at = end + 1;
        if (name == TEXT("..")) {
            dropName();
        } else if (!name.empty() && name != TEXT(".") && !appendName(name, split.checked)) {
            m_size = 0;
            m_bytes[0] = '\0';
            return false;
        }
    }
    if (m_size == 0) put('/');
    m_bytes[m_size] = '\0';
    return true;
}

WString windowsPathOf(std::string_view hostPath) {
    const std::string_view home = hostState().home;
    const bool inside = !home.empty() && hostPath.starts_with(home) && (hostPath.size() == home.size() || hostPath[home.size()] == '/');
    WString path = inside ? TEXT("C:") : TEXT("Z:");
    path += fromUtf8(inside ? hostPath.substr(home.size()) : hostPath);
    for (WCHAR& unit : path) {
        if (unit == TEXT('/')) unit = TEXT('\\');
    }
    if (path.size() == 2) path += TEXT('\\');
    return path;
}

bool makeFolders(const std::string& hostPath) {
    if (platformCalls().makeFolder(hostPath.c_str(), 0777) == 0 || errno == EEXIST) return true;
    const std::size_t slash = hostPath.rfind('/');
    if (errno != ENOENT || slash == std::string::npos || slash == 0) return failWithErrno() != FALSE;
    if (!makeFolders(hostPath.substr(0, slash))) return false;
    if (platformCalls().makeFolder(hostPath.c_str(), 0777) == 0 || errno == EEXIST) return true;
    return failWithErrno() != FALSE;
}

}  // namespace morvil
