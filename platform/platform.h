// platform.h - brings in the system's own names: types, structures, constants and functions.
// `platform/host` is the folder of the host that the build was configured for (posix/ or windows/). On Windows it includes
// the system's headers and adds nothing; elsewhere it declares the same names with the layouts of 64-bit Windows.
// Every source file of the project includes this header instead of a system header.
#pragma once

#include "platform/host/system.h"
