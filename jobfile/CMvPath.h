// CMvPath.h - a point store on disk for paths with very many curves: points are appended to "Path.vec" while the path is
// enumerated and read back one curve at a time. One per process, held by the driver's state. Printing thread only.
// The file is ordered by curve, so reading remembers where the last curve began and goes on there: reading all curves in turn
// costs one pass, not one for each curve.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/common/FileStream.h"
#include "platform/common/Text.h"

namespace morvil {

class CMvPath {
  public:
    // Deletes a store that an earlier process left in the folder. An empty folder gives a store without a file.
    explicit CMvPath(const WCHAR* workFolder);

    // Always 1; a negative index or a file that cannot be opened is reported to the debugger output only.
    int addPoint(int index, int x, int y, int flags, int curve);
    // Fills both arrays, or with no arrays counts the points of the curve into `count`. 1 when at least one was found, else 0.
    // No more than `room` points are filled in, should the file have grown since they were counted.
    int getPointsToCurve(int curve, std::int32_t* xs, std::int32_t* ys, std::uint32_t* count, std::uint32_t room = UINT32_MAX);
    // For the next path, when its predecessor's file has been put away.
    void resetCounters();

    [[nodiscard]] std::uint32_t pointCount() const { return m_pointCount; }
    [[nodiscard]] int lastCurve() const { return m_lastCurve; }
    [[nodiscard]] const WCHAR* filePath() const { return m_path.c_str(); }

  private:
    struct Cursor {
        int curve;              // all lines in front of `position` belong to lower curves
        std::int64_t position;  // where a line begins
    };

    WString m_path;
    std::uint32_t m_pointCount = 0;
    int m_lastCurve = 0;
    bool m_isOrdered = true;  // every point so far came with the curve of its predecessor or a higher one
    std::optional<Cursor> m_cursor;
};

}  // namespace morvil
