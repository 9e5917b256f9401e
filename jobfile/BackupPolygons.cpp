#include "jobfile/BackupPolygons.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "driver/log/Log.h"
#include "jobfile/JobFileFormat.h"

namespace morvil {

namespace {

constexpr std::size_t kBlockBytes = 1 << 16;
constexpr int kMostLines = 150;  // that the search for the box looks at

// Takes the parts of a line between ";" and ">" one after the other.
class LineParts {
  public:
    explicit LineParts(std::string_view line) : m_rest(line) {}

    std::string_view next() {
        const std::size_t end = m_rest.find_first_of(";>");
        const std::string_view part = m_rest.substr(0, end);
        m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
        return part;
    }
    // A number, blanks in front of it allowed.
    std::optional<std::int32_t> nextNumber() { return numberOf(next()); }

    static std::optional<std::int32_t> numberOf(std::string_view text) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        std::int32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        return error == std::errc() && end != text.data() ? std::optional(number) : std::nullopt;
    }

  private:
    std::string_view m_rest;
};

std::int32_t pointCount(std::string_view part) {
    constexpr std::string_view kKeyword = kPolygonKeyword;
    if (!part.starts_with(kKeyword)) return 0;
    return LineParts::numberOf(part.substr(kKeyword.size())).value_or(0);
}

std::optional<std::uint32_t> readColour(LineParts& parts) {
    const auto red = parts.nextNumber();
    const auto green = parts.nextNumber();
    const auto blue = parts.nextNumber();
    if (!red || !green || !blue) return std::nullopt;
    return static_cast<std::uint32_t>(*red) + static_cast<std::uint32_t>(*green) * 256U + static_cast<std::uint32_t>(*blue) * 65536U;
}

void widen(BoundingBox& box, const PolygonLine& polygon) {
    const auto [left, right] = std::minmax_element(polygon.xs.begin(), polygon.xs.end());
    const auto [bottom, top] = std::minmax_element(polygon.ys.begin(), polygon.ys.end());
    box.left = std::min(box.left, *left);
    box.right = std::max(box.right, *right);
    box.bottom = std::min(box.bottom, *bottom);
    box.top = std::max(box.top, *top);
}

std::int32_t oneMore(std::int32_t value) { return value == std::numeric_limits<std::int32_t>::max() ? value : value + 1; }

}  // namespace

bool BackupLines::fill() {
    m_block.resize(kBlockBytes);
    m_at = 0;
    m_end = m_file.isOpen() ? m_file.read(m_block) : 0;
    return m_end != 0;
}

bool BackupLines::next(std::string& line) {
    line.clear();
    while (m_at < m_end || fill()) {
        const std::string_view rest(reinterpret_cast<const char*>(m_block.data()) + m_at, m_end - m_at);
        const std::size_t feed = rest.find('\n');
        const std::size_t used = feed == std::string_view::npos ? rest.size() : feed + 1;
        line.append(rest.substr(0, used));
        m_at += used;
        if (feed != std::string_view::npos) return true;
    }
    return !line.empty() && !m_file.failed();
}

bool readPolygon(std::string_view line, PolygonLine& polygon) {
    polygon.xs.clear();
    polygon.ys.clear();
    LineParts parts(line);
    const std::int32_t count = pointCount(parts.next());
    const std::optional<std::uint32_t> colour = count > 0 ? readColour(parts) : std::nullopt;
    if (!colour) return false;
    polygon.colour = *colour;
    for (std::int32_t i = 0; i < count; ++i) {
        const auto x = parts.nextNumber();
        const auto y = parts.nextNumber();
        if (!x || !y) break;
        polygon.xs.push_back(*x);
        polygon.ys.push_back(*y);
    }
    return !polygon.xs.empty();
}

std::optional<BoundingBox> getVectorBoundingBox(const WCHAR* path, std::int32_t width, std::int32_t height) {
    logMorvil(1, kInformation, TEXT("CBM::getVectorBoundingBox"), kLogEnd);
    BoundingBox box{.left = width, .top = 0, .right = 0, .bottom = height};
    BackupLines lines(path);
    if (!lines.isOpen()) return std::nullopt;
    bool found = false;
    std::string line;
    PolygonLine polygon;
    for (int i = 0; i < kMostLines && lines.next(line); ++i) {
        logMorvil(1, kInformation, TEXT("CBM::getVectorBoundingBox, uiBuffSize=%d"), line.size(), kLogEnd);
        if (!readPolygon(line, polygon)) continue;
        widen(box, polygon);
        found = true;
    }
    if (lines.failed()) return std::nullopt;
    box.right = oneMore(box.right);
    box.top = oneMore(box.top);
    logMorvil(1, kInformation, TEXT("CBM::getVectorBoundingBox finished"), kLogEnd);
    return found ? box : BoundingBox{};
}

}  // namespace morvil
