// TextTrace.h - a call of the driver on one line, for people: function, its arguments by name, result. Bits are told by their
// number, an argument that was not given is left out.
#pragma once

#include <string>

#include "trace/Recording.h"

namespace morvil::trace {

std::string toText(const Event& event);

}  // namespace morvil::trace
