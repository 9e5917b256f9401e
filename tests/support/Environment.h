// Environment.h - the environment variables of this process and of the libraries that it loads.
#pragma once

namespace morvil::test {

void setEnvironment(const char* name, const char* value);
void clearEnvironment(const char* name);

}  // namespace morvil::test
