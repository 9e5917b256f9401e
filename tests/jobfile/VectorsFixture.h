// VectorsFixture.h - a job whose page has 100 x 80 pixels, for tests of its vector commands.
#pragma once

#include "jobfile/JobFixture.h"

namespace morvil::test {

class JobVectors : public JobFixture {
  protected:
    JobVectors() {
        config.size.pixelWidth = 100;
        config.size.pixelHeight = 80;
    }

    // A polygon of the points x, y, x, y, ...
    static bool polygon(CSpoolFile& writer, std::vector<std::int32_t> points, std::uint32_t colour = 0x0000FF, bool check = true) {
        std::vector<std::int32_t> xs;
        std::vector<std::int32_t> ys;
        for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
            xs.push_back(points[i]);
            ys.push_back(points[i + 1]);
        }
        return writer.WritePolygon(xs.data(), ys.data(), static_cast<std::uint32_t>(xs.size()), colour, check);
    }

    // The messages since the last clearing that do not come from the clipper, in order.
    [[nodiscard]] std::vector<std::string> steps() const {
        std::vector<std::string> kept;
        for (const std::string& message : messages()) {
            if (!message.starts_with("MvPolygonClipping") && !message.starts_with("Point original") &&
                !message.starts_with("Corrected points"))
                kept.push_back(message);
        }
        return kept;
    }
};

// What the log says of each polygon whose colour is not corrected.
inline constexpr const char* kMatched[] = {"CSpoolFile::checkPolygonColor", "CSpoolFile::checkPolygonColor finished"};

}  // namespace morvil::test
