// main.cpp - morvil.exe DRIVER OUT RECORDING...: for each recording, puts the settings that it holds into an empty data root,
// loads the driver, makes the calls, unloads it, and moves the jobs and logs to OUT\<recording's name>. Exit status 0 when
// every call was answered as recorded and nothing was left behind.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "host/HostEngine.h"
#include "host/ImportPatch.h"
#include "host/Printer.h"
#include "trace/RecordingFile.h"

using namespace morvil;

namespace {

namespace fs = std::filesystem;

fs::path driveC() { return "C:\\"; }
fs::path dataRoot() { return "C:\\ProgramData\\Morvil"; }

class LoadedDriver {
  public:
    explicit LoadedDriver(const fs::path& file) : m_library(LoadLibraryW(file.c_str())) {}
    ~LoadedDriver() {
        if (m_library != nullptr) FreeLibrary(m_library);
    }
    LoadedDriver(const LoadedDriver&) = delete;
    LoadedDriver& operator=(const LoadedDriver&) = delete;
    [[nodiscard]] HMODULE get() const { return m_library; }

    using EnableDriver = BOOL (*)(ULONG, ULONG, DRVENABLEDATA*);
    [[nodiscard]] EnableDriver enable() const { return reinterpret_cast<EnableDriver>(reinterpret_cast<void (*)()>(GetProcAddress(m_library, "DrvEnableDriver"))); }

  private:
    HMODULE m_library;
};

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

std::string play(const fs::path& driverFile, const trace::Recording& recording) {
    const LoadedDriver driver(driverFile);
    if (driver.get() == nullptr) return "the driver cannot be loaded, error " + std::to_string(GetLastError());
    const std::string missing = host::replaceImports(driver.get(), host::services());
    if (!missing.empty()) return "the driver asks for services that the host does not have: " + missing;
    host::HostEngine engine(recording.largestSurface);
    const trace::ReplayReport report = trace::replay(recording, driver.enable(), engine);
    if (!report.done) return report.reason;
    return engine.leftOver() == 0 ? std::string() : std::to_string(engine.leftOver()) + " surfaces and palettes were not given back";
}

bool run(const fs::path& driverFile, const fs::path& out, const fs::path& file) {
    std::string reason;
    const auto recording = trace::fromBytes(read(file), reason);
    if (recording) {
        restore(*recording);
        reason = host::installPrinter(std::wstring(recording->printer.begin(), recording->printer.end()), driverFile);
        if (reason.empty()) reason = play(driverFile, *recording);
        collect(out / file.stem());
    }
    std::printf("%s: %s\n", file.stem().string().c_str(), reason.empty() ? "done" : reason.c_str());
    return reason.empty();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 4) {
        std::fputs("usage: morvil.exe DRIVER OUT RECORDING...\n", stderr);
        return 2;
    }
    try {
        bool done = true;
        for (int i = 3; i < count; ++i) done = run(arguments[1], arguments[2], arguments[i]) && done;
        return done ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "morvil.exe: %s\n", error.what());
        return 3;
    }
}
