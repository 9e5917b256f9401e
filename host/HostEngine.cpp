#include "host/HostEngine.h"

#include "trace/Objects.h"

namespace morvil::host {

namespace {

HostEngine* theEngine = nullptr;  // services have no room for a context

WORD bitsOf(ULONG format) {
    constexpr std::array<WORD, 7> kBits{0, 1, 4, 8, 16, 24, 32};
    return format < kBits.size() ? kBits[format] : WORD{0};
}

struct SectionInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colours[256];
};

// Black and white for 1 bit, a grey ramp for 8, until a device brings its palette.
SectionInfo sectionInfo(SIZEL size, WORD bits, bool topDown) {
    SectionInfo info{};
    info.header.biSize = sizeof(info.header);
    info.header.biWidth = size.cx;
    info.header.biHeight = topDown ? -size.cy : size.cy;
    info.header.biPlanes = 1;
    info.header.biBitCount = bits;
    const unsigned last = bits > 8 ? 0U : (1U << bits) - 1;
    for (unsigned i = 0; last != 0 && i <= last; ++i) {
        const auto grey = static_cast<BYTE>(i * 255 / last);
        info.colours[i] = {grey, grey, grey, 0};
    }
    return info;
}

}  // namespace

HostEngine* hostEngine() { return theEngine; }

HostEngine::HostEngine(std::uint64_t largest, const Mishap& mishap) : m_largest(largest), m_mishap(mishap) { theEngine = this; }

HostEngine::~HostEngine() {
    while (!m_surfaces.empty()) deleteSurface(m_surfaces.begin()->first);
    theEngine = nullptr;
}

HDEV HostEngine::openDevice() {
    const auto device = reinterpret_cast<HDEV>(++m_lastHandle);
    m_devices[device] = nullptr;
    return device;
}

void HostEngine::deviceReady(HDEV device, const GDIINFO& /*caps*/, const DEVINFO& info) { m_devices[device] = info.hpalDefault; }

void HostEngine::closeDevice(HDEV device) { m_devices.erase(device); }

HBITMAP HostEngine::createBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags) {
    const WORD bits = bitsOf(format);
    const bool topDown = (flags & BMF_TOPDOWN) != 0;
    const std::int64_t wanted = (static_cast<std::int64_t>(size.cx) * bits + 31) / 32 * 4;
    if (bits == 0 || size.cx < 1 || size.cy < 1 || rowBytes != wanted) return nullptr;
    const std::uint64_t bytes = static_cast<std::uint64_t>(rowBytes) * static_cast<std::uint64_t>(size.cy);
    if (bytes > m_largest || bytes > 0xFFFFFFFFU) return nullptr;
    const SectionInfo info = sectionInfo(size, bits, topDown);
    void* memory = nullptr;
    auto made = std::make_unique<HostSurface>();
    made->bitmap = CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, &memory, nullptr, 0);
    if (made->bitmap == nullptr) return nullptr;
    SURFOBJ& object = made->object;
    object.hsurf = reinterpret_cast<HSURF>(made->bitmap);
    object.sizlBitmap = size;
    object.cjBits = static_cast<ULONG>(bytes);
    object.pvBits = memory;
    object.lDelta = topDown ? rowBytes : -rowBytes;
    object.pvScan0 = topDown ? memory : static_cast<BYTE*>(memory) + (bytes - static_cast<std::uint64_t>(rowBytes));
    object.iBitmapFormat = format;
    object.iType = STYPE_BITMAP;
    object.fjBitmap = static_cast<USHORT>(flags);
    const HBITMAP bitmap = made->bitmap;
    m_surfaces[object.hsurf] = std::move(made);
    return bitmap;
}

bool HostEngine::deleteSurface(HSURF surface) {
    const auto found = m_surfaces.find(surface);
    if (found == m_surfaces.end()) return false;
    DeleteObject(found->second->bitmap);
    m_surfaces.erase(found);
    return true;
}

HostSurface* HostEngine::surface(HSURF surface) {
    const auto found = m_surfaces.find(surface);
    return found == m_surfaces.end() ? nullptr : found->second.get();
}

SURFOBJ* HostEngine::lock(HSURF handle) {
    HostSurface* const found = surface(handle);
    if (found == nullptr) return nullptr;
    ++m_locks;
    return &found->object;
}

// A surface takes the palette of its device.
bool HostEngine::associate(HSURF handle, HDEV device) {
    HostSurface* const found = surface(handle);
    if (found == nullptr || !m_devices.contains(device)) return false;
    found->object.hdev = device;
    const auto palette = m_palettes.find(m_devices[device]);
    if (palette == m_palettes.end() || bitsOf(found->object.iBitmapFormat) > 8) return true;
    std::vector<RGBQUAD> colours;
    for (const ULONG entry : palette->second) colours.push_back({static_cast<BYTE>(entry >> 16), static_cast<BYTE>(entry >> 8), static_cast<BYTE>(entry), 0});
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ previous = SelectObject(dc, found->bitmap);
    SetDIBColorTable(dc, 0, static_cast<UINT>(colours.size()), colours.data());
    SelectObject(dc, previous);
    DeleteDC(dc);
    return true;
}

HPALETTE HostEngine::createPalette(const ULONG* entries, ULONG count) {
    const auto palette = reinterpret_cast<HPALETTE>(++m_lastHandle);
    m_palettes[palette] = entries == nullptr ? std::vector<ULONG>() : std::vector<ULONG>(entries, entries + count);
    return palette;
}

SURFOBJ* HostEngine::pageSurface(HSURF handle, DHPDEV instance) {
    HostSurface* const page = surface(handle);
    if (page == nullptr) return nullptr;
    page->object.dhpdev = instance;
    return &page->object;
}

SURFOBJ* HostEngine::otherSurface(const std::optional<trace::SurfaceArgument>& surface, std::size_t place) {
    if (!surface) return nullptr;
    SURFOBJ& other = m_others.at(place);
    other = {};
    other.sizlBitmap = surface->size;
    other.lDelta = surface->rowStep;
    other.iBitmapFormat = surface->format;
    other.cjBits = surface->bytes;
    other.fjBitmap = static_cast<USHORT>(surface->flags);
    other.iType = STYPE_BITMAP;
    return &other;
}

PATHOBJ* HostEngine::path(const std::optional<trace::PathArgument>& path) {
    if (!path) return nullptr;
    m_path.fl = path->flags;
    m_path.cCurves = path->curves;
    m_path.parts = path->parts;
    m_path.next = 0;
    return &m_path;
}

BRUSHOBJ* HostEngine::brush(const std::optional<trace::BrushArgument>& brush, std::size_t place) {
    if (!brush) return nullptr;
    HostBrush& made = m_brushes.at(place);
    trace::restore(made, *brush);
    made.rgb = brush->rgb;
    return &made;
}

CLIPOBJ* HostEngine::clip(const std::optional<trace::ClipArgument>& clip) {
    if (!clip) return nullptr;
    m_clip = {};
    trace::restore(m_clip, *clip);
    return &m_clip;
}

XLATEOBJ* HostEngine::translation(const std::optional<trace::TranslationArgument>& translation) {
    if (!translation) return nullptr;
    trace::restore(m_translation, *translation, m_translation.table);
    m_translation.sourcePalette = translation->sourcePalette;
    return &m_translation;
}

}  // namespace morvil::host
