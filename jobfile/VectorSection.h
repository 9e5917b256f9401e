// VectorSection.h - the DrawCommands group at the end of the job file: where it stands, how a command is inserted in front of
// its closing line, and whether a polygon line stands in it already. Owns the stream only between open and commit or close;
// each command is one write that leaves a complete group on disk. Printing thread only.
#pragma once

#include <cstdint>
#include <string>

#include "jobfile/PolygonIndex.h"
#include "platform/common/FileStream.h"

namespace morvil {

class VectorSection {
  public:
    [[nodiscard]] std::int64_t start() const { return m_start; }  // of the opening line
    [[nodiscard]] std::int64_t end() const { return m_end; }      // behind the closing line: the end of the file
    // Both at `position`: no group has been written.
    void placeAt(std::int64_t position);
    // The group was copied as it is to a new place.
    void movedTo(std::int64_t start, std::int64_t end);

    // Writes an empty group at start(). False when the file could not be opened or written.
    bool writeEmpty(const WCHAR* jobFile);

    // One command: open, then contains and add in any number, then commit or close.
    bool open(const WCHAR* jobFile);
    // False when the file does not reach to where the closing line must end.
    bool findPlace();
    // Whether the text of a polygon line ("<" to ">") stands in the group or among what was added since open.
    bool contains(std::string_view text);
    // A whole line with its line end.
    void add(std::string_view line);
    // Writes what was added and the closing line at once. False when that failed; end() then stays where it was.
    bool commit();
    void close();

  private:
    [[nodiscard]] bool textStandsAt(std::int64_t place, std::string_view text);
    [[nodiscard]] std::int64_t insertionPlace() const;

    FileStream m_file;
    std::int64_t m_start = 0;
    std::int64_t m_end = 0;
    std::int64_t m_fileSize = 0;  // when it was opened
    std::string m_pending;
    std::string m_compared;
    PolygonIndex m_index;
};

}  // namespace morvil
