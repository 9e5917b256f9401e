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

#include "host/LoadedDriver.h"
#include "host/Printer.h"
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

int runStress(const std::vector<std::string>& arguments) {
    std::string reason;
    const auto recording = trace::fromBytes(read(arguments[6]), reason);
    if (recording) {
        const host::StressLoad load{std::wstring(arguments[3].begin(), arguments[3].end()), std::stoi(arguments[4]), std::stoi(arguments[5])};
        reason = host::stress(arguments[1], *recording, load);
    }
    if (!reason.empty()) std::fprintf(stderr, "morvil.exe: %s\n", reason.c_str());
    return reason.empty() ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
    const bool stressing = count == 7 && std::string_view(arguments[2]) == "--stress";
    if (count < 4 || (!stressing && std::string_view(arguments[2]) == "--stress")) {
        std::fputs("usage: morvil.exe DRIVER OUT RECORDING...\n       morvil.exe DRIVER --stress ITEM STORES JOBS RECORDING\n", stderr);
        return 2;
    }
    try {
        if (stressing) return runStress({arguments, arguments + count});
        bool done = true;
        std::set<std::wstring> installed;
        for (int i = 3; i < count; ++i) done = run(arguments[1], arguments[2], arguments[i], installed) && done;
        return done ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "morvil.exe: %s\n", error.what());
        return 3;
    }
}
