// CMvPath.h - a point store on disk for paths with very many curves: points are appended to "Path.vec" while the path is
// enumerated and read back one curve at a time. One per process, held by the driver's state. Printing thread only.
#pragma once

#include <cstdint>

#include "platform/common/Text.h"

namespace morvil {

class CMvPath {
  public:
    // Deletes a store that an earlier process left in the folder.
    explicit CMvPath(const WCHAR* workFolder);

    // Always 1; a negative index or a file that cannot be opened is reported to the debugger output only.
    int addPoint(int index, int x, int y, int flags, int curve);
    // Fills the arrays, or with no arrays counts the points of the curve. 1 when at least one was found.
    int getPointsToCurve(int curve, std::int32_t* xs, std::int32_t* ys, std::uint32_t* count);
    void resetCounters();

    [[nodiscard]] std::uint32_t pointCount() const { return m_pointCount; }
    [[nodiscard]] int lastCurve() const { return m_lastCurve; }
    [[nodiscard]] const WCHAR* filePath() const { return m_path.c_str(); }

  private:
    WString m_path;
    std::uint32_t m_pointCount = 0;
    int m_lastCurve = 0;
};

}  // namespace morvil
