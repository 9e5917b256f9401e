// LockFile.h - a lock that all processes of this data root respect, held while the object lives. The system drops it when the
// process dies. Waits without limit; holders keep it for one small file at most.
#pragma once

#include <fcntl.h>

#include <string>
#include <string_view>

namespace morvil {

class LockFile {
  public:
    // Locks what `subject` (any text, usually a path) names among the locks of `kind`.
    LockFile(std::string_view kind, std::string_view subject);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    // False, with the last error set, when the lock file cannot be opened.
    [[nodiscard]] bool held() const { return m_file >= 0; }

  private:
    int m_file = -1;
};

// Opens or makes a lock file that every account may use; -1 with errno set.
int openLockFile(const std::string& hostPath);
// One byte of a lock file: the ranges that locks are taken on.
struct flock rangeOf(short type, long byte);

}  // namespace morvil
