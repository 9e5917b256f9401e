// security.cpp - tokens and accounts. Promises: a token names the owner of its process; impersonating makes GetUserNameW answer
// for that user, in the calling thread, until RevertToSelf; a SID is the text "S-1-22-1-NUMBER" of a user number.
// Refuses: changing what the thread may do (files are opened as the process's own user always), other token information.
#include "platform/posix/security.h"

#include <charconv>
#include <cstring>
#include <memory>
#include <string>

#include "platform/common/Format.h"
#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"
#include "platform/posix/Process.h"

using namespace morvil;

namespace {

constexpr WStringView kSidPrefix = TEXT("S-1-22-1-");

struct TokenObject final : HandleObject {
    std::uint32_t user = 0;
};

std::shared_ptr<TokenObject> tokenOf(HANDLE handle) { return hostState().handles.get<TokenObject>(handle, HandleKind::Token); }

// The user number of a SID, if it is one of ours.
bool userOfSid(const WCHAR* sid, std::uint32_t& user) {
    const WStringView text = viewOf(sid);
    if (!text.starts_with(kSidPrefix)) return false;
    const std::string digits = toLatin1(text.substr(kSidPrefix.size()));
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), user);
    return error == std::errc() && end == digits.data() + digits.size();
}

void copyOut(LPWSTR out, WStringView text) {
    text.copy(out, text.size());
    out[text.size()] = 0;
}

}  // namespace

BOOL OpenProcessToken(HANDLE process, DWORD, HANDLE* token) {
    if (refused("OpenProcessToken")) return FALSE;
    const auto object = processOf(process);
    if (!object) return failWith(ERROR_INVALID_HANDLE);
    auto made = std::make_shared<TokenObject>();
    made->user = object->owner;
    const HANDLE handle = hostState().handles.add({.kind = HandleKind::Token, .file = -1, .object = std::move(made)});
    if (handle == INVALID_HANDLE_VALUE) return failWith(ERROR_TOO_MANY_OPEN_FILES);
    *token = handle;
    return TRUE;
}

BOOL ImpersonateLoggedOnUser(HANDLE token) {
    if (refused("ImpersonateLoggedOnUser")) return FALSE;
    const auto object = tokenOf(token);
    if (!object) return failWith(ERROR_INVALID_HANDLE);
    HostState& state = hostState();
    const std::lock_guard guard(state.lock);
    state.impersonation[GetCurrentThreadId()] = object->user;
    return TRUE;
}

BOOL RevertToSelf() {
    if (refused("RevertToSelf")) return FALSE;
    HostState& state = hostState();
    const std::lock_guard guard(state.lock);
    state.impersonation.erase(GetCurrentThreadId());
    return TRUE;
}

BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS kind, LPVOID out, DWORD bytes, LPDWORD needed) {
    if (refused("GetTokenInformation")) return FALSE;
    const auto object = tokenOf(token);
    if (!object) return failWith(ERROR_INVALID_HANDLE);
    if (kind != TokenUser) return failWith(ERROR_INVALID_PARAMETER);
    const WString sid = format(TEXT("%s%u"), kSidPrefix, object->user);
    const auto size = static_cast<DWORD>(sizeof(TOKEN_USER) + (sid.size() + 1) * sizeof(WCHAR));
    if (needed != nullptr) *needed = size;
    if (out == nullptr || bytes < size) return failWith(ERROR_INSUFFICIENT_BUFFER);
    auto* const text = reinterpret_cast<WCHAR*>(static_cast<BYTE*>(out) + sizeof(TOKEN_USER));
    const TOKEN_USER user{.User = {.Sid = text, .Attributes = 0}};
    std::memcpy(out, &user, sizeof(user));
    copyOut(text, sid);
    return TRUE;
}

BOOL LookupAccountSidW(LPCWSTR, PSID sid, LPWSTR name, LPDWORD nameCharacters, LPWSTR domain, LPDWORD domainCharacters, SID_NAME_USE* use) {
    if (refused("LookupAccountSidW")) return FALSE;
    if (sid == nullptr || nameCharacters == nullptr || domainCharacters == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    std::uint32_t user = 0;
    const Account account = userOfSid(static_cast<const WCHAR*>(sid), user) ? accountOf(user) : Account{};
    if (account.name.empty()) return failWith(ERROR_NONE_MAPPED);
    const bool fits =
        *nameCharacters > account.name.size() && *domainCharacters > account.domain.size() && name != nullptr && domain != nullptr;
    const DWORD terminator = fits ? 0 : 1;  // a success tells lengths, a failure sizes
    *nameCharacters = static_cast<DWORD>(account.name.size()) + terminator;
    *domainCharacters = static_cast<DWORD>(account.domain.size()) + terminator;
    if (!fits) return failWith(ERROR_INSUFFICIENT_BUFFER);
    copyOut(name, account.name);
    copyOut(domain, account.domain);
    if (use != nullptr) *use = SidTypeUser;
    return TRUE;
}
