// StoreTest.h - what the tests of the configuration store share: a data root of their own, the debugger output, and the log's
// folders put back afterwards.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/CMvConfig.h"
#include "driver/log/Log.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"
#include "support/ChildProcess.h"
#include "support/DebugCapture.h"
#include "support/FailingCalls.h"
#include "support/TempHome.h"

namespace morvil::test {

class StoreTest : public testing::Test {
  protected:
    StoreTest() : m_before(logState()) { slept() = {}; }
    ~StoreTest() override {
        logState() = m_before;
        platformCalls() = systemCalls();
    }

    static constexpr const WCHAR* kDebugIni = TEXT("C:\\base\\mvDebug.ini");

    // Sets a debug switch in a base folder of the test's own.
    static void setDebugValue(const WCHAR* key, const WCHAR* value) {
        makeFolder(TEXT("C:\\base"));
        logState().baseFolder = TEXT("C:\\base");
        WritePrivateProfileStringW(TEXT("Debug"), key, value, kDebugIni);
    }

    // Pauses are noted instead of taken.
    static std::vector<DWORD>& slept() {
        static std::vector<DWORD> pauses;
        return pauses;
    }
    static void noteSleeps() {
        platformCalls().sleep = [](std::uint32_t milliseconds) { slept().push_back(milliseconds); };
    }

    // The texts that were sent, with what differs from run to run replaced: handles by H, process and thread numbers by N.
    [[nodiscard]] std::vector<std::string> texts() const;

  private:
    LogState m_before;

  protected:
    TempHome m_home;
    DebugCapture m_debug;
};

inline void replaceBetween(std::string& text, std::string_view front, std::string_view ends, char with) {
    const std::size_t at = text.find(front);
    if (at == std::string::npos) return;
    const std::size_t start = at + front.size();
    const std::size_t end = std::min(text.find_first_of(ends, start), text.size());
    if (end > start) text.replace(start, end - start, 1, with);
}

inline std::vector<std::string> StoreTest::texts() const {
    std::vector<std::string> texts = m_debug.texts();
    for (std::string& text : texts) {
        replaceBetween(text, " mutex (", ")", 'H');
        replaceBetween(text, "processID=", ",", 'N');
        replaceBetween(text, "threadID=", ",\n", 'N');
    }
    return texts;
}

}  // namespace morvil::test
