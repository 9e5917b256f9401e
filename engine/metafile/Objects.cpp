// Objects.cpp - reads the creating records, and keeps the handles.
#include "engine/metafile/Objects.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "engine/metafile/Dib.h"
#include "platform/common/Text.h"

namespace morvil::engine {

namespace {

constexpr ULONG kStock = 0x80000000U;
constexpr ULONG kLargestIndex = 0xFFFF;
constexpr COLORREF kWhite = 0xFFFFFF;

std::shared_ptr<const BrushObject> solidBrush(COLORREF colour) {
    return std::make_shared<const BrushObject>(BrushObject{.style = BrushStyle::Solid, .colour = colour, .hatch = 0, .pattern = nullptr});
}

std::shared_ptr<const PenObject> thinPen(ULONG style, COLORREF colour) {
    PenObject pen;
    pen.lineStyle = style;
    pen.brush.colour = colour;
    return std::make_shared<const PenObject>(std::move(pen));
}

std::shared_ptr<const FontObject> stockFont(LONG height, LONG weight, WStringView face) {
    FontObject font;
    font.description.lfHeight = height;
    font.description.lfWeight = weight;
    copyText(font.description.lfFaceName, face);
    return std::make_shared<const FontObject>(font);
}

ObjectPointer stockObject(ULONG index) {
    constexpr LONG kNormal = 400;
    constexpr LONG kBold = 700;
    switch (index) {
        case 0: return solidBrush(kWhite);
        case 1: return solidBrush(0xC0C0C0);
        case 2: return solidBrush(0x808080);
        case 3: return solidBrush(0x404040);
        case 4: return solidBrush(0);
        case 5:
            return std::make_shared<const BrushObject>(BrushObject{.style = BrushStyle::Null, .colour = 0, .hatch = 0, .pattern = nullptr});
        case 6: return thinPen(kPenSolid, kWhite);
        case 7: return thinPen(kPenSolid, 0);
        case 8: return thinPen(kPenNull, 0);
        case 10: return stockFont(12, kNormal, TEXT("Terminal"));
        case 11: return stockFont(12, kNormal, TEXT("Courier"));
        case 12: return stockFont(12, kNormal, TEXT("MS Sans Serif"));
        case 13:
        case 14: return stockFont(16, kBold, TEXT("System"));
        case 15: return defaultPalette();
        case 16: return stockFont(15, kNormal, TEXT("Fixedsys"));
        case 17: return stockFont(-11, kNormal, TEXT("MS Shell Dlg"));
        case 18: return solidBrush(kWhite);
        case 19: return thinPen(kPenSolid, 0);
        default: throw DamagedRecord("there is no stock object " + std::to_string(index));
    }
}

std::uint32_t endCapOf(ULONG style) {
    switch (style & 0xF00U) {
        case 0x100: return ENDCAP_SQUARE;
        case 0x200: return ENDCAP_BUTT;
        default: return ENDCAP_ROUND;
    }
}

std::uint32_t joinOf(ULONG style) {
    switch (style & 0xF000U) {
        case 0x1000: return JOIN_BEVEL;
        case 0x2000: return JOIN_MITER;
        default: return JOIN_ROUND;
    }
}

// Positions in the record of a bitmap's header and bits: offset and size of each.
std::shared_ptr<const Image> readPattern(const Record& record, std::size_t places, ULONG usage, const PaletteObject& palette) {
    const auto info = record.block(record.u32(places), record.u32(places + 4));
    const auto bits = record.block(record.u32(places + 8), record.u32(places + 12));
    return std::make_shared<const Image>(readDib(info, bits, usage, palette));
}

BrushObject penBrush(const Record& record, const PaletteObject& palette) {
    constexpr ULONG kPatternStyles[] = {3, 5, 6};  // bitmap, DIB, DIB by pointer
    const ULONG style = record.u32(36);
    const ULONG hatch = record.u32(44);
    const COLORREF colour = record.u32(40);
    if (style == 1) return {.style = BrushStyle::Null, .colour = 0, .hatch = 0, .pattern = nullptr};
    if (style == 2) return {.style = BrushStyle::Hatched, .colour = colour, .hatch = hatch, .pattern = nullptr};
    for (const ULONG pattern : kPatternStyles) {
        if (style != pattern) continue;
        // The colour's low word tells how the DIB's colours are meant.
        return {.style = BrushStyle::Pattern, .colour = 0, .hatch = 0, .pattern = readPattern(record, 12, LOWORD(colour), palette)};
    }
    return {.style = BrushStyle::Solid, .colour = colour, .hatch = 0, .pattern = nullptr};
}

}  // namespace

void ObjectTable::store(ULONG index, ObjectPointer object) {
    if (index == 0 || index > kLargestIndex) throw DamagedRecord("handle " + std::to_string(index) + " is out of range");
    m_objects[index] = std::move(object);
}

void ObjectTable::remove(ULONG index) {
    if ((index & kStock) != 0) return;  // stock objects stay
    if (m_objects.erase(index) == 0) throw DamagedRecord("handle " + std::to_string(index) + " holds no object");
}

ObjectPointer ObjectTable::find(ULONG index) const {
    if ((index & kStock) != 0) return stockObject(index & ~kStock);
    const auto found = m_objects.find(index);
    if (found == m_objects.end()) throw DamagedRecord("handle " + std::to_string(index) + " holds no object");
    return found->second;
}

std::shared_ptr<const PenObject> readPen(const Record& record) {
    PenObject pen;
    pen.lineStyle = record.u32(12) & kPenStyleMask;
    pen.width = std::abs(static_cast<double>(record.i32(16)));
    pen.brush.colour = record.u32(24);
    return std::make_shared<const PenObject>(std::move(pen));
}

std::shared_ptr<const PenObject> readExtendedPen(const Record& record, const PaletteObject& palette) {
    constexpr ULONG kGeometric = 0x10000;
    constexpr std::size_t kEntries = 52;
    const ULONG style = record.u32(28);
    PenObject pen;
    pen.kind = (style & kGeometric) != 0 ? PenObject::Kind::Geometric : PenObject::Kind::Cosmetic;
    pen.lineStyle = style & kPenStyleMask;
    pen.width = record.u32(32);
    pen.endCap = endCapOf(style);
    pen.join = joinOf(style);
    pen.brush = penBrush(record, palette);
    const std::size_t count = record.u32(48);
    if (pen.lineStyle == kPenUserStyle) {
        record.require(kEntries, count, 4, "style entries");
        for (std::size_t i = 0; i < count; ++i) pen.userStyle.push_back(static_cast<float>(record.u32(kEntries + 4 * i)));
    }
    return std::make_shared<const PenObject>(std::move(pen));
}

std::shared_ptr<const BrushObject> readBrush(const Record& record) {
    BrushObject brush;
    const ULONG style = record.u32(12);
    brush.colour = record.u32(16);
    brush.hatch = record.u32(20);
    if (style > 2) throw DamagedRecord("brush style " + std::to_string(style) + " needs a bitmap");
    brush.style = style == 0 ? BrushStyle::Solid : style == 1 ? BrushStyle::Null : BrushStyle::Hatched;
    return std::make_shared<const BrushObject>(std::move(brush));
}

std::shared_ptr<const BrushObject> readPatternBrush(const Record& record, const PaletteObject& palette, BrushStyle style) {
    BrushObject brush;
    brush.style = style;
    brush.pattern = readPattern(record, 16, record.u32(12), palette);
    if (brush.pattern->bitsPerPixel != 1) brush.style = BrushStyle::Pattern;
    return std::make_shared<const BrushObject>(std::move(brush));
}

std::shared_ptr<const FontObject> readFont(const Record& record) {
    constexpr std::size_t kFace = 40;
    FontObject font;
    LOGFONTW& description = font.description;
    description.lfHeight = record.i32(12);
    description.lfWidth = record.i32(16);
    description.lfEscapement = record.i32(20);
    description.lfOrientation = record.i32(24);
    description.lfWeight = record.i32(28);
    description.lfItalic = record.u8(32);
    description.lfUnderline = record.u8(33);
    description.lfStrikeOut = record.u8(34);
    description.lfCharSet = record.u8(35);
    description.lfPitchAndFamily = record.u8(39);
    for (std::size_t i = 0; i + 1 < LF_FACESIZE; ++i) {
        description.lfFaceName[i] = static_cast<WCHAR>(record.u16(kFace + 2 * i));
        if (description.lfFaceName[i] == 0) break;
    }
    return std::make_shared<const FontObject>(font);
}

std::shared_ptr<const PaletteObject> readPalette(const Record& record) {
    constexpr std::size_t kEntries = 16;
    const std::size_t count = record.u16(14);
    record.require(kEntries, count, 4, "palette entries");
    PaletteObject palette;
    for (std::size_t i = 0; i < count; ++i) palette.entries.push_back(record.u32(kEntries + 4 * i) & kWhite);
    return std::make_shared<const PaletteObject>(std::move(palette));
}

std::shared_ptr<const PaletteObject> defaultPalette() {
    static const auto palette = std::make_shared<const PaletteObject>(
        PaletteObject{{0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0, 0xC0DCC0, 0xF0CAA6,
                       0xF0FBFF, 0xA4A0A0, 0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF}});
    return palette;
}

COLORREF resolveColour(COLORREF colour, const PaletteObject& palette) {
    constexpr COLORREF kPaletteIndex = 0x01;
    if (colour >> 24 != kPaletteIndex) return colour & kWhite;
    const std::size_t index = colour & 0xFFFFU;
    return index < palette.entries.size() ? palette.entries[index] : 0;
}

}  // namespace morvil::engine
