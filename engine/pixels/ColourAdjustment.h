// ColourAdjustment.h - the platform's colour adjustment, as the halftone stretching mode applies it to each colour.
// With levels from 0 to 1 and in this order:
//   negative      v = 1 - v                                                   (flag CA_NEGATIVE)
//   reference     v = (v - black) / (white - black), cut at 0 and 1           (black, white: fields / 10000)
//   gamma         v = v ^ (gamma / 10000), a field for each primary
//   contrast      v = 0.5 + (v - 0.5) * (1 + contrast / 100)
//   brightness    v = v + brightness / 200
//   colourfulness v = luma + (v - luma) * (1 + colourfulness / 100)           (luma: 0.299 red + 0.587 green + 0.114 blue)
//   tint          red * (1 + tint / 200), green * (1 - tint / 200)            (positive towards red)
//   log filter    v = log10(1 + 9 v), which spreads the dark levels           (flag CA_LOG_FILTER)
// Results are cut at 0 and 1 after contrast with brightness, and at the end. Fields outside the ranges that the platform gives
// them count as not adjusted. The illuminant index changes nothing: the engine has no calibrated colours that it could move.
#pragma once

#include <array>
#include <cstdint>

#include "platform/platform.h"

namespace morvil::engine {

class ColourAdjuster {
  public:
    // Null: nothing is adjusted.
    explicit ColourAdjuster(const COLORADJUSTMENT* adjustment);

    [[nodiscard]] bool neutral() const { return m_neutral; }
    [[nodiscard]] COLORREF operator()(COLORREF colour) const { return m_neutral ? colour : adjusted(colour); }

  private:
    [[nodiscard]] COLORREF adjusted(COLORREF colour) const;

    bool m_neutral = true;
    std::array<std::array<std::int32_t, 256>, 3> m_levels{};  // per primary, 0 to 65535, up to brightness
    std::int32_t m_colourfulness = 100;                       // percent
    std::int32_t m_redTint = 200;                             // of 200
    std::int32_t m_greenTint = 200;
    std::array<std::uint8_t, 256> m_last{};  // the log filter
};

}  // namespace morvil::engine
