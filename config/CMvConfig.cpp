#include "config/CMvConfig.h"

#include "config/CMvFsServices.h"
#include "driver/log/Log.h"
#include "platform/common/FileStream.h"
#include "platform/host/IniFile.h"

namespace morvil {

namespace {

using Path = CMvConfig::Path;

constexpr std::size_t kMostFolderCharacters = 258;
constexpr const WCHAR* kUserSetup = TEXT("UserSetup");
constexpr const WCHAR* kActingVersion = TEXT("actVersion");

bool append(Path& path, std::size_t& length, WStringView part) {
    if (part.size() >= path.size() - length) return false;
    part.copy(path.data() + length, part.size());
    length += part.size();
    return true;
}

// The parts put together; empty when the first of them is empty or the whole does not fit.
template <typename... Parts>
Path joined(const Path& base, const Parts&... parts) {
    Path path{};
    std::size_t length = 0;
    if (base[0] == 0) return path;
    const bool fits = append(path, length, viewOf(base)) && (append(path, length, parts) && ...);
    if (!fits) path = {};
    return path;
}

// A folder that exists is left as it is.
void provideFolder(const Path& path) {
    if (path[0] != 0 && !folderExists(path.data())) CMvFsServices().createDirectory(path.data());
}

// Whether a path that exists shows that the folders exist which it was put together from.
bool isBelow(const Path& inner) { return viewOf(inner).find(TEXT("..")) == WStringView::npos; }

// The same for a folder and one inside it: who finds the inner one has found both.
void provideFolders(const Path& outer, const Path& inner) {
    if (inner[0] != 0 && isBelow(inner) && folderExists(inner.data())) return;
    provideFolder(outer);
    provideFolder(inner);
}

Path readPath(IniFile& ini, const WCHAR* section, const WCHAR* key, const WCHAR* missing = TEXT("")) {
    Path value{};
    if (*ini.path() == 0) return value;
    ini.text(section, key, missing, value);
    return value;
}

Path withoutLast(Path path) {
    if (const std::size_t length = viewOf(path).size(); length > 0) path[length - 1] = 0;
    return path;
}

Path withoutBackslash(const Path& path) { return viewOf(path).ends_with(TEXT('\\')) ? withoutLast(path) : path; }

// Empty when the system does not name the folder.
Path systemFolder(int which) {
    Path path{};
    if (FAILED(SHGetFolderPathW(nullptr, which, nullptr, SHGFP_TYPE_CURRENT, path.data()))) path = {};
    return path;
}

// A folder of the system that ours lie in. Who finds the one of ours needs no answer about the system's folder, only its name.
struct FolderAround {
    Path path;
    bool hasOurs;
};
FolderAround folderAround(const WCHAR* ours, int which, int flags = 0) {
    const Path named = systemFolder(which | CSIDL_FLAG_DONT_VERIFY);
    const bool hasOurs = folderExists(joined(named, ours).data());
    return {.path = hasOurs ? named : systemFolder(which | flags), .hasOurs = hasOurs};
}

bool createFile(const Path& path) { return path[0] != 0 && FileStream(path.data(), OpenMode::CreateNew).isOpen(); }

void createDefaultMorvilConfig(const Path& ini) {
    if (!createFile(ini)) {
        logMorvil(1, kError, TEXT("CMvConfig::createDefaultMorvilConfig Error"), kLogEnd);
        return;
    }
    for (const WCHAR* section : {TEXT("Plotkeeper"), TEXT("PrinterDriver")})
        WritePrivateProfileStringW(section, kActingVersion, TEXT("0.0.0"), ini.data());
}

void createDefaultPlotkeeperConfig(const Path& folder, const Path& ini) {
    if (!createFile(ini)) {
        logMorvil(1, kError, TEXT("CMvConfig::createDefaultPlotkeeperConfig Error"), kLogEnd);
        return;
    }
    const Path spool = joined(folder, TEXT("\\Spool"));
    const Path work = joined(folder, TEXT("\\Work"));
    provideFolder(spool);
    provideFolder(work);
    WritePrivateProfileStringW(kUserSetup, TEXT("SpoolPath"), joined(spool, TEXT("\\")).data(), ini.data());
    WritePrivateProfileStringW(kUserSetup, TEXT("WorkPath"), joined(work, TEXT("\\")).data(), ini.data());
}

IniFile provideMainIni(const Path& path) {
    if (IniFile ini(path.data()); ini.exists()) return ini;
    createDefaultMorvilConfig(path);
    return IniFile(path.data());
}

// Who finds the file has found its folders.
IniFile provideJobApplicationIni(const Path& parent, const Path& folder, const Path& path) {
    IniFile ini(path.data());
    const bool present = ini.exists();
    if (!present || !isBelow(path)) provideFolders(parent, folder);
    if (present) return ini;
    createDefaultPlotkeeperConfig(folder, path);
    return IniFile(path.data());
}

}  // namespace

CMvConfig::Path dataRootIn(const CMvConfig::Path& commonFolder) {
    if (commonFolder[0] == 0) logMorvil(1, kError, TEXT("CMvConfig::buildPathCommon Error common"), kLogEnd);
    if (viewOf(commonFolder).size() > kMostFolderCharacters)
        logMorvil(1, kError, TEXT("CMvConfig::buildPathCommon Error length path"), kLogEnd);
    return joined(commonFolder, TEXT("\\Morvil"));
}

CMvConfig::CMvConfig() {
    buildPathCommon();
    IniFile mainIni = provideMainIni(m_mainIni);
    buildPathJobApplication(readPath(mainIni, TEXT("Plotkeeper"), kActingVersion, TEXT("ERROR")));
    buildPathDriver(readPath(mainIni, TEXT("PrinterDriver"), kActingVersion));
}

void CMvConfig::buildPathCommon() {
    const FolderAround data = folderAround(TEXT("\\Morvil\\Common Files"), CSIDL_COMMON_APPDATA, CSIDL_FLAG_CREATE);
    m_dataRoot = dataRootIn(data.path);
    m_commonFiles = joined(m_dataRoot, TEXT("\\Common Files"));
    m_mainIni = joined(m_dataRoot, TEXT("\\morvil.ini"));
    m_debugIni = joined(m_dataRoot, TEXT("\\mvDebug.ini"));
    m_diagnosticsFile = joined(m_commonFiles, TEXT("\\Diagnostics.xml"));
    const FolderAround programs = folderAround(TEXT("\\Morvil\\PrinterDriver"), CSIDL_PROGRAM_FILES);
    m_programs = joined(programs.path, TEXT("\\Morvil"));
    m_hasPrograms = programs.hasOurs;
    m_programCommonFiles = joined(m_programs, TEXT("\\Common Files"));
    logState().baseFolder = dataRoot();
    if (!data.hasOurs) provideFolders(m_dataRoot, m_commonFiles);
}

void CMvConfig::buildPathJobApplication(const Path& version) {
    const Path parent = joined(m_dataRoot, TEXT("\\Plotkeeper"));
    m_jobApplicationFolder = joined(parent, TEXT("\\"), version.data());
    m_jobApplicationIni = joined(m_jobApplicationFolder, TEXT("\\pk.ini"));
    IniFile ini = provideJobApplicationIni(parent, m_jobApplicationFolder, m_jobApplicationIni);
    // The application path loses its last character whatever it is, the others only a backslash: so the partner programs write
    // and read them.
    if (const Path data = readPath(ini, kUserSetup, TEXT("DataPath")); data[0] != 0) m_jobApplicationFolder = withoutBackslash(data);
    m_applicationPath = withoutLast(readPath(ini, TEXT("AdvancedSetup"), TEXT("ApplicationPath")));
    m_spoolFolder = withoutBackslash(readPath(ini, kUserSetup, TEXT("SpoolPath")));
    m_workFolder = withoutBackslash(readPath(ini, kUserSetup, TEXT("WorkPath")));
}

void CMvConfig::buildPathDriver(const Path& version) {
    m_driverDataFolder = joined(m_dataRoot, TEXT("\\PrinterDriver"));
    m_driverVersionFolder = version[0] == 0 ? m_driverDataFolder : joined(m_driverDataFolder, TEXT("\\"), version.data());
    m_driverProgramFolder = joined(m_programs, TEXT("\\PrinterDriver"));
    logState().folder = driverDataFolder();
    provideFolders(m_driverDataFolder, m_driverVersionFolder);
    if (!m_hasPrograms) provideFolders(m_programs, m_driverProgramFolder);
    m_configurationFile = joined(m_driverDataFolder, TEXT("\\PrinterDriver.xml"));
    if (m_spoolFolder[0] == 0 || !folderExists(m_spoolFolder.data())) copyText(m_spoolFolder, fallbackSpoolFolder());
}

// The customer's list follows the catalogue's folder, whether or not it exists there.
const CMvConfig::ColourLists& CMvConfig::colourLists() const {
    if (!m_colourLists) {
        const WCHAR* const name = TEXT("\\ColorsGaspen.xml");
        const bool besideTheApplication = fileExists(joined(m_jobApplicationFolder, name).data());
        const Path& folder = besideTheApplication ? m_jobApplicationFolder : m_commonFiles;
        m_colourLists = {.gaspen = joined(folder, name), .customer = joined(folder, TEXT("\\ColorsCustomer.xml"))};
    }
    return *m_colourLists;
}

WString CMvConfig::fallbackSpoolFolder() const {
    const Path folder = joined(m_driverDataFolder, TEXT("\\Spool.Default"));
    provideFolder(folder);
    return WString(viewOf(folder));
}

}  // namespace morvil
