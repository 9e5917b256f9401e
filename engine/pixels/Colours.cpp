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
        if (error.red == 0 && error.green == 0 && error.blue == 0 && &index == chosen.data()) {
            chosen.fill(index);  // the palette holds the colour
            return chosen;
        }
    }
    std::stable_sort(chosen.begin(), chosen.end(), [entries](std::uint8_t a, std::uint8_t b) {
        return !entries.empty() && brightness(entries[a]) > brightness(entries[b]);
    });
    DitherCell cell{};
    for (std::size_t i = 0; i < kDitherCell; ++i) cell[i] = chosen[kBayer[i]];
    return cell;
}

DitheredColour::DitheredColour(const std::vector<COLORREF>& entries) {
    bool onlyGreys = true;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!m_exact.insert(entries[i]).second) continue;
        m_entries.push_back(entries[i]);
        m_indices.push_back(static_cast<std::uint8_t>(i));
        const Channels c = channelsOf(entries[i]);
        onlyGreys = onlyGreys && c.red == c.green && c.green == c.blue;
    }
    constexpr std::size_t kManyColours = 32;
    if (onlyGreys) {
        m_sharing = Sharing::Sum;
    } else if (m_entries.size() > kManyColours) {
        m_sharing = Sharing::Neighbours;
    }
}

COLORREF DitheredColour::keyOf(COLORREF colour) const {
    if (m_sharing == Sharing::Sum) {
        // The distance to a grey g is 3 g^2 - 2 g (red + green + blue) and a part that is the same for all greys.
        const Channels c = channelsOf(colour);
        const auto sum = static_cast<unsigned>(c.red + c.green + c.blue);
        return RGB(sum / 3, (sum + 1) / 3, (sum + 2) / 3);
    }
    if (m_sharing == Sharing::Neighbours && !m_exact.contains(colour)) {
        constexpr COLORREF kHighBits = 0xFCFCFC;
        return (colour & kHighBits) | ((colour & kHighBits) >> 6 & ~kHighBits & kColourBits);  // from 0 to 255 in 64 steps
    }
    return colour;
}

DitherCell DitheredColour::makeCell(COLORREF key) const {
    DitherCell cell = ditherCell(m_entries, key);
    for (std::uint8_t& index : cell) index = m_indices.empty() ? std::uint8_t{0} : m_indices[index];
    return cell;
}

const DitherCell& DitheredColour::cell(COLORREF colour) {
    colour &= kColourBits;
    if (colour == m_lastColour && m_lastCell != nullptr) return *m_lastCell;
    const COLORREF key = keyOf(colour);
    auto found = m_cells.find(key);
    if (found == m_cells.end()) {
        if (m_cells.size() >= kMostCells) m_cells.clear();  // bounds memory; a picture of that many colours computes some again
        found = m_cells.emplace(key, makeCell(key)).first;
    }
    m_lastColour = colour;
    m_lastCell = &found->second;
    return found->second;
}

}  // namespace morvil::engine
