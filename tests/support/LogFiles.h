// LogFiles.h - switches the diagnostic log on for a test and reads what was written. Make it after the TempHome of the test;
// the log's settings are what they were when the object goes.
#pragma once

#include <string>
#include <vector>

#include "driver/log/Log.h"

namespace morvil::test {

class LogFiles {
  public:
    // Logs into C:\log, with mvDebug.ini in C:\base. `maxBytes` is the size from which a file starts afresh.
    explicit LogFiles(DWORD maxBytes = 100'000'000);
    ~LogFiles();
    LogFiles(const LogFiles&) = delete;
    LogFiles& operator=(const LogFiles&) = delete;

    LoggingBlock settings;

    // Whole files, as bytes; empty when the file is missing.
    [[nodiscard]] std::string morvil() const;
    [[nodiscard]] std::string rend() const;
    // The messages alone, in order: without time, tabs and line end ("!!! " stays).
    [[nodiscard]] std::vector<std::string> morvilMessages() const;
    [[nodiscard]] std::vector<std::string> rendMessages() const;
    void clear();

  private:
    LogState m_before;
};

// Splits a log file into its messages.
std::vector<std::string> messagesOf(const std::string& logBytes);

}  // namespace morvil::test
