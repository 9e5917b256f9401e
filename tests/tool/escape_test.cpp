// "morvil escape": what it sends, what it prints, and which configuration the printer has afterwards.
#include <gmock/gmock.h>

#include "config/CPrinterConfig.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Escape : public PrintFixture {
  protected:
    static Outcome escape(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "escape");
        return run(std::move(arguments));
    }
    // Stores a configuration that differs from the current one in its resolution.
    static void storeConfiguration(const std::string& name) {
        ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
        record.resolution = 333;
        ASSERT_TRUE(CPrinterConfig().setConfig(fromUtf8(name).c_str(), record));
    }
    static WORD currentResolution() {
        ConfigurationRecord record{};
        EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
        return record.resolution;
    }
};

TEST_F(Escape, usage_is_checked) {
    EXPECT_EQ(escape({}).status, kUsage);
    EXPECT_EQ(escape({"load"}).status, kUsage);
    EXPECT_EQ(escape({"-1"}).status, kUsage);
    EXPECT_EQ(escape({"4294967296"}).status, kUsage);
    const Outcome number = escape({"8", "9100x"});
    EXPECT_EQ(number.status, kUsage);
    EXPECT_THAT(number.err, HasSubstr("this code takes a number, not \"9100x\""));
    const Outcome text = escape({"9100", "\xE2\x82\xAC"});
    EXPECT_EQ(text.status, kUsage);
    EXPECT_THAT(text.err, HasSubstr("beyond Latin-1"));
}

TEST_F(Escape, an_unknown_code_gives_0) {
    const Outcome outcome = escape({"77", "text"});
    EXPECT_EQ(outcome.status, kWrong);
    EXPECT_THAT(outcome.lines(), ElementsAre("0"));
}

TEST_F(Escape, support_is_asked_for) {
    for (const auto& [code, result] : std::vector<std::pair<std::string, std::string>>{{"8", "1"}, {"17", "1"}, {"19", "0"}, {"9100", "1"}, {"9101", "0"}}) {
        EXPECT_THAT(escape({"8", code}).lines(), ElementsAre(result)) << code;
    }
    EXPECT_EQ(escape({"8"}).status, kWrong) << "without a code to ask for";
}

TEST_F(Escape, one_copy_is_made) {
    EXPECT_THAT(escape({"17", "5"}).lines(), ElementsAre("1", "answer 1"));
    EXPECT_THAT(escape({"17", "0"}).lines(), ElementsAre("0"));
    EXPECT_EQ(escape({"17", "5", "--json"}).out, "{\n  \"code\": 17,\n  \"result\": 1,\n  \"answer\": 1\n}\n");
}

TEST_F(Escape, a_stored_configuration_is_loaded) {
    escape({"8", "8"});  // the first call makes the configuration file
    storeConfiguration("Wood");
    ASSERT_NE(currentResolution(), 333);
    EXPECT_EQ(escape({"9101", "Wood"}).status, kDone);
    EXPECT_EQ(escape({"9101", "Stone"}).status, kWrong);
    EXPECT_EQ(escape({"9100", "Stone"}).status, kWrong);
    EXPECT_NE(currentResolution(), 333);
    EXPECT_THAT(escape({"9100", "Wood"}).lines(), ElementsAre("1"));
    EXPECT_EQ(currentResolution(), 333);
}

// 259 characters are the longest name; nothing longer may load what its beginning names.
TEST_F(Escape, names_of_any_length_are_survived) {
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{259}, std::size_t{260}, std::size_t{100'000}}) {
        EXPECT_THAT(escape({"9100", std::string(length, 'x')}).lines(), ElementsAre("0")) << length;
        EXPECT_THAT(escape({"9101", std::string(length, 'x')}).lines(), ElementsAre("0")) << length;
    }
}

}  // namespace
}  // namespace morvil::tool
