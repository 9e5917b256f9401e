// cColorTable.cpp - choice of the table, configuration, and the nearest-colour search. The tables that come from files are
// filled in ProcessColours.cpp and MciPalette.cpp.
#include "raster/cColorTable.h"

#include <algorithm>
#include <limits>

#include "driver/log/Log.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

constexpr std::int16_t redOf(std::uint32_t colour) { return static_cast<std::int16_t>(colour & 0xFFU); }
constexpr std::int16_t greenOf(std::uint32_t colour) { return static_cast<std::int16_t>((colour >> 8) & 0xFFU); }
constexpr std::int16_t blueOf(std::uint32_t colour) { return static_cast<std::int16_t>((colour >> 16) & 0xFFU); }

}  // namespace

cColorTable::cColorTable() = default;

void cColorTable::SetConfig(const ConfigurationRecord* configuration) {
    if (configuration == nullptr) throw ConfigurationError{kColourTableWithoutConfiguration};
    m_config = *configuration;
    if (!m_folders) m_folders.emplace();
    const WStringView name = viewOf(std::span<const WCHAR>(m_config.files.processColourIni));
    m_iniPath = format(TEXT("%s\\%s"), m_folders->commonFiles(), name);
    if (!fileExists(m_iniPath.c_str())) m_iniPath = format(TEXT("%s\\%s"), m_folders->programCommonFiles(), name);
}

bool cColorTable::BuildTable(int type) {
    m_entries.clear();
    m_cachedIndex = -1;
    m_type = type;
    const bool known = fill(type);
    splitChannels();
    return known;
}

bool cColorTable::fill(int type) {
    switch (type) {
        case kProcessColours: buildProcessColours(); return true;
        case kGreyRamp:
            for (std::uint32_t level = 0; level < kMaxEntries; ++level) m_entries.push_back(level | level << 8 | level << 16);
            return true;
        case kBlackWhite: m_entries = {0, kWhite}; return true;
        case kWhiteBlack: m_entries = {kWhite, 0}; return true;
        case kMciColours: BuildTable_8BPPMci(); return true;
        case kTrueColour: return true;
        default: return false;
    }
}

void cColorTable::splitChannels() {
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        m_red[i] = redOf(m_entries[i]);
        m_green[i] = greenOf(m_entries[i]);
        m_blue[i] = blueOf(m_entries[i]);
    }
}

std::uint8_t cColorTable::getNearestIndex(std::uint32_t colour) {
    if (m_cachedIndex >= 0 && colour == m_cachedColour) return static_cast<std::uint8_t>(m_cachedIndex);
    m_cachedColour = colour;
    if (!m_entries.empty()) m_cachedIndex = searchNearest(colour);
    return static_cast<std::uint8_t>(m_cachedIndex & 0xFF);
}

// The distance is the Euclidean one in single precision. Squared distances are whole numbers up to 3 * 255 * 255; their
// single-precision roots are all different and rise with them, and the largest (441.7) stays below the start value 9999 of the
// search, so comparing the squares decides every case alike without a root. The index in the low byte makes the lowest index
// win among equal distances and leaves one minimum to take, which the compiler does for several entries at a time.
int cColorTable::searchNearest(std::uint32_t colour) const {
    const std::int16_t red = redOf(colour);
    const std::int16_t green = greenOf(colour);
    const std::int16_t blue = blueOf(colour);
    std::int32_t best = std::numeric_limits<std::int32_t>::max();
    const auto count = static_cast<std::int32_t>(m_entries.size());
    for (std::int32_t i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const std::int32_t dr = m_red[at] - red;
        const std::int32_t dg = m_green[at] - green;
        const std::int32_t db = m_blue[at] - blue;
        best = std::min(best, (dr * dr + dg * dg + db * db) * 256 + i);
    }
    return best & 0xFF;
}

int cColorTable::getCntEntries(int type) {
    const int count = type == kBlackWhite || type == kWhiteBlack ? 2 : static_cast<int>(kMaxEntries);
    logMorvil(1, kInformation, TEXT("cColorTable::getCntEntries, Count=%d"), count, kLogEnd);
    return count;
}

std::uint8_t cColorTable::getWhiteIndex(const ConfigurationRecord* configuration) {
    SetConfig(configuration);
    return getNearestIndex(kWhite);
}

}  // namespace morvil
