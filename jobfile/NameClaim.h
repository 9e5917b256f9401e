// NameClaim.h - tells the processes that print into one spool folder apart: who holds the claim on a file's path may write
// that file, everybody else chooses another name. A claim is a named mutex, so it ends with its process however that ends,
// and a file that nobody claims is a leftover. Belongs to the thread that took it.
#pragma once

#include "platform/common/Text.h"

namespace morvil {

class NameClaim {
  public:
    NameClaim() = default;
    ~NameClaim() { release(); }
    NameClaim(const NameClaim&) = delete;
    NameClaim& operator=(const NameClaim&) = delete;

    // False when somebody else holds the claim. A system that has no mutex to give counts as a granted claim: printing goes
    // on as if alone. The claim held before is given back.
    bool take(const WString& path);
    void release();

  private:
    HANDLE m_mutex = nullptr;
};

}  // namespace morvil
