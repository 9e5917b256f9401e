// PrinterConfigFixture.h - a configuration in a data root of its own, with the log switched on and the debugger output kept.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "config/CMvConfig.h"
#include "config/CPrinterConfig.h"
#include "config/CXml.h"
#include "driver/log/Log.h"
#include "platform/platform.h"
#include "support/DebugCapture.h"
#include "support/LogFiles.h"
#include "support/TempHome.h"

namespace morvil::test {

struct Item {
    const char* path;
    const char* value;
    const char* attribute = "value";
};

// What every configuration needs.
inline constexpr Item kResolutionItem{"PrinterDriver.Configuration.Print.Process.ProcessOption.Resolution", "2", "index"};

class PrinterConfigTest : public testing::Test {
  protected:
    PrinterConfigTest() : m_logBefore(logState()) { logState().settings = &settings; }
    ~PrinterConfigTest() override { logState() = m_logBefore; }

    // A file that holds these items and nothing else.
    void writeItems(std::initializer_list<Item> items) { writeItems(std::vector<Item>(items)); }
    void writeItems(const std::vector<Item>& items) {
        writeFile("<?xml version=\"1.0\"?>\r\n<PrinterDriver/>\r\n");
        CXml store(folders.configurationFile());
        store.beginChanges();
        for (const Item& item : items) {
            EXPECT_TRUE(store.putItem(fromUtf8(item.path).c_str(), fromUtf8(item.value).c_str(), fromUtf8(item.attribute).c_str()))
                << item.path;
        }
        EXPECT_TRUE(store.endChanges());
        debug.clear();
    }
    void writeFile(const std::string& bytes) { writeBytes(viewOf(folders.configurationFile()), bytes); }
    std::string fileBytes() { return readBytes(viewOf(folders.configurationFile())); }
    bool fileThere() { return exists(viewOf(folders.configurationFile())); }
    // The value as it stands in the file; "(none)" when it is missing.
    std::string stored(const std::string& path, const std::string& attribute = "value") {
        CXml store(folders.configurationFile());
        std::array<WCHAR, CXml::kValueCharacters> value{};
        const bool found = store.getItem(fromUtf8(path).c_str(), value.data(), fromUtf8(attribute).c_str());
        return found ? toUtf8(viewOf(value)) : "(none)";
    }
    void userSetup(const WCHAR* key, const WCHAR* value) {
        ASSERT_TRUE(WritePrivateProfileStringW(TEXT("UserSetup"), key, value, folders.jobApplicationIni()));
    }
    void driverSetup(const WCHAR* key, const WCHAR* value) {
        ASSERT_TRUE(WritePrivateProfileStringW(TEXT("Driver"), key, value, folders.mainIni()));
    }
    // A load that is expected to succeed.
    ConfigurationRecord load(const WCHAR* name = TEXT("")) {
        ConfigurationRecord record{};
        EXPECT_TRUE(CPrinterConfig().getConfig(name, record));
        return record;
    }
    std::vector<std::string> log() {
        const WString path = logState().folder + TEXT("\\log_morvil.txt");
        return exists(path) ? messagesOf(readBytes(path)) : std::vector<std::string>();
    }
    void clearLog() { DeleteFileW((logState().folder + TEXT("\\log_morvil.txt")).c_str()); }

    TempHome home;
    LoggingBlock settings{.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = 100'000'000};

  private:
    LogState m_logBefore;

  protected:
    DebugCapture debug;
    CMvConfig folders;
};

inline std::string text(std::span<const WCHAR> buffer) { return toUtf8(viewOf(buffer)); }
inline std::string text(const WCHAR* value) { return toUtf8(viewOf(value)); }

// All of two records but the time at which they were made.
inline bool sameSettings(ConfigurationRecord a, ConfigurationRecord b) {
    a.timeStamp = b.timeStamp = 0;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A record that no load has touched.
inline ConfigurationRecord sentinel() {
    ConfigurationRecord record;
    std::memset(&record, 0x5A, sizeof record);
    return record;
}

// Suites that have cases in several files.
class PrinterConfigKeys : public PrinterConfigTest {};
class PrinterConfigLoad : public PrinterConfigTest {};

}  // namespace morvil::test
