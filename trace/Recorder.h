// Recorder.h - a driver around a driver: hands every call on, and keeps it. An engine enables it in place of the driver that
// it stands before. One at a time, on the printing thread.
#pragma once

#include <functional>

#include "trace/Recording.h"

namespace morvil::trace {

using EnableDriver = BOOL (*)(ULONG engineVersion, ULONG size, DRVENABLEDATA* data);

// Told in this order: that the driver is about to be enabled; that a call of it begins; what it said of its device, when
// DrvEnablePDEV has succeeded; the call, when it has been answered.
struct Listener {
    std::function<void()> begins;
    std::function<void()> callBegins = [] {};
    std::function<void(const GDIINFO&, const DEVINFO&)> deviceTold = [](const GDIINFO&, const DEVINFO&) {};
    std::function<void(const Event&)> heard;
};

class Recorder {
  public:
    Recorder(EnableDriver behind, Listener listener);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // What the engine takes for the driver; valid while the recorder lives.
    [[nodiscard]] static EnableDriver driver();
};

}  // namespace morvil::trace
