#include "driver/impersonation.h"

#include <array>
#include <utility>

#include "driver/Handle.h"
#include "driver/State.h"
#include "driver/host_information.h"
#include "driver/log/Log.h"

namespace morvil {

namespace {

void openPrintingToken(HANDLE process) {
    HANDLE token = nullptr;
    if (OpenProcessToken(process, TOKEN_DUPLICATE | TOKEN_IMPERSONATE | TOKEN_QUERY, &token) == FALSE) {
        logMorvil(1, kError, TEXT("SwitchToLoggedOnUser ProcessToken Error=%d"), GetLastError(), kLogEnd);
        return;
    }
    state().impersonationToken = token;
    logMorvil(1, kInformation, TEXT("SwitchToLoggedOnUser ProcessToken=%X"), low32(token), kLogEnd);
}

}  // namespace

bool isSystemAccount(WStringView userName) { return userName == TEXT("system") || userName == TEXT("SYSTEM"); }

BOOL IsSystemUser() {
    std::array<WCHAR, kNameCapacity> userName{};
    DWORD characters = kNameCapacity;
    if (GetUserNameW(userName.data(), &characters) == FALSE) {
        logMorvil(1, kError, TEXT("IsSystemUser (2)"), kLogEnd);
        return FALSE;
    }
    if (!isSystemAccount(viewOf(std::span<const WCHAR>(userName)))) return FALSE;
    logMorvil(1, kNotice, TEXT("IsSystemUser"), kLogEnd);
    return TRUE;
}

BOOL SwitchToLoggedOnUser(DWORD processId) {
    HANDLE printingApplication = nullptr;
    {
        const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
        printingApplication = process.get();
        if (process) openPrintingToken(process.get());
    }
    if (ImpersonateLoggedOnUser(state().impersonationToken) == FALSE) {
        logMorvil(1, kError, TEXT("SwitchToLoggedOnUser ImpersonateLoggedOnUser hPrintingApplication=%X, Error=%d"),
                  low32(printingApplication), GetLastError(), kLogEnd);
    } else {
        logMorvil(1, kInformation, TEXT("SwitchToLoggedOnUser ImpersonateLoggedOnUser"), kLogEnd);
    }
    return TRUE;
}

void becomePrintingUser(DWORD processId) {
    if (IsSystemUser() != FALSE) SwitchToLoggedOnUser(processId);
}

void endImpersonation() {
    if (state().impersonationToken == nullptr) return;
    RevertToSelf();
    CloseHandle(std::exchange(state().impersonationToken, nullptr));
}

}  // namespace morvil
