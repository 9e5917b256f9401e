// The diagnostic log: what lands in the two files, byte for byte, and what leaves them alone.
#include "driver/log/Log.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>

#include "platform/common/FileStream.h"
#include "platform/posix/HostState.h"
#include "support/DebugCapture.h"
#include "support/FailingCalls.h"
#include "support/LogFiles.h"
#include "support/TempHome.h"

namespace morvil::test {

namespace {

// 09:08:07 of a day in this time zone.
void stopClock() {
    std::tm parts{};
    parts.tm_year = 124;
    parts.tm_mon = 1;
    parts.tm_mday = 3;
    parts.tm_hour = 9;
    parts.tm_min = 8;
    parts.tm_sec = 7;
    hostState().fixedTime = std::chrono::system_clock::from_time_t(std::mktime(&parts));
}

struct LogTest : testing::Test {
    LogTest() { stopClock(); }
    TempHome home;
    LogFiles log;
};

constexpr WStringView kMorvil = TEXT("C:\\log\\log_morvil.txt");
constexpr WStringView kRend = TEXT("C:\\log\\log_rend.txt");

}  // namespace

TEST_F(LogTest, switchedOff_touchesNoFile) {
    log.settings.enabled = 0;
    FailingCalls watched(1, Fault::Persistent);
    EXPECT_EQ(logMorvil(1, kInformation, TEXT("text"), kLogEnd), 0);
    logRend(1, kInformation, TEXT("text"), kLogEnd);
    EXPECT_EQ(watched.fired(), 0);
    EXPECT_FALSE(exists(kMorvil));
    EXPECT_FALSE(exists(kRend));
}

TEST_F(LogTest, withoutConfigurationRecord_isOff) {
    logState().settings = nullptr;
    EXPECT_EQ(logMorvil(1, kError, TEXT("text"), kLogEnd), 0);
    EXPECT_FALSE(exists(kMorvil));
}

TEST_F(LogTest, missingFolder_returnsZeroAndWritesNothing) {
    logState().folder = TEXT("C:\\nowhere");
    EXPECT_EQ(logMorvil(0, kInformation, TEXT("text"), kLogEnd), 0);
    EXPECT_FALSE(exists(TEXT("C:\\nowhere")));
}

TEST_F(LogTest, failingClose_isTheResult) {
    FailingCalls faults(3, Fault::Transient, "close");  // the second line closes twice: its size query and itself
    EXPECT_EQ(logMorvil(0, kInformation, TEXT("a"), kLogEnd), 0);
    EXPECT_EQ(logMorvil(0, kInformation, TEXT("b"), kLogEnd), -1);
}

TEST_F(LogTest, everyFault_leavesNothingOpen) {
    for (int n = 1;; ++n) {
        FailingCalls faults(n, Fault::Persistent);
        logMorvil(1, kInformation, TEXT("line %d"), n, kLogEnd);
        EXPECT_EQ(outstanding().files, 0U) << faults.failedCall();
        if (faults.fired() == 0) break;
    }
}

TEST_F(LogTest, informationWithTime) {
    EXPECT_EQ(logMorvil(1, kInformation, TEXT("page %d of %s"), 3, TEXT("Plan"), kLogEnd), 0);
    EXPECT_EQ(log.morvil(), "09:08:07\tpage 3 of Plan\r\n");
    EXPECT_FALSE(exists(kRend));
}

TEST_F(LogTest, informationWithoutTime_hasATabInItsPlace) {
    logMorvil(0, kInformation, TEXT("text"), kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\ttext\r\n");
}

TEST_F(LogTest, everyOtherLevel_hasPrefixAndNoTime) {
    for (const int level : {0, 2, 3, 4, 0xFFFF}) {
        log.clear();
        logMorvil(1, level, TEXT("Error=%d"), 5, kLogEnd);
        EXPECT_EQ(log.morvil(), "!!! Error=5\r\n") << level;
    }
}

TEST_F(LogTest, appendsToWhatIsThere) {
    writeBytes(kMorvil, "before");
    logMorvil(0, kInformation, TEXT("text"), kLogEnd);
    EXPECT_EQ(log.morvil(), "before\t\ttext\r\n");
}

TEST_F(LogTest, rendDropsOneTrailingLineEnd) {
    logRend(0, kInformation, TEXT("one\n"), kLogEnd);
    logRend(0, kInformation, TEXT("two\n\n"), kLogEnd);
    logRend(1, kError, TEXT("three"), kLogEnd);
    EXPECT_EQ(log.rend(), "\t\tone\r\n\t\ttwo\r\n\r\n!!! three\r\n");
    EXPECT_FALSE(exists(kMorvil));
}

TEST_F(LogTest, morvilKeepsTrailingLineEnd) {
    logMorvil(0, kInformation, TEXT("one\n"), kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\tone\r\n\r\n");
}

TEST_F(LogTest, percentSignsOfTheFormat_areConversions) {
    logMorvil(0, kInformation, TEXT("100%% of %X"), 0xABCU, kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\t100% of ABC\r\n");
}

TEST_F(LogTest, textOutsideLatin1_isAQuestionMark) {
    logMorvil(0, kInformation, TEXT("\u00e4 \u20ac %s"), TEXT("\u0416"), kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\t\xE4 ? ?\r\n");
}

TEST_F(LogTest, missingArgument_printsTheEndMarker) {
    logMorvil(0, kInformation, TEXT("%d"), kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\t-777\r\n");
}

TEST_F(LogTest, formatOf600Characters_isALine) {
    const WString text(600, TEXT('x'));
    logMorvil(0, kInformation, text.c_str(), kLogEnd);
    logRend(0, kInformation, text.c_str(), kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\t" + std::string(600, 'x') + "\r\n");
    EXPECT_EQ(log.rend(), log.morvil());
}

TEST_F(LogTest, formatOf601Characters_isTheErrorEntry) {
    const WString text(601, TEXT('x'));
    logMorvil(1, kInformation, text.c_str(), kLogEnd);
    logRend(1, kInformation, text.c_str(), kLogEnd);
    const std::string cut = "!!! " + std::string(596, 'x') + "\r\n";
    EXPECT_EQ(log.morvil(), cut + "!!! logMorvil, Error String to long\r\n");
    EXPECT_EQ(log.rend(), cut + "!!! logRend, Error String to long\r\n");
}

TEST_F(LogTest, rendLengthCountsTheLineEnd) {
    const WString text = WString(600, TEXT('x')) + TEXT("\n");
    logRend(0, kInformation, text.c_str(), kLogEnd);
    EXPECT_TRUE(log.rend().ends_with("!!! logRend, Error String to long\r\n"));
}

TEST_F(LogTest, longFormatIsPrintedWithoutArguments) {
    const WString text = TEXT("%d %s") + WString(600, TEXT('x'));
    logMorvil(0, kInformation, text.c_str(), 5, kLogEnd);
    EXPECT_TRUE(log.morvil().starts_with("!!! %d %sxxx"));
}

TEST_F(LogTest, nullFormat_isTheErrorEntry) {
    logMorvil(0, kInformation, nullptr, kLogEnd);
    logRend(0, kInformation, nullptr, kLogEnd);
    EXPECT_EQ(log.morvil(), "!!! (null)\r\n!!! logMorvil, Error String to long\r\n");
    EXPECT_EQ(log.rend(), "!!! (null)\r\n!!! logRend, Error String to long\r\n");
}

TEST_F(LogTest, longArguments_areNotCut) {
    const WString text(2000, TEXT('y'));
    logMorvil(0, kInformation, TEXT("%s"), text, kLogEnd);
    EXPECT_EQ(log.morvil().size(), 2U + 2000U + 2U);
}

TEST_F(LogTest, fullFile_startsAfresh) {
    log.settings.maxBytes = 10;
    writeBytes(kMorvil, "123456789");
    writeBytes(kRend, "123456789");
    logMorvil(0, kInformation, TEXT("a"), kLogEnd);
    logRend(0, kInformation, TEXT("a"), kLogEnd);
    EXPECT_EQ(log.morvil(), "123456789\t\ta\r\n") << "one byte below the maximum";
    EXPECT_EQ(log.rend(), "123456789\t\ta\r\n");
    writeBytes(kMorvil, "1234567890");
    writeBytes(kRend, "1234567890");
    logMorvil(0, kInformation, TEXT("b"), kLogEnd);
    logRend(0, kInformation, TEXT("b"), kLogEnd);
    EXPECT_EQ(log.morvil(), "\t\tb\r\n") << "at the maximum";
    EXPECT_EQ(log.rend(), "\t\tb\r\n");
}

TEST_F(LogTest, folderInPlaceOfTheFile_staysAndNothingIsWritten) {
    log.settings.maxBytes = 0;
    makeFolder(kMorvil);
    makeFolder(kRend);
    EXPECT_EQ(logMorvil(0, kInformation, TEXT("a"), kLogEnd), 0);
    logRend(0, kInformation, TEXT("a"), kLogEnd);
    EXPECT_TRUE(folderExists(WString(kMorvil).c_str()));
    EXPECT_TRUE(folderExists(WString(kRend).c_str()));
}

TEST_F(LogTest, debugPrint_sendsTheFormattedText) {
    DebugCapture debugger;
    debugPrint(TEXT("DrvFillPath %d\n"), 4, kLogEnd);
    debugPrint(nullptr, kLogEnd);
    EXPECT_EQ(debugger.texts(), (std::vector<std::string>{"DrvFillPath 4\n", ""}));
    EXPECT_FALSE(exists(kMorvil));
}

TEST_F(LogTest, debugPrint_worksWithTheLogOff) {
    log.settings.enabled = 0;
    DebugCapture debugger;
    debugPrint(TEXT("text\n"), kLogEnd);
    EXPECT_EQ(debugger.texts(), std::vector<std::string>{"text\n"});
}

TEST_F(LogTest, debugPrint_withoutListenerSendsNothing) {
    {
        DebugCapture debugger;
        EXPECT_TRUE(debugOutputWanted());
    }
    EXPECT_FALSE(debugOutputWanted());
    debugPrint(TEXT("text\n"), kLogEnd);
}

TEST_F(LogTest, getDebugValue_withoutKeyFileOrFolder) {
    EXPECT_EQ(getDebugValue(nullptr), -1);
    EXPECT_EQ(getDebugValue(TEXT("Kx2898")), -1) << "no file";
    writeBytes(TEXT("C:\\base\\mvDebug.ini"), "[Debug]\r\nKx2898=1\r\n");
    EXPECT_EQ(getDebugValue(nullptr), -1);
    EXPECT_EQ(getDebugValue(TEXT("MvXmlSleep1")), -1) << "no such key";
    logState().baseFolder.clear();
    EXPECT_EQ(getDebugValue(TEXT("Kx2898")), -1) << "no folder";
}

TEST_F(LogTest, getDebugValue_readsSectionDebug) {
    writeBytes(TEXT("C:\\base\\mvDebug.ini"), "[Other]\r\nMvMutexTimeOut=7\r\n[Debug]\r\nMvMutexTimeOut=250\r\nMvXmlSleep1=-3\r\n");
    EXPECT_EQ(getDebugValue(TEXT("MvMutexTimeOut")), 250);
    EXPECT_EQ(getDebugValue(TEXT("MvXmlSleep1")), -3);
}

}  // namespace morvil::test
