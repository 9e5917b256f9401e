// Cases of posix/ that this system has no counterpart for.
#include <gtest/gtest.h>

#include "support/windows/NeedsSimulatedMachine.h"

namespace morvil::test {

TEST(FolderMode, a_folder_gives_everything_to_the_users) { needsSimulatedMachine("the permission bits of a folder"); }
TEST(FolderCalls, nothing_is_asked_twice_when_everything_is_there) { needsSimulatedMachine("counted calls of the system"); }

}  // namespace morvil::test
