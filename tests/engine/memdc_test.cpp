// Memory device contexts, DIB sections, StretchBlt between them and GetDIBits.
#include <array>
#include <cstring>

#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

// A header with room for 256 colours.
struct InfoBlock {
    BITMAPINFOHEADER header{};
    std::array<RGBQUAD, 256> colours{};
    BITMAPINFO* info() { return reinterpret_cast<BITMAPINFO*>(this); }
};
static_assert(sizeof(InfoBlock) == 1064);

class MemoryDc : public EngineTest {
  protected:
    static InfoBlock block(LONG width, LONG height, WORD bits) {
        InfoBlock result;
        result.header.biSize = sizeof(BITMAPINFOHEADER);
        result.header.biWidth = width;
        result.header.biHeight = height;
        result.header.biPlanes = 1;
        result.header.biBitCount = bits;
        for (unsigned i = 0; i < 256; ++i) {
            const auto level = static_cast<BYTE>(bits == 1 ? (i == 1 ? 255 : 0) : i);
            result.colours[i] = {level, level, level, 0};
        }
        return result;
    }
    struct Section {
        HDC dc = nullptr;
        HBITMAP bitmap = nullptr;
        std::uint8_t* bits = nullptr;
        std::size_t bytes = 0;
    };
    static Section selected(LONG width, LONG height, WORD bits) {
        Section section;
        section.dc = CreateCompatibleDC(nullptr);
        InfoBlock info = block(width, height, bits);
        void* memory = nullptr;
        section.bitmap = CreateDIBSection(section.dc, info.info(), DIB_RGB_COLORS, &memory, nullptr, 0);
        section.bits = static_cast<std::uint8_t*>(memory);
        section.bytes = static_cast<std::size_t>((width * bits + 31) / 32 * 4 * std::abs(height));
        SelectObject(section.dc, section.bitmap);
        return section;
    }
    static void fill(Section& section, Random& random) {
        for (std::size_t i = 0; i < section.bytes; ++i) section.bits[i] = static_cast<std::uint8_t>(random.next());
    }
};

COLORADJUSTMENT neutral() {
    COLORADJUSTMENT a{};
    a.caSize = sizeof a;
    a.caRedGamma = a.caGreenGamma = a.caBlueGamma = 10000;
    a.caReferenceWhite = 10000;
    return a;
}

}  // namespace

TEST_F(MemoryDc, unknownHandles_failWithTheirError) {
    const auto dc = reinterpret_cast<HDC>(std::uintptr_t{0x44});
    const auto bitmap = reinterpret_cast<HBITMAP>(std::uintptr_t{0x48});
    InfoBlock info = block(4, 4, 8);
    SetLastError(0xdeadbeef);
    EXPECT_FALSE(DeleteDC(dc));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(CreateCompatibleDC(dc), nullptr);
    EXPECT_EQ(CreateDIBSection(dc, info.info(), DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(SelectObject(dc, bitmap), nullptr);
    EXPECT_FALSE(DeleteObject(bitmap));
    EXPECT_FALSE(DeleteObject(nullptr));
    EXPECT_EQ(SetStretchBltMode(dc, COLORONCOLOR), 0);
    const COLORADJUSTMENT adjustment = neutral();
    EXPECT_FALSE(SetColorAdjustment(dc, &adjustment));
    EXPECT_FALSE(StretchBlt(dc, 0, 0, 1, 1, dc, 0, 0, 1, 1, SRCCOPY));
    EXPECT_EQ(GetDIBits(dc, bitmap, 0, 0, nullptr, info.info(), DIB_RGB_COLORS), 0);
    const HDC real = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SelectObject(real, bitmap), nullptr);
    EXPECT_EQ(SetStretchBltMode(real, 0), 0);
    EXPECT_EQ(SetStretchBltMode(real, 5), 0);
    EXPECT_FALSE(SetColorAdjustment(real, nullptr));
    SetLastError(0xdeadbeef);
    EXPECT_EQ(GetDIBits(real, bitmap, 0, 0, nullptr, info.info(), DIB_RGB_COLORS), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(StretchBlt(real, 0, 0, 1, 1, real, 0, 0, 1, 1, SRCCOPY));  // no bitmap selected
}

TEST_F(MemoryDc, sectionsWithoutSense_areRefused) {
    const auto refused = [](auto change) {
        InfoBlock info = block(4, 4, 8);
        change(info);
        void* bits = &info;
        const HBITMAP bitmap = CreateDIBSection(nullptr, info.info(), DIB_RGB_COLORS, &bits, nullptr, 0);
        return bitmap == nullptr && bits == nullptr;
    };
    EXPECT_FALSE(refused([](InfoBlock&) {}));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biSize = 12; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biPlanes = 2; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biBitCount = 2; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biWidth = 0; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biWidth = -4; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biHeight = 0; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biHeight = INT32_MIN; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biHeight = 0x7FFFFFFF; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biCompression = BI_RLE8; }));
    EXPECT_TRUE(refused([](InfoBlock& i) { i.header.biCompression = BI_BITFIELDS; }));
    InfoBlock info = block(4, 4, 8);
    EXPECT_EQ(CreateDIBSection(nullptr, nullptr, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, info.info(), DIB_PAL_COLORS, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, info.info(), DIB_RGB_COLORS, nullptr, &info, 0), nullptr);
}

TEST_F(MemoryDc, selection_givesBackThePreviousAndHoldsTheBitmap) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const HDC other = CreateCompatibleDC(dc);
    InfoBlock info = block(4, 4, 8);
    const HBITMAP first = CreateDIBSection(dc, info.info(), DIB_RGB_COLORS, nullptr, nullptr, 0);
    const HBITMAP second = CreateDIBSection(dc, info.info(), DIB_RGB_COLORS, nullptr, nullptr, 0);
    const HGDIOBJ stock = SelectObject(dc, first);
    ASSERT_NE(stock, nullptr);
    EXPECT_EQ(SelectObject(dc, second), first);
    EXPECT_EQ(SelectObject(other, second), nullptr);
    EXPECT_FALSE(DeleteObject(second));
    EXPECT_TRUE(DeleteObject(first));
    EXPECT_EQ(SelectObject(dc, stock), second);
    EXPECT_TRUE(DeleteObject(second));
    EXPECT_FALSE(DeleteObject(second));
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_FALSE(DeleteDC(dc));
    EXPECT_TRUE(DeleteDC(other));
    EXPECT_EQ(liveSurfaces(), 0U);
}

TEST_F(MemoryDc, engineSurfaces_areNoObjectsToDelete) {
    const HBITMAP bitmap = EngCreateBitmap({4, 4}, 4, BMF_8BPP, 0, nullptr);
    EXPECT_FALSE(DeleteObject(bitmap));
    EXPECT_EQ(liveSurfaces(), 1U);
}

TEST_F(MemoryDc, stretchMode_givesBackThePrevious) {
    const HDC dc = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SetStretchBltMode(dc, HALFTONE), BLACKONWHITE);
    EXPECT_EQ(SetStretchBltMode(dc, COLORONCOLOR), HALFTONE);
}

TEST_F(MemoryDc, mirroredSourceWidth_turnsEveryRowAndTwiceIsTheOriginal) {
    Random random(40);
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
        for (LONG width = 1; width <= 67; width += 3) {
            Section source = selected(width, 5, bits);
            Section target = selected(width, 5, bits);
            fill(source, random);
            SetStretchBltMode(target.dc, COLORONCOLOR);
            SetStretchBltMode(source.dc, COLORONCOLOR);
            ASSERT_TRUE(StretchBlt(target.dc, 0, 0, width, 5, source.dc, width - 1, 0, -width, 5, SRCCOPY));
            const EngineSurface& from = *surfaceOf(reinterpret_cast<HSURF>(source.bitmap));
            const EngineSurface& to = *surfaceOf(reinterpret_cast<HSURF>(target.bitmap));
            std::vector<ULONG> before;
            for (LONG y = 0; y < 5; ++y) {
                for (LONG x = 0; x < width; ++x) {
                    ASSERT_EQ(pixelAt(to, x, y), pixelAt(from, width - 1 - x, y)) << bits << " bits, width " << width;
                    before.push_back(pixelAt(from, x, y));
                }
            }
            ASSERT_TRUE(StretchBlt(source.dc, 0, 0, width, 5, target.dc, width - 1, 0, -width, 5, SRCCOPY));
            std::size_t next = 0;
            for (LONG y = 0; y < 5; ++y) {
                for (LONG x = 0; x < width; ++x) ASSERT_EQ(pixelAt(from, x, y), before[next++]);
            }
        }
    }
}

TEST_F(MemoryDc, negativeExtents_includeTheirStart) {
    Section source = selected(4, 1, 8);
    Section target = selected(6, 1, 8);
    std::memcpy(source.bits, "\1\2\3\4", 4);
    ASSERT_TRUE(StretchBlt(target.dc, 4, 0, -4, 1, source.dc, 0, 0, 4, 1, SRCCOPY));
    EXPECT_EQ(picture(*surfaceOf(reinterpret_cast<HSURF>(target.bitmap))), ".4321.\n");
    ASSERT_TRUE(StretchBlt(target.dc, 4, 0, -4, 1, source.dc, 3, 0, -4, 1, SRCCOPY));
    EXPECT_EQ(picture(*surfaceOf(reinterpret_cast<HSURF>(target.bitmap))), ".1234.\n");
    EXPECT_TRUE(StretchBlt(target.dc, 0, 0, 0, 1, source.dc, 0, 0, 4, 1, SRCCOPY));
    ASSERT_TRUE(StretchBlt(target.dc, 0, 0, 6, 1, source.dc, 0, 0, 4, 1, 0x00FF0062U));
    EXPECT_EQ(picture(*surfaceOf(reinterpret_cast<HSURF>(target.bitmap))), "######\n");
}

TEST_F(MemoryDc, equalPalettes_keepIndicesWhoseColourAppearsTwice) {
    InfoBlock info = block(4, 1, 8);
    for (std::size_t i = 17; i < 256; ++i) info.colours[i] = {255, 255, 255, 0};
    const auto make = [&info] {
        Section section;
        section.dc = CreateCompatibleDC(nullptr);
        void* memory = nullptr;
        section.bitmap = CreateDIBSection(section.dc, info.info(), DIB_RGB_COLORS, &memory, nullptr, 0);
        section.bits = static_cast<std::uint8_t*>(memory);
        SelectObject(section.dc, section.bitmap);
        return section;
    };
    Section source = make();
    Section target = make();
    const std::uint8_t pixels[4] = {17, 30, 255, 3};
    for (const int mode : {COLORONCOLOR, HALFTONE}) {
        std::memcpy(source.bits, pixels, 4);
        std::memset(target.bits, 0, 4);
        SetStretchBltMode(target.dc, mode);
        ASSERT_TRUE(StretchBlt(target.dc, 0, 0, 4, 1, source.dc, 0, 0, 4, 1, SRCCOPY));
        EXPECT_EQ(std::memcmp(target.bits, pixels, 4), 0) << mode;
    }
}

TEST_F(MemoryDc, adjustment_changesPixelsInHalftoneModeOnly) {
    Section source = selected(256, 1, 8);
    Section target = selected(256, 1, 8);
    for (unsigned i = 0; i < 256; ++i) source.bits[i] = static_cast<std::uint8_t>(i);
    const auto stretched = [&](int mode, auto change) {
        COLORADJUSTMENT adjustment = neutral();
        change(adjustment);
        SetStretchBltMode(target.dc, mode);
        EXPECT_TRUE(SetColorAdjustment(target.dc, &adjustment));
        EXPECT_TRUE(StretchBlt(target.dc, 0, 0, 256, 1, source.dc, 0, 0, 256, 1, SRCCOPY));
        return std::vector<std::uint8_t>(target.bits, target.bits + 256);
    };
    const std::vector<std::uint8_t> same(source.bits, source.bits + 256);
    EXPECT_EQ(stretched(COLORONCOLOR, [](COLORADJUSTMENT& a) { a.caBrightness = 50; }), same);
    EXPECT_EQ(stretched(HALFTONE, [](COLORADJUSTMENT&) {}), same);
    const auto negative = stretched(HALFTONE, [](COLORADJUSTMENT& a) { a.caFlags = CA_NEGATIVE; });
    for (unsigned i = 0; i < 256; ++i) EXPECT_EQ(negative[i], 255 - i);
    const auto brighter = stretched(HALFTONE, [](COLORADJUSTMENT& a) { a.caBrightness = 10; });
    EXPECT_EQ(brighter[0], 13);  // 12.75 of 255
    EXPECT_EQ(brighter[255], 255);
    const auto contrast = stretched(HALFTONE, [](COLORADJUSTMENT& a) { a.caContrast = 100; });
    EXPECT_EQ(contrast[60], 0);
    EXPECT_EQ(contrast[200], 255);
    const auto black = stretched(HALFTONE, [](COLORADJUSTMENT& a) { a.caReferenceBlack = 4000; });
    EXPECT_EQ(black[100], 0);
    const auto log = stretched(HALFTONE, [](COLORADJUSTMENT& a) { a.caFlags = CA_LOG_FILTER; });
    EXPECT_GT(log[40], 80);
}

TEST_F(MemoryDc, adjustedBlackAndWhite_isDithered) {
    Section source = selected(64, 64, 1);
    Section target = selected(64, 64, 1);
    std::memset(source.bits, 0, source.bytes);
    COLORADJUSTMENT adjustment = neutral();
    adjustment.caBrightness = 100;  // black becomes half grey
    SetStretchBltMode(target.dc, HALFTONE);
    SetColorAdjustment(target.dc, &adjustment);
    ASSERT_TRUE(StretchBlt(target.dc, 0, 0, 64, 64, source.dc, 0, 0, 64, 64, SRCCOPY));
    int white = 0;
    const EngineSurface& to = *surfaceOf(reinterpret_cast<HSURF>(target.bitmap));
    for (LONG y = 0; y < 64; ++y) {
        for (LONG x = 0; x < 64; ++x) white += static_cast<int>(pixelAt(to, x, y));
    }
    EXPECT_EQ(white, 2048);
}

TEST_F(MemoryDc, header_describesSectionsAndEngineSurfaces) {
    const HDC dc = CreateCompatibleDC(nullptr);
    for (const FLONG flags : {0U, BMF_TOPDOWN}) {
        for (const ULONG format : {BMF_1BPP, BMF_8BPP, BMF_24BPP}) {
            const EngineSurface& surface = makeBitmap(9, 5, format, flags);
            InfoBlock info;
            info.header.biSize = sizeof(BITMAPINFOHEADER);
            EXPECT_NE(GetDIBits(dc, reinterpret_cast<HBITMAP>(surface.hsurf), 0, 0, nullptr, info.info(), DIB_RGB_COLORS), 0);
            EXPECT_EQ(info.header.biWidth, 9);
            EXPECT_EQ(info.header.biHeight, 5);
            EXPECT_EQ(info.header.biPlanes, 1);
            EXPECT_EQ(info.header.biBitCount, bitsPerPixel(format));
            EXPECT_EQ(info.header.biCompression, BI_RGB);
            EXPECT_EQ(info.header.biSizeImage, surface.cjBits);
            EXPECT_EQ(info.colours[0].rgbReserved, 0);
        }
    }
    InfoBlock wrong;
    wrong.header.biSize = 12;
    SetLastError(0xdeadbeef);
    EXPECT_EQ(GetDIBits(dc, reinterpret_cast<HBITMAP>(makeBitmap(1, 1, BMF_8BPP).hsurf), 0, 0, nullptr, wrong.info(), DIB_RGB_COLORS), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(MemoryDc, bits_comeFromTheBottomUpWithTheirPalette) {
    const HDC dc = CreateCompatibleDC(nullptr);
    for (const FLONG flags : {0U, BMF_TOPDOWN}) {
        EngineSurface& surface = makeBitmap(3, 3, BMF_8BPP, flags);
        givePalette(surface, {RGB(1, 2, 3), RGB(4, 5, 6)});
        draw(surface, {"123", "456", "789"});
        InfoBlock info = block(3, 3, 8);
        std::vector<std::uint8_t> bits(12, 0xAA);
        const auto bitmap = reinterpret_cast<HBITMAP>(surface.hsurf);
        EXPECT_EQ(GetDIBits(dc, bitmap, 0, 3, bits.data(), info.info(), DIB_RGB_COLORS), 3);
        EXPECT_EQ(bits, (std::vector<std::uint8_t>{7, 8, 9, 0, 4, 5, 6, 0, 1, 2, 3, 0}));
        EXPECT_EQ(info.colours[1].rgbRed, 4);
        EXPECT_EQ(info.colours[1].rgbBlue, 6);
        EXPECT_EQ(info.colours[2].rgbRed, 0);
        // One line in the middle, lines beyond the end, and the order of a negative height.
        std::fill(bits.begin(), bits.end(), 0xAA);
        EXPECT_EQ(GetDIBits(dc, bitmap, 1, 1, bits.data(), info.info(), DIB_RGB_COLORS), 1);
        EXPECT_EQ(bits[0], 4);
        EXPECT_EQ(bits[4], 0xAA);
        EXPECT_EQ(GetDIBits(dc, bitmap, 2, 9, bits.data(), info.info(), DIB_RGB_COLORS), 1);
        EXPECT_EQ(GetDIBits(dc, bitmap, 3, 1, bits.data(), info.info(), DIB_RGB_COLORS), 0);
        info.header.biHeight = -3;
        EXPECT_EQ(GetDIBits(dc, bitmap, 0, 3, bits.data(), info.info(), DIB_RGB_COLORS), 3);
        EXPECT_EQ(bits, (std::vector<std::uint8_t>{1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0}));
    }
}

TEST_F(MemoryDc, bits_areConvertedToDirectColourAndBlackAndWhite) {
    const HDC dc = CreateCompatibleDC(nullptr);
    EngineSurface& surface = makeBitmap(2, 1, BMF_8BPP);
    givePalette(surface, {RGB(255, 255, 240), RGB(255, 0, 0)});
    draw(surface, {".1"});
    const auto bitmap = reinterpret_cast<HBITMAP>(surface.hsurf);
    std::vector<std::uint8_t> bits(8, 0xAA);
    InfoBlock colour = block(2, 1, 24);
    ASSERT_EQ(GetDIBits(dc, bitmap, 0, 1, bits.data(), colour.info(), DIB_RGB_COLORS), 1);
    EXPECT_EQ(bits, (std::vector<std::uint8_t>{240, 255, 255, 0, 0, 255, 0, 0}));
    InfoBlock mono = block(2, 1, 1);
    ASSERT_EQ(GetDIBits(dc, bitmap, 0, 1, bits.data(), mono.info(), DIB_RGB_COLORS), 1);
    EXPECT_EQ(bits[0], 0x80);
    EXPECT_EQ(mono.colours[1].rgbRed, 255);
    InfoBlock four = block(2, 1, 4);
    SetLastError(0xdeadbeef);
    EXPECT_EQ(GetDIBits(dc, bitmap, 0, 1, bits.data(), four.info(), DIB_RGB_COLORS), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    InfoBlock other = block(3, 1, 8);
    EXPECT_EQ(GetDIBits(dc, bitmap, 0, 1, bits.data(), other.info(), DIB_RGB_COLORS), 0);
}
