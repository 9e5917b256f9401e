// mutex.cpp - a mutex that exists may grant waiting and releasing to everybody, but not the full access that creating asks for.
#include "platform/common/SharedMutex.h"

namespace morvil {

HANDLE openOrCreateMutex(const WCHAR* name, bool& existed) {
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, name);
    existed = mutex != nullptr;
    return existed ? mutex : CreateMutexW(nullptr, FALSE, name);
}

}  // namespace morvil
