#include "config/XmlParser.h"

#include <algorithm>
#include <array>
#include <new>

namespace morvil {

namespace {

constexpr WCHAR kByteOrderMark = 0xFEFF;

bool isBlank(WCHAR unit) { return unit < 33; }

// Names are letters, digits, "_", ":", "-" and ".". Which characters are letters must not depend on the host's tables, so
// beyond Latin-1 every unit counts but those of the punctuation, symbol, surrogate, private and presentation areas.
constexpr bool isNameUnit(unsigned unit) {
    if (unit < 0x80) {
        const unsigned lower = unit | 0x20;
        return (lower >= 'a' && lower <= 'z') || (unit >= '0' && unit <= '9') || unit == '_' || unit == ':' || unit == '-' || unit == '.';
    }
    if (unit < 0x100) return unit == 0xAA || unit == 0xB5 || unit == 0xBA || (unit >= 0xC0 && unit != 0xD7 && unit != 0xF7);
    return unit < 0x2000 || (unit >= 0x2C00 && unit < 0x2E00) || (unit >= 0x3040 && unit < 0xD800) || (unit >= 0xF900 && unit < 0xFE00);
}

constexpr auto kNameUnits = [] {
    std::array<bool, 0x100> table{};
    for (unsigned unit = 0; unit < table.size(); ++unit) table[unit] = isNameUnit(unit);
    return table;
}();

bool belongsToName(WCHAR unit) { return unit < kNameUnits.size() ? kNameUnits[unit] : isNameUnit(unit); }

WStringView trimmed(WStringView text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

struct Declaration {
    WStringView opening;
    XmlType type;
};
constexpr std::array<Declaration, 4> kDeclarations{{{TEXT("<!ENTITY"), XmlType::Entity},
                                                    {TEXT("<!ATTLIST"), XmlType::AttributeList},
                                                    {TEXT("<!ELEMENT"), XmlType::ElementDeclaration},
                                                    {TEXT("<!NOTATION"), XmlType::Notation}}};

class Parser {
  public:
    // Reads `text`, a part of the document's text, into children of `top`.
    Parser(XmlDocument& document, WStringView text, XmlNode& top) : m_document(document), m_text(text), m_top(&top), m_current(&top) {}

    // Blanks in front of text or markup make no node.
    void run() {
        for (skipBlanks(); m_at < m_text.size(); skipBlanks()) {
            if (m_text[m_at] == TEXT('<') && opensMarkup(m_at)) {
                readMarkup();
            } else {
                readText();
            }
        }
    }

  private:
    // How a list of attributes ended.
    enum class TagEnd : std::uint8_t { Open, Closed, Cut };

    [[nodiscard]] WCHAR unitAt(std::size_t at) const { return at < m_text.size() ? m_text[at] : WCHAR{0}; }
    [[nodiscard]] bool startsWith(WStringView opening) const { return m_text.compare(m_at, opening.size(), opening) == 0; }
    [[nodiscard]] bool inSubset() const { return m_current->type == XmlType::DocumentType; }
    void stop() { m_at = m_text.size(); }

    void skipBlanks() {
        std::size_t at = m_at;
        while (at < m_text.size() && isBlank(m_text[at])) ++at;
        m_at = at;
    }

    // Needs no look at the end: behind it stands the terminator of the text, or the "]]>" of an INCLUDE section.
    WStringView takeName() {
        const WCHAR* const start = m_text.data() + m_at;
        const WCHAR* at = start;
        while (belongsToName(*at)) ++at;
        const auto length = static_cast<std::size_t>(at - start);
        m_at += length;
        return {start, length};
    }

    // The literal that begins with the quote at this place, normalised. False when the text ends inside it.
    bool takeLiteral(std::optional<WStringView>& value) {
        const WCHAR quote = m_text[m_at];
        const WCHAR* const start = m_text.data() + m_at + 1;
        const WCHAR* const end = m_text.data() + m_text.size();
        const WCHAR* at = start;
        while (*at != quote && !isBlank(*at)) ++at;  // the terminator is a blank
        const bool blanks = *at != quote;
        while (at < end && *at != quote) ++at;
        if (at >= end) return false;
        const auto length = static_cast<std::size_t>(at - start);
        m_at += length + 2;
        const WStringView literal(start, length);
        value = blanks ? normalised(literal) : literal;
        return true;
    }

    // The part of the text up to `closing`, or to the end when it is not there; goes on behind it.
    WStringView takeUpTo(WStringView closing) {
        const std::size_t start = m_at;
        const std::size_t end = std::min(m_text.find(closing, m_at), m_text.size());
        m_at = std::min(end + closing.size(), m_text.size());
        return m_text.substr(start, end - start);
    }

    // Skips the rest of a tag that says no more: behind its ">", or to the "<" that opens the next one.
    void skipTag() {
        while (m_at < m_text.size() && m_text[m_at] != TEXT('<') && m_text[m_at] != TEXT('>')) ++m_at;
        if (unitAt(m_at) == TEXT('>')) ++m_at;
    }

    // Without blanks at the ends, each inner run of them made one space. Most texts are so already and need no copy.
    WStringView normalised(WStringView text) {
        text = trimmed(text);
        const auto isChange = [&text](std::size_t at) { return isBlank(text[at]) && (text[at] != TEXT(' ') || isBlank(text[at + 1])); };
        std::size_t at = 0;
        while (at < text.size() && !isChange(at)) ++at;
        if (at == text.size()) return text;
        const std::span<WCHAR> copy = m_document.room(text.size());
        if (copy.data() == nullptr) return {};
        std::size_t length = 0;
        for (std::size_t from = 0; from < text.size(); ++from) {
            if (!isBlank(text[from])) {
                copy[length++] = text[from];
            } else if (!isBlank(text[from + 1])) {
                copy[length++] = TEXT(' ');
            }
        }
        return {copy.data(), length};
    }

    XmlNode* addNode(XmlType type) {
        XmlNode* const node = m_document.addChild(*m_current, type);
        if (node == nullptr) stop();
        return node;
    }

    void addValueNode(XmlType type, WStringView value) {
        if (XmlNode* const node = addNode(type); node != nullptr) node->value = normalised(value);
    }

    // Whether the "<" at this place opens markup; any other is text.
    [[nodiscard]] bool opensMarkup(std::size_t at) const {
        const WCHAR second = unitAt(at + 1);
        return belongsToName(second) || second == TEXT('/') || second == TEXT('?') || second == TEXT('!');
    }

    // Whether text ends at this place.
    [[nodiscard]] bool endsText(std::size_t at) const {
        return (m_text[at] == TEXT('<') && opensMarkup(at)) || (m_text[at] == TEXT(']') && inSubset());
    }

    // Up to the next markup.
    void readText() {
        const std::size_t start = m_at;
        std::size_t at = start;
        while (at < m_text.size() && !endsText(at)) ++at;
        m_at = at;
        if (at > start) addValueNode(XmlType::Text, m_text.substr(start, at - start));
        if (unitAt(m_at) == TEXT(']') && inSubset()) leaveSubset();
    }

    void readMarkup() {
        const WCHAR second = unitAt(m_at + 1);
        if (belongsToName(second)) return readElement();
        if (second == TEXT('/')) return readClosingTag();
        if (second == TEXT('?')) return readInstruction();
        readDeclaration();
    }

    void readElement() {
        if (inSubset()) leaveSubset();
        XmlNode* const node = m_document.newNode(XmlType::Element);
        if (node == nullptr) return stop();
        ++m_at;
        node->name = takeName();
        const TagEnd end = readAttributes(*node, TEXT('/'));
        if (end == TagEnd::Cut) return stop();
        XmlDocument::appendChild(*m_current, *node);
        if (end == TagEnd::Open) m_current = node;
    }

    void readClosingTag() {
        if (inSubset()) leaveSubset();
        m_at += 2;
        const bool named = !takeName().empty();
        skipTag();
        if (named && m_current != m_top) m_current = m_current->parent;
    }

    void readInstruction() {
        m_at += 2;
        const WStringView name = takeName();
        if (name.empty()) return skipTag();
        XmlNode* const node = m_document.newNode(XmlType::ProcessingInstruction);
        if (node == nullptr) return stop();
        node->name = name;
        if (readAttributes(*node, TEXT('?')) == TagEnd::Cut) return stop();
        XmlDocument::appendChild(*m_current, *node);
    }

    // `closer` is what stands before the ">" that ends the tag at once. A "<" ends a tag whose ">" is missing.
    TagEnd readAttributes(XmlNode& node, WCHAR closer) {
        while (m_at < m_text.size()) {
            const WCHAR unit = m_text[m_at];
            if (belongsToName(unit)) {
                if (!readAttribute(node)) return TagEnd::Cut;
            } else if (unit == closer && unitAt(m_at + 1) == TEXT('>')) {
                m_at += 2;
                return TagEnd::Closed;
            } else if (unit == TEXT('>') && closer == TEXT('/')) {
                ++m_at;
                return TagEnd::Open;
            } else if (unit == TEXT('<')) {
                return TagEnd::Open;
            } else {
                ++m_at;
            }
        }
        return TagEnd::Cut;
    }

    // name="value" or name='value'; a name alone has no value. False when the text ends inside the value.
    bool readAttribute(XmlNode& node) {
        XmlAttribute* const attribute = m_document.newAttribute(takeName());
        if (attribute == nullptr) return false;
        skipBlanks();
        if (unitAt(m_at) == TEXT('=')) {
            ++m_at;
            skipBlanks();
            const WCHAR quote = unitAt(m_at);
            if ((quote == TEXT('"') || quote == TEXT('\'')) && !takeLiteral(attribute->value)) return false;
        }
        node.attributes.append(*attribute);
        return true;
    }

    void readDeclaration() {
        if (startsWith(TEXT("<!--"))) return readSection(XmlType::Comment, TEXT("<!--"), TEXT("-->"));
        if (startsWith(TEXT("<![CDATA["))) return readSection(XmlType::CData, TEXT("<![CDATA["), TEXT("]]>"));
        if (startsWith(TEXT("<![INCLUDE["))) return readInclude();
        if (startsWith(TEXT("<!DOCTYPE"))) return readDocumentType();
        for (const Declaration& declaration : kDeclarations) {
            if (startsWith(declaration.opening)) return readNamedDeclaration(declaration);
        }
        m_at += 2;
        skipTag();
    }

    void readSection(XmlType type, WStringView opening, WStringView closing) {
        m_at += opening.size();
        addValueNode(type, takeUpTo(closing));
    }

    // The content stays the node's value, which is what is written back, and is read as markup into its children. The section
    // ends at the first "]]>", so there is none inside another; an opening inside is skipped.
    void readInclude() {
        constexpr WStringView kOpening = TEXT("<![INCLUDE[");
        m_at += kOpening.size();
        if (m_top->type == XmlType::Include) return;
        const WStringView content = takeUpTo(TEXT("]]>"));
        XmlNode* const node = addNode(XmlType::Include);
        if (node == nullptr) return;
        node->value = content;
        Parser(m_document, content, *node).run();
    }

    // The words up to "[" or ">"; the declarations of the internal subset are then read as children, up to its "]".
    void readDocumentType() {
        constexpr WStringView kOpening = TEXT("<!DOCTYPE");
        if (inSubset()) leaveSubset();
        m_at += kOpening.size();
        XmlNode* const node = addNode(XmlType::DocumentType);
        while (node != nullptr && m_at < m_text.size() && unitAt(m_at) != TEXT('<')) {
            const WCHAR unit = m_text[m_at];
            if (unit == TEXT('[')) m_current = node;
            if (unit == TEXT('[') || unit == TEXT('>')) {
                ++m_at;
                return;
            }
            if (!readWord(*node)) ++m_at;
        }
    }

    // A name, or a literal with its quotes. False, and nothing read, when neither stands there.
    bool readWord(XmlNode& node) {
        const WCHAR unit = m_text[m_at];
        WStringView word = takeName();
        if (unit == TEXT('"') || unit == TEXT('\'')) {
            const std::size_t end = m_text.find(unit, m_at + 1);
            if (end == WStringView::npos) {
                stop();
                return true;
            }
            word = m_text.substr(m_at, end + 1 - m_at);
            m_at = end + 1;
        }
        if (word.empty()) return false;
        XmlAttribute* const attribute = m_document.newAttribute(word);
        if (attribute != nullptr) node.attributes.append(*attribute);
        return true;
    }

    // Behind the "]" of an internal subset, or at the element that shows that it is missing.
    void leaveSubset() {
        m_current = m_current->parent;
        if (unitAt(m_at) == TEXT(']')) skipTag();
    }

    void readNamedDeclaration(const Declaration& declaration) {
        m_at += declaration.opening.size();
        skipBlanks();
        const bool parameterEntity = declaration.type == XmlType::Entity && unitAt(m_at) == TEXT('%');
        if (parameterEntity) {
            ++m_at;
            skipBlanks();
        }
        const WStringView name = takeName();
        const std::size_t start = m_at;
        if (!findDeclarationEnd()) return stop();
        XmlNode* const node = addNode(declaration.type);
        if (node == nullptr) return;
        node->name = parameterEntity ? m_document.keep(WString(TEXT("% ")).append(name)) : name;
        node->value = trimmed(m_text.substr(start, m_at - start));
        ++m_at;
    }

    // Goes to the ">" that stands outside of quoted literals; false when there is none.
    bool findDeclarationEnd() {
        while (m_at < m_text.size()) {
            m_at = m_text.find_first_of(TEXT(">\"'"), m_at);
            if (m_at == WStringView::npos) return false;
            if (m_text[m_at] == TEXT('>')) return true;
            const std::size_t close = m_text.find(m_text[m_at], m_at + 1);
            if (close == WStringView::npos) return false;
            m_at = close + 1;
        }
        return false;
    }

    XmlDocument& m_document;
    WStringView m_text;
    std::size_t m_at = 0;
    XmlNode* m_top;
    XmlNode* m_current;
};

}  // namespace

void parseXml(XmlDocument& document) {
    WStringView whole = document.text();
    if (!whole.empty() && whole.front() == kByteOrderMark) whole.remove_prefix(1);
    Parser(document, whole, document.root()).run();
}

std::unique_ptr<XmlDocument> parseXml(WStringView text) {
    try {
        auto document = std::make_unique<XmlDocument>(text);
        parseXml(*document);
        return document;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace morvil
