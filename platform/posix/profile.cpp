// profile.cpp - private profile (ini) files. Promises: each read sees what is on disk now (IniFile.h), but a file that is as it
// was is not read again for its next key (ProfileCache.h); readers need no lock; a write replaces the whole file in one step
// (written beside, flushed, renamed) under a lock that all processes respect, so a reader sees the old or the new text and
// two writers do not lose each other's keys; a new file holds Latin-1 text, an existing one keeps its encoding.
// Refuses: the system's own profile (a file without a path is a file of the current folder), keys or values with line ends
// (ERROR_INVALID_PARAMETER), files above 16 MB (ERROR_NOT_ENOUGH_MEMORY; every key is missing).
#include <unistd.h>

#include <optional>
#include <string>

#include "platform/posix/Descriptor.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/IniFile.h"
#include "platform/posix/LockFile.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/ProfileText.h"

using namespace morvil;

namespace {

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

}  // namespace

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR out, DWORD outCharacters, LPCWSTR file) {
    if (out == nullptr) return 0;
    return IniFile(file).text(section, key, defaultValue, {out, outCharacters});
}

UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR file) {
    return IniFile(file).number(section, key, defaultValue);
}

BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    if (section == nullptr || hasLineEnd(section) || hasLineEnd(key) || hasLineEnd(value)) return failWith(ERROR_INVALID_PARAMETER);
    HostPath path;
    if (!path.assign(file)) return FALSE;
    const LockFile lock("ini", path.view());
    if (!lock.held()) return FALSE;

    std::string bytes;
    struct stat status {};
    const bool existed = readProfileBytes(path.c_str(), bytes, status);
    if (!existed && GetLastError() != ERROR_FILE_NOT_FOUND) return FALSE;
    const auto mode = existed ? std::optional<mode_t>(status.st_mode & 07777) : std::nullopt;
    if (mode && (*mode & 0222) == 0) return failWith(ERROR_ACCESS_DENIED);
    ProfileText profile = decodeProfile(bytes);
    const WString before = profile.text;
    edit(profile.text, section, key, value);
    if (existed && profile.text == before) return TRUE;
    return replaceFile(std::string(path.view()), encodeProfile(profile), mode) ? TRUE : FALSE;
}
