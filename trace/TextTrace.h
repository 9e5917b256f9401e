// TextTrace.h - a call on one line, for people: function, what distinguishes its arguments, result.
#pragma once

#include <string>

#include "trace/Recording.h"

namespace morvil::trace {

std::string toText(const Event& event);

}  // namespace morvil::trace
