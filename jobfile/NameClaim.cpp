#include "jobfile/NameClaim.h"

#include <cstdint>
#include <utility>

#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr WCHAR kMutexName[] = TEXT("Global\\MORVILJOB%04X");  // hash of the path

// FNV-1a over the path; upper and lower case are one to the file system. The names are few on purpose, as a host may keep
// something for each that was ever used. Two jobs of one hash, written at the same time, only cost a number in a name.
std::uint32_t hashOf(WStringView path) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (WCHAR unit : path) {
        if (unit >= TEXT('a') && unit <= TEXT('z')) unit = static_cast<WCHAR>(unit - TEXT('a') + TEXT('A'));
        hash = (hash ^ static_cast<std::uint64_t>(unit)) * 0x100000001B3U;
    }
    return static_cast<std::uint32_t>((hash ^ (hash >> 16) ^ (hash >> 32) ^ (hash >> 48)) & 0xFFFF);
}

// Whether the system denies every mutex, not just one that a process of another account holds.
bool deniesAll(const WString& name) {
    const HANDLE own = CreateMutexW(nullptr, FALSE, format(TEXT("%s-%u"), name, GetCurrentProcessId()).c_str());
    if (own == nullptr) return true;
    CloseHandle(own);
    return false;
}

}  // namespace

bool NameClaim::take(const WString& path) {
    release();
    const WString name = format(kMutexName, hashOf(path));
    m_mutex = CreateMutexW(nullptr, FALSE, name.c_str());
    if (m_mutex == nullptr) return GetLastError() != ERROR_ACCESS_DENIED || deniesAll(name);
    const DWORD result = WaitForSingleObject(m_mutex, 0);
    if (result != WAIT_TIMEOUT) return true;  // also an abandoned one: its holder is gone
    CloseHandle(std::exchange(m_mutex, nullptr));
    return false;
}

void NameClaim::release() {
    if (m_mutex == nullptr) return;
    ReleaseMutex(m_mutex);
    CloseHandle(std::exchange(m_mutex, nullptr));
}

}  // namespace morvil
