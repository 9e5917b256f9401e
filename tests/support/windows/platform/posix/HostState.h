// HostState.h - in place of the substitute's state, so that a case which simulates a machine compiles on Windows and skips
// itself. The members are what such cases assign to; no object of this type exists.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/Text.h"

namespace morvil {

struct Account {
    WString name;
    WString domain;
};

struct ProcessEntry {
    WString moduleName;
    std::optional<std::uint32_t> owner;
};

struct SystemVersion {
    DWORD major, minor, build;
    WString servicePack;
};

struct SpoolerPrinter {
    WString name, server, share, port, driver, comment, separatorFile, processor, dataType;
    DWORD attributes = 0;
    DWORD jobs = 0;
};

struct SpoolerForm {
    WString name;
    SIZEL size{};
};

struct HostState {
    WString userName;
    std::map<std::uint32_t, Account> accounts;
    std::map<DWORD, ProcessEntry> processes;
    SystemVersion version;
    WORD processorArchitecture = 0;
    std::vector<SpoolerPrinter> printers;
    std::vector<SpoolerForm> forms;
    std::optional<std::chrono::system_clock::time_point> fixedTime;
    std::function<void(WStringView)> debugListener;
    std::map<std::string, DWORD, std::less<>> refusals;
};

// Skips the running case.
HostState& hostState();

struct Outstanding {
    std::size_t handles = 0;         // of the process
    std::size_t libraries = 0;       // loaded from elsewhere than the system's folder
    std::size_t impersonations = 0;  // 1 while this thread acts as somebody else
};
Outstanding outstanding();

}  // namespace morvil
