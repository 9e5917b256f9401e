// header_groups.cpp - reads what stands in front of the bitmap: comments, header, diagnostic and colour group.
#include <algorithm>
#include <array>
#include <vector>

#include "tool/JobFileReader.h"

namespace morvil::tool {

namespace {

constexpr const char* kComments = "Comments";
constexpr const char* kHeader = "Header";
constexpr const char* kDiagnostic = "Diagnostic";
constexpr const char* kMci = "Mci";

constexpr std::array<std::string_view, 12> kModes{"Standard", "Stamp", "ColourStamp", "Relief", "Layer", "Test 1 (s/w)", "Test 2 (Tracer)",
                                                  "Test 3 (Banding)", "Test 4 (F/S)", "Test 5 (Jarvis)", "Test 6 (Stucki)", "Test 7 (Burkes)"};
constexpr std::array<std::string_view, 4> kCutLines{"none", "rectangular", "circular", "optimized"};

template <std::size_t N>
bool isOneOf(const std::array<std::string_view, N>& names, std::string_view name) {
    for (const std::string_view candidate : names) {
        if (candidate == name) return true;
    }
    return false;
}

void readComment(JobFileReader& reader, std::string_view keyword, std::string& value) {
    const std::string start = "<!-- " + std::string(keyword) + " ";
    const auto line = reader.peekLine();
    if (!line || !line->starts_with(start) || !line->ends_with('>')) return reader.expected(kComments, "a comment line \"" + start + "...>\"");
    value = line->substr(start.size(), line->size() - start.size() - 1);
    reader.skipLine(kComments);
}

// Takes an entry that must be there, and keeps it; nothing (and a note) when it is not.
const Entry* need(JobFileReader& reader, std::string_view keyword) {
    auto entry = reader.takeEntry(keyword, kHeader);
    if (!entry) {
        reader.expected(kHeader, "the line \"<" + std::string(keyword) + " ...>\"");
        return nullptr;
    }
    reader.job().header.push_back(std::move(*entry));
    return &reader.job().header.back();
}

void check(JobFileReader& reader, const Entry* entry, bool valid, const char* rule) {
    if (entry != nullptr && !valid) reader.note(entry->position, kHeader, rule, entry->value);
}

void readSize(JobFileReader& reader) {
    const Entry* const size = need(reader, "Size:");
    if (size == nullptr) return;
    const std::size_t separator = size->value.find(';');
    const bool valid = separator != std::string::npos && fixedNumber(size->value.substr(0, separator), 2) && fixedNumber(size->value.substr(separator + 1), 2);
    check(reader, size, valid, "the size is width;height in mm with two decimals each");
}

void readModeLines(JobFileReader& reader) {
    const Entry* const mode = need(reader, "ProcessMode:");
    check(reader, mode, mode != nullptr && isOneOf(kModes, mode->value), "a known process mode");
    const std::string name = mode == nullptr ? std::string() : mode->value;
    if (name == "Stamp" || name == "ColourStamp") need(reader, "StampShoulder:");
    if (name != "Layer") return;
    const Entry* const layer = need(reader, "LayerParameter:");
    if (layer == nullptr) return;
    const std::size_t separator = layer->value.find(';');
    const bool valid = separator != std::string::npos && wholeNumber<int>(layer->value.substr(0, separator)) && fixedNumber(layer->value.substr(separator + 1), 3);
    check(reader, layer, valid, "the layer parameter is a whole number;a number with three decimals");
}

void readHeader(JobFileReader& reader) {
    if (!reader.takeLine("<BegGroup: Header>", kHeader)) reader.expected(kHeader, "the line \"<BegGroup: Header>\"");
    readModeLines(reader);
    readSize(reader);
    need(reader, "MaterialGroup:");
    need(reader, "MaterialName:");
    need(reader, "JobName:");
    const Entry* const number = need(reader, "JobNumber:");
    check(reader, number, number != nullptr && wholeNumber<std::uint32_t>(number->value), "the job number is an unsigned whole number");
    const Entry* const resolution = need(reader, "Resolution:");
    check(reader, resolution, resolution != nullptr && wholeNumber<std::uint32_t>(resolution->value).value_or(0) > 0, "the resolution is a positive whole number");
    const Entry* const cutLine = need(reader, "Cutline:");
    check(reader, cutLine, cutLine != nullptr && isOneOf(kCutLines, cutLine->value), "the cut line is none, rectangular, circular or optimized");
    if (auto rotary = reader.takeEntry("RotaryAttachment:", kHeader)) {
        reader.job().header.push_back(std::move(*rotary));
        const Entry& entry = reader.job().header.back();
        check(reader, &entry, fixedNumber(entry.value, 2).has_value(), "the rotary attachment has two decimals");
    }
    for (const char* const flag : {"AutoPosition", "QuickPrint"}) {
        const std::size_t position = reader.position();
        if (reader.takeLine("<" + std::string(flag) + ">", kHeader)) reader.job().header.push_back({flag, "", position});
    }
    if (!reader.takeLine("<EndGroup: Header>", kHeader)) reader.expected(kHeader, "the line \"<EndGroup: Header>\" behind the last known line");
}

void readMeasurePoint(JobFileReader& reader, const Entry& entry) {
    const std::size_t first = entry.value.find("; 1; ");
    const bool valid = first != std::string::npos && wholeNumber<std::int32_t>(std::string_view(entry.value).substr(0, first));
    if (!valid) reader.note(entry.position, kDiagnostic, "a measurement point is \"number; 1; identifier\"", entry.value);
}

void readDiagnostic(JobFileReader& reader) {
    if (!reader.takeLine("<BegGroup: Diagnostic>", kDiagnostic)) return;
    reader.job().hasDiagnostic = true;
    if (!reader.takeLine("<Version: v0.1>", kDiagnostic)) reader.expected(kDiagnostic, "the line \"<Version: v0.1>\"");
    if (!reader.takeLine("<Type: DIAG1>", kDiagnostic)) reader.expected(kDiagnostic, "the line \"<Type: DIAG1>\"");
    while (auto point = reader.takeEntry("MeasurePoint:", kDiagnostic)) {
        readMeasurePoint(reader, *point);
        reader.job().diagnostic.push_back(std::move(*point));
    }
    if (!reader.takeLine("<EndGroup: Diagnostic>", kDiagnostic)) reader.expected(kDiagnostic, "the line \"<EndGroup: Diagnostic>\"");
}

// "name;red;green;blue;target;level". Names and levels come from the lists and may hold a ";": then the numbers cannot be told.
bool isMciColour(std::string_view value) {
    std::vector<std::string_view> fields;
    for (std::size_t from = 0; from <= value.size();) {
        const std::size_t end = std::min(value.find(';', from), value.size());
        fields.push_back(value.substr(from, end - from));
        from = end + 1;
    }
    if (fields.size() != 6) return fields.size() > 6;
    return std::all_of(fields.begin() + 1, fields.begin() + 4, [](std::string_view field) { return wholeNumber<std::uint16_t>(field).has_value(); }) &&
           wholeNumber<std::uint8_t>(fields[4]).has_value();
}

void readMciColours(JobFileReader& reader) {
    for (std::size_t index = 0;; ++index) {
        auto colour = reader.takeEntry("Color" + std::to_string(index) + ":", kMci);
        if (!colour) return;
        if (!isMciColour(colour->value)) reader.note(colour->position, kMci, "a colour is name;red;green;blue;target;level", colour->value);
        reader.job().mci.push_back(std::move(*colour));
    }
}

void readMci(JobFileReader& reader) {
    if (!reader.takeLine("<BegGroup: Mci>", kMci)) return;
    reader.job().hasMci = true;
    if (auto id = reader.takeEntry("MCI_ID:", kMci)) {
        if (!wholeNumber<std::int32_t>(id->value)) reader.note(id->position, kMci, "the MCI_ID is a whole number", id->value);
        reader.job().mci.push_back(std::move(*id));
    }
    for (const char* const keyword : {"Version.ColorsGaspen:", "Version.ColorsCustomer:", "Version.ColorsSystem:"}) {
        auto version = reader.takeEntry(keyword, kMci);
        if (version) reader.job().mci.push_back(std::move(*version));
        else reader.expected(kMci, "the line \"<" + std::string(keyword) + " ...>\"");
    }
    if (!reader.takeLine("<Parameters:>", kMci)) reader.expected(kMci, "the line \"<Parameters:>\"");
    readMciColours(reader);
    if (!reader.takeLine("<EndGroup: Mci>", kMci)) reader.expected(kMci, "the line \"<EndGroup: Mci>\"");
    if (!reader.takeLine("<EndGroup: Header>", kMci)) reader.expected(kMci, "the header's closing line again behind the colour group");
}

}  // namespace

void readHeaderGroups(JobFileReader& reader) {
    readComment(reader, "Version:", reader.job().version);
    readComment(reader, "PrintingApplication:", reader.job().application);
    readHeader(reader);
    readDiagnostic(reader);
    readMci(reader);
}

}  // namespace morvil::tool
