#include "raster/BitmapHeader.h"

#include <limits>
#include <utility>

namespace morvil {

namespace {

constexpr std::uint64_t kMaxImageBytes = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t kInformationHeaderBytes = 40;

// Appends little-endian numbers.
class HeaderWriter {
  public:
    explicit HeaderWriter(std::size_t bytes) { m_bytes.reserve(bytes); }

    void put8(std::uint32_t value) { m_bytes.push_back(static_cast<std::uint8_t>(value & 0xFFU)); }
    void put16(std::uint32_t value) {
        put8(value);
        put8(value >> 8);
    }
    void put32(std::uint32_t value) {
        put16(value);
        put16(value >> 16);
    }
    std::vector<std::uint8_t> take() { return std::move(m_bytes); }

  private:
    std::vector<std::uint8_t> m_bytes;
};

std::uint64_t bytesOfPixels(std::uint64_t width, int bitsPerPixel) {
    if (bitsPerPixel == 1) return (width + 7) / 8;
    return width * static_cast<std::uint64_t>(bitsPerPixel / 8);
}

}  // namespace

std::optional<BitmapGeometry> measureBitmap(std::uint32_t width, std::uint32_t height, int bitsPerPixel) {
    const std::uint64_t rowBytes = bytesOfPixels(width, bitsPerPixel);
    const std::uint64_t stride = (rowBytes + 3) / 4 * 4;
    if (stride > kMaxImageBytes || stride * height > kMaxImageBytes) return std::nullopt;
    return BitmapGeometry{.width = width,
                          .height = height,
                          .bitsPerPixel = bitsPerPixel,
                          .rowBytes = static_cast<std::uint32_t>(rowBytes),
                          .stride = static_cast<std::uint32_t>(stride),
                          .imageSize = static_cast<std::uint32_t>(stride * height)};
}

std::vector<std::uint8_t> bitmapHeader(const BitmapGeometry& geometry, std::span<const std::uint32_t> palette) {
    const auto paletteBytes = static_cast<std::uint32_t>(palette.size() * 4);
    HeaderWriter header(kBitmapHeaderBytes + paletteBytes);
    header.put8('B');
    header.put8('M');
    header.put32(geometry.imageSize + paletteBytes + kBitmapHeaderBytes);  // file size
    header.put32(0);                                                       // reserved
    header.put32(paletteBytes + kBitmapHeaderBytes);                       // pixel data offset

    header.put32(kInformationHeaderBytes);
    header.put32(geometry.width);
    header.put32(geometry.height);
    header.put16(1);  // planes
    header.put16(static_cast<std::uint32_t>(geometry.bitsPerPixel));
    header.put32(0);  // not compressed
    header.put32(geometry.imageSize);
    header.put32(0);  // horizontal and vertical resolution, not stated
    header.put32(0);
    header.put32(0);  // colours used and important: all
    header.put32(0);

    for (const std::uint32_t colour : palette) {
        header.put8(colour >> 16);
        header.put8(colour >> 8);
        header.put8(colour);
        header.put8(0);  // whatever the high byte of the entry holds
    }
    return header.take();
}

}  // namespace morvil
