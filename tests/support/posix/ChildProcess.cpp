#include "support/ChildProcess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace morvil::test {

namespace {

constexpr char kSignal = '!';

bool sendTo(int pipe) { return ::write(pipe, &kSignal, 1) == 1; }

bool receiveFrom(int pipe) {
    char byte = 0;
    return ::read(pipe, &byte, 1) == 1;
}

}  // namespace

void ChildProcess::Link::ready() const { sendTo(m_toParent); }
void ChildProcess::Link::waitForParent() const { receiveFrom(m_fromParent); }

ChildProcess::ChildProcess(const std::function<int(const Link&)>& work) {
    std::array<int, 2> up{};
    std::array<int, 2> down{};
    if (::pipe(up.data()) != 0 || ::pipe(down.data()) != 0) throw std::runtime_error("no pipe");
    m_child = ::fork();
    if (m_child < 0) throw std::runtime_error("no child process");
    if (m_child == 0) {
        ::close(up[0]);
        ::close(down[1]);
        Link link;
        link.m_toParent = up[1];
        link.m_fromParent = down[0];
        ::_exit(work(link));
    }
    ::close(up[1]);
    ::close(down[0]);
    m_fromChild = up[0];
    m_toChild = down[1];
}

ChildProcess::~ChildProcess() {
    kill();
    ::close(m_fromChild);
    ::close(m_toChild);
}

bool ChildProcess::waitUntilReady() const { return receiveFrom(m_fromChild); }
void ChildProcess::letGo() const { sendTo(m_toChild); }

int ChildProcess::finish() {
    if (m_child < 0) return -1;
    int status = 0;
    ::waitpid(m_child, &status, 0);
    m_child = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::kill() {
    if (m_child < 0) return;
    ::kill(m_child, SIGKILL);
    finish();
}

}  // namespace morvil::test
