// XmlDocument.h - owns the memory of one tree: the text it was read from, which names and values point into, and one arena for
// nodes, attributes and changed texts. What is removed from the tree keeps its memory until the document goes; a document
// lives for one reading or writing pass. One thread at a time.
#pragma once

#include <memory_resource>

#include "config/XmlNode.h"

namespace morvil {

class XmlDocument {
  public:
    // A tree of nothing but the root. `text` is what a parser is going to point into.
    explicit XmlDocument(WString text = {});
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    [[nodiscard]] XmlNode& root() { return m_root; }
    [[nodiscard]] const XmlNode& root() const { return m_root; }
    [[nodiscard]] WStringView text() const { return m_text; }

    // These append at the end and return the new item; null when there is no memory, and the tree is then as before.
    XmlNode* addChild(XmlNode& node, XmlType type);
    XmlAttribute* addAttribute(XmlNode& node, WStringView name);
    // Replaces a name or value with a copy of `text`. False, and nothing changed, when there is no memory.
    bool setText(std::optional<WStringView>& target, WStringView text);
    // Take the item, with everything below it, out of the tree.
    static bool removeChild(XmlNode& node, XmlNode& child) { return node.children.remove(child); }
    static bool removeAttribute(XmlNode& node, XmlAttribute& attribute) { return node.attributes.remove(attribute); }

    // The parts of the above for the parser, which decides later whether a node joins the tree and whose texts need no copy.
    XmlNode* newNode(XmlType type);
    XmlAttribute* newAttribute(WStringView name, std::optional<WStringView> value);
    static void appendChild(XmlNode& node, XmlNode& child);
    // A copy that lives as long as the document.
    std::optional<WStringView> keep(WStringView text);
    // Room for `units` characters that live as long as the document; empty when there is no memory.
    std::span<WCHAR> room(std::size_t units);

  private:
    void* take(std::size_t bytes, std::size_t alignment);

    WString m_text;
    std::pmr::monotonic_buffer_resource m_arena;
    XmlNode m_root;
};

}  // namespace morvil
