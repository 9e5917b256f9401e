#include "driver/page_operations.h"

#include "driver/State.h"
#include "driver/log/Log.h"

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

}  // namespace

PageBits surfaceBits(const SURFOBJ& surface) {
    const auto rowBytes = static_cast<std::uint32_t>(surface.lDelta < 0 ? -surface.lDelta : surface.lDelta);
    return {static_cast<const std::uint8_t*>(surface.pvBits), surface.cjBits, rowBytes};
}

void tracePage(const SURFOBJ& /*surface*/) {}

void adjustColours(SURFOBJ& surface) {
    logMorvil(1, kInformation, TEXT("DrvSendPage ColorAdjustment"), kLogEnd);
    dumpSurface(surface, TEXT("colorAdjustment_"));
    dumpSurface(surface, TEXT("colorAdjustment_"));
    logMorvil(1, kInformation, TEXT("DrvSendPage ImageOperations finished"), kLogEnd);
}

void flipHorizontal(SURFOBJ& /*surface*/) {
    logMorvil(1, kInformation, TEXT("DrvSendPage Flip Horizontal"), kLogEnd);
    logMorvil(1, kInformation, TEXT("DrvSendPage Flip Horizontal finished"), kLogEnd);
}

PageBits halftone(SURFOBJ& surface) {
    logMorvil(1, kInformation, TEXT("DrvSendPage Halftoning"), kLogEnd);
    chooseAlgorithm(state().configuration);
    const PageBits page = surfaceBits(surface);
    logMorvil(1, kInformation, TEXT("DrvSendPage Halftoning finished"), kLogEnd);
    return page;
}

void dumpSurface(const SURFOBJ& /*surface*/, const WCHAR* /*prefix*/) {}

void dumpThreePartBitmap(const SURFOBJ& /*surface*/) {}

}  // namespace morvil
