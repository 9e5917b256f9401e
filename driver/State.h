// State.h - everything of the driver that outlives a call, in one visible place. The engine serves one print job per process
// at a time, on one thread, so nothing here is locked; instances of one process share it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "config/ConfigurationRecord.h"
#include "config/SizeTemplates.h"
#include "jobfile/CMvPath.h"
#include "jobfile/CSpoolFile.h"
#include "platform/platform.h"
#include "raster/CxImage.h"
#include "raster/cColorTable.h"

namespace morvil {

inline constexpr std::size_t kProcessNameCharacters = 520;
inline constexpr std::size_t kPaletteEntries = 256;

struct State {
    ConfigurationRecord configuration{};                      // working copy; document and page calls copy their instance's into it
    DWORD refCounter = 0;                                     // DrvEnablePDEV calls so far; never counted down
    std::array<WCHAR, kProcessNameCharacters> processName{};  // executable of the process that the driver runs in
    std::unique_ptr<CSpoolFile> spoolFile;                    // the job writer: from the first use to DrvEndDoc or DrvDisablePDEV
    std::unique_ptr<cColorTable> colourTable;
    std::unique_ptr<CxImage> halftoneImage;  // works on each page from the first halftoned one on
    std::unique_ptr<CMvPath> path;  // recorder of paths with very many curves
    std::unique_ptr<CSizeTemplate> sizeTemplates;
    std::uint32_t uiBandPosition = 0;                    // first pixel row of the current band within the page
    HINSTANCE ghInstance = nullptr;                      // set at load
    std::array<WCHAR, 16> date{};                        // MM/DD/YY of the latest surface
    std::array<ULONG, kPaletteEntries> sourcePalette{};  // of the latest DrvCopyBits
    HANDLE impersonationToken = nullptr;                 // held between SwitchToLoggedOnUser and DrvEndDoc
};

// The state, created at the first call; from then on the log follows its configuration's logging block.
State& state();

// Gives everything back and starts anew, as if the driver had just been loaded.
void resetState();

// The objects that come to life at their first use.
cColorTable& processColourTable();
CSizeTemplate& sizeTemplateReader();
CxImage& halftoneImage();

}  // namespace morvil
