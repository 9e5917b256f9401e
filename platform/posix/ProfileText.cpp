#include "platform/posix/ProfileText.h"

#include "platform/posix/CaseFold.h"

namespace morvil {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

constexpr bool isBlank(WCHAR unit) { return unit == TEXT(' ') || (unit >= TEXT('\t') && unit <= TEXT('\r')) || unit == 0x1A; }
constexpr bool isLineEnd(WCHAR unit) { return unit == TEXT('\r') || unit == TEXT('\n'); }

WStringView trimmed(WStringView text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

WStringView unquoted(WStringView text) {
    const bool quoted = text.size() >= 2 && (text.front() == TEXT('"') || text.front() == TEXT('\'')) && text.back() == text.front();
    return quoted ? text.substr(1, text.size() - 2) : text;
}

// One line: where it stands in the text, and what it says.
struct Line {
    enum class Kind : std::uint8_t { Blank, Comment, Section, Entry };
    Kind kind = Kind::Blank;
    std::size_t begin = 0;
    std::size_t end = 0;   // in front of the line end
    std::size_t next = 0;  // behind the line end
    WStringView name;      // of the section, or the key
    std::optional<WStringView> value;
};

class LineReader {
  public:
    explicit LineReader(WStringView text, std::size_t at = 0) : m_text(text), m_at(at) {}
    bool read(Line& line) {
        if (m_at >= m_text.size()) return false;
        line = {};
        line.begin = m_at;
        line.end = endOfLine(m_at);
        line.next = line.end;
        if (line.next < m_text.size() && m_text[line.next] == TEXT('\r')) ++line.next;
        if (line.next < m_text.size() && m_text[line.next] == TEXT('\n')) ++line.next;
        m_at = line.next;
        classify(line);
        return true;
    }

  private:
    [[nodiscard]] std::size_t endOfLine(std::size_t at) const {
        const WCHAR* const end = m_text.data() + m_text.size();
        const WCHAR* here = m_text.data() + at;
        while (here < end && (*here > TEXT('\r') || !isLineEnd(*here))) ++here;  // one look at most characters
        return static_cast<std::size_t>(here - m_text.data());
    }

    void classify(Line& line) const {
        const WStringView content = trimmed(m_text.substr(line.begin, line.end - line.begin));
        if (content.empty()) return;
        const std::size_t bracket = content.front() == TEXT('[') ? content.rfind(TEXT(']')) : WStringView::npos;
        if (content.front() == TEXT(';')) {
            line.kind = Line::Kind::Comment;
        } else if (bracket != WStringView::npos) {
            line.kind = Line::Kind::Section;
            line.name = trimmed(content.substr(1, bracket - 1));
        } else {
            line.kind = Line::Kind::Entry;
            const std::size_t equals = content.find(TEXT('='));
            line.name = trimmed(content.substr(0, equals));
            if (equals != WStringView::npos) line.value = trimmed(content.substr(equals + 1));
        }
    }

    WStringView m_text;
    std::size_t m_at;
};

// The first line behind the header of the first section of this name.
std::optional<Line> findSection(WStringView text, WStringView section) {
    section = trimmed(section);
    LineReader reader(text);
    for (Line line; reader.read(line);) {
        if (line.kind == Line::Kind::Section && equalIgnoringCase(line.name, section)) return line;
    }
    return std::nullopt;
}

std::optional<Line> findKey(WStringView text, const Line& header, WStringView key) {
    key = trimmed(key);
    LineReader reader(text, header.next);
    for (Line line; reader.read(line) && line.kind != Line::Kind::Section;) {
        if (line.kind == Line::Kind::Entry && equalIgnoringCase(line.name, key)) return line;
    }
    return std::nullopt;
}

WString entryLine(WStringView key, WStringView value) {
    WString line(trimmed(key));
    line.append(TEXT("=")).append(value).append(TEXT("\r\n"));
    return line;
}

// Where a new entry of the section goes: behind its last line that is not blank.
std::size_t endOfEntries(WStringView text, const Line& header) {
    std::size_t end = header.next;
    LineReader reader(text, header.next);
    for (Line line; reader.read(line) && line.kind != Line::Kind::Section;) {
        if (line.kind != Line::Kind::Blank) end = line.next;
    }
    return end;
}

// Every line but the last ends; one that is written behind must not join it.
void endLastLine(WString& text, std::size_t& at) {
    if (at == 0 || isLineEnd(text[at - 1])) return;
    text.insert(at, TEXT("\r\n"));
    at += 2;
}

}  // namespace

ProfileText decodeProfile(std::string_view bytes) {
    if (bytes.starts_with(kUtf8Mark)) return {fromUtf8(bytes.substr(kUtf8Mark.size())), ProfileText::Encoding::Utf8};
    if (!bytes.starts_with(kUtf16Mark)) return {fromLatin1(bytes), ProfileText::Encoding::Latin1};
    bytes.remove_prefix(kUtf16Mark.size());
    WString text(bytes.size() / 2, WCHAR{0});
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned low = static_cast<unsigned char>(bytes[2 * i]);
        const unsigned high = static_cast<unsigned char>(bytes[2 * i + 1]);
        text[i] = static_cast<WCHAR>(low | (high << 8));
    }
    return {std::move(text), ProfileText::Encoding::Utf16};
}

std::string encodeProfile(const ProfileText& profile) {
    if (profile.encoding == ProfileText::Encoding::Latin1) return toLatin1(profile.text);
    if (profile.encoding == ProfileText::Encoding::Utf8) return std::string(kUtf8Mark) + toUtf8(profile.text);
    std::string bytes(kUtf16Mark);
    bytes.reserve(bytes.size() + 2 * profile.text.size());
    for (const WCHAR unit : profile.text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

std::optional<WStringView> findProfileValue(WStringView text, WStringView section, WStringView key) {
    const auto header = findSection(text, section);
    const auto entry = header ? findKey(text, *header, key) : std::nullopt;
    return entry && entry->value ? std::optional(unquoted(*entry->value)) : std::nullopt;
}

std::vector<WStringView> profileSections(WStringView text) {
    std::vector<WStringView> names;
    LineReader reader(text);
    for (Line line; reader.read(line);) {
        if (line.kind == Line::Kind::Section) names.push_back(line.name);
    }
    return names;
}

std::vector<WStringView> profileKeys(WStringView text, WStringView section) {
    std::vector<WStringView> keys;
    const auto header = findSection(text, section);
    if (!header) return keys;
    LineReader reader(text, header->next);
    for (Line line; reader.read(line) && line.kind != Line::Kind::Section;) {
        if (line.kind == Line::Kind::Entry) keys.push_back(line.name);
    }
    return keys;
}

void setProfileValue(WString& text, WStringView section, WStringView key, WStringView value) {
    const auto header = findSection(text, section);
    if (!header) {
        std::size_t end = text.size();
        endLastLine(text, end);
        text.append(TEXT("[")).append(trimmed(section)).append(TEXT("]\r\n")).append(entryLine(key, value));
        return;
    }
    if (const auto entry = findKey(text, *header, key)) {
        const WString written = WString(entry->name).append(TEXT("=")).append(value);
        text.replace(entry->begin, entry->end - entry->begin, written);
        return;
    }
    std::size_t at = endOfEntries(text, *header);
    endLastLine(text, at);
    text.insert(at, entryLine(key, value));
}

void removeProfileKey(WString& text, WStringView section, WStringView key) {
    const auto header = findSection(text, section);
    const auto entry = header ? findKey(text, *header, key) : std::nullopt;
    if (entry) text.erase(entry->begin, entry->next - entry->begin);
}

void removeProfileSection(WString& text, WStringView section) {
    const auto header = findSection(text, section);
    if (!header) return;
    std::size_t end = text.size();
    LineReader reader(text, header->next);
    for (Line line; reader.read(line);) {
        if (line.kind != Line::Kind::Section) continue;
        end = line.begin;
        break;
    }
    text.erase(header->begin, end - header->begin);
}

}  // namespace morvil
