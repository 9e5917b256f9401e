#include "config/CPrinterConfig.h"

#include <algorithm>
#include <clocale>
#include <cmath>

#include "config/CMvString.h"
#include "config/CPrinterConfigMembers.h"
#include "config/CPrinterConfigTables.h"
#include "platform/common/FileStream.h"
#include "platform/host/IniFile.h"

namespace morvil {

namespace {

// A file that is there but cannot be opened is neither.
bool missingOrEmpty(const WCHAR* path) {
    FileStream file(path, OpenMode::Read);
    if (file.isOpen()) return file.size() == 0;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

// What an element name may hold and the file gives back unchanged: Latin-1 letters, digits and a few marks.
bool isNameCharacter(WCHAR c) {
    if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) return true;
    return c == '_' || c == ':' || c == '-' || (c >= 0xC0 && c <= 0xFF && c != 0xD7 && c != 0xF7);
}

// What an item path has left for the name between the two elements above it and the deepest item of a configuration. A longer
// name would push the last components of that out, and its neighbours would fall together with it on one element.
constexpr std::size_t kElementsAboveName = 2;  // PrinterDriver.ConfigurationStore
constexpr std::size_t kMostNameParts = ItemPath::kMostNames - kElementsAboveName - keys::kRotaryDiameter.path.item().names().size();
static_assert(kMostNameParts == 3);

bool partAccepted(const WString& part) {
    return !part.empty() && std::ranges::all_of(part, isNameCharacter) && CMvString().asInt(part.c_str()) == 0;
}

bool nameAccepted(WStringView name) {
    for (std::size_t parts = 1; parts <= kMostNameParts; ++parts) {
        const std::size_t end = name.find(TEXT('.'));
        if (!partAccepted(WString(name.substr(0, end)))) return false;
        if (end == WStringView::npos) return true;
        name.remove_prefix(end + 1);
    }
    return false;
}

// Stamps are prepared for pure black and white, plain jobs as well unless the driver halftones them.
bool isRaster(const ConfigurationRecord& record) {
    return record.processMode == kModeStamp || (record.processMode == kModeStandard && record.halftone.enabled == 0);
}

}  // namespace

DWORD CPrinterConfig::Members::timeStampNow() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return ((now.wHour * 256U + now.wMinute) * 256U + now.wSecond) * 256U + now.wMilliseconds;
}

CXml& CPrinterConfig::Members::opened() {
    if (!store) store = std::make_unique<CXml>(folders);
    return *store;
}

CPrinterConfig::Members::Load CPrinterConfig::Members::load() {
    iniValues.reset();
    const bool first = !store;
    if (first ? opened().isLoaded() : store->reload()) return Load::Ready;
    if (missingOrEmpty(store->path())) return Load::Missing;
    // Opening does not tell a file without any element, which the repair of an invalid configuration mends, from one that
    // another process keeps locked.
    return first && store->reload() ? Load::Ready : Load::Unavailable;
}

bool CPrinterConfig::Members::writable() {
    CXml& file = opened();
    if (file.isLoaded()) return true;
    if (!missingOrEmpty(file.path())) return file.reload();
    file.createDefault();
    return file.isLoaded() && !missingOrEmpty(file.path());
}

const CPrinterConfig::Members::IniValues& CPrinterConfig::Members::ini() {
    if (!iniValues) {
        const WCHAR* const userSetup = TEXT("UserSetup");
        IniFile jobApplication(folders.jobApplicationIni());
        IniFile main(folders.mainIni());
        iniValues = IniValues{
            .useInch = static_cast<int>(jobApplication.number(userSetup, TEXT("UseInch"), 0)),
            .jobApplicationFlags = static_cast<int>(jobApplication.number(userSetup, TEXT("Flags"), 0)),
            .driverView = static_cast<int>(main.number(TEXT("Driver"), TEXT("Driver_View"), keys::kDriverView.missing)),
        };
    }
    return *iniValues;
}

CPrinterConfig::CPrinterConfig(CSizeTemplate* templates) : m(std::make_unique<Members>()) { m->templates = templates; }

CPrinterConfig::~CPrinterConfig() = default;

bool CPrinterConfig::select(const WCHAR* name) {
    const WStringView wanted = viewOf(name);
    if (!wanted.empty() && !nameAccepted(wanted)) return false;
    m->rootText = wanted.empty() ? WString(keys::kActiveRoot) : format(keys::kStoredRoot, wanted);
    m->root = ItemPath(m->rootText.c_str());
    return true;
}

bool CPrinterConfig::configurationExists(const WCHAR* name) { return select(name) && m->items().root() != nullptr; }

bool CPrinterConfig::getConfig(const WCHAR* name, ConfigurationRecord& record) {
    std::setlocale(LC_ALL, "C");
    if (!select(name)) return false;
    try {
        return load(record, Repair::Allowed);
    } catch (const ConfigurationError&) {
        debugPrint(TEXT("!!! PrinterConfig.getConfig Exception\n"));
        logMorvil(1, kError, TEXT("Exception in getConfig"), kLogEnd);
        return false;
    }
}

bool CPrinterConfig::load(ConfigurationRecord& record, Repair repair) {
    const Members::Load state = m->load();
    if (state == Members::Load::Missing) return createFile(record);
    if (state == Members::Load::Unavailable) return useDefaults(record);
    if (readValid(record)) return true;
    // The repair writes the active configuration; it cannot help a stored one, and must not cost the user his settings.
    if (!m->active()) {
        logMorvil(1, kError, TEXT("CPrinterConfig::getConfig, configuration %s is not valid"), m->root.text(), kLogEnd);
        return false;
    }
    if (repair == Repair::Done) return useDefaults(record);
    logMorvil(1, kError, TEXT("No valid Configuration found, DefaultConfiguration is created"), kLogEnd);
    setConfig(TEXT(""), localDefaults());
    return load(record, Repair::Done);
}

// The first start. The record holds the complete defaults, so that the document that is about to be printed can be; the
// next load finds the new file without a configuration and repairs it.
bool CPrinterConfig::createFile(ConfigurationRecord& record) {
    m->store->createDefault();
    if (missingOrEmpty(m->store->path())) return useDefaults(record);
    record = localDefaults();
    doUpdate(record);
    debugPrint(TEXT("PrinterConfig.getConfig is about to raise exception\n"));
    throw ConfigurationError{kConfigurationFileMissing};
}

bool CPrinterConfig::useDefaults(ConfigurationRecord& record) {
    logMorvil(1, kInformation, TEXT("CPrinterConfig::getConfig, m_DefaultPrinterConfig will be used"), kLogEnd);
    record = localDefaults();
    return false;
}

bool CPrinterConfig::readValid(ConfigurationRecord& record) {
    ConfigurationRecord fresh = defaultConfiguration();
    try {
        readRecord(fresh);
    } catch (const ConfigurationError&) {
        if (!m->active()) throw;
        return false;
    }
    if (!isValid(fresh)) return false;
    record = fresh;
    return true;
}

void CPrinterConfig::readRecord(ConfigurationRecord& record) {
    record.timeStamp = Members::timeStampNow();
    record.unit = getUnit();
    record.size = getSizeTemplate();
    copyText(record.materialGroup, getMaterialGroup());
    copyText(record.materialName, getMaterialName());
    record.processMode = getProcessMode();
    copyText(record.processName, processModeName(record.processMode));
    record.processKind = processKindOf(record.processMode).value_or(0);
    record.mciVersion = getMciVersion(record.processMode);
    record.resolution = getResolution();
    record.size.pixelWidth = pixelsOf(record.size.width, record.resolution);
    record.size.pixelHeight = pixelsOf(record.size.height, record.resolution);
    record.cutLineIndex = getCutLine();
    copyText(record.cutLineName, cutLineName(record.cutLineIndex));
    copyText(record.shoulderName, getShoulderName());
    record.shoulderIndex = getShoulderIndex();
    record.layers = getLayers();
    record.zAdjustment = getZAdjustment();
    record.rotaryEnabled = getRotaryEnabled() ? 1 : 0;
    record.rotaryDiameter = getRotaryDiameter();
    record.autoPosition = getAutoPosition() ? 1 : 0;
    record.vectorJob = getVectorJob() ? 1 : 0;
    record.ppoThreshold = getPpoThreshold();
    record.colourCount = getColours(record.colours);
    record.halftone = getHalftone();
    record.raster = isRaster(record) ? 1 : 0;
    record.driverView = getDriverView();
    record.driverViewMaximum = getDriverViewMaximum();
    record.quickPrint = getQuickPrint() ? 1 : 0;
    record.job = getJobIdentification();
    record.files = getFileNames();
    record.bezier = getBezier();
    record.application = getPrintingApplication();
    record.logging = getLogging();
    record.flags = getFlags();
    record.diagnostic = getDiagnostic();
}

// Every item, whatever became of the one before. Each writes the file; the disk has it at the end.
bool CPrinterConfig::setConfig(const WCHAR* name, const ConfigurationRecord& record) {
    if (!select(name) || !m->writable()) return false;
    ItemChanges changes(*m->store);
    const std::optional<WORD> resolution = resolutionIndexOf(record.resolution);
    bool written = setSizeTemplate(record.size);
    written &= setMaterialGroup(record.materialGroup);
    written &= setMaterialName(record.materialName);
    written &= setProcessMode(record.processMode);
    written &= resolution && setResolution(*resolution);
    written &= setCutLine(record.cutLineIndex);
    // The setter takes no empty name; an absent one reads as empty.
    written &= record.shoulderName[0] != 0 ? setShoulderName(record.shoulderName) : removeShoulderName();
    written &= setShoulderIndex(record.shoulderIndex);
    written &= setLayers(record.layers);
    written &= setZAdjustment(record.zAdjustment);
    written &= setRotaryEnabled(record.rotaryEnabled != 0);
    written &= setRotaryDiameter(record.rotaryDiameter);
    written &= setAutoPosition(record.autoPosition != 0);
    written &= setVectorJob(record.vectorJob != 0);
    written &= setColours(record.colours, record.colourCount);
    written &= setHalftone(record.halftone);
    written &= setDriverView(record.driverView);
    written &= setQuickPrint(record.quickPrint != 0);
    written &= setJobIdentification(record.job);
    written &= setBezier(record.bezier);
    written &= setPrintingApplication(record.application);
    written &= setLogging(record.logging);
    written &= setFlags(record.flags);
    written &= setDiagnostic(record.diagnostic);
    return changes.end() && written;
}

WORD pixelsOf(FLOAT millimetres, WORD dpi) {
    const float pixels = std::ceil(millimetres / 25.4F * static_cast<float>(dpi));
    return pixels > 0.0F && pixels <= 65535.0F ? static_cast<WORD>(pixels) : 0;
}

}  // namespace morvil
