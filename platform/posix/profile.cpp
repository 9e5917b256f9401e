// profile.cpp - private profile (ini) files. Promises: each read sees what is on disk now, but a file that is as it was is not
// read again for its next key (ProfileCache.h); readers need no lock; a write replaces the whole file in
// one step (written beside, flushed, renamed) under a lock that all processes respect, so a reader sees the old or the new
// text and two writers do not lose each other's keys; a new file holds Latin-1 text, an existing one keeps its encoding.
// Refuses: the system's own profile (a file without a path is a file of the current folder), keys or values with line ends
// (ERROR_INVALID_PARAMETER), files above 16 MB (ERROR_NOT_ENOUGH_MEMORY; every key is missing).
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/LockFile.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/ProfileCache.h"
#include "platform/posix/ProfileText.h"

using namespace morvil;

namespace {

constexpr off_t kMaxBytes = off_t{16} << 20;

class Descriptor {
  public:
    explicit Descriptor(int file) : m_file(file) {}
    ~Descriptor() {
        if (m_file >= 0) platformCalls().close(m_file);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return m_file; }
    bool close() { return platformCalls().close(std::exchange(m_file, -1)) == 0; }

  private:
    int m_file;
};

// Reads the whole file, and what the system says of it. False with the last error set.
bool readBytes(const char* path, std::string& bytes, struct stat& status) {
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

// The text of the file as it is now; null when it cannot be read.
ProfileCache::Text readProfile(LPCWSTR file) {
    HostPath path;
    if (!path.assign(file)) return nullptr;
    ProfileCache& cache = hostState().profiles;
    if (ProfileCache::Text known = cache.find(path.view())) return known;
    std::string bytes;
    struct stat status {};
    const auto moment = std::chrono::system_clock::now();
    if (!readBytes(path.c_str(), bytes, status)) return nullptr;
    auto text = std::make_shared<const ProfileText>(decodeProfile(bytes));
    cache.keep(path.view(), FileStamp(status), moment, text);
    return text;
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = platformCalls().write(file, bytes.data(), bytes.size());
        if (put < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

// A file that is replaced keeps its mode, a new one gets what the process gives to new files.
bool writeBeside(const std::string& path, std::string_view bytes, std::optional<mode_t> mode) {
    Descriptor file(platformCalls().open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode.value_or(0666)));
    if (file.get() < 0) return failForPath(path.c_str()) != FALSE;
    if (mode && ::fchmod(file.get(), *mode) != 0) return failWithErrno() != FALSE;
    if (!writeAll(file.get(), bytes) || platformCalls().flush(file.get()) != 0) return failWithErrno() != FALSE;
    return file.close() || failWithErrno() != FALSE;
}

// The old file stays whole whatever fails.
bool replaceFile(const std::string& path, std::string_view bytes, std::optional<mode_t> mode) {
    const std::string beside = path + "." + std::to_string(::getpid()) + ".tmp";
    bool done = writeBeside(beside, bytes, mode);
    if (done && platformCalls().rename(beside.c_str(), path.c_str()) != 0) done = failWithErrno() != FALSE;
    if (!done) ::unlink(beside.c_str());
    return done;
}

bool hasLineEnd(LPCWSTR text) { return viewOf(text).find_first_of(TEXT("\r\n")) != WStringView::npos; }

void edit(WString& text, LPCWSTR section, LPCWSTR key, LPCWSTR value) {
    if (key == nullptr) return removeProfileSection(text, section);
    if (value == nullptr) return removeProfileKey(text, section, key);
    setProfileValue(text, section, key, value);
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

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR out, DWORD outCharacters, LPCWSTR file) {
    if (out == nullptr || outCharacters == 0) return 0;
    if (const WString* const fixed = overriddenValue(section, key, file)) return copyOut(out, outCharacters, *fixed);
    const ProfileCache::Text profile = readProfile(file);
    if (profile && section == nullptr) return copyList(out, outCharacters, profileSections(profile->text));
    if (profile && key == nullptr) return copyList(out, outCharacters, profileKeys(profile->text, section));
    const auto value = profile ? findProfileValue(profile->text, section, key) : std::nullopt;
    if (value) return copyOut(out, outCharacters, *value);
    if (profile) SetLastError(ERROR_FILE_NOT_FOUND);  // the platform's answer for a missing key as well
    return copyOut(out, outCharacters, withoutTrailingBlanks(viewOf(defaultValue)));
}

UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR file) {
    if (const WString* const fixed = overriddenValue(section, key, file)) return numberOf(*fixed);
    if (section == nullptr || key == nullptr) return static_cast<UINT>(defaultValue);
    const ProfileCache::Text profile = readProfile(file);
    const auto value = profile ? findProfileValue(profile->text, section, key) : std::nullopt;
    return value && !value->empty() ? numberOf(*value) : static_cast<UINT>(defaultValue);
}

BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    if (section == nullptr || hasLineEnd(section) || hasLineEnd(key) || hasLineEnd(value)) return failWith(ERROR_INVALID_PARAMETER);
    HostPath path;
    if (!path.assign(file)) return FALSE;
    const LockFile lock("ini", path.view());
    if (!lock.held()) return FALSE;

    std::string bytes;
    struct stat status {};
    const bool existed = readBytes(path.c_str(), bytes, status);
    if (!existed && GetLastError() != ERROR_FILE_NOT_FOUND) return FALSE;
    const auto mode = existed ? std::optional<mode_t>(status.st_mode & 07777) : std::nullopt;
    if (mode && (*mode & 0222) == 0) return failWith(ERROR_ACCESS_DENIED);
    ProfileText profile = decodeProfile(bytes);
    const WString before = profile.text;
    edit(profile.text, section, key, value);
    if (existed && profile.text == before) return TRUE;
    return replaceFile(std::string(path.view()), encodeProfile(profile), mode) ? TRUE : FALSE;
}
