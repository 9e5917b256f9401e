// DebugChannel.h - whether anybody can see debugger output, so that texts need not be formatted for nobody.
#pragma once

namespace morvil {

// On Windows always true (a listener may attach at any moment); elsewhere true while a listener is set (see
// platform/posix/debug_channel.cpp).
bool debugOutputWanted();

}  // namespace morvil
