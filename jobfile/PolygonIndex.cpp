#include "jobfile/PolygonIndex.h"

#include <functional>
#include <string>

#include "jobfile/JobFileFormat.h"

namespace morvil {

namespace {

constexpr std::size_t kFirstSlots = 64;
constexpr std::size_t kBlockBytes = 65536;
constexpr std::string_view kPolygonStart = kPolygonKeyword;

}  // namespace

std::uint64_t PolygonIndex::hashOf(std::string_view text) { return std::hash<std::string_view>{}(text); }

void PolygonIndex::reset(std::int64_t fileEnd) {
    m_slots.clear();
    m_count = 0;
    m_fileEnd = fileEnd;
}

void PolygonIndex::add(std::string_view text, std::int64_t place) {
    // The search passes over long lines: text and line feed together, as read in text mode.
    if (text.size() + 1 >= kDuplicateLineLimit) return;
    if (2 * (m_count + 1) > m_slots.size()) grow();
    insert({.hash = hashOf(text), .place = place});
    ++m_count;
}

void PolygonIndex::insert(const Slot& slot) {
    std::size_t i = slot.hash & mask();
    while (m_slots[i].place >= 0) i = (i + 1) & mask();
    m_slots[i] = slot;
}

void PolygonIndex::grow() {
    std::vector<Slot> old(m_slots.empty() ? kFirstSlots : 2 * m_slots.size(), Slot{.hash = 0, .place = -1});
    old.swap(m_slots);
    for (const Slot& slot : old) {
        if (slot.place >= 0) insert(slot);
    }
}

// Any text from "<DrawPolygon:" to the next ">" counts, wherever it stands in its line: a searched text matches as a part of a
// line, and it has one "<" at its start and one ">" at its end.
void PolygonIndex::addLine(std::string_view line, std::int64_t place) {
    for (std::size_t at = line.find(kPolygonStart); at != std::string_view::npos; at = line.find(kPolygonStart, at + 1)) {
        const std::size_t end = line.find('>', at);
        if (end == std::string_view::npos) return;
        add(line.substr(at, end + 1 - at), place + static_cast<std::int64_t>(at));
    }
}

bool PolygonIndex::rebuild(FileStream& file, std::int64_t start) {
    reset(-1);
    if (!file.seek(start)) return false;
    std::vector<std::uint8_t> block(kBlockBytes);
    std::string line;
    std::int64_t place = 0;  // of the line's first byte in the section
    bool tooLong = false;
    std::int64_t end = start;
    for (;;) {
        const std::size_t got = file.read(block);
        if (got == 0) break;
        end += static_cast<std::int64_t>(got);
        std::string_view rest(reinterpret_cast<const char*>(block.data()), got);
        while (!rest.empty()) {
            const std::size_t feed = rest.find('\n');
            const std::size_t used = feed == std::string_view::npos ? rest.size() : feed + 1;
            line.append(rest.substr(0, used));
            rest.remove_prefix(used);
            const std::size_t characters = line.size() - (line.ends_with("\r\n") ? 1 : 0);
            if (feed == std::string_view::npos) {
                // Keep no more of an endless line than tells that it is one; its bytes still count.
                if (line.size() > kDuplicateLineLimit + 1) {
                    tooLong = true;
                    place += static_cast<std::int64_t>(line.size());
                    line.clear();
                }
                continue;
            }
            if (!tooLong && characters < kDuplicateLineLimit) addLine(line, place);
            tooLong = false;
            place += static_cast<std::int64_t>(line.size());
            line.clear();
        }
    }
    if (file.failed()) return false;
    if (!tooLong && line.size() < kDuplicateLineLimit) addLine(line, place);
    m_fileEnd = end;
    return true;
}

}  // namespace morvil
