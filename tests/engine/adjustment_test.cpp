// The arithmetic of colour adjustment, field by field.
#include <cmath>

#include "engine/pixels/ColourAdjustment.h"
#include "support/PixelFixtures.h"

using morvil::engine::ColourAdjuster;

namespace {

COLORADJUSTMENT neutral() {
    COLORADJUSTMENT a{};
    a.caSize = sizeof a;
    a.caRedGamma = a.caGreenGamma = a.caBlueGamma = 10000;
    a.caReferenceWhite = 10000;
    return a;
}

template <typename Change>
COLORREF adjusted(COLORREF colour, Change change) {
    COLORADJUSTMENT a = neutral();
    change(a);
    return ColourAdjuster(&a)(colour);
}

}  // namespace

TEST(ColourAdjustment, fieldsOutOfRange_adjustNothing) {
    EXPECT_TRUE(ColourAdjuster(nullptr).neutral());
    COLORADJUSTMENT a = neutral();
    EXPECT_TRUE(ColourAdjuster(&a).neutral());
    a.caRedGamma = 2499;
    a.caGreenGamma = 65001;
    a.caBlueGamma = 0;
    a.caReferenceBlack = 4001;
    a.caReferenceWhite = 5999;
    a.caContrast = 101;
    a.caBrightness = -101;
    a.caColorfulness = 1000;
    a.caRedGreenTint = -1000;
    EXPECT_TRUE(ColourAdjuster(&a).neutral());
    EXPECT_EQ(ColourAdjuster(&a)(0x123456), 0x123456U);
    COLORADJUSTMENT zero{};
    EXPECT_TRUE(ColourAdjuster(&zero).neutral());
}

TEST(ColourAdjustment, negative_turnsEveryLevelAround) {
    const auto negative = [](COLORADJUSTMENT& a) { a.caFlags = CA_NEGATIVE; };
    EXPECT_EQ(adjusted(0x000000, negative), 0xFFFFFFU);
    EXPECT_EQ(adjusted(RGB(10, 100, 255), negative), RGB(245, 155, 0));
}

TEST(ColourAdjustment, logFilter_spreadsDarkLevels) {
    const auto filter = [](COLORADJUSTMENT& a) { a.caFlags = CA_LOG_FILTER; };
    EXPECT_EQ(adjusted(0x000000, filter), 0x000000U);
    EXPECT_EQ(adjusted(0xFFFFFF, filter), 0xFFFFFFU);
    const int dark = GetRValue(adjusted(RGB(51, 51, 51), filter));
    EXPECT_EQ(dark, std::lround(255 * std::log10(1 + 9 * 0.2)));
    EXPECT_GT(GetRValue(adjusted(RGB(30, 30, 30), filter)) - GetRValue(adjusted(RGB(20, 20, 20), filter)), 10);
    EXPECT_LT(GetRValue(adjusted(RGB(230, 230, 230), filter)) - GetRValue(adjusted(RGB(220, 220, 220), filter)), 10);
}

TEST(ColourAdjustment, gammas_actOnTheirOwnPrimary) {
    const COLORREF grey = RGB(128, 128, 128);
    const auto twice = static_cast<unsigned>(std::lround(255 * std::pow(128 / 255.0, 2.0)));
    const auto half = static_cast<unsigned>(std::lround(255 * std::sqrt(128 / 255.0)));
    EXPECT_EQ(adjusted(grey, [](COLORADJUSTMENT& a) { a.caRedGamma = 20000; }), RGB(twice, 128, 128));
    EXPECT_EQ(adjusted(grey, [](COLORADJUSTMENT& a) { a.caGreenGamma = 20000; }), RGB(128, twice, 128));
    EXPECT_EQ(adjusted(grey, [](COLORADJUSTMENT& a) { a.caBlueGamma = 5000; }), RGB(128, 128, half));
    EXPECT_EQ(adjusted(0xFFFFFF, [](COLORADJUSTMENT& a) { a.caRedGamma = 65000; }), 0xFFFFFFU);
}

TEST(ColourAdjustment, references_becomeBlackAndWhite) {
    const auto references = [](COLORADJUSTMENT& a) {
        a.caReferenceBlack = 2000;  // level 51
        a.caReferenceWhite = 8000;  // level 204
    };
    EXPECT_EQ(adjusted(RGB(51, 30, 0), references), 0x000000U);
    EXPECT_EQ(adjusted(RGB(204, 230, 255), references), 0xFFFFFFU);
    EXPECT_EQ(adjusted(RGB(102, 153, 51), references), RGB(85, 170, 0));
}

TEST(ColourAdjustment, contrast_spreadsAroundTheMiddle) {
    const auto with = [](SHORT contrast) { return [contrast](COLORADJUSTMENT& a) { a.caContrast = contrast; }; };
    EXPECT_EQ(adjusted(RGB(70, 190, 128), with(50)), RGB(41, 221, 128));
    EXPECT_EQ(adjusted(RGB(40, 220, 128), with(50)), RGB(0, 255, 128));
    EXPECT_EQ(adjusted(RGB(0, 255, 77), with(-100)), RGB(128, 128, 128));
    EXPECT_EQ(adjusted(RGB(0, 255, 51), with(-50)), RGB(64, 191, 89));
}

TEST(ColourAdjustment, brightness_addsToEveryLevel) {
    const auto with = [](SHORT brightness) { return [brightness](COLORADJUSTMENT& a) { a.caBrightness = brightness; }; };
    EXPECT_EQ(adjusted(RGB(0, 100, 200), with(10)), RGB(13, 113, 213));  // 12.75 more
    EXPECT_EQ(adjusted(RGB(0, 100, 200), with(-10)), RGB(0, 87, 187));
    EXPECT_EQ(adjusted(RGB(250, 250, 250), with(100)), 0xFFFFFFU);
}

TEST(ColourAdjustment, colourfulness_movesColoursFromAndToGrey) {
    const auto with = [](SHORT value) { return [value](COLORADJUSTMENT& a) { a.caColorfulness = value; }; };
    EXPECT_EQ(adjusted(RGB(255, 0, 0), with(-100)), RGB(76, 76, 76));
    EXPECT_EQ(adjusted(RGB(90, 90, 90), with(100)), RGB(90, 90, 90));
    const COLORREF vivid = adjusted(RGB(150, 100, 100), with(50));
    EXPECT_GT(GetRValue(vivid), 150);
    EXPECT_LT(GetGValue(vivid), 100);
    EXPECT_EQ(GetGValue(vivid), GetBValue(vivid));
}

TEST(ColourAdjustment, tint_movesBetweenRedAndGreen) {
    const auto with = [](SHORT tint) { return [tint](COLORADJUSTMENT& a) { a.caRedGreenTint = tint; }; };
    EXPECT_EQ(adjusted(RGB(100, 100, 100), with(100)), RGB(150, 50, 100));
    EXPECT_EQ(adjusted(RGB(100, 100, 100), with(-100)), RGB(50, 150, 100));
    EXPECT_EQ(adjusted(0x000000, with(100)), 0x000000U);
}

TEST(ColourAdjustment, order_isNegativeBeforeGammaBeforeContrast) {
    const COLORREF result = adjusted(RGB(55, 55, 55), [](COLORADJUSTMENT& a) {
        a.caFlags = CA_NEGATIVE;
        a.caRedGamma = a.caGreenGamma = a.caBlueGamma = 20000;
        a.caContrast = 50;
    });
    const double v = 0.5 + (std::pow(200 / 255.0, 2.0) - 0.5) * 1.5;
    EXPECT_EQ(GetRValue(result), std::lround(255 * v));
}
