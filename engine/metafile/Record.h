// Record.h - one record of a metafile, read with every offset and count checked against the record's own size.
// All offsets count from the record's start, as the format's do. A read beyond the end throws DamagedRecord, which the player
// catches record by record; nothing outside the metafile reader sees it.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/metafile/Matrix.h"
#include "platform/platform.h"

namespace morvil::engine {

class DamagedRecord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Record {
  public:
    // REQUIRES: `bytes` holds the whole record, at least its type and size.
    explicit Record(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    [[nodiscard]] ULONG type() const { return u32(0); }
    [[nodiscard]] std::size_t size() const { return m_bytes.size(); }

    [[nodiscard]] std::uint8_t u8(std::size_t offset) const;
    [[nodiscard]] std::uint16_t u16(std::size_t offset) const;
    [[nodiscard]] std::int16_t i16(std::size_t offset) const { return static_cast<std::int16_t>(u16(offset)); }
    [[nodiscard]] std::uint32_t u32(std::size_t offset) const;
    [[nodiscard]] std::int32_t i32(std::size_t offset) const { return static_cast<std::int32_t>(u32(offset)); }
    [[nodiscard]] float f32(std::size_t offset) const;  // finite
    [[nodiscard]] Point point(std::size_t offset) const;
    [[nodiscard]] RECTL rect(std::size_t offset) const;
    [[nodiscard]] XFORM xform(std::size_t offset) const;
    [[nodiscard]] std::span<const std::uint8_t> block(std::size_t offset, std::size_t length) const;
    // The part from `offset` up to the record's end.
    [[nodiscard]] std::span<const std::uint8_t> rest(std::size_t offset) const;

    [[nodiscard]] std::vector<Point> points32(std::size_t offset, std::size_t count) const;
    [[nodiscard]] std::vector<Point> points16(std::size_t offset, std::size_t count) const;

    // Throws unless `count` elements of `elementSize` bytes lie between `offset` and the end.
    void require(std::size_t offset, std::size_t count, std::size_t elementSize, const char* what) const;

  private:
    std::span<const std::uint8_t> m_bytes;
};

}  // namespace morvil::engine
