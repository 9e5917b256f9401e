// function_table.h - the functions that the driver hooks, as handed to the engine.
#pragma once

#include <span>

#include "platform/platform.h"

namespace morvil {

// Lives as long as the driver is loaded. The engine's record takes a writable pointer; nobody writes.
std::span<DRVFN> functionTable();

}  // namespace morvil
