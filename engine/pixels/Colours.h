// Colours.h - finding palette entries for colours: nearest, exact and dithered. Objects here serve one operation and remember
// what they have found; they hold a copy of the entries.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/Objects.h"

namespace morvil::engine {

// Colours of an indexed surface's pixel values, 2^bits at most; a surface without palette has black and white (1 bit) or a
// grey ramp. Empty for direct colour.
std::vector<COLORREF> entriesOf(const EngineSurface& surface);

// Index of the entry with the least sum of squared differences of red, green and blue; the lowest among equals; 0 without entries.
ULONG nearestIndex(std::span<const COLORREF> entries, COLORREF colour);

class NearestColour {
  public:
    explicit NearestColour(std::vector<COLORREF> entries);
    ULONG operator()(COLORREF colour);

  private:
    static constexpr std::size_t kSlots = 4096;
    struct Slot {
        COLORREF colour = 0xFFFFFFFF;  // no colour has a high byte
        ULONG index = 0;
    };
    std::vector<COLORREF> m_entries;
    std::vector<Slot> m_slots;
};

// Side of the dither cell.
inline constexpr LONG kDitherSide = 8;
inline constexpr std::size_t kDitherCell = 64;
using DitherCell = std::array<std::uint8_t, kDitherCell>;  // index for each position, row by row

// The 8 x 8 cell whose entries average to the colour as nearly as 64 places allow. For place after place the entry nearest to
// the colour plus the error left over so far is taken and its own error carried on; the 64 entries, sorted by brightness, are
// then dealt to the places in the order of the 8 x 8 Bayer matrix. A colour that the palette holds gives a cell of that one
// entry, a grey on black and white gives round(64 * grey / 255) white places.
DitherCell ditherCell(std::span<const COLORREF> entries, COLORREF colour);

class DitheredColour {
  public:
    explicit DitheredColour(const std::vector<COLORREF>& entries);
    const DitherCell& cell(COLORREF colour);
    ULONG operator()(COLORREF colour, LONG x, LONG y) { return cell(colour)[cellPosition(x, y)]; }
    // The cell lies fixed on the surface, also left of and above its origin.
    static std::size_t cellPosition(LONG x, LONG y) {
        return static_cast<std::size_t>((y & (kDitherSide - 1)) * kDitherSide + (x & (kDitherSide - 1)));
    }

  private:
    // Colours that share a cell. On greys alone only the sum of red, green and blue matters; on many colours those that the
    // palette lacks share their cell with neighbours, which keeps the number of searches bounded.
    enum class Sharing : std::uint8_t { None, Sum, Neighbours };

    [[nodiscard]] COLORREF keyOf(COLORREF colour) const;
    [[nodiscard]] DitherCell makeCell(COLORREF key) const;

    static constexpr std::size_t kMostCells = std::size_t{1} << 18;
    std::vector<COLORREF> m_entries;      // each colour once
    std::vector<std::uint8_t> m_indices;  // of those entries, the lowest that the palette has
    std::unordered_set<COLORREF> m_exact;
    Sharing m_sharing = Sharing::None;
    std::unordered_map<COLORREF, DitherCell> m_cells;
    COLORREF m_lastColour = 0xFFFFFFFF;
    const DitherCell* m_lastCell = nullptr;
};

}  // namespace morvil::engine
