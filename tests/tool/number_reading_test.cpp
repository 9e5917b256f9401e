// Settings whose number the driver reads as another one: told when they are stored.
#include <gmock/gmock.h>

#include <fstream>

#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class NumberReading : public PrintFixture {
  protected:
    static constexpr const char* kOptions = "PrinterDriver.Configuration.Print.Process.ProcessOption.";
    static constexpr const char* kResolution = "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution";

    Outcome set(const std::string& item, const std::string& value) const {
        const Outcome outcome = run({"config", "set", item, value});
        EXPECT_EQ(outcome.status, kDone) << item;
        EXPECT_EQ(run({"config", "get", item}).out, value + "\n");  // stored all the same
        return outcome;
    }
};

struct Reading {
    const char* item;
    const char* value;
    const char* told;  // behind the item; empty: nothing
};

const Reading kReadings[] = {
    {"Resolution@index", "9", "the driver reads \"9\" as 2; it takes 0 to 5"},
    {"Resolution@index", "5", ""},
    {"Resolution@index", "+5", "the driver reads \"+5\" as 0; it takes 0 to 5"},
    {"Resolution@index", "high", "the driver reads \"high\" as 0; it takes 0 to 5"},
    {"Resolution@other", "9", ""},
    {"Resolution", "9", ""},  // its number is the attribute
    {"Cutline@index", "-1", "the driver reads \"-1\" as 0; it takes 0 to 3"},
    {"Layers", "300", "the driver reads \"300\" as 2; it takes 2 to 255"},
    {"Layers", "255", ""},
    {"ZAdjustment", "5.01", "the driver reads \"5.01\" as 0.01; it takes 0 to 5"},
    {"ZAdjustment", "0,125", ""},
    {"ZAdjustment", "0.1", ""},
    {"Rotary.Diameter", "wide", "the driver reads \"wide\" as 0"},
    {"Unknown", "9", ""},
};

TEST_F(NumberReading, of_another_number_is_told) {
    for (const Reading& reading : kReadings) {
        const std::string item = std::string(kOptions) + reading.item;
        const std::string err = set(item, reading.value).err;
        if (std::string(reading.told).empty()) EXPECT_THAT(err, IsEmpty()) << item << ' ' << reading.value;
        else EXPECT_EQ(err, "morvil config: " + item + ": " + reading.told + "\n");
    }
}

TEST_F(NumberReading, goes_by_the_whole_path) {
    EXPECT_THAT(set("PrinterDriver.Configuration.Halftone.Algorithm", "6").err, HasSubstr("as 0; it takes 0 to 5"));
    EXPECT_THAT(set("PrinterDriver.ConfigurationStore.Mine.Print.Process.ProcessOption.Layers", "1").err, HasSubstr("as 2; it takes 2 to 255"));
    EXPECT_THAT(set("PrinterDriver.ConfigurationStore.Mine.Halftone.Algorithm", "6").err, IsEmpty());  // read for the active one alone
    EXPECT_THAT(set("PrinterDriver.Other.Print.Process.ProcessOption.Layers", "1").err, IsEmpty());
    EXPECT_THAT(set("PrinterDriver.BoundingBox.Offset.Bottom", "x").err, HasSubstr("reads \"x\" as 0\n"));
}

TEST_F(NumberReading, of_the_z_adjustment_goes_by_the_unit) {
    ASSERT_EQ(run({"config", "dump"}).status, kDone);
    std::ofstream(m_home.folder() / "ProgramData/Morvil/Plotkeeper/0.0.0/pk.ini") << "[UserSetup]\nUseInch=1\n";
    EXPECT_THAT(set(std::string(kOptions) + "ZAdjustment", "0.3").err, HasSubstr("reads \"0.3\" as 0.001; it takes 0 to 0.2\n"));
}

TEST_F(NumberReading, is_told_when_printing_as_well) {
    const Outcome outcome = run({"print", "--quiet", "--spool", m_spool.string(), "--set", std::string(kResolution) + "@index=9", sample("badge.emf")});
    EXPECT_EQ(outcome.status, kDone);
    EXPECT_EQ(outcome.err, "morvil print: " + std::string(kResolution) + "@index: the driver reads \"9\" as 2; it takes 0 to 5\n");
}

}  // namespace
}  // namespace morvil::tool
