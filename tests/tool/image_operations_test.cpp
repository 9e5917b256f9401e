// Mirroring and colour adjustment of real surfaces, and what they make of a printed page.
#include <gmock/gmock.h>

#include <fstream>
#include <random>

#include "raster/ImageOperations.h"
#include "support/PixelFixtures.h"
#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

using test::makeBitmap;
using test::pixelAt;

std::vector<std::uint8_t> bytesOf(const SURFOBJ& surface) {
    const auto* const bits = static_cast<const std::uint8_t*>(surface.pvBits);
    return {bits, bits + surface.cjBits};
}

// Random pixels and paddings.
void scribble(SURFOBJ& surface) {
    std::mt19937 random(7);
    auto* const bits = static_cast<std::uint8_t*>(surface.pvBits);
    std::generate_n(bits, surface.cjBits, [&random] { return static_cast<std::uint8_t>(random()); });
    for (LONG y = 0; y < surface.sizlBitmap.cy; ++y) {
        for (LONG x = 0; x < surface.sizlBitmap.cx; ++x) test::setPixel(surface, x, y, static_cast<ULONG>(random()) & 0xFFFFFF);
    }
}

COLORADJUSTMENT neutral() {
    return {.caSize = sizeof(COLORADJUSTMENT), .caRedGamma = 10000, .caGreenGamma = 10000, .caBlueGamma = 10000, .caReferenceBlack = 0, .caReferenceWhite = 10000};
}

class SurfaceOperations : public PrintFixture, public testing::WithParamInterface<std::tuple<ULONG, FLONG, LONG>> {
  protected:
    SURFOBJ& surface() {
        const auto& [format, flags, width] = GetParam();
        engine::EngineSurface& made = makeBitmap(width, 5, format, flags);
        scribble(made);
        return made;
    }
};

TEST_P(SurfaceOperations, mirroring_reverses_each_row_and_twice_is_the_original) {
    SURFOBJ& page = surface();
    const std::vector<std::uint8_t> before = bytesOf(page);
    const LONG width = page.sizlBitmap.cx;
    std::vector<ULONG> pixels;
    for (LONG i = 0; i < 5 * width; ++i) pixels.push_back(pixelAt(page, i % width, i / width));
    ASSERT_EQ(doFlipHorizontal(page), 1);
    for (LONG i = 0; i < 5 * width; ++i) ASSERT_EQ(pixelAt(page, width - 1 - i % width, i / width), pixels[static_cast<std::size_t>(i)]) << i;
    ASSERT_EQ(doFlipHorizontal(page), 1);
    EXPECT_EQ(bytesOf(page), before);
}

TEST_P(SurfaceOperations, a_neutral_adjustment_changes_nothing) {
    SURFOBJ& page = surface();
    const std::vector<std::uint8_t> before = bytesOf(page);
    doColorAdjustment(page, neutral());
    EXPECT_EQ(bytesOf(page), before);
}

std::string surfaceName(const testing::TestParamInfo<std::tuple<ULONG, FLONG, LONG>>& tested) {
    const auto& [format, flags, width] = tested.param;
    return std::to_string(test::bitsPerPixel(format)) + "bits" + (flags == BMF_TOPDOWN ? "TopDown" : "BottomUp") + std::to_string(width);
}
INSTANTIATE_TEST_SUITE_P(Surfaces, SurfaceOperations,
                         testing::Combine(testing::Values(BMF_1BPP, BMF_8BPP, BMF_24BPP), testing::Values(FLONG{0}, FLONG{BMF_TOPDOWN}),
                                          testing::Values(1, 2, 7, 8, 9, 31, 32, 33, 100)),
                         surfaceName);

using AdjustedSurface = PrintFixture;

TEST_F(AdjustedSurface, a_negative_inverts_true_colours) {
    engine::EngineSurface& page = makeBitmap(9, 3, BMF_24BPP);
    scribble(page);
    std::vector<ULONG> pixels;
    for (LONG i = 0; i < 27; ++i) pixels.push_back(pixelAt(page, i % 9, i / 9));
    COLORADJUSTMENT negative = neutral();
    negative.caFlags = CA_NEGATIVE;
    doColorAdjustment(page, negative);
    for (LONG i = 0; i < 27; ++i) EXPECT_EQ(pixelAt(page, i % 9, i / 9), 0xFFFFFF - pixels[static_cast<std::size_t>(i)]) << i;
}

TEST_F(AdjustedSurface, brightness_lightens_a_grey_page) {
    engine::EngineSurface& page = makeBitmap(4, 1, BMF_8BPP);
    std::vector<COLORREF> greys;
    for (unsigned i = 0; i < 256; ++i) greys.push_back(RGB(i, i, i));
    test::givePalette(page, greys);
    for (LONG x = 0; x < 4; ++x) test::setPixel(page, x, 0, 100);
    COLORADJUSTMENT bright = neutral();
    bright.caBrightness = 50;
    doColorAdjustment(page, bright);
    EXPECT_GT(pixelAt(page, 0, 0), 100U);
    EXPECT_EQ(pixelAt(page, 0, 0), pixelAt(page, 3, 0));
}

// What no stored key holds but a device mode can carry.
TEST_F(AdjustedSurface, every_field_changes_pixels) {
    struct Field {
        const char* name;
        void (*set)(COLORADJUSTMENT&);
    };
    const Field fields[] = {{"negative", [](COLORADJUSTMENT& a) { a.caFlags = CA_NEGATIVE; }},
                            {"log filter", [](COLORADJUSTMENT& a) { a.caFlags = CA_LOG_FILTER; }},
                            {"red gamma", [](COLORADJUSTMENT& a) { a.caRedGamma = 25000; }},
                            {"green gamma", [](COLORADJUSTMENT& a) { a.caGreenGamma = 25000; }},
                            {"blue gamma", [](COLORADJUSTMENT& a) { a.caBlueGamma = 25000; }},
                            {"reference black", [](COLORADJUSTMENT& a) { a.caReferenceBlack = 2000; }},
                            {"reference white", [](COLORADJUSTMENT& a) { a.caReferenceWhite = 8000; }},
                            {"contrast", [](COLORADJUSTMENT& a) { a.caContrast = 40; }},
                            {"brightness", [](COLORADJUSTMENT& a) { a.caBrightness = -40; }},
                            {"colourfulness", [](COLORADJUSTMENT& a) { a.caColorfulness = -60; }},
                            {"tint", [](COLORADJUSTMENT& a) { a.caRedGreenTint = 60; }}};
    for (const Field& field : fields) {
        engine::EngineSurface& page = makeBitmap(32, 8, BMF_24BPP);
        scribble(page);
        const std::vector<std::uint8_t> before = bytesOf(page);
        COLORADJUSTMENT adjustment = neutral();
        field.set(adjustment);
        doColorAdjustment(page, adjustment);
        EXPECT_FALSE(bytesOf(page) == before) << field.name;
    }
}

// The pixels of a job's one bitmap, row by row from the top.
std::string bitmapOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    const std::size_t begin = bytes.find("BM", bytes.find("<STBmp"));
    return begin == std::string::npos ? std::string() : bytes.substr(begin, bytes.find("<EOBmp>") - begin);
}

class PrintedPage : public PrintFixture {
  protected:
    std::string bitmap(const std::string& name, std::vector<std::string> settings) const {
        std::vector<std::string> arguments{"--title", name, "--quiet", "--set", "PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution@index=5", "--set",
                                           "PrinterDriver.Configuration.Print.Process.ProcessMode.ID=4000"};
        for (std::string& setting : settings) arguments.insert(arguments.end(), {"--set", std::move(setting)});
        arguments.push_back(sample("photoplate.emf"));
        const Outcome outcome = print(arguments);
        EXPECT_EQ(outcome.status, kDone) << outcome.err;
        return bitmapOf(job(name + ".tsf"));
    }
};

constexpr const char* kAdjustmentOn = "PrinterDriver.Flags.FL_1=MV_FL_IMAGEOP_COLORADJUSTMENT";

TEST_F(PrintedPage, changes_with_each_stored_field_of_the_adjustment) {
    const std::string base = "PrinterDriver.Configuration.Halftone.ColorAdjustment.";
    const std::string plain = bitmap("plain", {});
    ASSERT_FALSE(plain.empty());
    EXPECT_TRUE(plain == bitmap("off", {base + "caBrightness=160"})) << "the adjustment is switched off";
    for (const char* const field : {"caBrightness=160", "caContrast=170", "caRedGamma=3000", "caGreenGamma=3000", "caBlueGamma=3000"}) {
        const std::string item = field;
        const std::string neutralItem = item.substr(0, item.find('=')) + (item.find("Gamma") == std::string::npos ? "=100" : "=10000");
        const std::string adjusted = bitmap("adjusted", {base + field, kAdjustmentOn});
        EXPECT_FALSE(plain == adjusted) << field;
        EXPECT_TRUE(plain == bitmap("neutral", {base + neutralItem, kAdjustmentOn})) << field;
    }
}

TEST_F(PrintedPage, mirrored_is_each_row_reversed) {
    const std::string plain = bitmap("plain", {});
    const std::string mirrored = bitmap("mirrored", {"PrinterDriver.Flags.FL_1=MV_FL_IMAGEOP_FLIP_HORIZONTAL"});
    ASSERT_EQ(plain.size(), mirrored.size());
    EXPECT_FALSE(plain == mirrored);
    const auto field = [&](std::size_t at) { return static_cast<std::size_t>(static_cast<std::uint8_t>(plain[at])) | static_cast<std::size_t>(static_cast<std::uint8_t>(plain[at + 1])) << 8; };
    const std::size_t offset = field(10);
    const std::size_t width = field(18);
    const std::size_t stride = (width + 3) / 4 * 4;
    for (std::size_t row = offset; row + stride <= plain.size(); row += stride) {
        std::string reversed = mirrored.substr(row, stride);  // what pads a row stays where it is
        std::reverse(reversed.begin(), reversed.begin() + static_cast<std::ptrdiff_t>(width));
        ASSERT_TRUE(plain.substr(row, stride) == reversed) << (row - offset) / stride;
    }
}

}  // namespace
}  // namespace morvil::tool
