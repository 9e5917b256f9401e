// CodePage.cpp - character sets of Windows fonts, by the converters of the C library.
#include "engine/text/CodePage.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <bit>

namespace morvil::engine {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr BYTE kSymbolCharSet = 2;

const char* codePageOf(BYTE charSet) {
    switch (charSet) {
        case 128: return "CP932";
        case 129: return "CP949";
        case 134: return "CP936";
        case 136: return "CP950";
        case 161: return "CP1253";
        case 162: return "CP1254";
        case 163: return "CP1258";
        case 177: return "CP1255";
        case 178: return "CP1256";
        case 186: return "CP1257";
        case 204: return "CP1251";
        case 222: return "CP874";
        case 238: return "CP1250";
        default: return "CP1252";
    }
}

class Converter {
  public:
    explicit Converter(const char* codePage) : m_handle(iconv_open("UTF-32LE", codePage)) {}
    ~Converter() {
        if (valid()) iconv_close(m_handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // The character that exactly these bytes stand for; 0 when they are no whole character.
    char32_t convert(std::span<const std::uint8_t> bytes) {
        if (!valid()) return 0;
        std::array<char, 4> input{};
        std::array<char, 8> output{};
        std::transform(bytes.begin(), bytes.end(), input.begin(), [](std::uint8_t byte) { return std::bit_cast<char>(byte); });
        char* from = input.data();
        char* to = output.data();
        std::size_t fromLeft = bytes.size();
        std::size_t toLeft = output.size();
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        const bool done = iconv(m_handle, &from, &fromLeft, &to, &toLeft) != static_cast<std::size_t>(-1) && fromLeft == 0;
        iconv(m_handle, nullptr, nullptr, &to, &toLeft);  // some pages hold a character back for a mark that may follow
        if (!done || toLeft > output.size() - 4) return 0;
        char32_t character = 0;
        for (std::size_t i = 0; i < 4; ++i) character |= static_cast<char32_t>(std::bit_cast<std::uint8_t>(output[i])) << (8 * i);
        return character;
    }

  private:
    [[nodiscard]] bool valid() const { return std::bit_cast<std::intptr_t>(m_handle) != -1; }
    iconv_t m_handle;
};

}  // namespace

std::vector<TextCharacter> decodeNarrow(std::span<const std::uint8_t> text, BYTE charSet) {
    std::vector<TextCharacter> result;
    if (charSet == kSymbolCharSet) {
        for (const std::uint8_t byte : text) result.push_back({byte, 1});
        return result;
    }
    Converter converter(codePageOf(charSet));
    for (std::size_t i = 0; i < text.size();) {
        std::size_t units = 1;
        char32_t character = text[i];
        if (character >= 0x80) {
            character = converter.convert(text.subspan(i, 1));
            if (character == 0 && i + 1 < text.size()) {
                character = converter.convert(text.subspan(i, 2));
                if (character != 0) units = 2;
            }
        }
        result.push_back({character == 0 && text[i] != 0 ? kReplacement : character, units});
        i += units;
    }
    return result;
}

std::vector<TextCharacter> decodeWide(std::span<const std::uint8_t> text) {
    const std::size_t count = text.size() / 2;
    const auto unit = [text](std::size_t i) { return static_cast<char32_t>(text[2 * i] | text[2 * i + 1] << 8); };
    const auto isHigh = [](char32_t value) { return value >= 0xD800 && value < 0xDC00; };
    const auto isLow = [](char32_t value) { return value >= 0xDC00 && value < 0xE000; };
    std::vector<TextCharacter> result;
    for (std::size_t i = 0; i < count;) {
        const char32_t first = unit(i);
        if (isHigh(first) && i + 1 < count && isLow(unit(i + 1))) {
            result.push_back({0x10000 + ((first - 0xD800) << 10) + (unit(i + 1) - 0xDC00), 2});
            i += 2;
        } else {
            result.push_back({isHigh(first) || isLow(first) ? kReplacement : first, 1});
            ++i;
        }
    }
    return result;
}

}  // namespace morvil::engine
