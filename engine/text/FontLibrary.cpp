// FontLibrary.cpp - caches of typefaces and glyphs.
#include "engine/text/FontLibrary.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <utility>

#include "platform/common/Text.h"

namespace morvil::engine {

namespace {

constexpr std::size_t kMostGlyphBytes = std::size_t{32} << 20;
constexpr std::size_t kMostRealised = 256;
constexpr std::size_t kMostRequests = 4096;
constexpr LONG kBoldFrom = 600;

std::string requestKey(const LOGFONTW& wanted) {
    return toUtf8(viewOf(wanted.lfFaceName)) + '/' + std::to_string(wanted.lfWeight) + '/' + std::to_string(wanted.lfItalic != 0 ? 1 : 0) +
           '/' + std::to_string(wanted.lfCharSet) + '/' + std::to_string(wanted.lfPitchAndFamily);
}

std::shared_ptr<void> openFreetype() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) return nullptr;
    return {library, [](FT_Library open) { FT_Done_FreeType(open); }};
}

}  // namespace

std::shared_ptr<const GlyphBitmap> RealisedFont::glyph(ULONG index) {
    auto& place = m_glyphs[index];
    if (!place) {
        place = m_typeface->bitmap(index, m_matrix);
        m_bytes += place->bits.size() + sizeof(GlyphBitmap);
    }
    return place;
}

FontLibrary::FontLibrary() : m_freetype(openFreetype()) {}

std::shared_ptr<const Typeface> FontLibrary::open(const std::optional<FontFile>& file, const LOGFONTW& wanted) {
    if (!file || !m_freetype) return nullptr;
    const Typeface::Style style{.embolden = wanted.lfWeight >= kBoldFrom && !file->bold, .slant = wanted.lfItalic != 0 && !file->italic};
    const std::string key = file->path + '#' + std::to_string(file->index) + (style.embolden ? "b" : "") + (style.slant ? "i" : "");
    auto [place, isNew] = m_byFile.try_emplace(key);
    if (isNew) place->second = Typeface::open(m_freetype, *file, style);
    return place->second;
}

std::shared_ptr<const Typeface> FontLibrary::typeface(const LOGFONTW& wanted) {
    if (m_byRequest.size() > kMostRequests) m_byRequest.clear();
    auto [place, isNew] = m_byRequest.try_emplace(requestKey(wanted));
    if (isNew) place->second = open(m_catalog.find(wanted), wanted);
    return place->second;
}

std::shared_ptr<const Typeface> FontLibrary::typefaceWith(const LOGFONTW& wanted, char32_t character) {
    if (m_byRequest.size() > kMostRequests) m_byRequest.clear();
    const std::string key = requestKey(wanted) + '/' + std::to_string(static_cast<std::uint32_t>(character));
    auto [place, isNew] = m_byRequest.try_emplace(key);
    if (isNew) {
        place->second = open(m_catalog.findWith(wanted, character), wanted);
        if (place->second && place->second->glyphOf(character) == 0) place->second = nullptr;
    }
    return place->second;
}

std::shared_ptr<RealisedFont> FontLibrary::realise(const std::shared_ptr<const Typeface>& typeface, const Matrix& emToDevice) {
    forgetWhenTooLarge();
    const RealisedKey key{typeface.get(), {emToDevice.m11, emToDevice.m12, emToDevice.m21, emToDevice.m22}};
    auto [place, isNew] = m_realised.try_emplace(key);
    if (isNew) place->second = std::make_shared<RealisedFont>(typeface, emToDevice, ++m_lastNumber);
    return place->second;
}

// Rare: a page with very many sizes. What is in use stays alive with its users.
void FontLibrary::forgetWhenTooLarge() {
    std::size_t bytes = 0;
    for (const auto& [key, font] : m_realised) bytes += font->bytes();
    if (bytes > kMostGlyphBytes || m_realised.size() > kMostRealised) m_realised.clear();
}

}  // namespace morvil::engine
