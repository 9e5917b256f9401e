// ClippingCases.h - reads the cases of tests/data/clipping.txt and prints results in the same form.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace morvil::test {

struct ClippingPoint {
    std::int32_t x;
    std::int32_t y;
    bool deleted;
    bool moved;
    bool operator==(const ClippingPoint&) const = default;
};
using ClippingPoints = std::vector<ClippingPoint>;

struct ClippingCase {
    std::string name;
    int line;  // of its CASE line in the file, from 1
    std::int32_t width;
    std::int32_t height;
    ClippingPoints polygon;
    ClippingPoints corrected;
    std::vector<ClippingPoints> pieces;
};

// Fails the test and gives what was understood so far when the file is missing or malformed.
std::vector<ClippingCase> loadClippingCases(const std::string& file);

// "10,10 90,10m 0,53dm": with the flags that are set.
std::string textOf(const ClippingPoints& points);

}  // namespace morvil::test
