// The bitmap section within the job file: its type by process mode, its place, and how page and bands get into it.
#include "jobfile/JobFixture.h"
#include "platform/common/FileStream.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

class JobBitmap : public JobFixture {
  protected:
    static bool writePage(CSpoolFile& writer, const std::string& rows) {
        return writer.WriteBitmap(reinterpret_cast<const std::uint8_t*>(rows.data()), rows.size());
    }
    static bool writeBand(CSpoolFile& writer, const std::string& rows, std::uint32_t offset) {
        return writer.WriteBitmapBand(reinterpret_cast<const std::uint8_t*>(rows.data()), static_cast<std::uint32_t>(rows.size()), offset);
    }
    // The bitmap section with its tags, and everything behind it.
    static std::string fromBitmap(const std::string& job) {
        const std::size_t at = job.find("<BegGroup: Bitmap>");
        return at == std::string::npos ? std::string() : job.substr(at);
    }
};

const std::string kRows("\x7F\x80\x00\x00\xFF\x00\x00\x00", 8);
const std::string kWhiteRows("\xFF\xFF\x00\x00\xFF\xFF\x00\x00", 8);  // the padding is not white
const std::string kOpened = "<BegGroup: Bitmap>\r\n<STBmp: 0;0>";
const std::string kClosed = "<EOBmp>\r\n<EndGroup: Bitmap>\r\n";

}  // namespace

TEST_F(JobBitmap, without_a_mode_bit_nothing_happens) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&config);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    const std::string before = bytesOf(writer);
    clearLog();
    EXPECT_FALSE(writer.CreateBitmap(0));
    EXPECT_FALSE(writer.CreateBitmap(4));
    EXPECT_EQ(bytesOf(writer), before);
    EXPECT_EQ(messages(), Strings{});
}

TEST_F(JobBitmap, a_job_without_a_bitmap_section_has_no_such_group) {
    config.vectorJob = 1;
    const auto writer = begin(3);
    const std::string job = bytesOf(*writer);
    EXPECT_TRUE(job.ends_with("<EndGroup: Header>\r\n" + std::string(kEmptyVectors)));
    EXPECT_EQ(job.find("BegGroup: Bitmap"), std::string::npos);
    EXPECT_EQ(job.find("EOBmp"), std::string::npos);
    EXPECT_FALSE(writePage(*writer, kRows));
    EXPECT_EQ(bytesOf(*writer), job);
}

TEST_F(JobBitmap, mode_1_creates_header_and_palette_alone) {
    EXPECT_EQ(fromBitmap(bytesOf(*begin(1))), kOpened + smallImage("") + kClosed + std::string(kEmptyVectors));
}

TEST_F(JobBitmap, mode_3_fills_the_page_with_white) {
    EXPECT_EQ(fromBitmap(bytesOf(*begin(3))), kOpened + smallImage(kWhiteRows) + kClosed + std::string(kEmptyVectors));
    EXPECT_EQ(fromBitmap(bytesOf(*begin(2))), kOpened + smallImage(kWhiteRows) + kClosed + std::string(kEmptyVectors));
}

TEST_F(JobBitmap, logs_its_steps) {
    begin(1);
    EXPECT_TRUE(logged("CSpoolFile::CreateBitmap"));
    EXPECT_TRUE(logged("CreateBitmap"));
    EXPECT_TRUE(logged("CSpoolFile::CreateBitmap finished"));
}

TEST_F(JobBitmap, the_process_mode_chooses_the_type) {
    const std::string blackWhite("\0\0\0\0\xFF\xFF\xFF\0", 8);
    const std::string whiteBlack("\xFF\xFF\xFF\0\0\0\0\0", 8);
    const std::string greys("\0\0\0\0\x01\x01\x01\0", 8);
    const std::string process("\0\0\0\0\xFF\0\0\0", 8);  // without an ini file: 0x000000, 0x0000FF (red)
    struct Case {
        WORD mode;
        WORD colour;
        DWORD flags;
        unsigned bits;
        std::string palette;
    };
    const std::vector<Case> cases{{1000, 2, 0, 8, std::string("\0\0\0\0\0\0\xFF\0", 8)},
                                  {1000, 2, MV_FL_IMAGEOP_INVERT, 8, std::string("\0\0\0\0\0\0\xFF\0", 8)},
                                  {1000, 0, 0, 1, blackWhite},
                                  {1000, 1, MV_FL_IMAGEOP_INVERT, 1, whiteBlack},
                                  {2000, 2, 0, 1, blackWhite},
                                  {2000, 0, MV_FL_IMAGEOP_INVERT, 1, whiteBlack},
                                  {3000, 0, 0, 8, std::string("\0\0\0\0\0\0\xFF\0", 8)},
                                  {4000, 0, 0, 8, greys},
                                  {5000, 0, MV_FL_IMAGEOP_INVERT, 8, greys},
                                  {6000, 0, MV_FL_IMAGEOP_INVERT, 1, blackWhite},
                                  {7000, 0, MV_FL_IMAGEOP_INVERT, 1, blackWhite},
                                  {8000, 0, MV_FL_IMAGEOP_INVERT, 1, blackWhite},
                                  {9000, 0, 0, 1, blackWhite},
                                  {9000, 0, MV_FL_IMAGEOP_INVERT, 1, whiteBlack},
                                  {10000, 0, MV_FL_IMAGEOP_INVERT, 1, whiteBlack},
                                  {11000, 0, MV_FL_IMAGEOP_INVERT, 1, whiteBlack},
                                  {12000, 0, MV_FL_IMAGEOP_INVERT, 1, whiteBlack},
                                  {12000, 0, 0, 1, blackWhite},
                                  {13000, 0, MV_FL_IMAGEOP_INVERT, 8, std::string("\0\0\0\0\0\0\xFF\0", 8)}};
    for (const Case& given : cases) {
        config.processMode = given.mode;
        config.processColour = given.colour;
        config.flags = given.flags;
        const std::string job = bytesOf(*begin(1));
        const std::string image = job.substr(job.find("<STBmp: 0;0>") + 12);
        EXPECT_EQ(image.substr(0, 2), "BM");
        EXPECT_EQ(static_cast<unsigned char>(image[28]), given.bits) << given.mode << ' ' << given.flags;
        EXPECT_EQ(image.substr(54, 8), given.palette) << given.mode << ' ' << given.flags;
    }
}

TEST_F(JobBitmap, the_page_moves_the_vectors_behind_it_unchanged) {
    const auto writer = begin(1);
    std::array<std::int32_t, 2> xs{1, 2};
    std::array<std::int32_t, 2> ys{3, 4};
    writer->WritePolygon(xs.data(), ys.data(), 2, 0xFF, true);
    writer->WriteBezier(xs.data(), ys.data(), 2, 0xFF00);
    const std::string vectors = vectorsOf(bytesOf(*writer));
    EXPECT_TRUE(writePage(*writer, kRows));
    EXPECT_EQ(fromBitmap(bytesOf(*writer)), kOpened + smallImage(kRows) + kClosed + vectors);
    EXPECT_EQ(spoolFiles(), Strings{"Plan.tsa"});  // the backup is gone

    // The end of the file is known: the next commands follow the old ones, and duplicates are still found.
    writer->WriteArc({}, 0);
    EXPECT_FALSE(writer->WritePolygon(xs.data(), ys.data(), 2, 0xFF, true));
    EXPECT_EQ(commandsOf(bytesOf(*writer)),
              "<DrawPolygon: 2;255;0;0;1;3;2;4>\r\n<DrawBezier: 2;0;255;0;1;3;2;4>\r\n<DrawArc: 0;0;0;0;0;0;0.00;0.00;0>");
    EXPECT_EQ(fromBitmap(bytesOf(*writer)).find(kOpened + smallImage(kRows) + kClosed), 0U);
}

TEST_F(JobBitmap, a_section_of_many_blocks_is_moved_whole) {
    const auto writer = begin(1);
    std::vector<std::int32_t> xs(60000);
    for (std::size_t i = 0; i < xs.size(); ++i) xs[i] = static_cast<std::int32_t>(i);
    for (int i = 0; i < 5; ++i) {
        xs[0] = i;
        writer->WritePolygon(xs.data(), xs.data(), 60000, 0xFF, false);
    }
    const std::string vectors = vectorsOf(bytesOf(*writer));
    ASSERT_GT(vectors.size(), 2U << 20);
    EXPECT_TRUE(writePage(*writer, kRows));
    EXPECT_EQ(vectorsOf(bytesOf(*writer)), vectors);
}

TEST_F(JobBitmap, a_page_may_be_written_again) {
    const auto writer = begin(1);
    EXPECT_TRUE(writePage(*writer, kWhiteRows));
    EXPECT_TRUE(writePage(*writer, kRows));
    EXPECT_EQ(fromBitmap(bytesOf(*writer)), kOpened + smallImage(kRows) + kClosed + std::string(kEmptyVectors));
}

TEST_F(JobBitmap, a_larger_surface_gives_what_the_section_takes) {
    const auto writer = begin(1);
    EXPECT_TRUE(writePage(*writer, kRows + "more bytes of a deeper surface"));
    EXPECT_EQ(fromBitmap(bytesOf(*writer)), kOpened + smallImage(kRows) + kClosed + std::string(kEmptyVectors));
}

TEST_F(JobBitmap, a_page_too_short_for_the_section_is_refused_and_spoils_the_job) {
    const auto writer = begin(1);
    const std::string before = bytesOf(*writer);
    EXPECT_FALSE(writePage(*writer, kRows.substr(1)));
    EXPECT_FALSE(writer->WriteBitmap(nullptr, 8));
    EXPECT_EQ(bytesOf(*writer), before);
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(JobBitmap, a_backup_of_another_process_is_left_alone) {
    const auto writer = begin(1);
    std::int32_t x = 1;
    writer->WritePolygon(&x, &x, 1, 0xFF, false);
    writeBytes(inSpool(TEXT("BackUp_Polygon.dat")), "theirs");
    EXPECT_TRUE(writePage(*writer, kRows));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 1;255;0;0;1;1>");
    EXPECT_EQ(readBytes(inSpool(TEXT("BackUp_Polygon.dat"))), "theirs");
    EXPECT_EQ(spoolFiles(), (Strings{"BackUp_Polygon.dat", "Plan.tsa"}));
}

TEST_F(JobBitmap, without_a_backup_a_section_that_would_be_overwritten_spoils_the_job) {
    const auto writer = begin(1);
    makeFolder(inSpool(TEXT("BackUp_Polygon.dat")));
    writePage(*writer, kRows);
    EXPECT_TRUE(logged("!!! SpoolFile Error BackUpPolygon"));
    writer->Complete();
    EXPECT_EQ(spoolFiles(), Strings{"BackUp_Polygon.dat"});
}

TEST_F(JobBitmap, without_a_backup_a_page_that_keeps_its_size_leaves_the_job_whole) {
    const auto writer = begin(3);
    std::int32_t x = 1;
    writer->WritePolygon(&x, &x, 1, 0xFF, false);
    makeFolder(inSpool(TEXT("BackUp_Polygon.dat")));
    EXPECT_TRUE(writePage(*writer, kRows));
    EXPECT_TRUE(logged("!!! SpoolFile Error BackUpPolygon"));
    EXPECT_EQ(commandsOf(bytesOf(*writer)), "<DrawPolygon: 1;255;0;0;1;1>");
    writer->Complete();
    EXPECT_TRUE(spooled(TEXT("Plan.tsf")));
}

TEST_F(JobBitmap, bands_go_to_their_offset) {
    const auto writer = begin(3);
    std::int32_t x = 1;
    writer->WritePolygon(&x, &x, 1, 0xFF, false);
    const std::string vectors = vectorsOf(bytesOf(*writer));
    clearLog();
    EXPECT_TRUE(writeBand(*writer, kRows.substr(4), 4));
    EXPECT_EQ(fromBitmap(bytesOf(*writer)), kOpened + smallImage(kWhiteRows.substr(0, 4) + kRows.substr(4)) + kClosed + vectors);
    EXPECT_TRUE(writeBand(*writer, kRows.substr(0, 4), 0));
    EXPECT_EQ(fromBitmap(bytesOf(*writer)), kOpened + smallImage(kRows) + kClosed + vectors);
    EXPECT_TRUE(logged("CBM::WriteBitmapBand, uiBuffSize=4"));
    const Strings all = messages();
    EXPECT_TRUE(std::any_of(all.begin(), all.end(), [](const std::string& text) {
        return text.starts_with("WriteBitmapBand, mEndPosBM (1)=") && text.ends_with(", uiBuffSize=4, uiOffset=4");
    }));
}

TEST_F(JobBitmap, a_band_does_not_reach_beyond_the_section) {
    const auto writer = begin(3);
    const std::string vectors = vectorsOf(bytesOf(*writer));
    EXPECT_TRUE(writeBand(*writer, "0123456789", 4));
    EXPECT_TRUE(writeBand(*writer, "0123456789", 8));
    EXPECT_TRUE(writeBand(*writer, "0123456789", 0xFFFFFFFF));
    EXPECT_EQ(fromBitmap(bytesOf(*writer)), kOpened + smallImage(kWhiteRows.substr(0, 4) + "0123") + kClosed + vectors);
}

}  // namespace morvil::test
