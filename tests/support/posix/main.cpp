// main.cpp - the test runner of every test program: GoogleTest with the leak listener.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "support/posix/LeakListener.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    // The list takes ownership.
    testing::UnitTest::GetInstance()->listeners().Append(std::make_unique<morvil::test::LeakListener>().release());
    return RUN_ALL_TESTS();
}
