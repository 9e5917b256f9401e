#include "support/windows/NeedsSimulatedMachine.h"

#include <gtest/gtest.h>

namespace morvil::test {

namespace {

void skip(const std::string& what) { GTEST_SKIP() << "needs a simulated machine: " << what; }

}  // namespace

// The framework takes this exception as the end of the case and not as a failure: what there was to say has been said.
void needsSimulatedMachine(const std::string& what) {
    skip(what);
    throw testing::AssertionException(testing::TestPartResult(testing::TestPartResult::kSkip, nullptr, -1, what.c_str()));
}

}  // namespace morvil::test
