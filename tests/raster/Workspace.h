// Workspace.h - what a test of the raster folder works in: an empty data root with the shared folders in it, a switched-on
// log, a listener at the debugger output. Gone at the end of the test, together with the files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/DebugCapture.h"
#include "support/FailingCalls.h"
#include "support/LogFiles.h"
#include "support/TempHome.h"

namespace morvil::test {

class Workspace {
  public:
    Workspace();

    // Texts of log_morvil.txt without their times, in order.
    [[nodiscard]] std::vector<std::string> logLines() const;
    [[nodiscard]] std::size_t countLog(const std::string& text) const;
    // Texts sent to the debugger output, each with its line end.
    [[nodiscard]] const std::vector<std::string>& debugLines() const { return m_debug.texts(); }
    [[nodiscard]] std::size_t countDebug(const std::string& text) const { return m_debug.count(text); }
    // Debugger texts that begin with `prefix`.
    [[nodiscard]] std::size_t countDebugPrefix(const std::string& prefix) const;
    void forgetTexts();
    void switchLogOff() { m_log.settings.enabled = 0; }

    static void writeFile(WStringView path, const std::string& bytes) { writeBytes(path, bytes); }
    // Empty when the file is missing.
    static std::vector<std::uint8_t> readFile(WStringView path);

    // From now on every write of a file fails as on a full disk; every block of memory is refused.
    void failWrites() { m_faults.emplace(1, Fault::Persistent, "write"); }
    void failAllocations() { m_faults.emplace(1, Fault::Persistent, "allocate"); }
    void endFaults() { m_faults.reset(); }

  private:
    TempHome m_home;
    DebugCapture m_debug;
    LogFiles m_log;
    std::optional<FailingCalls> m_faults;
};

// Bytes of a text file written as UTF-16 with its byte-order mark.
std::string asUtf16File(const std::string& text);

}  // namespace morvil::test
