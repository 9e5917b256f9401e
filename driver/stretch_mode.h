// stretch_mode.h - how the engine is to stretch bitmaps in the process mode at hand; the caller's wish does not count.
#pragma once

#include "driver/Pdev.h"

namespace morvil {

// COLORONCOLOR or HALFTONE for a source of the given format (0: no source). Logs the choice.
ULONG chooseStretchMode(const ConfigurationRecord& configuration, ULONG sourceFormat, ULONG requestedMode);

}  // namespace morvil
