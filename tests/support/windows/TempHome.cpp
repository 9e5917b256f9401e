// TempHome.cpp - drive C: of a Wine prefix, cleared of what a test put there. On a real Windows machine the driver's folders
// belong to somebody, so that tests refuse to run there.
#include "support/TempHome.h"

#include <set>
#include <stdexcept>

#include "platform/platform.h"

namespace morvil::test {

namespace {

namespace fs = std::filesystem;

const fs::path kDrive = L"C:\\";
const fs::path kDriverFile = L"C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.dll";
const fs::path kDriverFileKept = L"C:\\Windows\\System32\\spool\\drivers\\x64\\3\\morvil.kept";

bool underWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

// What stood on the drive before the first test of this program.
const std::set<fs::path>& atFirst() {
    static const std::set<fs::path> names = [] {
        std::set<fs::path> found;
        for (const auto& entry : fs::directory_iterator(kDrive)) found.insert(entry.path());
        return found;
    }();
    return names;
}

// Read-only files and folders too.
void removeAll(const fs::path& path) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) {
        for (const auto& entry : fs::recursive_directory_iterator(path, ignored))
            SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    fs::remove_all(path, ignored);
}

// What tests put on the drive: the driver's folders, and whatever else is new.
std::vector<fs::path> ours() {
    std::vector<fs::path> found{L"C:\\ProgramData\\Morvil", L"C:\\Program Files\\Morvil"};
    for (const auto& entry : fs::directory_iterator(kDrive)) {
        if (!atFirst().contains(entry.path())) found.push_back(entry.path());
    }
    return found;
}

void clearDrive() {
    for (const fs::path& path : ours()) removeAll(path);
}

}  // namespace

TempHome::TempHome() : m_folder(kDrive) {
    if (!underWine()) throw std::runtime_error("tests clear the driver's folders, so that they run in a Wine prefix alone");
    clearDrive();
    std::error_code ignored;
    if (!fs::exists(kDriverFileKept, ignored)) fs::rename(kDriverFile, kDriverFileKept, ignored);
}

TempHome::~TempHome() {
    std::error_code ignored;
    clearDrive();
    fs::remove(kDriverFile, ignored);
    fs::rename(kDriverFileKept, kDriverFile, ignored);
}

std::vector<fs::path> TempHome::files() const {
    std::vector<fs::path> found;
    for (const fs::path& path : ours()) {
        if (fs::is_regular_file(path)) found.push_back(path);
        if (!fs::is_directory(path)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) found.push_back(entry.path());
        }
    }
    return found;
}

fs::path TempHome::hostPath(WStringView windowsPath) { return {std::wstring(windowsPath)}; }

}  // namespace morvil::test
