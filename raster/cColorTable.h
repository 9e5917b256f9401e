// cColorTable.h - the palette of the 8-bit and 1-bit bitmaps: builds the table of a bitmap type and maps colours to the
// nearest entry. Colours are 0x00BBGGRR. One table belongs to each bitmap store, one to the process (held by the driver's
// state). Printing thread only.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "config/CMvConfig.h"
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
    static constexpr std::size_t kMaxEntries = 256;

    cColorTable();

    // Copies the record and builds the ini path. Null throws ConfigurationError 10001 and changes nothing.
    void SetConfig(const ConfigurationRecord* configuration);
    // Replaces the entries and forgets the last nearest-colour search. A type other than 0 to 5 leaves no entries and fails.
    bool BuildTable(int type);
    // Lowest index among the entries at the smallest distance. An empty table answers 255.
    std::uint8_t getNearestIndex(std::uint32_t colour);
    int getCntEntries(int type);
    // SetConfig followed by getNearestIndex(white): the table that was built last answers.
    std::uint8_t getWhiteIndex(const ConfigurationRecord* configuration);

    [[nodiscard]] std::span<const std::uint32_t> entries() const { return m_entries; }
    [[nodiscard]] int type() const { return m_type; }
    [[nodiscard]] WStringView iniPath() const { return m_iniPath; }

  private:
    // One channel of all entries, beside each other for the search.
    using Channel = std::array<std::int16_t, kMaxEntries>;

    bool fill(int type);
    void buildProcessColours();
    bool readProcessColours();
    int readProcessColourCount() const;
    std::optional<std::uint32_t> readProcessColour(int item) const;
    void useDefaultProcessColours();
    void BuildTable_8BPPMci();
    void splitChannels();
    [[nodiscard]] int searchNearest(std::uint32_t colour) const;

    std::vector<std::uint32_t> m_entries;
    Channel m_red{};
    Channel m_green{};
    Channel m_blue{};
    int m_type = 0;
    int m_cachedIndex = -1;
    std::uint32_t m_cachedColour = 0;
    ConfigurationRecord m_config{};
    std::optional<CMvConfig> m_folders;  // worked out with the first configuration
    WString m_iniPath;
};

}  // namespace morvil
