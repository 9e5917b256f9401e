// EngineState.h - everything of the engine that outlives a call: bitmaps, palettes, devices, memory device contexts and the
// hook that EngCheckAbort asks, and who listens to the services. One record for the process, on the printing thread only; tests
// reset it between cases.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "engine/Objects.h"
#include "engine/ServiceTap.h"
#include "platform/platform.h"

namespace morvil::engine {

// What the engine knows of a device beyond the driver's own record.
struct Device {
    std::shared_ptr<const Palette> palette;  // the instance's default palette; surfaces take it when they are associated
    // Along a cosmetic line one pixel is xStyleStep (yStyleStep on steep lines) of denStyleStep parts of a style unit.
    LONG xStyleStep = 1;
    LONG yStyleStep = 1;
    LONG denStyleStep = 1;
};

struct MemoryContext {
    HBITMAP selected = nullptr;  // null: the one-pixel bitmap that every new context holds
    int stretchMode = BLACKONWHITE;
    COLORADJUSTMENT adjustment{};
};

struct EngineState {
    std::unordered_map<HSURF, EngineSurface*> surfacesByHandle;  // every living bitmap, also sources and DIB sections
    std::unordered_set<const SURFOBJ*> surfaceObjects;           // the same by address
    std::unordered_map<HPALETTE, std::shared_ptr<const Palette>> palettes;
    std::unordered_map<HDEV, Device> devices;
    std::unordered_map<HDC, MemoryContext> contexts;
    HBITMAP stockBitmap = nullptr;                   // stands for the bitmap of a context into which none was selected
    std::function<bool()> abortRequested;            // empty: never
    ServiceTap serviceTap;                           // told of each answered service (Services.cpp); empty: nobody listens
    std::uint64_t maximumSurfaceBytes = 0x7FFFFFFF;  // larger bitmaps are refused, which makes drivers print in bands
    std::uintptr_t lastHandle = 0;
    std::unordered_map<HSURF, std::unique_ptr<EngineSurface>> ownedSurfaces;  // of EngCreateBitmap and CreateDIBSection
};

EngineState& engineState();
// Deletes what is left over and forgets hooks and devices. Handle numbers are not used again.
void resetEngineState();
// A number that no handle of this process has had.
std::uintptr_t newHandle();

HDEV registerDevice(Device device);
void unregisterDevice(HDEV handle);
Device* deviceOf(HDEV handle);  // null for a handle that is not registered

}  // namespace morvil::engine
