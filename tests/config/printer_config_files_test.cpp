// Loading a configuration whose file is damaged, locked by another process, or cannot be had.
#include "PrinterConfigFixture.h"
#include "platform/posix/PlatformCalls.h"
#include "support/ChildProcess.h"
#include "support/FailingCalls.h"

namespace morvil::test {

namespace {

using testing::Contains;

const std::string kDefaultsText = "CPrinterConfig::getConfig, m_DefaultPrinterConfig will be used";

bool isWhole(const std::string& bytes) { return bytes.ends_with("</PrinterDriver>\r\n") || bytes.ends_with("<PrinterDriver/>\r\n"); }

// Another process that holds the lock of the configuration until it is let go.
int holdLock(const ChildProcess::Link& link) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Global\\PRINTERCONFIGSYNCH"));
    if (WaitForSingleObject(mutex, 5000) != WAIT_OBJECT_0) return 1;
    link.ready();
    link.waitForParent();
    ReleaseMutex(mutex);
    return 0;
}

}  // namespace

TEST_F(PrinterConfigLoad, fileCutInTheMiddle_isReadAsFarAsItGoes) {
    ConfigurationRecord record{};
    ASSERT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    ASSERT_TRUE(CPrinterConfig().setConfig(TEXT(""), CPrinterConfig::defaultConfiguration()));
    const std::string whole = fileBytes();
    ASSERT_GT(whole.size(), 1000U);
    for (std::size_t length = 1; length < whole.size(); length += 37) {
        SCOPED_TRACE(length);
        const std::string cut = whole.substr(0, length);
        writeFile(cut);
        EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
        EXPECT_EQ(record.resolution, 500);
        const bool resolutionLost = cut.find("<Resolution index=\"2\"/>") == std::string::npos;
        EXPECT_EQ(isWhole(fileBytes()), resolutionLost);
    }
}

TEST_F(PrinterConfigLoad, noise_isRepairedBesideIt) {
    writeFile("nothing of an element in here & nowhere");
    ConfigurationRecord record = sentinel();
    EXPECT_TRUE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_EQ(load().resolution, 500);
}

TEST_F(PrinterConfigLoad, fileTooLargeForAConfiguration_givesTheDefaultsAndStays) {
    std::string noise(50'000'000, 'x');
    for (std::size_t i = 0; i < noise.size(); i += 13) noise[i] = static_cast<char>('<' + i % 3);
    writeFile(noise);
    ConfigurationRecord record = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_THAT(log(), Contains(kDefaultsText));
    EXPECT_FALSE(CPrinterConfig().setConfig(TEXT(""), record));
    EXPECT_EQ(fileBytes().size(), noise.size());
}

TEST_F(PrinterConfigLoad, lockedByAnotherProcess_givesTheDefaultsAndChangesNothing) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("MvMutexTimeOut"), TEXT("50"), folders.debugIni());
    const std::string before = fileBytes();
    {
        const ChildProcess lock(holdLock);
        ASSERT_TRUE(lock.waitUntilReady());
        const auto begin = std::chrono::steady_clock::now();
        ConfigurationRecord record = sentinel();
        EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
        EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
        EXPECT_FALSE(CPrinterConfig().setConfig(TEXT(""), CPrinterConfig::defaultConfiguration()));
        EXPECT_FALSE(CPrinterConfig().setLayers(9));
        // Each of the three waits at most twice.
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
        EXPECT_THAT(log(), Contains(kDefaultsText));
        EXPECT_EQ(fileBytes(), before);
    }
    EXPECT_EQ(text(load().materialGroup), "Oak");
}

TEST_F(PrinterConfigLoad, lockedSinceTheLastLoad_givesTheDefaults) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("MvMutexTimeOut"), TEXT("0"), folders.debugIni());
    CPrinterConfig config;
    ConfigurationRecord record{};
    ASSERT_TRUE(config.getConfig(TEXT(""), record));
    const ChildProcess lock(holdLock);
    ASSERT_TRUE(lock.waitUntilReady());
    EXPECT_FALSE(config.getConfig(TEXT(""), record));
    EXPECT_EQ(text(record.materialGroup), "Standard");
}

TEST_F(PrinterConfigLoad, missingFileWhileLocked_isNotCreatedAndDoesNotHang) {
    WritePrivateProfileStringW(TEXT("Debug"), TEXT("MvMutexTimeOut"), TEXT("20"), folders.debugIni());
    const ChildProcess lock(holdLock);
    ASSERT_TRUE(lock.waitUntilReady());
    const auto begin = std::chrono::steady_clock::now();
    ConfigurationRecord record = sentinel();
    EXPECT_FALSE(CPrinterConfig().getConfig(TEXT(""), record));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_TRUE(sameSettings(record, CPrinterConfig::defaultConfiguration()));
    EXPECT_THAT(log(), Contains(kDefaultsText));
    EXPECT_FALSE(fileThere());
}

// Whatever call fails, the load ends with settings that can be printed with, and with the whole old file, a whole new one or none.
TEST_F(PrinterConfigLoad, everyCallFailing_leavesUsableSettingsAndAWholeFile) {
    writeItems({kResolutionItem, {"PrinterDriver.Configuration.Print.MaterialSettings.Group", "Oak"}});
    const std::string valid = fileBytes();
    for (const bool there : {false, true}) {
        for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
            for (int n = 1, fired = 1; fired != 0; ++n) {
                DeleteFileW(folders.configurationFile());
                if (there) writeFile(valid);
                ConfigurationRecord record{};
                std::string call;
                {
                    FailingCalls faults(n, fault);
                    platformCalls().sleep = [](std::uint32_t) {};  // nobody waits for a mutex that cannot be made
                    CPrinterConfig().getConfig(TEXT(""), record);
                    fired = faults.fired();
                    call = faults.failedCall();
                }
                SCOPED_TRACE(std::to_string(n) + " " + call);
                EXPECT_EQ(record.processMode, 1000);
                EXPECT_EQ(record.resolution, 500);
                if (there) {
                    EXPECT_EQ(fileBytes(), valid);
                } else if (fileThere()) {
                    EXPECT_TRUE(isWhole(fileBytes())) << fileBytes();
                }
            }
        }
    }
}

}  // namespace morvil::test
