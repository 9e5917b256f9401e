// WideHalftone.cpp - for processors without wide loops of their own: the plain ones do.
#include "raster/WideHalftone.h"

namespace morvil {

const WideHalftone* wideHalftone(CpuLevel) { return nullptr; }
CpuLevel bestCpuLevel() { return CpuLevel::Plain; }

}  // namespace morvil
