// LoadedDriver.h - the driver file in this process, with the host's services in place of the engine's, and playing recordings
// into it.
#pragma once

#include <filesystem>
#include <string>

#include "host/HostEngine.h"

namespace morvil::host {

// How a recording went that may have been disturbed.
struct Attempt {
    trace::ReplayReport report;
    std::size_t leftOver = 0;  // surfaces, palettes and locks that the driver has not given back
    std::size_t services = 0;  // that could have been refused
    std::size_t abortQuestions = 0;
};

class LoadedDriver {
  public:
    explicit LoadedDriver(const std::filesystem::path& file);
    ~LoadedDriver();
    LoadedDriver(const LoadedDriver&) = delete;
    LoadedDriver& operator=(const LoadedDriver&) = delete;

    // Empty when it can be played to, else why not.
    [[nodiscard]] const std::string& reason() const { return m_reason; }
    // Empty when every call was answered as recorded and nothing was left behind.
    [[nodiscard]] std::string play(const trace::Recording& recording) const;
    // The same with something going wrong. REQUIRES: no reason.
    [[nodiscard]] Attempt attempt(const trace::Recording& recording, const Mishap& mishap) const;

  private:
    HMODULE m_library;
    std::string m_reason;
};

}  // namespace morvil::host
