// Translation.cpp - translation objects and their use on rows.
#include "engine/pixels/Translation.h"

#include <algorithm>
#include <utility>

#include "engine/Pixels.h"
#include "engine/pixels/Services.h"

namespace morvil::engine {
namespace {

constexpr COLORREF kColourBits = 0xFFFFFF;

// Colours behind an indexed source's values. A 1-bit source without colours of its own shows text on background.
std::vector<COLORREF> sourceColours(const EngineSurface& source, COLORREF foreground, COLORREF background) {
    const bool ownColours = source.palette != nullptr && !source.palette->entries.empty();
    if (bitsOf(source) == 1 && !ownColours) return {foreground & kColourBits, background & kColourBits};
    return entriesOf(source);
}

bool isIdentity(const std::vector<ULONG>& table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i] != i) return false;
    }
    return true;
}

}  // namespace

EngineXlate makeTranslation(const EngineSurface& target, const EngineSurface& source, COLORREF foreground, COLORREF background) {
    EngineXlate result;
    result.monoBackground = background & kColourBits;
    const auto targetLayout = directLayoutOf(target);
    auto palette = std::make_shared<Palette>();
    palette->entries = entriesOf(target);
    if (targetLayout) palette->mode = PAL_BGR;
    result.target = palette;
    result.iDstType = static_cast<USHORT>(palette->mode);
    // A plain monochrome bitmap keeps what has the background colour apart from all the rest; a one-bit surface with a palette of
    // its own, as a device's page is, takes the nearer of its two colours, so that a picture stays one.
    const bool toMono = bitsOf(target) == 1 && target.palette == nullptr && bitsOf(source) > 1;

    if (const auto sourceLayout = directLayoutOf(source)) {
        result.iSrcType = PAL_BGR;
        if (toMono) result.flXlate = XO_TO_MONO;
        if (targetLayout && *sourceLayout == *targetLayout) result.flXlate = XO_TRIVIAL;
        return result;
    }
    result.iSrcType = PAL_INDEXED;
    result.sourcePalette = sourceColours(source, foreground, background);
    result.table.reserve(result.sourcePalette.size());
    for (const COLORREF colour : result.sourcePalette) {
        if (toMono) {
            result.table.push_back(colour == result.monoBackground ? 1 : 0);
        } else {
            result.table.push_back(targetLayout ? targetLayout->valueOf(colour) : nearestIndex(palette->entries, colour));
        }
    }
    // Equal palettes keep every index, also those of colours that they hold twice.
    const bool samePalette = result.sourcePalette == palette->entries || isIdentity(result.table);
    const bool trivial = !toMono && bitsOf(source) == bitsOf(target) && samePalette;
    result.flXlate = trivial ? XO_TRIVIAL : (XO_TABLE | (toMono ? XO_TO_MONO : 0U));
    result.cEntries = static_cast<ULONG>(result.table.size());
    result.pulXlate = result.table.data();
    return result;
}

PixelTranslator::PixelTranslator(const EngineSurface& source, const EngineSurface& target, const XLATEOBJ* translation) {
    if (translation == nullptr || (translation->flXlate & XO_TRIVIAL) != 0) return;
    const auto& full = *static_cast<const EngineXlate*>(translation);
    if ((full.flXlate & XO_TABLE) != 0) {
        m_kind = Kind::Table;
        m_table = full.table;
        return;
    }
    m_from = directLayoutOf(source);
    m_to = directLayoutOf(target);
    m_background = full.monoBackground;
    if (!m_from) return;
    if ((full.flXlate & XO_TO_MONO) != 0) {
        m_kind = Kind::Monochrome;
    } else if (m_to) {
        m_kind = Kind::Layout;
    } else {
        m_kind = Kind::Nearest;
        m_nearest.emplace(full.target != nullptr ? full.target->entries : entriesOf(target));
    }
}

PixelTranslator::PixelTranslator(std::vector<ULONG> table) : m_kind(Kind::Table), m_table(std::move(table)) {}

void PixelTranslator::apply(ULONG* values, LONG count) {
    ULONG* const end = values + count;
    switch (m_kind) {
        case Kind::Identity: return;
        case Kind::Table:
            if (m_table.empty()) return;
            for (; values != end; ++values) *values = m_table[std::min<std::size_t>(*values, m_table.size() - 1)];
            return;
        case Kind::Monochrome:
            for (; values != end; ++values) *values = m_from->colourOf(*values) == m_background ? 1U : 0U;
            return;
        case Kind::Nearest:
            for (; values != end; ++values) *values = (*m_nearest)(m_from->colourOf(*values));
            return;
        case Kind::Layout:
            for (; values != end; ++values) *values = m_to->valueOf(m_from->colourOf(*values));
            return;
    }
}

SourceRows::SourceRows(const EngineSurface& source, int targetBits, PixelTranslator translator, LONG mostPixels, bool copyAlways)
    : m_source(source),
      m_sourceBits(bitsOf(source)),
      m_targetBits(targetBits),
      m_translator(std::move(translator)),
      m_copyAlways(copyAlways),
      m_values(static_cast<std::size_t>(mostPixels)),
      m_packed(static_cast<std::size_t>(packedRowBytes(mostPixels, targetBits)) + 1) {}

void SourceRows::shiftBits(const std::uint8_t* row, LONG x, LONG count, LONG targetX, std::uint8_t flip) {
    const LONG phase = targetX % 8;
    const auto rowBytes = static_cast<std::size_t>(packedRowBytes(m_source.sizlBitmap.cx, 1));
    const auto bytes = static_cast<std::size_t>((static_cast<std::int64_t>(phase) + count + 7) / 8);
    std::int64_t at = static_cast<std::int64_t>(x) - phase;  // source bit that falls on the highest bit of the first byte
    for (std::size_t i = 0; i < bytes; ++i, at += 8) {
        unsigned value = 0;
        if (at < 0) {
            value = static_cast<unsigned>(row[0]) >> -at;
        } else {
            const auto byte = static_cast<std::size_t>(at / 8);
            const auto shift = static_cast<unsigned>(at % 8);
            if (byte < rowBytes) value = static_cast<unsigned>(row[byte]) << shift;
            if (shift != 0 && byte + 1 < rowBytes) value |= static_cast<unsigned>(row[byte + 1]) >> (8 - shift);
        }
        m_packed[i] = static_cast<std::uint8_t>(value) ^ flip;
    }
}

const std::uint8_t* SourceRows::row(LONG x, LONG y, LONG count, LONG targetX) {
    const std::uint8_t* const source = rowOf(m_source, y);
    if (m_sourceBits == m_targetBits) {
        const std::vector<ULONG>* const table = m_translator.table();
        const bool inPlace = m_translator.identity() && !m_copyAlways;
        if (inPlace && (m_sourceBits >= 8 || (x * m_sourceBits) % 8 == (targetX * m_sourceBits) % 8)) {
            return source + byteOfPixel(x, m_sourceBits);
        }
        if (m_sourceBits == 1) {
            const bool keeps =
                m_translator.identity() || (table != nullptr && table->size() == 2 && ((*table)[0] & 1U) == 0 && ((*table)[1] & 1U) == 1);
            const bool flips = table != nullptr && table->size() == 2 && ((*table)[0] & 1U) == 1 && ((*table)[1] & 1U) == 0;
            if (keeps || flips) {
                shiftBits(source, x, count, targetX, flips ? 0xFF : 0);
                return m_packed.data();
            }
        }
    }
    unpackPixels(source, m_sourceBits, x, count, m_values.data());
    m_translator.apply(m_values.data(), count);
    packPixels(m_values.data(), m_targetBits, targetX, count, m_packed.data());
    return m_packed.data();
}

}  // namespace morvil::engine

namespace morvil::engine::services {

ULONG translationPalette(XLATEOBJ* translation, ULONG kind, ULONG count, ULONG* entries) {
    if (translation == nullptr || entries == nullptr) return 0;
    const auto& full = *static_cast<const EngineXlate*>(translation);
    const std::vector<COLORREF>* palette = nullptr;
    if (kind == XO_SRCPALETTE) palette = &full.sourcePalette;
    if (kind == XO_DESTPALETTE && full.target != nullptr) palette = &full.target->entries;
    if (palette == nullptr) return 0;
    const auto copied = std::min<std::size_t>(count, palette->size());
    std::copy_n(palette->begin(), copied, entries);
    return static_cast<ULONG>(copied);
}

}  // namespace morvil::engine::services
