#include "config/CMvFsServices.h"

#include <array>
#include <memory>

#include "driver/log/Log.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

// A number with at least two digits.
WString twoDigits(unsigned number) { return format(number < 10 ? TEXT("0%d") : TEXT("%d"), number); }

bool folderTakesFiles(const WCHAR* folder) {
    const WString probe = WString(folder) + TEXT("\\test.xml");
    FileStream file;
    if (!file.open(probe.c_str(), OpenMode::Create)) return false;
    file.close();
    return DeleteFileW(probe.c_str()) != FALSE;
}

}  // namespace

bool CMvFsServices::pathWritable(const WCHAR* path) {
    if (viewOf(path).empty()) {
        debugPrint(TEXT("CMvFsServices::pathWritable Error invalid usage\n"));
        return false;
    }
    const DWORD attributes = GetFileAttributesW(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) != 0) return false;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return folderTakesFiles(path);
    return FileStream(path, OpenMode::Read).isOpen();
}

std::int64_t CMvFsServices::getSize(const WCHAR* file) {
    FileStream stream;
    if (!stream.open(file, OpenMode::Read)) {
        debugPrint(TEXT("CMvFsServices::getSize, can't open file to check for\n"));
        return -1;
    }
    const std::int64_t size = stream.size();
    if (size < 0) debugPrint(TEXT("!!! CMvFsServices::getSize, Error(%d), invalid file size (%s)"), GetLastError(), file);
    return size;
}

// Major and build are printed character by character, minor and revision as two-digit texts: a build number shows only the
// second character of its two-digit text.
WString fileVersionText(DWORD high, DWORD low) {
    const WString major = twoDigits(HIWORD(high));
    const WString minor = twoDigits(LOWORD(high));
    const WString build = twoDigits(HIWORD(low));
    const WString revision = twoDigits(LOWORD(low));
    if (major[0] == TEXT('0')) return format(TEXT("%wc.%s.%wc.%s"), major[1], minor, build[1], revision);
    return format(TEXT("%wc%wc.%s.%wc.%s"), major[0], major[1], minor, build[1], revision);
}

WString CMvFsServices::getFileVersion(const WCHAR* file) {
    const WString none = TEXT("0.0.0.0");
    DWORD unused = 0;
    const DWORD bytes = GetFileVersionInfoSizeW(file, &unused);
    if (bytes == 0) return none;
    std::vector<std::uint8_t> resource(bytes);
    void* found = nullptr;
    UINT length = 0;
    if (GetFileVersionInfoW(file, 0, bytes, resource.data()) == FALSE) return none;
    if (VerQueryValueW(resource.data(), TEXT("\\"), &found, &length) == FALSE || length < sizeof(VS_FIXEDFILEINFO)) return none;
    const auto* const version = static_cast<const VS_FIXEDFILEINFO*>(found);
    return fileVersionText(version->dwFileVersionMS, version->dwFileVersionLS);
}

}  // namespace morvil
