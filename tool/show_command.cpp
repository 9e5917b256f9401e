// show_command.cpp - what a job file holds, for people or as JSON.
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <system_error>

#include "tool/Commands.h"
#include "tool/JobFile.h"
#include "tool/JobSummary.h"
#include "tool/MappedFile.h"

namespace morvil::tool {

namespace {

double millimetres(double pixels, unsigned dpi) { return dpi == 0 ? 0.0 : pixels * 25.4 / dpi; }

nlohmann::json entriesJson(const std::vector<Entry>& entries) {
    nlohmann::json list = nlohmann::json::array();
    for (const Entry& entry : entries) list.push_back({{"keyword", entry.keyword}, {"value", utf8FromLatin1(entry.value)}, {"position", entry.position}});
    return list;
}

nlohmann::json bitmapJson(const BitmapFacts& bitmap, const JobSummary& summary) {
    return {{"position", bitmap.position},     {"pixelPosition", bitmap.pixelPosition}, {"width", bitmap.width},
            {"height", bitmap.height},         {"bitsPerPixel", bitmap.bitsPerPixel},   {"stride", bitmap.stride},
            {"imageBytes", bitmap.imageBytes}, {"paletteEntries", bitmap.palette.size()}, {"paintedPixels", summary.paintedPixels}};
}

nlohmann::json toJson(const std::string& file, const JobFile& job, const JobSummary& summary) {
    nlohmann::json result{{"file", file},
                          {"version", utf8FromLatin1(job.version)},
                          {"printingApplication", utf8FromLatin1(job.application)},
                          {"header", entriesJson(job.header)},
                          {"vectors", {{"polygons", summary.polygons}, {"beziers", summary.beziers}, {"arcs", summary.arcs}, {"byColour", summary.byColour}}},
                          {"violations", job.violationCount}};
    if (job.hasDiagnostic) result["diagnostic"] = entriesJson(job.diagnostic);
    if (job.hasMci) result["mci"] = entriesJson(job.mci);
    if (job.bitmap) result["bitmap"] = bitmapJson(*job.bitmap, summary);
    if (summary.extent) {
        const Extent& e = *summary.extent;
        const unsigned dpi = job.resolution();
        result["extent"] = {{"leftMm", millimetres(e.left, dpi)}, {"topMm", millimetres(e.top, dpi)}, {"rightMm", millimetres(e.right, dpi)}, {"bottomMm", millimetres(e.bottom, dpi)}};
    }
    return result;
}

void printEntries(const char* title, const std::vector<Entry>& entries, std::ostream& out) {
    out << title << "\n";
    for (const Entry& entry : entries) out << "  " << std::left << std::setw(24) << entry.keyword << utf8FromLatin1(entry.value) << "\n";
}

void printBitmap(const JobFile& job, const JobSummary& summary, std::ostream& out) {
    if (!job.bitmap) {
        out << "Bitmap: none\n";
        return;
    }
    const BitmapFacts& b = *job.bitmap;
    const double share = 100.0 * static_cast<double>(summary.paintedPixels) / (static_cast<double>(b.width) * b.height);
    out << "Bitmap: " << b.width << " x " << b.height << " pixels, " << b.bitsPerPixel << " bits per pixel, rows of " << b.stride << " bytes at byte " << b.pixelPosition << "\n";
    out << "  painted: " << summary.paintedPixels << " pixels (" << std::fixed << std::setprecision(2) << share << " %)\n";
}

void printVectors(const JobFile& job, const JobSummary& summary, std::ostream& out) {
    out << "Vectors: " << summary.polygons << " polygons, " << summary.beziers << " Bezier curves, " << summary.arcs << " arcs\n";
    for (const auto& [colour, number] : summary.byColour) out << "  " << colour << "  " << number << "\n";
    if (!summary.extent || job.resolution() == 0) return;
    const Extent& e = *summary.extent;
    const unsigned dpi = job.resolution();
    out << std::fixed << std::setprecision(2) << "  extent: " << millimetres(e.left, dpi) << ", " << millimetres(e.top, dpi) << " to " << millimetres(e.right, dpi) << ", "
        << millimetres(e.bottom, dpi) << " mm\n";
}

void print(const std::string& file, const JobFile& job, const JobSummary& summary, std::ostream& out) {
    out << file << "\n" << "Version " << utf8FromLatin1(job.version) << ", printed from " << utf8FromLatin1(job.application) << "\n";
    printEntries("Header", job.header, out);
    if (job.hasDiagnostic) printEntries("Diagnostic", job.diagnostic, out);
    if (job.hasMci) printEntries("Mci", job.mci, out);
    printBitmap(job, summary, out);
    printVectors(job, summary, out);
}

}  // namespace

int runShow(const ShowOptions& options, const Streams& streams) {
    try {
        const MappedFile mapped(options.file);
        const JobFile job = readJobFile(mapped.bytes());
        const JobSummary summary = summarize(job);
        if (options.json) streams.out << toJson(options.file, job, summary).dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
        else print(options.file, job, summary, streams.out);
        if (job.violationCount == 0) return kDone;
        const Violation& first = job.violations.front();
        streams.err << "morvil show: " << options.file << ": byte " << first.position << ", " << first.group << ": expected " << first.rule << " (see morvil check)\n";
        return kWrong;
    } catch (const std::system_error& error) {
        streams.err << "morvil show: " << error.what() << "\n";
        return kUsage;
    }
}

}  // namespace morvil::tool
