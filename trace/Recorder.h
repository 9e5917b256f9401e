// Recorder.h - a driver around a driver: hands every call on, and keeps it. An engine enables it in place of the driver that
// it stands before. One at a time, on the printing thread.
#pragma once

#include <functional>

#include "trace/Recording.h"

namespace morvil::trace {

using EnableDriver = BOOL (*)(ULONG engineVersion, ULONG size, DRVENABLEDATA* data);

class Recorder {
  public:
    // `begins` is told before the driver is enabled, `heard` of each call when the driver has answered it.
    Recorder(EnableDriver behind, std::function<void()> begins, std::function<void(const Event&)> heard);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // What the engine takes for the driver; valid while the recorder lives.
    [[nodiscard]] static EnableDriver driver();
};

}  // namespace morvil::trace
