// Typeface.cpp - glyphs by FreeType.
#include "engine/text/Typeface.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>
#include <cstring>

namespace morvil::engine {

namespace {

constexpr double kSlant = 0.21;           // of a made-up italic: about twelve degrees
constexpr FT_Pos kBoldPart = 24;          // a made-up bold thickens by this part of the em
constexpr double kSmallestSize = 0.5;     // pixels per em below which nothing is drawn
constexpr double kLargestSize = 16000.0;  // pixels per em of the largest bitmap glyphs

struct FaceDeleter {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};

FT_Fixed toFixed(double value) { return static_cast<FT_Fixed>(std::lround(value * 65536.0)); }

// Carries the outline's points, in em units, into a path. Quadratic curves become cubic ones.
struct OutlineSink {
    Path& path;
    const Matrix& emToDevice;
    double unit;  // parts of the em in a font unit
    Point last{};
    bool open = false;

    [[nodiscard]] Point place(const FT_Vector& v) const {
        return emToDevice.apply({static_cast<double>(v.x) * unit, static_cast<double>(v.y) * unit});
    }
    void finish() {
        if (open) path.close();
        open = false;
    }
};

int sinkMove(const FT_Vector* to, void* user) {
    auto& sink = *static_cast<OutlineSink*>(user);
    sink.finish();
    sink.last = sink.place(*to);
    sink.path.moveTo(toFix(sink.last));
    sink.open = true;
    return 0;
}

int sinkLine(const FT_Vector* to, void* user) {
    auto& sink = *static_cast<OutlineSink*>(user);
    sink.last = sink.place(*to);
    sink.path.lineTo(toFix(sink.last));
    return 0;
}

Point between(Point a, Point b, double part) { return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part}; }

int sinkConic(const FT_Vector* control, const FT_Vector* to, void* user) {
    auto& sink = *static_cast<OutlineSink*>(user);
    const Point middle = sink.place(*control);
    const Point end = sink.place(*to);
    sink.path.bezierTo(toFix(between(sink.last, middle, 2.0 / 3.0)), toFix(between(end, middle, 2.0 / 3.0)), toFix(end));
    sink.last = end;
    return 0;
}

int sinkCubic(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* user) {
    auto& sink = *static_cast<OutlineSink*>(user);
    sink.last = sink.place(*to);
    sink.path.bezierTo(toFix(sink.place(*control1)), toFix(sink.place(*control2)), toFix(sink.last));
    return 0;
}

std::shared_ptr<const GlyphBitmap> copyBitmap(const FT_GlyphSlot slot) {
    const FT_Bitmap& source = slot->bitmap;
    auto glyph = std::make_shared<GlyphBitmap>();
    if (source.pixel_mode != FT_PIXEL_MODE_MONO || source.buffer == nullptr) return glyph;
    glyph->origin = {slot->bitmap_left, -slot->bitmap_top};
    glyph->size = {static_cast<LONG>(source.width), static_cast<LONG>(source.rows)};
    glyph->rowBytes = static_cast<LONG>((source.width + 7) / 8);
    const auto rowBytes = static_cast<std::size_t>(glyph->rowBytes);
    glyph->bits.resize(rowBytes * source.rows);
    for (std::size_t y = 0; y < source.rows; ++y) {
        std::memcpy(glyph->bits.data() + y * rowBytes, source.buffer + static_cast<std::ptrdiff_t>(y) * source.pitch, rowBytes);
    }
    return glyph;
}

FontMetrics readMetrics(FT_Face face) {
    const double unit = 1.0 / face->units_per_EM;
    FontMetrics metrics;
    metrics.ascent = face->ascender * unit;
    metrics.descent = -face->descender * unit;
    metrics.underlinePosition = face->underline_position * unit;
    if (face->underline_thickness > 0) metrics.underlineThickness = face->underline_thickness * unit;
    metrics.strikeThickness = metrics.underlineThickness;
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (os2 != nullptr && os2->version != 0xFFFF) {
        // The platform's cell is that of the Windows entries.
        if (os2->usWinAscent + os2->usWinDescent > 0) {
            metrics.ascent = os2->usWinAscent * unit;
            metrics.descent = os2->usWinDescent * unit;
        }
        if (os2->xAvgCharWidth > 0) metrics.averageWidth = os2->xAvgCharWidth * unit;
        if (os2->yStrikeoutPosition > 0) metrics.strikePosition = os2->yStrikeoutPosition * unit;
        if (os2->yStrikeoutSize > 0) metrics.strikeThickness = os2->yStrikeoutSize * unit;
    }
    if (metrics.ascent + metrics.descent <= 0.0) {
        metrics.ascent = FontMetrics().ascent;
        metrics.descent = FontMetrics().descent;
    }
    return metrics;
}

}  // namespace

struct Typeface::Members {
    std::shared_ptr<void> library;
    std::unique_ptr<FT_FaceRec, FaceDeleter> face;
    Style style;

    [[nodiscard]] Matrix styled(const Matrix& emToDevice) const {
        return style.slant ? Matrix{1.0, 0.0, kSlant, 1.0, 0.0, 0.0} * emToDevice : emToDevice;
    }
};

Typeface::Typeface(std::unique_ptr<Members> members) : m(std::move(members)), m_metrics(readMetrics(m->face.get())) {}
Typeface::~Typeface() = default;

std::shared_ptr<Typeface> Typeface::open(const std::shared_ptr<void>& library, const FontFile& file, Style style) {
    FT_Face raw = nullptr;
    if (FT_New_Face(static_cast<FT_Library>(library.get()), file.path.c_str(), file.index, &raw) != 0) return nullptr;
    auto members = std::make_unique<Members>();
    members->library = library;
    members->face.reset(raw);
    members->style = style;
    if (!FT_IS_SCALABLE(raw) || raw->units_per_EM == 0) return nullptr;
    // Symbol fonts have no Unicode table; theirs is then chosen instead.
    if (FT_Select_Charmap(raw, FT_ENCODING_UNICODE) != 0) FT_Select_Charmap(raw, FT_ENCODING_MS_SYMBOL);
    return std::shared_ptr<Typeface>(new Typeface(std::move(members)));
}

ULONG Typeface::glyphOf(char32_t character) const {
    constexpr char32_t kSymbolPage = 0xF000;  // where symbol fonts keep their 256 characters
    const FT_UInt glyph = FT_Get_Char_Index(m->face.get(), character);
    if (glyph != 0 || character > 0xFF) return glyph;
    return FT_Get_Char_Index(m->face.get(), kSymbolPage | character);
}

double Typeface::advance(ULONG glyph) const {
    FT_Face face = m->face.get();
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0) return 0.0;
    return static_cast<double>(face->glyph->metrics.horiAdvance) / face->units_per_EM;
}

std::shared_ptr<const GlyphBitmap> Typeface::bitmap(ULONG glyph, const Matrix& emToDevice) const {
    const auto nothing = std::make_shared<const GlyphBitmap>();
    const Matrix matrix = m->styled(emToDevice);
    const double size = std::hypot(matrix.m21, matrix.m22);  // pixels per em
    const double width = std::hypot(matrix.m11, matrix.m12);
    if (!matrix.finite() || size < kSmallestSize || size > kLargestSize || width > kLargestSize) return nothing;
    FT_Face face = m->face.get();
    if (FT_Set_Char_Size(face, 0, std::lround(size * 64.0), 72, 72) != 0) return nothing;
    FT_Matrix transform{toFixed(matrix.m11 / size), toFixed(matrix.m21 / size), toFixed(-matrix.m12 / size), toFixed(-matrix.m22 / size)};
    const FT_Fixed one = toFixed(1.0);
    const auto near = [](FT_Fixed a, FT_Fixed b) { return std::abs(a - b) < 66; };  // a thousandth
    const bool upright = near(transform.xx, one) && near(transform.yy, one) && near(transform.xy, 0) && near(transform.yx, 0);
    FT_Set_Transform(face, upright ? nullptr : &transform, nullptr);
    // Hints fit the grid of upright glyphs only.
    const FT_Int32 flags = FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_MONO | (upright ? 0 : FT_LOAD_NO_HINTING);
    const bool loaded = FT_Load_Glyph(face, glyph, flags) == 0 && face->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
    if (loaded && m->style.embolden) FT_Outline_Embolden(&face->glyph->outline, std::lround(size * 64.0) / kBoldPart);
    const bool drawn = loaded && FT_Render_Glyph(face->glyph, FT_RENDER_MODE_MONO) == 0;
    FT_Set_Transform(face, nullptr, nullptr);
    return drawn ? copyBitmap(face->glyph) : nothing;
}

void Typeface::addOutline(ULONG glyph, const Matrix& emToDevice, Path& path) const {
    FT_Face face = m->face.get();
    const Matrix matrix = m->styled(emToDevice);
    if (!matrix.finite()) return;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0) return;
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return;
    FT_Outline& outline = face->glyph->outline;
    if (m->style.embolden) FT_Outline_Embolden(&outline, face->units_per_EM / kBoldPart);
    OutlineSink sink{.path = path, .emToDevice = matrix, .unit = 1.0 / face->units_per_EM};
    const FT_Outline_Funcs functions{sinkMove, sinkLine, sinkConic, sinkCubic, 0, 0};
    FT_Outline_Decompose(&outline, &functions, &sink);
    sink.finish();
}

}  // namespace morvil::engine
