#include "config/CJobName.h"

#include <algorithm>
#include <array>

#include "config/CPrinterConfig.h"
#include "config/JobNameRules.h"
#include "config/JobNumber.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

constexpr std::size_t kNumberCharacters = 5;  // a blank and four digits
constexpr std::size_t kUserCharacters = 100;

template <typename... Args>
void line(int level, const WCHAR* text, const Args&... arguments) {
    logMorvil(1, level, text, arguments..., kLogEnd);
}

WString asFolder(WStringView path) {
    WString folder(path);
    if (!folder.empty() && !folder.ends_with('\\')) folder += '\\';
    return folder;
}

WString currentUser() {
    std::array<WCHAR, kUserCharacters + 1> name{};
    auto characters = static_cast<DWORD>(name.size());
    return GetUserNameW(name.data(), &characters) != FALSE ? WString(viewOf(name)) : WString();
}

bool forbiddenInFileNames(WCHAR c) { return c < ' ' || c == 0x7F || WStringView(TEXT("\\/:*?\"<>|")).find(c) != WStringView::npos; }

bool isDigit(WCHAR c) { return c >= '0' && c <= '9'; }

// Where the part of a file name ends that the system looks at when it looks for a device, however the name goes on. A number that
// the naming adds is not part of it, so that all jobs of one name are changed alike.
std::size_t endOfDeviceName(WStringView file) {
    std::size_t end = std::min(file.find('.'), file.size());
    const std::size_t digits = file.substr(0, end).find_last_not_of(TEXT("0123456789")) + 1;
    if (digits < end && digits > 0 && file[digits - 1] == ' ') end = digits;
    return file.substr(0, end).find_last_not_of(' ') + 1;
}

bool isDevice(WStringView name) {
    static constexpr std::array<WStringView, 6> kDevices{TEXT("CON"), TEXT("PRN"), TEXT("AUX"), TEXT("NUL"), TEXT("CONIN$"), TEXT("CONOUT$")};
    WString upper(name);
    std::ranges::transform(upper, upper.begin(), [](WCHAR c) { return c >= 'a' && c <= 'z' ? static_cast<WCHAR>(c - 'a' + 'A') : c; });
    const bool port = upper.size() == 4 && (upper.starts_with(TEXT("COM")) || upper.starts_with(TEXT("LPT"))) && isDigit(upper[3]);
    return port || std::ranges::find(kDevices, WStringView(upper)) != kDevices.end();
}

}  // namespace

CJobName::CJobName() = default;

void CJobName::setPrinterConfig(const ConfigurationRecord* record) {
    if (record != nullptr) m_config = *record;
}

void CJobName::getDirectories() {
    const CMvConfig config;
    m_folders = {asFolder(viewOf(config.spoolFolder())), asFolder(viewOf(config.workFolder())), {}};
    if (!folderExists(config.spoolFolder())) {
        m_folders.fallback = asFolder(config.fallbackSpoolFolder());  // made here, so only when it is needed
        m_folders.spool = m_folders.fallback;
        line(kError, TEXT("CJobName::GetDirectories, can't access Spool Directory"));
    }
    line(kInformation, TEXT("CJobName::GetDirectories, User=%s, mSpoolDirectory=%s"), currentUser(), m_folders.spool);
}

const WCHAR* CJobName::getJobName(const WCHAR* documentName) {
    const WString title(documentName == nullptr ? viewOf(kDefaultJobName) : viewOf(documentName));
    if (m_folders.spool.empty()) getDirectories();
    // A name that was given here before is a job name already: only its number is found anew.
    const bool again = !m_base.empty() && title == viewOf(m_name);
    if (!again) m_base = usableName(title);
    if (m_base.empty()) {
        m_name = {};
        return m_name.data();
    }
    line(kInformation, TEXT("CJobName::GetJobName, Spool=%s, Work=%s"), m_folders.spool, m_folders.work);
    const int inSpool = nextFreeNumber(m_folders.spool, m_base);
    const int inWork = nextFreeNumber(m_folders.work, m_base);
    line(kInformation, TEXT("CJobName::GetJobName, Index1=%d, Index2=%d"), inSpool, inWork);
    const int number = std::max(inSpool, inWork);
    copyText(m_name, number == 0 ? m_base.substr(0, kLongestJobName) : numberedName(m_base, number));
    return m_name.data();
}

WString CJobName::usableName(WStringView title) const {
    return replaceUnusable(GetFileNameFromJobName(title.substr(0, kPathCharacters - 1)));
}

WString CJobName::GetFileNameFromJobName(WStringView title) const {
    const int format = jobNameFormatOf(m_config.job, m_config.application.name);
    line(kInformation, TEXT("CJobName::GetFileNameFromJobName, JobNameFormat=%d"), format);
    return reduceTitle(title, format);
}

WString CJobName::withoutNumber(WStringView name) {
    if (name.size() <= kNumberCharacters) return WString(name);
    const WStringView number = name.substr(name.size() - kNumberCharacters);
    const bool numbered = number.front() == ' ' && std::ranges::all_of(number.substr(1), isDigit);
    return WString(numbered ? name.substr(0, name.size() - kNumberCharacters) : name);
}

WString CJobName::asFileName(WStringView name) {
    WString file(name);
    std::ranges::replace_if(file, forbiddenInFileNames, '_');
    const std::size_t kept = file.find_last_not_of(TEXT(". ")) + 1;  // 0 when there is nothing else
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(kept), file.end(), WCHAR('_'));
    if (const std::size_t end = endOfDeviceName(file); isDevice(WStringView(file).substr(0, end))) file[end - 1] = '_';
    return file;
}

}  // namespace morvil
