// Completion.cpp - finishes a job: the work of its process mode, then the name under which the job application takes the file.
// Every step logs and goes on; only a file that is not whole is kept from the job application.
#include <array>
#include <exception>

#include "driver/log/Log.h"
#include "jobfile/BorderCompletion.h"
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
    if (m->config.processMode == kModeColourStamp) completeBorder();
    if (m->hasFlag(MV_FL_SHRINK_TO_BOUNDING_BOX)) {
        logMorvil(1, kInformation, TEXT("Shringk to bounding box"), kLogEnd);
        doShrinkToBoundigbox();
        logMorvil(1, kInformation, TEXT("Shringk to bounding box finished"), kLogEnd);
    }
    m->giveAway();
    return true;
}

void CSpoolFile::completeBorder() {
    if (m->state != JobState::Unfinished || !m->hasBitmapSection()) return;
    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    if (!file.isOpen()) {
        logMorvil(1, kError, TEXT("ErrorMsg=%s"), TEXT("job file cannot be opened"), kLogEnd);
        return;
    }
    const LentStream lent(m->bitmap, file);
    BorderCompletion border(m->bitmap);
    try {
        border.run();
    } catch (const std::exception& error) {
        logMorvil(1, kError, TEXT("ErrorMsg=%s"), fromUtf8(error.what()), kLogEnd);
    }
    // An image that could not be read is still what it was, unless somebody cut the file.
    m->isWhole = m->isWhole && !border.spoiled() && file.size() >= m->vectors.end();
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
