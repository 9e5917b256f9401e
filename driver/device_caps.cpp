#include "driver/device_caps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "config/CMvConfig.h"
#include "config/MvSystemPapers.h"
#include "driver/State.h"
#include "driver/log/Log.h"

namespace morvil {

namespace {

static_assert(sizeof(GDIINFO) == 320 && sizeof(DEVINFO) == 312 && sizeof(COLORINFO) == 120);

constexpr int kNotFromApplication = 777;  // the user interface's paper index for "size of the configuration"
constexpr int kLastSystemPaper = 118;     // above: size templates, counted from 1
constexpr FLOAT kMillimetresPerInch = 25.4F;
constexpr ULONG kGdiInfoVersion = 0x500;
constexpr ULONG kNoPalette = 0xFFFFFFFF;

struct Millimetres {
    FLOAT width;
    FLOAT height;
};

bool isLandscape(const DEVMODEW& dm) { return dm.dmOrientation == DMORIENT_LANDSCAPE; }

Millimetres configuredSize(const PDEV& pdev) { return {pdev.configuration().size.width, pdev.configuration().size.height}; }

// The devmode's own width and length, in tenths of a millimetre.
Millimetres userDefinedSize(const PDEV& pdev) {
    const DEVMODEW& dm = pdev.plotDM.dm;
    Millimetres size{static_cast<FLOAT>(dm.dmPaperWidth) / 10.0F, static_cast<FLOAT>(dm.dmPaperLength) / 10.0F};
    if (isLandscape(dm)) std::swap(size.width, size.height);
    if (size.width <= 1.0F || size.height <= 1.0F) {
        logMorvil(1, kInformation, TEXT("FillDeviceCaps, fWidthMM=%f, fHeightMM=%f"), size.width, size.height, kLogEnd);
        size = configuredSize(pdev);
    }
    logMorvil(1, kInformation, TEXT("FillDeviceCaps, User defined Size Width=%f, Height=%f"), size.width, size.height, kLogEnd);
    return size;
}

Millimetres systemPaperSize(const PDEV& pdev, int index) {
    Millimetres size = configuredSize(pdev);
    if (isLandscape(pdev.plotDM.dm)) std::swap(size.width, size.height);  // what the caller exchanges again: an unknown form keeps it
    int width = 0;
    int height = 0;
    if (MvSystemPapers::getSizeDimensions(index, &width, &height)) size = {static_cast<FLOAT>(width), static_cast<FLOAT>(height)};
    logMorvil(1, kInformation, TEXT("FillDeviceCaps, Received from system paper size Index=%d, Width=%f, Height=%f"), index, size.width,
              size.height, kLogEnd);
    return size;
}

Millimetres templateSize(int index) {
    float width = 0.0F;
    float height = 0.0F;
    std::array<WCHAR, 100> name{};
    sizeTemplateReader().getTemplate(index - kLastSystemPaper, &width, &height, name.data());
    logMorvil(1, kInformation, TEXT("FillDeviceCaps, Received from <CSizeTemplate> Index=%d, SizeName=%s, Width=%f, Height=%f"),
              index - kLastSystemPaper, name.data(), width, height, kLogEnd);
    return {width, height};
}

Millimetres paperSize(const PDEV& pdev, int index) {
    if (index == DMPAPER_USER || index == 0) return userDefinedSize(pdev);
    if (index < 0) return configuredSize(pdev);
    Millimetres size = index <= kLastSystemPaper ? systemPaperSize(pdev, index) : templateSize(index);
    if (isLandscape(pdev.plotDM.dm)) std::swap(size.width, size.height);
    logMorvil(1, kInformation, TEXT("FillDeviceCaps, width=%f, height=%f"), size.width, size.height, kLogEnd);
    return size;
}

// Single precision, as the job application computes it. Nothing when a surface cannot have that many pixels.
std::optional<WORD> pixels(FLOAT millimetres, WORD dpi) {
    const FLOAT count = std::ceil(millimetres / kMillimetresPerInch * static_cast<FLOAT>(dpi));
    if (!(count >= 1.0F && count <= 65535.0F)) return std::nullopt;
    return static_cast<WORD>(count);
}

bool takeSizeFromApplication(PDEV& pdev, int index) {
    logMorvil(1, kInformation, TEXT("FillDeviceCaps, Get PaperSize from Application Index=%d, dmOrientation=%d"), index,
              pdev.plotDM.dm.dmOrientation, kLogEnd);
    const Millimetres size = paperSize(pdev, index);
    const std::optional<WORD> width = pixels(size.width, pdev.configuration().resolution);
    const std::optional<WORD> height = pixels(size.height, pdev.configuration().resolution);
    if (!width || !height) {
        logMorvil(1, kError, TEXT("FillDeviceCaps, invalid page size Width=%f, Height=%f"), size.width, size.height, kLogEnd);
        return false;
    }
    SizeTemplate& page = pdev.configuration().size;
    page.width = size.width;
    page.height = size.height;
    page.pixelWidth = *width;
    page.pixelHeight = *height;
    return true;
}

bool decidePageSize(PDEV& pdev) {
    const int index = pdev.plotDM.dm.dmPaperSize;
    if (index != kNotFromApplication && pdev.configuration().size.takeFromApplication != 0) return takeSizeFromApplication(pdev, index);
    logMorvil(1, kInformation, TEXT("FillDeviceCaps Get PaperSize not avaiable from Application"), kLogEnd);
    return true;
}

// A configuration can hold anything; what is no size prints as none.
ULONG wholeMillimetres(FLOAT millimetres) { return millimetres > 0.0F && millimetres < 1e6F ? static_cast<ULONG>(millimetres) : 0; }

void fillPageAndResolution(const PDEV& pdev, GDIINFO& info) {
    const ConfigurationRecord& configuration = pdev.configuration();
    const SizeTemplate& page = configuration.size;
    info.ulVersion = kGdiInfoVersion;
    info.ulTechnology = DT_RASPRINTER;
    info.ulHorzSize = wholeMillimetres(page.width);
    info.ulVertSize = wholeMillimetres(page.height);
    info.ulHorzRes = info.ulPanningHorzRes = page.pixelWidth;
    info.ulVertRes = info.ulPanningVertRes = page.pixelHeight;
    info.szlPhysSize = {page.pixelWidth, page.pixelHeight};
    info.cPlanes = 1;
    info.ulLogPixelsX = info.ulLogPixelsY = pdev.dpi;
    info.ulAspectX = info.ulAspectY = pdev.dpi;
    info.ulAspectXY = diagonalAspect(pdev.dpi);
    info.xStyleStep = info.yStyleStep = 1;
    info.denStyleStep = static_cast<LONG>(pdev.dpi / 25);
    info.ciDevice = configuration.halftone.colourInfo;
    info.ulHTPatternSize = configuration.halftone.patternSize;
    info.flHTFlags = HT_FLAG_HAS_BLACK_DYE;
}

void fillColourDepth(const ConfigurationRecord& configuration, GDIINFO& info) {
    const ColourDepth depth = colourDepth(configuration);
    info.cBitsPixel = depth.bitsPerPixel;
    info.ulHTOutputFormat = depth.halftoneFormat;
    info.ulNumColors = info.ulNumPalReg =
        depth.tableType ? static_cast<ULONG>(processColourTable().getCntEntries(*depth.tableType)) : kNoPalette;
}

std::optional<ULONG> iniNumber(const WCHAR* key, const WCHAR* iniFile) {
    const auto value = static_cast<INT>(GetPrivateProfileIntW(TEXT("GDIINFO"), key, -1, iniFile));
    if (value == -1) return std::nullopt;
    return static_cast<ULONG>(value);
}

// For trying out other capabilities on a machine without a new build.
void applyIniOverrides(GDIINFO& info) {
    const CMvConfig folders;
    if (const auto technology = iniNumber(TEXT("Technology"), folders.mainIni())) {
        info.ulTechnology = *technology;
        logMorvil(1, kInformation, TEXT("GDIINFO from File, Technology=%d"), *technology, kLogEnd);
    }
    if (const auto pelsDpi = iniNumber(TEXT("DevicePelsDPI"), folders.mainIni())) {
        info.ulDevicePelsDPI = *pelsDpi;
        logMorvil(1, kInformation, TEXT("GDIINFO from File, DevicePelsDPI=%d"), *pelsDpi, kLogEnd);
    }
    if (const auto colours = iniNumber(TEXT("NumColors"), folders.mainIni())) {
        info.ulNumColors = info.ulNumPalReg = *colours;
        logMorvil(1, kInformation, TEXT("GDIINFO from File, NumColors=%d"), *colours, kLogEnd);
    }
}

}  // namespace

ULONG diagonalAspect(ULONG dpi) {
    const std::uint64_t target = 2 * std::uint64_t{dpi} * dpi;
    std::uint64_t side = dpi;
    while (side * side < target) ++side;
    return static_cast<ULONG>(side);
}

ColourDepth colourDepth(const ConfigurationRecord& configuration) {
    switch (configuration.processMode) {
        case kModeStandard:
            if (configuration.processColour == 2) return {8, HT_FORMAT_8BPP, kProcessColours};
            return {1, HT_FORMAT_1BPP, kBlackWhite};
        case kModeColourStamp: return {8, HT_FORMAT_8BPP, kMciColours};
        case kModeRelief:
        case kModeLayer: return {8, HT_FORMAT_8BPP, kGreyRamp};
        case kModeTest1: return {8, HT_FORMAT_8BPP, kBlackWhite};
        case kModeTest2:
        case kModeTest3:
        case kModeTest4:
        case kModeTest5:
        case kModeTest6:
        case kModeTest7: return {24, HT_FORMAT_24BPP, std::nullopt};
        default: return {1, HT_FORMAT_1BPP, kBlackWhite};
    }
}

bool FillDeviceCaps(PDEV& pdev, GDIINFO& gdiInfo) {
    gdiInfo = {};
    if (!decidePageSize(pdev)) return false;
    const ConfigurationRecord& configuration = pdev.configuration();
    logMorvil(1, kInformation,
              TEXT("FillDeviceCaps, fWidthMM=%.2f, fHeightMM=%.2f, lWidthPixel=%d, lHeightPixel=%d, ProcVal=%d, ProcColor=%d"),
              configuration.size.width, configuration.size.height, configuration.size.pixelWidth, configuration.size.pixelHeight,
              configuration.processMode, configuration.processColour, kLogEnd);
    pdev.dpi = configuration.resolution;
    fillPageAndResolution(pdev, gdiInfo);
    fillColourDepth(configuration, gdiInfo);
    applyIniOverrides(gdiInfo);
    return true;
}

BOOL CommonStartPDEV(PDEV& pdev, const CapabilityBuffers& buffers) {
    if (buffers.capsSize != 0 && buffers.gdiInfo != nullptr) {
        GDIINFO gdiInfo{};
        if (!FillDeviceCaps(pdev, gdiInfo)) return FALSE;
        std::memcpy(buffers.gdiInfo, &gdiInfo, std::min<std::size_t>(buffers.capsSize, sizeof(gdiInfo)));
    }
    if (buffers.devInfoSize != 0 && buffers.devInfo != nullptr) {
        DEVINFO devInfo{};
        if (fillPalette(pdev, devInfo) == FALSE) return FALSE;
        std::memcpy(buffers.devInfo, &devInfo, std::min<std::size_t>(buffers.devInfoSize, sizeof(devInfo)));
    }
    if (buffers.patterns != nullptr) std::fill_n(buffers.patterns, buffers.patternCount, nullptr);
    return TRUE;
}

}  // namespace morvil
