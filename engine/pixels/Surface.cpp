// Surface.cpp - bitmaps and palettes of the engine: making, finding, locking and deleting them, with the services that drivers
// call for it. Sizes are checked before memory is taken.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "engine/EngineState.h"
#include "engine/Pixels.h"
#include "engine/pixels/Colours.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/MakeSurface.h"
#include "engine/pixels/Services.h"

namespace morvil::engine {

void FreePixels::operator()(std::uint8_t* bits) const {
    std::free(bits);  // NOLINT(cppcoreguidelines-no-malloc): the counterpart of calloc below
}

PixelMemory allocatePixels(std::uint64_t bytes) {
    // calloc and not new[]: the pages of a large page surface come zeroed from the system when they are first touched.
    return PixelMemory(static_cast<std::uint8_t*>(std::calloc(static_cast<std::size_t>(bytes), 1)));  // NOLINT(cppcoreguidelines-no-malloc)
}

EngineSurface::EngineSurface() : SURFOBJ{} {
    EngineState& state = engineState();
    hsurf = reinterpret_cast<HSURF>(newHandle());
    iUniq = static_cast<ULONG>(state.lastHandle);
    iType = STYPE_BITMAP;
    state.surfacesByHandle.emplace(hsurf, this);
    state.surfaceObjects.insert(this);
}

EngineSurface::~EngineSurface() {
    EngineState& state = engineState();
    state.surfacesByHandle.erase(hsurf);
    state.surfaceObjects.erase(this);
}

EngineSurface* surfaceOf(HSURF handle) {
    const auto& surfaces = engineState().surfacesByHandle;
    const auto found = surfaces.find(handle);
    return found == surfaces.end() ? nullptr : found->second;
}

EngineSurface* surfaceOf(SURFOBJ* object) {
    return engineState().surfaceObjects.contains(object) ? static_cast<EngineSurface*>(object) : nullptr;
}

std::shared_ptr<const Palette> paletteOf(HPALETTE handle) {
    const auto& palettes = engineState().palettes;
    const auto found = palettes.find(handle);
    return found == palettes.end() ? nullptr : found->second;
}

std::size_t liveSurfaces() { return engineState().ownedSurfaces.size(); }
std::size_t livePalettes() { return engineState().palettes.size(); }

std::unique_ptr<EngineSurface> makeSurface(const SurfaceRequest& request) {
    constexpr LONG kMostPixels = 65535;  // a side of a page
    const int bits = bitsOfFormat(request.format);
    if (bits == 0 || request.width <= 0 || request.height <= 0) return nullptr;
    if (request.width > kMostPixels || request.height > kMostPixels) return nullptr;
    const std::int64_t rowBytes = request.rowBytes == 0 ? alignedRowBytes(request.width, bits) : request.rowBytes;
    if (rowBytes < packedRowBytes(request.width, bits)) return nullptr;
    const auto bytes = static_cast<std::uint64_t>(rowBytes) * static_cast<std::uint64_t>(request.height);
    if (bytes > engineState().maximumSurfaceBytes) return nullptr;

    auto surface = std::make_unique<EngineSurface>();
    auto* first = static_cast<std::uint8_t*>(request.bits);
    if (first == nullptr) {
        surface->storage = allocatePixels(bytes);
        first = surface->storage.get();
        if (first == nullptr) return nullptr;
    }
    const bool topDown = (request.flags & BMF_TOPDOWN) != 0;
    surface->sizlBitmap = {request.width, request.height};
    surface->cjBits = static_cast<ULONG>(bytes);
    surface->pvBits = first;
    surface->pvScan0 = topDown ? first : first + (bytes - static_cast<std::uint64_t>(rowBytes));
    surface->lDelta = static_cast<LONG>(topDown ? rowBytes : -rowBytes);
    surface->iBitmapFormat = request.format;
    surface->fjBitmap = static_cast<USHORT>(request.flags & (BMF_TOPDOWN | BMF_NOZEROINIT));
    return surface;
}

std::unique_ptr<EngineSurface> copySurface(const EngineSurface& surface) {
    auto copy = makeSurface({.width = surface.sizlBitmap.cx,
                             .height = surface.sizlBitmap.cy,
                             .rowBytes = 0,
                             .format = surface.iBitmapFormat,
                             .flags = BMF_TOPDOWN,
                             .bits = nullptr});
    if (copy == nullptr) return nullptr;
    copy->palette = surface.palette;
    copy->masks = surface.masks;
    const auto bytes = static_cast<std::size_t>(packedRowBytes(surface.sizlBitmap.cx, bitsOf(surface)));
    for (LONG y = 0; y < surface.sizlBitmap.cy; ++y) std::copy_n(rowOf(surface, y), bytes, rowOf(*copy, y));
    return copy;
}

HSURF keepSurface(std::unique_ptr<EngineSurface> surface) {
    const HSURF handle = surface->hsurf;
    engineState().ownedSurfaces.emplace(handle, std::move(surface));
    return handle;
}

ULONG nearestPixel(const EngineSurface& surface, COLORREF colour) {
    if (const auto layout = directLayoutOf(surface)) return layout->valueOf(colour);
    return nearestIndex(entriesOf(surface), colour);
}

bool hasExactColour(const EngineSurface& surface, COLORREF colour) {
    if (directLayoutOf(surface)) return true;
    const std::vector<COLORREF> entries = entriesOf(surface);
    return std::find(entries.begin(), entries.end(), colour & 0xFFFFFFU) != entries.end();
}

}  // namespace morvil::engine

namespace morvil::engine::services {

HBITMAP createBitmap(SIZEL size, LONG rowBytes, ULONG format, FLONG flags, PVOID bits) {
    // Without bits the row length is the engine's affair, but a driver counts on the length it has asked for.
    auto surface = makeSurface({.width = size.cx, .height = size.cy, .rowBytes = rowBytes, .format = format, .flags = flags, .bits = bits});
    if (surface == nullptr) return nullptr;
    return reinterpret_cast<HBITMAP>(keepSurface(std::move(surface)));
}

BOOL deleteSurface(HSURF surface) {
    EngineState& state = engineState();
    const auto found = state.ownedSurfaces.find(surface);
    if (found == state.ownedSurfaces.end() || found->second->locks > 0) return FALSE;
    const std::unique_ptr<EngineSurface> last = std::move(found->second);
    state.ownedSurfaces.erase(found);
    return TRUE;
}

BOOL markBandingSurface(HSURF surface) {
    EngineSurface* const found = surfaceOf(surface);
    if (found == nullptr) return FALSE;
    found->banding = true;
    return TRUE;
}

BOOL associateSurface(HSURF surface, HDEV device, FLONG hooks) {
    EngineSurface* const found = surfaceOf(surface);
    const Device* const owner = deviceOf(device);
    if (found == nullptr || owner == nullptr) return FALSE;
    found->hdev = device;
    found->hooks = hooks;
    found->palette = owner->palette;
    return TRUE;
}

SURFOBJ* lockSurface(HSURF surface) {
    EngineSurface* const found = surfaceOf(surface);
    if (found != nullptr) ++found->locks;
    return found;
}

VOID unlockSurface(SURFOBJ* surface) {
    EngineSurface* const found = surfaceOf(surface);
    if (found != nullptr && found->locks > 0) --found->locks;
}

HPALETTE createPalette(ULONG mode, ULONG colours, ULONG* entries, FLONG red, FLONG green, FLONG blue) {
    constexpr ULONG kMostColours = 256;
    auto palette = std::make_shared<Palette>();
    palette->mode = mode;
    switch (mode) {
        case PAL_INDEXED:
            if (entries == nullptr || colours == 0 || colours > kMostColours) return nullptr;
            // The fourth byte carries no colour; drivers leave all kinds of things in it.
            std::transform(entries, entries + colours, std::back_inserter(palette->entries), [](ULONG entry) { return entry & 0xFFFFFFU; });
            break;
        case PAL_BITFIELDS:
            if (red == 0 || green == 0 || blue == 0) return nullptr;
            palette->masks = {red, green, blue};
            break;
        case PAL_RGB:
        case PAL_BGR: break;
        default: return nullptr;
    }
    const auto handle = reinterpret_cast<HPALETTE>(newHandle());
    engineState().palettes.emplace(handle, std::move(palette));
    return handle;
}

BOOL deletePalette(HPALETTE palette) { return engineState().palettes.erase(palette) > 0 ? TRUE : FALSE; }

BOOL checkAbort(SURFOBJ* surface) {
    if (surfaceOf(surface) == nullptr || !engineState().abortRequested) return FALSE;
    return engineState().abortRequested() ? TRUE : FALSE;
}

}  // namespace morvil::engine::services
