// DriverTable.h - the functions that a driver offers, taken from the table that its enable call hands out. The engine calls a
// driver through this record alone. A function that the driver does not offer is null.
#pragma once

#include <optional>

#include "engine/Document.h"

namespace morvil::engine {

struct DriverTable {
    VOID (*disableDriver)() = nullptr;
    DHPDEV (*enablePDEV)(DEVMODEW*, PWSTR, ULONG, HSURF*, ULONG, ULONG*, ULONG, DEVINFO*, HDEV, PWSTR, HANDLE) = nullptr;
    BOOL (*resetPDEV)(DHPDEV, DHPDEV) = nullptr;
    VOID (*completePDEV)(DHPDEV, HDEV) = nullptr;
    VOID (*disablePDEV)(DHPDEV) = nullptr;
    HSURF (*enableSurface)(DHPDEV) = nullptr;
    VOID (*disableSurface)(DHPDEV) = nullptr;
    BOOL (*strokePath)(SURFOBJ*, PATHOBJ*, CLIPOBJ*, XFORMOBJ*, BRUSHOBJ*, POINTL*, LINEATTRS*, MIX) = nullptr;
    BOOL (*strokeAndFillPath)(SURFOBJ*, PATHOBJ*, CLIPOBJ*, XFORMOBJ*, BRUSHOBJ*, LINEATTRS*, BRUSHOBJ*, POINTL*, MIX, FLONG) = nullptr;
    BOOL (*fillPath)(SURFOBJ*, PATHOBJ*, CLIPOBJ*, BRUSHOBJ*, POINTL*, MIX, FLONG) = nullptr;
    BOOL (*bitBlt)(SURFOBJ*, SURFOBJ*, SURFOBJ*, CLIPOBJ*, XLATEOBJ*, RECTL*, POINTL*, POINTL*, BRUSHOBJ*, POINTL*, ROP4) = nullptr;
    BOOL (*stretchBlt)(SURFOBJ*, SURFOBJ*, SURFOBJ*, CLIPOBJ*, XLATEOBJ*, COLORADJUSTMENT*, POINTL*, RECTL*, RECTL*, POINTL*, ULONG) = nullptr;
    BOOL (*copyBits)(SURFOBJ*, SURFOBJ*, CLIPOBJ*, XLATEOBJ*, RECTL*, POINTL*) = nullptr;
    ULONG (*getGlyphMode)(DHPDEV, FONTOBJ*) = nullptr;
    BOOL (*textOut)(SURFOBJ*, STROBJ*, FONTOBJ*, CLIPOBJ*, RECTL*, RECTL*, BRUSHOBJ*, BRUSHOBJ*, POINTL*, MIX) = nullptr;
    BOOL (*sendPage)(SURFOBJ*) = nullptr;
    BOOL (*startPage)(SURFOBJ*) = nullptr;
    BOOL (*startDoc)(SURFOBJ*, PWSTR, DWORD) = nullptr;
    BOOL (*endDoc)(SURFOBJ*, FLONG) = nullptr;
    BOOL (*startBanding)(SURFOBJ*, POINTL*) = nullptr;
    BOOL (*nextBand)(SURFOBJ*, POINTL*) = nullptr;
    ULONG (*escape)(SURFOBJ*, ULONG, ULONG, PVOID, ULONG, PVOID) = nullptr;
    ULONG (*ditherColor)(DHPDEV, ULONG, ULONG, ULONG*) = nullptr;

    // Everything without which no page can be printed is there.
    [[nodiscard]] bool complete() const;
};

// Enables the driver. Nothing when it refuses, or when its table lacks what every printer driver must offer; a driver that
// was enabled but is unusable is disabled again.
std::optional<DriverTable> enableDriver(EnableDriverFunction enable);

}  // namespace morvil::engine
