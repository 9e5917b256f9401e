// ColourAdjustment.cpp - tables for the adjustment of single primaries, and the mixing of the three.
#include "engine/pixels/ColourAdjustment.h"

#include <algorithm>
#include <cmath>

namespace morvil::engine {
namespace {

constexpr std::int32_t kFull = 65535;

int within(int value, int low, int high, int otherwise) { return value < low || value > high ? otherwise : value; }

struct Fields {
    explicit Fields(const COLORADJUSTMENT& a)
        : negative((a.caFlags & CA_NEGATIVE) != 0),
          logFilter((a.caFlags & CA_LOG_FILTER) != 0),
          gamma{gammaOf(a.caRedGamma), gammaOf(a.caGreenGamma), gammaOf(a.caBlueGamma)},
          black(within(a.caReferenceBlack, 0, 4000, 0)),
          white(within(a.caReferenceWhite, 6000, 10000, 10000)),
          contrast(within(a.caContrast, -100, 100, 0)),
          brightness(within(a.caBrightness, -100, 100, 0)),
          colourfulness(within(a.caColorfulness, -100, 100, 0)),
          tint(within(a.caRedGreenTint, -100, 100, 0)) {}

    [[nodiscard]] bool neutral() const {
        const bool tones = gamma[0] == 10000 && gamma[1] == 10000 && gamma[2] == 10000 && black == 0 && white == 10000;
        return tones && !negative && !logFilter && contrast == 0 && brightness == 0 && colourfulness == 0 && tint == 0;
    }
    [[nodiscard]] double level(int input, int primaryGamma) const {
        double v = input / 255.0;
        if (negative) v = 1.0 - v;
        v = std::clamp((v - black / 10000.0) / ((white - black) / 10000.0), 0.0, 1.0);
        v = std::pow(v, primaryGamma / 10000.0);
        v = 0.5 + (v - 0.5) * (1.0 + contrast / 100.0);
        v += brightness / 200.0;
        return std::clamp(v, 0.0, 1.0);
    }
    static int gammaOf(int field) { return within(field, 2500, 65000, 10000); }

    bool negative;
    bool logFilter;
    std::array<int, 3> gamma;
    int black;
    int white;
    int contrast;
    int brightness;
    int colourfulness;
    int tint;
};

}  // namespace

ColourAdjuster::ColourAdjuster(const COLORADJUSTMENT* adjustment) {
    if (adjustment == nullptr) return;
    const Fields fields(*adjustment);
    m_neutral = fields.neutral();
    if (m_neutral) return;
    for (std::size_t primary = 0; primary < 3; ++primary) {
        for (int input = 0; input < 256; ++input) {
            const double level = fields.level(input, fields.gamma[primary]);
            m_levels[primary][static_cast<std::size_t>(input)] = static_cast<std::int32_t>(std::lround(level * kFull));
        }
    }
    m_colourfulness = 100 + fields.colourfulness;
    m_redTint = 200 + fields.tint;
    m_greenTint = 200 - fields.tint;
    for (std::size_t i = 0; i < m_last.size(); ++i) {
        const double v = static_cast<double>(i) / 255.0;
        const double result = fields.logFilter ? std::log10(1.0 + 9.0 * v) : v;
        m_last[i] = static_cast<std::uint8_t>(std::lround(result * 255.0));
    }
}

COLORREF ColourAdjuster::adjusted(COLORREF colour) const {
    const std::int64_t red = m_levels[0][GetRValue(colour)];
    const std::int64_t green = m_levels[1][GetGValue(colour)];
    const std::int64_t blue = m_levels[2][GetBValue(colour)];
    const std::int64_t luma = (299 * red + 587 * green + 114 * blue + 500) / 1000;
    const auto finish = [&](std::int64_t level, std::int64_t tint) {
        const std::int64_t vivid = luma + (level - luma) * m_colourfulness / 100;
        const std::int64_t tinted = std::clamp<std::int64_t>(vivid * tint / 200, 0, kFull);
        return static_cast<unsigned>(m_last[static_cast<std::size_t>((tinted * 255 + kFull / 2) / kFull)]);
    };
    return RGB(finish(red, m_redTint), finish(green, m_greenTint), finish(blue, 200));
}

}  // namespace morvil::engine
