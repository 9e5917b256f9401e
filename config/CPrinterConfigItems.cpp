#include "config/CPrinterConfigItems.h"

#include "config/CMvString.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr WStringView kRootMark = TEXT("%s");

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

}  // namespace

WString ConfigurationItems::pathOf(const WCHAR* key) const {
    const WStringView path = viewOf(key);
    if (!path.starts_with(kRootMark)) return WString(path);
    WString whole;
    whole.reserve(m_root.size() + path.size());
    return whole.append(m_root).append(path.substr(kRootMark.size()));
}

WString ConfigurationItems::pathOf(const WCHAR* key, int number) const { return format(pathOf(key), number); }

bool ConfigurationItems::exists(const WString& path) { return m_store.first(path.c_str()) != nullptr; }

bool ConfigurationItems::read(const WString& path, Value& value, const WCHAR* attribute) {
    return m_store.getItem(path.c_str(), value.data(), attribute);
}

template <typename T>
std::optional<T> ConfigurationItems::find(const keys::NumberKey<T>& key) {
    Value value;
    if (!read(pathOf(key.path), value, key.attribute)) return std::nullopt;
    const T number = fromText<T>(value.data());
    return inRange(key, number) ? number : key.outside;
}

bool ConfigurationItems::boolean(const keys::BooleanKey& key) {
    Value value;
    return read(pathOf(key.path), value) ? CMvString().asBoolean(value.data()) : key.missing;
}

WString ConfigurationItems::text(const keys::TextKey& key) {
    Value value;
    if (!read(pathOf(key.path), value)) return key.missing;
    const WStringView found = viewOf(value.data());
    if (found.size() < key.shortest || found.size() > key.longest) return key.missing;
    return WString(found);
}

WString ConfigurationItems::uncut(const WString& path, std::span<const WCHAR> field) {
    const WStringView text = viewOf(field);
    Value whole{};
    const bool full = text.size() + 1 >= field.size();
    if (!full || !read(path, whole) || !viewOf(whole.data()).starts_with(text)) return WString(text);
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

bool ConfigurationItems::remove(const WString& path) { return !exists(path) || m_store.removeItem(path.c_str()); }

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
