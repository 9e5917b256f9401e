// Private profile files: hostile ones, lost ones, and the platform's reading rules.
#include <unistd.h>

#include <string>

#include "platform/ProfileTest.h"

namespace morvil::test {

TEST_F(ProfileTest, missingFile_givesTheDefault) {
    SetLastError(0xdeadbeef);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none");
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), -1, kProfile), 0xFFFFFFFFU);
    EXPECT_EQ(read(TEXT("S"), TEXT("k"), nullptr), "");
    EXPECT_EQ(read(TEXT("S"), TEXT("k"), TEXT(" x  ")), " x") << "blanks at the end of a default do not count";
    EXPECT_FALSE(exists(kProfile));
}

TEST_F(ProfileTest, hostileFiles_giveTheDefault) {
    const std::string cases[] = {"",
                                 "\n\n\n",
                                 "k=1",
                                 "[S",
                                 "[S\nk=1",
                                 "]S[\nk=1",
                                 "[S]",
                                 "[S]\n=1\n==\n",
                                 "[S]\nk",
                                 "[S]\n;k=1",
                                 "[S]\n[T]\nk=1",
                                 "[S]\nkk=1\nk k=2",
                                 std::string("[S]\0\nk\0=1", 10),
                                 "\xFF\xFE",
                                 std::string("\xFF\xFE[\0S\0]\0\n\0k\0=", 13),
                                 std::string(100000, '['),
                                 std::string(100000, '\r')};
    for (const std::string& bytes : cases) {
        writeBytes(kProfile, bytes);
        EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none") << bytes.substr(0, 40);
        EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, kProfile), 7U) << bytes.substr(0, 40);
    }
}

TEST_F(ProfileTest, hugeFile_isRefusedAndNotOverwritten) {
    writeBytes(kProfile, "[S]\nk=1\n");
    ASSERT_EQ(::truncate(home.hostPath(kProfile).c_str(), off_t{17} << 20), 0);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none");
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    EXPECT_EQ(std::filesystem::file_size(home.hostPath(kProfile)), std::uintmax_t{17} << 20);
}

TEST_F(ProfileTest, pathsThatAreNoFile) {
    makeFolder(kProfile);
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "none");
    EXPECT_FALSE(write(TEXT("S"), TEXT("k"), TEXT("2")));
    EXPECT_FALSE(WritePrivateProfileStringW(TEXT("S"), TEXT("k"), TEXT("v"), TEXT("C:\\none\\a.ini")));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(WritePrivateProfileStringW(TEXT("S"), TEXT("k"), TEXT("v"), nullptr));
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 5, nullptr), 5U);
}

TEST_F(ProfileTest, values) {
    writeBytes(kProfile,
               "; comment\r\n"
               "[ Sec ]\r\n"
               "plain=value\r\n"
               "  Blanks  =  some value \t\r\n"
               "quoted=\" x \"\r\n"
               "single=' y '\r\n"
               "twice=\"\"z\"\"\r\n"
               "open=\"x\r\n"
               "mixed=\"x'\r\n"
               "quote=\"\r\n"
               "empty=\r\n"
               "equals=a=b\r\n"
               "semicolon=a;b\r\n"
               "SIZETEMPLATE[1].Name=A4\r\n"
               "plain=second\r\n"
               "umlaut=\xE4\r\n"
               "[Sec]\r\nplain=other section\r\nlate=1\r\n"
               "[a]b]\r\nk=bracket\r\n"
               "[last]\nk=no line end");
    const struct {
        const WCHAR* section;
        const WCHAR* key;
        const char* expected;
    } cases[] = {
        {TEXT("sec"), TEXT("PLAIN"), "value"},
        {TEXT(" Sec "), TEXT(" plain "), "value"},
        {TEXT("Sec"), TEXT("blanks"), "some value"},
        {TEXT("Sec"), TEXT("quoted"), " x "},
        {TEXT("Sec"), TEXT("single"), " y "},
        {TEXT("Sec"), TEXT("twice"), "\"z\""},
        {TEXT("Sec"), TEXT("open"), "\"x"},
        {TEXT("Sec"), TEXT("mixed"), "\"x'"},
        {TEXT("Sec"), TEXT("quote"), "\""},
        {TEXT("Sec"), TEXT("empty"), ""},
        {TEXT("Sec"), TEXT("equals"), "a=b"},
        {TEXT("Sec"), TEXT("semicolon"), "a;b"},
        {TEXT("Sec"), TEXT("sizetemplate[1].name"), "A4"},
        {TEXT("Sec"), TEXT("umlaut"), "\xC3\xA4"},
        {TEXT("Sec"), TEXT("late"), "none"},
        {TEXT("a]b"), TEXT("k"), "bracket"},
        {TEXT("last"), TEXT("k"), "no line end"},
        {TEXT("other"), TEXT("k"), "none"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(read(item.section, item.key), item.expected) << toUtf8(item.section) << " " << toUtf8(item.key);
}

TEST_F(ProfileTest, encodings) {
    writeBytes(kProfile, std::string("\xFF\xFE[\0S\0]\0\n\0k\0=\0\xAC\x20", 16));
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "\xE2\x82\xAC");
    EXPECT_TRUE(write(TEXT("S"), TEXT("k"), TEXT("\x20AC!")));
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "\xE2\x82\xAC!");
    writeBytes(kProfile, "\xEF\xBB\xBF[S]\nk=\xE2\x82\xAC");
    EXPECT_EQ(read(TEXT("S"), TEXT("k")), "\xE2\x82\xAC");
    EXPECT_TRUE(write(TEXT("S"), TEXT("l"), TEXT("\x20AC")));
    EXPECT_EQ(readBytes(kProfile), "\xEF\xBB\xBF[S]\nk=\xE2\x82\xAC\r\nl=\xE2\x82\xAC\r\n");
    DeleteFileW(kProfile);
    EXPECT_TRUE(write(TEXT("S"), TEXT("k"), TEXT("\x00E4\x20AC")));
    EXPECT_EQ(readBytes(kProfile), "[S]\r\nk=\xE4?\r\n");
}

TEST_F(ProfileTest, numbers) {
    const struct {
        const char* value;
        UINT expected;
    } cases[] = {{"", 7},           {"x", 0},
                 {"12", 12},        {" 12 ", 12},
                 {"12x", 12},       {"-3", static_cast<UINT>(-3)},
                 {"+4", 4},         {"0x1F", 31},
                 {"0x", 0},         {"0X1F", 0},
                 {"010", 10},       {"0b101", 5},
                 {"0o17", 15},      {"-0x10", static_cast<UINT>(-16)},
                 {"\"5\"", 5},      {"1.9", 1},
                 {"- 1", 0},        {"4294967296", 0},
                 {"4294967297", 1}, {"--1", 0}};
    for (const auto& item : cases) {
        writeBytes(kProfile, std::string("[S]\nk=") + item.value + "\n");
        EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, kProfile), item.expected) << item.value;
    }
}

TEST_F(ProfileTest, smallBuffers_areCut) {
    writeBytes(kProfile, "[S]\na=12345\nb=1\n[Tee]\n");
    std::array<WCHAR, 20> out{};
    out.fill(TEXT('~'));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, out.data(), 4, kProfile), 3U);
    EXPECT_EQ(GetLastError(), ERROR_MORE_DATA);
    EXPECT_EQ(WStringView(out.data(), 5), WStringView(TEXT("123\0~"), 5));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, out.data(), 1, kProfile), 0U);
    EXPECT_EQ(out[0], WCHAR{0});
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, out.data(), 0, kProfile), 0U);
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("a"), nullptr, nullptr, 10, kProfile), 0U);
}

TEST_F(ProfileTest, lists) {
    writeBytes(kProfile, "[S]\na=12345\n;c=2\nb\n[Tee]\n");
    std::array<WCHAR, 20> out{};
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, TEXT("a"), nullptr, out.data(), 20, kProfile), 6U);
    EXPECT_EQ(WStringView(out.data(), 7), WStringView(TEXT("S\0Tee\0\0"), 7));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), nullptr, nullptr, out.data(), 20, kProfile), 4U);
    EXPECT_EQ(WStringView(out.data(), 5), WStringView(TEXT("a\0b\0\0"), 5));
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, nullptr, out.data(), 5, kProfile), 3U);
    EXPECT_EQ(WStringView(out.data(), 5), WStringView(TEXT("S\0T\0\0"), 5));
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("none"), nullptr, nullptr, out.data(), 20, kProfile), 0U);
}

}  // namespace morvil::test
