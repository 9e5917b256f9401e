// ReplayObjects.h - the embedded engine's objects for the calls of a recording. What a hook draws through them lands on the page
// and is replaced by the recorded bits before the page is sent.
#pragma once

#include "engine/Objects.h"
#include "trace/Replayer.h"

namespace morvil::tool {

class ReplayObjects : public trace::ReplayEngine {
  public:
    HDEV openDevice() override;
    void deviceReady(HDEV device, const GDIINFO& caps, const DEVINFO& info) override;
    void closeDevice(HDEV device) override;
    SURFOBJ* pageSurface(HSURF surface, DHPDEV instance) override;
    SURFOBJ* otherSurface(const std::optional<trace::SurfaceArgument>& surface, std::size_t place) override;
    PATHOBJ* path(const std::optional<trace::PathArgument>& path) override;
    BRUSHOBJ* brush(const std::optional<trace::BrushArgument>& brush, std::size_t place) override;
    CLIPOBJ* clip(const std::optional<trace::ClipArgument>& clip) override;
    XLATEOBJ* translation(const std::optional<trace::TranslationArgument>& translation) override;
    STROBJ* text() override;

  private:
    std::array<std::unique_ptr<engine::EngineSurface>, 3> m_surfaces;
    engine::EnginePath m_path;
    std::array<engine::EngineBrush, 2> m_brushes{};
    engine::EngineClip m_clip{};
    engine::EngineXlate m_translation;
    engine::EngineText m_text{};
};

}  // namespace morvil::tool
