#include "platform/posix/HostState.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "platform/posix/Errors.h"
#include "platform/posix/HostPath.h"
#include "platform/posix/NamedMutex.h"
#include "platform/posix/PlatformCalls.h"
#include "platform/posix/usual_forms.h"

namespace morvil {

namespace {

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::string accountFolder() {
    std::string folder = environment("HOME");
    if (!folder.empty()) return folder;
    const passwd* const entry = ::getpwuid(::geteuid());
    return entry != nullptr && entry->pw_dir != nullptr ? entry->pw_dir : "/tmp";
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::string usualHome() {
    if (const std::string home = environment("MORVIL_HOME"); !home.empty()) return withoutTrailingSlashes(home);
    if (const std::string data = environment("XDG_DATA_HOME"); data.starts_with('/')) return withoutTrailingSlashes(data) + "/morvil";
    return withoutTrailingSlashes(accountFolder()) + "/.local/share/morvil";
}

SpoolerPrinter usualPrinter() {
    return {.name = TEXT("Morvil"),
            .server = {},
            .share = {},
            .port = TEXT("MORVIL:"),
            .driver = TEXT("Morvil"),
            .comment = {},
            .separatorFile = {},
            .processor = TEXT("winprint"),
            .dataType = TEXT("RAW"),
            .attributes = PRINTER_ATTRIBUTE_LOCAL,
            .jobs = 0};
}

std::function<void(WStringView)> usualListener() {
    if (environment("MORVIL_DEBUG_OUTPUT") != "stderr") return {};
    return [](WStringView text) {
        const std::string bytes = toUtf8(text);
        std::fwrite(bytes.data(), 1, bytes.size(), stderr);
    };
}

// Never destroyed: objects that die at the end of the process still free blocks, close handles and log.
union KeptState {
    KeptState() : state() {}
    ~KeptState() {}  // NOLINT(modernize-use-equals-default): the default one would be deleted
    HostState state;
};

}  // namespace

HostState::HostState() : home(usualHome()), printers{usualPrinter()}, forms(usualForms()), debugListener(usualListener()) {}

HostState& hostState() {
    static KeptState kept;
    return kept.state;
}

void resetHostState() {
    HostState& state = hostState();
    for (const HandleEntry& entry : state.handles.takeAll()) {
        if (entry.kind == HandleKind::File) ::close(entry.file);
    }
    state.profiles.clear();
    const HostState fresh;
    const std::lock_guard guard(state.lock);
    state.home = fresh.home;
    state.lockFolder = fresh.lockFolder;
    state.userName = fresh.userName;
    state.accounts = fresh.accounts;
    state.processes = fresh.processes;
    state.version = fresh.version;
    state.processorArchitecture = fresh.processorArchitecture;
    state.printers = fresh.printers;
    state.forms = fresh.forms;
    state.fixedTime = fresh.fixedTime;
    state.debugListener = fresh.debugListener;
    state.refusals = fresh.refusals;
    state.fileMoved = fresh.fileMoved;
    state.profileOverrides = fresh.profileOverrides;
    state.mutexes.clear();
    state.parkedMutexes.clear();
    state.impersonation.clear();
}

Outstanding outstanding() {
    HostState& state = hostState();
    Outstanding now{.blocks = state.blocks,
                    .handles = state.handles.countAll(),
                    .files = state.handles.count(HandleKind::File),
                    .heldMutexes = 0,
                    .libraries = 0,
                    .impersonations = 0};
    std::vector<std::shared_ptr<NamedMutex>> mutexes;
    {
        const std::lock_guard guard(state.lock);
        now.libraries = state.libraries.size();
        now.impersonations = state.impersonation.size();
        for (const auto& [file, mutex] : state.mutexes) mutexes.push_back(mutex.lock());
    }
    for (const auto& mutex : mutexes) now.heldMutexes += mutex && mutex->isHeld() ? 1 : 0;
    return now;
}

bool refused(std::string_view function) {
    const auto& refusals = hostState().refusals;
    if (refusals.empty()) return false;
    const auto refusal = refusals.find(function);
    if (refusal == refusals.end()) return false;
    SetLastError(refusal->second);
    return true;
}

std::string lockFolderName() {
    const HostState& state = hostState();
    return state.lockFolder.empty() ? state.home + "/.locks" : state.lockFolder;
}

std::string lockFolder() {
    std::string folder = lockFolderName();
    return makeFolders(folder) ? folder : std::string();
}

}  // namespace morvil
