// PixelFixtures.h - small surfaces for tests of the engine's drawing: made from and compared with pixel values, whatever their
// format and row order.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/EngineState.h"
#include "engine/Pixels.h"

namespace morvil::test {

// Leaves nothing behind: each test starts and ends with an empty engine.
class EngineTest : public ::testing::Test {
  protected:
    void SetUp() override { engine::resetEngineState(); }
    void TearDown() override { engine::resetEngineState(); }
};

inline int bitsPerPixel(ULONG format) {
    constexpr int kBits[] = {0, 1, 4, 8, 16, 24, 32};
    return kBits[format];
}

// A bitmap that lives until the engine's state is reset.
inline engine::EngineSurface& makeBitmap(LONG width, LONG height, ULONG format, FLONG flags = BMF_TOPDOWN) {
    const LONG rowBytes = (width * bitsPerPixel(format) + 31) / 32 * 4;
    const HBITMAP handle = EngCreateBitmap({width, height}, rowBytes, format, flags, nullptr);
    engine::EngineSurface* const surface = engine::surfaceOf(reinterpret_cast<HSURF>(handle));
    if (surface == nullptr) throw std::runtime_error("bitmap refused");
    return *surface;
}

inline void givePalette(engine::EngineSurface& surface, std::vector<COLORREF> entries) {
    auto palette = std::make_shared<engine::Palette>();
    palette->entries = std::move(entries);
    surface.palette = palette;
}

// Reading and writing single pixels in the plainest way, independent of the code under test.
inline ULONG pixelAt(const SURFOBJ& surface, LONG x, LONG y) {
    const auto* row = static_cast<const std::uint8_t*>(surface.pvScan0) + static_cast<std::ptrdiff_t>(y) * surface.lDelta;
    switch (surface.iBitmapFormat) {
        case BMF_1BPP: return (static_cast<unsigned>(row[x / 8]) >> (7 - x % 8)) & 1U;
        case BMF_4BPP: return (static_cast<unsigned>(row[x / 2]) >> (x % 2 == 0 ? 4 : 0)) & 15U;
        default: break;
    }
    const int bytes = bitsPerPixel(surface.iBitmapFormat) / 8;
    ULONG value = 0;
    for (int i = 0; i < bytes; ++i) value |= static_cast<ULONG>(row[bytes * x + i]) << (8 * i);
    return value;
}

inline void setPixel(SURFOBJ& surface, LONG x, LONG y, ULONG value) {
    auto* row = static_cast<std::uint8_t*>(surface.pvScan0) + static_cast<std::ptrdiff_t>(y) * surface.lDelta;
    const auto putBits = [](std::uint8_t& byte, unsigned shift, unsigned mask, ULONG bits) {
        byte = static_cast<std::uint8_t>((byte & ~(mask << shift)) | ((bits & mask) << shift));
    };
    switch (surface.iBitmapFormat) {
        case BMF_1BPP: putBits(row[x / 8], static_cast<unsigned>(7 - x % 8), 1, value); return;
        case BMF_4BPP: putBits(row[x / 2], x % 2 == 0 ? 4 : 0, 15, value); return;
        default: break;
    }
    const int bytes = bitsPerPixel(surface.iBitmapFormat) / 8;
    for (int i = 0; i < bytes; ++i) row[bytes * x + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// One hexadecimal digit a pixel ('.' for 0, '#' for values above 15), each row ended by '\n'.
inline std::string picture(const SURFOBJ& surface) {
    std::string text;
    for (LONG y = 0; y < surface.sizlBitmap.cy; ++y) {
        for (LONG x = 0; x < surface.sizlBitmap.cx; ++x) {
            const ULONG value = pixelAt(surface, x, y);
            text += value == 0 ? '.' : value > 15 ? '#' : "0123456789ABCDEF"[value];
        }
        text += '\n';
    }
    return text;
}

// The reverse: rows of '.', digits and '#' (all bits set).
inline void draw(SURFOBJ& surface, std::initializer_list<const char*> rows) {
    LONG y = 0;
    for (const char* row : rows) {
        for (LONG x = 0; row[x] != '\0'; ++x) {
            const char c = row[x];
            const ULONG value = c == '.' ? 0 : c == '#' ? 0xFFFFFFFFU : static_cast<ULONG>(std::stoi(std::string(1, c), nullptr, 16));
            setPixel(surface, x, y, value);
        }
        ++y;
    }
}

// A small generator with the same numbers everywhere.
class Random {
  public:
    explicit Random(std::uint64_t seed) : m_state(seed * 2 + 1) {}
    std::uint32_t next() {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::uint32_t>(m_state >> 32);
    }
    LONG below(LONG limit) { return static_cast<LONG>((next() >> 4) % static_cast<std::uint32_t>(limit)); }

  private:
    std::uint64_t m_state;
};

inline void fillRandomly(SURFOBJ& surface, Random& random) {
    for (LONG y = 0; y < surface.sizlBitmap.cy; ++y) {
        for (LONG x = 0; x < surface.sizlBitmap.cx; ++x) setPixel(surface, x, y, random.next() ^ (random.next() >> 13));
    }
}

inline engine::EngineBrush solidBrush(ULONG value) {
    engine::EngineBrush brush{};
    brush.iSolidColor = value;
    return brush;
}

inline engine::Path polygon(std::initializer_list<POINTFIX> points) {
    engine::Path path;
    bool first = true;
    for (const POINTFIX& point : points) {
        if (first) {
            path.moveTo(point);
        } else {
            path.lineTo(point);
        }
        first = false;
    }
    path.close();
    return path;
}

// A point given in pixels.
inline POINTFIX at(double x, double y) { return {static_cast<FIX>(x * 16), static_cast<FIX>(y * 16)}; }

}  // namespace morvil::test
