// XmlDocument.h - owns the memory of one tree: one arena for the text it was read from, which names and values point into, for
// nodes, attributes and changed texts. What is removed from the tree keeps its memory until the document goes; a document
// lives for one reading or writing pass. One thread at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "config/XmlNode.h"

namespace morvil {

class XmlDocument {
  public:
    // A tree of nothing but the root.
    XmlDocument() = default;
    // The same with a copy of `text`, which a parser is going to point into. Throws when there is no memory.
    explicit XmlDocument(WStringView text);
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    [[nodiscard]] XmlNode& root() { return m_root; }
    [[nodiscard]] const XmlNode& root() const { return m_root; }
    [[nodiscard]] WStringView text() const { return m_text; }

    // The place for a text of `characters` and its terminator, and memory for its tree; data() is null when there is none. Drops
    // the old text and tree and uses their memory, so that a reader who reads on and on takes it once.
    std::span<WCHAR> startText(std::size_t characters);
    // What stands there is the text, or this front of it. Ends it with a zero.
    void endText(std::span<WCHAR> text);

    // These append at the end and return the new item; null when there is no memory, and the tree is then as before.
    XmlNode* addChild(XmlNode& node, XmlType type);
    XmlAttribute* addAttribute(XmlNode& node, WStringView name);
    // Replaces a name or value with a copy of `text`. False, and nothing changed, when there is no memory.
    bool setText(std::optional<WStringView>& target, WStringView text);
    // Take the item, with everything below it, out of the tree.
    static bool removeChild(XmlNode& node, XmlNode& child) { return node.children.remove(child); }
    static bool removeAttribute(XmlNode& node, XmlAttribute& attribute) { return node.attributes.remove(attribute); }

    // The parts of the above for the parser, which decides later whether a node joins the tree and whose texts need no copy.
    XmlNode* newNode(XmlType type) {
        void* const place = take(sizeof(XmlNode));
        if (place == nullptr) return nullptr;
        auto* const node = new (place) XmlNode;
        node->type = type;
        return node;
    }
    // Its value is none at first.
    XmlAttribute* newAttribute(WStringView name) {
        void* const place = take(sizeof(XmlAttribute));
        return place == nullptr ? nullptr : new (place) XmlAttribute{name, std::nullopt, nullptr};
    }
    static void appendChild(XmlNode& node, XmlNode& child) {
        child.parent = &node;
        node.children.append(child);
    }
    // A copy that lives as long as the document.
    std::optional<WStringView> keep(WStringView text);
    // Room for `units` characters that live as long as the document; empty when there is no memory.
    std::span<WCHAR> room(std::size_t units);

  private:
    static constexpr std::size_t kAlignment = 8;
    static_assert(alignof(XmlNode) <= kAlignment && alignof(XmlAttribute) <= kAlignment);

    // A place that is aligned for every record; null when there is no memory. In sight of the parser, which asks for one for
    // every few characters that it reads.
    void* take(std::size_t bytes) {
        bytes = (bytes + kAlignment - 1) / kAlignment * kAlignment;
        if (bytes > m_free.size()) return takeFromNewBlock(bytes);
        void* const place = m_free.data();
        m_free = m_free.subspan(bytes);
        return place;
    }
    void* takeFromNewBlock(std::size_t bytes);

    WStringView m_text;
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::span<std::byte> m_free;  // of the last block
    std::size_t m_lastBlock = 0;  // bytes
    std::size_t m_nextBlock = 1024;
    XmlNode m_root{.type = XmlType::Root};
};

}  // namespace morvil
