#include "platform/common/Text.h"

#include <algorithm>
#include <array>

namespace morvil {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void appendUtf8(std::string& out, char32_t code) {
    const auto put = [&out](char32_t value) { out.push_back(static_cast<char>(static_cast<unsigned char>(value))); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | (code >> 6));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

void appendUtf16(WString& out, char32_t code) {
    if (code < 0x10000) {
        out.push_back(static_cast<WCHAR>(code));
        return;
    }
    code -= 0x10000;
    out.push_back(static_cast<WCHAR>(0xD800 + (code >> 10)));
    out.push_back(static_cast<WCHAR>(0xDC00 + (code & 0x3FF)));
}

// Length of the sequence that a lead byte opens, 0 for a byte that opens none.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

char32_t decodeSequence(std::string_view sequence) {
    constexpr std::array<unsigned char, 5> kLeadMask{0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    char32_t code = static_cast<unsigned char>(sequence[0]) & kLeadMask[sequence.size()];
    for (const char byte : sequence.substr(1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) return kReplacement;
        code = (code << 6) | (static_cast<unsigned char>(byte) & 0x3F);
    }
    const bool valid = code >= kSmallest[sequence.size()] && code <= 0x10FFFF && !isHighSurrogate(code) && !isLowSurrogate(code);
    return valid ? code : kReplacement;
}

}  // namespace

WStringView viewOf(std::span<const WCHAR> buffer) {
    const auto end = std::find(buffer.begin(), buffer.end(), WCHAR{0});
    return {buffer.data(), static_cast<std::size_t>(end - buffer.begin())};
}

bool copyText(std::span<WCHAR> buffer, WStringView text) {
    if (buffer.empty()) return text.empty();
    const std::size_t count = std::min(text.size(), buffer.size() - 1);
    std::copy_n(text.begin(), count, buffer.begin());
    std::fill(buffer.begin() + static_cast<std::ptrdiff_t>(count), buffer.end(), WCHAR{0});
    return count == text.size();
}

std::string toLatin1(WStringView text) {
    std::string bytes(text.size(), '?');
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](WCHAR unit) { return unit <= 0xFF ? static_cast<char>(static_cast<unsigned char>(unit)) : '?'; });
    return bytes;
}

WString fromLatin1(std::string_view bytes) {
    WString text(bytes.size(), WCHAR{0});
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char byte) { return static_cast<WCHAR>(static_cast<unsigned char>(byte)); });
    return text;
}

std::string toUtf8(WStringView text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (isHighSurrogate(code) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00);
        } else if (isHighSurrogate(code) || isLowSurrogate(code)) {
            code = kReplacement;
        }
        appendUtf8(out, code);
    }
    return out;
}

WString fromUtf8(std::string_view bytes) {
    WString out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(bytes[i]));
        if (length == 0 || length > bytes.size() - i) {
            appendUtf16(out, kReplacement);
            ++i;
            continue;
        }
        const char32_t code = decodeSequence(bytes.substr(i, length));
        appendUtf16(out, code);
        i += code == kReplacement ? 1 : length;
    }
    return out;
}

}  // namespace morvil
