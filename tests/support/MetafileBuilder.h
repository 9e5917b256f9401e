// MetafileBuilder.h - writes metafiles for tests, record by record. The reference device has 1000 x 1000 pixels on 100 x 100 mm
// and the frame covers it all, so that on a page of 1000 x 1000 pixels a device pixel is a page pixel.
#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "engine/Metafile.h"
#include "engine/metafile/RecordTypes.h"

namespace morvil::test {

// Little-endian bytes.
class Bytes {
  public:
    Bytes& u8(unsigned value) {
        m_data.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    Bytes& u16(unsigned value) { return u8(value & 0xFF).u8(value >> 8 & 0xFF); }
    Bytes& i16(int value) { return u16(static_cast<std::uint16_t>(value)); }
    Bytes& u32(std::uint32_t value) { return u16(value & 0xFFFF).u16(value >> 16); }
    Bytes& i32(std::int32_t value) { return u32(static_cast<std::uint32_t>(value)); }
    Bytes& f32(float value) { return u32(std::bit_cast<std::uint32_t>(value)); }
    Bytes& all32(std::initializer_list<std::int32_t> values) {
        for (const std::int32_t value : values) i32(value);
        return *this;
    }
    Bytes& all16(std::initializer_list<int> values) {
        for (const int value : values) i16(value);
        return *this;
    }
    Bytes& floats(std::initializer_list<float> values) {
        for (const float value : values) f32(value);
        return *this;
    }
    Bytes& zeros(std::size_t count) {
        m_data.resize(m_data.size() + count, 0);
        return *this;
    }
    Bytes& wide(std::u16string_view text) {
        for (const char16_t character : text) u16(character);
        return *this;
    }
    Bytes& narrow(std::string_view text) {
        for (const char character : text) u8(static_cast<unsigned char>(character));
        return *this;
    }
    Bytes& append(const Bytes& other) {
        m_data.insert(m_data.end(), other.m_data.begin(), other.m_data.end());
        return *this;
    }
    Bytes& padded() {
        while (m_data.size() % 4 != 0) u8(0);
        return *this;
    }
    [[nodiscard]] std::size_t size() const { return m_data.size(); }
    [[nodiscard]] const std::vector<std::uint8_t>& data() const { return m_data; }
    [[nodiscard]] std::vector<std::uint8_t>& data() { return m_data; }

  private:
    std::vector<std::uint8_t> m_data;
};

// A bitmap header of 40 bytes with colours behind it.
inline Bytes dibHeader(std::int32_t width, std::int32_t height, unsigned bits, std::initializer_list<std::uint32_t> colours = {},
                       std::uint32_t compression = 0) {
    Bytes bytes;
    bytes.u32(40).i32(width).i32(height).u16(1).u16(bits).u32(compression).zeros(12);
    bytes.u32(static_cast<std::uint32_t>(colours.size())).u32(0);
    for (const std::uint32_t colour : colours) bytes.u32(colour);
    return bytes;
}

class MetafileBuilder {
  public:
    MetafileBuilder() {
        Bytes body;
        body.all32({0, 0, 999, 999}).all32({0, 0, 9999, 9999});
        body.u32(0x464D4520).u32(0x10000).u32(0).u32(0).u16(100).u16(0).u32(0).u32(0).u32(0);
        body.all32({1000, 1000}).all32({100, 100});
        add(engine::emr::kHEADER, body);
    }

    MetafileBuilder& add(ULONG type, const Bytes& body = {}) {
        Bytes padded = body;
        padded.padded();
        m_lastRecord = m_file.size();
        m_file.u32(type).u32(static_cast<std::uint32_t>(padded.size() + 8)).append(padded);
        return *this;
    }
    MetafileBuilder& add(ULONG type, std::initializer_list<std::int32_t> values) { return add(type, Bytes().all32(values)); }

    // A record with a picture: `fixed` is the body up to the four words that place header and bits; `tail` comes behind these words.
    MetafileBuilder& addPicture(ULONG type, const Bytes& fixed, const Bytes& header, const Bytes& bits, const Bytes& tail = {}) {
        const std::size_t start = 8 + fixed.size() + 16 + tail.size();
        Bytes body = fixed;
        body.u32(static_cast<std::uint32_t>(start)).u32(static_cast<std::uint32_t>(header.size()));
        body.u32(static_cast<std::uint32_t>(start + header.size())).u32(static_cast<std::uint32_t>(bits.size()));
        return add(type, body.append(tail).append(header).append(bits));
    }

    [[nodiscard]] std::size_t lastRecord() const { return m_lastRecord; }

    // The finished file, end record included.
    [[nodiscard]] std::vector<std::uint8_t> file() const {
        MetafileBuilder ended = *this;
        ended.add(engine::emr::kEOF, {0, 16, 20});
        return ended.m_file.data();
    }

    [[nodiscard]] std::shared_ptr<engine::Metafile> metafile() const {
        engine::MetafileError error;
        return engine::Metafile::parse(file(), error);
    }

  private:
    Bytes m_file;
    std::size_t m_lastRecord = 0;
};

}  // namespace morvil::test
