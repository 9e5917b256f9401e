// NeedsSimulatedMachine.h - ends a case that asks for a machine state which only the substitute of the system can be put into.
#pragma once

#include <string>

namespace morvil::test {

// Marks the running case as skipped, with what it would have needed, and leaves it.
[[noreturn]] void needsSimulatedMachine(const std::string& what);

}  // namespace morvil::test
