// surface.cpp - creates the page surface, in bands when the engine has no room for the whole page, and deletes it.
#include "driver/surface.h"

#include <cstring>
#include <utility>

#include "driver/Hooks.h"
#include "driver/State.h"
#include "driver/guard.h"
#include "driver/log/Log.h"

using namespace morvil;

namespace {

constexpr FLONG kHooks =
    HOOK_BITBLT | HOOK_STRETCHBLT | HOOK_TEXTOUT | HOOK_STROKEPATH | HOOK_FILLPATH | HOOK_COPYBITS | HOOK_STROKEANDFILLPATH;
static_assert(kHooks == 0x4EB);

constexpr double kLargestTestBand = 10'000'000.0;  // bytes
constexpr LONG kRetryStep = 100;                   // rows
constexpr LONG kRetryReserve = 10;                 // a band takes this part of what the engine could give at the most

struct SurfaceRequest {
    SIZEL size;
    SurfaceFormat format;
    FLONG flags;
};

HBITMAP createBitmap(const SurfaceRequest& request) {
    return EngCreateBitmap(request.size, static_cast<LONG>(request.format.rowBytes), request.format.format, request.flags, nullptr);
}

HSURF surfaceOf(HBITMAP bitmap) { return reinterpret_cast<HSURF>(bitmap); }

FLONG creationFlags(DWORD flags) {
    const bool bottomUp = (flags & (MV_FL_IMAGEOP_BOTTOM_UP | MV_FL_IMAGEOP_FLIP_VERTICAL)) != 0;
    return bottomUp ? BMF_NOZEROINIT : BMF_TOPDOWN | BMF_NOZEROINIT;
}

void logDate() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    formatInto(state().date, TEXT("%02d/%02d/%02d"), now.wMonth, now.wDay, now.wYear % 100);
}

void halveForTestBands(SurfaceRequest& request, DWORD& flags) {
    while (static_cast<double>(request.format.rowBytes) * static_cast<double>(request.size.cy) > kLargestTestBand && request.size.cy >= 2) {
        flags |= MV_FL_BITMAP_BANDING;
        request.size.cy >>= 1;
    }
    logMorvil(1, kInformation, TEXT("Mark surface for banding"), kLogEnd);
}

// Finds out how many rows the engine can give and settles for a tenth of them, so that the system keeps room to work.
HBITMAP createSmaller(SurfaceRequest& request, DWORD& flags) {
    for (LONG attempts = request.size.cy; attempts > kRetryStep; attempts -= kRetryStep) {
        if (request.size.cy > kRetryStep) {
            request.size.cy -= kRetryStep;
            logMorvil(1, kError, TEXT("DrvEnableSurface, try SurfSize.cy=%d"), request.size.cy, kLogEnd);
        }
        HBITMAP bitmap = createBitmap(request);
        if (bitmap == nullptr) continue;
        EngDeleteSurface(surfaceOf(bitmap));
        request.size.cy /= kRetryReserve;
        bitmap = createBitmap(request);
        if (bitmap == nullptr) continue;
        logMorvil(1, kInformation, TEXT("DrvEnableSurface, success SurfSize.cy=%d"), request.size.cy, kLogEnd);
        flags |= MV_FL_BITMAP_BANDING;
        return bitmap;
    }
    return nullptr;
}

HSURF createSurface(PDEV& pdev) {
    ConfigurationRecord& configuration = pdev.configuration();
    SurfaceRequest request{{configuration.size.pixelWidth, configuration.size.pixelHeight}, surfaceFormat(configuration), 0};
    if (configuration.processMode == kModeTest3) halveForTestBands(request, configuration.flags);
    logMorvil(1, kInformation, TEXT("DrvEnableSurface SurfSize.x=%d, SurfSize.y=%d, uiLineLength=%d, uiBPP=%d, ProcessMode=%d"),
              request.size.cx, request.size.cy, request.format.rowBytes, request.format.format, configuration.processMode, kLogEnd);
    request.flags = creationFlags(configuration.flags);
    const HBITMAP bitmap = createBitmap(request);
    if (bitmap != nullptr) {
        logMorvil(1, kInformation, TEXT("DrvEnableSurface EngCreateBitmap finished,HBitmap=%X"), low32(bitmap), kLogEnd);
        return surfaceOf(bitmap);
    }
    logMorvil(1, kError, TEXT("DrvEnableSurface Fehler bei EngCreateBitmap"), kLogEnd);
    return surfaceOf(createSmaller(request, configuration.flags));
}

void deleteSurfaces(PDEV& pdev) {
    for (HSURF* const surface : {&pdev.otherSurface, &pdev.hBitmap}) {
        if (*surface != nullptr) EngDeleteSurface(std::exchange(*surface, nullptr));
    }
}

bool markForBanding(PDEV& pdev) {
    if (EngMarkBandingSurface(pdev.hBitmap) == FALSE) {
        logMorvil(1, kInformation, TEXT("DrvEnableSurface, Error during EngMarkBandingSurface"), kLogEnd);
        return false;
    }
    logMorvil(1, kInformation, TEXT("DrvEnableSurface, Surface marked for Banding"), kLogEnd);
    return true;
}

void disableSurface(DHPDEV dhpdev) {
    logMorvil(1, kInformation, TEXT("DrvDisableSurface pPDev=%X"), low32(dhpdev), kLogEnd);
    if (isInstance(dhpdev)) deleteSurfaces(*pdevOf(dhpdev));
}

HSURF enableSurface(DHPDEV dhpdev) {
    if (!isInstance(dhpdev)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    PDEV& pdev = *pdevOf(dhpdev);
    logDate();
    logMorvil(1, kInformation, TEXT("%s, DrvEnableSurface, pPDev=%X"), state().date.data(), low32(&pdev), kLogEnd);
    deleteSurfaces(pdev);
    pdev.hBitmap = createSurface(pdev);
    if ((pdev.configuration().flags & MV_FL_BITMAP_BANDING) != 0 && !markForBanding(pdev)) {
        deleteSurfaces(pdev);
        return nullptr;
    }
    logMorvil(1, kInformation, TEXT("DrvEnableSurface vor EngAssociateSurface"), kLogEnd);
    if (EngAssociateSurface(pdev.hBitmap, pdev.hdev, kHooks) == FALSE) {
        logMorvil(1, kError, TEXT("DrvEnableSurface Fehler bei EngAssociateSurface"), kLogEnd);
        disableSurface(dhpdev);
        return nullptr;
    }
    logMorvil(1, kInformation, TEXT("DrvEnableSurface pPDev->hBitmap=%X"), low32(pdev.hBitmap), kLogEnd);
    logMorvil(1, kInformation, TEXT("DrvEnableSurface fertig"), kLogEnd);
    return pdev.hBitmap;
}

constexpr ULONG roundUpToFour(ULONG bytes) { return (bytes + 3) / 4 * 4; }

}  // namespace

namespace morvil {

SurfaceFormat surfaceFormat(const ConfigurationRecord& configuration) {
    const ULONG width = configuration.size.pixelWidth;
    const SurfaceFormat oneBit{BMF_1BPP, roundUpToFour((width + 7) / 8)};
    const SurfaceFormat eightBit{BMF_8BPP, roundUpToFour(width)};
    switch (configuration.processMode) {
        case kModeStandard: return configuration.processColour == 2 ? eightBit : oneBit;
        case kModeColourStamp:
        case kModeRelief:
        case kModeLayer: return eightBit;
        case kModeTest2:
        case kModeTest3:
        case kModeTest4:
        case kModeTest5:
        case kModeTest6:
        case kModeTest7: return {BMF_24BPP, roundUpToFour(3 * width)};
        default: return oneBit;
    }
}

bool FilleSurface(const SURFOBJ& surface, DWORD colour) {
    SURFOBJ* const locked = EngLockSurface(surface.hsurf);
    if (locked == nullptr) {
        logMorvil(1, kError, TEXT("FilleSurface Fehler bei EngLockSurface"), kLogEnd);
        return false;
    }
    if (locked->pvBits != nullptr) std::memset(locked->pvBits, static_cast<int>(colour & 0xFF), locked->cjBits);
    EngUnlockSurface(locked);
    return true;
}

DWORD backgroundColour() {
    const ConfigurationRecord& configuration = state().configuration;
    const DWORD white = processColourTable().getWhiteIndex(&configuration);
    if (configuration.raster != 0) return white != 0 ? 0xFFFFFF : 0;
    return 0xFFFF00 | white;
}

}  // namespace morvil

extern "C" {

HSURF APIENTRY DrvEnableSurface(DHPDEV dhpdev) {
    return guarded(TEXT("DrvEnableSurface"), HSURF{nullptr}, [=] { return enableSurface(dhpdev); });
}

VOID APIENTRY DrvDisableSurface(DHPDEV dhpdev) {
    guarded(TEXT("DrvDisableSurface"), [=] { disableSurface(dhpdev); });
}

}  // extern "C"
