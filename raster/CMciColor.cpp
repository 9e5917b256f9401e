#include "raster/CMciColor.h"

#include "driver/log/Log.h"

namespace morvil {

// The number in the texts tells colours apart: the low 32 bits of the colour's address.

CMciColor::CMciColor() {
    debugPrint(TEXT("CMciColor::CMciColor, (%d)\n"), low32(this));
    debugPrint(TEXT("CMciColor::CMciColor finished\n"));
}

CMciColor::CMciColor(const CMciColor& copyFrom)
    : id(copyFrom.id),
      target(copyFrom.target),
      level(copyFrom.level),
      red(copyFrom.red),
      green(copyFrom.green),
      blue(copyFrom.blue),
      version(copyFrom.version),
      replacedBy(copyFrom.replacedBy),
      name(copyFrom.name) {
    debugPrint(TEXT("CMciColor::CMciColor, (%d)\n"), low32(this));
    debugPrint(TEXT("CMciColor::CMciColor(CMciColor* pCopyFrom) finished\n"));
}

CMciColor::~CMciColor() {
    debugPrint(TEXT("CMciColor::~CMciColor, (%d)\n"), low32(this));
    debugPrint(TEXT("CMciColor::~CMciColor finished\n"));
}

}  // namespace morvil
