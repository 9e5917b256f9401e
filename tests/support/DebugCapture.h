// DebugCapture.h - collects what goes to the debugger output while it lives. Make it after the TempHome of a test.
#pragma once

#include <string>
#include <vector>

namespace morvil::test {

class DebugCapture {
  public:
    DebugCapture();
    ~DebugCapture();
    DebugCapture(const DebugCapture&) = delete;
    DebugCapture& operator=(const DebugCapture&) = delete;

    // Each text as it was sent, in UTF-8.
    [[nodiscard]] const std::vector<std::string>& texts() const { return m_texts; }
    // All texts joined.
    [[nodiscard]] std::string all() const;
    [[nodiscard]] bool has(const std::string& text) const;
    [[nodiscard]] std::size_t count(const std::string& text) const;
    void clear() { m_texts.clear(); }

  private:
    std::vector<std::string> m_texts;
};

}  // namespace morvil::test
