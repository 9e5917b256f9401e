#include "platform/posix/IniFile.h"

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/common/FileStream.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/ProfileText.h"

namespace morvil {

namespace {

constexpr off_t kMaxBytes = off_t{16} << 20;

// The text of the file as it is now; null when it cannot be read.
ProfileCache::Text readProfile(LPCWSTR file) {
    HostPath path;
    if (!path.assign(file)) return nullptr;
    ProfileCache& cache = hostState().profiles;
    if (ProfileCache::Text known = cache.find(path.view())) return known;
    std::string bytes;
    struct stat status {};
    const auto moment = std::chrono::system_clock::now();
    if (!readProfileBytes(path.c_str(), bytes, status)) return nullptr;
    auto text = std::make_shared<const ProfileText>(decodeProfile(bytes));
    cache.keep(path.view(), FileStamp(status), moment, text);
    return text;
}

// Text with its terminator as far as it fits; the count without the terminator.
DWORD copyOut(LPWSTR out, DWORD room, WStringView text) {
    const bool cut = text.size() >= room;
    const std::size_t count = cut ? room - 1 : text.size();
    text.copy(out, count);
    out[count] = 0;
    if (cut) SetLastError(ERROR_MORE_DATA);
    return static_cast<DWORD>(count);
}

// Names one after another, each with its terminator, one more terminator at the end.
DWORD copyList(LPWSTR out, DWORD room, const std::vector<WStringView>& names) {
    WString list;
    for (const WStringView name : names) list.append(name).push_back(WCHAR{0});
    if (room < 2) return copyOut(out, room, {});
    if (list.size() + 1 <= room) {
        list.copy(out, list.size());
        out[list.size()] = 0;
        return list.empty() ? 0 : static_cast<DWORD>(list.size());
    }
    list.copy(out, room - 2);
    out[room - 2] = 0;
    out[room - 1] = 0;
    SetLastError(ERROR_MORE_DATA);
    return room - 2;
}

WStringView withoutTrailingBlanks(WStringView text) {
    while (!text.empty() && text.back() == TEXT(' ')) text.remove_suffix(1);
    return text;
}

unsigned digitOf(WCHAR unit) {
    if (unit >= TEXT('0') && unit <= TEXT('9')) return static_cast<unsigned>(unit - TEXT('0'));
    if (unit >= TEXT('a') && unit <= TEXT('f')) return static_cast<unsigned>(unit - TEXT('a')) + 10;
    if (unit >= TEXT('A') && unit <= TEXT('F')) return static_cast<unsigned>(unit - TEXT('A')) + 10;
    return 16;
}

// Sign, "0x", "0o" or "0b", then digits as far as they go; no digits make 0, too many wrap around.
UINT numberOf(WStringView text) {
    const bool negative = text.starts_with(TEXT('-'));
    if (negative || text.starts_with(TEXT('+'))) text.remove_prefix(1);
    unsigned base = 10;
    if (text.starts_with(TEXT("0x"))) base = 16;
    if (text.starts_with(TEXT("0o"))) base = 8;
    if (text.starts_with(TEXT("0b"))) base = 2;
    if (base != 10) text.remove_prefix(2);
    UINT value = 0;
    for (const WCHAR unit : text) {
        const unsigned digit = digitOf(unit);
        if (digit >= base) break;
        value = value * base + digit;
    }
    return negative ? 0U - value : value;
}

const WString* overriddenValue(LPCWSTR section, LPCWSTR key, LPCWSTR file) {
    for (const ProfileOverride& entry : hostState().profileOverrides) {
        if (entry.file == viewOf(file) && entry.section == viewOf(section) && entry.key == viewOf(key)) return &entry.value;
    }
    return nullptr;
}

}  // namespace

bool readProfileBytes(const char* path, std::string& bytes, struct stat& status) {
    const Descriptor file(platformCalls().open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0));
    if (file.get() < 0) return failForPath(path) != FALSE;
    if (::fstat(file.get(), &status) != 0) return failWithErrno() != FALSE;
    if (!S_ISREG(status.st_mode)) return failWith(ERROR_ACCESS_DENIED) != FALSE;
    if (status.st_size > kMaxBytes) return failWith(ERROR_NOT_ENOUGH_MEMORY) != FALSE;
    bytes.resize(static_cast<std::size_t>(status.st_size));
    std::size_t total = 0;
    while (total < bytes.size()) {
        const ssize_t got = platformCalls().read(file.get(), bytes.data() + total, bytes.size() - total);
        if (got < 0) return failWithErrno() != FALSE;
        if (got == 0) break;
        total += static_cast<std::size_t>(got);
    }
    bytes.resize(total);
    return true;
}

const ProfileText* IniFile::contents() {
    if (!std::exchange(m_looked, true)) m_contents = readProfile(m_path);
    return m_contents.get();
}

bool IniFile::exists() { return contents() != nullptr || fileExists(m_path); }

DWORD IniFile::text(const WCHAR* section, const WCHAR* key, const WCHAR* missing, std::span<WCHAR> out) {
    if (out.empty()) return 0;
    const auto room = static_cast<DWORD>(out.size());
    if (const WString* const fixed = overriddenValue(section, key, m_path)) return copyOut(out.data(), room, *fixed);
    const ProfileText* const profile = contents();
    if (profile != nullptr && section == nullptr) return copyList(out.data(), room, profileSections(profile->text));
    if (profile != nullptr && key == nullptr) return copyList(out.data(), room, profileKeys(profile->text, section));
    const auto value = profile != nullptr ? findProfileValue(profile->text, section, key) : std::nullopt;
    if (value) return copyOut(out.data(), room, *value);
    if (profile != nullptr) SetLastError(ERROR_FILE_NOT_FOUND);  // the platform's answer for a missing key as well
    return copyOut(out.data(), room, withoutTrailingBlanks(viewOf(missing)));
}

UINT IniFile::number(const WCHAR* section, const WCHAR* key, INT missing) {
    if (const WString* const fixed = overriddenValue(section, key, m_path)) return numberOf(*fixed);
    if (section == nullptr || key == nullptr) return static_cast<UINT>(missing);
    const ProfileText* const profile = contents();
    const auto value = profile != nullptr ? findProfileValue(profile->text, section, key) : std::nullopt;
    return value && !value->empty() ? numberOf(*value) : static_cast<UINT>(missing);
}

}  // namespace morvil
