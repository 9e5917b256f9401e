// The list-like blocks: flag names, diagnostic signals and the colour list. Each is written as a whole: the element goes, and
// its items come back numbered without gaps.
#include <algorithm>

#include "config/CMvString.h"
#include "config/CPrinterConfigMembers.h"
#include "config/CPrinterConfigTables.h"

namespace morvil {

namespace {

template <typename Field>
bool readColour(ConfigurationItems& items, const XmlNode* element, const WCHAR* attribute, Field& field) {
    ConfigurationItems::Value value;
    if (!items.read(element, value, attribute)) return false;
    // A colour is a byte in the record: what a byte cannot hold is as bright as can be.
    field = static_cast<Field>(std::min<std::uint16_t>(CMvString().asUnsignedShort(value.data()), 0xFF));
    return true;
}

bool readEntry(ConfigurationItems& items, const XmlNode* element, VectorColour& entry) {
    const auto& [red, green, blue, mode] = keys::kColourAttributes;
    ConfigurationItems::Value value;
    if (!readColour(items, element, red, entry.red) || !readColour(items, element, green, entry.green)) return false;
    if (!readColour(items, element, blue, entry.blue) || !items.read(element, value, mode)) return false;
    entry.mode = static_cast<WORD>(CMvString().asShort(value.data()));
    return true;
}

bool writeEntry(ConfigurationItems& items, const WString& path, const VectorColour& entry) {
    const std::array<int, 4> values{entry.red, entry.green, entry.blue, static_cast<SHORT>(entry.mode)};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!items.put(path, format(TEXT("%d"), values[i]), keys::kColourAttributes[i])) return false;
    }
    return true;
}

}  // namespace

DWORD CPrinterConfig::getFlags() {
    ConfigurationItems items = m->items();
    ConfigurationItems::Value name;
    DWORD mask = 0;
    for (int n = 1; n <= keys::kMostFlags && items.read(items.element(keys::kFlag, n), name); ++n) mask |= flagBit(viewOf(name.data()));
    return mask;
}

bool CPrinterConfig::setFlags(DWORD flags) {
    return m->write([&](ConfigurationItems& items) {
        if (!items.remove(keys::kFlags)) return false;
        int n = 0;
        for (const FlagName& flag : flagNames()) {
            if ((flags & flag.bit) == 0) continue;
            if (!items.put(items.pathOf(keys::kFlag, ++n), flag.name)) return false;
        }
        return true;
    });
}

DiagnosticBlock CPrinterConfig::getDiagnostic() {
    ConfigurationItems items = m->items();
    DiagnosticBlock diagnostic{};
    diagnostic.enabled = items.boolean(keys::kDiagnosticEnable) ? 1 : 0;
    if (items.element(keys::kSignals) == nullptr) return diagnostic;
    for (int n = 0; n < keys::kMostSignals; ++n) {
        ConfigurationItems::Value value;
        if (!items.read(items.element(keys::kSignal, n), value)) continue;
        const std::int32_t signal = CMvString().asInt(value.data());
        if (signal < 0 || signal >= keys::kMostSignals) continue;
        BYTE& byte = diagnostic.signals[signal / 8];
        byte = static_cast<BYTE>(byte | 1U << (signal % 8));
    }
    return diagnostic;
}

bool CPrinterConfig::setDiagnostic(const DiagnosticBlock& diagnostic) {
    logMorvil(1, kInformation, TEXT("setDiagnostic, %d"), diagnostic.enabled, kLogEnd);
    const bool written = m->write([&](ConfigurationItems& items) {
        if (!items.put(keys::kDiagnosticEnable, diagnostic.enabled != 0) || !items.remove(keys::kSignals)) return false;
        int n = 0;
        for (int signal = 0; signal < keys::kMostSignals; ++signal) {
            if ((diagnostic.signals[signal / 8] >> (signal % 8) & 1) == 0) continue;
            if (!items.put(items.pathOf(keys::kSignal, n++), format(TEXT("%d"), signal))) return false;
        }
        return true;
    });
    logMorvil(1, kInformation, TEXT("setDiagnostic finished Enable=%d"), diagnostic.enabled, kLogEnd);
    return written;
}

WORD CPrinterConfig::getColours(VectorColour (&colours)[kVectorColours]) {
    ConfigurationItems items = m->items();
    std::ranges::fill(colours, VectorColour{});
    WORD count = 0;
    VectorColour entry{};
    while (count < kVectorColours && readEntry(items, items.element(keys::kColour, count), entry)) colours[count++] = entry;
    return count;
}

bool CPrinterConfig::setColours(const VectorColour (&colours)[kVectorColours], WORD count) {
    if (count > kVectorColours) return false;
    return m->write([&](ConfigurationItems& items) {
        if (!items.remove(keys::kColours)) return false;
        for (int n = 0; n < count; ++n) {
            if (!writeEntry(items, items.pathOf(keys::kColour, n), colours[n])) return false;
        }
        return true;
    });
}

}  // namespace morvil
