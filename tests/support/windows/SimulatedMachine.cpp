// SimulatedMachine.cpp - what stands for the substitute of the system where the system itself is there: nothing but the
// skipping of cases.
#include <array>

#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "support/ChildProcess.h"
#include "support/FailingCalls.h"

namespace morvil {

HostState& hostState() { test::needsSimulatedMachine("a state of the system that is set by the test"); }

Outstanding outstanding() {
    std::array<HMODULE, 1024> modules{};
    DWORD bytes = 0;
    if (EnumProcessModules(GetCurrentProcess(), modules.data(), sizeof(modules), &bytes) == FALSE) return {};
    Outstanding now;
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles) != FALSE) now.handles = handles;
    HANDLE token = nullptr;
    if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token) != FALSE) {
        CloseHandle(token);
        now.impersonations = 1;
    }
    for (std::size_t i = 0; i < bytes / sizeof(HMODULE); ++i) {
        std::array<WCHAR, MAX_PATH> file{};
        GetModuleFileNameW(modules[i], file.data(), static_cast<DWORD>(file.size()));
        const bool ofTheSystem = CompareStringOrdinal(file.data(), 10, L"C:\\Windows", 10, TRUE) == CSTR_EQUAL;
        if (!ofTheSystem && modules[i] != GetModuleHandleW(nullptr)) ++now.libraries;
    }
    return now;
}

PlatformCalls& platformCalls() {
    static PlatformCalls calls;
    return calls;
}
const PlatformCalls& systemCalls() { return platformCalls(); }

namespace test {

FailingCalls::FailingCalls(int n, Fault fault, std::string_view only) : m_n(n), m_fault(fault), m_only(only) {
    needsSimulatedMachine("system calls that fail" + (only.empty() ? std::string() : ": " + m_only));
}
FailingCalls::~FailingCalls() = default;
bool FailingCalls::strikes(const char* /*call*/) { return m_n == m_seen && m_fault == Fault::Transient; }

ChildProcess::ChildProcess(const std::function<int(const Link&)>& /*work*/) { needsSimulatedMachine("a process that is split in two"); }
ChildProcess::~ChildProcess() = default;
bool ChildProcess::waitUntilReady() const { return m_child >= 0; }
void ChildProcess::letGo() const {}
int ChildProcess::finish() { return m_toChild; }
void ChildProcess::kill() {}
void ChildProcess::Link::ready() const {}
void ChildProcess::Link::waitForParent() const {}

}  // namespace test

}  // namespace morvil
