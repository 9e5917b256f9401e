// RecordingFile.h - recordings as files: a magic, then the members in the order of Recording.h, little-endian, each list behind
// its length, each optional member behind a byte. Lengths are checked against the rest of the file before anything is allocated.
#pragma once

#include <iosfwd>

#include "trace/Recording.h"

namespace morvil::trace {

// Takes the recording, which may hold the bits of large pages: give it away when it is not needed any more.
Bytes toBytes(Recording recording);

// Nothing when the bytes are no whole recording; `reason` then tells where they stop making sense.
std::optional<Recording> fromBytes(const Bytes& bytes, std::string& reason);

}  // namespace morvil::trace
