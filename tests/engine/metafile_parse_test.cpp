// Reading metafiles: header, chain of records, descriptions, the plus-form, names of records.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/PlayedMetafile.h"

namespace morvil::test {
namespace {

using engine::Metafile;
using engine::MetafileError;
namespace emr = engine::emr;

MetafileError refusal(std::vector<std::uint8_t> bytes) {
    MetafileError error;
    EXPECT_EQ(Metafile::parse(std::move(bytes), error), nullptr);
    return error;
}

void put32(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

struct Broken {
    const char* name;
    std::size_t at;
    std::uint32_t value;
    std::size_t position;
    const char* reason;
};

TEST(MetafileParse, brokenHeaderOrChain_isRefusedWithPlaceAndReason) {
    // The file: header at 0, a line at 88, the end record at 104.
    static const Broken cases[] = {
        {"other first record", 0, 2, 0, "not an enhanced metafile: the first record is no header"},
        {"header too short", 4, 84, 4, "the header has 84 bytes, at least 88 are needed"},
        {"header size 0", 4, 0, 0, "record 1 at byte 0: size 0"},
        {"no signature", 40, 0x20454D47, 40, "not an enhanced metafile: the signature is missing"},
        {"frame without width", 32, 0xFFFFFFFF, 24, "the picture's frame is empty"},
        {"no reference pixels", 72, 0, 72, "the reference device has no pixels"},
        {"negative reference size", 84, 0x80000000, 80, "the reference device has no size"},
        {"size 0", 92, 0, 88, "record 2 at byte 88: size 0"},
        {"size below 8", 92, 4, 88, "record 2 at byte 88: size 4"},
        {"size no multiple of 4", 92, 18, 88, "record 2 at byte 88: size 18"},
        {"size beyond the end", 92, 40, 88, "record 2 at byte 88: size 40, but only 36 bytes are left"},
        {"size near 2^32", 92, 0xFFFFFFFC, 88, "record 2 at byte 88: size 4294967292, but only 36 bytes are left"},
        {"no end record", 104, 27, 124, "record 4 at byte 124: the file ends before the end record"},
    };
    const auto good = MetafileBuilder().add(emr::kLINETO, {1, 2}).file();
    ASSERT_EQ(good.size(), 124U);
    MetafileError unused;
    ASSERT_NE(Metafile::parse(good, unused), nullptr);
    for (const Broken& c : cases) {
        auto bytes = good;
        put32(bytes, c.at, c.value);
        const MetafileError error = refusal(bytes);
        EXPECT_EQ(error.position, c.position) << c.name;
        EXPECT_EQ(error.reason, c.reason) << c.name;
    }
}

TEST(MetafileParse, emptyFile_isRefused) { EXPECT_EQ(refusal({}).reason, "the file is empty"); }

TEST(MetafileParse, fileCutAnywhere_isRefused) {
    const auto good =
        MetafileBuilder().add(emr::kLINETO, {1, 2}).add(emr::kPOLYLINE16, Bytes().zeros(16).u32(2).all16({1, 2, 3, 4})).file();
    for (std::size_t length = 0; length < good.size(); ++length) {
        const auto error = refusal({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)});
        EXPECT_FALSE(error.reason.empty()) << length;
        EXPECT_LE(error.position, length);
    }
}

TEST(MetafileParse, wholeFile_givesHeader) {
    auto bytes = MetafileBuilder().add(emr::kLINETO, {1, 2}).file();
    bytes.insert(bytes.end(), {1, 2, 3});  // what follows the end record does not matter
    MetafileError error;
    const auto metafile = Metafile::parse(bytes, error);
    ASSERT_NE(metafile, nullptr) << error.reason;
    EXPECT_EQ(metafile->header().records, 3U);
    EXPECT_EQ(metafile->header().devicePixels.cx, 1000);
    EXPECT_EQ(metafile->header().deviceMillimetres.cy, 100);
    EXPECT_EQ(metafile->header().bounds.right, 999);
    EXPECT_DOUBLE_EQ(metafile->header().widthMillimetres(), 100.0);  // edges belong to the frame
    EXPECT_DOUBLE_EQ(metafile->header().heightMillimetres(), 100.0);
    EXPECT_FALSE(metafile->header().hasPlus);
    EXPECT_EQ(metafile->bytes().size(), bytes.size());
}

// A header with a description behind its fixed part.
std::vector<std::uint8_t> described(std::u16string_view text, std::uint32_t count, std::uint32_t offset) {
    auto bytes = MetafileBuilder().file();
    Bytes extra;
    extra.wide(text).padded();
    bytes.insert(bytes.begin() + 88, extra.data().begin(), extra.data().end());
    put32(bytes, 4, static_cast<std::uint32_t>(88 + extra.size()));
    put32(bytes, 60, count);
    put32(bytes, 64, offset);
    return bytes;
}

TEST(MetafileParse, description_isApplicationAndTitle) {
    struct Case {
        std::u16string_view text;
        std::uint32_t count;
        std::uint32_t offset;
        const char* expected;
    };
    static const Case cases[] = {
        {std::u16string_view(u"Draw\0Plan \u00e9\0\0", 13), 13, 88, "Draw, Plan \xc3\xa9"},
        {std::u16string_view(u"\0Plan\0\0", 7), 7, 88, "Plan"},
        {std::u16string_view(u"Draw", 4), 4, 88, "Draw"},
        {std::u16string_view(u"Draw", 4), 0, 88, ""},           // none
        {std::u16string_view(u"Draw", 4), 5, 88, ""},           // beyond the header
        {std::u16string_view(u"Draw", 4), 0x80000000, 88, ""},  // twice that overflows
        {std::u16string_view(u"Draw", 4), 4, 0xFFFFFFFF, ""},
        {std::u16string_view(u"Draw", 4), 4, 40, ""},  // inside the fixed part
    };
    for (const Case& c : cases) {
        MetafileError error;
        const auto metafile = Metafile::parse(described(c.text, c.count, c.offset), error);
        ASSERT_NE(metafile, nullptr) << error.reason;
        EXPECT_EQ(metafile->header().description, c.expected);
    }
}

Bytes plusComment(unsigned flags) {
    Bytes body;
    return body.u32(16).narrow("EMF+").u16(0x4001).u16(flags).u32(12).u32(0);
}

TEST(MetafileParse, plusForm_isRecognised) {
    struct Case {
        const char* name;
        MetafileBuilder builder;
        bool hasPlus;
        bool plusOnly;
    };
    const Case cases[] = {
        {"none", MetafileBuilder().add(emr::kLINETO, {1, 2}), false, false},
        {"other comment", MetafileBuilder().add(emr::kGDICOMMENT, Bytes().u32(4).narrow("GDIC")), false, false},
        {"comment too short", MetafileBuilder().add(emr::kGDICOMMENT, Bytes().u32(0)), false, false},
        {"only", MetafileBuilder().add(emr::kGDICOMMENT, plusComment(0)).add(emr::kSETBKMODE, {1}), true, true},
        {"dual", MetafileBuilder().add(emr::kGDICOMMENT, plusComment(1)), true, false},
        {"with plain drawing", MetafileBuilder().add(emr::kGDICOMMENT, plusComment(0)).add(emr::kLINETO, {1, 2}), true, false},
    };
    for (const Case& c : cases) {
        const auto metafile = c.builder.metafile();
        ASSERT_NE(metafile, nullptr);
        EXPECT_EQ(metafile->header().hasPlus, c.hasPlus) << c.name;
        EXPECT_EQ(metafile->header().plusOnly, c.plusOnly) << c.name;
    }
}

TEST(RecordName, knownAndUnknownTypes) {
    EXPECT_STREQ(engine::recordName(0), "unknown record");
    EXPECT_STREQ(engine::recordName(69), "unknown record");
    EXPECT_STREQ(engine::recordName(123), "unknown record");
    EXPECT_STREQ(engine::recordName(1), "EMR_HEADER");
    EXPECT_STREQ(engine::recordName(54), "EMR_LINETO");
    EXPECT_STREQ(engine::recordName(122), "EMR_CREATECOLORSPACEW");
}

}  // namespace
}  // namespace morvil::test
