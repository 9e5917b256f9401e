// ServiceTap.h - what a listener is told of a call to one of the engine's exported services: its name, its arguments by name,
// its result. Pointers are those of the caller and good during the telling only. Who listens sets EngineState::serviceTap.
#pragma once

#include <cstdint>
#include <functional>
#include <variant>
#include <vector>

#include "platform/platform.h"

namespace morvil::engine {

// Flags and codes: a number of which the digits say something, not the size.
struct ServiceBits {
    ULONG value = 0;
};
struct ServiceColour {
    ULONG rgb = 0;  // 0x00BBGGRR
};

// std::monostate is the result of a service without one. Blocks that services fill or read are not among the arguments.
using ServiceValue =
    std::variant<std::monostate, std::int64_t, ServiceBits, ServiceColour, SIZEL, HSURF, HPALETTE, HDEV, const SURFOBJ*, const PATHOBJ*,
                 const CLIPOBJ*, const BRUSHOBJ*, const XLATEOBJ*, const STROBJ*, const RECTL*, const POINTL*, const COLORADJUSTMENT*>;

struct ServiceArgument {
    const char* name = nullptr;
    ServiceValue value;
};

struct ServiceCall {
    const char* name = nullptr;
    std::vector<ServiceArgument> arguments;  // in the service's order
    ServiceValue result;
};

using ServiceTap = std::function<void(const ServiceCall&)>;

}  // namespace morvil::engine
