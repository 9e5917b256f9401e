// VersionedProgram.h - the bytes of a Windows program file that holds nothing but a version.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace morvil::test {

// The four parts as the version resource holds them: major, minor, build, revision.
std::string programWithVersion(const std::array<std::uint16_t, 4>& version);

}  // namespace morvil::test
