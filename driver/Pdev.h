// Pdev.h - the device instance and the private devmode, whose layouts the engine, the user interface and the driver share.
// An instance belongs to one device context: allocated by DrvEnablePDEV, freed by DrvDisablePDEV; nobody else keeps one.
#pragma once

#include <cstddef>
#include <memory>

#include "config/ConfigurationRecord.h"
#include "platform/platform.h"

namespace morvil {

struct PlotDM {
    DEVMODEW dm;
    BYTE privateHead[12];  // not used by the driver
    ConfigurationRecord configuration;
    BYTE privateTail[24];  // not used by the driver
};
inline constexpr WORD kPrivateDevmodeBytes = 1788;
static_assert(sizeof(DEVMODEW) == 220);
static_assert(sizeof(PlotDM) == 2008 && sizeof(PlotDM) == sizeof(DEVMODEW) + kPrivateDevmodeBytes);
static_assert(offsetof(PlotDM, configuration) == 232);

inline constexpr DWORD kJobAborted = 0x80000000U;  // in PDEV::flags

struct PDEV {
    char magic[4];  // "Plot"
    DWORD size;
    DWORD flags;
    HDEV hdev;           // set by DrvCompletePDEV
    HSURF otherSurface;  // never made by the driver, but deleted like the page surface
    HSURF hBitmap;       // the page surface, or its band
    HPALETTE hPalette;
    SURFOBJ* pso;  // of the latest call, not owned
    HANDLE hPrinter;
    PlotDM plotDM;
    DWORD dpi;
    BYTE reserved[40];
    char trailer[4];  // "PDEV"

    ConfigurationRecord& configuration() { return plotDM.configuration; }
    [[nodiscard]] const ConfigurationRecord& configuration() const { return plotDM.configuration; }
};
static_assert(sizeof(PDEV) == 2120);
static_assert(offsetof(PDEV, hdev) == 16 && offsetof(PDEV, hPrinter) == 56);
static_assert(offsetof(PDEV, plotDM) == 64 && offsetof(PDEV, dpi) == 2072 && offsetof(PDEV, trailer) == 2116);

// Deletes the palette and frees the record.
struct PdevRelease {
    void operator()(PDEV* pdev) const noexcept;
};
using PdevOwner = std::unique_ptr<PDEV, PdevRelease>;

// Zero-filled but for magic, size and trailer; empty without memory.
PdevOwner allocatePdev();

inline PDEV* pdevOf(DHPDEV dhpdev) { return reinterpret_cast<PDEV*>(dhpdev); }
inline DHPDEV handleOf(PDEV* pdev) { return reinterpret_cast<DHPDEV>(pdev); }

// Whether the handle is not null and begins and ends as an instance does.
bool isInstance(DHPDEV dhpdev);

// The instance behind a surface; null, with last error 6, when it is none, and null once the engine has reported the job
// aborted. Records the surface in the instance.
PDEV* validInstance(SURFOBJ* pso);

}  // namespace morvil
