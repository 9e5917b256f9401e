// HostEngine.h - what the host keeps for the driver: surfaces whose bits are real bitmap sections of the system, palettes,
// devices, and the objects of the call being made. The engine services (Services.h) work on the one instance.
#pragma once

#include <map>
#include <memory>

#include "trace/Replayer.h"

namespace morvil::host {

// A surface of the driver; its handle is the bitmap's, so that the system's memory device contexts take it.
struct HostSurface {
    SURFOBJ object{};
    HBITMAP bitmap = nullptr;
};
struct HostPath : PATHOBJ {
    std::vector<trace::PathPart> parts;
    std::size_t next = 0;
};
struct HostBrush : BRUSHOBJ {
    ULONG rgb = 0;
};
struct HostTranslation : XLATEOBJ {
    std::vector<ULONG> table;
    std::vector<ULONG> sourcePalette;
};

// What is to go wrong while the driver runs; nothing, unless told.
struct Mishap {
    static constexpr std::size_t kNever = static_cast<std::size_t>(-1);
    std::size_t refused = kNever;    // the one service, counted from 0 among those that can be refused
    std::size_t abortFrom = kNever;  // the question, counted from 0, from which on the document counts as aborted
};

class HostEngine : public trace::ReplayEngine {
  public:
    HostEngine(std::uint64_t largest, const Mishap& mishap);
    ~HostEngine() override;
    HostEngine(const HostEngine&) = delete;
    HostEngine& operator=(const HostEngine&) = delete;

    HDEV openDevice() override;
    void deviceReady(HDEV device, const GDIINFO& caps, const DEVINFO& info) override;
    void closeDevice(HDEV device) override;
    SURFOBJ* pageSurface(HSURF surface, DHPDEV instance) override;
    SURFOBJ* otherSurface(const std::optional<trace::SurfaceArgument>& surface, std::size_t place) override;
    PATHOBJ* path(const std::optional<trace::PathArgument>& path) override;
    BRUSHOBJ* brush(const std::optional<trace::BrushArgument>& brush, std::size_t place) override;
    CLIPOBJ* clip(const std::optional<trace::ClipArgument>& clip) override;
    XLATEOBJ* translation(const std::optional<trace::TranslationArgument>& translation) override;
    STROBJ* text() override { return &m_text; }

    // For the services.
    HBITMAP createBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags);
    bool deleteSurface(HSURF surface);
    HostSurface* surface(HSURF surface);
    bool associate(HSURF surface, HDEV device);
    HPALETTE createPalette(const ULONG* entries, ULONG count);
    bool deletePalette(HPALETTE palette) { return m_palettes.erase(palette) != 0; }
    // Whether the service that is asked for now is refused, and whether the document counts as aborted. Each call counts.
    bool refuses() { return m_services++ == m_mishap.refused; }
    bool aborted() { return m_abortQuestions++ >= m_mishap.abortFrom; }
    [[nodiscard]] std::size_t services() const { return m_services; }
    [[nodiscard]] std::size_t abortQuestions() const { return m_abortQuestions; }
    SURFOBJ* lock(HSURF surface);
    void unlock() { --m_locks; }
    // What the driver has not given back.
    [[nodiscard]] std::size_t leftOver() const { return m_surfaces.size() + m_palettes.size() + m_locks; }

  private:
    std::uint64_t m_largest;  // bytes of a surface
    Mishap m_mishap;
    std::size_t m_services = 0;
    std::size_t m_abortQuestions = 0;
    std::size_t m_locks = 0;
    std::map<HSURF, std::unique_ptr<HostSurface>> m_surfaces;
    std::map<HPALETTE, std::vector<ULONG>> m_palettes;
    std::map<HDEV, HPALETTE> m_devices;
    std::uintptr_t m_lastHandle = 0x100000;
    std::array<SURFOBJ, 3> m_others{};
    HostPath m_path{};
    std::array<HostBrush, 2> m_brushes{};
    CLIPOBJ m_clip{};
    HostTranslation m_translation{};
    STROBJ m_text{};
};

// The one that the services work on; null when none lives.
HostEngine* hostEngine();

}  // namespace morvil::host
