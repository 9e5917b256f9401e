#include "driver/page_operations.h"

#include "driver/State.h"
#include "driver/log/Log.h"
#include "raster/BitmapDump.h"
#include "raster/BitmapInfo.h"
#include "raster/Halftone.h"
#include "raster/ImageOperations.h"
#include "raster/MemoryContext.h"

namespace morvil {

namespace {

void chooseAlgorithm(ConfigurationRecord& configuration) {
    switch (configuration.processMode) {
        case kModeTest4: configuration.halftone.algorithm = 3; break;
        case kModeTest5: configuration.halftone.algorithm = 4; break;
        case kModeTest6: configuration.halftone.algorithm = 5; break;
        case kModeTest7: configuration.halftone.algorithm = 6; break;
        default: break;
    }
}

BITMAPINFOHEADER describe(const SURFOBJ& surface) {
    const MemoryContext screen;
    BitmapInfoBlock block{};
    getBitmapInfo(screen.get(), bitmapOf(surface), &block);
    return block.header;
}

// The surface's bits are page and result at once. A page that could not be halftoned is stored as it is.
PageBits dither(SURFOBJ& surface, const BITMAPINFOHEADER& header) {
    const ConfigurationRecord& configuration = state().configuration;
    auto* const bits = static_cast<std::uint8_t*>(surface.pvBits);
    std::uint32_t bytes = 0;
    Dither(halftoneImage(), bits, bits, &bytes, &header, &configuration.halftone, static_cast<int>(configuration.dumpBitmaps));
    if (bytes == 0) return surfaceBits(surface);
    return {bits, bytes, bytes / static_cast<std::uint32_t>(header.biHeight)};
}

bool dumpsWanted() { return state().configuration.dumpBitmaps != 0; }

}  // namespace

PageBits surfaceBits(const SURFOBJ& surface) {
    const auto rowBytes = static_cast<std::uint32_t>(surface.lDelta < 0 ? -surface.lDelta : surface.lDelta);
    return {static_cast<const std::uint8_t*>(surface.pvBits), surface.cjBits, rowBytes};
}

void tracePage(const SURFOBJ& surface) {
    if (!state().spoolFile || surface.iBitmapFormat != BMF_24BPP) return;
    const PageBits page = surfaceBits(surface);
    state().spoolFile->TraceBitmap(page.bits, page.bytes, static_cast<std::uint32_t>(surface.sizlBitmap.cx),
                                   static_cast<std::uint32_t>(surface.sizlBitmap.cy), state().uiBandPosition);
}

void adjustColours(SURFOBJ& surface) {
    logMorvil(1, kInformation, TEXT("DrvSendPage ColorAdjustment"), kLogEnd);
    dumpSurface(surface, TEXT("colorAdjustment_"));
    doColorAdjustment(surface, state().configuration.halftone.adjustment);
    dumpSurface(surface, TEXT("colorAdjustment_"));
    logMorvil(1, kInformation, TEXT("DrvSendPage ImageOperations finished"), kLogEnd);
}

void flipHorizontal(SURFOBJ& surface) {
    logMorvil(1, kInformation, TEXT("DrvSendPage Flip Horizontal"), kLogEnd);
    doFlipHorizontal(surface);
    logMorvil(1, kInformation, TEXT("DrvSendPage Flip Horizontal finished"), kLogEnd);
}

PageBits halftone(SURFOBJ& surface) {
    logMorvil(1, kInformation, TEXT("DrvSendPage Halftoning"), kLogEnd);
    const BITMAPINFOHEADER header = describe(surface);
    chooseAlgorithm(state().configuration);
    const PageBits page = dither(surface, header);
    logMorvil(1, kInformation, TEXT("DrvSendPage Halftoning finished"), kLogEnd);
    return page;
}

void dumpSurface(const SURFOBJ& surface, const WCHAR* prefix) {
    if (dumpsWanted()) dumpSurface(bitmapOf(surface), prefix);
}

void dumpThreePartBitmap(const SURFOBJ& surface) {
    if (!dumpsWanted()) return;
    const PageBits bits = surfaceBits(surface);
    dumpBitmap3(bitmapOf(surface), {bits.bits, bits.bits == nullptr ? 0 : bits.bytes});
}

}  // namespace morvil
