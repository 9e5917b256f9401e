// Completion.cpp - finishes a job: the work of its process mode, then the name under which the job application takes the file.
// Every step logs and goes on; only a file that is not whole is kept from the job application.
#include <array>

#include "driver/log/Log.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

struct ModeLine {
    WORD processMode;
    const WCHAR* text;
};
constexpr std::array<ModeLine, 7> kModeLines{{
    {kModeStandard, TEXT("SpoolFile ProcessMode=Standard")},
    {kModeStamp, TEXT("SpoolFile ProcessMode=Stamp")},
    {kModeColourStamp, TEXT("SpoolFile ProcessMode=ColorStamp")},
    {kModeRelief, TEXT("SpoolFile ProcessMode=Relief")},
    {kModeLayer, TEXT("SpoolFile ProcessMode=Layer")},
    {kModeTest2, TEXT("SpoolFile ProcessMode=Test2")},
    {kModeTest3, TEXT("SpoolFile ProcessMode=Test3")},
}};

constexpr WORD kColourBitmap = 2;

void logMode(const ConfigurationRecord& config) {
    for (const ModeLine& line : kModeLines) {
        if (line.processMode == config.processMode) logMorvil(1, kInformation, line.text, kLogEnd);
    }
    if (config.processMode != kModeStandard) return;
    if (config.processColour == kColourBitmap) {
        logMorvil(1, kInformation, TEXT("SpoolFile 8BPP Color Bitmap"), kLogEnd);
        return;
    }
    // The page was halftoned when it was sent; only the lines are left of the step.
    logMorvil(1, kInformation, TEXT("SpoolFile Bitmap wird gerastert"), kLogEnd);
    logMorvil(1, kInformation, TEXT("SpoolFile Bitmap fertig gerastert"), kLogEnd);
}

// The path with its last three characters replaced.
WString finishedPath(const WString& jobFile) {
    return jobFile.substr(0, jobFile.size() - (std::size(kUnfinishedExtension) - 1)) + kFinishedExtension;
}

}  // namespace

bool CSpoolFile::Complete() {
    logMode(m->config);
    m->giveAway();
    return true;
}

void CSpoolFile::Members::giveAway() {
    finishedFile.clear();
    if (state != JobState::Unfinished) {
        logMorvil(1, kError, TEXT("Error renaming Tsf"), kLogEnd);
        return;
    }
    if (!isWhole) {
        logMorvil(1, kError, TEXT("Error SpoolFile incomplete, no Tsf: %s"), jobFile, kLogEnd);
        discard();
        return;
    }
    const WString target = finishedPath(jobFile);
    // Replaces a file of that name in one step, so that there is never none.
    if (MoveFileExW(jobFile.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE)
        finishedFile = target;
    else
        logMorvil(1, kError, TEXT("Error renaming Tsf"), kLogEnd);
    state = JobState::Finished;
    claim.release();
}

void CSpoolFile::Abort() { m->discard(); }

void CSpoolFile::MarkDamaged() { m->isWhole = false; }

}  // namespace morvil
