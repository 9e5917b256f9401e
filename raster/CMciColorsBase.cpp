#include "raster/CMciColorsBase.h"

#include <algorithm>
#include <limits>

#include "config/CMvString.h"
#include "driver/log/Log.h"

namespace morvil {

namespace {

constexpr std::size_t kWholeText = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kLanguagePart = 2;  // "en" of "en-GB"

// The text of an attribute, cut to the buffer; empty when the attribute is missing.
void readText(CXml& document, const XmlNode& node, const WCHAR* attribute, std::span<WCHAR> text) {
    std::array<WCHAR, CXml::kValueCharacters> value{};
    if (!document.readAttribute(&node, value.data(), attribute)) value[0] = 0;
    copyText(text, viewOf(std::span<const WCHAR>(value)));
}

// The number of an attribute; 0 when the attribute is missing or no number.
std::uint16_t readNumber(CXml& document, const XmlNode& node, const WCHAR* attribute) {
    std::array<WCHAR, CXml::kValueCharacters> value{};
    if (!document.readAttribute(&node, value.data(), attribute)) return 0;
    return CMvString().asUnsignedShort(value.data());
}

DWORD versionRank(WStringView version) {
    if (version == TEXT("1.1")) return 1;
    if (version == TEXT("2.0")) return 2;
    return 0;  // missing, "1.0" or any other text
}

}  // namespace

CMciColorsBase::CMciColorsBase() { readVersion(TEXT("0.9")); }

CMciColorsBase::CMciColorsBase(const WCHAR* path) {
    debugPrint(TEXT("CMciColorsBase::CMciColorsBase\n"));
    if (path != nullptr && viewOf(path).size() < kPathCharacters) m_document = std::make_unique<CXml>(path);
    readVersion(TEXT("0.0"));
}

CMciColorsBase::~CMciColorsBase() {
    debugPrint(TEXT("CMciColorsBase::~CMciColorsBase\n"));
    m_colours.clear();
    debugPrint(TEXT("CMciColorsBase::~CMciColorsBase finished\n"));
}

void CMciColorsBase::readVersion(const WCHAR* defaultVersion) {
    std::array<WCHAR, CXml::kValueCharacters> value{};
    const bool present = m_document != nullptr && m_document->getItem(TEXT("MciColors"), value.data(), TEXT("Version"));
    copyText(m_version, present ? viewOf(std::span<const WCHAR>(value)) : viewOf(defaultVersion));
}

void CMciColorsBase::destroy() {
    debugPrint(TEXT("CMciColorsBase::destroy\n"));
    m_colours.clear();
    reset();
    debugPrint(TEXT("CMciColorsBase::destroy finished\n"));
}

bool CMciColorsBase::load() {
    destroy();
    if (m_document == nullptr) return false;
    for (const XmlNode* node = m_document->first(TEXT("MciColors.Colors.Color")); node != nullptr; node = m_document->next())
        readColour(*node);
    return m_document->isLoaded();
}

void CMciColorsBase::readColour(const XmlNode& node) {
    CMciColor& colour = m_colours.emplace_back();
    readText(*m_document, node, TEXT("ID"), colour.id);
    colour.target = static_cast<std::uint8_t>(readNumber(*m_document, node, TEXT("Target")));
    readText(*m_document, node, TEXT("Level"), colour.level);
    colour.red = readNumber(*m_document, node, TEXT("Red"));
    colour.green = readNumber(*m_document, node, TEXT("Green"));
    colour.blue = readNumber(*m_document, node, TEXT("Blue"));
    readText(*m_document, node, TEXT("Version"), colour.version);
    readText(*m_document, node, TEXT("ReplacedBy"), colour.replacedBy);
    readName(node, colour);
    if (!passesFilter(colour)) m_colours.pop_back();
}

void CMciColorsBase::readName(const XmlNode& node, CMciColor& colour) {
    const XmlNode* name = findName(node, kWholeText);
    if (name == nullptr) name = findName(node, kLanguagePart);
    if (name != nullptr) readText(*m_document, *name, TEXT("value"), colour.name);
}

// The first name whose language agrees with the wanted one in its first `characters`.
const XmlNode* CMciColorsBase::findName(const XmlNode& node, std::size_t characters) {
    const WStringView wanted = viewOf(std::span<const WCHAR>(m_language)).substr(0, characters);
    for (const XmlNode& child : node.children) {
        if (child.type != XmlType::Element || child.name != WStringView(TEXT("Name"))) continue;
        std::array<WCHAR, CXml::kValueCharacters> language{};
        if (!m_document->readAttribute(&child, language.data(), TEXT("Lang"))) continue;
        if (viewOf(std::span<const WCHAR>(language)).substr(0, characters) == wanted) return &child;
    }
    return nullptr;
}

// Versions 1 and 2 of the machine know the colours up to their own version, without the replaced ones; 3 knows all; 0 those
// of the first catalogue, replaced or not.
bool CMciColorsBase::passesFilter(const CMciColor& colour) const {
    if (versionRank(viewOf(std::span<const WCHAR>(colour.version))) > m_filter) return false;
    return m_filter == 0 || m_filter == 3 || colour.replacedBy[0] == 0;
}

const CMciColor* CMciColorsBase::getNext() { return m_next < m_colours.size() ? &m_colours[m_next++] : nullptr; }

const CMciColor* CMciColorsBase::getAt(std::size_t index) const { return index < m_colours.size() ? &m_colours[index] : nullptr; }

bool CMciColorsBase::contains(const CMciColor& colour) const {
    return std::find(m_colours.begin(), m_colours.end(), colour) != m_colours.end();
}

}  // namespace morvil
