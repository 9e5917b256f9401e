// ImportPatch.h - puts functions of the host in place of those that a loaded library imports. Wine's graphics library has the
// entries of the engine services but nothing behind them.
#pragma once

#include <string>

#include "host/Services.h"

namespace morvil::host {

// Names of engine services (Eng..., ...OBJ_...) that the library imports and no service stands in for; empty when all do.
std::string replaceImports(HMODULE library, std::span<const Service> services);

}  // namespace morvil::host
