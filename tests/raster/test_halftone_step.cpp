// The step that the page flow calls: algorithms, texts, what is written and what stays, dumps, failures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/CPrinterConfig.h"
#include "raster/CxImageBMP.h"
#include "raster/Halftone.h"
#include "raster/NaiveHalftone.h"
#include "raster/Workspace.h"

using namespace morvil;
using test::Bytes;
using test::NaiveGrey;
using test::Workspace;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t kUntouched = 0xDEADBEEF;

class HalftoneStep : public testing::Test {
  protected:
    // 40 x 30 pixels of 8 bits.
    HalftoneStep() {
        parameters.algorithm = 0;
        parameters.patternSize = 0;
        header.biSize = sizeof header;
        header.biWidth = 40;
        header.biHeight = 30;
        header.biBitCount = 8;
        header.biSizeImage = 1200;
    }

    int run(int dump = 0) { return Dither(image, page.data(), page.data(), &size, &header, &parameters, dump); }
    [[nodiscard]] std::string sourceText(const char* kind, int scanLine = 40) const {
        return toUtf8(format(TEXT("Dither %s, CreateFromArray pSrc=%X, pDst=%X, Width=%d, Height=%d, BitCount=%d, SizeScanLine=%d, SizeImage=%d\n"),
                             fromUtf8(kind), low32(page.data()), low32(page.data()), header.biWidth, header.biHeight, header.biBitCount, scanLine,
                             header.biSizeImage));
    }

    Workspace workspace;
    CxImage image;
    NaiveGrey grey = test::randomGrey(40, 30, 5);
    Bytes page = grey.pixels;
    std::uint32_t size = kUntouched;
    BITMAPINFOHEADER header{};
    HalftoneBlock parameters{};
};

TEST_F(HalftoneStep, a_missing_argument_does_nothing) {
    EXPECT_EQ(Dither(image, nullptr, page.data(), &size, &header, &parameters, 0), 0);
    EXPECT_EQ(Dither(image, page.data(), nullptr, &size, &header, &parameters, 0), 0);
    EXPECT_EQ(Dither(image, page.data(), page.data(), nullptr, &header, &parameters, 0), 0);
    EXPECT_EQ(Dither(image, page.data(), page.data(), &size, nullptr, &parameters, 0), 0);
    EXPECT_EQ(Dither(image, page.data(), page.data(), &size, &header, nullptr, 0), 0);
    EXPECT_EQ(page, grey.pixels);
    EXPECT_EQ(size, kUntouched);
    EXPECT_THAT(workspace.debugLines(), IsEmpty());
}

TEST_F(HalftoneStep, algorithms_from_7_on_leave_the_page_alone) {
    for (const DWORD algorithm : {7U, 8U, 0xFFFFFFFFU}) {
        parameters.algorithm = algorithm;
        EXPECT_EQ(run(1), 1);
        EXPECT_EQ(page, grey.pixels);
        EXPECT_EQ(size, kUntouched);
        EXPECT_THAT(workspace.debugLines(), IsEmpty());
        EXPECT_FALSE(test::exists(TEXT("C:\\result_0.bmp")));
    }
}

TEST_F(HalftoneStep, each_algorithm_writes_its_rows_over_the_page_and_nothing_else) {
    static const struct {
        DWORD algorithm;
        DWORD pattern;
        unsigned side;    // of an ordered matrix, or 0
        unsigned method;  // of the diffusion
    } cases[] = {{0, 0, 2, 0}, {1, 0, 2, 0}, {2, 0, 2, 0}, {0, 2, 4, 0}, {1, 1, 8, 0}, {2, 9, 8, 0}, {3, 0, 0, 0}, {4, 2, 0, 4}, {5, 1, 0, 3}, {6, 0, 0, 2}};
    for (const auto& tested : cases) {
        parameters.algorithm = tested.algorithm;
        parameters.patternSize = tested.pattern;
        page = grey.pixels;
        size = kUntouched;
        workspace.forgetTexts();
        EXPECT_EQ(run(), 1);
        const Bytes wanted = tested.side != 0 ? test::naiveOrdered(grey, tested.side) : test::naiveDiffusion(grey, tested.method);
        ASSERT_EQ(size, 240U);  // 8 bytes a row
        EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), page.begin())) << tested.algorithm << " " << tested.pattern;
        EXPECT_TRUE(std::equal(page.begin() + 240, page.end(), grey.pixels.begin() + 240)) << tested.algorithm;

        std::vector<std::string> texts{sourceText(tested.side != 0 ? "ORDERED_DITHERING" : "Error Diffusion"),
                                       "DitherOrdered, PatternSize=" + std::to_string(tested.pattern) + "\n"};
        if (tested.side != 0) {
            const std::string side = std::to_string(tested.side);
            texts.push_back("CxImage::DitherOrdered, " + side + "x" + side + "\n");
        }
        texts.insert(texts.end(), {"Dither, Save buffer size=240\n", "Dither, finished\n"});
        EXPECT_EQ(workspace.debugLines(), texts);
        EXPECT_THAT(workspace.logLines(), IsEmpty());
    }
}

TEST_F(HalftoneStep, an_image_is_used_for_page_after_page) {
    for (const std::uint32_t width : {40U, 7U, 33U}) {
        const NaiveGrey next = test::randomGrey(width, 11, width);
        Bytes bits(((width + 31) / 32) * 4 * 11);
        header.biWidth = static_cast<LONG>(width);
        header.biHeight = 11;
        header.biSizeImage = width * 11;
        parameters.algorithm = 3;
        EXPECT_EQ(Dither(image, next.pixels.data(), bits.data(), &size, &header, &parameters, 0), 1);
        EXPECT_EQ(bits, test::naiveDiffusion(next, 0));
        EXPECT_EQ(size, bits.size());
    }
}

TEST_F(HalftoneStep, one_bit_pages_come_back_unchanged) {
    header.biBitCount = 1;
    header.biSizeImage = 240;
    for (const DWORD algorithm : {0U, 3U}) {
        parameters.algorithm = algorithm;
        size = kUntouched;
        EXPECT_EQ(run(), 1);
        EXPECT_EQ(size, 240U);
        EXPECT_EQ(page, grey.pixels);
    }
}

TEST_F(HalftoneStep, pages_that_cannot_be_made_an_image_stay_as_they_are) {
    static const struct {
        LONG width, height;
        WORD bits;
        DWORD bytes;
    } cases[] = {{40, 30, 16, 1200}, {40, 30, 0, 1200}, {0, 30, 8, 1200}, {40, 0, 8, 1200}, {40, -30, 8, 1200}};
    for (const auto& tested : cases) {
        header.biWidth = tested.width;
        header.biHeight = tested.height;
        header.biBitCount = tested.bits;
        header.biSizeImage = tested.bytes;
        workspace.forgetTexts();
        EXPECT_EQ(run(1), 1);
        EXPECT_EQ(page, grey.pixels) << tested.width << " " << tested.height << " " << tested.bits;
        EXPECT_EQ(size, kUntouched);
        EXPECT_EQ(workspace.debugLines().size(), 1U);
        EXPECT_FALSE(test::exists(TEXT("C:\\result_0.bmp")));
    }
    EXPECT_THAT(workspace.logLines(), IsEmpty());
}

// The n-th block is refused: the page is untouched. Without a block for the result, not even the pattern size is told.
TEST_F(HalftoneStep, without_memory_the_page_stays_as_it_is) {
    for (const DWORD algorithm : {0U, 3U, 4U}) {
        parameters.algorithm = algorithm;
        int n = 1;
        for (;; ++n) {
            page = grey.pixels;
            size = kUntouched;
            workspace.forgetTexts();
            test::FailingCalls faults(n, test::Fault::Transient, "allocate");
            EXPECT_EQ(run(), 1);
            if (faults.fired() == 0) break;
            EXPECT_EQ(page, grey.pixels) << n;
            EXPECT_EQ(size, kUntouched) << n;
            EXPECT_EQ(workspace.debugLines().size() == 1, n == 1) << n;
        }
        EXPECT_EQ(size, 240U);
        EXPECT_EQ(n, algorithm == 0 ? 2 : 3);
    }
}

TEST_F(HalftoneStep, a_dump_takes_the_first_free_number) {
    const Bytes before = page;
    for (const char* const name : {"C:\\result_0.bmp", "C:\\result_1.bmp", "C:\\result_2.bmp"}) {
        EXPECT_FALSE(test::exists(fromUtf8(name)));
        page = before;
        EXPECT_EQ(run(1), 1);
        const Bytes file = Workspace::readFile(fromUtf8(name));
        ASSERT_EQ(file.size(), 14U + 40 + 8 + 240) << name;
        EXPECT_TRUE(std::equal(file.begin() + 62, file.end(), page.begin()));
    }
    DeleteFileW(TEXT("C:\\result_1.bmp"));
    EXPECT_EQ(run(2), 1);
    EXPECT_TRUE(test::exists(TEXT("C:\\result_1.bmp")));
    EXPECT_FALSE(test::exists(TEXT("C:\\result_3.bmp")));
}

TEST_F(HalftoneStep, a_dump_that_cannot_be_written_is_told_and_changes_nothing_else) {
    workspace.failWrites();
    EXPECT_EQ(run(1), 1);
    workspace.endFaults();
    EXPECT_EQ(size, 240U);
    EXPECT_EQ(workspace.debugLines().back(), "Dither, finished\n");
    EXPECT_FALSE(test::exists(TEXT("C:\\result_0.bmp"))) << "half a picture";
}

TEST_F(HalftoneStep, a_dump_that_something_stands_in_the_way_of_is_logged) {
    test::makeFolder(TEXT("C:\\result_0.bmp"));
    EXPECT_EQ(run(1), 1);
    EXPECT_THAT(workspace.logLines(), testing::Contains(testing::StartsWith("!!! Dither, C:\\result_0.bmp not written, Error=")));
    EXPECT_EQ(size, 240U);
}

TEST_F(HalftoneStep, no_dump_without_the_switch) {
    EXPECT_EQ(run(0), 1);
    EXPECT_EQ(run(-1), 1);
    EXPECT_FALSE(test::exists(TEXT("C:\\result_0.bmp")));
}

TEST_F(HalftoneStep, colours_become_grey) {
    for (const WORD bits : {WORD{24}, WORD{32}}) {
        const std::uint32_t bytes = bits / 8U;
        Bytes colours(std::size_t{40} * 30 * bytes);
        for (std::size_t i = 0; i < grey.pixels.size(); ++i) std::fill_n(colours.begin() + static_cast<long>(i * bytes), bytes, grey.pixels[i]);
        const Bytes before = colours;
        header.biBitCount = bits;
        header.biSizeImage = static_cast<DWORD>(colours.size());
        parameters.algorithm = 4;
        EXPECT_EQ(Dither(image, colours.data(), colours.data(), &size, &header, &parameters, 0), 1);
        const Bytes wanted = test::naiveDiffusion(grey, 4);
        EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), colours.begin())) << bits;
        EXPECT_TRUE(std::equal(colours.begin() + 240, colours.end(), before.begin() + 240)) << bits;
    }
}

}  // namespace
