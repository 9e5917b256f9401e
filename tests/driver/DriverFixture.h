// DriverFixture.h - a driver just loaded, in a home of its own, with a fake engine in front of it and its log switched on.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "config/CPrinterConfig.h"
#include "driver/FakeEngine.h"
#include "driver/FakeMemoryDc.h"
#include "driver/Hooks.h"
#include "driver/Pdev.h"
#include "driver/State.h"
#include "driver/log/Log.h"
#include "support/DebugCapture.h"
#include "support/TempHome.h"

namespace morvil::test {

class DriverTest : public testing::Test {
  protected:
    DriverTest();
    ~DriverTest() override;

    // Messages of log_morvil.txt and log_rend.txt so far, "!!! " included.
    [[nodiscard]] static std::vector<std::string> morvilLog();
    [[nodiscard]] static std::vector<std::string> rendLog();
    static void clearLogs();
    // A text with the low 32 bits of a pointer in place of "{}".
    static std::string withPointer(const std::string& text, const void* pointer);

    // The devmode that the next instance is made from; starts as the default configuration, 10 x 8 mm at 254 dpi: 100 x 80 pixels.
    PlotDM devmode{};
    ConfigurationRecord& configuration() { return devmode.configuration; }

    // Steps of a job; each fails the test when the driver refuses, unless told otherwise.
    PDEV* enable();
    SURFOBJ* enableSurface();
    // Instance, surface and document.
    SURFOBJ* startDocument(const WCHAR* name = TEXT("Plan"));
    SURFOBJ* startPage();

    // Every line of the job file written last, in the spool folder; empty without one.
    [[nodiscard]] static std::string jobFile(const std::string& extension);
    [[nodiscard]] static std::vector<std::string> jobFileNames();
    [[nodiscard]] static std::vector<std::string> drawCommands(const std::string& extension);

    TempHome home;
    FakeEngine engine;
    FakeMemoryDc contexts;
    DebugCapture debug;
    HANDLE printer = nullptr;
    PDEV* pdev = nullptr;
    SURFOBJ* pso = nullptr;

  private:
    LogState m_logBefore;
    LoggingBlock m_logging{.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = 100'000'000};
};

}  // namespace morvil::test
