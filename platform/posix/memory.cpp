// memory.cpp - blocks that cross between driver and engine. Promises: every block is cleared, whatever the flags; a block of
// 0 bytes exists; blocks are counted until they are freed. Refuses: movable blocks (there is no flag for them).
#include <cstdlib>

#include "platform/posix/Errors.h"
#include "platform/posix/HostState.h"
#include "platform/posix/PlatformCalls.h"

HLOCAL LocalAlloc(UINT, SIZE_T bytes) {
    void* const block = morvil::platformCalls().allocate(bytes == 0 ? 1 : bytes);
    if (block == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    ++morvil::hostState().blocks;
    return block;
}

HLOCAL LocalFree(HLOCAL block) {
    if (block == nullptr) return nullptr;
    std::free(block);
    --morvil::hostState().blocks;
    return nullptr;
}
