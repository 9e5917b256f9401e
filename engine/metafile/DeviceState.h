// DeviceState.h - what SaveDC keeps: the mapping from logical units to pixels of the reference device, the selected objects and
// the drawing modes. Copies are cheap; objects and regions are shared and never changed.
#pragma once

#include <memory>
#include <optional>

#include "engine/Canvas.h"
#include "engine/metafile/Matrix.h"
#include "engine/metafile/Objects.h"

namespace morvil::engine {

// The device that the metafile was made for.
struct ReferenceDevice {
    SIZEL pixels{};
    SIZEL millimetres{};
};

enum MapMode : ULONG { kMapText = 1, kMapLoMetric, kMapHiMetric, kMapLoEnglish, kMapHiEnglish, kMapTwips, kMapIsotropic, kMapAnisotropic };

// Window, viewport and mapping mode. Extents are never 0.
class Mapping {
  public:
    explicit Mapping(const ReferenceDevice& device) : m_device(device) {}

    bool setMode(ULONG mode);  // false: there is no such mode
    void setWindowOrigin(Point origin) { m_windowOrigin = origin; }
    void setViewportOrigin(Point origin) { m_viewportOrigin = origin; }
    // Extents change only in the two modes that leave them to the application; a 0 changes nothing.
    void setWindowExtent(Point extent);
    void setViewportExtent(Point extent);
    void scaleWindow(double xNumerator, double xDenominator, double yNumerator, double yDenominator);
    void scaleViewport(double xNumerator, double xDenominator, double yNumerator, double yDenominator);
    [[nodiscard]] Matrix matrix() const;

  private:
    [[nodiscard]] bool extentsFree() const { return m_mode == kMapIsotropic || m_mode == kMapAnisotropic; }
    void keepIsotropic();

    ReferenceDevice m_device;
    ULONG m_mode = kMapText;
    Point m_windowOrigin;
    Point m_windowExtent{1.0, 1.0};
    Point m_viewportOrigin;
    Point m_viewportExtent{1.0, 1.0};
};

struct DeviceState {
    explicit DeviceState(const ReferenceDevice& device) : mapping(device) {}

    Mapping mapping;
    Matrix world;
    bool mirrored = false;  // right-to-left layout

    std::shared_ptr<const PenObject> pen;
    std::shared_ptr<const BrushObject> brush;
    std::shared_ptr<const FontObject> font;
    std::shared_ptr<const PaletteObject> palette;

    bool opaqueBackground = true;
    COLORREF backgroundColour = 0xFFFFFF;
    COLORREF textColour = 0;
    ULONG textAlign = 0;
    double breakExtra = 0.0;  // logical units to spread over breakCount blanks
    LONG breakCount = 0;
    FillMode fillMode = FillMode::Alternate;
    int rop2 = 13;
    int stretchMode = BLACKONWHITE;
    bool clockwise = false;  // arc direction
    float miterLimit = 10.0F;
    Point brushOrigin;  // pixels of the reference device
    Point position;     // logical units

    std::shared_ptr<const Region> clip;      // page pixels; null: everything
    std::shared_ptr<const Region> metaClip;  // likewise; both hold
};

}  // namespace morvil::engine
