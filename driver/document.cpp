// document.cpp - begin and end of a document: name of the job, identity of the printing user, life of the job writer.
#include <algorithm>

#include "driver/Hooks.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/host_information.h"
#include "driver/impersonation.h"
#include "driver/job_writer.h"
#include "driver/log/Log.h"

using namespace morvil;

namespace {

// Null, empty and overlong titles do not name a job.
bool isUsableTitle(const WCHAR* docName) {
    if (docName == nullptr || docName[0] == 0) return false;
    return std::find(docName, docName + kPathCharacters, WCHAR{0}) != docName + kPathCharacters;
}

void nameJob(PDEV& pdev, const WCHAR* docName) {
    CSpoolFile& writer = *state().spoolFile;
    JobIdentification& job = pdev.configuration().job;
    if (!isUsableTitle(docName)) {
        logMorvil(1, kInformation, TEXT("JobName from configuration=%s"), viewOf(std::span<const WCHAR>(job.name)), kLogEnd);
        writer.SetJobName(WString(viewOf(std::span<const WCHAR>(job.name))).c_str());  // a full field has no terminator
        return;
    }
    writer.SetJobName(docName, job.name);
}

void logStart(const PDEV& pdev, const WCHAR* docName, DWORD jobId) {
    std::array<WCHAR, kPathCharacters> os{};
    logMorvil(1, kInformation, TEXT("DrvStartDoc pPDev=%X, OS=%s"), low32(&pdev), osVersionText(os), kLogEnd);
    dumpPrinterInformation(pdev.hPrinter);
    const SizeTemplate& page = pdev.configuration().size;
    logMorvil(1, kInformation, TEXT("DrvStartDoc ghInstance=%d, DocName=%s, JobId=%d, fWidth=%.2f, fHeight=%.2f"),
              low32(state().ghInstance), docName, jobId, page.width, page.height, kLogEnd);
}

BOOL startDocument(SURFOBJ* pso, const WCHAR* docName, DWORD jobId) {
    PDEV* const pdev = validInstance(pso);
    if (pdev == nullptr) {
        logMorvil(1, kError, TEXT("DrvStartDoc Invalid pPDev"), kLogEnd);
        return FALSE;
    }
    useConfigurationOf(*pdev);
    logStart(*pdev, docName, jobId);
    recordCallingProcess();
    const PrintingApplication& application = state().configuration.application;
    becomePrintingUser(application.processId);
    if ((pdev->configuration().flags & MV_FL_TMPJOB) == 0) {
        logMorvil(1, kInformation, TEXT("PrintingApp=%s"), viewOf(std::span<const WCHAR>(application.name)), kLogEnd);
        setPrinterConfiguration();
        nameJob(*pdev, docName);
        DriverInfo2MorvilConf();
    }
    logMorvil(1, kInformation, TEXT("DrvStartDoc finished"), kLogEnd);
    return TRUE;
}

BOOL endDocument(SURFOBJ* pso, FLONG flags) {
    const PDEV* const pdev = validInstance(pso);
    if (pdev == nullptr) {
        logMorvil(1, kError, TEXT("DrvEndDoc Invalid pPDev"), kLogEnd);
        return FALSE;
    }
    logMorvil(1, kInformation, TEXT("DrvEndDoc pPDev=%X"), low32(pdev), kLogEnd);
    recordCallingProcess();
    endImpersonation();
    recordCallingProcess();
    logMorvil(1, kInformation, TEXT("DrvEndDoc delete SpoolObject"), kLogEnd);
    if (state().spoolFile && (flags & ED_ABORTDOC) != 0) state().spoolFile->Abort();
    state().spoolFile.reset();
    return TRUE;
}

}  // namespace

extern "C" {

BOOL APIENTRY DrvStartDoc(SURFOBJ* pso, LPWSTR docName, DWORD jobId) {
    return guarded(TEXT("DrvStartDoc"), BOOL{FALSE}, [=] { return startDocument(pso, docName, jobId); });
}

BOOL APIENTRY DrvEndDoc(SURFOBJ* pso, FLONG flags) {
    return guarded(TEXT("DrvEndDoc"), BOOL{FALSE}, [=] { return endDocument(pso, flags); });
}

}  // extern "C"
