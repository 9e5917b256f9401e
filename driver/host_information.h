// host_information.h - who and what the driver runs for: operating system, printer, calling process and its owner. Everything
// here ends in the driver log, where a support engineer reads a job's setting.
#pragma once

#include <span>

#include "platform/common/Text.h"
#include "platform/platform.h"

namespace morvil {

inline constexpr DWORD kNameCapacity = 1000;          // user, account and domain names
inline constexpr std::size_t kOwnerCharacters = 100;  // longer account and domain names are not handed out

// Writes the system's name, build and service pack, nothing when the system does not tell. Returns the buffer.
WCHAR* osVersionText(std::span<WCHAR> buffer);
WString osVersionText(const OSVERSIONINFOW& version);

// Logs the printer's settings. A null handle does nothing.
void dumpPrinterInformation(HANDLE hPrinter);

// Logs user, executable and owner of a process and hands out the executable's name. False when the process cannot be looked into.
BOOL PrintProcessNameAndID(DWORD processId, std::span<WCHAR> nameOut);
BOOL logProcess(HANDLE process, DWORD processId, std::span<WCHAR> nameOut);
// The same for this process, into the process-wide name.
void recordCallingProcess();

// Account and domain of the process's user; each output keeps its text when the name has kOwnerCharacters or more.
BOOL tokenOwner(DWORD processId, std::span<WCHAR> accountOut, std::span<WCHAR> domainOut);
void copyOwnerName(std::span<WCHAR> out, WStringView name);

}  // namespace morvil
