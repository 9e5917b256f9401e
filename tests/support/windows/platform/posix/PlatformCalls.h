// PlatformCalls.h - in place of the substitute's table of system calls: whoever replaces one of them is skipped, and putting
// the whole table back does nothing.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include "support/windows/NeedsSimulatedMachine.h"

namespace morvil {

struct PlatformCalls {
    class Call {
      public:
        template <typename Replacement>
        Call& operator=(const Replacement&) {
            test::needsSimulatedMachine("a replaced system call");
        }
        template <typename... Arguments>
        int operator()(const Arguments&...) const {
            test::needsSimulatedMachine("a system call by its number");
        }
    };
    Call open, read, write, close, truncate, flush, status, remove, rename, renameToNew, changeMode, makeFolder, removeFolder, lock, sleep;

    class Allocation : public Call {
      public:
        using Call::operator=;
        void* operator()(std::size_t) const { test::needsSimulatedMachine("a system call by its number"); }
    };
    Allocation allocate;
};

PlatformCalls& platformCalls();
const PlatformCalls& systemCalls();

}  // namespace morvil
