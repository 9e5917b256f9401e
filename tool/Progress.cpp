#include "tool/Progress.h"

#include <ostream>

namespace morvil::tool {

void Progress::show(std::size_t page, LONG rowsDone, LONG rows) {
    using namespace std::chrono_literals;
    if (!m_visible || rows <= 0 || std::chrono::steady_clock::now() - m_start < 500ms) return;
    m_stream << "\rpage " << page + 1 << ": " << static_cast<long long>(rowsDone) * 100 / rows << " %  " << std::flush;
    m_drawn = true;
}

void Progress::clear() {
    if (m_drawn) m_stream << "\r                    \r" << std::flush;
    m_drawn = false;
}

}  // namespace morvil::tool
