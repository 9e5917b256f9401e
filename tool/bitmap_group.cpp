// bitmap_group.cpp - reads the bitmap section: its tags and the complete BMP image between them.
#include <algorithm>
#include <cmath>

#include "tool/JobFileReader.h"

namespace morvil::tool {

namespace {

constexpr const char* kGroup = "Bitmap";
constexpr std::string_view kStartTag = "<STBmp: 0;0>";
constexpr std::string_view kEndTag = "<EOBmp>";
constexpr std::size_t kHeaderBytes = 54;  // file header 14, information header 40

// Little-endian numbers at an offset of the image.
class ImageBytes {
  public:
    ImageBytes(std::span<const std::uint8_t> bytes, std::size_t start) : m_bytes(bytes.subspan(std::min(start, bytes.size()))) {}
    [[nodiscard]] bool holds(std::size_t count) const { return m_bytes.size() >= count; }
    [[nodiscard]] std::size_t size() const { return m_bytes.size(); }
    [[nodiscard]] std::uint32_t number(std::size_t offset, std::size_t width) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < width; ++i) value |= static_cast<std::uint32_t>(m_bytes[offset + i]) << (8 * i);
        return value;
    }
    [[nodiscard]] std::span<const std::uint8_t> part(std::size_t offset, std::size_t count) const { return m_bytes.subspan(offset, count); }

  private:
    std::span<const std::uint8_t> m_bytes;
};

std::uint32_t strideOf(std::uint32_t width, std::uint32_t bitsPerPixel) {
    const std::uint64_t bytes = (static_cast<std::uint64_t>(width) * bitsPerPixel + 7) / 8;
    return static_cast<std::uint32_t>((bytes + 3) / 4 * 4);
}

std::size_t paletteBytesOf(std::uint32_t bitsPerPixel) {
    if (bitsPerPixel == 1) return 8;
    return bitsPerPixel == 8 ? 1024 : 0;
}

struct FixedField {
    std::size_t offset;
    std::size_t width;
    std::uint32_t value;
    const char* rule;
};

constexpr FixedField kFixedFields[] = {
    {6, 4, 0, "the reserved bytes are 0"},          {14, 4, 40, "the information header has 40 bytes"}, {26, 2, 1, "there is one plane"},
    {30, 4, 0, "the image is not compressed"},      {38, 4, 0, "the horizontal resolution is 0"},       {42, 4, 0, "the vertical resolution is 0"},
    {46, 4, 0, "the number of colours used is 0"},  {50, 4, 0, "the number of important colours is 0"},
};

void expectNumber(JobFileReader& reader, const ImageBytes& image, std::size_t start, const FixedField& field) {
    const std::uint32_t found = image.number(field.offset, field.width);
    if (found != field.value) reader.note(start + field.offset, kGroup, std::string(field.rule) + " (" + std::to_string(field.value) + ")", std::to_string(found));
}

void readPalette(JobFileReader& reader, const ImageBytes& image, BitmapFacts& facts, std::size_t bytes) {
    for (std::size_t at = kHeaderBytes; at < kHeaderBytes + bytes; at += 4) {
        const std::uint32_t entry = image.number(at, 4);  // blue, green, red, 0
        facts.palette.push_back(entry & 0xFFFFFF);
        if (entry > 0xFFFFFF) reader.note(facts.position + at + 3, kGroup, "the fourth byte of a palette entry is 0", std::to_string(entry >> 24));
    }
}

void checkAgainstHeader(JobFileReader& reader, const BitmapFacts& facts) {
    const std::string_view size = reader.job().headerValue("Size");
    const std::size_t separator = size.find(';');
    const unsigned dpi = reader.job().resolution();
    if (separator == std::string_view::npos || dpi == 0) return;  // noted with the header
    const auto fits = [dpi](std::string_view millimetres, std::uint32_t pixels) {
        const auto value = fixedNumber(millimetres, 2);
        // The size is printed to 0.01 mm; pixels are rounded up.
        return !value || std::abs(*value / 25.4 * dpi - static_cast<double>(pixels)) <= 1.0 + 0.005 / 25.4 * dpi;
    };
    if (!fits(size.substr(0, separator), facts.width)) reader.note(facts.position + 18, kGroup, "the width in pixels is that of Size at Resolution", std::to_string(facts.width));
    if (!fits(size.substr(separator + 1), facts.height)) reader.note(facts.position + 22, kGroup, "the height in pixels is that of Size at Resolution", std::to_string(facts.height));
}

// Reads the image at the position and steps behind it. False when it cannot be told where it ends.
bool readImage(JobFileReader& reader) {
    const std::size_t start = reader.position();
    const ImageBytes image(reader.job().bytes, start);
    if (!image.holds(kHeaderBytes) || image.number(0, 2) != 0x4D42) {
        reader.note(start, kGroup, "the image begins with \"BM\" directly behind \"<STBmp: 0;0>\"", reader.rest().substr(0, 8));
        return false;
    }
    for (const FixedField& field : kFixedFields) expectNumber(reader, image, start, field);
    BitmapFacts facts;
    facts.position = start;
    facts.width = image.number(18, 4);
    facts.height = image.number(22, 4);
    const std::uint32_t bits = image.number(28, 2);
    facts.bitsPerPixel = static_cast<int>(bits);
    if (bits != 1 && bits != 8 && bits != 24) {
        reader.note(start + 28, kGroup, "the image has 1, 8 or 24 bits per pixel", std::to_string(bits));
        return false;
    }
    if (facts.width == 0 || facts.height == 0 || facts.width > 0x7FFFFFFF || facts.height > 0x7FFFFFFF) {
        reader.note(start + 18, kGroup, "width and height are positive", std::to_string(facts.width) + " x " + std::to_string(facts.height));
        return false;
    }
    facts.stride = strideOf(facts.width, bits);
    facts.imageBytes = static_cast<std::uint64_t>(facts.stride) * facts.height;
    const std::size_t palette = paletteBytesOf(bits);
    facts.pixelPosition = start + kHeaderBytes + palette;
    const std::uint64_t total = kHeaderBytes + palette + facts.imageBytes;
    if (!image.holds(static_cast<std::size_t>(total))) {
        reader.note(start, kGroup, "the image holds all of its " + std::to_string(total) + " bytes", std::to_string(image.size()) + " are left in the file");
        return false;
    }
    const auto expect = [&](std::size_t offset, std::uint64_t value, const char* rule) {
        expectNumber(reader, image, start, {offset, 4, static_cast<std::uint32_t>(value), rule});
    };
    expect(2, total, "the file size is that of header, palette and rows");
    expect(10, kHeaderBytes + palette, "the pixel data offset is that of header and palette");
    expect(34, facts.imageBytes, "the image size is stride times height");
    readPalette(reader, image, facts, palette);
    checkAgainstHeader(reader, facts);
    reader.moveTo(start + static_cast<std::size_t>(total));
    reader.job().bitmap = std::move(facts);
    return true;
}

}  // namespace

void readBitmapGroup(JobFileReader& reader) {
    if (!reader.takeLine("<BegGroup: Bitmap>", kGroup)) return;
    if (!reader.rest().starts_with(kStartTag)) return reader.expected(kGroup, "the tag \"<STBmp: 0;0>\"");
    reader.moveTo(reader.position() + kStartTag.size());
    if (!readImage(reader)) {
        // Without a readable image the only way on is its closing tag.
        const std::size_t end = reader.text().find("<EOBmp>\r\n<EndGroup: Bitmap>", reader.position());
        if (end == std::string_view::npos) return;
        reader.moveTo(end);
    }
    if (!reader.takeLine(kEndTag, kGroup)) return reader.expected(kGroup, "\"<EOBmp>\" directly behind the last row");
    if (!reader.takeLine("<EndGroup: Bitmap>", kGroup)) reader.expected(kGroup, "the line \"<EndGroup: Bitmap>\"");
}

}  // namespace morvil::tool
