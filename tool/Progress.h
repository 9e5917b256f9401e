// Progress.h - one line on a terminal that shows how far a long print is. Silent for the first half second and elsewhere.
#pragma once

#include <chrono>
#include <iosfwd>

#include "platform/platform.h"

namespace morvil::tool {

class Progress {
  public:
    Progress(std::ostream& stream, bool visible) : m_stream(stream), m_visible(visible), m_start(std::chrono::steady_clock::now()) {}
    void show(std::size_t page, LONG rowsDone, LONG rows);
    // Wipes the line.
    void clear();

  private:
    std::ostream& m_stream;
    bool m_visible;
    bool m_drawn = false;
    std::chrono::steady_clock::time_point m_start;
};

}  // namespace morvil::tool
