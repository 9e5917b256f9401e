#include "host/LoadedDriver.h"

#include "host/HostEngine.h"
#include "host/ImportPatch.h"
#include "host/Printer.h"

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

std::string LoadedDriver::play(const trace::Recording& recording) const {
    if (!m_reason.empty()) return m_reason;
    using EnableDriver = BOOL (*)(ULONG, ULONG, DRVENABLEDATA*);
    const auto enable = reinterpret_cast<EnableDriver>(reinterpret_cast<void (*)()>(GetProcAddress(m_library, "DrvEnableDriver")));
    HostEngine engine(recording.largestSurface);
    const trace::ReplayReport report = trace::replay(recording, enable, engine);
    if (!report.done) return report.reason;
    return engine.leftOver() == 0 ? std::string() : std::to_string(engine.leftOver()) + " surfaces and palettes were not given back";
}

}  // namespace morvil::host
