// System.cpp - asks the system. Wine lets the superuser write read-only files, matches one character with each "?" and goes by
// the number of bytes first.
#include "support/System.h"

#include "support/TempHome.h"
#include "support/windows/NeedsSimulatedMachine.h"

namespace morvil::test {

void makeReadOnly(const WCHAR* path) {
    SetFileAttributesW(path, FILE_ATTRIBUTE_READONLY);
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    CloseHandle(file);
    needsSimulatedMachine("a read-only file that cannot be written");
}

void needsOptionalQuestionMarks() {
    constexpr const WCHAR* kFile = L"C:\\question.tst";
    writeBytes(kFile, "");
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(L"C:\\question??.tst", &found);
    DeleteFileW(kFile);
    if (search == INVALID_HANDLE_VALUE) needsSimulatedMachine("\"?\" that matches nothing at the end of a name");
    FindClose(search);
}

void needsMarkThatDecides() {
    constexpr char kMarked[] = "\xFF\xFE" "a\0b";
    if (IsTextUnicode(kMarked, 5, nullptr) == FALSE) needsSimulatedMachine("UTF-16 with an odd number of bytes");
}

}  // namespace morvil::test
