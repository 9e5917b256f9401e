#include "trace/CallLines.h"

#include <algorithm>
#include <utility>

namespace morvil::trace {

void CallLines::callEnds(std::string line) {
    if (m_open.empty()) return;
    const auto place = static_cast<std::ptrdiff_t>(m_open.back());
    m_open.pop_back();
    m_lines.insert(m_lines.begin() + place, {.depth = m_open.size(), .text = std::move(line)});
    if (m_open.empty()) showAll();
}

void CallLines::add(std::string line) {
    if (inCall()) m_lines.push_back({.depth = m_open.size(), .text = std::move(line)});
}

void CallLines::addSummed(std::string line) {
    if (!inCall()) return;
    const auto first = m_lines.begin() + static_cast<std::ptrdiff_t>(m_open.back());
    const auto same =
        std::find_if(first, m_lines.end(), [&](const Line& earlier) { return earlier.depth == m_open.size() && earlier.text == line; });
    if (same == m_lines.end()) return add(std::move(line));
    ++same->times;
}

void CallLines::showAll() {
    for (const Line& line : m_lines) {
        m_show(std::string(2 * line.depth, ' ') + line.text + (line.times == 1 ? "" : " (" + std::to_string(line.times) + " times)"));
    }
    m_lines.clear();
}

}  // namespace morvil::trace
