// Cases of posix/ that this system has no counterpart for.
#include <gtest/gtest.h>

#include "support/windows/NeedsSimulatedMachine.h"

namespace morvil::test {

TEST(FolderMode, a_folder_gives_everything_to_the_users) { needsSimulatedMachine("the permission bits of a folder"); }

}  // namespace morvil::test
