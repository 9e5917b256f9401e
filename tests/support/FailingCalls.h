// FailingCalls.h - makes the n-th system call of this host fail, once or from then on, while it lives.
// A loop over n = 1, 2, ... until fired() is 0 visits every call of an operation. One at a time.
//     for (int n = 1;; ++n) {
//         FailingCalls faults(n, Fault::Persistent);
//         operation();
//         if (faults.fired() == 0) break;
//     }
#pragma once

#include <string>
#include <string_view>

namespace morvil::test {

enum class Fault { Transient, Persistent };

class FailingCalls {
  public:
    // Counts every call of the table, or only those called `only` ("open", "write", "rename", ...).
    FailingCalls(int n, Fault fault, std::string_view only = {});
    ~FailingCalls();
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    // How many calls failed so far.
    [[nodiscard]] int fired() const { return m_fired; }
    // The first call that failed; empty when none did.
    [[nodiscard]] const std::string& failedCall() const { return m_failedCall; }

    // For the replaced calls: whether this one fails now.
    bool strikes(const char* call);

  private:
    int m_n;
    Fault m_fault;
    std::string m_only;
    int m_seen = 0;
    int m_fired = 0;
    std::string m_failedCall;
};

}  // namespace morvil::test
