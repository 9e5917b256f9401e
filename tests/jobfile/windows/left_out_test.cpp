// Cases of posix/ that this system has no counterpart for.
#include <gtest/gtest.h>

#include "support/windows/NeedsSimulatedMachine.h"

namespace morvil::test {

TEST(JobPipe, a_place_that_cannot_be_reached_is_logged) { needsSimulatedMachine("a file that turns into a pipe"); }

}  // namespace morvil::test
