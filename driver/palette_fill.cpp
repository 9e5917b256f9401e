// palette_fill.cpp - the DEVINFO of an instance and its default palette.
#include <algorithm>
#include <array>
#include <utility>

#include "driver/State.h"
#include "driver/device_caps.h"
#include "driver/log/Log.h"

namespace morvil {

namespace {

constexpr FLONG kGraphicsCaps = GCAPS_ALTERNATEFILL | GCAPS_HORIZSTRIKE | GCAPS_VERTSTRIKE | GCAPS_VECTORFONT;
static_assert(kGraphicsCaps == 0x2C4);

bool isTrueColourMode(WORD processMode) { return processMode >= kModeTest2 && processMode <= kModeTest7; }

FLONG graphicsCaps(const ConfigurationRecord& configuration) {
    FLONG caps = kGraphicsCaps;
    if ((configuration.flags & MV_FL_GEOMETRICWIDE) != 0) caps |= GCAPS_GEOMETRICWIDE;
    if (configuration.bezier.mode != 0) caps |= GCAPS_BEZIERS;
    return caps;
}

// Standard with process colour 0 keeps the 8-bit format although its surface has one bit per pixel: intended, the engine's
// brushes look smoother so.
void fillDithering(const ConfigurationRecord& configuration, DEVINFO& info) {
    info.cxDither = info.cyDither = configuration.processMode == kModeTest1 ? 1 : 8;
    info.iDitherFormat = isTrueColourMode(configuration.processMode) ? BMF_24BPP : BMF_8BPP;
    const bool dithersColours =
        configuration.processMode == kModeStamp || (configuration.processMode == kModeStandard && configuration.processColour == 1);
    if (dithersColours || configuration.processMode == kModeTest1) info.iDitherFormat = BMF_1BPP;
    if (dithersColours) info.flGraphicsCaps |= GCAPS_COLOR_DITHER;
}

HPALETTE createPalette(int tableType) {
    cColorTable& table = processColourTable();
    table.SetConfig(&state().configuration);
    if (!table.BuildTable(tableType)) return nullptr;
    if (tableType == kTrueColour) return EngCreatePalette(PAL_BGR, 0, nullptr, 0, 0, 0);
    std::array<ULONG, kPaletteEntries> entries{};
    const std::size_t count = std::min(table.entries().size(), entries.size());
    std::copy_n(table.entries().begin(), count, entries.begin());
    return EngCreatePalette(PAL_INDEXED, static_cast<ULONG>(count), entries.data(), 0, 0, 0);
}

}  // namespace

int paletteTableType(const ConfigurationRecord& configuration) {
    switch (configuration.processMode) {
        case kModeStandard: return configuration.processColour == 2 ? kProcessColours : kBlackWhite;
        case kModeColourStamp: return kMciColours;
        case kModeRelief:
        case kModeLayer: return kGreyRamp;
        default: return isTrueColourMode(configuration.processMode) ? kTrueColour : kBlackWhite;
    }
}

BOOL fillPalette(PDEV& pdev, DEVINFO& devInfo) {
    devInfo = {};
    devInfo.flGraphicsCaps = graphicsCaps(pdev.configuration());
    fillDithering(pdev.configuration(), devInfo);
    if (pdev.hPalette != nullptr) EngDeletePalette(std::exchange(pdev.hPalette, nullptr));
    const int tableType = paletteTableType(pdev.configuration());
    pdev.hPalette = createPalette(tableType);
    devInfo.hpalDefault = pdev.hPalette;
    if (pdev.hPalette == nullptr) logMorvil(1, kError, TEXT("Invalid ColorTable"), kLogEnd);
    logMorvil(1, kInformation, TEXT("ColorTable Handle=%X, Type=%d"), low32(pdev.hPalette), tableType, kLogEnd);
    return TRUE;
}

}  // namespace morvil
