#include "jobfile/ColourMatching.h"

#include <array>
#include <optional>
#include <vector>

#include "config/CMvString.h"
#include "config/CXml.h"
#include "config/ParsedDocumentCache.h"
#include "driver/log/Log.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr WCHAR kEnabledItem[] = TEXT("PrinterDriver.ColorMatching.Enabled");
constexpr WCHAR kRangeItem[] = TEXT("PrinterDriver.ColorMatching.Item%d");
constexpr WCHAR kGreyItem[] = TEXT("PrinterDriver.ColorMatching.GrayscaledVectors");
constexpr std::uint32_t kGreyWithoutItem = 253;

using Value = std::array<WCHAR, CXml::kValueCharacters>;

struct Range {
    std::uint32_t from;
    std::uint32_t to;
    std::uint32_t colour;
};

// What the document says, worked out once for each state of its bytes.
struct Table {
    std::vector<Range> ranges;  // empty when the table is switched off
    std::uint32_t grey = kGreyWithoutItem;
};

constexpr std::uint32_t red(std::uint32_t colour) { return colour & 0xFF; }
constexpr std::uint32_t green(std::uint32_t colour) { return (colour >> 8) & 0xFF; }
constexpr std::uint32_t blue(std::uint32_t colour) { return (colour >> 16) & 0xFF; }

constexpr bool liesIn(const Range& range, std::uint32_t colour) {
    const auto between = [](std::uint32_t low, std::uint32_t value, std::uint32_t high) { return low <= value && value <= high; };
    return between(red(range.from), red(colour), red(range.to)) && between(green(range.from), green(colour), green(range.to)) &&
           between(blue(range.from), blue(colour), blue(range.to));
}

std::optional<std::uint32_t> readColour(CXml& document, const WCHAR* item, const WCHAR* attribute) {
    Value text{};
    if (!document.getItem(item, text.data(), attribute)) return std::nullopt;
    return static_cast<std::uint32_t>(CMvString().asLong(text.data()));
}

// The item is usable when all three of its attributes can be read.
std::optional<Range> readRange(CXml& document, int number) {
    const WString item = format(kRangeItem, number);
    const auto from = readColour(document, item.c_str(), TEXT("from"));
    const auto to = from ? readColour(document, item.c_str(), TEXT("to")) : std::nullopt;
    const auto colour = to ? readColour(document, item.c_str(), TEXT("color")) : std::nullopt;
    return colour ? std::optional<Range>({*from, *to, *colour}) : std::nullopt;
}

Table readTable(CXml& document) {
    Table table;
    Value enabled{};
    if (document.getItem(kEnabledItem, enabled.data()) && CMvString().asBoolean(enabled.data())) {
        for (int number = 0; const auto range = readRange(document, number); ++number) table.ranges.push_back(*range);
    }
    table.grey = readColour(document, kGreyItem, TEXT("MappTo")).value_or(kGreyWithoutItem);
    return table;
}

}  // namespace

struct ColourMatching::Members {
    ParsedDocumentCache document;
    std::optional<CXml> reader;  // made for the first colour; that it stays saves opening the mutex for each
    Table table;
    std::optional<std::uint64_t> tableGeneration;  // of the document that the table was made from

    // Reads the file under its lock. False when it or the lock cannot be had: then nothing is known of it.
    bool read() {
        const bool done = reader ? reader->reload() : reader.emplace(document).isLoaded();
        return done && reader->isLoaded();
    }

    // The table of the configuration as it stands in the file now; of an empty document when the file cannot be had.
    void refresh() {
        if (!read()) {
            table = {};
            tableGeneration.reset();
            return;
        }
        if (tableGeneration == document.generation()) return;
        table = readTable(*reader);
        tableGeneration = document.generation();
    }
};

ColourMatching::ColourMatching() : m(std::make_unique<Members>()) {}
ColourMatching::~ColourMatching() = default;

bool ColourMatching::checkPolygonColor(std::uint32_t& colour) {
    logMorvil(1, kInformation, TEXT("CSpoolFile::checkPolygonColor"), kLogEnd);
    m->refresh();
    const std::uint32_t incoming = colour;
    bool replaced = false;
    for (const Range& range : m->table.ranges) {  // the last range that contains the colour decides
        if (!liesIn(range, incoming)) continue;
        colour = range.colour;
        replaced = true;
    }
    const bool isGrey = red(incoming) == green(incoming) && green(incoming) == blue(incoming) && red(incoming) != 0 && red(incoming) != 255;
    if (!replaced && isGrey) {
        logMorvil(1, kInformation, TEXT("CSpoolFile::checkPolygonColor gray scaled vector found (R==%d, G==%d, B==%d)"), red(incoming),
                  green(incoming), blue(incoming), kLogEnd);
        colour = m->table.grey;
        replaced = true;
    }
    logMorvil(1, kInformation, TEXT("CSpoolFile::checkPolygonColor finished"), kLogEnd);
    return !replaced;
}

}  // namespace morvil
