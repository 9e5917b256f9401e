// Pages in bands: where each band goes, when the page is over, and what the next band starts with.
#include "driver/DriverFixture.h"
#include "driver/page_storage.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Bands : public DriverTest {
  protected:
    // A page of 80 rows in bands of `rows`.
    void startBanded(LONG rows) {
        configuration().flags |= MV_FL_BITMAP_BANDING;
        const WORD pageHeight = configuration().size.pixelHeight;
        configuration().size.pixelHeight = static_cast<WORD>(rows);
        enableSurface();
        pdev->configuration().size.pixelHeight = pageHeight;
        startDocumentHere();
    }
    void startDocumentHere() {
        WString title = TEXT("Plan");
        ASSERT_EQ(DrvStartDoc(pso, title.data(), 1), TRUE);
        ASSERT_EQ(DrvStartPage(pso), TRUE);
        clearLogs();
    }
    static std::vector<std::string> bandWrites() {
        std::vector<std::string> writes;
        for (const std::string& line : morvilLog()) {
            const std::size_t at = line.find("uiBuffSize=");
            if (line.starts_with("WriteBitmapBand,")) writes.push_back(line.substr(at));
        }
        return writes;
    }
};

TEST_F(Bands, a_start_goes_to_the_top) {
    state().uiBandPosition = 7;
    POINTL origin{5, 6};
    EXPECT_EQ(DrvStartBanding(nullptr, &origin), TRUE);
    EXPECT_EQ(origin.x, 0);
    EXPECT_EQ(origin.y, 0);
    EXPECT_EQ(state().uiBandPosition, 0U);
    EXPECT_THAT(morvilLog(), ElementsAre("DrvStartBanding", "DrvStartBanding finished"));
    EXPECT_EQ(DrvStartBanding(nullptr, nullptr), TRUE);
}

TEST_F(Bands, missing_arguments_are_reported_and_survived) {
    state().configuration.size.pixelHeight = 80;
    POINTL origin{5, 6};
    EXPECT_EQ(DrvNextBand(nullptr, &origin), FALSE);
    EXPECT_THAT(morvilLog(), AllOf(Contains("!!! DrvNextBand invalid parameters"), Contains("DrvNextBand finished, x=0, y=0")));
    EXPECT_EQ(origin.y, 0);
    startBanded(40);
    EXPECT_EQ(DrvNextBand(pso, nullptr), TRUE);
    EXPECT_THAT(morvilLog(), Contains("!!! DrvNextBand invalid parameters"));
    EXPECT_EQ(state().uiBandPosition, 40U);
}

TEST_F(Bands, the_last_band_answers_false_and_completes_the_job) {
    startBanded(30);
    POINTL origin{};
    EXPECT_EQ(DrvNextBand(pso, &origin), TRUE);
    EXPECT_EQ(origin.y, 30);
    EXPECT_THAT(morvilLog(), AllOf(Contains("DrvNextBand SizlBitmap.cy=30, uiBandPosition=0"), Contains("DrvNextBand finished, x=0, y=30"),
                                   Not(Contains("DrvNextBand finished through Bitmap size"))));
    EXPECT_EQ(DrvNextBand(pso, &origin), TRUE);
    EXPECT_EQ(origin.y, 60);
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsa"));
    clearLogs();
    EXPECT_EQ(DrvNextBand(pso, &origin), FALSE);
    EXPECT_EQ(origin.x, -1);
    EXPECT_EQ(origin.y, -1);
    EXPECT_THAT(morvilLog(), AllOf(Contains("DrvNextBand SizlBitmap.cy=30, uiBandPosition=60"),
                                   Contains("DrvNextBand finished through Bitmap size"), Contains("DrvNextBand finished, x=-1, y=-1")));
    EXPECT_THAT(jobFileNames(), ElementsAre("Plan.tsf"));
}

TEST_F(Bands, a_band_that_ends_with_the_page_is_the_last) {
    startBanded(40);
    POINTL origin{};
    EXPECT_EQ(DrvNextBand(pso, &origin), TRUE);
    EXPECT_EQ(DrvNextBand(pso, &origin), FALSE);
    EXPECT_EQ(origin.y, -1);
}

TEST_F(Bands, an_aborted_page_is_completed_without_a_job) {
    startBanded(40);
    POINTL origin{};
    EXPECT_EQ(DrvNextBand(pso, &origin), TRUE);
    engine.aborted = true;
    clearLogs();
    EXPECT_EQ(DrvNextBand(pso, &origin), FALSE);
    EXPECT_THAT(morvilLog(), Contains("SpoolFile ProcessMode=Standard"));
    EXPECT_THAT(jobFileNames(), testing::IsEmpty());
}

TEST_F(Bands, the_next_band_starts_empty) {
    configuration().raster = 0;
    startBanded(40);
    std::vector<std::uint8_t>& bits = engine.surfaces.begin()->second->bits;
    std::fill(bits.begin(), bits.end(), std::uint8_t{0x77});
    POINTL origin{};
    DrvNextBand(pso, &origin);
    EXPECT_THAT(bits, Each(0x01));
}

TEST_F(Bands, the_black_and_white_test_gets_the_common_background_between_bands) {
    configuration().raster = 0;
    configuration().processMode = kModeTest1;
    startBanded(40);
    const std::vector<std::uint8_t>& bits = engine.surfaces.begin()->second->bits;
    EXPECT_THAT(bits, Each(0xFF));
    POINTL origin{};
    DrvNextBand(pso, &origin);
    EXPECT_THAT(bits, Each(0x01));
}

TEST_F(Bands, a_vector_job_keeps_its_surface) {
    configuration().vectorJob = 1;
    startBanded(40);
    std::vector<std::uint8_t>& bits = engine.surfaces.begin()->second->bits;
    std::fill(bits.begin(), bits.end(), std::uint8_t{0x77});
    POINTL origin{};
    DrvNextBand(pso, &origin);
    EXPECT_THAT(bits, Each(0x77));
    EXPECT_THAT(bandWrites(), testing::IsEmpty());
}

TEST_F(Bands, ordinary_bands_go_to_offset_zero) {
    startBanded(30);
    POINTL origin{};
    while (DrvNextBand(pso, &origin) != FALSE) {
    }
    EXPECT_THAT(bandWrites(), ElementsAre("uiBuffSize=480, uiOffset=0", "uiBuffSize=480, uiOffset=0", "uiBuffSize=480, uiOffset=0"));
}

TEST_F(Bands, test_bands_go_to_their_place) {
    configuration().processMode = kModeTest3;
    startBanded(30);
    POINTL origin{};
    while (DrvNextBand(pso, &origin) != FALSE) {
    }
    EXPECT_THAT(bandWrites(),
                ElementsAre("uiBuffSize=9000, uiOffset=0", "uiBuffSize=9000, uiOffset=9000", "uiBuffSize=6000, uiOffset=18000"));
    EXPECT_THAT(
        morvilLog(),
        AllOf(Contains("WriteBitmapPart, uiBandPosition=30, pDst->sizlBitmap.cy=30, jobHeight=80, delta=300"), Contains("Band 0..n-1"),
              Contains("WriteBitmapPart last band, uiBandPosition=60, pDst->sizlBitmap.cy=30, jobHeight=80, delta=300"),
              Contains("usHeight=80, uiBandPosition=60, Delta=300")));
}

TEST_F(Bands, mirrored_test_bands_are_stored_from_the_end) {
    configuration().processMode = kModeTest3;
    configuration().flags |= MV_FL_IMAGEOP_FLIP_VERTICAL;
    startBanded(30);
    POINTL origin{};
    while (DrvNextBand(pso, &origin) != FALSE) {
    }
    EXPECT_THAT(bandWrites(),
                ElementsAre("uiBuffSize=9000, uiOffset=15000", "uiBuffSize=9000, uiOffset=6000", "uiBuffSize=6000, uiOffset=0"));
}

TEST_F(Bands, places_within_the_pixel_area) {
    static const struct {
        const char* what;
        Band band;
        bool last;
        std::uint64_t bytes;
        std::uint64_t offset;
    } places[] = {{"first of three", {0, 30, 80, 10, 300, false}, false, 300, 0},
                  {"second", {30, 30, 80, 10, 300, false}, false, 300, 300},
                  {"last, cut at the page's end", {60, 30, 80, 10, 300, false}, true, 200, 600},
                  {"last, just fitting", {50, 30, 80, 10, 300, false}, true, 300, 500},
                  {"the only one", {0, 80, 80, 10, 800, false}, true, 800, 0},
                  {"first from the end", {0, 30, 80, 10, 300, true}, false, 300, 500},
                  {"second from the end", {30, 30, 80, 10, 300, true}, false, 300, 200},
                  {"last from the end", {60, 30, 80, 10, 300, true}, true, 200, 0},
                  {"behind the page", {90, 30, 80, 10, 300, false}, true, 0, 900},
                  {"more rows than bits", {0, 80, 80, 10, 500, false}, true, 500, 0},
                  {"the largest page", {65000, 100, 65535, 196608, 19660800, false}, false, 19660800, 12779520000}};
    for (const auto& place : places) {
        EXPECT_EQ(isLastBand(place.band), place.last) << place.what;
        EXPECT_EQ(placeBand(place.band).bytes, place.bytes) << place.what;
        EXPECT_EQ(placeBand(place.band).offset, place.offset) << place.what;
    }
}

}  // namespace
}  // namespace morvil::test
