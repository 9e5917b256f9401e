// Typeface.h - an open font file: which glyph a character has, how wide glyphs are, and their shapes as one-bit pictures or
// outlines under any transform. Lengths are parts of the em, y up, unless said otherwise. Printing thread only.
#pragma once

#include <memory>

#include "engine/Drawing.h"
#include "engine/Path.h"
#include "engine/metafile/Matrix.h"
#include "engine/text/FontCatalog.h"

namespace morvil::engine {

struct FontMetrics {
    double ascent = 0.8;
    double descent = 0.2;  // positive
    double averageWidth = 0.5;
    double underlinePosition = -0.1;  // centre of the line
    double underlineThickness = 0.05;
    double strikePosition = 0.3;
    double strikeThickness = 0.05;
};

class Typeface {
  public:
    // What the file itself lacks is made up: `embolden` thickens, `slant` leans the glyphs.
    struct Style {
        bool embolden = false;
        bool slant = false;
    };

    // Null when the file cannot be read or holds no outlines. `library` is an FT_Library and outlives the typeface by being shared.
    static std::shared_ptr<Typeface> open(const std::shared_ptr<void>& library, const FontFile& file, Style style);
    ~Typeface();
    Typeface(const Typeface&) = delete;
    Typeface& operator=(const Typeface&) = delete;

    [[nodiscard]] const FontMetrics& metrics() const { return m_metrics; }
    // 0 when the font lacks the character.
    [[nodiscard]] ULONG glyphOf(char32_t character) const;
    [[nodiscard]] double advance(ULONG glyph) const;
    // `emToDevice` carries the em (y up) to device pixels (y down); its shift is not used. Never null; empty for a glyph that the
    // font lacks or that has no size.
    [[nodiscard]] std::shared_ptr<const GlyphBitmap> bitmap(ULONG glyph, const Matrix& emToDevice) const;
    // Adds the glyph's outline; the transform's shift is the pen position.
    void addOutline(ULONG glyph, const Matrix& emToDevice, Path& path) const;

  private:
    struct Members;
    explicit Typeface(std::unique_ptr<Members> members);
    std::unique_ptr<Members> m;
    FontMetrics m_metrics;
};

}  // namespace morvil::engine
