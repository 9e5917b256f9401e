// CxImage.cpp - creation: from nothing, and from rows in memory.
#include "raster/CxImage.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>

namespace morvil {

namespace {

constexpr std::uint32_t kMaxMemory = 256'000'000;

unsigned normalised(unsigned bitsPerPixel) {
    if (bitsPerPixel < 2) return 1;
    if (bitsPerPixel <= 4) return 4;
    return bitsPerPixel <= 8 ? 8 : 24;
}

std::size_t coloursOf(unsigned bitsPerPixel) { return bitsPerPixel == 24 ? 0 : std::size_t{1} << bitsPerPixel; }

std::uint64_t rowBytesOf(std::uint32_t width, unsigned bitsPerPixel) { return (std::uint64_t{width} * bitsPerPixel + 31) / 8 & ~std::uint64_t{3}; }

// Bytes that the pixels of a row take up.
std::uint64_t pixelBytesOf(std::uint32_t width, unsigned bitsPerPixel) { return (std::uint64_t{width} * bitsPerPixel + 7) / 8; }

bool isSupported(unsigned bitsPerPixel) {
    constexpr std::array<unsigned, 5> kSupported{1, 4, 8, 24, 32};
    return std::find(kSupported.begin(), kSupported.end(), bitsPerPixel) != kSupported.end();
}

void copyWithoutFourth(const std::uint8_t* in, std::size_t pixels, std::uint8_t* out) {
    for (std::size_t i = 0; i < pixels; ++i) std::memcpy(out + 3 * i, in + 4 * i, 3);
}

}  // namespace

void CxImage::describe(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel) {
    const unsigned bits = normalised(bitsPerPixel);
    m_colours = coloursOf(bits);
    m_effWidth = static_cast<std::size_t>(rowBytesOf(width, bits));
    m_header = {.biSize = sizeof(BITMAPINFOHEADER),
                .biWidth = static_cast<LONG>(width),
                .biHeight = static_cast<LONG>(height),
                .biPlanes = 1,
                .biBitCount = static_cast<WORD>(bits),
                .biSizeImage = static_cast<DWORD>(m_effWidth * height)};
}

// The headers of such files hold 32 bits: larger images have no room, whatever memory there is.
bool CxImage::allocate(bool withRows) {
    const std::uint64_t pixelBytes = std::uint64_t{m_effWidth} * GetHeight();
    if (pixelBytes > std::numeric_limits<std::uint32_t>::max() - pixelOffset()) return false;
    m_block = LocalBlock<std::uint8_t>(static_cast<std::size_t>(pixelOffset() + (withRows ? pixelBytes : 0)));
    if (!m_block) return false;
    std::memcpy(m_block.get(), &m_header, sizeof m_header);
    return true;
}

std::uint8_t* CxImage::Create(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel, unsigned type) {
    return create(width, height, bitsPerPixel, type, true) ? pixels() : nullptr;
}

bool CxImage::create(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel, unsigned type, bool withRows) {
    Destroy();
    if (width == 0 || height == 0) {
        m_lastError = TEXT("CxImage::Create : width and height must be greater than zero");
        return false;
    }
    // Computed in 32 bits, where it wraps around: what remains after the shift never exceeds the limit, so that large pages pass.
    if ((width * height * normalised(bitsPerPixel)) >> 8 > kMaxMemory) {
        m_lastError = TEXT("CXIMAGE_MAX_MEMORY exceeded");
        return false;
    }
    describe(width, height, bitsPerPixel);
    if (!allocate(withRows)) {
        Destroy();
        m_lastError = TEXT("CxImage::Create can't allocate memory");
        return false;
    }
    m_type = type;
    return true;
}

void CxImage::Destroy() {
    m_block.reset();
    m_rows = nullptr;
    m_reserved.reset();
    m_attached = {};
    m_header = {};
    m_colours = 0;
    m_effWidth = 0;
    m_background = -1;
    m_type = 0;
}

bool CxImage::CreateFromArray(const std::uint8_t* array, std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel,
                              std::uint32_t scanLine, bool flip) {
    if (array == nullptr || !isSupported(bitsPerPixel) || Create(width, height, bitsPerPixel) == nullptr) return false;
    if (GetBpp() < 24) SetGrayPalette();
    for (std::uint32_t i = 0; i < height; ++i) {
        const std::uint8_t* const in = array + std::size_t{i} * scanLine;
        std::uint8_t* const out = row(flip ? height - 1 - i : i);
        if (bitsPerPixel == 32) copyWithoutFourth(in, std::min(width, scanLine / 4), out);
        else std::memcpy(out, in, std::min<std::size_t>(scanLine, m_effWidth));
    }
    return true;
}

// One-bit images are their own result, and rows that lack pixels need a row to be zero in: both are copied.
bool CxImage::AttachArray(const std::uint8_t* array, std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel,
                          std::uint32_t scanLine, std::uint8_t* rowsOut) {
    if (bitsPerPixel == 1 || scanLine < pixelBytesOf(width, bitsPerPixel)) {
        return CreateFromArray(array, width, height, bitsPerPixel, scanLine, false);
    }
    // Written over the array, rows of the result must stay behind the rows still to be read.
    if (scanLine < rowBytesOf(width, 1)) rowsOut = nullptr;
    if (array == nullptr || !isSupported(bitsPerPixel) || !create(width, height, 1, 0, rowsOut == nullptr)) return false;
    m_reserved = std::move(m_block);
    describe(width, height, bitsPerPixel);
    m_attached = {array, bitsPerPixel, scanLine, rowsOut};
    return true;
}

}  // namespace morvil
