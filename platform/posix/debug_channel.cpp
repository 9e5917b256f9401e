// debug_channel.cpp - the debugger output. Promises: each text reaches the listener of the host state as it stands, and
// debugOutputWanted tells whether there is one; MORVIL_DEBUG_OUTPUT=stderr sets one that prints. Refuses: attaching later.
#include "platform/common/DebugChannel.h"
#include "platform/posix/HostState.h"
#include "platform/posix/kernel.h"

void OutputDebugStringW(LPCWSTR text) {
    const auto& listener = morvil::hostState().debugListener;
    if (listener && text != nullptr) listener(text);
}

namespace morvil {

bool debugOutputWanted() { return static_cast<bool>(hostState().debugListener); }

}  // namespace morvil
