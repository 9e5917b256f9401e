// LoadedDriver.h - the driver file in this process, with the host's services in place of the engine's, and playing recordings
// into it.
#pragma once

#include <filesystem>
#include <string>

#include "trace/Recording.h"

namespace morvil::host {

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

  private:
    HMODULE m_library;
    std::string m_reason;
};

}  // namespace morvil::host
