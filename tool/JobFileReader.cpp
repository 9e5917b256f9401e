#include "tool/JobFileReader.h"

#include <algorithm>

namespace morvil::tool {

namespace {

constexpr std::size_t kShown = 60;  // characters of a line that a note repeats

std::size_t lineEnd(std::string_view text, std::size_t from) { return std::min(text.find('\n', from), text.size()); }

}  // namespace

std::optional<std::string_view> JobFileReader::peekLine() const {
    if (atEnd()) return std::nullopt;
    std::string_view line = m_text.substr(m_position, lineEnd(m_text, m_position) - m_position);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

void JobFileReader::skipLine(const char* group) {
    const std::size_t end = lineEnd(m_text, m_position);
    const bool complete = end < m_text.size() && end > m_position && m_text[end - 1] == '\r';
    if (!complete) note(m_position, group, "each line ends in CR LF", rest().substr(0, kShown));
    m_position = std::min(end + 1, m_text.size());
}

bool JobFileReader::takeLine(std::string_view line, const char* group) {
    if (peekLine() != line) return false;
    skipLine(group);
    return true;
}

std::optional<Entry> JobFileReader::takeEntry(std::string_view keyword, const char* group) {
    const auto line = peekLine();
    if (!line || line->size() < keyword.size() + 3 || line->front() != '<' || line->back() != '>') return std::nullopt;
    if (line->substr(1, keyword.size()) != keyword || (*line)[1 + keyword.size()] != ' ') return std::nullopt;
    Entry entry{std::string(keyword.substr(0, keyword.size() - 1)), std::string(line->substr(keyword.size() + 2, line->size() - keyword.size() - 3)), m_position};
    skipLine(group);
    return entry;
}

void JobFileReader::note(std::size_t position, const char* group, std::string rule, std::string_view found) {
    ++m_job.violationCount;
    if (m_job.violations.size() >= kKeptViolations) return;
    std::string shown;
    for (const char c : found.substr(0, kShown)) shown.push_back(c >= ' ' && c <= '~' ? c : '.');
    m_job.violations.push_back({position, group, std::move(rule), std::move(shown)});
}

void JobFileReader::expected(const char* group, std::string rule) {
    const auto line = peekLine();
    note(m_position, group, std::move(rule), line ? *line : std::string_view("the end of the file"));
}

std::optional<double> fixedNumber(std::string_view text, std::size_t decimals) {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos || text.size() - point - 1 != decimals) return std::nullopt;
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string_view JobFile::headerValue(std::string_view keyword) const {
    const auto entry = std::find_if(header.begin(), header.end(), [&](const Entry& e) { return e.keyword == keyword; });
    return entry == header.end() ? std::string_view() : std::string_view(entry->value);
}

unsigned JobFile::resolution() const { return wholeNumber<unsigned>(headerValue("Resolution")).value_or(0); }

JobFile readJobFile(std::span<const std::uint8_t> bytes) {
    JobFile job;
    job.bytes = bytes;
    JobFileReader reader(job);
    readHeaderGroups(reader);
    readBitmapGroup(reader);
    readDrawCommands(reader);
    return job;
}

}  // namespace morvil::tool
