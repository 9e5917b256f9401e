#include "driver/host_information.h"

#include <array>

#include "driver/Handle.h"
#include "driver/State.h"
#include "driver/log/Log.h"
#include "platform/common/LocalBlock.h"

namespace morvil {

namespace {

constexpr DWORD kProcessAccess = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;
constexpr WCHAR kUnknownProcess[] = TEXT("unknown");

// Systems newer than those named get the last text; support knows it by heart.
const WCHAR* versionFormat(const OSVERSIONINFOW& version) {
    if (version.dwMajorVersion < 5) return TEXT("Microsoft Windows NT, Build=%d, ServicePack=%s");
    if (version.dwMajorVersion == 5 && version.dwMinorVersion == 0) return TEXT("Microsoft Windows 2000, Build=%d, ServicePack=%s");
    if (version.dwMajorVersion == 5 && version.dwMinorVersion == 1) return TEXT("Microsoft Windows XP, Build=%d, ServicePack=%s");
    if (version.dwMajorVersion == 5 && version.dwMinorVersion == 2) return TEXT("Microsoft Windows Server 2003, Build=%d, ServicePack=%s");
    return TEXT("Windowwwwws 3.11, haha, Build=%d, ServicePack=%s");
}

LocalBlock<BYTE> printerInformation(HANDLE hPrinter) {
    DWORD bytes = 0;
    GetPrinterW(hPrinter, 2, nullptr, 0, &bytes);
    if (bytes < sizeof(PRINTER_INFO_2W)) return {};
    LocalBlock<BYTE> block(bytes);
    if (block) GetPrinterW(hPrinter, 2, block.get(), bytes, &bytes);  // what cannot be had stays zero
    return block;
}

LocalBlock<BYTE> tokenUser(HANDLE token) {
    DWORD bytes = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &bytes);
    LocalBlock<BYTE> block(bytes);
    if (block && bytes >= sizeof(TOKEN_USER) && GetTokenInformation(token, TokenUser, block.get(), bytes, &bytes) != FALSE) return block;
    logMorvil(1, kError, TEXT("Error=%d, dw=%d, sizeof=%d"), GetLastError(), bytes, sizeof(TOKEN_USER), kLogEnd);
    return {};
}

}  // namespace

WString osVersionText(const OSVERSIONINFOW& version) {
    return format(versionFormat(version), version.dwBuildNumber, viewOf(std::span<const WCHAR>(version.szCSDVersion)));
}

WCHAR* osVersionText(std::span<WCHAR> buffer) {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    copyText(buffer, GetVersionExW(&version) != FALSE ? osVersionText(version) : WString());
    return buffer.data();
}

void dumpPrinterInformation(HANDLE hPrinter) {
    if (hPrinter == nullptr) return;
    const LocalBlock<BYTE> block = printerInformation(hPrinter);
    if (!block) return;
    const auto& printer = *reinterpret_cast<const PRINTER_INFO_2W*>(block.get());
    logMorvil(1, kInformation, TEXT("Server=%s, PrinterName=%s, ShareName=%s, PortName=%s"), printer.pServerName, printer.pPrinterName,
              printer.pShareName, printer.pPortName, kLogEnd);
    logMorvil(1, kInformation, TEXT("Driver=%s, SeperatorFile=%s, PrintProcessor=%s, DataType=%s"), printer.pDriverName, printer.pSepFile,
              printer.pPrintProcessor, printer.pDatatype, kLogEnd);
    logMorvil(1, kInformation, TEXT("Attributes=%d, Jobs=%d"), printer.Attributes, printer.cJobs, kLogEnd);
    if ((printer.Attributes & PRINTER_ATTRIBUTE_DIRECT) != 0) logMorvil(1, kError, TEXT("Spooler has been deactivated"), kLogEnd);
}

void copyOwnerName(std::span<WCHAR> out, WStringView name) {
    if (name.size() < kOwnerCharacters && !out.empty()) copyText(out, name);
}

BOOL tokenOwner(DWORD processId, std::span<WCHAR> accountOut, std::span<WCHAR> domainOut) {
    if (accountOut.empty()) return FALSE;
    const Handle process(OpenProcess(kProcessAccess, FALSE, processId));
    if (!process) return FALSE;
    HANDLE opened = nullptr;
    if (OpenProcessToken(process.get(), TOKEN_QUERY | READ_CONTROL, &opened) == FALSE) return FALSE;
    const Handle token(opened);
    const LocalBlock<BYTE> user = tokenUser(token.get());
    if (!user) return FALSE;

    std::array<WCHAR, kNameCapacity> account{};
    std::array<WCHAR, kNameCapacity> domain{};
    DWORD characters = kNameCapacity;  // one length serves both names
    SID_NAME_USE use = SidTypeUnknown;
    const PSID sid = reinterpret_cast<const TOKEN_USER*>(user.get())->User.Sid;
    if (LookupAccountSidW(nullptr, sid, account.data(), &characters, domain.data(), &characters, &use) == FALSE) return FALSE;
    copyOwnerName(accountOut, viewOf(std::span<const WCHAR>(account)));
    copyOwnerName(domainOut, viewOf(std::span<const WCHAR>(domain)));
    return TRUE;
}

BOOL PrintProcessNameAndID(DWORD processId, std::span<WCHAR> nameOut) {
    const Handle process(OpenProcess(kProcessAccess, FALSE, processId));
    if (!process) {
        logMorvil(1, kError, TEXT("PrintProcessNameAndID hProcess invalid ProcessID=%d"), processId, kLogEnd);
        return FALSE;
    }
    return logProcess(process.get(), processId, nameOut);
}

BOOL logProcess(HANDLE process, DWORD processId, std::span<WCHAR> nameOut) {
    HMODULE module = nullptr;
    DWORD bytes = 0;
    if (EnumProcessModules(process, &module, sizeof(module), &bytes) == FALSE) return FALSE;

    std::array<WCHAR, kProcessNameCharacters> processName{};
    if (GetModuleBaseNameW(process, module, processName.data(), kProcessNameCharacters) == 0) copyText(processName, kUnknownProcess);
    std::array<WCHAR, kNameCapacity> userName{};
    DWORD userCharacters = kNameCapacity;
    if (GetUserNameW(userName.data(), &userCharacters) == FALSE) userName[0] = 0;
    std::array<WCHAR, kOwnerCharacters> owner{};
    std::array<WCHAR, kOwnerCharacters> domain{};
    if (processId != 0) tokenOwner(processId, owner, domain);

    logMorvil(1, kInformation, TEXT("UserName=%s, ProcessName=%s, ProcessID=%d, ProcessOwner=%s, ProcessDomain=%s"), userName.data(),
              processName.data(), processId, owner.data(), domain.data(), kLogEnd);
    if (!nameOut.empty()) copyText(nameOut, processName.data());
    return TRUE;
}

void recordCallingProcess() { PrintProcessNameAndID(GetCurrentProcessId(), state().processName); }

}  // namespace morvil
