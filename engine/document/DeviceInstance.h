// DeviceInstance.h - one device instance of a driver with its surface: enabled and disabled in the engine's order.
// Owns the printer handle, the engine's device handle, the instance and the surface; gives them back in the reverse order.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "engine/Objects.h"
#include "engine/canvas/DriverCanvas.h"
#include "engine/canvas/DriverTable.h"
#include "platform/common/Text.h"

namespace morvil::engine {

class DeviceInstance {
  public:
    DeviceInstance(const DriverTable& driver, const WString& printerName, std::vector<std::uint8_t> devmode);
    ~DeviceInstance();
    DeviceInstance(const DeviceInstance&) = delete;
    DeviceInstance& operator=(const DeviceInstance&) = delete;

    // DrvEnablePDEV and DrvCompletePDEV. False when the driver refuses or its answer is unusable (see reason()).
    bool enable();
    // DrvEnableSurface. False when there is no surface.
    bool enableSurface();
    void disableSurface();
    void disable();

    [[nodiscard]] const std::string& reason() const { return m_reason; }
    [[nodiscard]] DHPDEV handle() const { return m_pdev; }
    [[nodiscard]] EngineSurface* surface() const { return m_surface; }
    [[nodiscard]] const GDIINFO& caps() const { return m_caps; }
    [[nodiscard]] const DEVINFO& info() const { return m_info; }
    [[nodiscard]] SIZEL pageSize() const { return {static_cast<LONG>(m_caps.ulHorzRes), static_cast<LONG>(m_caps.ulVertRes)}; }
    [[nodiscard]] const std::vector<std::uint8_t>& devmode() const { return m_devmode; }
    // A canvas on the band whose first row is page row `top`.
    [[nodiscard]] CanvasTarget canvasTarget(LONG top);

  private:
    bool checkCaps();

    const DriverTable& m_driver;
    WString m_printerName;
    std::vector<std::uint8_t> m_devmode;
    HANDLE m_printer = nullptr;
    HDEV m_device = nullptr;
    DHPDEV m_pdev = nullptr;
    HSURF m_surfaceHandle = nullptr;
    EngineSurface* m_surface = nullptr;
    GDIINFO m_caps{};
    DEVINFO m_info{};
    std::set<ULONG> m_fontsAsked;
    std::string m_reason;
};

}  // namespace morvil::engine
