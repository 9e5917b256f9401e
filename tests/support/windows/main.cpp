// main.cpp - the test runner of every test program on Windows. What a test leaves behind is watched where the system is
// simulated.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

#include "support/windows/MutexHolder.h"

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == morvil::test::kHoldMutexOption) return morvil::test::holdMutex(argv[2]);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
