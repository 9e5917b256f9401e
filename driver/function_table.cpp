#include "driver/function_table.h"

#include <array>

#include "driver/Hooks.h"

namespace morvil {

namespace {

template <typename Function>
PFN entry(Function* function) {
    return reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(function));
}

}  // namespace

// The order is part of the table. What is missing here (brush realisation, paint, single lines, fonts) the engine does itself
// on the driver's surface.
std::span<DRVFN> functionTable() {
    static std::array<DRVFN, 23> table{{
        {INDEX_DrvDisableDriver, entry(DrvDisableDriver)},
        {INDEX_DrvEnablePDEV, entry(DrvEnablePDEV)},
        {INDEX_DrvResetPDEV, entry(DrvResetPDEV)},
        {INDEX_DrvCompletePDEV, entry(DrvCompletePDEV)},
        {INDEX_DrvDisablePDEV, entry(DrvDisablePDEV)},
        {INDEX_DrvEnableSurface, entry(DrvEnableSurface)},
        {INDEX_DrvDisableSurface, entry(DrvDisableSurface)},
        {INDEX_DrvStrokePath, entry(DrvStrokePath)},
        {INDEX_DrvStrokeAndFillPath, entry(DrvStrokeAndFillPath)},
        {INDEX_DrvFillPath, entry(DrvFillPath)},
        {INDEX_DrvBitBlt, entry(DrvBitBlt)},
        {INDEX_DrvStretchBlt, entry(DrvStretchBlt)},
        {INDEX_DrvCopyBits, entry(DrvCopyBits)},
        {INDEX_DrvGetGlyphMode, entry(DrvGetGlyphMode)},
        {INDEX_DrvTextOut, entry(DrvTextOut)},
        {INDEX_DrvSendPage, entry(DrvSendPage)},
        {INDEX_DrvStartPage, entry(DrvStartPage)},
        {INDEX_DrvStartDoc, entry(DrvStartDoc)},
        {INDEX_DrvEndDoc, entry(DrvEndDoc)},
        {INDEX_DrvStartBanding, entry(DrvStartBanding)},
        {INDEX_DrvNextBand, entry(DrvNextBand)},
        {INDEX_DrvEscape, entry(DrvEscape)},
        {INDEX_DrvDitherColor, entry(DrvDitherColor)},
    }};
    return table;
}

}  // namespace morvil
