// The formatter: what each conversion prints, and what a wrong or hostile format does.
#include "platform/common/Format.h"

#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <limits>

#include "support/CommaLocale.h"

namespace morvil::test {

namespace {

std::string print(WStringView text, std::initializer_list<FormatArg> arguments = {}) {
    WString out;
    formatTo(out, text, {arguments.begin(), arguments.size()});
    return toUtf8(out);
}

}  // namespace

TEST(Format, wrongFormats_readNoMemory) {
    struct Case {
        const WCHAR* format;
        const char* expected;
    };
    const Case cases[] = {
        {TEXT("%"), ""},  {TEXT("100%"), "100"}, {TEXT("%d %d"), "7 0"}, {TEXT("%-"), ""},    {TEXT("%5"), ""},
        {TEXT("%l"), ""}, {TEXT("%."), ""},      {TEXT("%y|"), "|"},     {TEXT("%n%d"), "0"},  // %n stores nothing and uses up its argument
    };
    for (const Case& item : cases) EXPECT_EQ(print(item.format, {7}), item.expected) << toUtf8(item.format);
}

TEST(Format, hugeWidths_areCutToSaneOnes) {
    EXPECT_EQ(print(TEXT("%99999999999999999999d"), {7}).size(), 4096U);
    EXPECT_EQ(print(TEXT("%.99999999999999999999d"), {7}).size(), 4096U);
    EXPECT_EQ(print(TEXT("%.5000f"), {0.0}).size(), 102U);
}

TEST(Format, mixedUpArguments_printWhatFits) {
    EXPECT_EQ(print(TEXT("%d"), {2.9}), "2");
    EXPECT_EQ(print(TEXT("%f"), {3}), "3.000000");
    EXPECT_EQ(print(TEXT("%s"), {42}), "42");
    EXPECT_EQ(print(TEXT("%d"), {TEXT("text")}), "0");
    EXPECT_EQ(print(TEXT("%d"), {1e300}), "0");
}

TEST(Format, integers) {
    struct Case {
        const WCHAR* format;
        std::int64_t value;
        const char* expected;
    };
    const Case cases[] = {
        {TEXT("%d"), 0, "0"},
        {TEXT("%d"), -12, "-12"},
        {TEXT("%i"), 12, "12"},
        {TEXT("%d"), std::numeric_limits<std::int32_t>::min(), "-2147483648"},
        {TEXT("%u"), -1, "4294967295"},
        {TEXT("%ld"), -1, "-1"},
        {TEXT("%lu"), -1, "4294967295"},
        {TEXT("%d"), 0x100000005, "5"},  // 32 bits, as an int of the platform
        {TEXT("%hd"), 0x18000, "-32768"},
        {TEXT("%hu"), 0x1FFFF, "65535"},
        {TEXT("%x"), 0xABCDEF, "abcdef"},
        {TEXT("%X"), 0xABCDEF, "ABCDEF"},
        {TEXT("%08X"), 0xFF, "000000FF"},
        {TEXT("0x%08X"), 0x00BBCCDD, "0x00BBCCDD"},
        {TEXT("%#x"), 255, "0xff"},
        {TEXT("%#X"), 0, "0"},
        {TEXT("%5d|"), 42, "   42|"},
        {TEXT("%-5d|"), 42, "42   |"},
        {TEXT("%05d"), -42, "-0042"},
        {TEXT("%+d"), 42, "+42"},
        {TEXT("% d"), 42, " 42"},
        {TEXT("%.4d"), -42, "-0042"},
        {TEXT("%06.3d"), 7, "   007"},
        {TEXT("%02d"), 7, "07"},
        {TEXT("%.0d|"), 0, "|"},
        {TEXT("%.0d"), 10, "10"},
    };
    for (const Case& item : cases)
        EXPECT_EQ(print(item.format, {item.value}), item.expected) << toUtf8(item.format) << " of " << item.value;
}

TEST(Format, reals) {
    struct Case {
        const WCHAR* format;
        double value;
        const char* expected;
    };
    const Case cases[] = {
        {TEXT("%f"), 1.5, "1.500000"},
        {TEXT("%.2f"), 3.14159, "3.14"},
        {TEXT("%.2f"), -0.004, "-0.00"},
        {TEXT("%.0f"), 0.5, "0"},
        {TEXT("%.0f"), 1.5, "2"},
        {TEXT("%.2f"), 2.675, "2.67"},  // the nearest double lies below
        {TEXT("%8.2f|"), 3.14159, "    3.14|"},
        {TEXT("%-8.2f|"), 3.14159, "3.14    |"},
        {TEXT("%08.2f"), -3.14159, "-0003.14"},
        {TEXT("%.1f"), 1e20, "100000000000000000000.0"},
        {TEXT("%.2f"), std::numeric_limits<double>::infinity(), "inf"},
    };
    for (const Case& item : cases)
        EXPECT_EQ(print(item.format, {item.value}), item.expected) << toUtf8(item.format) << " of " << item.value;
    EXPECT_EQ(print(TEXT("%.3f"), {DBL_MAX}).size(), 309U + 4U);
}

TEST(Format, texts) {
    EXPECT_EQ(print(TEXT("%s|%s"), {TEXT("a"), WString(TEXT("b"))}), "a|b");
    EXPECT_EQ(print(TEXT("%5s|%-5s|"), {TEXT("ab"), TEXT("cd")}), "   ab|cd   |");
    EXPECT_EQ(print(TEXT("%.2s|"), {TEXT("abcd")}), "ab|");
    EXPECT_EQ(print(TEXT("%ls%hs"), {TEXT("a"), TEXT("b")}), "ab");
    EXPECT_EQ(print(TEXT("%wc.%c"), {TEXT('1'), 'x'}), "1.x");
    EXPECT_EQ(print(TEXT("100%%")), "100%");
    EXPECT_EQ(print(TEXT("%s"), {TEXT("%d")}), "%d");
}

TEST(Format, missingText_printsAsThePlatformPrintsIt) {
    EXPECT_EQ(print(TEXT("Server=%s."), {static_cast<const WCHAR*>(nullptr)}), "Server=(null).");
    EXPECT_EQ(print(TEXT("%.3s"), {static_cast<const WCHAR*>(nullptr)}), "(nu");
}

TEST(Format, realsPrintAPoint_inEveryLocale) {
    const CommaLocale comma;
    if (!comma.isSet()) GTEST_SKIP() << "no country with a decimal comma";
    EXPECT_EQ(print(TEXT("%.2f"), {1.5}), "1.50");
}

TEST(Format, into_cutsAndAlwaysEnds) {
    std::array<WCHAR, 6> buffer{};
    EXPECT_TRUE(formatInto(buffer, TEXT("%d"), 12345));
    EXPECT_EQ(viewOf(buffer), TEXT("12345"));
    EXPECT_FALSE(formatInto(buffer, TEXT("%d"), 1234567));
    EXPECT_EQ(viewOf(buffer), TEXT("12345"));
    EXPECT_EQ(buffer.back(), WCHAR{0});
}

TEST(Format, low32_ofAPointer) {
    EXPECT_EQ(low32(reinterpret_cast<const void*>(std::uintptr_t{0x12345678'9ABCDEF0})), 0x9ABCDEF0U);
    EXPECT_EQ(low32(nullptr), 0U);
}

}  // namespace morvil::test
