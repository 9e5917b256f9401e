// MciPalette.cpp - fills the palette of the colour stamp mode in a cColorTable: the catalogue colours in the order in which
// the colour lists hand them out, so that the first white lands on an odd index; six built-in colours when the lists hold
// nothing but the system's own two. Entries behind the last colour keep all bits set.
#include <algorithm>

#include "driver/log/Log.h"
#include "raster/CMciColorHandler.h"
#include "raster/cColorTable.h"

namespace morvil {

namespace {

constexpr std::array<std::uint32_t, 6> kDefaultColours = {0x000000, 0x0000FF, 0x00FF00, 0xFF0000, 0xE8E8E8, 0xFFFFFF};
constexpr std::size_t kSystemColours = 2;  // the lists always hold these
constexpr std::uint32_t kUnused = 0xFFFFFFFF;

// Writes colours one behind the other and doubles the colour before the first white where that makes white's index odd.
class MciPaletteWriter {
  public:
    explicit MciPaletteWriter(std::span<std::uint32_t> entries) : m_entries(entries) {}

    [[nodiscard]] bool full() const { return m_used >= m_entries.size(); }

    void put(const CMciColor& colour) {
        const auto next = static_cast<int>(m_used);
        debugPrint(TEXT("ColorID=%s, Name=%s, actColEntry=%d\n"), colour.id.data(), colour.name.data(), next);
        logMorvil(1, kInformation, TEXT("ColorID=%s, Name=%s, actColEntry=%d"), colour.id.data(), colour.name.data(), next, kLogEnd);
        if (isWhite(colour) && !m_doubled && m_used >= 1 && m_used % 2 == 0) {
            logMorvil(1, kInformation, TEXT("Add color second time"), kLogEnd);
            m_entries[m_used] = m_entries[m_used - 1];
            ++m_used;  // an even number below the palette's even size leaves room for two
            m_doubled = true;
        }
        m_entries[m_used++] = std::uint32_t{colour.red} | std::uint32_t{colour.green} << 8 | std::uint32_t{colour.blue} << 16;
    }

  private:
    static bool isWhite(const CMciColor& colour) { return colour.red == 255 && colour.green == 255 && colour.blue == 255; }

    std::span<std::uint32_t> m_entries;
    std::size_t m_used = 0;
    bool m_doubled = false;
};

void useDefaultColours(std::span<std::uint32_t> entries) {
    logMorvil(1, kInformation, TEXT("Default color table is used"), kLogEnd);
    std::copy(kDefaultColours.begin(), kDefaultColours.end(), entries.begin());
    logMorvil(1, kInformation, TEXT("Add last color second time"), kLogEnd);
    entries[kDefaultColours.size()] = kDefaultColours.back();
    logMorvil(1, kInformation, TEXT("Cnt=%d"), kDefaultColours.size(), kLogEnd);
}

}  // namespace

void cColorTable::BuildTable_8BPPMci() {
    debugPrint(TEXT("cColorTable::BuildTable_8BPPMci\n"));
    logMorvil(1, kInformation, TEXT("MciVersion=%d"), m_config.mciVersion, kLogEnd);
    m_entries.assign(kMaxEntries, kUnused);

    CMciColorHandler lists;
    lists.setMciVersion(m_config.mciVersion);
    if (lists.getCount() > kSystemColours) {
        logMorvil(1, kInformation, TEXT("Colors count=%d"), lists.getCount(), kLogEnd);
        MciPaletteWriter writer(m_entries);
        for (const CMciColor* colour = lists.getFirst(); colour != nullptr; colour = writer.full() ? nullptr : lists.getNext()) {
            writer.put(*colour);
        }
    } else {
        useDefaultColours(m_entries);
    }
    debugPrint(TEXT("cColorTable::BuildTable_8BPPMci finished\n"));
}

}  // namespace morvil
