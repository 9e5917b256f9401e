// usual_forms.h - the paper forms that every print server knows, in the platform's order: form 1 is Letter, form 9 is A4.
#pragma once

#include <vector>

namespace morvil {

struct SpoolerForm;
std::vector<SpoolerForm> usualForms();

}  // namespace morvil
