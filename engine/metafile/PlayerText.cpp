// PlayerText.cpp - text: glyph pictures up to a size, outlines beyond it and inside a path bracket.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/metafile/Player.h"
#include "engine/metafile/RecordTypes.h"
#include "engine/text/CodePage.h"
#include "engine/text/FontLibrary.h"

namespace morvil::engine {

namespace {

constexpr double kLargestBitmapText = 1200.0;  // pixels per em; larger glyphs are filled outlines
constexpr int kCopyPen = 13;
constexpr std::uint8_t kPatCopy = 0xF0;

enum TextOption : ULONG {
    kOpaque = 0x2,
    kClipped = 0x4,
    kGlyphIndex = 0x10,
    kNoRectangle = 0x100,
    kSmallCharacters = 0x200,
    kVerticalToo = 0x2000
};
enum TextAlignment : ULONG { kUpdatePosition = 1, kRight = 2, kCentre = 6, kBottom = 8, kBaseline = 24 };

constexpr ULONG kHorizontalMask = 6;
constexpr ULONG kVerticalMask = 24;
constexpr ULONG kCompatibleMode = 1;

// The whole pixels that a path touches.
RECTL pixelBounds(const Path& path) {
    const RECTL box = path.bounds();
    return {box.left >> 4, box.top >> 4, (box.right + kFixOne - 1) >> 4, (box.bottom + kFixOne - 1) >> 4};
}

Point moved(Point from, Point along, double distance) { return {from.x + along.x * distance, from.y + along.y * distance}; }

Box boxOf(const RECTL& rectangle) {
    return Box{static_cast<double>(rectangle.left), static_cast<double>(rectangle.top), static_cast<double>(rectangle.right),
               static_cast<double>(rectangle.bottom)}
        .ordered();
}

}  // namespace

// A text as a record gives it.
struct Player::TextString {
    Point reference;  // logical units
    ULONG options = 0;
    RECTL rectangle{};
    std::vector<TextCharacter> characters;
    std::vector<Point> advances;  // one for each unit, logical; empty: the font's own
    bool upright = false;         // made in compatible mode: never mirrored or turned but by the font itself
};

// How the selected font lies on the page.
struct Player::TextFrame {
    std::shared_ptr<const Typeface> typeface;
    Matrix emToPage;   // without shift
    Point along;       // page pixels for a logical unit along the base line
    Point up;          // page pixels for an em upwards
    double width = 0;  // logical units of an em along the base line
    FontMetrics metrics;
};

Player::TextFrame Player::frameText(bool upright) const {
    constexpr double kTenthsOfDegree = std::numbers::pi / 1800.0;
    constexpr double kDefaultMillimetres = 12.0 * 25.4 / 72.0;  // twelve points
    const LOGFONTW& font = m_state.font->description;
    TextFrame frame;
    frame.typeface = m_fonts.typeface(font);
    if (frame.typeface) frame.metrics = frame.typeface->metrics();

    Matrix toPage = logicalToPage();
    if (upright || m_state.mirrored) {
        // Only the scales hold: text stays readable whatever way the axes run.
        toPage = {std::hypot(toPage.m11, toPage.m12), 0.0, 0.0, std::hypot(toPage.m21, toPage.m22), 0.0, 0.0};
    }
    const double cell = frame.metrics.ascent + frame.metrics.descent;
    double height = font.lfHeight < 0 ? -static_cast<double>(font.lfHeight) : font.lfHeight / cell;
    if (font.lfHeight == 0) {
        const double devicePixels = kDefaultMillimetres * m_device.pixels.cy / m_device.millimetres.cy;
        const double scale = std::fabs(m_state.mapping.matrix().m22);
        height = scale > 0.0 ? devicePixels / scale : devicePixels;
    }
    frame.width = font.lfWidth == 0 ? height : std::abs(static_cast<double>(font.lfWidth)) / frame.metrics.averageWidth;
    // In compatible mode the height's scale also gives the width.
    const double glyphWidth = upright && font.lfWidth == 0 && toPage.m11 > 0.0 ? height * toPage.m22 / toPage.m11 : frame.width;
    if (upright) frame.width = glyphWidth;

    const double escapement = font.lfEscapement * kTenthsOfDegree;
    const double orientation = upright ? escapement : font.lfOrientation * kTenthsOfDegree;
    const Point right = toPage.applyToVector({std::cos(orientation), -std::sin(orientation)});
    frame.up = toPage.applyToVector({-std::sin(orientation) * height, -std::cos(orientation) * height});
    frame.emToPage = {right.x * glyphWidth, right.y * glyphWidth, frame.up.x, frame.up.y, 0.0, 0.0};
    frame.along = toPage.applyToVector({std::cos(escapement), -std::sin(escapement)});
    return frame;
}

void Player::drawText(const TextString& text) {
    const Matrix toPage = logicalToPage();
    const LOGFONTW& font = m_state.font->description;
    const TextFrame frame = frameText(text.upright);

    // The glyphs, each with its offset from the start of the text in logical units along and across the base line.
    struct Placed {
        std::shared_ptr<const Typeface> typeface;
        ULONG glyph;
        Point offset;
    };
    std::vector<Placed> glyphs;
    Point pen;
    std::size_t unit = 0;
    const double breakExtra = m_state.breakCount > 0 ? m_state.breakExtra / m_state.breakCount : 0.0;
    for (const TextCharacter& character : text.characters) {
        std::shared_ptr<const Typeface> typeface = frame.typeface;
        ULONG glyph = 0;
        if (typeface && (text.options & kGlyphIndex) != 0) {
            glyph = static_cast<ULONG>(character.character);
        } else if (typeface) {
            glyph = typeface->glyphOf(character.character);
            if (glyph == 0 && character.character > 0x20) {
                if (auto other = m_fonts.typefaceWith(font, character.character)) {
                    typeface = std::move(other);
                    glyph = typeface->glyphOf(character.character);
                }
            }
        }
        if (typeface) glyphs.push_back({typeface, glyph, pen});
        if (text.advances.empty()) {
            pen.x += typeface ? typeface->advance(glyph) * frame.width : frame.metrics.averageWidth * frame.width;
            if (character.character == 0x20) pen.x += breakExtra;
        } else {
            for (std::size_t i = 0; i < character.units; ++i) {
                pen.x += text.advances[unit + i].x;
                pen.y += text.advances[unit + i].y;
            }
        }
        unit += character.units;
    }

    const bool usesPosition = (m_state.textAlign & kUpdatePosition) != 0;
    Point base = toPage.apply(usesPosition ? m_state.position : text.reference);
    const ULONG horizontal = m_state.textAlign & kHorizontalMask;
    if (horizontal == kRight) base = moved(base, frame.along, -pen.x);
    if (horizontal == kCentre) base = moved(base, frame.along, -pen.x / 2);
    const ULONG vertical = m_state.textAlign & kVerticalMask;
    if (vertical == kBottom) base = moved(base, frame.up, frame.metrics.descent);
    if (vertical == 0) base = moved(base, frame.up, -frame.metrics.ascent);
    const double upLength = std::hypot(frame.up.x, frame.up.y);
    const double emHeight = std::hypot(frame.emToPage.m21, frame.emToPage.m22);
    const double alongLength = std::hypot(frame.along.x, frame.along.y);
    // Displacements across the base line are logical units too.
    const Point across = upLength > 0.0 ? Point{frame.up.x / upLength * alongLength, frame.up.y / upLength * alongLength} : Point{};

    const auto band = [&](double fromEm, double toEm) {  // a rectangle along the text, between two heights over the base line
        const Point end = moved(base, frame.along, pen.x);
        Path path;
        path.moveTo(toFix(moved(base, frame.up, toEm)));
        path.lineTo(toFix(moved(base, frame.up, fromEm)));
        path.lineTo(toFix(moved(end, frame.up, fromEm)));
        path.lineTo(toFix(moved(end, frame.up, toEm)));
        path.close();
        return path;
    };
    const auto penOf = [&](const Placed& placed) { return moved(moved(base, frame.along, placed.offset.x), across, placed.offset.y); };
    const auto outlineOf = [&](const Placed& placed, Path& path) {
        Matrix matrix = frame.emToPage;
        const Point at = penOf(placed);
        matrix.dx = at.x;
        matrix.dy = at.y;
        placed.typeface->addOutline(placed.glyph, matrix, path);
    };

    if (usesPosition && horizontal != kCentre) {
        const double distance = horizontal == kRight ? -pen.x : pen.x;
        const Point end = moved(toPage.apply(m_state.position), frame.along, distance);
        if (toPage.determinant() != 0.0) m_state.position = toPage.inverse().apply(end);
    }

    if (inBracket()) {
        Path path;
        if (m_state.opaqueBackground && !glyphs.empty()) path = band(-frame.metrics.descent, frame.metrics.ascent);
        for (const Placed& placed : glyphs) outlineOf(placed, path);
        drawOutline(std::move(path));
        return;
    }

    // The rectangle that comes with the text, then the text's own background, then the glyphs.
    Brush background;
    background.colour = colour(m_state.backgroundColour);
    const auto previousClip = m_state.clip;
    if ((text.options & (kOpaque | kClipped)) != 0) {
        const Region rectangle = regionOf(boxOf(text.rectangle), toPage);
        if ((text.options & kOpaque) != 0) paintRectangles(rectangle, background, kPatCopy);
        if ((text.options & kClipped) != 0) combineClip(rectangle, 1);
    }
    if (glyphs.empty()) {
        m_state.clip = previousClip;
        return;
    }
    prepareCanvas();
    const COLORREF ink = colour(m_state.textColour);
    const Path cells = band(-frame.metrics.descent, frame.metrics.ascent);
    constexpr double kNegligible = 0.01;
    const bool level =
        std::fabs(frame.along.y) * std::fabs(pen.x) < kNegligible && frame.along.x > 0.0 && std::fabs(frame.up.x) < kNegligible;
    const Point top = moved(base, frame.up, frame.metrics.ascent);
    const Point bottom = moved(moved(base, frame.along, pen.x), frame.up, -frame.metrics.descent);
    const Box box = Box{top.x, top.y, bottom.x, bottom.y}.ordered();
    const RECTL cellBox = level ? RECTL{toPixel(box.left), toPixel(box.top), toPixel(box.right), toPixel(box.bottom)} : pixelBounds(cells);
    const bool asOutlines = std::max(emHeight, std::hypot(frame.emToPage.m11, frame.emToPage.m12)) > kLargestBitmapText;
    const bool boxWithRun = m_state.opaqueBackground && level && !asOutlines;
    if (m_state.opaqueBackground && !boxWithRun) m_canvas.fillPath(cells, background, FillMode::Winding, kCopyPen);

    Brush inkBrush;
    inkBrush.colour = ink;
    if (asOutlines) {
        Path path;
        for (const Placed& placed : glyphs) outlineOf(placed, path);
        if (!path.empty()) m_canvas.fillPath(path, inkBrush, FillMode::Winding, kCopyPen);
    } else {
        // One run for each stretch of glyphs from one font; the background goes with the first.
        bool first = true;
        for (std::size_t i = 0; i < glyphs.size();) {
            const auto realised = m_fonts.realise(glyphs[i].typeface, frame.emToPage);
            GlyphRun run;
            run.font = realised->number();
            run.background = cellBox;
            const auto typeface = glyphs[i].typeface;
            for (; i < glyphs.size() && glyphs[i].typeface == typeface; ++i) {
                const Point at = penOf(glyphs[i]);
                run.glyphs.push_back({realised->glyph(glyphs[i].glyph), glyphs[i].glyph, {toPixel(at.x), toPixel(at.y)}});
                const char32_t character = text.characters[i].character;
                if (character < 0x10000) run.characters.push_back(static_cast<WCHAR>(character));
                if (character < 0x10000) continue;
                run.characters.push_back(static_cast<WCHAR>(0xD800 + ((character - 0x10000) >> 10)));
                run.characters.push_back(static_cast<WCHAR>(0xDC00 + (character & 0x3FF)));
            }
            m_canvas.textOut(run, ink, boxWithRun && first ? &cellBox : nullptr, colour(m_state.backgroundColour));
            first = false;
        }
    }
    const auto rule = [&](double position, double thickness) {
        m_canvas.fillPath(band(position - thickness / 2, position + thickness / 2), inkBrush, FillMode::Winding, kCopyPen);
    };
    if (font.lfUnderline != 0) rule(frame.metrics.underlinePosition, frame.metrics.underlineThickness);
    if (font.lfStrikeOut != 0) rule(frame.metrics.strikePosition, frame.metrics.strikeThickness);
    m_state.clip = previousClip;
}

namespace {

std::vector<TextCharacter> readCharacters(const Record& record, std::size_t offset, std::size_t count, bool wide, ULONG options,
                                          BYTE charSet) {
    if (count == 0) return {};
    if (!wide && (options & kGlyphIndex) == 0) return decodeNarrow(record.block(offset, count), charSet);
    record.require(offset, count, 2, "characters");
    const auto text = record.block(offset, 2 * count);
    if ((options & kGlyphIndex) == 0) return decodeWide(text);
    std::vector<TextCharacter> glyphs;
    for (std::size_t i = 0; i < count; ++i) glyphs.push_back({static_cast<char32_t>(text[2 * i] | text[2 * i + 1] << 8), 1});
    return glyphs;
}

}  // namespace

// One string after the other, 40 bytes each; a record for a single one holds exactly one.
void Player::textStrings(const Record& record, bool wide) {
    constexpr std::size_t kStringBytes = 40;
    const bool several = record.type() == emr::kPOLYTEXTOUTA || record.type() == emr::kPOLYTEXTOUTW;
    const std::size_t count = several ? record.u32(36) : 1;
    const std::size_t start = several ? 40 : 36;
    record.require(start, count, kStringBytes, "texts");
    const bool upright = record.u32(24) == kCompatibleMode;
    std::vector<TextString> strings(count);
    std::size_t charactersLeft = record.size();  // texts may share their characters, but not to fill the memory with them
    for (std::size_t i = 0; i < count; ++i) {
        TextString& text = strings[i];
        const std::size_t at = start + kStringBytes * i;
        const std::size_t characters = record.u32(at + 8);
        const std::size_t advances = record.u32(at + 36);
        if (characters > charactersLeft) throw DamagedRecord("more characters than the record can hold");
        charactersLeft -= characters;
        text.reference = record.point(at);
        text.options = record.u32(at + 16);
        text.rectangle = record.rect(at + 20);
        text.upright = upright;
        text.characters = readCharacters(record, record.u32(at + 12), characters, wide, text.options, m_state.font->description.lfCharSet);
        if (advances == 0 || characters == 0) continue;
        const bool pairs = (text.options & kVerticalToo) != 0;
        record.require(advances, characters, pairs ? 8 : 4, "advance widths");
        for (std::size_t k = 0; k < characters; ++k) {
            const double x = record.i32(advances + k * (pairs ? 8 : 4));
            text.advances.push_back({x, pairs ? static_cast<double>(record.i32(advances + 8 * k + 4)) : 0.0});
        }
    }
    for (const TextString& text : strings) drawText(text);
}

void Player::textNarrow(const Record& record) { textStrings(record, false); }
void Player::textWide(const Record& record) { textStrings(record, true); }
void Player::polyTextNarrow(const Record& record) { textStrings(record, false); }
void Player::polyTextWide(const Record& record) { textStrings(record, true); }

void Player::smallText(const Record& record) {
    const std::size_t count = record.u32(16);
    TextString text;
    text.reference = record.point(8);
    text.options = record.u32(20);
    text.upright = record.u32(24) == kCompatibleMode;
    std::size_t offset = 36;
    if ((text.options & kNoRectangle) == 0) {
        text.rectangle = record.rect(offset);
        offset += 16;
    } else {
        text.options &= ~(kOpaque | kClipped);
    }
    if ((text.options & kSmallCharacters) != 0) {
        // The lower halves of UTF-16 units whose upper halves are 0.
        for (const std::uint8_t byte : record.block(offset, count)) text.characters.push_back({byte, 1});
    } else {
        text.characters = readCharacters(record, offset, count, true, text.options, 0);
    }
    drawText(text);
}

}  // namespace morvil::engine
