#include "jobfile/VectorSection.h"

#include "jobfile/JobFileFormat.h"

namespace morvil {

namespace {

// Buffers that a very long line left behind are given back.
constexpr std::size_t kKeptBytes = 1 << 20;

const std::string& closingLine() {
    static const std::string bytes = toFileBytes(kVectorGroupClosing);
    return bytes;
}

void empty(std::string& buffer) {
    if (buffer.capacity() > kKeptBytes) buffer = {};
    buffer.clear();
}

}  // namespace

void VectorSection::placeAt(std::int64_t position) {
    m_start = position;
    m_end = position;
    m_index.invalidate();
}

void VectorSection::movedTo(std::int64_t start, std::int64_t end) {
    m_start = start;
    m_end = end;
    m_index.moved(end);
}

bool VectorSection::writeEmpty(const WCHAR* jobFile) {
    FileStream file(jobFile, OpenMode::Update);
    const std::string lines = toFileBytes(kVectorGroupOpening) + closingLine();
    if (!file.isOpen() || !file.seek(m_start) || !file.write(lines)) return false;
    m_end = m_start + static_cast<std::int64_t>(lines.size());
    if (file.size() == m_end) m_index.reset(m_end);
    return file.close();
}

bool VectorSection::open(const WCHAR* jobFile) {
    empty(m_pending);
    if (!m_file.open(jobFile, OpenMode::Update)) return false;
    m_fileSize = m_file.sizeAtEnd();
    return true;
}

bool VectorSection::findPlace() { return m_end - m_start >= kClosingLineBytes && m_fileSize >= m_end; }

std::int64_t VectorSection::insertionPlace() const { return m_end - kClosingLineBytes; }

bool VectorSection::contains(std::string_view text) {
    if (!m_file.isOpen()) return false;
    const bool mayRead = m_pending.empty();  // what was only added is in no file
    bool isFresh = false;
    if (!m_index.fits(m_fileSize) && mayRead) isFresh = m_index.rebuild(m_file, m_start);
    bool sawOther = false;
    const auto compare = [&](std::int64_t place) {
        const bool same = textStandsAt(place, text);
        sawOther = sawOther || !same;
        return same;
    };
    if (m_index.contains(text, compare)) return true;
    // Other bytes where the text should be: somebody wrote into the file. Look at it afresh, once.
    if (!sawOther || isFresh || !mayRead || !m_index.rebuild(m_file, m_start)) return false;
    return m_index.contains(text, compare);
}

bool VectorSection::textStandsAt(std::int64_t place, std::string_view text) {
    const std::int64_t position = m_start + place;
    if (!m_pending.empty() && position >= insertionPlace()) {
        return std::string_view(m_pending).substr(static_cast<std::size_t>(position - insertionPlace())).starts_with(text);
    }
    empty(m_compared);
    m_compared.resize(text.size());
    if (!m_file.seek(position)) return false;
    const std::size_t got = m_file.read({reinterpret_cast<std::uint8_t*>(m_compared.data()), m_compared.size()});
    return got == text.size() && m_compared == text;
}

void VectorSection::add(std::string_view line) {
    const std::size_t textEnd = line.find_last_of('>');
    const auto place = insertionPlace() + static_cast<std::int64_t>(m_pending.size()) - m_start;
    if (line.starts_with(kPolygonKeyword) && m_index.fits(m_fileSize)) m_index.add(line.substr(0, textEnd + 1), place);
    m_pending += line;
}

bool VectorSection::commit() {
    m_pending += closingLine();
    const std::int64_t newEnd = insertionPlace() + static_cast<std::int64_t>(m_pending.size());
    const bool written = m_file.seek(insertionPlace()) && m_file.write(m_pending);
    const bool isClean = written && m_fileSize == m_end && m_index.fits(m_fileSize);
    if (isClean)
        m_index.setFileEnd(newEnd);
    else
        m_index.invalidate();
    if (written) m_end = newEnd;
    return m_file.close() && written;
}

void VectorSection::close() { m_file.close(); }

}  // namespace morvil
