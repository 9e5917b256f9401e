// CallLines.h - the order in which a trace is read: a call of the driver on one line with its result, below it, indented, what
// happened before it came back. Lines are given in the order of their ends and shown when the outermost call has ended.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace morvil::trace {

class CallLines {
  public:
    explicit CallLines(std::function<void(const std::string&)> show) : m_show(std::move(show)) {}

    void callBegins() { m_open.push_back(m_lines.size()); }
    void callEnds(std::string line);
    // Whether a call is running; what happens outside of one is no affair of the driver's and is not shown.
    [[nodiscard]] bool inCall() const { return !m_open.empty(); }
    void add(std::string line);
    // For questions, asked again and again: the same line within one call is shown once, with its number of times.
    void addSummed(std::string line);

  private:
    struct Line {
        std::size_t depth = 0;
        std::string text;
        std::size_t times = 1;
    };
    void showAll();

    std::function<void(const std::string&)> m_show;
    std::vector<Line> m_lines;
    std::vector<std::size_t> m_open;  // for each running call, where its own line belongs
};

}  // namespace morvil::trace
