// Workspace.h - what a test of the raster folder works in: an empty data root, a switched-on log, a listener at the debugger
// output. Gone at the end of the test, together with the files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "driver/log/Log.h"
#include "platform/common/FileStream.h"
#include "platform/common/Text.h"

namespace morvil::test {

class Workspace {
  public:
    Workspace();
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // Texts of log_morvil.txt without their times, in order.
    [[nodiscard]] std::vector<std::string> logLines() const;
    [[nodiscard]] std::size_t countLog(const std::string& text) const;
    // Texts sent to the debugger output, each with its line end.
    [[nodiscard]] const std::vector<std::string>& debugLines() const { return m_debug; }
    [[nodiscard]] std::size_t countDebug(const std::string& text) const;
    // Debugger texts that begin with `prefix`.
    [[nodiscard]] std::size_t countDebugPrefix(const std::string& prefix) const;
    void forgetTexts();

    static void writeFile(const WString& path, const std::string& bytes);
    static std::vector<std::uint8_t> readFile(const WString& path);

    // From now on every write of a file fails as on a full disk; every block of memory is refused.
    static void failWrites();
    static void failAllocations();
    static void endFaults();

  private:
    std::string m_root;
    LoggingBlock m_logging{};
    std::vector<std::string> m_debug;
};

// Bytes of a text file written as UTF-16 with its byte-order mark.
std::string asUtf16File(const std::string& text);

}  // namespace morvil::test
