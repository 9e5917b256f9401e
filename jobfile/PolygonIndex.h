// PolygonIndex.h - knows every polygon line of the vector section by a hash of its text and its place in the section, so that
// the question for a duplicate costs the same however many lines there are. An answer "yes" is only given after the bytes at
// that place were compared, so the index can make a search shorter but never wrong. Owned by the job writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/common/FileStream.h"

namespace morvil {

class PolygonIndex {
  public:
    // The section is empty and ends `end` bytes behind the start of the file.
    void reset(std::int64_t fileEnd);
    // Nothing is known any more; the next search reads the file.
    void invalidate() { m_fileEnd = -1; }
    // The section was moved as it is: places count from its start.
    void moved(std::int64_t fileEnd) { m_fileEnd = isValid() ? fileEnd : -1; }
    [[nodiscard]] bool isValid() const { return m_fileEnd >= 0; }
    // What the index knows is what the file holds, as far as its size tells.
    [[nodiscard]] bool fits(std::int64_t fileSize) const { return isValid() && m_fileEnd == fileSize; }

    // A line text (from "<" to ">") that stands `place` bytes behind the start of the section.
    void add(std::string_view text, std::int64_t place);
    void setFileEnd(std::int64_t fileEnd) { m_fileEnd = fileEnd; }

    // Asks `isTextAt(place)` for every place whose hash is that of the text, until one says yes.
    template <typename Predicate>
    [[nodiscard]] bool contains(std::string_view text, Predicate isTextAt) const {
        if (m_slots.empty()) return false;
        const std::uint64_t hash = hashOf(text);
        for (std::size_t i = hash & mask(); m_slots[i].place >= 0; i = (i + 1) & mask()) {
            if (m_slots[i].hash == hash && isTextAt(m_slots[i].place)) return true;
        }
        return false;
    }

    // Reads the section from `start` to the end of the file. False when a read fails; the index is invalid then.
    bool rebuild(FileStream& file, std::int64_t start);

    [[nodiscard]] std::size_t size() const { return m_count; }

  private:
    struct Slot {
        std::uint64_t hash;
        std::int64_t place;  // -1: free
    };

    [[nodiscard]] static std::uint64_t hashOf(std::string_view text);
    [[nodiscard]] std::size_t mask() const { return m_slots.size() - 1; }
    void insert(const Slot& slot);
    void grow();
    void addLine(std::string_view line, std::int64_t place);

    std::vector<Slot> m_slots;  // open addressing, a power of two, at most half full
    std::size_t m_count = 0;
    std::int64_t m_fileEnd = -1;
};

}  // namespace morvil
