// main.cpp - morvil.exe DRIVER OUT RECORDING...: for each recording, puts the settings that it holds into an empty data root,
// loads the driver, makes the calls, unloads it, and moves the jobs and logs to OUT\<recording's name>. Exit status 0 when
// every call was answered as recorded and nothing was left behind.
// morvil.exe DRIVER --stress ITEM STORES JOBS RECORDING: stores an item of the configuration and makes a recording's calls over
// and over, in the data root as it is, so that several such processes can be set against each other.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>

#include "host/LoadedDriver.h"
#include "host/Printer.h"
#include "host/faults.h"
#include "host/stress.h"
#include "trace/RecordingFile.h"

using namespace morvil;

namespace {

namespace fs = std::filesystem;

fs::path driveC() { return "C:\\"; }
fs::path dataRoot() { return "C:\\ProgramData\\Morvil"; }

std::vector<std::uint8_t> read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void restore(const trace::Recording& recording) {
    fs::remove_all(dataRoot());
    for (const trace::KeptFile& kept : recording.files) {
        const fs::path file = driveC() / fs::path(kept.path);
        fs::create_directories(file.parent_path());
        std::ofstream stream(file, std::ios::binary);
        stream.write(reinterpret_cast<const char*>(kept.content.data()), static_cast<std::streamsize>(kept.content.size()));
    }
}

// Jobs, what is left of unfinished ones, and logs.
void collect(const fs::path& out) {
    fs::create_directories(out);
    for (const auto& entry : fs::recursive_directory_iterator(dataRoot())) {
        const std::string name = entry.path().filename().string();
        const bool wanted = entry.path().extension() == ".tsf" || entry.path().extension() == ".tsa" || name.starts_with("log_");
        if (entry.is_regular_file() && wanted) fs::copy_file(entry.path(), out / entry.path().filename(), fs::copy_options::overwrite_existing);
    }
}

// `installed`: the printers for which this run has installed the driver file.
std::string install(const fs::path& driverFile, const std::wstring& printer, std::set<std::wstring>& installed) {
    if (!installed.insert(printer).second) return {};
    const std::string failure = host::installDriver(printer, driverFile);
    return failure.empty() ? host::installPrinter(printer, driverFile) : failure;
}

bool run(const fs::path& driverFile, const fs::path& out, const fs::path& file, std::set<std::wstring>& installed) {
    std::string reason;
    const auto recording = trace::fromBytes(read(file), reason);
    if (recording) {
        restore(*recording);
        reason = install(driverFile, {recording->printer.begin(), recording->printer.end()}, installed);
        if (reason.empty()) reason = host::LoadedDriver(driverFile).play(*recording);
        collect(out / file.stem());
    }
    std::printf("%s: %s\n", file.stem().string().c_str(), reason.empty() ? "done" : reason.c_str());
    return reason.empty();
}

// In the data root as it is.
template <typename Trial>
int runTrial(const char* file, Trial trial) {
    std::string reason;
    const auto recording = trace::fromBytes(read(file), reason);
    if (recording) reason = trial(*recording);
    if (!reason.empty()) std::fprintf(stderr, "morvil.exe: %s\n", reason.c_str());
    return reason.empty() ? 0 : 1;
}

int runStress(char** arguments) {
    const std::string item = arguments[3];
    const host::StressLoad load{std::wstring(item.begin(), item.end()), std::stoi(arguments[4]), std::stoi(arguments[5])};
    return runTrial(arguments[6], [&](const trace::Recording& recording) { return host::stress(arguments[1], recording, load); });
}

int runFaults(char** arguments) {
    return runTrial(arguments[3], [&](const trace::Recording& recording) { return host::faults(arguments[1], recording); });
}

int runRecordings(int count, char** arguments) {
    bool done = true;
    std::set<std::wstring> installed;
    for (int i = 3; i < count; ++i) done = run(arguments[1], arguments[2], arguments[i], installed) && done;
    return done ? 0 : 1;
}

int usage() {
    std::fputs("usage: morvil.exe DRIVER OUT RECORDING...\n       morvil.exe DRIVER --stress ITEM STORES JOBS RECORDING\n       morvil.exe DRIVER --faults RECORDING\n", stderr);
    return 2;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view second = count > 2 ? arguments[2] : "";
    try {
        if (second == "--stress") return count == 7 ? runStress(arguments) : usage();
        if (second == "--faults") return count == 4 ? runFaults(arguments) : usage();
        return count < 4 ? usage() : runRecordings(count, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "morvil.exe: %s\n", error.what());
        return 3;
    }
}
