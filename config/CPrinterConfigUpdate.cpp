// The version update of a file, and the test of a folder that the user interface offers.
#include "config/CMvFsServices.h"
#include "config/CPrinterConfigMembers.h"
#include "config/CPrinterConfigTables.h"
#include "config/MvOperatingSystem.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

// Switches the log on for one line, whatever the working configuration says, and back.
class ForcedLogging {
  public:
    ForcedLogging() : m_before(logState().settings) {
        m_settings.enabled = 1;
        m_settings.maxBytes = m_before != nullptr && m_before->maxBytes != 0 ? m_before->maxBytes : keys::kLoggingFileSize.missing;
        logState().settings = &m_settings;
    }
    ~ForcedLogging() { logState().settings = m_before; }
    ForcedLogging(const ForcedLogging&) = delete;
    ForcedLogging& operator=(const ForcedLogging&) = delete;

  private:
    const LoggingBlock* m_before;
    LoggingBlock m_settings{};
};

bool putMissingOffsets(ConfigurationItems& items) {
    for (const auto& offset : keys::kBoundingBoxOffsets) {
        if (!items.find(offset) && !items.put(offset, 0)) return false;
    }
    return true;
}

// Empty when the driver file of this machine is missing or tells no version.
WString driverFileVersion() {
    const WString folder = MvOperatingSystem().getPrinterDriverSubPath();
    if (folder.empty()) return {};
    const WString version = CMvFsServices().getFileVersion(format(TEXT("%s\\morvil.dll"), folder).c_str());
    return version == TEXT("0.0.0.0") ? WString() : version;
}

void logVersions(ConfigurationItems& items) {
    ConfigurationItems::Value version{};
    if (!items.read(items.element(keys::kVersion.path), version)) return;
    const WString driver = driverFileVersion();
    if (driver.empty()) return;
    const ForcedLogging forced;
    logMorvil(1, kNotice, TEXT("CPrinterConfig::doUpdate, Config.version=%s, Driver.version=%s"), viewOf(version.data()), driver, kLogEnd);
}

bool putColourMatching(ConfigurationItems& items) {
    if (!items.put(keys::kColourMatchingEnabled, true)) return false;
    int n = 0;
    for (const ColourMatchingItem& item : defaultColourMatching()) {
        const WString path = items.pathOf(keys::kColourMatchingItem, n++);
        if (!items.put(path, item.from, TEXT("from")) || !items.put(path, item.to, TEXT("to"))) return false;
        if (!items.put(path, item.colour, TEXT("color"))) return false;
    }
    return true;
}

}  // namespace

bool CPrinterConfig::doUpdate(ConfigurationRecord& record) {
    static constexpr int kBrowserFormat = 3;
    record.flags |= MV_FL_POLYGON_CLIPPING;
    return m->write([&](ConfigurationItems& items) {
        if (!putMissingOffsets(items)) return false;
        if (!items.put(items.pathOf(keys::kGreyVectors), kDefaultGreyVectors, keys::kGreyVectorsAttribute)) return false;
        logVersions(items);
        const ConfigurationRecord& defaults = defaultConfiguration();
        return setFlags(record.flags) &&
               items.put(items.pathOf(keys::kJobFormat, kBrowserFormat), viewOf(defaults.job.formats[kBrowserFormat])) &&
               items.put(keys::kLoggingFileSize, static_cast<std::uint32_t>(defaults.logging.maxBytes)) && putColourMatching(items);
    });
}

bool CPrinterConfig::pathValid(const WCHAR* path) {
    const WStringView folder = viewOf(path);
    if (folder.empty()) {
        logMorvil(1, kError, TEXT("pathValid Error 1"), kLogEnd);
        return false;
    }
    if (!folderExists(path)) {
        logMorvil(1, kError, TEXT("pathValid Error 2"), kLogEnd);
        return false;
    }
    const WString probe = format(folder.back() == '\\' ? TEXT("%stest.dat") : TEXT("%s\\TestIfWriteProtection.dat"), folder);
    const bool foreign = fileExists(probe.c_str());  // whoever left it there keeps it
    FileStream file(probe.c_str(), OpenMode::Append);
    if (!file.isOpen()) {
        const DWORD error = GetLastError();
        logMorvil(1, kError, TEXT("pathValid Error 4 Path=%s, Handle=%X, Error=%d"), folder, low32(INVALID_HANDLE_VALUE), error, kLogEnd);
        return false;
    }
    file.close();
    if (!foreign) DeleteFileW(probe.c_str());
    return true;
}

}  // namespace morvil
