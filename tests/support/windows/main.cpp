// main.cpp - the test runner of every test program on Windows. What a test leaves behind is watched where the system is
// simulated.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
