// The border of a colour stamp: the four walks of the plain formulation decide, over random images of many sizes.
#include <random>

#include "jobfile/BorderCompletion.h"
#include "jobfile/PageJob.h"
#include "support/FailingCalls.h"
#include "support/System.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

// Without colour lists the palette is black, red, green, blue, the light grey of the frame, white, white.
constexpr char kRed = 1;
constexpr char kGrey = 4;
constexpr char kWhiteByte = 5;
constexpr char kUnused = 100;  // an entry that no colour took

class JobBorder : public PageJob {
  protected:
    std::string completed(WORD width, WORD height, const std::string& rows) {
        setPage(kModeColourStamp, width, height);
        const auto writer = begin(1);
        sendPage(*writer, rows);
        clearLog();
        writer->Complete();
        m_completionLog = messages();
        return imageOf(finished(*writer)).pixels;
    }

    Strings m_completionLog;
};

struct Plain {
    std::string pixels;
    Strings log;
};

// Pixel by pixel, one edge after the other.
Plain plainly(std::uint32_t width, std::uint32_t height, std::string pixels) {
    Plain result;
    if (width > 1 && height > 1) {
        const std::size_t stride = (width + 3) / 4 * 4;
        const auto at = [&](std::size_t x, std::size_t y) -> char& { return pixels[y * stride + x]; };
        const auto complete = [&](char& edge, char inner, const char* what, std::size_t number) {
            if (inner != kGrey || (edge != kWhiteByte && edge != kWhiteByte + 1)) return;
            result.log.push_back("Border detected, " + std::string(what) + "=" + std::to_string(number));
            edge = kGrey;
        };
        for (std::size_t y = 0; y < height; ++y) complete(at(0, y), at(1, y), "row", y);
        for (std::size_t y = 0; y < height; ++y) complete(at(width - 1, y), at(width - 2, y), "row", y);
        for (std::size_t x = 0; x < width; ++x) complete(at(x, 0), at(x, 1), "col", x);
        for (std::size_t x = 0; x < width; ++x) complete(at(x, height - 1), at(x, height - 2), "col", x);
    }
    result.pixels = std::move(pixels);
    return result;
}

std::string randomRows(std::mt19937& random, std::uint32_t width, std::uint32_t height) {
    const char values[] = {kGrey, kGrey, kGrey, kWhiteByte, kWhiteByte, kWhiteByte + 1, kRed, kUnused};
    Strings rows(height, std::string(width, '\0'));
    for (std::string& row : rows) {
        for (char& pixel : row) pixel = values[random() % std::size(values)];
    }
    return storedRows(rows);
}

}  // namespace

TEST_F(JobBorder, a_frame_one_pixel_inside_grows_to_the_edge) {
    const std::string g(1, kGrey);
    const std::string w(1, kWhiteByte);
    const std::string inside = w + g + g + g + w;
    const std::string blank = w + w + w + w + w;
    const std::string sides = w + g + w + g + w;
    EXPECT_EQ(completed(5, 5, storedRows({blank, inside, sides, inside, blank})),
              storedRows({g + g + g + g + g, g + g + g + g + g, g + g + w + g + g, g + g + g + g + g, g + g + g + g + g}));
    EXPECT_EQ(m_completionLog,
              (Strings{"SpoolFile ProcessMode=ColorStamp", "Border detected, row=1", "Border detected, row=2", "Border detected, row=3",
                       "Border detected, row=1", "Border detected, row=2", "Border detected, row=3", "Border detected, col=0",
                       "Border detected, col=1", "Border detected, col=2", "Border detected, col=3", "Border detected, col=4",
                       "Border detected, col=0", "Border detected, col=1", "Border detected, col=2", "Border detected, col=3",
                       "Border detected, col=4"}));
}

TEST_F(JobBorder, only_light_grey_beside_white_counts) {
    for (const char inner : {kRed, kWhiteByte, kUnused}) {
        const std::string rows =
            storedRows({std::string(3, kWhiteByte), std::string(1, kWhiteByte) + inner + kWhiteByte, std::string(3, kWhiteByte)});
        EXPECT_EQ(completed(3, 3, rows), rows) << int{inner};
    }
    for (const char edge : {kRed, kGrey, kUnused}) {
        const std::string rows = storedRows({std::string(3, edge), std::string(1, edge) + kGrey + edge, std::string(3, edge)});
        EXPECT_EQ(completed(3, 3, rows), rows) << int{edge};
    }
    EXPECT_EQ(m_completionLog, Strings{"SpoolFile ProcessMode=ColorStamp"});
}

TEST_F(JobBorder, all_widths_and_heights_are_completed_as_plainly) {
    std::mt19937 random(7);
    for (WORD width = 1; width <= 67; ++width) {
        const auto height = static_cast<WORD>(1 + random() % 9);
        const std::string rows = randomRows(random, width, height);
        const Plain expected = plainly(width, height, rows);
        EXPECT_EQ(completed(width, height, rows), expected.pixels) << width << " x " << height;
        EXPECT_EQ(messagesFrom("Border detected"), expected.log) << width << " x " << height;
    }
    for (const auto& [width, height] : std::vector<std::pair<WORD, WORD>>{{2, 2}, {2, 3}, {3, 2}, {1, 5}, {5, 1}}) {
        const std::string rows = randomRows(random, width, height);
        EXPECT_EQ(completed(width, height, rows), plainly(width, height, rows).pixels) << width << " x " << height;
    }
}

TEST_F(JobBorder, an_image_of_many_blocks_is_completed_as_plainly) {
    std::mt19937 random(8);
    const std::string rows = randomRows(random, 1000, 3000);
    const Plain expected = plainly(1000, 3000, rows);
    EXPECT_TRUE(completed(1000, 3000, rows) == expected.pixels);
    EXPECT_EQ(messagesFrom("Border detected"), expected.log);
}

TEST_F(JobBorder, other_modes_and_jobs_without_an_image_stay_as_they_are) {
    setPage(kModeRelief, 3, 3);
    const std::string rows = storedRows({"\x05\x05\x05", "\x05\x04\x05", "\x05\x05\x05"});
    EXPECT_EQ(imageOf(printed(rows)).pixels, rows);
    setPage(kModeColourStamp, 3, 3);
    config.vectorJob = 1;
    const auto writer = begin(1);
    writer->Complete();
    EXPECT_TRUE(finished(*writer).ends_with(kEmptyVectors));
    EXPECT_EQ(messagesFrom("!!! "), Strings{});
}

TEST_F(JobBorder, a_file_that_was_cut_is_logged_and_not_given_away) {
    setPage(kModeColourStamp, 3, 3);
    const auto writer = begin(1);
    sendPage(*writer, storedRows({"\x05\x05\x05", "\x05\x04\x05", "\x05\x05\x05"}));
    const std::string whole = bytesOf(*writer);
    writeBytes(writer->jobFilePath(), whole.substr(0, whole.find("<EOBmp>") - 2));
    writer->Complete();
    EXPECT_TRUE(logged("!!! ErrorMsg=bitmap section cannot be read"));
    EXPECT_EQ(spoolFiles(), Strings{});
}

TEST_F(JobBorder, a_file_that_cannot_be_opened_is_logged_and_given_away_as_it_is) {
    setPage(kModeColourStamp, 3, 3);
    const auto writer = begin(1);
    const std::string rows = storedRows({"\x05\x05\x05", "\x05\x04\x05", "\x05\x05\x05"});
    sendPage(*writer, rows);
    makeReadOnly(writer->jobFilePath());
    clearLog();
    writer->Complete();
    EXPECT_EQ(messages(), (Strings{"SpoolFile ProcessMode=ColorStamp", "!!! ErrorMsg=job file cannot be opened"}));
    EXPECT_EQ(imageOf(finished(*writer)).pixels, rows);
}

TEST_F(JobBorder, a_failed_read_leaves_the_border_open) {
    setPage(kModeColourStamp, 3, 3);
    const auto writer = begin(1);
    const std::string rows = storedRows({"\x05\x05\x05", "\x05\x04\x05", "\x05\x05\x05"});
    sendPage(*writer, rows);
    m_log.settings.enabled = 0;
    {
        const FailingCalls faults(1, Fault::Transient, "read");
        writer->Complete();
        EXPECT_EQ(faults.fired(), 1);
    }
    EXPECT_EQ(imageOf(finished(*writer)).pixels, rows);
}

TEST_F(JobBorder, a_failed_write_keeps_the_job_from_being_given_away) {
    setPage(kModeColourStamp, 3, 3);
    const auto writer = begin(1);
    sendPage(*writer, storedRows({"\x05\x05\x05", "\x05\x04\x05", "\x05\x05\x05"}));
    m_log.settings.enabled = 0;
    {
        const FailingCalls faults(1, Fault::Transient, "write");
        writer->Complete();
        EXPECT_EQ(faults.fired(), 1);
    }
    EXPECT_EQ(spoolFiles(), Strings{});
}

}  // namespace morvil::test
