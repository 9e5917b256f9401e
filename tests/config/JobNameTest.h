// JobNameTest.h - job names on a data root of their own, with the log switched on.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/CJobName.h"
#include "config/CPrinterConfig.h"
#include "driver/log/Log.h"
#include "support/LogFiles.h"
#include "support/TempHome.h"

namespace morvil::test {

struct JobName : testing::Test {
    JobName() : logBefore(logState()) {
        logState().settings = &settings;
        const CMvConfig folders;
        spool = WString(folders.spoolFolder()) + TEXT("\\");
        work = WString(folders.workFolder()) + TEXT("\\");
    }
    ~JobName() override { logState() = logBefore; }

    void putJob(const WString& folder, const char* name) { writeBytes(folder + fromUtf8(name), "job"); }
    // The name that a fresh object gives.
    std::string nameOf(const char* title, const char* application = "") {
        CJobName names;
        setApplication(names, application);
        return toUtf8(names.getJobName(fromUtf8(title).c_str()));
    }
    static void setApplication(CJobName& names, const char* application) {
        ConfigurationRecord record = CPrinterConfig::defaultConfiguration();
        copyText(record.application.name, fromUtf8(application));
        names.setPrinterConfig(&record);
    }
    std::vector<std::string> log() {
        const WString path = logState().folder + TEXT("\\log_morvil.txt");
        return exists(path) ? messagesOf(readBytes(path)) : std::vector<std::string>();
    }
    static std::string letters(std::size_t count) { return std::string(count, 'x'); }
    void clearLog() { DeleteFileW((logState().folder + TEXT("\\log_morvil.txt")).c_str()); }

    TempHome home;
    LoggingBlock settings{.enabled = 1, .debugLevel = 0, .reserved = 0, .maxBytes = 100'000'000};
    LogState logBefore;
    WString spool;
    WString work;
};

// What a title becomes.
struct RuleCase {
    const char* title;
    const char* expected;
};

}  // namespace morvil::test
