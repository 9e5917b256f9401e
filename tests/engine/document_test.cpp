// A document through a driver: order of the calls, arguments of the document calls, bands, changes of paper, failures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineState.h"
#include "engine/FakeDriver.h"
#include "engine/Pixels.h"

namespace morvil::engine {
namespace {

using testing::ElementsAre;

class Drawing : public PageSource {
  public:
    explicit Drawing(std::function<void(Canvas&)> draw = {}) : m_draw(std::move(draw)) {}
    void play(Canvas& canvas) override {
        ++plays;
        if (m_draw) m_draw(canvas);
    }
    int plays = 0;

  private:
    std::function<void(Canvas&)> m_draw;
};

PrintRequest requestOf(std::vector<Page> pages) {
    PrintRequest request;
    request.enableDriver = &FakeDriver::enable;
    request.printerName = TEXT("Morvil");
    request.documentName = TEXT("Plan");
    request.jobId = 7;
    request.pages = std::move(pages);
    return request;
}

Page page(std::shared_ptr<PageSource> source, std::uint8_t mark = 0) { return {std::move(source), std::vector<std::uint8_t>(sizeof(DEVMODEW), mark)}; }

class Document : public testing::Test {
  protected:
    // Nothing of the engine may outlive a document, however it ended.
    void TearDown() override {
        EXPECT_EQ(liveSurfaces(), 0U);
        EXPECT_EQ(livePalettes(), 0U);
        EXPECT_TRUE(engineState().devices.empty());
        EXPECT_FALSE(engineState().abortRequested);
        resetEngineState();
    }
    FakeDriver driver;
    std::shared_ptr<Drawing> drawing = std::make_shared<Drawing>();
};

TEST_F(Document, without_pages_is_refused) { EXPECT_EQ(printDocument(requestOf({})).status, PrintStatus::DriverFailed); }

TEST_F(Document, refused_enabling_calls_nothing_else) {
    driver.refuses = {"DrvEnableDriver"};
    EXPECT_EQ(printDocument(requestOf({page(drawing)})).status, PrintStatus::DriverRefused);
    EXPECT_TRUE(driver.calls.empty());
}

struct Refusal {
    const char* call;
    PrintStatus status;
    std::vector<std::string> after;  // the calls behind the refused one
};

class RefusedCall : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedCall, ends_the_document_in_order) {
    FakeDriver driver;
    driver.refuses = {GetParam().call};
    const auto drawing = std::make_shared<Drawing>();
    const PrintReport report = printDocument(requestOf({page(drawing), page(drawing, 1)}));
    EXPECT_EQ(report.status, GetParam().status);
    EXPECT_FALSE(report.reason.empty());
    const std::vector<std::string> names = driver.names();
    const auto refused = std::find(names.begin(), names.end(), GetParam().call);
    ASSERT_NE(refused, names.end());
    EXPECT_EQ(std::vector<std::string>(refused + 1, names.end()), GetParam().after);
    EXPECT_EQ(liveSurfaces(), 0U);
    resetEngineState();
}

const Refusal kRefusals[] = {
    {"DrvEnablePDEV", PrintStatus::DriverRefused, {"DrvDisableDriver"}},
    {"DrvEnableSurface", PrintStatus::SurfaceFailed, {"DrvDisablePDEV", "DrvDisableDriver"}},
    {"DrvStartDoc", PrintStatus::DriverFailed, {"DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"}},
    {"DrvStartPage", PrintStatus::DriverFailed, {"DrvEndDoc", "DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"}},
    {"DrvSendPage", PrintStatus::DriverFailed, {"DrvEndDoc", "DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"}},
    {"DrvResetPDEV", PrintStatus::DriverFailed, {"DrvDisablePDEV", "DrvEndDoc", "DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"}},
    {"DrvEndDoc", PrintStatus::DriverFailed, {"DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"}},
};
INSTANTIATE_TEST_SUITE_P(Calls, RefusedCall, testing::ValuesIn(kRefusals), [](const auto& tested) { return std::string(tested.param.call); });

TEST_F(Document, failed_document_ends_with_the_abort_flag) {
    driver.refuses = {"DrvSendPage"};
    printDocument(requestOf({page(drawing)}));
    EXPECT_EQ(driver.count("DrvEndDoc flags=1"), 1U);
}

TEST_F(Document, unbanded_pages_come_in_the_documented_order) {
    const PrintReport report = printDocument(requestOf({page(drawing), page(drawing)}));
    EXPECT_EQ(report.status, PrintStatus::Done) << report.reason;
    EXPECT_THAT(driver.calls, ElementsAre("DrvEnablePDEV printer=Morvil", "DrvCompletePDEV", "DrvEnableSurface", "DrvStartDoc name=Plan job=7", "DrvStartPage", "DrvSendPage",
                                          "DrvStartPage", "DrvSendPage", "DrvEndDoc flags=0", "DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"));
    EXPECT_EQ(drawing->plays, 2);
    ASSERT_EQ(report.pages.size(), 2U);
    EXPECT_EQ(report.pages[0].pixels.cx, 40);
    EXPECT_EQ(report.pages[0].dpi, 254U);
    EXPECT_DOUBLE_EQ(report.pages[0].widthMillimetres, 4.0);
    EXPECT_FALSE(report.pages[0].banded);
}

TEST_F(Document, empty_name_is_passed_as_null) {
    PrintRequest request = requestOf({page(drawing)});
    request.documentName.clear();
    printDocument(request);
    EXPECT_EQ(driver.count("DrvStartDoc name=null"), 1U);
}

TEST_F(Document, banded_page_plays_once_a_band_until_the_origin_says_end) {
    driver.bandHeight = 8;  // 30 rows: 8, 8, 8, 6
    const PrintReport report = printDocument(requestOf({page(drawing)}));
    EXPECT_EQ(report.status, PrintStatus::Done) << report.reason;
    EXPECT_EQ(driver.count("DrvNextBand"), 4U);
    EXPECT_EQ(driver.count("DrvSendPage"), 0U);
    EXPECT_EQ(drawing->plays, 4);
    EXPECT_TRUE(report.pages[0].banded);
    EXPECT_EQ(report.pages[0].bands, 4);
}

TEST_F(Document, last_band_may_answer_true_as_well) {
    driver.bandHeight = 15;
    driver.lastBandAnswersFalse = false;
    EXPECT_EQ(printDocument(requestOf({page(drawing)})).status, PrintStatus::Done);
    EXPECT_EQ(driver.count("DrvNextBand"), 2U);
}

TEST_F(Document, failing_band_before_the_last_ends_the_document) {
    driver.bandHeight = 8;
    driver.refuses = {"DrvNextBand"};
    EXPECT_EQ(printDocument(requestOf({page(drawing)})).status, PrintStatus::DriverFailed);
    EXPECT_EQ(driver.count("DrvNextBand"), 1U);
}

TEST_F(Document, band_that_does_not_advance_or_leaves_the_page_is_refused) {
    driver.bandHeight = 8;
    for (const POINTL origin : {POINTL{0, 0}, POINTL{0, 30}, POINTL{5, 8}, POINTL{0, -8}}) {
        driver.bandOrigins = {origin};
        driver.calls.clear();
        EXPECT_EQ(printDocument(requestOf({page(drawing)})).status, PrintStatus::DriverFailed) << origin.x << "," << origin.y;
        EXPECT_LE(driver.count("DrvNextBand"), 2U);
    }
}

TEST_F(Document, change_of_paper_makes_a_new_instance_without_a_document_name) {
    const PrintReport report = printDocument(requestOf({page(drawing, 1), page(drawing, 2)}));
    EXPECT_EQ(report.status, PrintStatus::Done) << report.reason;
    const std::vector<std::string> behind(std::find(driver.calls.begin(), driver.calls.end(), "DrvSendPage") + 1, driver.calls.end());
    EXPECT_THAT(behind, ElementsAre("DrvEnablePDEV printer=Morvil", "DrvCompletePDEV", "DrvResetPDEV", "DrvDisableSurface", "DrvDisablePDEV", "DrvEnableSurface",
                                    "DrvStartDoc name=null job=0", "DrvStartPage", "DrvSendPage", "DrvEndDoc flags=0", "DrvDisableSurface", "DrvDisablePDEV", "DrvDisableDriver"));
}

TEST_F(Document, abort_stops_between_calls_and_is_reported) {
    bool abort = false;
    driver.atStartPage = [&abort] { abort = true; };
    PrintRequest request = requestOf({page(drawing), page(drawing)});
    request.abortRequested = [&abort] { return abort; };
    const PrintReport report = printDocument(request);
    EXPECT_EQ(report.status, PrintStatus::Aborted);
    EXPECT_EQ(driver.count("DrvStartPage"), 1U);
    EXPECT_EQ(driver.count("DrvEndDoc flags=1"), 1U);
}

TEST_F(Document, absurd_page_of_the_driver_is_refused) {
    for (const SIZEL size : {SIZEL{0, 10}, SIZEL{10, 0}, SIZEL{65536, 10}, SIZEL{10, 65536}, SIZEL{-1, 10}}) {
        driver.page = size;
        const PrintReport report = printDocument(requestOf({page(drawing)}));
        EXPECT_EQ(report.status, PrintStatus::DriverRefused) << size.cx << "x" << size.cy;
        EXPECT_NE(report.reason.find("out of range"), std::string::npos) << report.reason;
    }
}

TEST_F(Document, progress_reaches_the_last_row_of_each_page) {
    driver.bandHeight = 20;
    std::vector<std::pair<std::size_t, LONG>> told;
    PrintRequest request = requestOf({page(drawing), page(drawing)});
    request.progress = [&told](std::size_t index, LONG done, LONG rows) {
        told.emplace_back(index, done);
        EXPECT_EQ(rows, 30);
    };
    printDocument(request);
    EXPECT_THAT(told, ElementsAre(std::pair(0U, 20), std::pair(0U, 30), std::pair(1U, 20), std::pair(1U, 30)));
}

TEST_F(Document, drawing_error_of_the_driver_ends_the_page) {
    driver.errors = {"DrvStrokePath"};
    Path line;
    line.moveTo({16, 16});
    line.lineTo({160, 16});
    const auto strokes = std::make_shared<Drawing>([&line](Canvas& canvas) {
        canvas.strokePath(line, Pen{}, XFORM{1, 0, 0, 1, 0, 0}, 13);
        canvas.strokePath(line, Pen{}, XFORM{1, 0, 0, 1, 0, 0}, 13);
    });
    const PrintReport report = printDocument(requestOf({page(strokes)}));
    EXPECT_EQ(report.status, PrintStatus::DriverFailed);
    EXPECT_EQ(report.reason, "DrvStrokePath failed");
    EXPECT_EQ(driver.count("DrvStrokePath"), 1U);
    EXPECT_EQ(driver.count("DrvSendPage"), 0U);
}

}  // namespace
}  // namespace morvil::engine
