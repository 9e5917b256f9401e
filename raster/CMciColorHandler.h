// CMciColorHandler.h - the three colour lists of the colour stamp mode: the two colours of the system, the catalogue file
// ColorsGaspen.xml and the customer's ColorsCustomer.xml. Hands the colours one by one to the palette. Reads both files when
// it is made; printing thread only.
#pragma once

#include "config/CMvConfig.h"
#include "raster/CMciColorsBase.h"

namespace morvil {

class CMciColorHandler {
  public:
    CMciColorHandler();
    ~CMciColorHandler();
    CMciColorHandler(const CMciColorHandler&) = delete;
    CMciColorHandler& operator=(const CMciColorHandler&) = delete;

    // Filters both file lists by a version 0 to 3 (any other counts as 0) and fills them again.
    void setMciVersion(DWORD version);

    // The walk for the palette: catalogue, customer, system; null at its end. getFirst() starts it over. Without a catalogue
    // the first system colour comes first.
    const CMciColor* getFirst();
    const CMciColor* getNext();

    [[nodiscard]] std::size_t getCount() const;
    // Index across the lists in the order catalogue, customer, system; null and a message beyond all three.
    const CMciColor* operator[](std::size_t index) const;

    [[nodiscard]] const CMciColorsBase& colorsGaspen() const { return m_gaspen; }
    [[nodiscard]] const CMciColorsBase& colorsCustomer() const { return m_customer; }
    [[nodiscard]] const CMciColorsBase& colorsSystem() const { return m_system; }

  private:
    struct Announcement {
        Announcement();
    };

    Announcement m_announcement;  // speaks before the lists do
    CMvConfig m_folders;
    CMciColorsBase m_system;
    CMciColorsBase m_gaspen;
    CMciColorsBase m_customer;
};

}  // namespace morvil
