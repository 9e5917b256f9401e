// Making, locking and deleting surfaces.
#include "support/PixelFixtures.h"

using namespace morvil::engine;
using namespace morvil::test;

namespace {

class Surface : public EngineTest {};

}  // namespace

TEST_F(Surface, absurdRequests_areRefused) {
    const struct {
        SIZEL size;
        LONG rowBytes;
        ULONG format;
    } refused[] = {
        {{0, 10}, 4, BMF_8BPP},
        {{10, 0}, 12, BMF_8BPP},
        {{-1, 10}, 4, BMF_8BPP},
        {{10, -1}, 12, BMF_8BPP},
        {{65536, 1}, 0, BMF_1BPP},
        {{1, 65536}, 0, BMF_1BPP},
        {{10, 10}, 9, BMF_8BPP},
        {{10, 10}, 1, BMF_1BPP},
        {{10, 10}, -12, BMF_8BPP},
        {{10, 10}, 12, 0},
        {{10, 10}, 12, BMF_8RLE},
        {{10, 10}, 12, BMF_4RLE},
        {{10, 10}, 12, 99},
        {{65535, 65535}, 0, BMF_8BPP},
        {{0x7FFFFFFF, 0x7FFFFFFF}, 0x7FFFFFFF, BMF_32BPP},
        {{10, 65535}, 0x7FFFFFFF, BMF_8BPP},
    };
    for (const auto& entry : refused) {
        EXPECT_EQ(EngCreateBitmap(entry.size, entry.rowBytes, entry.format, BMF_TOPDOWN, nullptr), nullptr)
            << entry.size.cx << 'x' << entry.size.cy << ' ' << entry.rowBytes << ' ' << entry.format;
    }
    EXPECT_EQ(liveSurfaces(), 0U);
    EXPECT_FALSE(EngDeleteSurface(nullptr));
    EXPECT_EQ(EngLockSurface(nullptr), nullptr);
    EXPECT_FALSE(EngMarkBandingSurface(nullptr));
}

TEST_F(Surface, limit_makesLargeBitmapsFail) {
    engineState().maximumSurfaceBytes = 1000;
    EXPECT_EQ(EngCreateBitmap({100, 11}, 100, BMF_8BPP, 0, nullptr), nullptr);
    EXPECT_NE(EngCreateBitmap({100, 10}, 100, BMF_8BPP, 0, nullptr), nullptr);
}

TEST_F(Surface, topDownAndBottomUp_differInFirstScanLineAndStep) {
    EngineSurface& down = makeBitmap(10, 5, BMF_8BPP, BMF_TOPDOWN | BMF_NOZEROINIT);
    EXPECT_EQ(down.lDelta, 12);
    EXPECT_EQ(down.cjBits, 60U);
    EXPECT_EQ(down.pvScan0, down.pvBits);
    EXPECT_EQ(down.fjBitmap, BMF_TOPDOWN | BMF_NOZEROINIT);
    EXPECT_EQ(down.iType, STYPE_BITMAP);
    EXPECT_EQ(down.iBitmapFormat, BMF_8BPP);
    EngineSurface& up = makeBitmap(10, 5, BMF_8BPP, BMF_NOZEROINIT);
    EXPECT_EQ(up.lDelta, -12);
    EXPECT_EQ(static_cast<std::uint8_t*>(up.pvScan0), static_cast<std::uint8_t*>(up.pvBits) + 48);
    EXPECT_EQ(up.fjBitmap, BMF_NOZEROINIT);
    EXPECT_NE(up.iUniq, down.iUniq);
}

TEST_F(Surface, callersBits_areUsedAsTheyAre) {
    std::vector<std::uint8_t> bits(24, 0x5A);
    const HBITMAP handle = EngCreateBitmap({5, 3}, 8, BMF_8BPP, 0, bits.data());
    EngineSurface* const surface = surfaceOf(reinterpret_cast<HSURF>(handle));
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(surface->pvBits, bits.data());
    EXPECT_EQ(surface->storage, nullptr);
    EXPECT_EQ(pixelAt(*surface, 0, 0), 0x5AU);
    setPixel(*surface, 0, 0, 1);
    EXPECT_EQ(bits[16], 1);  // the first scan line is the last in memory
}

TEST_F(Surface, newBits_areZeroAndRowBytesAreChosenWhenZero) {
    const HBITMAP handle = EngCreateBitmap({9, 4}, 0, BMF_1BPP, BMF_TOPDOWN, nullptr);
    const EngineSurface* const surface = surfaceOf(reinterpret_cast<HSURF>(handle));
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(surface->lDelta, 4);
    for (ULONG i = 0; i < surface->cjBits; ++i) EXPECT_EQ(static_cast<const std::uint8_t*>(surface->pvBits)[i], 0);
}

TEST_F(Surface, locks_countAndHoldTheSurface) {
    EngineSurface& surface = makeBitmap(4, 4, BMF_8BPP);
    const HSURF handle = surface.hsurf;
    SURFOBJ* const first = EngLockSurface(handle);
    EXPECT_EQ(first, &surface);
    EXPECT_EQ(EngLockSurface(handle), first);
    EXPECT_EQ(surface.locks, 2);
    EXPECT_FALSE(EngDeleteSurface(handle));
    EngUnlockSurface(first);
    EngUnlockSurface(first);
    EngUnlockSurface(first);
    EXPECT_EQ(surface.locks, 0);
    EXPECT_TRUE(EngDeleteSurface(handle));
    EXPECT_FALSE(EngDeleteSurface(handle));
    EXPECT_EQ(EngLockSurface(handle), nullptr);
    EXPECT_EQ(liveSurfaces(), 0U);
    EngUnlockSurface(first);  // no longer a surface: nothing happens
}

TEST_F(Surface, objectsThatAreNotOurs_areNotFound) {
    SURFOBJ foreign{};
    EXPECT_EQ(surfaceOf(&foreign), nullptr);
    EXPECT_EQ(surfaceOf(static_cast<SURFOBJ*>(nullptr)), nullptr);
    EXPECT_EQ(surfaceOf(reinterpret_cast<HSURF>(std::uintptr_t{0x1234})), nullptr);
}

TEST_F(Surface, association_takesHooksAndTheDevicesPalette) {
    EngineSurface& surface = makeBitmap(4, 4, BMF_8BPP);
    EXPECT_FALSE(EngAssociateSurface(surface.hsurf, reinterpret_cast<HDEV>(std::uintptr_t{4}), 0x4EB));
    EXPECT_EQ(surface.hooks, 0U);
    ULONG entries[] = {0x000000, 0x0000FF, 0xFFFFFFFF};
    Device device;
    device.palette = paletteOf(EngCreatePalette(PAL_INDEXED, 3, entries, 0, 0, 0));
    const HDEV handle = registerDevice(device);
    EXPECT_FALSE(EngAssociateSurface(reinterpret_cast<HSURF>(std::uintptr_t{4}), handle, 0x4EB));
    ASSERT_TRUE(EngAssociateSurface(surface.hsurf, handle, 0x4EB));
    EXPECT_EQ(surface.hooks, 0x4EBU);
    EXPECT_EQ(surface.hdev, handle);
    EXPECT_EQ(nearestPixel(surface, 0x0000F0), 1U);
    EXPECT_TRUE(hasExactColour(surface, 0xFFFFFF));
    EXPECT_FALSE(hasExactColour(surface, 0x00FF00));
    ASSERT_TRUE(EngMarkBandingSurface(surface.hsurf));
    EXPECT_TRUE(surface.banding);
}

TEST_F(Surface, abort_asksTheHookForSurfacesOnly) {
    EngineSurface& surface = makeBitmap(4, 4, BMF_8BPP);
    EXPECT_FALSE(EngCheckAbort(&surface));
    int asked = 0;
    engineState().abortRequested = [&asked] { return ++asked >= 2; };
    SURFOBJ foreign{};
    EXPECT_FALSE(EngCheckAbort(&foreign));
    EXPECT_FALSE(EngCheckAbort(nullptr));
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(EngCheckAbort(&surface));
    EXPECT_TRUE(EngCheckAbort(&surface));
}

TEST_F(Surface, sources_comeFromImagesOfEveryDepth) {
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        Image image{.width = 5, .height = 3, .bitsPerPixel = bits, .rowBytes = 20};
        image.bits.assign(60, 0);
        image.bits[0] = 0xFF;  // lowest row of a bottom-up image
        const auto surface = makeSource(image);
        ASSERT_NE(surface, nullptr) << bits;
        EXPECT_NE(pixelAt(*surface, 0, 2), 0U) << bits;
        EXPECT_EQ(pixelAt(*surface, 0, 0), 0U) << bits;
        EXPECT_EQ(surfaceOf(surface->hsurf), surface.get());
        image.topDown = true;
        EXPECT_NE(pixelAt(*makeSource(image), 0, 0), 0U) << bits;
    }
    EXPECT_EQ(liveSurfaces(), 0U);
}

TEST_F(Surface, sourcesThatLie_areRefused) {
    Image good{.width = 5, .height = 3, .bitsPerPixel = 8, .rowBytes = 8};
    good.bits.assign(21, 7);  // the last row without its padding
    EXPECT_NE(makeSource(good), nullptr);
    const auto refused = [&good](auto change) {
        Image bad = good;
        change(bad);
        return makeSource(bad) == nullptr;
    };
    EXPECT_TRUE(refused([](Image& i) { i.bits.pop_back(); }));
    EXPECT_TRUE(refused([](Image& i) { i.width = 0; }));
    EXPECT_TRUE(refused([](Image& i) { i.width = -5; }));
    EXPECT_TRUE(refused([](Image& i) { i.height = -3; }));
    EXPECT_TRUE(refused([](Image& i) { i.width = 9; }));
    EXPECT_TRUE(refused([](Image& i) { i.rowBytes = 0; }));
    EXPECT_TRUE(refused([](Image& i) { i.rowBytes = 0x7FFFFFFF; }));
    EXPECT_TRUE(refused([](Image& i) { i.bitsPerPixel = 7; }));
    EXPECT_TRUE(refused([](Image& i) { i.compression = BI_JPEG; }));
    EXPECT_TRUE(refused([](Image& i) { i.compression = BI_RLE4; }));
    EXPECT_TRUE(refused([](Image& i) {
        i.compression = BI_RLE8;
        i.topDown = true;
    }));
}

TEST_F(Surface, runLengths_areDecodedWithinThePicture) {
    Image image{.width = 6, .height = 3, .bitsPerPixel = 8, .compression = BI_RLE8};
    image.bits = {3, 1, 0, 3, 4, 5, 6, 0, 0, 0,  // run, literal of three with padding, end of line
                  9, 2, 0, 0,                    // a run over the end of the row
                  0, 2, 2, 0, 1, 7, 0, 1};       // a move, one pixel, end
    EXPECT_EQ(picture(*makeSource(image)), "..7...\n222222\n111456\n");

    Image nibbles{.width = 6, .height = 3, .bitsPerPixel = 4, .compression = BI_RLE4};
    nibbles.bits = {5, 0x12, 0, 0, 0, 3, 0x34, 0x50, 2, 0xAB, 0, 2, 0, 99, 4, 0x11};
    EXPECT_EQ(picture(*makeSource(nibbles)), "......\n345AB.\n12121.\n");
}

TEST_F(Surface, runLengths_everyCutOfTheDataIsHarmless) {
    const std::vector<std::uint8_t> whole = {3, 1, 0, 3, 4, 5, 6, 0, 0, 0, 9, 2, 0, 0, 0, 2, 2, 0, 1, 7, 0, 1};
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        Image image{.width = 6, .height = 3, .bitsPerPixel = 8, .compression = BI_RLE8};
        image.bits.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NE(makeSource(image), nullptr) << length;
    }
}
