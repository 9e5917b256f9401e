// Record.cpp - little-endian reads inside one record.
#include "engine/metafile/Record.h"

#include <bit>
#include <cmath>

namespace morvil::engine {

void Record::require(std::size_t offset, std::size_t count, std::size_t elementSize, const char* what) const {
    const bool fits = offset <= size() && count <= (size() - offset) / elementSize;
    if (fits) return;
    throw DamagedRecord(std::to_string(count) + " " + what + " from byte " + std::to_string(offset) + " do not fit into a record of " +
                        std::to_string(size()) + " bytes");
}

std::span<const std::uint8_t> Record::block(std::size_t offset, std::size_t length) const {
    require(offset, length, 1, "bytes");
    return m_bytes.subspan(offset, length);
}

std::span<const std::uint8_t> Record::rest(std::size_t offset) const {
    require(offset, 0, 1, "bytes");
    return m_bytes.subspan(offset);
}

std::uint8_t Record::u8(std::size_t offset) const { return block(offset, 1)[0]; }

std::uint16_t Record::u16(std::size_t offset) const {
    const auto b = block(offset, 2);
    return static_cast<std::uint16_t>(b[0] | b[1] << 8);
}

std::uint32_t Record::u32(std::size_t offset) const {
    const auto b = block(offset, 4);
    return b[0] | static_cast<std::uint32_t>(b[1]) << 8 | static_cast<std::uint32_t>(b[2]) << 16 | static_cast<std::uint32_t>(b[3]) << 24;
}

float Record::f32(std::size_t offset) const {
    const auto value = std::bit_cast<float>(u32(offset));
    if (!std::isfinite(value)) throw DamagedRecord("the number at byte " + std::to_string(offset) + " is not finite");
    return value;
}

Point Record::point(std::size_t offset) const { return {static_cast<double>(i32(offset)), static_cast<double>(i32(offset + 4))}; }

RECTL Record::rect(std::size_t offset) const { return {i32(offset), i32(offset + 4), i32(offset + 8), i32(offset + 12)}; }

XFORM Record::xform(std::size_t offset) const {
    return {f32(offset), f32(offset + 4), f32(offset + 8), f32(offset + 12), f32(offset + 16), f32(offset + 20)};
}

std::vector<Point> Record::points32(std::size_t offset, std::size_t count) const {
    require(offset, count, 8, "points");
    std::vector<Point> points(count);
    for (std::size_t i = 0; i < count; ++i) points[i] = point(offset + 8 * i);
    return points;
}

std::vector<Point> Record::points16(std::size_t offset, std::size_t count) const {
    require(offset, count, 4, "points");
    std::vector<Point> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        points[i] = {static_cast<double>(i16(offset + 4 * i)), static_cast<double>(i16(offset + 4 * i + 2))};
    }
    return points;
}

}  // namespace morvil::engine
