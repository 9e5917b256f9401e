#include "support/Environment.h"

#include <cstdlib>

namespace morvil::test {

void setEnvironment(const char* name, const char* value) { ::setenv(name, value, 1); }
void clearEnvironment(const char* name) { ::unsetenv(name); }

}  // namespace morvil::test
