// ProcessColours.cpp - fills the process colour palette of a cColorTable from its ini file:
//     [ProcessColor]
//     ProcessColorCount=3
//     ProcessColor[1].Red=0      and .Green, .Blue, each 0 to 255, for items 1 to count
// Anything missing or out of range selects the built-in table as a whole; no case fails.
#include <algorithm>

#include "driver/log/Log.h"
#include "raster/cColorTable.h"

namespace morvil {

namespace {

constexpr const WCHAR* kSection = TEXT("ProcessColor");
constexpr const WCHAR* kCountKey = TEXT("ProcessColorCount");
constexpr const WCHAR* kItemPrefix = TEXT("ProcessColor");
constexpr INT kNoChannel = 256;  // the default of a missing key; no channel reaches it
constexpr int kMaxCount = static_cast<int>(cColorTable::kMaxEntries);

constexpr std::array<std::uint32_t, 16> kDefaultColours = {0x000000, 0x0000FF, 0xFF0000, 0x996633, 0xFFFF00, 0x00FF00, 0x339900, 0x336600,
                                                           0x339999, 0x336699, 0x003366, 0x660066, 0xCC0099, 0xFF00FF, 0x0066FF, 0x00FFFF};

}  // namespace

void cColorTable::buildProcessColours() {
    m_entries.assign(kMaxEntries, kWhite);
    if (!readProcessColours()) useDefaultProcessColours();
}

int cColorTable::readProcessColourCount() const {
    if (m_iniPath.empty()) return 0;
    return static_cast<int>(GetPrivateProfileIntW(kSection, kCountKey, 0, m_iniPath.c_str()));
}

// The count is asked for again before each item, so a file that changes meanwhile is followed; a count outside the palette
// ends the reading at once.
bool cColorTable::readProcessColours() {
    int count = readProcessColourCount();
    if (count == 0) {
        logMorvil(1, kInformation, TEXT("ColorTable Count=0"), kLogEnd);
        return false;
    }
    bool complete = true;
    for (int item = 1; count <= kMaxCount && item <= count; ++item, count = readProcessColourCount()) {
        const std::optional<std::uint32_t> colour = readProcessColour(item);
        if (colour) {
            m_entries[static_cast<std::size_t>(item) - 1] = *colour;
            continue;
        }
        logMorvil(1, kInformation, TEXT("ColorTable Item_%d not found"), item, kLogEnd);
        complete = false;
    }
    if (!complete || count < 1 || count > kMaxCount) return false;
    logMorvil(1, kInformation, TEXT("ColorTable validated, Count=%d"), count, kLogEnd);
    const auto used = static_cast<std::size_t>(count);
    std::fill(m_entries.begin() + count, m_entries.end(), kWhite);
    if (used % 2 == 0 && used < kMaxEntries) {
        logMorvil(1, kInformation, TEXT("Add last color second time"), kLogEnd);
        m_entries[used] = m_entries[used - 1];
    }
    return true;
}

std::optional<std::uint32_t> cColorTable::readProcessColour(int item) const {
    std::uint32_t colour = 0;
    std::uint32_t shift = 0;
    for (const WCHAR* const channel : {TEXT("Red"), TEXT("Green"), TEXT("Blue")}) {
        const WString key = format(TEXT("%s[%d].%s"), kItemPrefix, item, channel);
        const UINT value = GetPrivateProfileIntW(kSection, key.c_str(), kNoChannel, m_iniPath.c_str());
        if (value >= static_cast<UINT>(kNoChannel)) return std::nullopt;
        colour |= value << shift;
        shift += 8;
    }
    return colour;
}

void cColorTable::useDefaultProcessColours() {
    logMorvil(1, kInformation, TEXT("Default color table is used"), kLogEnd);
    std::fill(m_entries.begin(), m_entries.end(), kWhite);
    std::copy(kDefaultColours.begin(), kDefaultColours.end(), m_entries.begin());
    logMorvil(1, kInformation, TEXT("Add last color second time"), kLogEnd);
    m_entries[kDefaultColours.size()] = kDefaultColours.back();
}

}  // namespace morvil
