// NamedMutex.h - a named mutex as this process sees it: one object for each open name, shared by its handles.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/posix/HandleTable.h"
#include "platform/posix/kernel.h"

namespace morvil {

class NamedMutex : public HandleObject {
  public:
    virtual DWORD wait(DWORD milliseconds) = 0;
    // False when the calling thread does not hold it.
    virtual bool release() = 0;
    [[nodiscard]] virtual bool isHeld() = 0;
};

}  // namespace morvil
