// Sizes of the spooler's forms.
#include <gtest/gtest.h>

#include "config/MvSystemPapers.h"
#include "platform/posix/HostState.h"
#include "support/DebugCapture.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

struct SystemPapers : testing::Test {
    TempHome home;
    DebugCapture debug;
    int width = -5;
    int height = -6;

    bool ask(int index) { return MvSystemPapers::getSizeDimensions(index, &width, &height); }
};

// A spooler that knows three forms.
struct SimulatedPapers : SystemPapers {
    SimulatedPapers() { hostState().forms = {{TEXT("A4"), {210000, 297000}}, {TEXT("Odd"), {215900, 279999}}, {TEXT("Last"), {1000, 2000}}}; }
};

const std::string kInvalid = "MvSystemPapers::getSizeDimensions, invalid parameters\n";

}  // namespace

TEST_F(SystemPapers, invalidParameters_areRefused) {
    EXPECT_FALSE(ask(0));
    EXPECT_FALSE(ask(-1));
    EXPECT_FALSE(MvSystemPapers::getSizeDimensions(1, nullptr, &height));
    EXPECT_FALSE(MvSystemPapers::getSizeDimensions(1, &width, nullptr));
    EXPECT_EQ(debug.count(kInvalid), 4U);
    EXPECT_EQ(width, -5);
    EXPECT_EQ(height, -6);
}

TEST_F(SimulatedPapers, lastForm_isNeverGiven) {
    EXPECT_FALSE(ask(3));
    EXPECT_FALSE(ask(4));
    EXPECT_EQ(width, -5);
    EXPECT_TRUE(debug.has("MvSystemPapers::getSizeDimensions, iIndex=3, width=0, height=0, bRet=0\n"));
}

TEST_F(SimulatedPapers, forms_countFromOneInWholeMillimetres) {
    EXPECT_TRUE(ask(1));
    EXPECT_EQ(width, 210);
    EXPECT_EQ(height, 297);
    EXPECT_TRUE(ask(2));
    EXPECT_EQ(width, 215);
    EXPECT_EQ(height, 279);
    EXPECT_TRUE(debug.has("MvSystemPapers::getSizeDimensions, iIndex=2, width=215, height=279, bRet=1\n"));
}

TEST_F(SimulatedPapers, serverThatCannotBeReached_givesNothing) {
    for (const char* function : {"OpenPrinterW", "EnumFormsW"}) {
        hostState().refusals = {{function, ERROR_ACCESS_DENIED}};
        EXPECT_FALSE(ask(1)) << function;
        EXPECT_EQ(width, -5);
    }
}

TEST_F(SimulatedPapers, noForms_giveNothing) {
    hostState().forms.clear();
    EXPECT_FALSE(ask(1));
}

}  // namespace morvil::test
