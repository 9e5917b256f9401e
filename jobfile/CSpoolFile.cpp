// CSpoolFile.cpp - the life of a job writer and the naming of its file. The other parts of the class: HeaderWriter.cpp,
// BitmapSection.cpp, VectorCommands.cpp, Completion.cpp.
#include "jobfile/CSpoolFile.h"

#include <algorithm>

#include "driver/log/Log.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr std::size_t kNumberCharacters = 5;  // a blank and four digits
constexpr int kLargestNumber = 9999;
constexpr int kProbeTries = 20;
constexpr int kRefusedTries = 5;
constexpr DWORD kProbePause = 5;  // milliseconds

// Whether the folder (with its backslash) takes a new file. The probe is created exclusively, so another process may be at it
// in the same moment: that is waited for, and when it lasts, the folder evidently takes files. On Windows a probe that is just
// being removed refuses access for a moment, so a refusal is only believed when it stays.
bool isWritable(const WString& folder) {
    const WString probe = format(kProbeFilePath, folder);
    for (int i = 1;; ++i) {
        const HANDLE file = CreateFileW(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            DeleteFileW(probe.c_str());
            return true;
        }
        const DWORD error = GetLastError();
        if (error == ERROR_SHARING_VIOLATION && i == kProbeTries) return true;
        if (error != ERROR_SHARING_VIOLATION && (error != ERROR_ACCESS_DENIED || i >= kRefusedTries)) return false;
        Sleep(kProbePause);
    }
}

bool endsWithNumber(WStringView name) {
    if (name.size() <= kNumberCharacters || name[name.size() - kNumberCharacters] != TEXT(' ')) return false;
    return name.substr(name.size() - kNumberCharacters + 1).find_first_not_of(TEXT("0123456789")) == WStringView::npos;
}

// The name with the next number; empty when there is none. Digits that the title brought along are no number.
WString withNextNumber(const WString& name, const WString& title) {
    WString base = name;
    int number = 1;
    if (endsWithNumber(name) && title.find(name.substr(name.size() - kNumberCharacters)) == WString::npos) {
        base.resize(name.size() - kNumberCharacters);
        number = 0;
        for (const WCHAR digit : name.substr(name.size() - kNumberCharacters + 1)) number = number * 10 + (digit - TEXT('0'));
        ++number;
    }
    if (number > kLargestNumber) return {};
    return format(TEXT("%s %04d"), WStringView(base).substr(0, kJobNameCharacters - kNumberCharacters), number);
}

WString pathOf(const WString& folder, const WString& jobName, const WCHAR* extension) {
    return format(TEXT("%s%s.%s"), folder, CJobName::asFileName(jobName), extension);
}

}  // namespace

CSpoolFile::CSpoolFile() : m(std::make_unique<Members>()) {
    m->driverVersion = kDefaultDriverVersion;
    logMorvil(1, kInformation, TEXT("SpoolFile wird gestartet, Spool=%X"), low32(this), kLogEnd);
}

CSpoolFile::~CSpoolFile() {
    logMorvil(1, kInformation, TEXT("SpoolFile  wird geschlossen, Spool=%X"), low32(this), kLogEnd);
    m->discard();
}

bool CSpoolFile::SetJobName(const WCHAR* name, WCHAR* copyOut) {
    if (name == nullptr)
        logMorvil(1, kError, TEXT("CSpoolFile::SetJobName Invalid JobName"), kLogEnd);
    else
        logMorvil(1, kInformation, TEXT("CSpoolFile::SetJobName=%s"), name, kLogEnd);

    const bool usesGiven = m->config.job.nameMode == 1 && !m->hasFlag(MV_FL_JOBNAME_FROM_CONFIG);
    const WString stored(viewOf(std::span<const WCHAR>(m->config.job.name)));
    const WCHAR* chosen = usesGiven ? name : stored.c_str();
    // The writer's own name is named again for the next page: the builder is asked with what it gave, and counts on from there.
    if (chosen != nullptr && !m->jobName.empty() && m->jobName == chosen)
        chosen = m->builtName.c_str();
    else
        m->title = viewOf(chosen);

    m->naming.getDirectories();
    const WString asked(viewOf(chosen));  // `chosen` may be the very text that changes
    m->builtName = viewOf(m->naming.getJobName(chosen == nullptr ? nullptr : asked.c_str()));
    m->jobName = m->builtName.substr(0, kJobNameCharacters);
    if (copyOut != nullptr) {  // all 50 characters may be text: there is a terminator behind a shorter name alone
        std::fill_n(copyOut, kJobNameCharacters, WCHAR{0});
        m->jobName.copy(copyOut, kJobNameCharacters);
    }
    logMorvil(1, kInformation, TEXT("CSpoolFile::SetJobName result=%s"), m->jobName, kLogEnd);
    return true;
}

bool CSpoolFile::SetPrinterConfig(const ConfigurationRecord* config) {
    logMorvil(1, kInformation, TEXT("SetPrinterConfig pPrinterConfig=%X"), low32(config), kLogEnd);
    if (config == nullptr) return true;
    m->config = *config;
    m->naming.setPrinterConfig(config);
    return true;
}

void CSpoolFile::Members::chooseSpoolFolder() {
    spoolFolder = format(TEXT("%s\\"), folders.spoolFolder());
    if (isWritable(spoolFolder)) return;
    logMorvil(1, kError, TEXT("Write acces denied to spool folder"), kLogEnd);
    spoolFolder = format(TEXT("%s\\"), folders.fallbackSpoolFolder());
}

bool CSpoolFile::BuildSpoolFileName(const WCHAR* jobName) {
    logMorvil(1, kInformation, TEXT("BuildSpoolFileName JobName=%s"), jobName, kLogEnd);
    m->discard();
    m->jobFile.clear();
    m->chooseSpoolFolder();
    logMorvil(1, kInformation, TEXT("SpoolFilepath=%s"), m->spoolFolder, kLogEnd);
    m->backupFile = format(TEXT("%s%s"), m->spoolFolder, kBackupFileName);
    const WString asked(viewOf(jobName));  // naming changes the writer's own name, which `jobName` may be
    SetJobName(jobName);
    if (jobName == nullptr) {
        logMorvil(1, kError, TEXT("BuildSpoolFileName JobName Ptr non valid"), kLogEnd);
        return false;
    }
    if (asked.empty() || m->jobName.empty()) {
        logMorvil(1, kError, TEXT("BuildSpoolFileName JobName Length non valid"), kLogEnd);
        return false;
    }
    if (!m->claimFileName()) return false;
    logMorvil(1, kInformation, TEXT("SpoolFileName=%s"), m->jobFile, kLogEnd);
    return true;
}

// Two processes that name a job in the same moment find the same name free. The one that gets the claim keeps it, the other
// takes the next number; and a job that was finished between naming and claiming is not replaced either.
bool CSpoolFile::Members::claimFileName() {
    while (!jobName.empty()) {
        const WString path = pathOf(spoolFolder, jobName, kUnfinishedExtension);
        if (claim.take(path) && !fileExists(pathOf(spoolFolder, jobName, kFinishedExtension).c_str())) {
            jobFile = path;
            return true;
        }
        jobName = withNextNumber(jobName, title);
    }
    claim.release();
    return false;
}

void CSpoolFile::Members::discard() {
    vectors.close();
    if (state == JobState::Unfinished) DeleteFileW(jobFile.c_str());
    state = JobState::None;
    claim.release();
}

const WCHAR* CSpoolFile::jobName() const { return m->jobName.c_str(); }
const WCHAR* CSpoolFile::jobFilePath() const { return m->jobFile.c_str(); }
const WCHAR* CSpoolFile::finishedFilePath() const { return m->finishedFile.c_str(); }

}  // namespace morvil
