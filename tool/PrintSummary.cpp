#include "tool/PrintSummary.h"

#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <system_error>

#include "platform/common/Text.h"
#include "tool/JobFile.h"
#include "tool/JobSummary.h"
#include "tool/MappedFile.h"

namespace morvil::tool {

namespace {

std::string fixed(double value, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

std::string counted(std::uint64_t number, const char* one, const char* many) { return std::to_string(number) + " " + (number == 1 ? one : many); }

// What the finished file holds; nothing when it was taken away meanwhile, as the job application does.
std::optional<JobSummary> readSummary(const std::string& job) {
    try {
        const MappedFile mapped(job);
        return summarize(readJobFile(mapped.bytes()));
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

std::string vectorsText(const JobSummary& job) {
    std::string text = counted(job.polygons, "polygon", "polygons");
    if (job.beziers > 0) text += ", " + counted(job.beziers, "Bezier curve", "Bezier curves");
    if (job.arcs > 0) text += ", " + counted(job.arcs, "arc", "arcs");
    return text;
}

std::string paintedText(const engine::PageReport& page, const std::optional<JobSummary>& job) {
    std::string text = counted(page.fills, "fill", "fills") + ", " + counted(page.images, "image", "images") + ", " + counted(page.texts, "text", "texts");
    const double pixels = static_cast<double>(page.pixels.cx) * page.pixels.cy;
    if (job && pixels > 0.0) text += " (" + fixed(100.0 * static_cast<double>(job->paintedPixels) / pixels, 2) + " % of the page)";
    return text;
}

std::string pageLine(const PrintResult& result, std::size_t index) {
    const engine::PageReport& page = result.report.pages[index];
    std::string text = "page " + std::to_string(index + 1) + ": " + toUtf8(viewOf(result.record.processName)) + ", " + fixed(page.widthMillimetres, 1) + " x " +
                       fixed(page.heightMillimetres, 1) + " mm, " + std::to_string(page.pixels.cx) + " x " + std::to_string(page.pixels.cy) + " pixels at " +
                       std::to_string(page.dpi) + " dpi, " + counted(page.bitsPerPixel, "bit", "bits");
    if (page.banded) text += ", " + counted(static_cast<std::uint64_t>(page.bands), "band", "bands");
    const auto job = index < result.jobs.size() ? readSummary(result.jobs[index]) : std::nullopt;
    if (job) text += "; vectors: " + vectorsText(*job);
    return text + "; painted: " + paintedText(page, job);
}

nlohmann::json pageJson(const PrintResult& result, std::size_t index) {
    const engine::PageReport& page = result.report.pages[index];
    nlohmann::json json{{"mode", toUtf8(viewOf(result.record.processName))},
                        {"widthMm", page.widthMillimetres},
                        {"heightMm", page.heightMillimetres},
                        {"widthPixels", page.pixels.cx},
                        {"heightPixels", page.pixels.cy},
                        {"dpi", page.dpi},
                        {"bitsPerPixel", page.bitsPerPixel},
                        {"bands", page.bands},
                        {"strokesToDriver", page.strokesToDriver},
                        {"strokesByEngine", page.strokesByEngine},
                        {"fills", page.fills},
                        {"images", page.images},
                        {"texts", page.texts}};
    if (index >= result.jobs.size()) return json;
    json["job"] = result.jobs[index];
    if (const auto job = readSummary(result.jobs[index])) {
        json["polygons"] = job->polygons;
        json["beziers"] = job->beziers;
        json["arcs"] = job->arcs;
        json["paintedPixels"] = job->paintedPixels;
    }
    return json;
}

const char* statusName(engine::PrintStatus status) {
    switch (status) {
        case engine::PrintStatus::Done: return "done";
        case engine::PrintStatus::DriverRefused: return "driver refused";
        case engine::PrintStatus::SurfaceFailed: return "surface failed";
        case engine::PrintStatus::Aborted: return "aborted";
        case engine::PrintStatus::DriverFailed: return "driver failed";
    }
    return "unknown";
}

}  // namespace

void printPaths(const PrintResult& result, std::ostream& out) {
    for (const std::string& job : result.jobs) out << job << "\n";
}

void printSummary(const PrintResult& result, std::ostream& err) {
    for (std::size_t index = 0; index < result.report.pages.size(); ++index) err << pageLine(result, index) << "\n";
    for (const std::string& warning : result.warnings) err << "note: " << warning << "\n";
    err << counted(result.jobs.size(), "job", "jobs") << " in " << fixed(result.seconds, 2) << " s\n";
}

void printJson(const PrintResult& result, std::ostream& out) {
    nlohmann::json pages = nlohmann::json::array();
    for (std::size_t index = 0; index < result.report.pages.size(); ++index) pages.push_back(pageJson(result, index));
    const nlohmann::json json{{"status", statusName(result.report.status)}, {"reason", result.report.reason}, {"jobs", result.jobs},
                              {"pages", pages},                             {"notes", result.warnings},       {"seconds", result.seconds}};
    out << json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

std::string doesNotFitText(const std::string& file, const engine::MetafileHeader& drawing, const PageSetup& setup) {
    return file + ": the drawing of " + fixed(drawing.widthMillimetres(), 1) + " x " + fixed(drawing.heightMillimetres(), 1) + " mm does not fit on the page of " +
           fixed(setup.paperWidth, 1) + " x " + fixed(setup.paperHeight, 1) + " mm";
}

}  // namespace morvil::tool
