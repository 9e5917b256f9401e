// Paper, placement and device mode of a page.
#include "tool/PageSetup.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tool/ConfigurationItem.h"

namespace morvil::tool {
namespace {

engine::MetafileHeader drawing(LONG widthHundredths, LONG heightHundredths) {
    engine::MetafileHeader header;
    header.frame = {0, 0, widthHundredths - 1, heightHundredths - 1};  // inclusive
    return header;
}

ConfigurationRecord record() {
    ConfigurationRecord r{};
    r.resolution = 500;
    r.size.width = 100.0F;
    r.size.height = 50.0F;
    return r;
}

TEST(PaperChoice, refuses_what_is_no_size) {
    for (const char* const text : {"", "100", "x", "100x", "x50", "100X50", "100x50mm", "100x50x2", "infx10", "a4"}) EXPECT_FALSE(parsePaper(text)) << text;
}

TEST(PaperChoice, takes_names_and_sizes) {
    EXPECT_EQ(parsePaper("drawing")->kind, PaperChoice::Kind::Drawing);
    EXPECT_EQ(parsePaper("stored")->kind, PaperChoice::Kind::Stored);
    const auto given = parsePaper("120.5x60");
    ASSERT_TRUE(given);
    EXPECT_EQ(given->width, 120.5);
    EXPECT_EQ(given->height, 60.0);
}

TEST(PageSetup, refuses_absurd_sizes_with_the_reason) {
    for (const char* const text : {"0x10", "10x0", "-5x10", "1x10", "3277x10", "10x4000"}) {
        std::string reason;
        const auto paper = parsePaper(text);
        ASSERT_TRUE(paper) << text;
        EXPECT_FALSE(setUpPage(*paper, drawing(1000, 1000), record(), TEXT("P"), 1, reason)) << text;
        EXPECT_NE(reason.find("out of range"), std::string::npos) << reason;
    }
    std::string reason;
    EXPECT_FALSE(setUpPage({}, drawing(0, 1000), record(), TEXT("P"), 1, reason));
    EXPECT_NE(reason.find("frame is empty"), std::string::npos) << reason;
}

TEST(PageSetup, more_than_65535_pixels_a_side_is_refused) {
    ConfigurationRecord fine = record();
    fine.resolution = 1000;
    std::string reason;
    EXPECT_TRUE(setUpPage(*parsePaper("1664.5x10"), drawing(1000, 1000), fine, TEXT("P"), 1, reason));
    EXPECT_FALSE(setUpPage(*parsePaper("1664.7x10"), drawing(1000, 1000), fine, TEXT("P"), 1, reason));
}

TEST(PageSetup, drawing_gives_the_paper_in_tenths_rounded_up) {
    std::string reason;
    const auto page = setUpPage({}, drawing(12345, 6000), record(), TEXT("Engraver"), 3, reason);
    ASSERT_TRUE(page) << reason;
    DEVMODEW mode{};
    std::memcpy(&mode, page->devmode.data(), sizeof(mode));
    EXPECT_EQ(page->devmode.size(), 2008U);
    EXPECT_EQ(mode.dmDriverExtra, 1788);
    EXPECT_EQ(mode.dmPaperSize, DMPAPER_USER);
    EXPECT_EQ(mode.dmPaperWidth, 1235);
    EXPECT_EQ(mode.dmPaperLength, 600);
    EXPECT_EQ(mode.dmCopies, 3);
    EXPECT_EQ(page->target.right, 2429);  // 123.45 mm at 500 dpi are 2430 pixels, the last one included
    EXPECT_EQ(page->target.bottom, 1180);
    EXPECT_TRUE(page->drawingFits);
    ConfigurationRecord carried{};
    std::memcpy(&carried, page->devmode.data() + 232, sizeof(carried));
    EXPECT_EQ(carried.size.takeFromApplication, 1U);
    EXPECT_EQ(carried.resolution, 500);
}

TEST(PageSetup, stored_paper_says_when_the_drawing_does_not_fit) {
    std::string reason;
    const auto page = setUpPage(*parsePaper("stored"), drawing(10100, 4000), record(), TEXT("P"), 1, reason);
    ASSERT_TRUE(page);
    EXPECT_FALSE(page->drawingFits);
    EXPECT_EQ(page->paperWidth, 100.0);
    ConfigurationRecord carried{};
    std::memcpy(&carried, page->devmode.data() + 232, sizeof(carried));
    EXPECT_EQ(carried.size.takeFromApplication, 0U);
    EXPECT_TRUE(setUpPage(*parsePaper("stored"), drawing(10000, 5000), record(), TEXT("P"), 1, reason)->drawingFits);
}

TEST(ConfigurationItem, refuses_what_the_store_could_not_keep) {
    for (const char* const text : {"", ".", "A..B", "A.", ".A", "A@", "ABCDEFGHIJKLMNOPQRST", "A@abcdefghijklmnopqrst", "1.2.3.4.5.6.7.8.9.10.11", "A.b c", "A.b<c", "A.b>c", "A.b\"c", "A.b/", "A.b=c",
                                   "A.!--", "A.?xml", "A.\xE6\x97\xA5", "A.b\nc", "A@b c", "A@\"/><evil y=\""}) {
        EXPECT_FALSE(parseItem(text)) << text;
    }
    for (const char* const text : {"A.B", "A.B@x", "=1", "A=<", "A=a&b", "A=\"", "A= b", "A=b ", "A=b\nc", "A=\xE6\x97\xA5"}) EXPECT_FALSE(parseSetting(text)) << text;
}

TEST(ConfigurationItem, takes_item_attribute_and_value) {
    const auto setting = parseSetting("PrinterDriver.Flags.FL_1@value=a=b");
    ASSERT_TRUE(setting);
    EXPECT_EQ(toUtf8(setting->item.path), "PrinterDriver.Flags.FL_1");
    EXPECT_EQ(toUtf8(setting->item.attribute), "value");
    EXPECT_EQ(toUtf8(setting->value), "a=b");
    EXPECT_EQ(toUtf8(parseSetting("A.B=")->item.attribute), "value");
}

}  // namespace
}  // namespace morvil::tool
