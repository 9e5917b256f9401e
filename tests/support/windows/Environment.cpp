#include "support/Environment.h"

#include <cstdlib>

namespace morvil::test {

void setEnvironment(const char* name, const char* value) { ::_putenv_s(name, value); }
void clearEnvironment(const char* name) { ::_putenv_s(name, ""); }

}  // namespace morvil::test
