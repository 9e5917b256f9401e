// CMvFsServices.h - file-system services of the configuration: tests, folders with an access list for every user, sizes and
// version texts. No state; failures are logged and answered with a neutral result.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/common/Text.h"

namespace morvil {

class CMvFsServices {
  public:
    // Creates the folder and gives the built-in Users group full access to it and to everything made inside, so that every
    // user of the machine can write the shared configuration. False when a step failed; the folder may exist then.
    bool createDirectory(const WCHAR* path);
    // Whether the file can be opened, or a file can be made in the folder; false for what is missing or read-only.
    bool pathWritable(const WCHAR* path);
    // Size in bytes; -1 on failure.
    std::int64_t getSize(const WCHAR* file);
    // "6.00.0.00": major, minor with two digits, build, revision with two digits; "0.0.0.0" for a file without a version.
    WString getFileVersion(const WCHAR* file);
};

// The version text of a version resource's two halves (16 bits each: major, minor, build, revision).
WString fileVersionText(DWORD high, DWORD low);

}  // namespace morvil
