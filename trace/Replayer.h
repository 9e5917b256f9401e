// Replayer.h - makes the calls of a recording to a driver again, in their order. What stands behind the objects that the driver
// gets is the affair of the engine that plays: it makes them from the recorded arguments.
#pragma once

#include <memory>

#include "trace/Recording.h"

namespace morvil::trace {

// What an engine lends for one call. Pointers stay valid until the next call of the same member; null gives null.
class ReplayEngine {
  public:
    virtual ~ReplayEngine() = default;
    // The device of an instance, registered with the engine; told of the instance's information once the driver has filled it.
    virtual HDEV openDevice() = 0;
    virtual void deviceReady(HDEV device, const GDIINFO& caps, const DEVINFO& info) = 0;
    virtual void closeDevice(HDEV device) = 0;
    // The object behind the handle that the driver made, with its instance entered.
    virtual SURFOBJ* pageSurface(HSURF surface, DHPDEV instance) = 0;
    // A bitmap as large as the recorded one, empty, at `place` 1 (source) or 2 (mask).
    virtual SURFOBJ* otherSurface(const std::optional<SurfaceArgument>& surface, std::size_t place) = 0;
    virtual PATHOBJ* path(const std::optional<PathArgument>& path) = 0;
    virtual BRUSHOBJ* brush(const std::optional<BrushArgument>& brush, std::size_t place) = 0;
    virtual CLIPOBJ* clip(const std::optional<ClipArgument>& clip) = 0;
    virtual XLATEOBJ* translation(const std::optional<TranslationArgument>& translation) = 0;
    virtual STROBJ* text() = 0;
};

struct ReplayReport {
    bool done = false;
    std::string reason;  // the call that went differently, for people
    std::size_t calls = 0;
};

// Stops at the first call whose result differs from the recorded one: the driver's way parts there.
ReplayReport replay(const Recording& recording, BOOL (*enableDriver)(ULONG, ULONG, DRVENABLEDATA*), ReplayEngine& engine);

}  // namespace morvil::trace
