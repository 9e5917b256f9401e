// Conversions between configuration texts and numbers: the round-trip rule, its messages, and the text services.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "config/CMvString.h"
#include "support/DebugCapture.h"
#include "support/TempHome.h"

namespace morvil {
namespace {

using test::DebugCapture;
using testing::ElementsAre;
using testing::IsEmpty;

class MvString : public testing::Test {
  protected:
    // Converts and returns the messages that this sent.
    template <typename Call>
    std::vector<std::string> messagesOf(Call call) {
        m_capture.clear();
        call();
        return m_capture.texts();
    }

    test::TempHome m_home;
    DebugCapture m_capture;
    CMvString m_string;
};

struct Refused {
    const WCHAR* text;
    const char* shown;  // the text inside the message
};

constexpr Refused kNoWholeNumbers[] = {
    {TEXT(""), ""},       {TEXT("007"), "007"},   {TEXT("+5"), "+5"},     {TEXT("12 "), "12 "},
    {TEXT(" 12"), " 12"}, {TEXT("\t12"), "\t12"}, {TEXT("12.0"), "12.0"}, {TEXT("0x10"), "0x10"},
    {TEXT("abc"), "abc"}, {TEXT("-0"), "-0"},     {TEXT("--3"), "--3"},   {TEXT("- 3"), "- 3"},
    {TEXT("1e3"), "1e3"}, {TEXT("12a"), "12a"},   {TEXT("00"), "00"},     {TEXT("99999999999999999999"), "99999999999999999999"},
    {TEXT("-01"), "-01"}, {TEXT("-"), "-"},       {TEXT("1,5"), "1,5"}};

TEST_F(MvString, text_that_is_no_whole_number_gives_zero_and_one_message_from_every_conversion) {
    const struct {
        const char* name;
        std::function<std::int64_t(const WCHAR*)> convert;
    } operations[] = {{"asUnsignedInt", [this](const WCHAR* t) { return m_string.asUnsignedInt(t); }},
                      {"asInt", [this](const WCHAR* t) { return m_string.asInt(t); }},
                      {"asUnsignedShort", [this](const WCHAR* t) { return m_string.asUnsignedShort(t); }},
                      {"asShort", [this](const WCHAR* t) { return m_string.asShort(t); }}};
    for (const auto& operation : operations) {
        for (const Refused& refused : kNoWholeNumbers) {
            std::int64_t value = -1;
            EXPECT_THAT(
                messagesOf([&] { value = operation.convert(refused.text); }),
                ElementsAre(std::string("CMvString::") + operation.name + ", Error during conversion of (" + refused.shown + ")\n"));
            EXPECT_EQ(value, 0) << operation.name << " " << refused.shown;
        }
        std::int64_t value = -1;
        EXPECT_THAT(messagesOf([&] { value = operation.convert(nullptr); }),
                    ElementsAre(std::string("CMvString::") + operation.name + ", Error parameter"));
        EXPECT_EQ(value, 0) << operation.name;
    }
}

TEST_F(MvString, whole_numbers_convert_up_to_the_ends_of_their_type_without_a_message) {
    EXPECT_EQ(m_string.asUnsignedInt(TEXT("0")), 0U);
    EXPECT_EQ(m_string.asUnsignedInt(TEXT("7")), 7U);
    EXPECT_EQ(m_string.asUnsignedInt(TEXT("4294967295")), 4294967295U);
    EXPECT_EQ(m_string.asInt(TEXT("12")), 12);
    EXPECT_EQ(m_string.asInt(TEXT("-3")), -3);
    EXPECT_EQ(m_string.asInt(TEXT("2147483647")), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(m_string.asInt(TEXT("-2147483648")), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(m_string.asUnsignedShort(TEXT("65535")), 65535);
    EXPECT_EQ(m_string.asShort(TEXT("32767")), 32767);
    EXPECT_EQ(m_string.asShort(TEXT("-32768")), -32768);
    EXPECT_EQ(m_string.asLong(TEXT("2147483647")), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(m_string.asLong(TEXT("-5")), -5);
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

TEST_F(MvString, numbers_beyond_their_type_are_cut_and_do_not_print_back) {
    EXPECT_EQ(m_string.asUnsignedShort(TEXT("65536")), 0);
    EXPECT_EQ(m_string.asUnsignedShort(TEXT("-1")), 0);
    EXPECT_EQ(m_string.asShort(TEXT("32768")), 0);
    EXPECT_EQ(m_string.asShort(TEXT("65535")), 0);
    EXPECT_EQ(m_string.asUnsignedInt(TEXT("4294967296")), 0U);
    EXPECT_EQ(m_string.asUnsignedInt(TEXT("-1")), 0U);
    EXPECT_EQ(m_string.asInt(TEXT("2147483648")), 0);
    EXPECT_EQ(m_string.asInt(TEXT("4294967297")), 0);
    EXPECT_EQ(m_string.asLong(TEXT("2147483648")), 0);
    EXPECT_EQ(m_capture.texts().size(), 9U);
    EXPECT_EQ(m_capture.texts()[0], "CMvString::asUnsignedShort, Error during conversion of (65536)\n");
}

TEST_F(MvString, asLong_refuses_hexadecimal_texts_that_do_not_print_back) {
    const Refused refused[] = {{TEXT("0x1f"), "0x1f"},   {TEXT("0X1F"), "0X1F"}, {TEXT("x"), "x"},
                               {TEXT("12x"), "12x"},     {TEXT("1Fx0"), "1Fx0"}, {TEXT("-0x1F"), "-0x1F"},
                               {TEXT(" 0x1F"), " 0x1F"}, {TEXT("0x1G"), "0x1G"}, {TEXT("0x1 "), "0x1 "},
                               {TEXT("fox"), "fox"},     {TEXT("0x-1"), "0x-1"}, {TEXT("0x1FFFFFFFF"), "0x1FFFFFFFF"},
                               {TEXT("007"), "007"},     {TEXT(""), ""}};
    for (const Refused& text : refused) {
        std::int32_t value = -1;
        EXPECT_THAT(messagesOf([&] { value = m_string.asLong(text.text); }),
                    ElementsAre(std::string("CMvString::asLong, Error during conversion of (") + text.shown + ")\n"));
        EXPECT_EQ(value, 0) << text.shown;
    }
    EXPECT_THAT(messagesOf([&] { m_string.asLong(nullptr); }), ElementsAre("CMvString::asLong, Error parameter"));
}

TEST_F(MvString, asLong_takes_upper_case_digits_of_any_count) {
    const struct {
        const WCHAR* text;
        std::int32_t value;
    } accepted[] = {{TEXT("0x1F"), 31},
                    {TEXT("0x0000001F"), 31},
                    {TEXT("0x00FF"), 255},
                    {TEXT("0xFFFFFFFF"), -1},
                    {TEXT("0x80000000"), std::numeric_limits<std::int32_t>::min()},
                    {TEXT("0x000000000000001F"), 31},
                    {TEXT("0x0"), 0}};
    for (const auto& text : accepted) EXPECT_EQ(m_string.asLong(text.text), text.value);
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

// Only the first 260 characters are compared, and printing stops there too.
TEST_F(MvString, asLong_compares_260_characters) {
    const WString longZeros = TEXT("0x") + WString(300, TEXT('0')) + TEXT("7");
    EXPECT_EQ(m_string.asLong(longZeros.c_str()), 7);
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

TEST_F(MvString, a_long_text_is_cut_in_the_message) {
    const WString text(400, TEXT('a'));
    EXPECT_EQ(m_string.asInt(text.c_str()), 0);
    ASSERT_EQ(m_capture.texts().size(), 1U);
    EXPECT_EQ(m_capture.texts()[0].size(), 259U);
    EXPECT_EQ(m_capture.texts()[0].substr(0, 49), "CMvString::asInt, Error during conversion of (aaa");
}

TEST_F(MvString, asFloat_needs_a_number_at_the_front) {
    for (const auto& text : {TEXT("abc"), TEXT(""), TEXT("."), TEXT("-"), TEXT("e5"), TEXT(" "), TEXT("+-5"), TEXT("--5")}) {
        EXPECT_EQ(messagesOf([&] { EXPECT_EQ(m_string.asFloat(text), 0.0F); }).size(), 1U);
    }
    EXPECT_THAT(messagesOf([&] { m_string.asFloat(TEXT("abc")); }), ElementsAre("CMvString::asFloat, Error during conversion of (abc)\n"));
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.asFloat(nullptr), 0.0F); }), ElementsAre("CMvString::asFloat, Error parameter"));
}

TEST_F(MvString, asFloat_reads_the_longest_number_with_point_or_comma) {
    const struct {
        const WCHAR* text;
        float value;
    } accepted[] = {{TEXT("2,5"), 2.5F},
                    {TEXT("2.5"), 2.5F},
                    {TEXT("0,5"), 0.5F},
                    {TEXT(" 7.25mm"), 7.25F},
                    {TEXT("-3"), -3.0F},
                    {TEXT("+4"), 4.0F},
                    {TEXT(".5"), 0.5F},
                    {TEXT("5."), 5.0F},
                    {TEXT("1e3"), 1000.0F},
                    {TEXT("1e-2x"), 0.01F},
                    {TEXT("1e"), 1.0F},
                    {TEXT("1,234.5"), 1.234F},
                    {TEXT("0x1p4"), 16.0F},
                    {TEXT("0x10"), 16.0F},
                    {TEXT("123.4"), 123.4F},
                    {TEXT("\t\n 6"), 6.0F},
                    {TEXT("1e-60"), 0.0F},
                    {TEXT("0.00000000000000000000000000000000000000000000000000001"), 0.0F},
                    {TEXT("1e60"), std::numeric_limits<float>::infinity()},
                    {TEXT("-100000000000000000000000000000000000000000"), -std::numeric_limits<float>::infinity()},
                    {TEXT("1e99999999999999999999"), std::numeric_limits<float>::infinity()}};
    for (const auto& text : accepted) EXPECT_EQ(m_string.asFloat(text.text), text.value) << toUtf8(text.text);
    EXPECT_TRUE(std::isnan(m_string.asFloat(TEXT("nan"))));
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

TEST_F(MvString, asFloat_leaves_the_numeric_category_at_C) {
    const char* const here = std::setlocale(LC_NUMERIC, "C.UTF-8");
    ASSERT_NE(here != nullptr ? here : std::setlocale(LC_NUMERIC, "English_United States.1252"), nullptr);
    EXPECT_EQ(m_string.asFloat(TEXT("0,5")), 0.5F);
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

TEST_F(MvString, asBoolean_refuses_other_words) {
    const WString tooLong(260, TEXT('t'));
    for (const WCHAR* text :
         {TEXT("yes"), TEXT(""), TEXT("truex"), TEXT("xtrue"), TEXT("true "), TEXT("-"), TEXT("tr\u00FCe"), tooLong.c_str()}) {
        bool value = true;
        const auto messages = messagesOf([&] { value = m_string.asBoolean(text); });
        EXPECT_FALSE(value);
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_TRUE(messages[0].starts_with("CMvString::asBoolean, Error during conversion of ("));
    }
    EXPECT_THAT(messagesOf([&] { m_string.asBoolean(TEXT("yes")); }),
                ElementsAre("CMvString::asBoolean, Error during conversion of (yes)\n"));
    EXPECT_THAT(messagesOf([&] { EXPECT_FALSE(m_string.asBoolean(nullptr)); }), ElementsAre("CMvString::asBoolean, Error parameter"));
}

TEST_F(MvString, asBoolean_takes_words_and_anything_that_begins_as_a_number) {
    const struct {
        const WCHAR* text;
        bool value;
    } accepted[] = {{TEXT("1"), true},           {TEXT("0"), false},     {TEXT("2"), true},
                    {TEXT("-1"), true},          {TEXT("0x10"), true},   {TEXT("0x0"), false},
                    {TEXT(" 7abc"), true},       {TEXT("TRUE"), true},   {TEXT("True"), true},
                    {TEXT("true"), true},        {TEXT("False"), false}, {TEXT("FALSE"), false},
                    {TEXT("010"), true},         {TEXT("08"), false},    {TEXT("0xg"), false},
                    {TEXT("4294967296"), false}, {TEXT("+3"), true},     {TEXT("18446744073709551616"), true},
                    {TEXT("0x10000000000000000"), true}, {TEXT("02000000000000000000000"), true}};
    for (const auto& text : accepted) EXPECT_EQ(m_string.asBoolean(text.text), text.value) << toUtf8(text.text);
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

TEST_F(MvString, asPWchar_without_a_buffer_names_its_form) {
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.asPWchar(std::uint32_t{1}, nullptr), nullptr); }),
                ElementsAre("CMvString::asPWchar <unsigned int>, Error parameter"));
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.asPWchar(std::int32_t{1}, nullptr), nullptr); }),
                ElementsAre("CMvString::asPWchar <int>, Error parameter"));
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.asPWchar(std::uint16_t{1}, nullptr), nullptr); }),
                ElementsAre("CMvString::asPWchar <unsigned short>, Error parameter"));
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.asPWcharLong(1, nullptr), nullptr); }),
                ElementsAre("CMvString::asPWchar <unsigned long>, Error parameter"));
}

TEST_F(MvString, asPWchar_prints_into_the_callers_buffer_and_returns_it) {
    std::array<WCHAR, 261> buffer{};
    EXPECT_EQ(m_string.asPWchar(std::uint32_t{4294967295U}, buffer.data()), buffer.data());
    EXPECT_EQ(toUtf8(viewOf(buffer)), "4294967295");
    EXPECT_EQ(toUtf8(m_string.asPWchar(std::int32_t{-2147483647 - 1}, buffer.data())), "-2147483648");
    EXPECT_EQ(toUtf8(m_string.asPWchar(std::uint16_t{65535}, buffer.data())), "65535");
    EXPECT_EQ(toUtf8(m_string.asPWcharLong(0, buffer.data())), "0");
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

TEST_F(MvString, toLower_refuses_null_empty_and_260_characters) {
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.toLower(nullptr), nullptr); }), ElementsAre("CMvString::toLower, Error parameter"));
    WString empty;
    EXPECT_THAT(messagesOf([&] { EXPECT_EQ(m_string.toLower(empty.data()), nullptr); }),
                ElementsAre("CMvString::toLower Error during conversion of ())\n"));
    WString tooLong(260, TEXT('A'));
    const auto messages = messagesOf([&] { EXPECT_EQ(m_string.toLower(tooLong.data()), nullptr); });
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_TRUE(messages[0].starts_with("CMvString::toLower Error during conversion of (AAA"));
    EXPECT_EQ(tooLong, WString(260, TEXT('A')));
}

TEST_F(MvString, toLower_changes_the_26_letters_alone) {
    WString text = TEXT("AZ[@`{\u00C4\u00D6 12 az");
    EXPECT_EQ(m_string.toLower(text.data()), text.data());
    EXPECT_EQ(text, TEXT("az[@`{\u00C4\u00D6 12 az"));
    WString longest(259, TEXT('Q'));
    EXPECT_EQ(m_string.toLower(longest.data()), longest.data());
    EXPECT_EQ(longest, WString(259, TEXT('q')));
}

TEST_F(MvString, toUTF8_of_itself_or_into_nothing_changes_nothing) {
    WString text = TEXT("\u00C3\u00A4");
    EXPECT_EQ(m_string.toUTF8(text.data(), nullptr), nullptr);
    EXPECT_EQ(m_string.toUTF8(text.data(), text.data()), text.data());
    EXPECT_EQ(text, TEXT("\u00C3\u00A4"));
    EXPECT_THAT(m_capture.texts(), IsEmpty());
}

TEST_F(MvString, toUTF8_joins_two_bytes_and_reports_the_second_one) {
    std::array<WCHAR, 16> out{};
    const WCHAR source[] = {0x43, 0xC3, 0xA4, 0};
    EXPECT_EQ(m_string.toUTF8(source, out.data()), out.data());
    EXPECT_EQ(WString(viewOf(out)), TEXT("C\u00E4"));
    EXPECT_THAT(m_capture.texts(), ElementsAre("!!! CMvString::toUTF8, undefined decoding found\n"));

    out.fill(0x55);
    m_string.toUTF8(TEXT(""), out.data());
    EXPECT_EQ(out[0], 0);

    // Three bytes: none is decoded. Only the low byte of each unit counts. A lead byte at the end joins with nothing.
    const WCHAR mixed[] = {0xE2, 0x82, 0xAC, 0x141, 0xDF, 0};
    EXPECT_EQ(messagesOf([&] { m_string.toUTF8(mixed, out.data()); }).size(), 3U);
    EXPECT_EQ(WString(viewOf(out)), TEXT("A\u07C0"));
}

TEST_F(MvString, find_gives_none_for_empty_long_or_shorter_texts) {
    const WString atCapacity = WString(259, TEXT('a')) + TEXT("b");
    EXPECT_EQ(m_string.find(TEXT(""), TEXT("a")), nullptr);
    EXPECT_EQ(m_string.find(atCapacity.c_str(), TEXT("b")), nullptr);
    EXPECT_EQ(m_string.find(TEXT("ab"), TEXT("abc")), nullptr);
    EXPECT_EQ(m_string.find(TEXT("ab"), TEXT("B")), nullptr);
    EXPECT_EQ(m_string.find(nullptr, TEXT("B")), nullptr);
    EXPECT_EQ(m_string.find(TEXT("ab"), nullptr), nullptr);
}

TEST_F(MvString, find_gives_the_first_occurrence) {
    const WString text = WString(255, TEXT('a')) + TEXT("bb-b");
    EXPECT_EQ(m_string.find(text.c_str(), TEXT("b")), text.c_str() + 255);
    EXPECT_EQ(m_string.find(text.c_str(), TEXT("-b")), text.c_str() + 257);
}

TEST_F(MvString, replace_refuses_to_let_a_text_grow) {
    WString text = TEXT("a.b");
    const WString tooLong(260, TEXT('x'));
    EXPECT_FALSE(m_string.replace(text.data(), TEXT("."), TEXT("--")));
    EXPECT_FALSE(m_string.replace(text.data(), tooLong.c_str(), TEXT("")));
    EXPECT_FALSE(m_string.replace(text.data(), TEXT(""), TEXT("")));
    EXPECT_FALSE(m_string.replace(text.data(), nullptr, TEXT("")));
    EXPECT_FALSE(m_string.replace(text.data(), TEXT("."), nullptr));
    EXPECT_FALSE(m_string.replace(nullptr, TEXT("."), TEXT("")));
    EXPECT_EQ(text, TEXT("a.b"));
}

TEST_F(MvString, replace_changes_every_occurrence_in_one_pass) {
    const struct {
        const WCHAR* text;
        const WCHAR* from;
        const WCHAR* to;
        const char* result;
    } cases[] = {{TEXT("a.b.c"), TEXT("."), TEXT("_"), "a_b_c"}, {TEXT("..a.."), TEXT(".."), TEXT("."), ".a."},
                 {TEXT("aaaa"), TEXT("aa"), TEXT("a"), "aa"},    {TEXT("abab"), TEXT("ab"), TEXT(""), ""},
                 {TEXT("abc"), TEXT("x"), TEXT("y"), "abc"},     {TEXT("abc"), TEXT("c"), TEXT("c"), "abc"}};
    for (const auto& entry : cases) {
        WString text = entry.text;
        EXPECT_TRUE(m_string.replace(text.data(), entry.from, entry.to));
        EXPECT_EQ(toUtf8(text.c_str()), entry.result);
    }
}

TEST_F(MvString, nextToken_refuses_wrong_use_and_leaves_the_destination) {
    WCHAR out[kPathCharacters] = TEXT("kept");
    const WCHAR* rest = nullptr;
    EXPECT_FALSE(m_string.nextToken(nullptr, TEXT(";"), out, 1, &rest));
    EXPECT_FALSE(m_string.nextToken(TEXT("a;b"), TEXT(";"), nullptr, 1, &rest));
    EXPECT_FALSE(m_string.nextToken(TEXT("a;b"), TEXT(""), out, 1, &rest));
    EXPECT_FALSE(m_string.nextToken(TEXT("a;b"), nullptr, out, 1, &rest));
    EXPECT_FALSE(m_string.nextToken(TEXT("a;b"), TEXT("1234567890"), out, 1, &rest));
    EXPECT_FALSE(m_string.nextToken(TEXT("a;b"), TEXT(";"), out, 0, &rest));
    EXPECT_EQ(toUtf8(out), "kept");
    EXPECT_EQ(rest, nullptr);
}

TEST_F(MvString, nextToken_takes_as_many_tokens_as_asked_and_tells_where_the_rest_begins) {
    WCHAR out[kPathCharacters] = {};
    const WCHAR* const source = TEXT("ab;,c|d");
    const WCHAR* rest = nullptr;
    EXPECT_TRUE(m_string.nextToken(source, TEXT(";,|456789"), out, 1, &rest));
    EXPECT_EQ(toUtf8(out), "ab");
    EXPECT_EQ(rest, source + 3);
    EXPECT_TRUE(m_string.nextToken(rest, TEXT(",|"), out, 1, &rest));
    EXPECT_EQ(toUtf8(out), "");
    EXPECT_TRUE(m_string.nextToken(rest, TEXT("|"), out, 2, &rest));
    EXPECT_EQ(toUtf8(out), "d");
    EXPECT_EQ(rest, source + 7);
    EXPECT_TRUE(m_string.nextToken(rest, TEXT("|"), out, 1, &rest));  // nothing is left: an empty token
    EXPECT_EQ(toUtf8(out), "");
    EXPECT_EQ(rest, source + 7);
    EXPECT_TRUE(m_string.nextToken(TEXT("a;b"), TEXT(";"), out, 3, &rest));
    EXPECT_EQ(toUtf8(out), "");
    EXPECT_TRUE(m_string.nextToken(TEXT("x;y;z"), TEXT(";"), out, 3));
    EXPECT_EQ(toUtf8(out), "z");
}

TEST_F(MvString, nextToken_cuts_a_token_at_the_capacity) {
    WCHAR out[kPathCharacters] = {};
    EXPECT_TRUE(m_string.nextToken(WString(400, TEXT('a')).c_str(), TEXT(";"), out, 1));
    EXPECT_EQ(WStringView(out), WString(259, TEXT('a')));
}

}  // namespace
}  // namespace morvil
