#include "host/LoadedDriver.h"

#include <utility>

#include "host/ImportPatch.h"

namespace morvil::host {

LoadedDriver::LoadedDriver(const std::filesystem::path& file) : m_library(LoadLibraryW(file.c_str())) {
    if (m_library == nullptr) {
        m_reason = "the driver cannot be loaded, error " + std::to_string(GetLastError());
        return;
    }
    const std::string missing = replaceImports(m_library, services());
    if (!missing.empty()) m_reason = "the driver asks for services that the host does not have: " + missing;
}

LoadedDriver::~LoadedDriver() {
    if (m_library != nullptr) FreeLibrary(m_library);
}

Attempt LoadedDriver::attempt(const trace::Recording& recording, const Mishap& mishap) const {
    using EnableDriver = BOOL (*)(ULONG, ULONG, DRVENABLEDATA*);
    const auto enable = reinterpret_cast<EnableDriver>(reinterpret_cast<void (*)()>(GetProcAddress(m_library, "DrvEnableDriver")));
    HostEngine engine(recording.largestSurface, mishap);
    trace::ReplayReport report = trace::replay(recording, enable, engine);
    return {.report = std::move(report), .leftOver = engine.leftOver(), .services = engine.services(), .abortQuestions = engine.abortQuestions()};
}

std::string LoadedDriver::play(const trace::Recording& recording) const {
    if (!m_reason.empty()) return m_reason;
    const Attempt attempt = this->attempt(recording, {});
    if (!attempt.report.done) return attempt.report.reason;
    return attempt.leftOver == 0 ? std::string() : std::to_string(attempt.leftOver) + " surfaces, palettes and locks were not given back";
}

}  // namespace morvil::host
