// XmlNode.h - the tree of an XML document: one record for every kind of node, with its attributes and children in document
// order. Nodes, attributes and texts live in the memory of their XmlDocument and go with it; nothing here owns memory, so a
// tree of any depth is freed without walking it.
#pragma once

#include <cstdint>
#include <iterator>
#include <optional>
#include <span>

#include "platform/common/Text.h"

namespace morvil {

enum class XmlType : std::uint32_t {
    Root = 1,
    Element = 2,
    Text = 3,
    CData = 4,
    Comment = 5,
    ProcessingInstruction = 6,
    Include = 7,
    DocumentType = 8,
    Entity = 9,
    AttributeList = 10,
    ElementDeclaration = 11,
    Notation = 12
};

// A chain of records linked through their member `next`.
template <typename T>
class XmlList {
  public:
    template <typename U>
    class Iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = U;
        using difference_type = std::ptrdiff_t;
        using pointer = U*;
        using reference = U&;

        explicit Iterator(U* item = nullptr) : m_item(item) {}
        U& operator*() const { return *m_item; }
        U* operator->() const { return m_item; }
        Iterator& operator++() {
            m_item = m_item->next;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            m_item = m_item->next;
            return before;
        }
        bool operator==(const Iterator&) const = default;

      private:
        U* m_item;
    };

    Iterator<T> begin() { return Iterator<T>(m_first); }
    Iterator<T> end() { return Iterator<T>(nullptr); }
    Iterator<const T> begin() const { return Iterator<const T>(m_first); }
    Iterator<const T> end() const { return Iterator<const T>(nullptr); }

    [[nodiscard]] bool empty() const { return m_first == nullptr; }
    [[nodiscard]] T* first() { return m_first; }
    [[nodiscard]] const T* first() const { return m_first; }
    [[nodiscard]] bool hasOne() const { return m_first != nullptr && m_first == m_last; }

    void append(T& item) {
        item.next = nullptr;
        (m_last == nullptr ? m_first : m_last->next) = &item;
        m_last = &item;
    }
    // Closes the gap, keeping the order. False when `item` is not in the list.
    bool remove(T& item) {
        T* before = nullptr;
        for (T* at = m_first; at != nullptr; before = at, at = at->next) {
            if (at != &item) continue;
            (before == nullptr ? m_first : before->next) = item.next;
            if (m_last == &item) m_last = before;
            item.next = nullptr;
            return true;
        }
        return false;
    }

  private:
    T* m_first = nullptr;
    T* m_last = nullptr;
};

struct XmlAttribute {
    WStringView name;
    std::optional<WStringView> value;  // none: written as a bare name
    XmlAttribute* next = nullptr;
};

struct XmlNode {
    XmlType type = XmlType::Element;
    std::optional<WStringView> name;   // tag of an element or processing instruction, declared name of a declaration
    XmlList<XmlAttribute> attributes;  // a document type keeps its words here, as bare names
    XmlList<XmlNode> children;
    std::optional<WStringView> value;  // content of a text, CDATA, comment or INCLUDE node, the rest of a declaration
    XmlNode* parent = nullptr;
    XmlNode* next = nullptr;  // the next child of the same parent
};

// The first child element, or attribute, of that name (exact, case-sensitive); null for none.
const XmlNode* findChild(const XmlNode& node, WStringView name);
XmlNode* findChild(XmlNode& node, WStringView name);
const XmlAttribute* findAttribute(const XmlNode& node, WStringView name);
XmlAttribute* findAttribute(XmlNode& node, WStringView name);

// The element at the end of a chain of names below `node`; null when one of them is missing, or for null.
const XmlNode* findBelow(const XmlNode* node, std::span<const WStringView> names);

// The next element of the same name behind `node`; null for none.
const XmlNode* nextSameElement(const XmlNode& node);

}  // namespace morvil
