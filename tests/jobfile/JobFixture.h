// JobFixture.h - a job writer on a data root of its own, with a small job (9 x 2 pixels, one bit) and the log switched on.
#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "config/CMvConfig.h"
#include "config/CPrinterConfig.h"
#include "jobfile/CSpoolFile.h"
#include "support/DebugCapture.h"
#include "support/LogFiles.h"
#include "support/TempHome.h"

namespace morvil::test {

class JobFixture : public testing::Test {
  protected:
    JobFixture();

    // The path of a file in the spool folder.
    [[nodiscard]] WString inSpool(WStringView file) const;
    [[nodiscard]] bool spooled(WStringView file) const { return exists(inSpool(file)); }
    // The names of all files in the spool folder, sorted.
    [[nodiscard]] std::vector<std::string> spoolFiles() const;
    // The messages that were logged since the last clearing.
    [[nodiscard]] std::vector<std::string> messages() const;
    [[nodiscard]] bool logged(const std::string& message) const;
    void clearLog();

    // A writer that has config and the name "Plan" and has begun its page.
    std::unique_ptr<CSpoolFile> begin(int bitmapMode = 1);
    // The unfinished file of a writer.
    [[nodiscard]] static std::string bytesOf(const CSpoolFile& writer) { return readBytes(writer.jobFilePath()); }
    // The header lines of a job of `config` under that name, up to and with "<EndGroup: Header>".
    std::string headerOf(const ConfigurationRecord& record);

    const TempHome m_home;
    LogFiles m_log;
    ConfigurationRecord config;
    WString m_spool;  // no trailing backslash
};

// Runs what it is given on a thread of its own, one after the other: another process, as far as named mutexes can tell.
class OtherProcess {
  public:
    OtherProcess() : m_thread([this] { work(); }) {}
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    void run(const std::function<void()>& task);

  private:
    void work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::function<void()> m_task;
    bool m_ends = false;
    std::thread m_thread;
};

inline constexpr std::string_view kEmptyVectors = "<BegGroup: DrawCommands>\r\n<EndGroup: DrawCommands>\r\n";

// The vector section of a job file: from "<BegGroup: DrawCommands>" to the end.
std::string vectorsOf(const std::string& job);
// Its command lines alone, joined, without CR LF after the last.
std::string commandsOf(const std::string& job);

// A little-endian number as bytes.
std::string littleEndian(std::uint32_t value, std::size_t bytes);
// The image of a one-bit page of 9 x 2 pixels with these pixel rows (8 bytes); no rows: header and palette alone.
std::string smallImage(const std::string& rows);

}  // namespace morvil::test
