// BorderCompletion.h - closes the frame line of a colour stamp where it ends one pixel before the edge: a white edge pixel beside
// a light grey one becomes light grey. Works on the 8-bit image of a bitmap store that has a stream, in whole rows: one walk over
// the image for the left and right edges, then two rows for the top and two for the bottom edge. Lives for one completion.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "raster/CBM.h"

namespace morvil {

class BorderCompletion {
  public:
    explicit BorderCompletion(CBM& store);

    // An image of width or height 1 has no pixel beside an edge and stays as it is. Raises std::runtime_error when rows cannot
    // be read or written.
    void run();
    // A write failed: the image is neither what it was nor what it should be.
    [[nodiscard]] bool spoiled() const { return m_spoiled; }

  private:
    void completeSides();
    void completeEdge(std::uint32_t edgeRow, std::uint32_t innerRow);
    bool complete(std::uint8_t& edge, std::uint8_t inner) const;
    void read(std::span<std::uint8_t> rows, std::uint32_t first);
    void write(std::span<const std::uint8_t> rows, std::uint32_t first);

    CBM& m_store;
    std::array<bool, 256> m_isGrey{};   // for each byte value: whether its colour is the light grey of the frame
    std::array<bool, 256> m_isWhite{};  // ... or white
    std::uint8_t m_grey = 0;            // the byte of the light grey
    bool m_spoiled = false;
};

}  // namespace morvil
