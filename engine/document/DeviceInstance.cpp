#include "engine/document/DeviceInstance.h"

#include <array>
#include <utility>

#include "engine/EngineState.h"
#include "engine/Pixels.h"

namespace morvil::engine {

namespace {

// Pattern surfaces for the six standard hatches, offered to every driver; none of ours fills them.
constexpr ULONG kPatterns = 6;

// A surface beyond this many pixels a side cannot be: rows and sizes of the formats are 16 bits wide.
constexpr ULONG kMaxSide = 65535;

}  // namespace

DeviceInstance::DeviceInstance(const DriverTable& driver, const WString& printerName, std::vector<std::uint8_t> devmode)
    : m_driver(driver), m_printerName(printerName), m_devmode(std::move(devmode)) {}

DeviceInstance::~DeviceInstance() {
    disableSurface();
    disable();
}

bool DeviceInstance::enable() {
    if (OpenPrinterW(m_printerName.data(), &m_printer, nullptr) == FALSE) {
        m_reason = "the printer \"" + toUtf8(m_printerName) + "\" cannot be opened";
        return false;
    }
    m_device = registerDevice({});
    std::array<HSURF, kPatterns> patterns{};
    DEVMODEW* const devmode = m_devmode.size() >= sizeof(DEVMODEW) ? reinterpret_cast<DEVMODEW*>(m_devmode.data()) : nullptr;
    m_pdev = m_driver.enablePDEV(devmode, nullptr, kPatterns, patterns.data(), sizeof(m_caps), reinterpret_cast<ULONG*>(&m_caps), sizeof(m_info), &m_info,
                                 m_device, m_printerName.data(), m_printer);
    if (m_pdev == nullptr) {
        m_reason = "the driver refused the device instance (DrvEnablePDEV)";
        return false;
    }
    *deviceOf(m_device) = {.palette = paletteOf(m_info.hpalDefault), .xStyleStep = m_caps.xStyleStep, .yStyleStep = m_caps.yStyleStep, .denStyleStep = m_caps.denStyleStep};
    m_driver.completePDEV(m_pdev, m_device);
    return checkCaps();
}

bool DeviceInstance::checkCaps() {
    const bool sizes = m_caps.ulHorzRes >= 1 && m_caps.ulVertRes >= 1 && m_caps.ulHorzRes <= kMaxSide && m_caps.ulVertRes <= kMaxSide;
    if (sizes && m_caps.ulLogPixelsX >= 1) return true;
    m_reason = "the page of " + std::to_string(m_caps.ulHorzRes) + " x " + std::to_string(m_caps.ulVertRes) + " pixels is out of range (1 to 65535 a side)";
    return false;
}

bool DeviceInstance::enableSurface() {
    m_surfaceHandle = m_driver.enableSurface(m_pdev);
    m_surface = surfaceOf(m_surfaceHandle);
    if (m_surface == nullptr) {
        m_reason = "the driver made no surface (DrvEnableSurface)";
        return false;
    }
    m_surface->dhpdev = m_pdev;
    return true;
}

void DeviceInstance::disableSurface() {
    if (std::exchange(m_surface, nullptr) == nullptr) return;
    m_driver.disableSurface(m_pdev);
}

void DeviceInstance::disable() {
    if (m_pdev != nullptr) m_driver.disablePDEV(std::exchange(m_pdev, nullptr));
    if (m_device != nullptr) unregisterDevice(std::exchange(m_device, nullptr));
    if (m_printer != nullptr) ClosePrinter(std::exchange(m_printer, nullptr));
}

CanvasTarget DeviceInstance::canvasTarget(LONG top) {
    return {.driver = &m_driver,
            .surface = m_surface,
            .graphicsCaps = m_info.flGraphicsCaps,
            .ditherWidth = m_info.cxDither,
            .ditherHeight = m_info.cyDither,
            .page = pageSize(),
            .dpi = static_cast<double>(m_caps.ulLogPixelsX),
            .bandTop = top,
            .fontsAsked = &m_fontsAsked};
}

}  // namespace morvil::engine
