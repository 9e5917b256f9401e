// Document.h - prints a document of one or more pages through a driver: enables it by its table, creates instance and surface,
// plays each page whole or in bands and ends the document, in the order and with the arguments of the Windows engine.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/Canvas.h"
#include "platform/common/Text.h"

namespace morvil::engine {

using EnableDriverFunction = BOOL (*)(ULONG engineVersion, ULONG size, DRVENABLEDATA* data);

// A page and the device mode it wants: public part and the driver's private bytes behind it, as one block.
struct Page {
    std::shared_ptr<PageSource> source;
    std::vector<std::uint8_t> devmode;
};

struct PrintRequest {
    EnableDriverFunction enableDriver = nullptr;
    WString printerName;
    WString documentName;         // empty: null is passed, as after ResetDC
    DWORD jobId = 1;
    std::vector<Page> pages;
    // Asked between calls and by EngCheckAbort; true aborts the document.
    std::function<bool()> abortRequested;
    // Told after each band or page with the rows done and the page's rows; may be empty.
    std::function<void(std::size_t page, LONG rowsDone, LONG rows)> progress;
};

struct PageReport {
    SIZEL pixels{};
    double widthMillimetres = 0.0;
    double heightMillimetres = 0.0;
    ULONG dpi = 0;
    ULONG bitsPerPixel = 0;
    bool banded = false;
    LONG bands = 0;
    std::uint64_t strokesToDriver = 0;  // DrvStrokePath calls answered TRUE
    std::uint64_t strokesByEngine = 0;
    std::uint64_t fills = 0;
    std::uint64_t images = 0;
    std::uint64_t texts = 0;
};

enum class PrintStatus : std::uint8_t { Done, DriverRefused, SurfaceFailed, Aborted, DriverFailed };

struct PrintReport {
    PrintStatus status = PrintStatus::Done;
    std::string reason;  // which call failed, for people
    std::vector<PageReport> pages;
};

PrintReport printDocument(const PrintRequest& request);

}  // namespace morvil::engine
