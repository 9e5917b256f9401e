// Services.h - the engine services that the driver asks for, on the host's own objects. Drawing services answer that they have
// drawn: the page's bits come from the recording. Each can be made to go wrong (HostEngine.h).
#pragma once

#include <span>

#include "platform/platform.h"

namespace morvil::host {

struct Service {
    const char* name;
    void (*function)();
};

std::span<const Service> services();

}  // namespace morvil::host
