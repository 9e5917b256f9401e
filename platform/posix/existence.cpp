// existence.cpp - the two questions that are asked most. Promises: one call of the system for each. GetFileAttributesW asks a
// second time when nothing is there, to tell a missing file from a missing folder; here nobody wants to know.
#include <sys/stat.h>

#include "platform/common/FileStream.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/PlatformCalls.h"

namespace morvil {

namespace {

enum class There : std::uint8_t { Nothing, File, Folder };

There whatIsAt(const WCHAR* path) {
    HostPath hostPath;
    struct stat status {};
    if (!hostPath.assign(path) || platformCalls().status(hostPath.c_str(), &status) != 0) return There::Nothing;
    return S_ISDIR(status.st_mode) ? There::Folder : There::File;
}

}  // namespace

bool fileExists(const WCHAR* path) { return whatIsAt(path) == There::File; }
bool folderExists(const WCHAR* path) { return whatIsAt(path) == There::Folder; }

}  // namespace morvil
