// MeasurementPoints.h - walks the measurement points that the machine knows, for the diagnostic group of the header. They
// stand as MeasurementPoints.MeasurementPoint elements at the top of Diagnostics.xml, or of PrinterDriver.xml when there is no
// such file. Lives for one walk.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "config/CMvConfig.h"
#include "config/CXml.h"

namespace morvil {

class MeasurementPoints {
  public:
    using Text = std::array<WCHAR, CXml::kValueCharacters>;

    explicit MeasurementPoints(const CMvConfig& folders);

    // Whether the element at position k (0 to 255) is switched on: bit k % 8 of byte k / 8 of the mask's 32 bytes.
    static bool isEnabled(std::span<const std::uint8_t, 32> mask, int k);

    bool first();
    bool next();
    // Of the current element: its number; a text attribute. False when it is missing or no number.
    bool getId(std::uint32_t& id);
    bool getAttribute(const WCHAR* name, Text& value);

  private:
    CXml m_document;
    const XmlNode* m_element = nullptr;
};

}  // namespace morvil
