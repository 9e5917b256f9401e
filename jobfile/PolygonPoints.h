// PolygonPoints.h - points of a stroke as the driver hands them over: two arrays of 32-bit device pixels, the arc record of the
// curve fitting, and the bounding box of what was drawn.
#pragma once

#include <cstdint>

namespace morvil {

// Delivered by the curve-fitting library; the meaning of the values is that library's.
struct ArcRecord {
    double coordinates[3];
    double unused;
    double values[2];
    std::int32_t sixth;
};

// left and bottom are the smallest x and y, right and top the largest plus one.
struct BoundingBox {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
    [[nodiscard]] bool isEmpty() const { return right <= left || top <= bottom; }
};

}  // namespace morvil
