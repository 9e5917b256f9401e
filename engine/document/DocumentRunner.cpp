// DocumentRunner.cpp - runs a document through a driver page by page. Order of calls and their arguments are those of the
// Windows engine: see docs/engine-choices.md for what its public description leaves open.
#include <algorithm>
#include <utility>

#include "engine/Document.h"
#include "engine/EngineState.h"
#include "engine/document/DeviceInstance.h"

namespace morvil::engine {

namespace {

class DocumentRunner {
  public:
    DocumentRunner(const PrintRequest& request, const DriverTable& driver, PrintReport& report) : m_request(request), m_driver(driver), m_report(report) {}

    void run();

  private:
    bool beginDocument();
    bool printPage(std::size_t index);
    bool changeInstance(const std::vector<std::uint8_t>& devmode);
    bool printWhole(std::size_t index, PageReport& page);
    bool printBands(std::size_t index, PageReport& page);
    bool playBand(std::size_t index, LONG top, PageReport* page);
    void endDocument(bool printed);
    bool fail(PrintStatus status, std::string reason);
    [[nodiscard]] bool aborted() const { return m_request.abortRequested && m_request.abortRequested(); }
    void tell(std::size_t index, LONG rows) const;

    const PrintRequest& m_request;
    const DriverTable& m_driver;
    PrintReport& m_report;
    std::unique_ptr<DeviceInstance> m_instance;
};

bool DocumentRunner::fail(PrintStatus status, std::string reason) {
    m_report.status = aborted() ? PrintStatus::Aborted : status;
    m_report.reason = m_report.status == PrintStatus::Aborted ? "the document was aborted" : std::move(reason);
    return false;
}

void DocumentRunner::tell(std::size_t index, LONG rows) const {
    if (m_request.progress) m_request.progress(index, std::min(rows, m_instance->pageSize().cy), m_instance->pageSize().cy);
}

bool DocumentRunner::beginDocument() {
    m_instance = std::make_unique<DeviceInstance>(m_driver, m_request.printerName, m_request.pages.front().devmode);
    if (!m_instance->enable()) return fail(PrintStatus::DriverRefused, m_instance->reason());
    if (!m_instance->enableSurface()) return fail(PrintStatus::SurfaceFailed, m_instance->reason());
    WString name = m_request.documentName;
    if (m_driver.startDoc(m_instance->surface(), name.empty() ? nullptr : name.data(), m_request.jobId) != FALSE) return true;
    return fail(PrintStatus::DriverFailed, "DrvStartDoc failed");
}

// ResetDC inside a document: the new instance is enabled and told of the old one, which then goes; the document starts again
// on the new surface without a name.
bool DocumentRunner::changeInstance(const std::vector<std::uint8_t>& devmode) {
    auto next = std::make_unique<DeviceInstance>(m_driver, m_request.printerName, devmode);
    if (!next->enable()) return fail(PrintStatus::DriverRefused, next->reason());
    if (m_driver.resetPDEV == nullptr || m_driver.resetPDEV(m_instance->handle(), next->handle()) == FALSE) {
        return fail(PrintStatus::DriverFailed, "DrvResetPDEV failed");
    }
    m_instance->disableSurface();
    m_instance->disable();
    m_instance = std::move(next);
    if (!m_instance->enableSurface()) return fail(PrintStatus::SurfaceFailed, m_instance->reason());
    if (m_driver.startDoc(m_instance->surface(), nullptr, 0) != FALSE) return true;
    return fail(PrintStatus::DriverFailed, "DrvStartDoc failed after a change of paper");
}

bool DocumentRunner::playBand(std::size_t index, LONG top, PageReport* page) {
    DriverCanvas canvas(m_instance->canvasTarget(top), page);
    m_request.pages[index].source->play(canvas);
    if (canvas.ok()) return true;
    return fail(PrintStatus::DriverFailed, std::string(canvas.failedCall()) + " failed");
}

bool DocumentRunner::printWhole(std::size_t index, PageReport& page) {
    if (!playBand(index, 0, &page)) return false;
    if (m_driver.sendPage(m_instance->surface()) == FALSE) return fail(PrintStatus::DriverFailed, "DrvSendPage failed");
    tell(index, m_instance->pageSize().cy);
    return true;
}

// A page ends when the next band's origin is (-1, -1), whatever the result beside it says: a driver may answer FALSE there.
bool DocumentRunner::printBands(std::size_t index, PageReport& page) {
    page.banded = true;
    if (m_driver.startBanding == nullptr || m_driver.nextBand == nullptr) return fail(PrintStatus::DriverFailed, "the driver marks bands but cannot print them");
    POINTL origin{};
    if (m_driver.startBanding(m_instance->surface(), &origin) == FALSE) return fail(PrintStatus::DriverFailed, "DrvStartBanding failed");
    while (origin.x != -1 || origin.y != -1) {
        const LONG top = origin.y;
        if (top < 0 || top >= m_instance->pageSize().cy || origin.x != 0) return fail(PrintStatus::DriverFailed, "DrvNextBand gave a band outside the page");
        if (!playBand(index, top, page.bands == 0 ? &page : nullptr)) return false;
        const BOOL result = m_driver.nextBand(m_instance->surface(), &origin);
        const bool last = origin.x == -1 && origin.y == -1;
        if (result == FALSE && !last) return fail(PrintStatus::DriverFailed, "DrvNextBand failed");
        if (!last && origin.y <= top) return fail(PrintStatus::DriverFailed, "DrvNextBand gave a band that does not advance");
        ++page.bands;
        tell(index, last ? m_instance->pageSize().cy : origin.y);
    }
    return true;
}

bool DocumentRunner::printPage(std::size_t index) {
    const Page& source = m_request.pages[index];
    if (source.devmode != m_instance->devmode() && !changeInstance(source.devmode)) return false;
    PageReport page;
    page.pixels = m_instance->pageSize();
    page.dpi = m_instance->caps().ulLogPixelsX;
    page.widthMillimetres = page.pixels.cx * 25.4 / page.dpi;
    page.heightMillimetres = page.pixels.cy * 25.4 / page.dpi;
    page.bitsPerPixel = m_instance->caps().cBitsPixel;
    if (m_driver.startPage(m_instance->surface()) == FALSE) return fail(PrintStatus::DriverFailed, "DrvStartPage failed");
    const bool printed = m_instance->surface()->banding ? printBands(index, page) : printWhole(index, page);
    m_report.pages.push_back(page);
    return printed;
}

void DocumentRunner::endDocument(bool printed) {
    const BOOL ended = m_driver.endDoc(m_instance->surface(), printed ? 0 : ED_ABORTDOC);
    if (printed && ended == FALSE) fail(PrintStatus::DriverFailed, "DrvEndDoc failed");
}

void DocumentRunner::run() {
    if (!beginDocument()) return;
    bool printed = true;
    for (std::size_t index = 0; printed && index < m_request.pages.size(); ++index) {
        printed = !aborted() ? printPage(index) : fail(PrintStatus::Aborted, {});
    }
    if (m_instance->surface() != nullptr) endDocument(printed);
}

}  // namespace

PrintReport printDocument(const PrintRequest& request) {
    PrintReport report;
    if (request.pages.empty()) return {PrintStatus::DriverFailed, "the document has no page", {}};
    const std::optional<DriverTable> driver = enableDriver(request.enableDriver);
    if (!driver) return {PrintStatus::DriverRefused, "the driver could not be enabled (DrvEnableDriver)", {}};
    engineState().abortRequested = request.abortRequested;
    DocumentRunner(request, *driver, report).run();
    engineState().abortRequested = {};
    driver->disableDriver();
    return report;
}

}  // namespace morvil::engine
