// From the bytes of a file to characters: pieces of 4095 bytes, each UTF-16 or Latin-1.
#include <gtest/gtest.h>

#include "config/XmlDump.h"
#include "config/XmlFile.h"
#include "support/FailingCalls.h"
#include "support/System.h"
#include "support/TempHome.h"

namespace morvil {
namespace {

using test::dump;

constexpr const WCHAR* kFile = TEXT("C:\\a.xml");

class XmlFile : public testing::Test {
  protected:
    bool load() { return loadFile(kFile, m_text, m_length); }

    test::TempHome m_home;
    WString m_text = TEXT("before");
    std::size_t m_length = 55;
};

std::string utf16(WStringView text) {
    std::string bytes = "\xFF\xFE";
    for (const WCHAR unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

TEST_F(XmlFile, a_missing_file_is_not_read) {
    EXPECT_FALSE(load());
    EXPECT_EQ(m_length, 0U);
    EXPECT_TRUE(m_text.empty());
}

TEST_F(XmlFile, an_empty_file_a_folder_and_no_path_are_not_read) {
    test::writeBytes(kFile, "");
    EXPECT_FALSE(load());
    test::makeFolder(TEXT("C:\\folder"));
    EXPECT_FALSE(loadFile(TEXT("C:\\folder"), m_text, m_length));
    EXPECT_FALSE(loadFile(nullptr, m_text, m_length));
    EXPECT_EQ(m_length, 0U);
}

TEST_F(XmlFile, a_read_that_fails_is_a_failure_and_no_short_text) {
    test::writeBytes(kFile, "<a/>");
    const test::FailingCalls faults(1, test::Fault::Persistent, "read");
    EXPECT_FALSE(load());
    EXPECT_GT(faults.fired(), 0);
    EXPECT_TRUE(m_text.empty());
}

TEST_F(XmlFile, single_bytes_become_the_characters_of_the_same_number_and_count_twice) {
    std::string bytes;
    for (int byte = 1; byte <= 256; ++byte) bytes.push_back(static_cast<char>(byte & 0xFF));
    test::writeBytes(kFile, bytes);
    ASSERT_TRUE(load());
    EXPECT_EQ(m_length, 512U);
    ASSERT_EQ(m_text.size(), 256U);
    for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(m_text[i], (i + 1) & 0xFF);
}

TEST_F(XmlFile, a_file_longer_than_a_piece_is_put_together) {
    std::string bytes;
    for (std::size_t i = 0; i < 20'000; ++i) bytes.push_back(static_cast<char>('a' + i % 23));
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{4094}, std::size_t{4095}, std::size_t{4096}, std::size_t{8190}, std::size_t{8191}, bytes.size()}) {
        test::writeBytes(kFile, bytes.substr(0, size));
        ASSERT_TRUE(load());
        EXPECT_EQ(m_length, size * 2);
        EXPECT_EQ(toLatin1(m_text), bytes.substr(0, size));
    }
}

TEST_F(XmlFile, utf16_is_taken_as_it_stands) {
    test::writeBytes(kFile, utf16(TEXT("<a \u0391='\u20AC'/>")));
    ASSERT_TRUE(load());
    EXPECT_EQ(m_text, TEXT("\uFEFF<a \u0391='\u20AC'/>"));
    EXPECT_EQ(m_length, m_text.size() * 2);
}

TEST_F(XmlFile, utf16_with_a_mark_and_single_bytes_give_the_same_tree) {
    constexpr WStringView kText = TEXT("<?xml version=\"1.0\"?>\r\n<a x=\"1\">\r\n\t<b>text \u00E4</b>\r\n</a>\r\n");
    test::writeBytes(kFile, utf16(kText));
    ASSERT_TRUE(load());
    const auto wide = parseXml(m_text);
    test::writeBytes(kFile, toLatin1(kText));
    ASSERT_TRUE(load());
    EXPECT_EQ(dump(*parseXml(m_text)), dump(*wide));
    EXPECT_EQ(dump(*wide), "instruction xml version='1.0'\nelement a x='1'\n  element b\n    text 'text ä'\n");
}

// Each piece is judged by itself: the second piece of this file begins inside a character and is widened.
TEST_F(XmlFile, utf16_longer_than_a_piece_is_cut) {
    test::needsMarkThatDecides();
    const std::string bytes = utf16(WString(3000, TEXT('a')));
    test::writeBytes(kFile, bytes);
    ASSERT_TRUE(load());
    EXPECT_EQ(m_length, 4095 + 2 * (bytes.size() - 4095));
    EXPECT_EQ(m_text.substr(1, 2046), WString(2046, TEXT('a')));
    EXPECT_NE(m_text.substr(1, 3000), WString(3000, TEXT('a')));
}

TEST_F(XmlFile, a_file_beyond_the_limit_is_not_taken_into_memory) {
    std::vector<std::uint8_t> bytes;
    test::writeBytes(kFile, "12345");
    EXPECT_FALSE(readFileBytes(kFile, 4, bytes));
    EXPECT_TRUE(bytes.empty());
    EXPECT_TRUE(readFileBytes(kFile, 5, bytes));
    EXPECT_EQ(bytes.size(), 5U);
}

// One object reads many files into the same room: it may be too small, just right or too large for the next.
TEST_F(XmlFile, files_of_every_size_are_read_whole_one_after_the_other) {
    std::vector<std::uint8_t> bytes;
    for (const std::size_t size : {0U, 5U, 8191U, 8192U, 8193U, 100000U, 99999U, 100000U, 100001U, 100003U, 7U}) {
        std::string content(size, 'x');
        for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>('a' + i % 23);
        test::writeBytes(kFile, content);
        EXPECT_TRUE(readFileBytes(kFile, 100003, bytes)) << size;
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), content) << size;
    }
    EXPECT_FALSE(readFileBytes(TEXT("C:\\nothing.xml"), 100003, bytes));
    EXPECT_TRUE(bytes.empty());
    test::writeBytes(kFile, std::string(100004, 'x'));
    EXPECT_FALSE(readFileBytes(kFile, 100003, bytes));
    EXPECT_TRUE(bytes.empty());
}

}  // namespace
}  // namespace morvil
