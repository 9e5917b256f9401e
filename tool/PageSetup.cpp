#include "tool/PageSetup.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <sstream>

#include "config/CPrinterConfig.h"

namespace morvil::tool {

namespace {

// The driver's private device mode behind the public part: 12 bytes, the configuration, 24 bytes.
constexpr std::size_t kPrivateBytes = 1788;
constexpr std::size_t kRecordOffset = sizeof(DEVMODEW) + 12;
static_assert(kRecordOffset + sizeof(ConfigurationRecord) + 24 == sizeof(DEVMODEW) + kPrivateBytes);

constexpr double kSmallestPaper = 1.0;    // mm; the driver takes anything up to this for "no size given"
constexpr double kLargestPaper = 3276.7;  // mm: tenths in 16 bits
constexpr double kLargestSide = 65535.0;  // pixels
constexpr double kTolerance = 0.05;       // mm

std::optional<double> positive(std::string_view text) {
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::string sizeText(double width, double height) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << width << " x " << height << " mm";
    return text.str();
}

// Tenths of a millimetre, never smaller than the drawing.
SHORT tenths(double millimetres) { return static_cast<SHORT>(std::ceil(millimetres * 10.0 - 1e-6)); }

bool checkSize(double width, double height, unsigned dpi, std::string& reason) {
    const auto bad = [&](double side) { return !(side > kSmallestPaper) || side > kLargestPaper || std::ceil(side / 25.4 * dpi) > kLargestSide; };
    if (!bad(width) && !bad(height)) return true;
    reason = "a page of " + sizeText(width, height) + " at " + std::to_string(dpi) + " dpi is out of range (more than 1 mm, at most 3276.7 mm and 65535 pixels a side)";
    return false;
}

std::vector<std::uint8_t> makeDevmode(const ConfigurationRecord& record, const WString& printerName, double width, double height, bool fromApplication, int copies) {
    DEVMODEW mode{};
    copyText(mode.dmDeviceName, printerName);
    mode.dmSpecVersion = 0x0401;
    mode.dmDriverVersion = 0x0600;
    mode.dmSize = sizeof(DEVMODEW);
    mode.dmDriverExtra = kPrivateBytes;
    mode.dmFields = DM_ORIENTATION | DM_COPIES | DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH;
    mode.dmOrientation = DMORIENT_PORTRAIT;
    mode.dmPaperSize = DMPAPER_USER;
    mode.dmPaperWidth = tenths(width);
    mode.dmPaperLength = tenths(height);
    mode.dmCopies = static_cast<SHORT>(std::clamp(copies, 1, 9999));
    ConfigurationRecord carried = record;
    carried.size.takeFromApplication = fromApplication ? 1 : 0;
    std::vector<std::uint8_t> block(sizeof(DEVMODEW) + kPrivateBytes);
    std::memcpy(block.data(), &mode, sizeof(mode));
    std::memcpy(block.data() + kRecordOffset, &carried, sizeof(carried));
    return block;
}

}  // namespace

std::optional<PaperChoice> parsePaper(const std::string& text) {
    if (text == "drawing") return PaperChoice{};
    if (text == "stored") return PaperChoice{.kind = PaperChoice::Kind::Stored};
    const std::size_t by = text.find('x');
    if (by == std::string::npos) return std::nullopt;
    const auto width = positive(std::string_view(text).substr(0, by));
    const auto height = positive(std::string_view(text).substr(by + 1));
    if (!width || !height) return std::nullopt;
    return PaperChoice{PaperChoice::Kind::Given, *width, *height};
}

std::optional<PageSetup> setUpPage(const PaperChoice& paper, const engine::MetafileHeader& drawing, const ConfigurationRecord& record, const WString& printerName,
                                   int copies, std::string& reason) {
    const double width = drawing.widthMillimetres();
    const double height = drawing.heightMillimetres();
    if (!(width > 0.0) || !(height > 0.0)) {
        reason = "the drawing's frame is empty (" + sizeText(width, height) + ")";
        return std::nullopt;
    }
    PageSetup page;
    page.paperWidth = width;
    page.paperHeight = height;
    if (paper.kind == PaperChoice::Kind::Given) {
        page.paperWidth = paper.width;
        page.paperHeight = paper.height;
    } else if (paper.kind == PaperChoice::Kind::Stored) {
        page.paperWidth = static_cast<double>(record.size.width);
        page.paperHeight = static_cast<double>(record.size.height);
    }
    const unsigned dpi = record.resolution;
    if (!checkSize(page.paperWidth, page.paperHeight, dpi, reason)) return std::nullopt;
    page.drawingFits = width <= page.paperWidth + kTolerance && height <= page.paperHeight + kTolerance;
    // The drawing keeps its own size and lies in the upper left corner; frame and target both include their edges.
    const auto pixels = [dpi](double millimetres) { return static_cast<LONG>(std::lround(std::min(millimetres / 25.4 * dpi, 1e7))); };
    page.target = {0, 0, std::max<LONG>(1, pixels(width) - 1), std::max<LONG>(1, pixels(height) - 1)};
    page.devmode = makeDevmode(record, printerName, page.paperWidth, page.paperHeight, paper.kind != PaperChoice::Kind::Stored, copies);
    return page;
}

}  // namespace morvil::tool
