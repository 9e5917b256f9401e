// cColorTable.h - the palette of the 8-bit and 1-bit bitmaps: builds the table of a bitmap type and maps colours to the
// nearest entry. Colours are 0x00BBGGRR. One table belongs to each bitmap store, one to the process (held by the driver's
// state). Printing thread only.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "config/CPrinterConfig.h"
#include "config/ConfigurationRecord.h"

namespace morvil {

// Bitmap and table types.
enum BitmapType : int {
    kProcessColours = 0,  // 8 bits, process colour table from the ini file
    kGreyRamp = 1,        // 8 bits
    kBlackWhite = 2,      // 1 bit, 0 black, 1 white
    kWhiteBlack = 3,      // 1 bit, 0 white, 1 black
    kMciColours = 4,      // 8 bits, colour lists of the stamp mode
    kTrueColour = 5       // 24 bits, no palette
};

inline constexpr std::uint32_t kWhite = 0xFFFFFF;

class cColorTable {
  public:
    cColorTable();

    // Copies the record and builds the ini path. Null throws ConfigurationError 10001.
    void SetConfig(const ConfigurationRecord* configuration);
    bool BuildTable(int type);
    std::uint8_t getNearestIndex(std::uint32_t colour);
    int getCntEntries(int type);
    // SetConfig followed by getNearestIndex(white).
    std::uint8_t getWhiteIndex(const ConfigurationRecord* configuration);

    [[nodiscard]] std::span<const std::uint32_t> entries() const { return m_entries; }
    [[nodiscard]] int type() const { return m_type; }

  private:
    std::vector<std::uint32_t> m_entries;
    int m_type = 0;
    int m_cachedIndex = -1;
    std::uint32_t m_cachedColour = 0;
    ConfigurationRecord m_config{};
    WString m_iniPath;
};

}  // namespace morvil
