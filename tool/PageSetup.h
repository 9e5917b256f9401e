// PageSetup.h - from the command line's paper and a drawing's frame to the device mode of a page and the place of the drawing
// on it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "config/ConfigurationRecord.h"
#include "engine/Metafile.h"

namespace morvil::tool {

struct PaperChoice {
    enum class Kind { Drawing, Stored, Given };
    Kind kind = Kind::Drawing;
    double width = 0.0;   // mm, for Given
    double height = 0.0;
};
// "drawing", "stored" or "WIDTHxHEIGHT" in mm; nothing for any other text.
std::optional<PaperChoice> parsePaper(const std::string& text);

struct PageSetup {
    double paperWidth = 0.0;  // mm
    double paperHeight = 0.0;
    RECTL target{};           // page pixels that the drawing's frame fills, edges included
    bool drawingFits = true;
    std::vector<std::uint8_t> devmode;  // public part and the driver's private part
};

// The page for a drawing; an empty setup and a reason when the size is out of range.
std::optional<PageSetup> setUpPage(const PaperChoice& paper, const engine::MetafileHeader& drawing, const ConfigurationRecord& record, const WString& printerName,
                                   int copies, std::string& reason);

}  // namespace morvil::tool
