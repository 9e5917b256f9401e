// Halftoned pages through the page flow: what is stored, what the surface holds afterwards, and pages that cannot be halftoned.
#include <numeric>

#include "driver/DriverFixture.h"
#include "driver/page_operations.h"
#include "raster/CxImage.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kOneBitRow = 16;    // 100 pixels
constexpr std::size_t kOneBitPage = 1280;  // 80 rows
constexpr std::size_t kColourRow = 300;

class HalftonedPage : public DriverTest {
  protected:
    void start(WORD mode, DWORD flags = kHalftoningBit) {
        configuration().processMode = mode;
        configuration().flags = flags;
        startPage();
        std::uint32_t number = 1;
        for (std::uint8_t& byte : bits()) byte = static_cast<std::uint8_t>((number = number * 1664525 + 1013904223) >> 24);
        clearLogs();
        debug.clear();
    }
    [[nodiscard]] Bytes& bits() { return engine.surfaces.begin()->second->bits; }
    // What the surface becomes by the image class alone.
    [[nodiscard]] Bytes reduced(unsigned method) {
        CxImage image;
        const auto bitsPerPixel = static_cast<unsigned>(bits().size() / kOneBitPage == 18 ? 24 : 8);
        EXPECT_TRUE(image.CreateFromArray(bits().data(), 100, 80, bitsPerPixel, static_cast<std::uint32_t>(bits().size() / 80), false));
        EXPECT_TRUE(method == 100 ? image.DitherOrdered(configuration().halftone.patternSize) : image.Dither(method));
        return {image.GetBits().begin(), image.GetBits().end()};
    }
    // The pixels of the finished job's bitmap.
    static std::string pixelsOf(const std::string& job) {
        const std::size_t begin = job.find("BM");
        return begin == std::string::npos ? std::string() : job.substr(begin + 62, kOneBitPage);
    }
};

struct ModeCase {
    const char* name;
    WORD mode;
    DWORD algorithm;  // configured
    unsigned method;  // that is used; 100: ordered
};
class HalftonedModes : public HalftonedPage, public testing::WithParamInterface<ModeCase> {};

TEST_P(HalftonedModes, store_one_bit_rows_and_leave_the_rest_of_the_surface) {
    configuration().halftone.algorithm = GetParam().algorithm;
    configuration().halftone.patternSize = 2;
    start(GetParam().mode);
    ASSERT_EQ(bits().size(), kColourRow * 80);
    const Bytes before = bits();
    const Bytes wanted = reduced(GetParam().method);
    ASSERT_EQ(wanted.size(), kOneBitPage);
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), bits().begin()));
    EXPECT_TRUE(std::equal(bits().begin() + kOneBitPage, bits().end(), before.begin() + kOneBitPage));
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsf"));
    EXPECT_EQ(pixelsOf(jobFile(".tsf")), std::string(wanted.begin(), wanted.end()));
    EXPECT_THAT(morvilLog(), AllOf(Contains("DrvSendPage Halftoning"), Contains("DrvSendPage Halftoning finished")));
    EXPECT_THAT(debug.texts(), AllOf(Contains("DitherOrdered, PatternSize=2\n"), Contains("Dither, Save buffer size=1280\n"), Contains("Dither, finished\n")));
}

constexpr ModeCase kModes[] = {{"tracer", kModeTest2, 0, 100},      {"banding", kModeTest3, 4, 4}, {"floydSteinberg", kModeTest4, 0, 0},
                               {"jarvis", kModeTest5, 0, 4},        {"stucki", kModeTest6, 7, 3},  {"burkes", kModeTest7, 3, 2},
                               {"tracerDiffused", kModeTest2, 5, 3}};
INSTANTIATE_TEST_SUITE_P(Modes, HalftonedModes, testing::ValuesIn(kModes), [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(HalftonedPage, of_one_bit_stays_as_it_is) {
    start(kModeStandard);
    const Bytes before = bits();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(bits(), before);
    EXPECT_EQ(pixelsOf(jobFile(".tsf")), std::string(before.begin(), before.end()));
}

TEST_F(HalftonedPage, of_eight_bits_takes_indices_for_greys) {
    start(kModeRelief);
    const Bytes wanted = reduced(100);
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), bits().begin()));
}

TEST_F(HalftonedPage, without_the_flag_the_modes_change_nothing) {
    start(kModeTest5, 0);
    const Bytes before = bits();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(bits(), before);
    EXPECT_EQ(state().halftoneImage, nullptr);
}

TEST_F(HalftonedPage, keeps_one_image_for_every_page) {
    start(kModeTest4);
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    const CxImage* const image = state().halftoneImage.get();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(state().halftoneImage.get(), image);
}

TEST_F(HalftonedPage, tells_what_it_yields) {
    configuration().processMode = kModeTest4;
    enableSurface();
    state().configuration = configuration();
    const PageBits page = halftone(*pso);
    EXPECT_EQ(page.bits, static_cast<const std::uint8_t*>(pso->pvBits));
    EXPECT_EQ(page.bytes, kOneBitPage);
    EXPECT_EQ(page.rowBytes, kOneBitRow);
}

TEST_F(HalftonedPage, left_alone_is_the_surface) {
    configuration().processMode = kModeTest3;
    configuration().halftone.algorithm = 7;
    enableSurface();
    state().configuration = configuration();
    const PageBits page = halftone(*pso);
    EXPECT_EQ(page.bytes, kColourRow * 80);
    EXPECT_EQ(page.rowBytes, kColourRow);
}

TEST_F(HalftonedPage, bands_of_the_banding_test_go_to_their_place) {
    configuration().size.pixelHeight = 80;
    start(kModeTest3, kHalftoningBit | MV_FL_BITMAP_BANDING);
    state().uiBandPosition = 30;  // as the second band of a page
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_THAT(morvilLog(), AllOf(Contains("WriteBitmapPart last band, uiBandPosition=30, pDst->sizlBitmap.cy=80, jobHeight=80, delta=16"),
                                   Contains(HasSubstr("uiBuffSize=800, uiOffset=480"))));
}

TEST_F(HalftonedPage, that_cannot_be_described_is_stored_as_it_is) {
    start(kModeTest4);
    contexts.failingCall = "GetDIBits";
    contexts.failingNumber = contexts.calls["GetDIBits"] + 1;
    const Bytes before = bits();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(bits(), before);
    EXPECT_THAT(morvilLog(), AllOf(Contains("!!! getBitmapInfo, Error 1"), Contains("DrvSendPage Halftoning finished")));
    EXPECT_TRUE(contexts.contexts.empty());
}

TEST_F(HalftonedPage, without_memory_is_stored_as_it_is) {
    start(kModeTest4);
    const Bytes before = bits();
    state().configuration = configuration();
    const FailingCalls faults(1, Fault::Persistent, "allocate");
    const PageBits page = halftone(*pso);
    EXPECT_EQ(page.bytes, before.size());
    EXPECT_EQ(bits(), before);
}

TEST_F(HalftonedPage, is_dumped_with_the_dump_switch) {
    configuration().dumpBitmaps = 1;
    start(kModeTest4);
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    const std::string file = readBytes(TEXT("C:\\result_0.bmp"));
    ASSERT_EQ(file.size(), 62 + kOneBitPage);
    EXPECT_EQ(file.substr(62), pixelsOf(jobFile(".tsf")));
}

}  // namespace
}  // namespace morvil::test
