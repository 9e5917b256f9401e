#include "config/CPrinterConfigItems.h"

#include <algorithm>
#include <charconv>

#include "config/CMvString.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

template <typename T>
T fromText(const WCHAR* text);
template <>
std::uint32_t fromText(const WCHAR* text) {
    return CMvString().asUnsignedInt(text);
}
template <>
std::int32_t fromText(const WCHAR* text) {
    return CMvString().asInt(text);
}
template <>
std::uint16_t fromText(const WCHAR* text) {
    return CMvString().asUnsignedShort(text);
}
template <>
std::int16_t fromText(const WCHAR* text) {
    return CMvString().asShort(text);
}
template <>
float fromText(const WCHAR* text) {
    return CMvString().asFloat(text);
}

template <typename T>
WString asText(T value, int) {
    std::array<WCHAR, kPathCharacters + 1> buffer{};
    return CMvString().asPWchar(value, buffer.data());
}
template <>
WString asText(std::int16_t value, int decimals) {
    return asText(static_cast<std::int32_t>(value), decimals);
}
template <>
WString asText(float value, int decimals) {
    return format(format(TEXT("%%.%df"), decimals), value);
}

// Written this way a value that is not a number lies outside of every range.
template <typename T>
bool inRange(const keys::NumberKey<T>& key, T value) {
    return value >= key.low && value <= key.high;
}

// The name of the element of a list that bears the number.
WString nameOf(const keys::ListKey& key, int number) {
    std::array<char, 11> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return WString(key.name).append(digits.data(), end);
}

}  // namespace

WString ConfigurationItems::pathOf(const keys::KeyPath& key) const {
    WString whole;
    if (key.isBelowRoot()) whole.append(m_root.text()).append(TEXT("."));
    return whole.append(key.item().text());
}

WString ConfigurationItems::pathOf(const keys::ListKey& key, int number) const {
    return pathOf(key.parent).append(TEXT(".")).append(nameOf(key, number));
}

std::size_t ConfigurationItems::lengthOf(const keys::KeyPath& key) const {
    return (key.isBelowRoot() ? m_root.text().size() + 1 : 0) + key.item().text().size();
}

const XmlNode* ConfigurationItems::root() const { return m_root.empty() ? nullptr : findBelow(m_store.top(), m_root.names()); }

// What a path that is put together is too long for is missing here as well.
const XmlNode* ConfigurationItems::element(const keys::KeyPath& key) const {
    if (!key.isBelowRoot()) return findBelow(m_store.top(), key.item().names());
    if (lengthOf(key) > ItemPath::kMostCharacters) return nullptr;
    const std::size_t most = ItemPath::kMostNames - m_root.names().size();
    return findBelow(root(), key.item().names().first(std::min(most, key.item().names().size())));
}

const XmlNode* ConfigurationItems::element(const keys::ListKey& key, int number) const {
    const XmlNode* const parent = element(key.parent);
    if (parent == nullptr) return nullptr;
    const WString name = nameOf(key, number);
    return lengthOf(key.parent) + 1 + name.size() > ItemPath::kMostCharacters ? nullptr : findChild(*parent, name);
}

bool ConfigurationItems::read(const XmlNode* element, Value& value, const WCHAR* attribute) {
    return m_store.readAttribute(element, value.data(), attribute);
}

template <typename T>
std::optional<T> ConfigurationItems::find(const keys::NumberKey<T>& key) {
    Value value;
    if (!read(element(key.path), value, key.attribute)) return std::nullopt;
    const T number = fromText<T>(value.data());
    return inRange(key, number) ? number : key.outside;
}

bool ConfigurationItems::boolean(const keys::BooleanKey& key) {
    Value value;
    return read(element(key.path), value) ? CMvString().asBoolean(value.data()) : key.missing;
}

WString ConfigurationItems::text(const keys::TextKey& key) {
    Value value;
    if (!read(element(key.path), value)) return key.missing;
    const WStringView found = viewOf(value.data());
    if (found.size() < key.shortest || found.size() > key.longest) return key.missing;
    return WString(found);
}

WString ConfigurationItems::uncut(const XmlNode* element, std::span<const WCHAR> field) {
    const WStringView text = viewOf(field);
    Value whole;
    const bool full = text.size() + 1 >= field.size();
    if (!full || !read(element, whole) || !viewOf(whole.data()).starts_with(text)) return WString(text);
    return WString(viewOf(whole.data()));
}

template <typename T>
bool ConfigurationItems::put(const keys::NumberKey<T>& key, T value) {
    return inRange(key, value) && put(pathOf(key.path), asText(value, key.decimals), key.attribute);
}

bool ConfigurationItems::put(const keys::BooleanKey& key, bool value) { return put(pathOf(key.path), value ? TEXT("1") : TEXT("0")); }

bool ConfigurationItems::put(const keys::TextKey& key, WStringView value) {
    if (value.size() < key.shortest || value.size() > key.longest) return false;
    return put(pathOf(key.path), value);
}

bool ConfigurationItems::storable(WStringView value) {
    return value.size() < CXml::kValueCharacters && value.find_first_of(TEXT("<&\"")) == WStringView::npos;
}

bool ConfigurationItems::put(const WString& path, WStringView value, const WCHAR* attribute) {
    if (!storable(value)) return false;
    return m_store.putItem(path.c_str(), WString(value).c_str(), attribute);
}

bool ConfigurationItems::remove(const keys::KeyPath& key) { return element(key) == nullptr || m_store.removeItem(pathOf(key).c_str()); }

template std::optional<std::uint32_t> ConfigurationItems::find(const keys::NumberKey<std::uint32_t>&);
template std::optional<std::int32_t> ConfigurationItems::find(const keys::NumberKey<std::int32_t>&);
template std::optional<std::uint16_t> ConfigurationItems::find(const keys::NumberKey<std::uint16_t>&);
template std::optional<std::int16_t> ConfigurationItems::find(const keys::NumberKey<std::int16_t>&);
template std::optional<float> ConfigurationItems::find(const keys::NumberKey<float>&);
template bool ConfigurationItems::put(const keys::NumberKey<std::uint32_t>&, std::uint32_t);
template bool ConfigurationItems::put(const keys::NumberKey<std::int32_t>&, std::int32_t);
template bool ConfigurationItems::put(const keys::NumberKey<std::uint16_t>&, std::uint16_t);
template bool ConfigurationItems::put(const keys::NumberKey<std::int16_t>&, std::int16_t);
template bool ConfigurationItems::put(const keys::NumberKey<float>&, float);

}  // namespace morvil
