#include "jobfile/CMvPath.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "driver/log/Log.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr WCHAR kPathFile[] = TEXT("%s\\Path.vec");                              // folder
constexpr WCHAR kPointLine[] = TEXT("Curve=%d;Index=%d;X=%d;Y=%d;Flags=%d;\n");  // curve, index, x, y, flags
constexpr std::array<std::string_view, 5> kPrefixes{"Curve=", "Index=", "X=", "Y=", "Flags="};

struct PathLine {
    std::int32_t curve;
    std::int32_t index;
    std::int32_t x;
    std::int32_t y;
    std::int32_t flags;
};

// A line without one of its five tokens is not a point. The last may end the line.
std::optional<PathLine> parseLine(std::string_view line) {
    std::array<std::int32_t, kPrefixes.size()> values{};
    for (std::size_t i = 0; i < kPrefixes.size(); ++i) {
        if (!line.starts_with(kPrefixes[i])) return std::nullopt;
        const std::size_t end = std::min(line.find(';'), line.size());
        const std::string_view digits = line.substr(kPrefixes[i].size(), end - kPrefixes[i].size());
        std::from_chars(digits.data(), digits.data() + digits.size(), values[i]);
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return PathLine{values[0], values[1], values[2], values[3], values[4]};
}

// Reads the file in blocks and hands out one line at a time, with the position where it begins.
class LineReader {
  public:
    LineReader(FileStream& file, std::int64_t position) : m_file(file), m_position(position) {}

    // A line without its line feed; false at the end of the file. Lines longer than a block are passed over in pieces.
    bool next(std::string_view& line, std::int64_t& position) {
        std::size_t end = std::string_view(m_block.data() + m_begin, m_end - m_begin).find('\n');
        if (end == std::string_view::npos) {
            refill();
            end = std::string_view(m_block.data(), m_end).find('\n');
        }
        if (m_begin == m_end) return false;
        const bool whole = end != std::string_view::npos;
        const std::size_t length = whole ? end : m_end - m_begin;
        line = {m_block.data() + m_begin, length};
        position = m_position;
        const std::size_t used = length + (whole ? 1 : 0);
        m_begin += used;
        m_position += static_cast<std::int64_t>(used);
        return true;
    }

  private:
    void refill() {
        std::copy(m_block.begin() + static_cast<std::ptrdiff_t>(m_begin), m_block.begin() + static_cast<std::ptrdiff_t>(m_end),
                  m_block.begin());
        m_end -= m_begin;
        m_begin = 0;
        m_end += m_file.read({reinterpret_cast<std::uint8_t*>(m_block.data()) + m_end, m_block.size() - m_end});
    }

    FileStream& m_file;
    std::int64_t m_position;
    std::array<char, 16384> m_block{};
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

}  // namespace

CMvPath::CMvPath(const WCHAR* workFolder) {
    if (viewOf(workFolder).empty()) return;
    m_path = format(kPathFile, workFolder);
    DeleteFileW(m_path.c_str());
}

int CMvPath::addPoint(int index, int x, int y, int flags, int curve) {
    if (index < 0) {
        debugPrint(TEXT("CMvPath::addPoint, Invalid operation"));
        return 1;
    }
    FileStream file(m_path.c_str(), OpenMode::Append);
    if (!file.isOpen()) {
        debugPrint(TEXT("CMvPath::addPoint, can't open vector file"));
        return 1;
    }
    if (m_pointCount > 0 && curve < m_lastCurve) m_isOrdered = false;
    file.writeText(format(kPointLine, curve, index, x, y, flags));
    ++m_pointCount;
    m_lastCurve = curve;
    return 1;
}

int CMvPath::getPointsToCurve(int curve, std::int32_t* xs, std::int32_t* ys, std::uint32_t* count, std::uint32_t room) {
    const bool fills = xs != nullptr && ys != nullptr;
    const bool counts = xs == nullptr && ys == nullptr && count != nullptr;
    if (!fills && !counts) {
        debugPrint(TEXT("CMvPath::getPointsToCurve, invalid parameter"));
        return 0;
    }
    if (counts) {
        *count = 0;
        room = UINT32_MAX;
    }

    FileStream file(m_path.c_str(), OpenMode::Read);
    const bool resumes = m_isOrdered && m_cursor && m_cursor->curve <= curve;
    const std::int64_t start = resumes ? m_cursor->position : 0;
    if (!file.isOpen() || !file.seek(start)) return 0;

    LineReader reader(file, start);
    std::uint32_t found = 0;
    std::string_view text;
    std::int64_t position = start;
    while (found < room && reader.next(text, position)) {
        const std::optional<PathLine> line = parseLine(text);
        if (!line || line->curve < curve) continue;
        if (found == 0) m_cursor = Cursor{.curve = curve, .position = position};
        if (line->curve > curve) break;
        if (fills) {
            xs[found] = line->x;
            ys[found] = line->y;
        }
        ++found;
    }
    if (counts) *count = found;
    return found > 0 ? 1 : 0;
}

void CMvPath::resetCounters() {
    m_pointCount = 0;
    m_lastCurve = 0;
    m_isOrdered = true;
    m_cursor.reset();
}

}  // namespace morvil
