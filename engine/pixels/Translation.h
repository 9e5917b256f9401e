// Translation.h - brings source pixels into the target's values and format, row by row.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/Objects.h"
#include "engine/pixels/Colours.h"
#include "engine/pixels/Formats.h"

namespace morvil::engine {

// From source pixel values to target pixel values. Lives for one operation.
class PixelTranslator {
  public:
    // Without a translation object values stay as they are.
    PixelTranslator(const EngineSurface& source, const EngineSurface& target, const XLATEOBJ* translation);
    explicit PixelTranslator(std::vector<ULONG> table);

    void apply(ULONG* values, LONG count);
    [[nodiscard]] bool identity() const { return m_kind == Kind::Identity; }
    // For sources of at most 256 values; null otherwise.
    [[nodiscard]] const std::vector<ULONG>* table() const { return m_kind == Kind::Table ? &m_table : nullptr; }

  private:
    enum class Kind : std::uint8_t { Identity, Table, Monochrome, Nearest, Layout };

    Kind m_kind = Kind::Identity;
    std::vector<ULONG> m_table;
    std::optional<DirectLayout> m_from;
    std::optional<DirectLayout> m_to;
    std::optional<NearestColour> m_nearest;
    COLORREF m_background = 0xFFFFFF;
};

// Rows of a source in the target's format, in place for painting.
class SourceRows {
  public:
    // `mostPixels` is the longest row that will be asked for. With `copyAlways` the answer never points into the source.
    SourceRows(const EngineSurface& source, int targetBits, PixelTranslator translator, LONG mostPixels, bool copyAlways);

    // `count` pixels from (x, y) of the source, to be painted from target pixel `targetX` on; valid until the next call. The
    // first byte stands for the byte that holds the target pixel. REQUIRES: the pixels lie within the source.
    const std::uint8_t* row(LONG x, LONG y, LONG count, LONG targetX);

  private:
    void shiftBits(const std::uint8_t* row, LONG x, LONG count, LONG targetX, std::uint8_t flip);

    const EngineSurface& m_source;
    int m_sourceBits;
    int m_targetBits;
    PixelTranslator m_translator;
    bool m_copyAlways;
    std::vector<ULONG> m_values;
    std::vector<std::uint8_t> m_packed;
};

}  // namespace morvil::engine
