// Colour adjustment and mirroring of the page surface, against memory contexts that can refuse each call.
#include "raster/ImageOperations.h"

#include <cstring>

#include "driver/DriverFixture.h"
#include "raster/BitmapInfo.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

constexpr const char* kLockFailed = "!!! FilleSurface Fehler bei EngLockSurface";

class ImageOperations : public DriverTest {
  protected:
    ImageOperations() {
        configuration().processMode = kModeRelief;  // 8 bits a pixel
        enableSurface();
        auto& bits = engine.surfaces.at(pso->hsurf)->bits;
        for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = static_cast<std::uint8_t>(i * 7);
        before = bits;
        clearLogs();
    }
    ~ImageOperations() override { EXPECT_TRUE(nothingLeft()); }

    [[nodiscard]] bool nothingLeft() const { return contexts.contexts.empty() && contexts.sections.empty(); }
    [[nodiscard]] const std::vector<std::uint8_t>& bits() const { return engine.surfaces.at(pso->hsurf)->bits; }
    [[nodiscard]] std::vector<std::uint8_t> inverted() const {
        std::vector<std::uint8_t> result = before;
        for (std::uint8_t& byte : result) byte = static_cast<std::uint8_t>(~byte);
        return result;
    }
    // Messages of the log without the empty lines that texts with a line end of their own leave behind.
    [[nodiscard]] static std::vector<std::string> lines() {
        std::vector<std::string> all = morvilLog();
        std::erase(all, "");
        return all;
    }

    std::vector<std::uint8_t> before;
    COLORADJUSTMENT adjustment{.caSize = 24, .caFlags = CA_NEGATIVE, .caRedGamma = 12345, .caContrast = -7};
};

TEST_F(ImageOperations, an_unlockable_surface_stays_as_it_was) {
    engine.locks = false;
    EXPECT_EQ(doColorAdjustment(*pso, adjustment), 0);
    EXPECT_THAT(lines(), ElementsAre("doColorAdjustment", kLockFailed));
    clearLogs();
    EXPECT_EQ(doFlipHorizontal(*pso), 0);
    EXPECT_THAT(lines(), ElementsAre("doFlipHorizontal", kLockFailed));
    EXPECT_EQ(bits(), before);
    EXPECT_THAT(contexts.calls, IsEmpty());
}

TEST_F(ImageOperations, a_surface_without_bits_is_left_alone) {
    pso->pvBits = nullptr;
    EXPECT_EQ(doColorAdjustment(*pso, adjustment), 0);
    EXPECT_EQ(doFlipHorizontal(*pso), 0);
    EXPECT_THAT(contexts.calls, IsEmpty());
    EXPECT_THAT(lines(), ElementsAre("doColorAdjustment", "doColorAdjustment finished", "doFlipHorizontal", "doFlipHorizontal finished"));
    EXPECT_EQ(engine.count("EngUnlockSurface"), 2U);
}

struct Refusal {
    const char* call;
    int number;
    const char* error;  // logged by the adjustment
};
std::string nameOf(const testing::TestParamInfo<Refusal>& tested) { return std::string(tested.param.call) + std::to_string(tested.param.number); }

class RefusedOperation : public ImageOperations, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedOperation, leaves_the_adjusted_surface_as_it_was) {
    contexts.failingCall = GetParam().call;
    contexts.failingNumber = GetParam().number;
    EXPECT_EQ(doColorAdjustment(*pso, adjustment), 0);
    EXPECT_EQ(bits(), before);
    EXPECT_EQ(contexts.calls[GetParam().call] >= GetParam().number, true) << "the call was never made";
    EXPECT_EQ(lines().back(), "doColorAdjustment finished");
    EXPECT_THAT(lines(), Contains(GetParam().error));
    EXPECT_EQ(engine.count("EngUnlockSurface"), 1U);
}

TEST_P(RefusedOperation, leaves_the_mirrored_surface_as_it_was) {
    contexts.failingCall = GetParam().call;
    contexts.failingNumber = GetParam().number;
    EXPECT_EQ(doFlipHorizontal(*pso), 0);
    EXPECT_EQ(bits(), before);
    EXPECT_EQ(lines().back(), "doFlipHorizontal finished");
    EXPECT_EQ(engine.count("EngUnlockSurface"), 1U);
}

INSTANTIATE_TEST_SUITE_P(Calls, RefusedOperation,
                         testing::Values(Refusal{"CreateCompatibleDC", 1, "!!! doColorAdjustment Error SelectObject"},
                                         Refusal{"CreateCompatibleDC", 2, "!!! getBitmapInfo, Error 1"},
                                         Refusal{"CreateCompatibleDC", 3, "!!! getColorTable, Error 2, LastError=1400"},
                                         Refusal{"GetDIBits", 1, "!!! getBitmapInfo, Error 1"},
                                         Refusal{"GetDIBits", 2, "!!! getColorTable, Error 2, LastError=1400"},
                                         Refusal{"GetDIBits", 3, "!!! getColorTable 2, Error=1400"},
                                         Refusal{"CreateDIBSection", 1, "!!! doColorAdjustment Error SelectObject"},
                                         Refusal{"CreateDIBSection", 2, "!!! doColorAdjustment Error SelectObject"},
                                         Refusal{"SelectObject", 1, "!!! doColorAdjustment Error SelectObject"},
                                         Refusal{"SelectObject", 2, "!!! doColorAdjustment Error SelectObject"},
                                         Refusal{"StretchBlt", 1, "!!! doColorAdjustment Error StretchBlt"}),
                         nameOf);

TEST_F(ImageOperations, mirrored_bits_that_cannot_be_read_back_change_nothing) {
    for (const int call : {4, 5, 6}) {  // after the three that describe the surface: size, size again, bits
        contexts.calls.clear();
        contexts.failingCall = "GetDIBits";
        contexts.failingNumber = call;
        EXPECT_EQ(doFlipHorizontal(*pso), 0) << call;
        EXPECT_EQ(bits(), before) << call;
    }
    EXPECT_THAT(lines(), IsSupersetOf({"!!! getBuffer Error1=1400", "!!! getBuffer Error1=1400", "!!! getBuffer Error2=1400"}));
}

TEST_F(ImageOperations, a_lack_of_memory_is_logged_and_changes_nothing) {
    const auto linesWithout = [this](int allocation, const auto& operation) {
        clearLogs();
        {
            const FailingCalls faults(allocation, Fault::Transient, "allocate");
            EXPECT_EQ(operation(), 0);
            EXPECT_EQ(faults.fired(), 1);
        }
        EXPECT_EQ(bits(), before);
        EXPECT_TRUE(nothingLeft());
        return lines();
    };
    const auto adjust = [this] { return doColorAdjustment(*pso, adjustment); };
    const auto flip = [this] { return doFlipHorizontal(*pso); };
    EXPECT_THAT(linesWithout(1, adjust), ElementsAre("doColorAdjustment", "!!! doColorAdjustment, no memory for the bitmap's header", "doColorAdjustment finished"));
    EXPECT_THAT(linesWithout(1, flip), ElementsAre("doFlipHorizontal", "!!! doFlipHorizontal, no memory for the bitmap's header", "doFlipHorizontal finished"));
    // The second is the row of the palette, the third what the mirrored bits are read into.
    EXPECT_THAT(linesWithout(3, flip), ElementsAre("doFlipHorizontal", "!!! doFlipHorizontal, no memory for 8000 bytes", "doFlipHorizontal finished"));
}

// The transfer goes on with the context's own adjustment, which is none.
TEST_F(ImageOperations, a_refused_adjustment_is_logged) {
    contexts.failingCall = "SetColorAdjustment";
    contexts.failingNumber = 1;
    doColorAdjustment(*pso, adjustment);
    EXPECT_THAT(lines(), Contains("!!! doColorAdjustment Error SetColorAdjustment"));
    EXPECT_EQ(lines().back(), "doColorAdjustment finished");
}

TEST_F(ImageOperations, the_adjusted_bits_stand_in_the_surface) {
    EXPECT_EQ(doColorAdjustment(*pso, adjustment), 0);
    EXPECT_EQ(bits(), inverted());
    ASSERT_EQ(contexts.stretches.size(), 1U);
    const StretchRequest& asked = contexts.stretches.front();
    EXPECT_EQ(asked.mode, HALFTONE);
    EXPECT_EQ(asked.rop, 0xCC0020U);
    EXPECT_EQ(asked.adjustment.caRedGamma, 12345);
    EXPECT_EQ(asked.adjustment.caContrast, -7);
    EXPECT_THAT((std::vector{asked.x, asked.y, asked.width, asked.height}), ElementsAre(0, 0, 100, 80));
    EXPECT_THAT((std::vector{asked.sourceX, asked.sourceY, asked.sourceWidth, asked.sourceHeight}), ElementsAre(0, 0, 100, 80));
    const std::string handles = "doColorAdjustment, hMemDstDC=" + toUtf8(format(TEXT("%X, hMemSrcDC=%X"), low32(asked.to), low32(asked.from)));
    EXPECT_THAT(lines(), ElementsAre("doColorAdjustment", handles, "doColorAdjustment 100", "doColorAdjustment 110", "doColorAdjustment 120",
                                     "doColorAdjustment 130", "doColorAdjustment 140", "doColorAdjustment 150", "doColorAdjustment 160",
                                     "doColorAdjustment finished"));
}

TEST_F(ImageOperations, the_mirrored_bits_stand_in_the_surface) {
    EXPECT_EQ(doFlipHorizontal(*pso), 1);
    EXPECT_EQ(bits(), inverted());
    ASSERT_EQ(contexts.stretches.size(), 1U);
    const StretchRequest& asked = contexts.stretches.front();
    EXPECT_EQ(asked.mode, COLORONCOLOR);
    EXPECT_EQ(asked.rop, SRCCOPY);
    EXPECT_THAT((std::vector{asked.x, asked.y, asked.width, asked.height}), ElementsAre(0, 0, 100, 80));
    EXPECT_THAT((std::vector{asked.sourceX, asked.sourceY, asked.sourceWidth, asked.sourceHeight}), ElementsAre(99, 0, -100, 80));
    EXPECT_THAT(lines(), ElementsAre("doFlipHorizontal", "doFlipHorizontal finished"));
}

class BitmapInfo : public ImageOperations {
  protected:
    HBITMAP surface = bitmapOf(*pso);
    HDC dc = CreateCompatibleDC(nullptr);
    BitmapInfoBlock info{};

    void SetUp() override { contexts.calls.clear(); }
    void TearDown() override { DeleteDC(dc); }
};

TEST_F(BitmapInfo, nothing_is_known_of_nothing) {
    EXPECT_EQ(getBitmapInfo(dc, nullptr, &info), 0);
    EXPECT_EQ(getBitmapInfo(dc, surface, nullptr), 0);
    EXPECT_EQ(getColorTable(nullptr, &info), 0);
    EXPECT_EQ(getColorTable(surface, nullptr), 0);
    EXPECT_EQ(getBuffer(nullptr, nullptr), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(BitmapInfo, describing_clears_the_header_and_one_colour) {
    std::memset(&info, 0xEE, sizeof(info));
    EXPECT_EQ(getBitmapInfo(dc, surface, &info), 1);
    EXPECT_EQ(info.header.biSize, 40U);
    EXPECT_EQ(info.header.biWidth, 100);
    EXPECT_EQ(info.header.biHeight, 80);
    EXPECT_EQ(info.header.biBitCount, 8);
    EXPECT_EQ(info.header.biSizeImage, 8000U);
    EXPECT_EQ(info.palette[0].rgbBlue, 0);
    EXPECT_EQ(info.palette[1].rgbBlue, 0xEE);
}

TEST_F(BitmapInfo, what_cannot_be_described_is_logged) {
    EXPECT_EQ(getBitmapInfo(nullptr, surface, &info), 0);
    EXPECT_THAT(lines(), ElementsAre("!!! getBitmapInfo, Error 1"));
}

TEST_F(BitmapInfo, the_palette_comes_with_a_row) {
    contexts.surfacePalette.assign(256, RGBQUAD{1, 2, 3, 0});
    std::memset(&info, 0xEE, sizeof(info));
    EXPECT_EQ(getColorTable(surface, &info), 1);
    EXPECT_EQ(info.palette[255].rgbRed, 3);
    EXPECT_EQ(contexts.calls["GetDIBits"], 2);
}

// The second reading fails: black and white serve bitmaps of 1 and 24 bits.
TEST_F(BitmapInfo, a_missing_palette_matters_to_8_bits_only) {
    static const struct {
        WORD mode;
        int result;
        const char* bitmap;
    } cases[] = {{kModeRelief, 0, "!!! Size=40, biSizeImage=8000, Width=100, Height=80, biBitCount=8, Compression=0, Planes=1"},
                 {kModeStamp, 1, "!!! Size=40, biSizeImage=1280, Width=100, Height=80, biBitCount=1, Compression=0, Planes=1"},
                 {kModeTest4, 1, "!!! Size=40, biSizeImage=24000, Width=100, Height=80, biBitCount=24, Compression=0, Planes=1"}};
    for (const auto& entry : cases) {
        pdev->configuration().processMode = entry.mode;
        enableSurface();
        clearLogs();
        contexts.calls.clear();
        contexts.failingCall = "GetDIBits";
        contexts.failingNumber = 2;
        EXPECT_EQ(getColorTable(bitmapOf(*pso), &info), entry.result) << entry.mode;
        EXPECT_THAT(lines(), ElementsAre("!!! getColorTable 2, Error=1400", entry.bitmap));
        EXPECT_EQ(info.palette[0].rgbRed, 0);
        EXPECT_EQ(info.palette[1].rgbBlue, 0xFF);
        EXPECT_EQ(info.palette[1].rgbGreen, 0xFF);
        EXPECT_EQ(info.palette[1].rgbRed, 0xFF);
        EXPECT_EQ(info.palette[1].rgbReserved, 0);
    }
}

TEST_F(BitmapInfo, a_buffer_is_asked_for_and_filled) {
    EXPECT_EQ(getBuffer(surface, nullptr), 8000U);
    std::vector<std::uint8_t> read(8000);
    EXPECT_EQ(getBuffer(surface, read.data()), 8000U);
    EXPECT_EQ(read, before);
}

}  // namespace
}  // namespace morvil::test
