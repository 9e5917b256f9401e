// CxImage.h - an image in memory, of 1, 4, 8 or 24 bits per pixel, and its reduction to one bit. Header, palette and rows are one
// block, laid out like a BMP file behind its file header; every row is a multiple of 4 bytes. Operations return false when they
// cannot be done; the image then stays as it was (creation apart) and GetLastError() tells why, where there is a text for it.
// One thread at a time; progress and escape flag may be used by another.
#pragma once

#include <cstdint>
#include <span>

#include "platform/common/LocalBlock.h"
#include "platform/platform.h"
#include "raster/ErrorDiffusion.h"
#include "raster/OrderedDither.h"

namespace morvil {

class CxImage {
  public:
    CxImage() = default;
    CxImage(const CxImage&) = delete;
    CxImage& operator=(const CxImage&) = delete;

    // ---- creation (CxImage.cpp) ----
    // Frees the previous pixels first. The pixel area, all zero, with a palette of zeros; null on failure. The bit depth becomes 1, 4,
    // 8 or 24, the next that is large enough.
    std::uint8_t* Create(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel, unsigned type = 0);
    // An image with a grey palette and these pixels: 1, 4, 8 or 24 bits, or 32 whose fourth byte is dropped. Row i begins
    // i * scanLine bytes behind the first.
    bool CreateFromArray(const std::uint8_t* pixels, std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel,
                         std::uint32_t scanLine, bool flip);
    // The same image without its copy: a page of a square metre has no room beside it. What it will be reduced to is reserved at once.
    // The pixels stay the caller's and must last until DitherOrdered, Dither or the next creation; until then the image has a header
    // and a palette but offers no pixels. The rows of the result go to `rowsOut` where that is given and the array's rows are not
    // shorter than those of the result; it may be the array itself. They then belong to the caller, who outlives them or destroys the
    // image. GetBits() tells where they are.
    bool AttachArray(const std::uint8_t* pixels, std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel, std::uint32_t scanLine,
                     std::uint8_t* rowsOut = nullptr);
    void Destroy();

    // ---- pixels (CxImagePixels.cpp) ----
    // Outside the image: the background index, or without one the first byte of the pixels. The one-bit pixel of a byte's highest bit
    // is its first, the 4-bit pixel of the high nibble its even one.
    [[nodiscard]] std::uint8_t GetPixelIndex(std::uint32_t x, std::uint32_t y) const;
    void SetPixelIndex(std::uint32_t x, std::uint32_t y, std::uint8_t index);
    [[nodiscard]] RGBQUAD GetPixelColor(std::uint32_t x, std::uint32_t y) const;
    void SetPixelColor(std::uint32_t x, std::uint32_t y, RGBQUAD colour);
    void SetGrayPalette();
    void SetPaletteColor(std::uint8_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    // To 8 bits of grey with a grey palette.
    bool GrayScale();

    // ---- reduction to one bit (CxImageDither.cpp) ----
    // 0: 2x2, 2: 4x4, others: 8x8. Black is 0, white is 1.
    bool DitherOrdered(std::uint32_t patternSize);
    // 0 Floyd-Steinberg, 1 ordered 4x4, 2 Burkes, 3 Stucki, 4 Jarvis-Judice-Ninke, 5 Sierra, 6 Stevenson-Arce, 7 grey thresholds 4x4;
    // others as 0.
    bool Dither(unsigned method);
    // How it is computed; the results are the same. The widest that the processor has unless said otherwise.
    void SetCpuLevel(CpuLevel level) { m_level = level; }

    [[nodiscard]] const BITMAPINFOHEADER& GetHeader() const { return m_header; }
    [[nodiscard]] std::uint32_t GetWidth() const { return static_cast<std::uint32_t>(m_header.biWidth); }
    [[nodiscard]] std::uint32_t GetHeight() const { return static_cast<std::uint32_t>(m_header.biHeight); }
    [[nodiscard]] unsigned GetBpp() const { return m_header.biBitCount; }
    [[nodiscard]] std::size_t GetNumColors() const { return m_colours; }
    [[nodiscard]] std::size_t GetEffWidth() const { return m_effWidth; }
    [[nodiscard]] unsigned GetType() const { return m_type; }
    [[nodiscard]] LONG GetTransIndex() const { return m_background; }
    void SetTransIndex(LONG index) { m_background = index; }
    [[nodiscard]] const WCHAR* GetLastError() const { return m_lastError; }
    [[nodiscard]] int GetProgress() const { return m_run.progress; }
    void SetEscape(bool stop) { m_run.escape = stop; }
    [[nodiscard]] std::span<const RGBQUAD> GetPalette() const;
    // Header and palette, and the pixel rows. Empty without pixels.
    [[nodiscard]] std::span<const std::uint8_t> GetDIB() const;
    [[nodiscard]] std::span<const std::uint8_t> GetBits() const;
    [[nodiscard]] const std::uint8_t* GetRow(std::uint32_t y) const { return pixels() + y * m_effWidth; }

  private:
    struct Attached {
        const std::uint8_t* pixels = nullptr;
        unsigned bitsPerPixel = 0;
        std::uint32_t scanLine = 0;
        std::uint8_t* rowsOut = nullptr;
    };

    [[nodiscard]] std::size_t pixelOffset() const { return sizeof(BITMAPINFOHEADER) + m_colours * sizeof(RGBQUAD); }
    [[nodiscard]] std::uint8_t* pixels() const { return m_rows != nullptr ? m_rows : m_block.get() + pixelOffset(); }
    [[nodiscard]] std::uint8_t* row(std::uint32_t y) const { return pixels() + y * m_effWidth; }
    [[nodiscard]] RGBQUAD* palette() const { return reinterpret_cast<RGBQUAD*>(m_block.get() + sizeof(BITMAPINFOHEADER)); }
    [[nodiscard]] bool isInside(std::uint32_t x, std::uint32_t y) const { return m_block && x < GetWidth() && y < GetHeight(); }
    bool create(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel, unsigned type, bool withRows);
    void describe(std::uint32_t width, std::uint32_t height, unsigned bitsPerPixel);
    bool allocate(bool withRows);
    [[nodiscard]] bool hasSource() const { return m_block || m_attached.pixels != nullptr; }
    [[nodiscard]] PixelRows source() const;
    bool reserveResult(CxImage& result);
    template <typename Method>
    bool reduce(Method method);
    void takeOver(CxImage& other);

    BITMAPINFOHEADER m_header{};
    std::size_t m_colours = 0;
    std::size_t m_effWidth = 0;
    LocalBlock<std::uint8_t> m_block;  // header, palette, and rows unless they are lent
    std::uint8_t* m_rows = nullptr;    // lent rows
    Attached m_attached;
    LocalBlock<std::uint8_t> m_reserved;  // the block of the result while an array is attached
    LONG m_background = -1;
    unsigned m_type = 0;
    const WCHAR* m_lastError = TEXT("");
    HalftoneRun m_run;
    CpuLevel m_level = bestCpuLevel();
};

}  // namespace morvil
