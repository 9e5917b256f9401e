// find.cpp - searching a folder. Promises: the platform's patterns (NamePattern.h), "." and ".." included; names come in the
// order of their upper-case letters; what FindFirstFileW saw is what FindNextFileW tells, whatever changes meanwhile.
// Refuses: short 8.3 names (none are told, none are matched); names that are no UTF-8 or longer than 259 characters are not
// found, since no path could name them.
#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/CaseFold.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/HostState.h"
#include "platform/posix/NamePattern.h"
#include "platform/posix/PlatformCalls.h"

using namespace morvil;

namespace {

struct Search final : HandleObject {
    std::string folder;
    std::vector<WString> names;
    std::size_t next = 0;
};

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

// Ticks of 100 ns since 1601.
FILETIME fileTimeOf(const struct timespec& time) {
    constexpr std::int64_t kSecondsTo1970 = 11644473600;
    const auto ticks = static_cast<std::uint64_t>((time.tv_sec + kSecondsTo1970) * 10'000'000 + time.tv_nsec / 100);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

// False when the file has gone meanwhile.
bool describe(const Search& search, const WString& name, WIN32_FIND_DATAW& found) {
    struct stat status {};
    if (platformCalls().status((search.folder + '/' + toUtf8(name)).c_str(), &status) != 0) return false;
    found = {};
    const bool folder = S_ISDIR(status.st_mode);
    const bool readOnly = (status.st_mode & 0222) == 0;
    found.dwFileAttributes = (folder ? FILE_ATTRIBUTE_DIRECTORY : 0) | (readOnly ? FILE_ATTRIBUTE_READONLY : 0);
    if (found.dwFileAttributes == 0) found.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    found.ftCreationTime = fileTimeOf(status.st_ctim);
    found.ftLastAccessTime = fileTimeOf(status.st_atim);
    found.ftLastWriteTime = fileTimeOf(status.st_mtim);
    const auto size = folder ? 0 : static_cast<std::uint64_t>(status.st_size);
    found.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    found.nFileSizeLow = static_cast<DWORD>(size);
    return copyText(found.cFileName, name);
}

bool advance(Search& search, WIN32_FIND_DATAW& found) {
    while (search.next < search.names.size()) {
        if (describe(search, search.names[search.next++], found)) return true;
    }
    return false;
}

bool collect(Search& search, const NamePattern& pattern) {
    const std::unique_ptr<DIR, FolderCloser> folder(platformCalls().openFolder(search.folder.c_str()));
    if (!folder) return false;
    while (const dirent* const entry = ::readdir(folder.get())) {
        WString name = fromUtf8(entry->d_name);
        if (name.size() >= MAX_PATH || toUtf8(name) != entry->d_name) continue;
        if (pattern.matches(name)) search.names.push_back(std::move(name));
    }
    std::sort(search.names.begin(), search.names.end(),
              [](const WString& a, const WString& b) { return lessIgnoringCase(a, b) || (!lessIgnoringCase(b, a) && a < b); });
    return true;
}

HANDLE failSearch(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, WIN32_FIND_DATAW* found) {
    const WStringView path = viewOf(pattern);
    if (path.empty() || found == nullptr) return failSearch(ERROR_PATH_NOT_FOUND);
    const std::size_t separator = path.find_last_of(TEXT("\\/:"));
    const std::size_t nameAt = separator == WStringView::npos ? 0 : separator + 1;
    const WStringView name = path.substr(nameAt);
    if (name.empty()) return failSearch(ERROR_FILE_NOT_FOUND);
    HostPath folder;
    if (!folder.assign(nameAt == 0 ? WStringView(TEXT(".")) : path.substr(0, nameAt))) return INVALID_HANDLE_VALUE;

    auto search = std::make_shared<Search>();
    search->folder = folder.view();
    if (!collect(*search, NamePattern(name)))
        return failSearch(errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : errorOf(errno));
    if (!advance(*search, *found)) return failSearch(ERROR_FILE_NOT_FOUND);
    const HANDLE handle = hostState().handles.add({.kind = HandleKind::Search, .file = -1, .object = std::move(search)});
    return handle != INVALID_HANDLE_VALUE ? handle : failSearch(ERROR_TOO_MANY_OPEN_FILES);
}

BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* found) {
    const auto object = hostState().handles.get<Search>(search, HandleKind::Search);
    if (!object) return failWith(ERROR_INVALID_HANDLE);
    return advance(*object, *found) ? TRUE : failWith(ERROR_NO_MORE_FILES);
}

BOOL FindClose(HANDLE search) {
    if (!hostState().handles.object(search, HandleKind::Search)) return failWith(ERROR_INVALID_HANDLE);
    hostState().handles.take(search);
    return TRUE;
}
