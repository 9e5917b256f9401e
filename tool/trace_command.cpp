// trace_command.cpp - prints metafiles and shows, or keeps, the calls between engine and driver; and plays kept calls again.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <system_error>
#include <utility>

#include "engine/EngineState.h"
#include "platform/host/HostState.h"
#include "tool/CallsView.h"
#include "tool/Commands.h"
#include "tool/Host.h"
#include "tool/Interrupts.h"
#include "tool/OutputFile.h"
#include "tool/ReplayObjects.h"
#include "trace/Recorder.h"
#include "trace/RecordingFile.h"

namespace morvil::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestKeptFile = 64U << 20U;
constexpr const char* kDataRoot = "ProgramData/Morvil";

trace::Bytes read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

int write(const fs::path& file, const trace::Bytes& bytes) { return writeOutputFile(file.string(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()}); }

bool isOfTheDocument(const fs::path& file) { return file.extension() == ".tsf" || file.extension() == ".tsa" || file.filename().string().starts_with("log_"); }

// What the driver finds in its data root before the document: settings and colour lists, not earlier jobs and logs.
std::vector<trace::KeptFile> dataRootFiles() {
    const fs::path home = hostState().home;
    std::vector<trace::KeptFile> files;
    std::error_code error;
    for (fs::recursive_directory_iterator at(home / kDataRoot, error), end; !error && at != end; at.increment(error)) {
        if (!at->is_regular_file() || isOfTheDocument(at->path()) || at->file_size() > kLargestKeptFile) continue;
        std::string path = fs::relative(at->path(), home).string();
        std::replace(path.begin(), path.end(), '/', '\\');
        files.push_back({fromUtf8(path), read(at->path())});
    }
    std::sort(files.begin(), files.end(), [](const trace::KeptFile& a, const trace::KeptFile& b) { return a.path < b.path; });
    return files;
}

// The path of a kept file below the home folder; empty when it leads out of it or names no file.
fs::path pathBelowHome(const trace::KeptFile& kept) {
    constexpr std::size_t kLongestName = 250;
    std::string path = toUtf8(kept.path);
    std::replace(path.begin(), path.end(), '\\', '/');
    const fs::path relative = fs::path(path).lexically_normal();
    const bool leadsOut = relative.is_absolute() || relative.empty() || *relative.begin() == "..";
    const bool isFile = relative.has_filename() && relative != "." && path.find('\0') == std::string::npos;
    const bool isShort = std::ranges::all_of(relative, [](const fs::path& name) { return name.string().size() <= kLongestName; });
    return !leadsOut && isFile && isShort ? relative : fs::path();
}

int restore(const trace::KeptFile& kept) {
    const fs::path file = hostState().home / pathBelowHome(kept);
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    return error ? error.value() : write(file, kept.content);
}

int fail(const Streams& streams, const char* command, const std::string& text, int status) {
    streams.err << "morvil " << command << ": " << text << "\n";
    return status;
}

}  // namespace

int runTrace(const TraceOptions& options, engine::EnableDriverFunction driver, const Streams& streams) {
    if (options.record.empty()) {
        CallsView view([&](const std::string& line) { streams.out << line << "\n"; });
        const trace::Recorder recorder(driver, view.listener());
        std::ostream nowhere(nullptr);
        return runPrint(options.print, trace::Recorder::driver(), {nowhere, streams.err, streams.errIsTerminal});
    }
    trace::Recording recording;
    trace::Listener listener;
    listener.begins = [&] {
        recording.printer = kPrinterName;
        recording.largestSurface = engine::engineState().maximumSurfaceBytes;
        recording.files = dataRootFiles();
    };
    listener.heard = [&](const trace::Event& event) { recording.events.push_back(event); };
    const trace::Recorder recorder(driver, listener);
    const int status = runPrint(options.print, trace::Recorder::driver(), streams);
    if (status == kUsage) return status;
    const int error = write(options.record, trace::toBytes(std::move(recording)));
    return error == 0 ? status : fail(streams, "trace", options.record + ": " + std::generic_category().message(error), kSystemFailed);
}

int runReplay(const ReplayOptions& options, engine::EnableDriverFunction driver, const Streams& streams) {
    std::error_code error;
    if (!fs::is_regular_file(options.file, error)) return fail(streams, "replay", options.file + ": no such file", kUsage);
    std::string reason;
    const auto recording = trace::fromBytes(read(options.file), reason);
    if (!recording) return fail(streams, "replay", options.file + ": " + reason, kUsage);
    const auto bad = std::ranges::find_if(recording->files, [](const trace::KeptFile& kept) { return pathBelowHome(kept).empty(); });
    if (bad != recording->files.end()) {
        return fail(streams, "replay", options.file + ": it keeps \"" + toUtf8(bad->path) + "\", which is no file below the data root", kUsage);
    }
    useHome(options.home);
    useApplication(options.application);
    for (const trace::KeptFile& kept : recording->files) {
        const int number = restore(kept);
        if (number != 0) return fail(streams, "replay", toUtf8(kept.path) + ": " + std::generic_category().message(number), kSystemFailed);
    }
    if (!options.spool.empty()) useSpoolFolder(options.spool);
    engine::engineState().maximumSurfaceBytes = recording->largestSurface;
    const FinishedJobs finished;
    const InterruptGuard toTheEnd;  // the recorded calls know no end before theirs
    ReplayObjects objects;
    const trace::ReplayReport report = trace::replay(*recording, driver, objects);
    for (const std::string& job : finished.files()) streams.out << job << "\n";
    if (!report.done) return fail(streams, "replay", report.reason, kWrong);
    return kDone;
}

}  // namespace morvil::tool
