#include "config/XmlDocument.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

namespace morvil {

// The arena frees its blocks without looking at what lies in them.
static_assert(std::is_trivially_destructible_v<XmlNode> && std::is_trivially_destructible_v<XmlAttribute>);

namespace {

// For a text and its nodes, of which a configuration file needs about five bytes for each character. A C library that gets a large
// block back learns to keep twice as much for the next one; of smaller ones it keeps 128 KB in all, and to be given the rest anew
// for each document, page by page, costs more than parsing. So nobody asks for a size between: what is not used is never touched.
std::size_t blockFor(std::size_t characters) {
    constexpr std::size_t kSmall = std::size_t{64} << 10;
    constexpr std::size_t kLarge = std::size_t{256} << 10;
    constexpr std::size_t kMostNodes = std::size_t{4} << 20;
    const std::size_t bytes = (characters + 1) * sizeof(WCHAR) + std::clamp<std::size_t>(characters * 6, 1024, kMostNodes);
    return bytes <= kSmall ? bytes : std::max(bytes, kLarge);
}

// Compared as bytes, which is quicker than unit by unit; most names differ in length or in their first character.
bool same(WStringView one, WStringView other) {
    if (one.size() != other.size()) return false;
    return one.empty() || (one.front() == other.front() && std::memcmp(one.data(), other.data(), one.size() * sizeof(WCHAR)) == 0);
}

const XmlAttribute* attributeOf(const XmlNode& node, WStringView name) {
    for (const XmlAttribute& attribute : node.attributes) {
        if (same(attribute.name, name)) return &attribute;
    }
    return nullptr;
}

bool isElement(const XmlNode& node, WStringView name) { return node.type == XmlType::Element && node.name && same(*node.name, name); }

const XmlNode* elementOf(const XmlNode& node, WStringView name) {
    for (const XmlNode& child : node.children) {
        if (isElement(child, name)) return &child;
    }
    return nullptr;
}

}  // namespace

const XmlNode* findChild(const XmlNode& node, WStringView name) { return elementOf(node, name); }
XmlNode* findChild(XmlNode& node, WStringView name) { return const_cast<XmlNode*>(elementOf(node, name)); }
const XmlAttribute* findAttribute(const XmlNode& node, WStringView name) { return attributeOf(node, name); }
XmlAttribute* findAttribute(XmlNode& node, WStringView name) { return const_cast<XmlAttribute*>(attributeOf(node, name)); }

const XmlNode* findBelow(const XmlNode* node, std::span<const WStringView> names) {
    for (const WStringView name : names) {
        if (node == nullptr) break;
        node = elementOf(*node, name);
    }
    return node;
}

const XmlNode* nextSameElement(const XmlNode& node) {
    for (const XmlNode* at = node.next; at != nullptr; at = at->next) {
        if (node.name && isElement(*at, *node.name)) return at;
    }
    return nullptr;
}

XmlDocument::XmlDocument(WStringView text) {
    const std::span<WCHAR> copy = startText(text.size());
    if (copy.data() == nullptr) throw std::bad_alloc();
    std::copy(text.begin(), text.end(), copy.begin());
    endText(copy);
}

std::span<WCHAR> XmlDocument::startText(std::size_t characters) {
    m_root = {.type = XmlType::Root};
    m_text = {};
    if (m_lastBlock >= (characters + 1) * sizeof(WCHAR)) {
        m_blocks.erase(m_blocks.begin(), m_blocks.end() - 1);  // of several the last is the largest
        m_free = {m_blocks.back().get(), m_lastBlock};
    } else {
        m_blocks.clear();
        m_free = {};
        m_nextBlock = blockFor(characters);
    }
    const std::span<WCHAR> place = room(characters + 1);
    return place.empty() ? place : place.first(characters);
}

void XmlDocument::endText(std::span<WCHAR> text) {
    text.data()[text.size()] = 0;
    m_text = {text.data(), text.size()};
}

void* XmlDocument::takeFromNewBlock(std::size_t bytes) {
    try {
        const std::size_t size = std::max(bytes, m_nextBlock);
        m_blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
        m_lastBlock = size;
        m_nextBlock = size + size / 2;
        m_free = {m_blocks.back().get() + bytes, size - bytes};
        return m_blocks.back().get();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::span<WCHAR> XmlDocument::room(std::size_t units) {
    void* const place = take(std::max<std::size_t>(units, 1) * sizeof(WCHAR));
    return place == nullptr ? std::span<WCHAR>() : std::span(static_cast<WCHAR*>(place), units);
}

std::optional<WStringView> XmlDocument::keep(WStringView text) {
    const std::span<WCHAR> copy = room(text.size());
    if (copy.data() == nullptr) return std::nullopt;
    std::copy(text.begin(), text.end(), copy.begin());
    return WStringView(copy.data(), copy.size());
}

XmlNode* XmlDocument::addChild(XmlNode& node, XmlType type) {
    XmlNode* const child = newNode(type);
    if (child != nullptr) appendChild(node, *child);
    return child;
}

XmlAttribute* XmlDocument::addAttribute(XmlNode& node, WStringView name) {
    const std::optional<WStringView> kept = keep(name);
    XmlAttribute* const attribute = kept ? newAttribute(*kept) : nullptr;
    if (attribute != nullptr) node.attributes.append(*attribute);
    return attribute;
}

bool XmlDocument::setText(std::optional<WStringView>& target, WStringView text) {
    const std::optional<WStringView> kept = keep(text);
    if (!kept) return false;
    target = kept;
    return true;
}

}  // namespace morvil
