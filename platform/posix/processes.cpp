// processes.cpp - who runs, and on what. Promises: a process of this host can be opened by its number when it belongs to the
// same user (or the caller is root), as can one that the host state lists; it has one module, its program; the user name is
// that of the impersonated user while the thread impersonates one; GetVersionExW tells what the host state says.
// Refuses: process number 0 (ERROR_INVALID_PARAMETER), processes of others (ERROR_ACCESS_DENIED), modules beyond the first.
#include <pthread.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <fstream>
#include <memory>
#include <string>

#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"
#include "platform/posix/Process.h"
#include "platform/posix/kernel.h"

namespace morvil {

namespace {

// The numbers of this process and of each thread, asked for once; a forked child asks anew.
std::atomic<DWORD> thisProcess = 0;
thread_local DWORD thisThread = 0;

void forgetNumbers() {
    thisProcess = 0;
    thisThread = 0;  // of the thread that forked, the only one that the child has
}
[[maybe_unused]] const int atFork = ::pthread_atfork(nullptr, nullptr, forgetNumbers);

std::string processFolder(DWORD process) { return "/proc/" + std::to_string(process); }

WString programNameOf(DWORD process) {
    std::array<char, 4096> target{};
    const ssize_t size = ::readlink((processFolder(process) + "/exe").c_str(), target.data(), target.size());
    if (size > 0) {
        const std::string_view path(target.data(), static_cast<std::size_t>(size));
        return fromUtf8(path.substr(path.rfind('/') + 1));
    }
    std::string name;
    std::ifstream command(processFolder(process) + "/comm");
    std::getline(command, name);
    return fromUtf8(name);
}

bool mayOpen(std::uint32_t owner) { return ::geteuid() == 0 || ::geteuid() == owner; }

WString systemAccountName(std::uint32_t user) {
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const int result = ::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found);
    return result == 0 && found != nullptr ? fromUtf8(found->pw_name) : WString();
}

WString hostName() {
    std::array<char, 256> name{};
    ::gethostname(name.data(), name.size() - 1);
    return fromUtf8(name.data());
}

}  // namespace

std::shared_ptr<ProcessObject> processOf(HANDLE handle) {
    if (handle != GetCurrentProcess()) return hostState().handles.get<ProcessObject>(handle, HandleKind::Process);
    auto self = std::make_shared<ProcessObject>();
    if (!describeProcess(GetCurrentProcessId(), *self)) return nullptr;
    return self;
}

bool describeProcess(DWORD number, ProcessObject& process) {
    const auto& known = hostState().processes;
    const auto entry = known.find(number);
    struct stat status {};
    const bool runs = ::stat(processFolder(number).c_str(), &status) == 0;
    if (number == 0 || (!runs && entry == known.end())) return failWith(ERROR_INVALID_PARAMETER) != FALSE;
    process.number = number;
    process.owner = runs ? status.st_uid : ::geteuid();
    if (entry == known.end()) {
        if (!mayOpen(process.owner)) return failWith(ERROR_ACCESS_DENIED) != FALSE;
        process.moduleName = programNameOf(number);
        return true;
    }
    process.owner = entry->second.owner.value_or(process.owner);
    process.moduleName = entry->second.moduleName.empty() && runs ? programNameOf(number) : entry->second.moduleName;
    return true;
}

Account accountOf(std::uint32_t user) {
    const auto& accounts = hostState().accounts;
    const auto known = accounts.find(user);
    if (known != accounts.end()) return known->second;
    WString name = systemAccountName(user);
    return name.empty() ? Account{} : Account{std::move(name), hostName()};
}

}  // namespace morvil

using namespace morvil;

DWORD GetCurrentProcessId() {
    DWORD number = thisProcess.load(std::memory_order_relaxed);
    if (number == 0) thisProcess.store(number = static_cast<DWORD>(::getpid()), std::memory_order_relaxed);
    return number;
}

DWORD GetCurrentThreadId() {
    if (thisThread == 0) thisThread = static_cast<DWORD>(::syscall(SYS_gettid));
    return thisThread;
}
HANDLE GetCurrentProcess() { return INVALID_HANDLE_VALUE; }  // the platform's pseudo-handle has this value, too

HANDLE OpenProcess(DWORD, BOOL, DWORD processId) {
    if (refused("OpenProcess")) return nullptr;
    auto process = std::make_shared<ProcessObject>();
    if (!describeProcess(processId, *process)) return nullptr;
    const HANDLE handle = hostState().handles.add({.kind = HandleKind::Process, .file = -1, .object = std::move(process)});
    if (handle != INVALID_HANDLE_VALUE) return handle;
    SetLastError(ERROR_TOO_MANY_OPEN_FILES);
    return nullptr;
}

BOOL EnumProcessModules(HANDLE process, HMODULE* modules, DWORD bytes, LPDWORD needed) {
    if (refused("EnumProcessModules")) return FALSE;
    if (!processOf(process)) return failWith(ERROR_INVALID_HANDLE);
    if (needed != nullptr) *needed = sizeof(HMODULE);
    // Any value that is not null: it only travels on to GetModuleBaseNameW.
    if (modules != nullptr && bytes >= sizeof(HMODULE)) *modules = reinterpret_cast<HMODULE>(process);
    return TRUE;
}

DWORD GetModuleBaseNameW(HANDLE process, HMODULE, LPWSTR out, DWORD outCharacters) {
    if (refused("GetModuleBaseNameW")) return 0;
    const auto object = processOf(process);
    if (!object) return static_cast<DWORD>(failWith(ERROR_INVALID_HANDLE));
    if (out == nullptr || outCharacters == 0) return static_cast<DWORD>(failWith(ERROR_INSUFFICIENT_BUFFER));
    copyText({out, outCharacters}, object->moduleName);
    return static_cast<DWORD>(std::min<std::size_t>(object->moduleName.size(), outCharacters - 1));
}

BOOL GetUserNameW(LPWSTR out, LPDWORD characters) {
    if (refused("GetUserNameW")) return FALSE;
    if (characters == nullptr) return failWith(ERROR_INVALID_PARAMETER);
    HostState& state = hostState();
    std::optional<std::uint32_t> impersonated;
    {
        const std::lock_guard guard(state.lock);
        const auto entry = state.impersonation.find(GetCurrentThreadId());
        if (entry != state.impersonation.end()) impersonated = entry->second;
    }
    const bool given = !impersonated && !state.userName.empty();
    const WString name = given ? state.userName : accountOf(impersonated.value_or(::geteuid())).name;
    if (name.empty()) return failWith(ERROR_NONE_MAPPED);
    const DWORD room = out == nullptr ? 0 : *characters;
    *characters = static_cast<DWORD>(name.size() + 1);
    if (room < name.size() + 1) return failWith(ERROR_INSUFFICIENT_BUFFER);
    name.copy(out, name.size());
    out[name.size()] = 0;
    return TRUE;
}

BOOL GetVersionExW(OSVERSIONINFOW* version) {
    if (refused("GetVersionExW")) return FALSE;
    if (version == nullptr || version->dwOSVersionInfoSize < sizeof(OSVERSIONINFOW)) return failWith(ERROR_INSUFFICIENT_BUFFER);
    constexpr DWORD kPlatformNt = 2;
    const SystemVersion& system = hostState().version;
    version->dwMajorVersion = system.major;
    version->dwMinorVersion = system.minor;
    version->dwBuildNumber = system.build;
    version->dwPlatformId = kPlatformNt;
    copyText(version->szCSDVersion, system.servicePack);
    return TRUE;
}

void GetSystemInfo(SYSTEM_INFO* info) {
    *info = {};
    info->wProcessorArchitecture = hostState().processorArchitecture;
    info->dwPageSize = static_cast<DWORD>(::sysconf(_SC_PAGESIZE));
    info->dwNumberOfProcessors = static_cast<DWORD>(::sysconf(_SC_NPROCESSORS_ONLN));
    info->dwAllocationGranularity = 0x10000;
}

void GetNativeSystemInfo(SYSTEM_INFO* info) { GetSystemInfo(info); }
