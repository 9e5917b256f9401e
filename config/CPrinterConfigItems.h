// CPrinterConfigItems.h - typed access to the items of the configuration below one root: reading applies what the key table
// says of missing and unfit values, writing checks the range first and then puts the item. Borrows the store; short-lived.
#pragma once

#include <array>
#include <optional>
#include <utility>

#include "config/CPrinterConfigKeys.h"
#include "config/CXml.h"

namespace morvil {

// A row of changes that is handed to the disk once, at its end.
class ItemChanges {
  public:
    explicit ItemChanges(CXml& store) : m_store(&store) { store.beginChanges(); }
    ~ItemChanges() { end(); }
    ItemChanges(const ItemChanges&) = delete;
    ItemChanges& operator=(const ItemChanges&) = delete;

    // The result of handing the file over; true when an enclosing row does that later.
    bool end() {
        CXml* const store = std::exchange(m_store, nullptr);
        return store == nullptr || store->endChanges();
    }

  private:
    CXml* m_store;
};

class ConfigurationItems {
  public:
    using Value = std::array<WCHAR, CXml::kValueCharacters>;

    // Points into `root`.
    ConfigurationItems(CXml& store, const ItemPath& root) : m_store(store), m_root(root) {}

    // The item path of a key, or of the element of a list that bears the number.
    [[nodiscard]] WString pathOf(const keys::KeyPath& key) const;
    [[nodiscard]] WString pathOf(const keys::ListKey& key, int number) const;

    // Looking up what the document holds, without putting a path together for it. Null for what is missing, and what holds
    // until the next change.
    [[nodiscard]] const XmlNode* root() const;
    [[nodiscard]] const XmlNode* element(const keys::KeyPath& key) const;
    [[nodiscard]] const XmlNode* element(const keys::ListKey& key, int number) const;

    // False when the element or the attribute is missing.
    [[nodiscard]] bool read(const XmlNode* element, Value& value, const WCHAR* attribute = keys::kValue);

    // Nothing when the item is missing; else the key's range is applied.
    template <typename T>
    [[nodiscard]] std::optional<T> find(const keys::NumberKey<T>& key);
    template <typename T>
    [[nodiscard]] T number(const keys::NumberKey<T>& key) {
        return find(key).value_or(key.missing);
    }
    [[nodiscard]] bool boolean(const keys::BooleanKey& key);
    [[nodiscard]] WString text(const keys::TextKey& key);

    // The text that belongs behind what a fixed field holds: a field that is full may have been cut there, and then the value
    // of `element`, if that begins so, is the whole of it.
    [[nodiscard]] WString uncut(const XmlNode* element, std::span<const WCHAR> field);

    // False without writing when the value does not fit the key; else the result of putting the item.
    template <typename T>
    bool put(const keys::NumberKey<T>& key, T value);
    bool put(const keys::BooleanKey& key, bool value);
    bool put(const keys::TextKey& key, WStringView value);
    // Whether the file can hold the text: no markup of the file, and short enough to be read back.
    static bool storable(WStringView value);
    // Refuses what the file cannot hold: nothing is escaped in it, so "<", "&" and quotation marks would break it.
    bool put(const WString& path, WStringView value, const WCHAR* attribute = keys::kValue);
    // Removes an element with everything below it; true when there is none.
    bool remove(const keys::KeyPath& key);

  private:
    [[nodiscard]] std::size_t lengthOf(const keys::KeyPath& key) const;

    CXml& m_store;
    const ItemPath& m_root;
};

}  // namespace morvil
