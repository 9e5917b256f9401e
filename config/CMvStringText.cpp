// The text services of CMvString: lower case, UTF-8, searching, replacing and cutting into tokens.
#include <algorithm>

#include "config/CMvString.h"
#include "driver/log/Log.h"

namespace morvil {

WCHAR* CMvString::toLower(WCHAR* text) {
    if (text == nullptr) {
        reportParameter(TEXT("toLower"));
        return nullptr;
    }
    const std::size_t length = WStringView(text).size();
    if (length == 0 || length >= m_capacity) {
        if (debugOutputWanted()) send(format(TEXT("CMvString::toLower Error during conversion of (%s))\n"), text));
        return nullptr;
    }
    std::transform(text, text + length, text,
                   [](WCHAR unit) { return unit >= TEXT('A') && unit <= TEXT('Z') ? static_cast<WCHAR>(unit + 32) : unit; });
    return text;
}

// A continuation byte is visited again on its own step, where it is reported like every byte that opens no sequence.
WCHAR* CMvString::toUTF8(const WCHAR* source, WCHAR* destination) {
    if (destination == nullptr || source == destination) return destination;
    const WStringView bytes = viewOf(source);
    WCHAR* out = destination;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const unsigned lead = bytes[at] & 0xFFU;
        if (lead < 0x80) {
            *out++ = static_cast<WCHAR>(lead);
        } else if (lead >= 0xC0 && lead <= 0xDF) {
            const unsigned next = at + 1 < bytes.size() ? bytes[at + 1] & 0x3FU : 0;
            *out++ = static_cast<WCHAR>(((lead & 0x1FU) << 6) | next);
        } else {
            debugPrint(TEXT("!!! CMvString::toUTF8, undefined decoding found\n"));
        }
    }
    *out = 0;
    return destination;
}

const WCHAR* CMvString::find(const WCHAR* text, const WCHAR* pattern) {
    if (text == nullptr || pattern == nullptr) return nullptr;
    const WStringView source(text);
    if (source.empty() || source.size() >= m_capacity) return nullptr;
    const std::size_t at = source.find(pattern);  // none as well when the pattern is longer than the text
    return at == WStringView::npos ? nullptr : text + at;
}

bool CMvString::replace(WCHAR* text, const WCHAR* from, const WCHAR* to) {
    if (text == nullptr || from == nullptr || to == nullptr) return false;
    const WStringView pattern(from);
    const WStringView replacement(to);
    if (pattern.empty() || pattern.size() >= m_capacity || replacement.size() > pattern.size()) return false;
    const WStringView source(text);
    WCHAR* out = text;  // never ahead of `at`: the text does not grow
    for (std::size_t at = 0; at < source.size();) {
        const std::size_t hit = std::min(source.find(pattern, at), source.size());
        out = std::copy(text + at, text + hit, out);
        if (hit == source.size()) break;
        out = std::copy(replacement.begin(), replacement.end(), out);
        at = hit + pattern.size();
    }
    *out = 0;
    return true;
}

bool CMvString::nextToken(const WCHAR* source, const WCHAR* delimiters, WCHAR* destination, int count, const WCHAR** rest) {
    constexpr std::size_t kMostDelimiters = 9;
    const WStringView separators = viewOf(delimiters);
    if (source == nullptr || destination == nullptr || separators.empty() || separators.size() > kMostDelimiters || count < 1) return false;
    WStringView left(source);
    WStringView token;
    for (int taken = 0; taken < count; ++taken) {
        const std::size_t end = std::min(left.find_first_of(separators), left.size());
        token = left.substr(0, end);
        left.remove_prefix(std::min(end + 1, left.size()));
    }
    copyPart(destination, token);
    if (rest != nullptr) *rest = left.data();
    return true;
}

// The destination of a token is a text buffer of m_capacity characters; only the part with its terminator is written.
void CMvString::copyPart(WCHAR* destination, WStringView token) {
    const std::size_t length = std::min<std::size_t>(token.size(), m_capacity - 1);
    std::copy_n(token.begin(), length, destination);
    destination[length] = 0;
}

}  // namespace morvil
