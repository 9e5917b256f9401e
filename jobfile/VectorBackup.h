// VectorBackup.h - moves the vector section aside while the bitmap section in front of it is written: a byte-for-byte copy in
// a file of the spool folder, from the section's start to the end of the job file. The file is removed with this object at the
// latest. Several processes may print into one folder: who finds "BackUp_Polygon.dat" there uses a name with its process
// number, so that nobody restores another one's vectors.
#pragma once

#include <cstdint>

#include "platform/common/FileStream.h"
#include "platform/common/Text.h"

namespace morvil {

class VectorBackup {
  public:
    VectorBackup() = default;
    ~VectorBackup() { remove(); }
    VectorBackup(const VectorBackup&) = delete;
    VectorBackup& operator=(const VectorBackup&) = delete;

    // Copies from `start` to the end of the job file. False, logged and without a file, when that cannot be done whole.
    bool save(FileStream& job, std::int64_t start, const WString& preferredPath);
    // Writes the copy at `start`; `end` is set behind it unless the copy is empty. False and logged when a file cannot be
    // opened or the copy was not written whole.
    bool restore(const WCHAR* jobFile, std::int64_t start, std::int64_t& end);
    void remove();

    [[nodiscard]] const WString& path() const { return m_path; }

  private:
    bool create(FileStream& file, const WString& preferredPath);

    WString m_path;  // empty: there is none
};

}  // namespace morvil
