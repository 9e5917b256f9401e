#include "driver/DriverFixture.h"

#include <algorithm>
#include <filesystem>

#include "config/CMvConfig.h"
#include "driver/TestMachine.h"
#include "support/LogFiles.h"

namespace morvil::test {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> messagesIn(const WCHAR* name) {
    const WString path = logState().folder + TEXT("\\") + name;
    return exists(path) ? messagesOf(readBytes(path)) : std::vector<std::string>();
}

WString spoolFolder() { return CMvConfig().spoolFolder(); }

}  // namespace

// The folders are worked out first: that announces the log's folder, which then stays the same.
DriverTest::DriverTest() {
    resetState();
    { const CMvConfig folders; }
    m_logBefore = logState();
    logState().settings = &m_logging;

    printer = openTestPrinter();
    devmode.dm.dmSize = sizeof(DEVMODEW);
    devmode.dm.dmDriverExtra = kPrivateDevmodeBytes;
    configuration() = CPrinterConfig::defaultConfiguration();
    configuration().logging = m_logging;
    configuration().resolution = 254;
    configuration().size.width = 10.0F;
    configuration().size.height = 8.0F;
    configuration().size.pixelWidth = 100;
    configuration().size.pixelHeight = 80;
    configuration().size.takeFromApplication = 0;
}

DriverTest::~DriverTest() {
    engine.throws = false;
    if (pdev != nullptr) {
        DrvDisableSurface(handleOf(pdev));
        DrvDisablePDEV(handleOf(pdev));
    }
    EXPECT_TRUE(engine.surfaces.empty());
    EXPECT_EQ(engine.livePalettes, 0U);
    EXPECT_EQ(engine.locked, 0U);
    if (printer != nullptr) ClosePrinter(printer);
    resetState();
    logState() = m_logBefore;
}

std::vector<std::string> DriverTest::morvilLog() { return messagesIn(TEXT("log_morvil.txt")); }
std::vector<std::string> DriverTest::rendLog() { return messagesIn(TEXT("log_rend.txt")); }

void DriverTest::clearLogs() {
    DeleteFileW((logState().folder + TEXT("\\log_morvil.txt")).c_str());
    DeleteFileW((logState().folder + TEXT("\\log_rend.txt")).c_str());
}

std::string DriverTest::withPointer(const std::string& text, const void* pointer) {
    std::string out = text;
    return out.replace(out.find("{}"), 2, toUtf8(format(TEXT("%X"), low32(pointer))));
}

PDEV* DriverTest::enable() {
    GDIINFO gdiInfo{};
    DEVINFO devInfo{};
    WString device = TEXT("Engraver");
    pdev = pdevOf(DrvEnablePDEV(&devmode.dm, nullptr, 0, nullptr, sizeof(gdiInfo), reinterpret_cast<ULONG*>(&gdiInfo), sizeof(devInfo),
                                &devInfo, nullptr, device.data(), printer));
    EXPECT_NE(pdev, nullptr);
    engine.dhpdev = handleOf(pdev);
    DrvCompletePDEV(engine.dhpdev, reinterpret_cast<HDEV>(0x5150));
    return pdev;
}

SURFOBJ* DriverTest::enableSurface() {
    if (pdev == nullptr) enable();
    const HSURF surface = DrvEnableSurface(handleOf(pdev));
    EXPECT_NE(surface, nullptr);
    pso = surface == nullptr ? nullptr : &engine.surfaces.at(surface)->object;
    return pso;
}

SURFOBJ* DriverTest::startDocument(const WCHAR* name) {
    enableSurface();
    WString title = name == nullptr ? WString() : WString(name);
    EXPECT_EQ(DrvStartDoc(pso, name == nullptr ? nullptr : title.data(), 7), TRUE);
    return pso;
}

SURFOBJ* DriverTest::startPage() {
    if (pso == nullptr) startDocument();
    EXPECT_EQ(DrvStartPage(pso), TRUE);
    return pso;
}

std::vector<std::string> DriverTest::jobFileNames() {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((spoolFolder() + TEXT("\\*.ts?")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do names.push_back(toUtf8(viewOf(std::span<const WCHAR>(found.cFileName))));
    while (FindNextFileW(search, &found) != FALSE);
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

std::string DriverTest::jobFile(const std::string& extension) {
    for (const std::string& name : jobFileNames()) {
        if (name.ends_with(extension)) return readBytes(spoolFolder() + TEXT("\\") + fromUtf8(name));
    }
    return {};
}

std::vector<std::string> DriverTest::drawCommands(const std::string& extension) {
    std::vector<std::string> commands;
    const std::string bytes = jobFile(extension);
    for (std::size_t at = bytes.find("<Draw"); at != std::string::npos; at = bytes.find("<Draw", at + 1)) {
        commands.push_back(bytes.substr(at, bytes.find("\r\n", at) - at));
    }
    return commands;
}

}  // namespace morvil::test
