// ChildProcess.h - runs a piece of a test in a process of its own, hand in hand with the test. Never throws out of the child;
// what the child checks it reports through its exit status.
#pragma once

#include <sys/types.h>

#include <functional>

namespace morvil::test {

class ChildProcess {
  public:
    // The child's side: tells the test that it has come so far, and waits until the test lets it go on.
    class Link {
      public:
        void ready() const;
        void waitForParent() const;

      private:
        friend class ChildProcess;
        int m_toParent = -1;
        int m_fromParent = -1;
    };

    // `work` returns the child's exit status.
    explicit ChildProcess(const std::function<int(const Link&)>& work);
    // Ends the child when nobody waited for it.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // False when the child ended without getting ready.
    bool waitUntilReady() const;
    void letGo() const;
    // Waits for the end; the exit status, -1 after a signal.
    int finish();
    // Ends the child at once, as a power cut would.
    void kill();

  private:
    pid_t m_child = -1;
    int m_toChild = -1;
    int m_fromChild = -1;
};

}  // namespace morvil::test
