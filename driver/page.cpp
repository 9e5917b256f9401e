// page.cpp - begin and end of a page, or of one band of it.
#include "config/CMvConfig.h"
#include "driver/Hooks.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/host_information.h"
#include "driver/job_writer.h"
#include "driver/log/Log.h"
#include "driver/page_storage.h"
#include "driver/surface.h"
#include "platform/common/FileStream.h"

using namespace morvil;

namespace {

// Modes of the writer's bitmap section; a page that arrives in bands starts white.
constexpr int kCreateSection = 1;
constexpr int kCreateWhiteSection = 3;

bool hasFlag(DWORD flag) { return (state().configuration.flags & flag) != 0; }

void logPaperSize(const PDEV& pdev) {
    const SizeTemplate& page = pdev.configuration().size;
    if (page.takeFromApplication == 0) {
        logMorvil(1, kInformation, TEXT("DrvStartPage Size from Application isn't activated"), kLogEnd);
        return;
    }
    debugPrint(TEXT("DrvStartPage 100\n"));
    logMorvil(1, kInformation, TEXT("DrvStartPage Size from Application"), kLogEnd);
    logMorvil(1, kInformation, TEXT("DrvStartPage Size from Application Width=%f, Height=%f"), page.width, page.height, kLogEnd);
    debugPrint(TEXT("DrvStartPage 200\n"));
}

void openJobSections() {
    if (!state().spoolFile) return;
    CSpoolFile& writer = *state().spoolFile;
    writer.WriteHeader();
    writer.CreateBitmap(hasFlag(MV_FL_BITMAP_BANDING) ? kCreateWhiteSection : kCreateSection);
    writer.WriteVectorSection();
}

BOOL startPage(SURFOBJ* pso) {
    state().uiBandPosition = 0;
    debugPrint(TEXT("DrvStartPage\n"));
    logMorvil(1, kInformation, TEXT("DrvStartPage"), kLogEnd);
    PDEV* const pdev = validInstance(pso);
    if (pdev == nullptr) {
        logMorvil(1, kError, TEXT("Invalid PPDEV Handle DrvStartPage"), kLogEnd);
        return FALSE;
    }
    ++pdev->configuration().pageCounter;
    useConfigurationOf(*pdev);
    setPrinterConfiguration();
    recordCallingProcess();
    logMorvil(1, kInformation, TEXT("DrvStartPage pPDev=%X, pPDev->PlotDM.dm.dmPaperSize=%d"), low32(pdev), pdev->plotDM.dm.dmPaperSize,
              kLogEnd);
    logPaperSize(*pdev);
    if (!hasFlag(MV_FL_TMPJOB)) openJobSections();
    if (state().configuration.vectorJob == 0) {
        FilleSurface(*pso, state().configuration.processMode == kModeTest1 ? 255 : backgroundColour());
    }
    debugPrint(TEXT("DrvStartPage finished\n"));
    logMorvil(1, kInformation, TEXT("DrvStartPage finished"), kLogEnd);
    return TRUE;
}

PageBits processPage(SURFOBJ& surface) {
    if (state().configuration.processMode == kModeTest2) tracePage(surface);
    if (hasFlag(MV_FL_IMAGEOP_COLORADJUSTMENT)) adjustColours(surface);
    if (hasFlag(MV_FL_IMAGEOP_FLIP_HORIZONTAL)) flipHorizontal(surface);
    return hasFlag(kHalftoningBit) ? halftone(surface) : surfaceBits(surface);
}

// The user interface's preview: it reads the raw bits back and no job is made.
void writeTemporaryJob(const SURFOBJ& surface) {
    const CMvConfig folders;
    FileStream file(format(TEXT("%s\\ConfigDLLAbout.job.tmp"), folders.driverDataFolder()).c_str(), OpenMode::Create);
    const PageBits page = surfaceBits(surface);
    if (file.isOpen() && page.bits != nullptr && file.write({page.bits, page.bytes})) return;
    logMorvil(1, kError, TEXT("DrvSendPage ConfigDLLAbout.job.tmp not written, Error=%d"), GetLastError(), kLogEnd);
}

void storeAndComplete(const SURFOBJ& surface, const PageBits& page) {
    if (state().configuration.vectorJob == 0) storePage(surface, page);
    if (!hasFlag(MV_FL_BITMAP_BANDING)) completeJob();  // a banded page is completed behind its last band
}

BOOL sendPage(SURFOBJ* pso) {
    debugPrint(TEXT("DrvSendPage\n"));
    logMorvil(1, kInformation, TEXT("DrvSendPage"), kLogEnd);
    const PDEV* const pdev = validInstance(pso);
    if (pdev == nullptr) {
        logMorvil(1, kError, TEXT("DrvSendPage Invalid PPDEV Handle DrvStartPage"), kLogEnd);
        return FALSE;
    }
    useConfigurationOf(*pdev);
    dumpSurface(*pso, TEXT("drvsendpage_"));
    logMorvil(1, kInformation, TEXT("DrvSendPage pPDev=%X, lDelta=%ld, cjBits=%lu, pvBits=%X, BitmapFormat=%d, size.x=%d, size.y=%d"),
              low32(pdev), pso->lDelta, pso->cjBits, low32(pso->pvBits), pso->iBitmapFormat, pso->sizlBitmap.cx, pso->sizlBitmap.cy,
              kLogEnd);
    recordCallingProcess();
    const PageBits page = processPage(*pso);
    if (hasFlag(MV_FL_TMPJOB)) {
        writeTemporaryJob(*pso);
    } else {
        storeAndComplete(*pso, page);
    }
    debugPrint(TEXT("DrvSendPage finished\n"));
    logMorvil(1, kInformation, TEXT("DrvSendPage finished"), kLogEnd);
    return TRUE;
}

}  // namespace

extern "C" {

BOOL APIENTRY DrvStartPage(SURFOBJ* pso) {
    return guarded(TEXT("DrvStartPage"), BOOL{FALSE}, [=] { return startPage(pso); });
}

BOOL APIENTRY DrvSendPage(SURFOBJ* pso) {
    return guarded(TEXT("DrvSendPage"), BOOL{FALSE}, [=] { return sendPage(pso); });
}

}  // extern "C"
