#include "engine/canvas/DriverTable.h"

#include <span>

namespace morvil::engine {

namespace {

// The version that the engine announces: that of the systems whose printing it stands in for.
constexpr ULONG kEngineVersion = 0x00030100;

// The table stores every function under one type; the index says which type it really has. The step through void(*)() tells
// the compiler that the change of type is meant.
template <typename Function>
void take(Function& slot, PFN function) {
    slot = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(function));
}

void takeEntry(DriverTable& table, const DRVFN& entry) {
    switch (entry.iFunc) {
        case INDEX_DrvDisableDriver: return take(table.disableDriver, entry.pfn);
        case INDEX_DrvEnablePDEV: return take(table.enablePDEV, entry.pfn);
        case INDEX_DrvResetPDEV: return take(table.resetPDEV, entry.pfn);
        case INDEX_DrvCompletePDEV: return take(table.completePDEV, entry.pfn);
        case INDEX_DrvDisablePDEV: return take(table.disablePDEV, entry.pfn);
        case INDEX_DrvEnableSurface: return take(table.enableSurface, entry.pfn);
        case INDEX_DrvDisableSurface: return take(table.disableSurface, entry.pfn);
        case INDEX_DrvStrokePath: return take(table.strokePath, entry.pfn);
        case INDEX_DrvStrokeAndFillPath: return take(table.strokeAndFillPath, entry.pfn);
        case INDEX_DrvFillPath: return take(table.fillPath, entry.pfn);
        case INDEX_DrvBitBlt: return take(table.bitBlt, entry.pfn);
        case INDEX_DrvStretchBlt: return take(table.stretchBlt, entry.pfn);
        case INDEX_DrvCopyBits: return take(table.copyBits, entry.pfn);
        case INDEX_DrvGetGlyphMode: return take(table.getGlyphMode, entry.pfn);
        case INDEX_DrvTextOut: return take(table.textOut, entry.pfn);
        case INDEX_DrvSendPage: return take(table.sendPage, entry.pfn);
        case INDEX_DrvStartPage: return take(table.startPage, entry.pfn);
        case INDEX_DrvStartDoc: return take(table.startDoc, entry.pfn);
        case INDEX_DrvEndDoc: return take(table.endDoc, entry.pfn);
        case INDEX_DrvStartBanding: return take(table.startBanding, entry.pfn);
        case INDEX_DrvNextBand: return take(table.nextBand, entry.pfn);
        case INDEX_DrvEscape: return take(table.escape, entry.pfn);
        case INDEX_DrvDitherColor: return take(table.ditherColor, entry.pfn);
        default: return;  // a function that this engine never calls
    }
}

}  // namespace

bool DriverTable::complete() const {
    const bool instance = enablePDEV != nullptr && completePDEV != nullptr && disablePDEV != nullptr;
    const bool surface = enableSurface != nullptr && disableSurface != nullptr;
    const bool document = startDoc != nullptr && startPage != nullptr && sendPage != nullptr && endDoc != nullptr;
    return instance && surface && document && disableDriver != nullptr;
}

std::optional<DriverTable> enableDriver(EnableDriverFunction enable) {
    DRVENABLEDATA data{};
    if (enable == nullptr || enable(kEngineVersion, sizeof(data), &data) == FALSE || data.pdrvfn == nullptr) return std::nullopt;
    DriverTable table;
    for (const DRVFN& entry : std::span(data.pdrvfn, data.c)) takeEntry(table, entry);
    if (table.complete()) return table;
    if (table.disableDriver != nullptr) table.disableDriver();
    return std::nullopt;
}

}  // namespace morvil::engine
