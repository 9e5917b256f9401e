// MvSystemPapers.h - sizes of the print spooler's paper forms.
#pragma once

#include "platform/platform.h"

namespace morvil {

class MvSystemPapers {
  public:
    // Size of form `index` (from 1) in whole millimetres. The last form is never returned: the index must be less than the
    // number of forms, and partner programs count on it.
    static bool getSizeDimensions(int index, int* width, int* height);
};

}  // namespace morvil
