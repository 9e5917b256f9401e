#include "support/windows/MutexHolder.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace morvil::test {

namespace {

void close(HANDLE& handle) {
    if (handle != nullptr) CloseHandle(std::exchange(handle, nullptr));
}

struct Pipe {
    HANDLE from = nullptr;
    HANDLE to = nullptr;
};
Pipe makePipe() {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Pipe pipe;
    if (CreatePipe(&pipe.from, &pipe.to, &inherited, 0) == FALSE) throw std::runtime_error("no pipe");
    return pipe;
}

}  // namespace

int holdMutex(const char* name) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    if (WaitForSingleObject(mutex, 5000) != WAIT_OBJECT_0) return 1;
    std::fputs("!", stdout);
    std::fflush(stdout);
    while (std::fgetc(stdin) != EOF) {
    }
    return ReleaseMutex(mutex) != FALSE ? 0 : 2;
}

MutexHolder::MutexHolder(const std::string& name) {
    Pipe down = makePipe();
    Pipe up = makePipe();
    m_toHolder = down.to;
    m_fromHolder = up.from;
    for (const HANDLE ours : {m_toHolder, m_fromHolder}) SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0);
    std::array<char, MAX_PATH> program{};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    std::string command = "\"" + std::string(program.data()) + "\" " + kHoldMutexOption + " " + name;
    STARTUPINFOA start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = down.from;
    start.hStdOutput = up.to;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    close(down.from);
    close(up.to);
    if (started == FALSE) throw std::runtime_error("no child process");
    close(process.hThread);
    m_process = process.hProcess;
}

MutexHolder::~MutexHolder() {
    kill();
    close(m_toHolder);
    close(m_fromHolder);
}

bool MutexHolder::holds() const {
    char byte = 0;
    DWORD count = 0;
    return ReadFile(m_fromHolder, &byte, 1, &count, nullptr) != FALSE && count == 1;
}

void MutexHolder::letGo() { close(m_toHolder); }

DWORD MutexHolder::finish() {
    WaitForSingleObject(m_process, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(m_process, &status);
    close(m_process);
    return status;
}

void MutexHolder::kill() {
    if (m_process == nullptr) return;
    TerminateProcess(m_process, 9);
    finish();
}

}  // namespace morvil::test
