// Interrupts.h - what the system can do to this process in the middle of a document: signals that ask it to end, standard
// streams that are closed or lead nowhere, limits on file sizes. None of them may leave a half-made job behind.
#pragma once

namespace morvil::tool {

// While it lives, the signals that ask a process to end (Ctrl-C, a hang-up, the end of a session) only set a mark. A signal
// that the caller had ignored stays ignored.
class InterruptGuard {
  public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    [[nodiscard]] static bool interrupted();

  private:
    using Handler = void (*)(int);
    static constexpr int kSignals = 3;
    Handler m_previous[kSignals]{};
};

// For the start of the program. Writing into a pipe that nobody reads, or past the limit for a file, fails as any other write
// does instead of ending the process; and no file that is opened later stands in for a standard stream that was closed.
void prepareProcess();

}  // namespace morvil::tool
