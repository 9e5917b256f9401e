// existence.cpp - what lies at a path; the system tells both in one call.
#include "platform/common/FileStream.h"

namespace morvil {

bool fileExists(const WCHAR* path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool folderExists(const WCHAR* path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace morvil
