// BackupPolygons.h - reads the polygons back from the copy of a vector section (VectorBackup.h): line after line, as text that
// may have been written by anybody. Lives for one walk over the file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jobfile/PolygonPoints.h"
#include "platform/common/FileStream.h"

namespace morvil {

struct PolygonLine {
    std::uint32_t colour = 0;  // 0x00BBGGRR
    std::vector<std::int32_t> xs;
    std::vector<std::int32_t> ys;
};

class BackupLines {
  public:
    explicit BackupLines(const WCHAR* path) : m_file(path, OpenMode::Update) {}

    [[nodiscard]] bool isOpen() const { return m_file.isOpen(); }
    // The next line with its line feed, which the last one may lack. False at the end, and when the file cannot be read.
    bool next(std::string& line);
    [[nodiscard]] bool failed() const { return m_file.failed(); }

  private:
    bool fill();

    FileStream m_file;
    std::vector<std::uint8_t> m_block;
    std::size_t m_at = 0;
    std::size_t m_end = 0;
};

// The polygon of a line. False for every other line, and for a polygon without points. Of a line that holds fewer points than
// it says, those that are there. The arrays' memory is used again.
bool readPolygon(std::string_view line, PolygonLine& polygon);

// The box around the polygons in the first 150 lines; all zero when there are none. Width and height are those of the job in
// pixels. Nothing when the file cannot be opened or read.
std::optional<BoundingBox> getVectorBoundingBox(const WCHAR* path, std::int32_t width, std::int32_t height);

}  // namespace morvil
