// JobFileReader.h - the position in a job file while it is read, and the notes taken on the way. Used by the parts of the
// reader: header groups, bitmap section, draw commands.
#pragma once

#include <charconv>
#include <optional>

#include "tool/JobFile.h"

namespace morvil::tool {

class JobFileReader {
  public:
    explicit JobFileReader(JobFile& job) : m_job(job), m_text(reinterpret_cast<const char*>(job.bytes.data()), job.bytes.size()) {}

    [[nodiscard]] std::size_t position() const { return m_position; }
    [[nodiscard]] bool atEnd() const { return m_position >= m_text.size(); }
    void moveTo(std::size_t position) { m_position = position; }
    [[nodiscard]] std::string_view rest() const { return m_text.substr(m_position); }
    [[nodiscard]] std::string_view text() const { return m_text; }
    JobFile& job() { return m_job; }

    // The line at the position without its line end; notes one that does not end in CR LF. Nothing at the end of the file.
    [[nodiscard]] std::optional<std::string_view> peekLine() const;
    void skipLine(const char* group);
    // Steps over the line when it is exactly `line`.
    bool takeLine(std::string_view line, const char* group);
    // "<KEYWORD VALUE>" with this keyword (which ends in its colon): the value, stepping over the line.
    std::optional<Entry> takeEntry(std::string_view keyword, const char* group);

    void note(std::size_t position, const char* group, std::string rule, std::string_view found);
    // Notes that something was expected at the position.
    void expected(const char* group, std::string rule);

  private:
    JobFile& m_job;
    std::string_view m_text;
    std::size_t m_position = 0;
};

// The whole text as a number; nothing when anything else stands in it.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}
// A number with exactly `decimals` digits behind a point.
std::optional<double> fixedNumber(std::string_view text, std::size_t decimals);

void readHeaderGroups(JobFileReader& reader);
void readBitmapGroup(JobFileReader& reader);
void readDrawCommands(JobFileReader& reader);

}  // namespace morvil::tool
