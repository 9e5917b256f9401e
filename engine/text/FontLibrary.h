// FontLibrary.h - the fonts that a page uses: open typefaces by request, and the glyph pictures drawn so far by typeface and
// transform. What the caches hold is bounded. Printing thread only.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "engine/text/FontCatalog.h"
#include "engine/text/Typeface.h"

namespace morvil::engine {

// A typeface under one transform, with the glyphs that have been drawn.
class RealisedFont {
  public:
    RealisedFont(std::shared_ptr<const Typeface> typeface, const Matrix& emToDevice, ULONG number)
        : m_typeface(std::move(typeface)), m_matrix(emToDevice), m_number(number) {}
    [[nodiscard]] ULONG number() const { return m_number; }
    [[nodiscard]] const Typeface& typeface() const { return *m_typeface; }
    [[nodiscard]] std::shared_ptr<const GlyphBitmap> glyph(ULONG index);
    [[nodiscard]] std::size_t bytes() const { return m_bytes; }

  private:
    std::shared_ptr<const Typeface> m_typeface;
    Matrix m_matrix;
    ULONG m_number;
    std::size_t m_bytes = 0;
    std::unordered_map<ULONG, std::shared_ptr<const GlyphBitmap>> m_glyphs;
};

class FontLibrary {
  public:
    FontLibrary();

    // Null when this machine has no font at all.
    std::shared_ptr<const Typeface> typeface(const LOGFONTW& wanted);
    // One for a character that `wanted`'s typeface lacks; null when none has it.
    std::shared_ptr<const Typeface> typefaceWith(const LOGFONTW& wanted, char32_t character);
    // Each typeface under each transform has a number of its own, from 1.
    std::shared_ptr<RealisedFont> realise(const std::shared_ptr<const Typeface>& typeface, const Matrix& emToDevice);

  private:
    using RealisedKey = std::pair<const Typeface*, std::array<double, 4>>;

    std::shared_ptr<const Typeface> open(const std::optional<FontFile>& file, const LOGFONTW& wanted);
    void forgetWhenTooLarge();

    std::shared_ptr<void> m_freetype;
    FontCatalog m_catalog;
    std::map<std::string, std::shared_ptr<const Typeface>> m_byRequest;
    std::map<std::string, std::shared_ptr<const Typeface>> m_byFile;
    std::map<RealisedKey, std::shared_ptr<RealisedFont>> m_realised;
    ULONG m_lastNumber = 0;
};

}  // namespace morvil::engine
