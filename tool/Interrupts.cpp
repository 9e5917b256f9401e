#include "tool/Interrupts.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace morvil::tool {

namespace {

constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP};

// The engine asks for it between calls, so that an interrupted document leaves no half-made job.
volatile std::sig_atomic_t g_interrupted = 0;

}  // namespace

InterruptGuard::InterruptGuard() {
    static_assert(kEndingSignals.size() == kSignals);
    g_interrupted = 0;
    for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
        m_previous[i] = std::signal(kEndingSignals[i], [](int) { g_interrupted = 1; });
        if (m_previous[i] == SIG_IGN) std::signal(kEndingSignals[i], SIG_IGN);
    }
}

InterruptGuard::~InterruptGuard() {
    for (std::size_t i = 0; i < kEndingSignals.size(); ++i) std::signal(kEndingSignals[i], m_previous[i]);
}

bool InterruptGuard::interrupted() { return g_interrupted != 0; }

void prepareProcess() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
        // The lowest free number is this one. Opened the wrong way round: whoever uses the stream is still told that it fails.
        if (::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
    }
}

}  // namespace morvil::tool
