// Levels.cpp - chooses by what the processor has.
#include "raster/x86/Levels.h"

namespace morvil {

const WideHalftone* wideHalftone(CpuLevel level) {
    switch (level) {
        case CpuLevel::Wide128: return &kSse2Halftone;
        case CpuLevel::Wide256: return __builtin_cpu_supports("avx2") != 0 ? &kAvx2Halftone : nullptr;
        case CpuLevel::Plain: break;
    }
    return nullptr;
}

CpuLevel bestCpuLevel() { return wideHalftone(CpuLevel::Wide256) != nullptr ? CpuLevel::Wide256 : CpuLevel::Wide128; }

}  // namespace morvil
