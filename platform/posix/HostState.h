// HostState.h - everything of this folder that outlives a call, in one visible place. A host program sets what it knows
// better than the system (data root, process names, printers) before it enables the driver; tests set it and reset it between
// cases. Besides it there are the table of system calls (PlatformCalls.h) and each thread's last error number.
// Set from one thread before others start; the parts that several threads use at once carry their own lock.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/Text.h"
#include "platform/posix/HandleTable.h"
#include "platform/posix/ProfileCache.h"

namespace morvil {

struct Account {
    WString name;
    WString domain;
};

// A process that is known under another name or owner than the system says; it need not exist.
struct ProcessEntry {
    WString moduleName;
    std::optional<std::uint32_t> owner;  // user number; the system's answer when missing
};

struct SystemVersion {
    DWORD major = 6;
    DWORD minor = 2;
    DWORD build = 9200;
    WString servicePack;
};

struct SpoolerPrinter {
    WString name;
    WString server;
    WString share;
    WString port;
    WString driver;
    WString comment;
    WString separatorFile;
    WString processor;
    WString dataType;
    DWORD attributes = 0;
    DWORD jobs = 0;
};

struct SpoolerForm {
    WString name;
    SIZEL size{};  // thousandths of a millimetre
};

// A value that this process reads from an ini file whatever the file says; the file is not changed.
struct ProfileOverride {
    WString file;  // the path as readers give it
    WString section;
    WString key;
    WString value;
};

class NamedMutex;

struct HostState {
    HostState();  // what a fresh process has, taken from the environment

    // Drive C:. $MORVIL_HOME, else $XDG_DATA_HOME/morvil, else ~/.local/share/morvil; no trailing slash.
    std::string home;
    // Holds the lock files of named mutexes and ini files. Empty: ".locks" in the data root, whose files they guard.
    std::string lockFolder;

    WString userName;                           // empty: the account of the process
    std::map<std::uint32_t, Account> accounts;  // by user number; others come from the system's account list
    std::map<DWORD, ProcessEntry> processes;    // by process number
    SystemVersion version;
    WORD processorArchitecture = PROCESSOR_ARCHITECTURE_AMD64;
    std::vector<SpoolerPrinter> printers;  // the first one is the default printer
    std::vector<SpoolerForm> forms;
    std::optional<std::chrono::system_clock::time_point> fixedTime;  // stops the clock
    std::function<void(WStringView)> debugListener;                  // empty: nobody listens

    std::function<void(WStringView from, WStringView to)> fileMoved;  // told of each file that was renamed; may be empty
    std::vector<ProfileOverride> profileOverrides;

    // Functions of the platform, by name, that fail with the given error number.
    std::map<std::string, DWORD, std::less<>> refusals;

    HandleTable handles;
    ProfileCache profiles;
    std::atomic<std::size_t> blocks = 0;  // taken with LocalAlloc and not freed

    std::mutex lock;                                           // guards what follows
    std::map<std::string, std::weak_ptr<NamedMutex>> mutexes;  // open in this process, by lock file
    std::map<std::string, std::unique_ptr<HandleObject>> parkedMutexes;  // closed, but quick to open again
    std::map<std::int64_t, std::uint32_t> impersonation;       // user number by thread
    std::map<HMODULE, unsigned> libraries;                     // references by loaded library
};

HostState& hostState();
// As in a fresh process. Open handles are closed; a mutex that is held becomes abandoned.
void resetHostState();

// What is open now; a test compares it with what was open before.
struct Outstanding {
    std::size_t blocks = 0;
    std::size_t handles = 0;
    std::size_t files = 0;
    std::size_t heldMutexes = 0;
    std::size_t libraries = 0;
    std::size_t impersonations = 0;
    bool operator==(const Outstanding&) const = default;
};
Outstanding outstanding();

// The error number that `function` must fail with now, if any; sets it as the last error as well.
bool refused(std::string_view function);

// Folder of the lock files, which need not exist.
std::string lockFolderName();
// The same, made when missing; empty with the last error set when it cannot be made.
std::string lockFolder();

}  // namespace morvil
