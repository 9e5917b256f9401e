// Text helpers: fixed buffers and conversions, broken input first.
#include "platform/common/Text.h"

#include <gtest/gtest.h>

#include <array>

namespace morvil::test {

TEST(Text, fromUtf8_replacesWhatIsNoUtf8) {
    const struct {
        const char* bytes;
        const WCHAR* expected;
    } cases[] = {
        {"a\x80z", TEXT("a\xFFFDz")},                           // a continuation without a start
        {"\xC3", TEXT("\xFFFD")},                               // cut
        {"\xC3(", TEXT("\xFFFD(")},                             // wrong continuation
        {"\xC0\xAF", TEXT("\xFFFD\xFFFD")},                     // overlong
        {"\xE0\x80\xAF", TEXT("\xFFFD\xFFFD\xFFFD")},           // overlong, three bytes
        {"\xED\xA0\x80", TEXT("\xFFFD\xFFFD\xFFFD")},           // a surrogate
        {"\xF4\x90\x80\x80", TEXT("\xFFFD\xFFFD\xFFFD\xFFFD")}  // beyond the last character
    };
    for (const auto& item : cases) EXPECT_EQ(fromUtf8(item.bytes), item.expected) << item.bytes;
}

TEST(Text, toUtf8_replacesUnpairedSurrogates) {
    const WCHAR high[] = {0xD83D, TEXT('x'), 0};
    const WCHAR low[] = {0xDE00, 0};
    EXPECT_EQ(toUtf8(high), "\xEF\xBF\xBDx");
    EXPECT_EQ(toUtf8(low), "\xEF\xBF\xBD");
}

TEST(Text, utf8_roundTrips) {
    for (const char* const text : {"", "abc", "\xC3\xA4\xC3\xB6", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})
        EXPECT_EQ(toUtf8(fromUtf8(text)), text);
    EXPECT_EQ(fromUtf8("\xF0\x9F\x98\x80").size(), 2U);
}

TEST(Text, latin1_hasAQuestionMarkForTheRest) {
    EXPECT_EQ(toLatin1(TEXT("a\x00E4\x20AC")), "a\xE4?");
    EXPECT_EQ(fromLatin1("\xE4\xFF"), TEXT("\x00E4\x00FF"));
}

TEST(Text, copyText_cutsEndsAndClears) {
    std::array<WCHAR, 4> buffer{1, 2, 3, 4};
    EXPECT_FALSE(copyText(buffer, TEXT("abcd")));
    EXPECT_EQ(viewOf(buffer), TEXT("abc"));
    EXPECT_TRUE(copyText(buffer, TEXT("a")));
    EXPECT_EQ(buffer, (std::array<WCHAR, 4>{TEXT('a'), 0, 0, 0}));
    EXPECT_TRUE(copyText({}, {}));
    EXPECT_FALSE(copyText({}, TEXT("a")));
}

TEST(Text, viewOf_endsAtTheTerminatorOrTheBuffer) {
    const std::array<WCHAR, 3> full{TEXT('a'), TEXT('b'), TEXT('c')};
    EXPECT_EQ(viewOf(full), TEXT("abc"));
    EXPECT_EQ(viewOf(std::array<WCHAR, 3>{TEXT('a'), 0, TEXT('c')}), TEXT("a"));
    EXPECT_TRUE(viewOf(nullptr).empty());
}

}  // namespace morvil::test
