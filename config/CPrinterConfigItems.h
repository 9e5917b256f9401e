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

    ConfigurationItems(CXml& store, WStringView root) : m_store(store), m_root(root) {}

    // The item path of a key: "%s" becomes the root, "%d" the number.
    [[nodiscard]] WString pathOf(const WCHAR* key) const;
    [[nodiscard]] WString pathOf(const WCHAR* key, int number) const;

    // Whether the element exists, with or without a value.
    [[nodiscard]] bool exists(const WString& path);
    [[nodiscard]] bool read(const WString& path, Value& value, const WCHAR* attribute = keys::kValue);

    // Nothing when the item is missing; else the key's range is applied.
    template <typename T>
    [[nodiscard]] std::optional<T> find(const keys::NumberKey<T>& key);
    template <typename T>
    [[nodiscard]] T number(const keys::NumberKey<T>& key) {
        return find(key).value_or(key.missing);
    }
    [[nodiscard]] bool boolean(const keys::BooleanKey& key);
    [[nodiscard]] WString text(const keys::TextKey& key);

    // The text that belongs behind what a fixed field holds: a field that is full may have been cut there, and then the text
    // that stands at `path` and begins so is the whole of it.
    [[nodiscard]] WString uncut(const WString& path, std::span<const WCHAR> field);

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
    bool remove(const WString& path);

  private:
    CXml& m_store;
    WStringView m_root;
};

}  // namespace morvil
