// Colours.cpp - nearest entries and dither cells.
#include "engine/pixels/Colours.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/pixels/Formats.h"

namespace morvil::engine {
namespace {

constexpr COLORREF kColourBits = 0x00FFFFFF;

struct Channels {
    int red;
    int green;
    int blue;
};

Channels channelsOf(COLORREF colour) { return {GetRValue(colour), GetGValue(colour), GetBValue(colour)}; }

ULONG nearestTo(std::span<const COLORREF> entries, const Channels& wanted) {
    std::int64_t best = std::numeric_limits<std::int64_t>::max();
    std::size_t index = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Channels entry = channelsOf(entries[i]);
        const std::int64_t red = wanted.red - entry.red;
        const std::int64_t green = wanted.green - entry.green;
        const std::int64_t blue = wanted.blue - entry.blue;
        const std::int64_t distance = red * red + green * green + blue * blue;
        if (distance >= best) continue;
        best = distance;
        index = i;
    }
    return static_cast<ULONG>(index);
}

// Brightness for sorting only, in thousandths.
int brightness(COLORREF colour) {
    const Channels c = channelsOf(colour);
    return 299 * c.red + 587 * c.green + 114 * c.blue;
}

// The Bayer matrix by its bit formula: the bits of x ^ y and y, interleaved from the lowest on, give the order from the highest.
constexpr std::array<std::uint8_t, kDitherCell> makeBayer() {
    std::array<std::uint8_t, kDitherCell> order{};
    for (unsigned y = 0; y < 8; ++y) {
        for (unsigned x = 0; x < 8; ++x) {
            unsigned value = 0;
            for (unsigned bit = 0; bit < 3; ++bit) {
                value = (value << 1) | (((x ^ y) >> bit) & 1U);
                value = (value << 1) | ((y >> bit) & 1U);
            }
            order[y * 8 + x] = static_cast<std::uint8_t>(value);
        }
    }
    return order;
}
constexpr std::array<std::uint8_t, kDitherCell> kBayer = makeBayer();

}  // namespace

std::vector<COLORREF> entriesOf(const EngineSurface& surface) {
    const int bits = bitsOf(surface);
    if (bits == 0 || bits > 8) return {};
    const std::size_t most = std::size_t{1} << bits;
    std::vector<COLORREF> entries;
    if (surface.palette != nullptr && !surface.palette->entries.empty()) {
        const std::vector<COLORREF>& own = surface.palette->entries;
        entries.assign(own.begin(), own.begin() + static_cast<std::ptrdiff_t>(std::min(own.size(), most)));
        for (COLORREF& entry : entries) entry &= kColourBits;
        return entries;
    }
    for (std::size_t i = 0; i < most; ++i) {
        const auto level = static_cast<unsigned>(i * 255 / (most - 1));
        entries.push_back(RGB(level, level, level));
    }
    return entries;
}

ULONG nearestIndex(std::span<const COLORREF> entries, COLORREF colour) { return nearestTo(entries, channelsOf(colour)); }

NearestColour::NearestColour(std::vector<COLORREF> entries) : m_entries(std::move(entries)), m_slots(kSlots) {}

ULONG NearestColour::operator()(COLORREF colour) {
    colour &= kColourBits;
    constexpr std::uint32_t kGolden = 2654435761U;  // spreads neighbouring colours over the slots
    Slot& slot = m_slots[(colour * kGolden) >> 20];
    static_assert(kSlots == 1U << 12);
    if (slot.colour != colour) slot = {colour, nearestIndex(m_entries, colour)};
    return slot.index;
}

DitherCell ditherCell(std::span<const COLORREF> entries, COLORREF colour) {
    const Channels wanted = channelsOf(colour);
    Channels error{0, 0, 0};
    DitherCell chosen{};
    for (std::uint8_t& index : chosen) {
        const Channels aim{wanted.red + error.red, wanted.green + error.green, wanted.blue + error.blue};
        const ULONG nearest = nearestTo(entries, aim);
        const Channels got = channelsOf(entries.empty() ? 0 : entries[nearest]);
        error = {aim.red - got.red, aim.green - got.green, aim.blue - got.blue};
        index = static_cast<std::uint8_t>(nearest);
    }
    std::stable_sort(chosen.begin(), chosen.end(), [entries](std::uint8_t a, std::uint8_t b) {
        return !entries.empty() && brightness(entries[a]) > brightness(entries[b]);
    });
    DitherCell cell{};
    for (std::size_t i = 0; i < kDitherCell; ++i) cell[i] = chosen[kBayer[i]];
    return cell;
}

DitheredColour::DitheredColour(std::vector<COLORREF> entries) : m_entries(std::move(entries)) {
    for (std::size_t i = 0; i < m_entries.size(); ++i) m_exact.emplace(m_entries[i], static_cast<ULONG>(i));
}

const DitherCell& DitheredColour::cell(COLORREF colour) {
    colour &= kColourBits;
    if (colour == m_lastColour && m_lastCell != nullptr) return *m_lastCell;
    auto found = m_cells.find(colour);
    if (found == m_cells.end()) {
        if (m_cells.size() >= kMostCells) m_cells.clear();  // bounds memory; a picture of that many colours computes some again
        const auto exact = m_exact.find(colour);
        DitherCell cell{};
        if (exact != m_exact.end()) {
            cell.fill(static_cast<std::uint8_t>(exact->second));
        } else {
            cell = ditherCell(m_entries, colour);
        }
        found = m_cells.emplace(colour, cell).first;
    }
    m_lastColour = colour;
    m_lastCell = &found->second;
    return found->second;
}

}  // namespace morvil::engine
