// Dumps of surfaces as BMP files: their names, their bytes, and what is left when they cannot be made.
#include "raster/BitmapDump.h"

#include "driver/DriverFixture.h"
#include "raster/BitmapInfo.h"
#include "support/FailingCalls.h"

namespace morvil::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

std::uint32_t number(const std::string& bytes, std::size_t at, std::size_t size = 4) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes.at(at + i))) << 8 * i;
    return value;
}

class BitmapDump : public DriverTest {
  protected:
    SURFOBJ& surface(WORD mode) {
        if (pdev == nullptr) enable();
        pdev->configuration().processMode = mode;
        enableSurface();
        auto& bits = engine.surfaces.at(pso->hsurf)->bits;
        for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = static_cast<std::uint8_t>(i * 5);
        clearLogs();
        return *pso;
    }
    [[nodiscard]] std::string bits() const {
        const auto& bytes = engine.surfaces.at(pso->hsurf)->bits;
        return {bytes.begin(), bytes.end()};
    }
    [[nodiscard]] std::vector<std::string> dumps() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(home.folder())) {
            if (entry.path().extension() == ".bmp") names.push_back(entry.path().filename().string());
        }
        return names;
    }
};

TEST_F(BitmapDump, without_bitmap_path_or_context_is_the_first_error) {
    const HBITMAP bitmap = bitmapOf(surface(kModeRelief));
    EXPECT_EQ(dumpBitmap(nullptr, TEXT("C:\\a.bmp")), 1);
    EXPECT_EQ(dumpBitmap(bitmap, nullptr), 1);
    contexts.failingCall = "CreateCompatibleDC";
    contexts.failingNumber = contexts.calls["CreateCompatibleDC"] + 1;
    EXPECT_EQ(dumpBitmap(bitmap, TEXT("C:\\a.bmp")), 1);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! dumpBitmap, Error 1", "!!! dumpBitmap, Error 1", "!!! dumpBitmap, Error 1"));
    EXPECT_THAT(dumps(), IsEmpty());
}

TEST_F(BitmapDump, without_header_or_palette_is_the_second) {
    const HBITMAP bitmap = bitmapOf(surface(kModeRelief));
    for (const int call : {1, 2, 3}) {
        clearLogs();
        contexts.calls.clear();
        contexts.failingCall = "GetDIBits";
        contexts.failingNumber = call;
        EXPECT_EQ(dumpBitmap(bitmap, TEXT("C:\\a.bmp")), 1);
        EXPECT_EQ(morvilLog().back(), "!!! dumpBitmap, Error 2") << call;
        clearLogs();
        contexts.calls.clear();
        EXPECT_EQ(dumpBitmap3(bitmap, engine.surfaces.at(pso->hsurf)->bits), 1);
        EXPECT_EQ(morvilLog().back(), "!!! dumpBitmap3, Error2") << call;
    }
    EXPECT_THAT(dumps(), IsEmpty());
}

TEST_F(BitmapDump, without_bits_is_the_third) {
    const HBITMAP bitmap = bitmapOf(surface(kModeRelief));
    for (const int call : {4, 5, 6}) {
        clearLogs();
        contexts.calls.clear();
        contexts.failingCall = "GetDIBits";
        contexts.failingNumber = call;
        EXPECT_EQ(dumpBitmap(bitmap, TEXT("C:\\a.bmp")), 1);
        EXPECT_EQ(morvilLog().back(), "!!! dumpBitmap, Error 3") << call;
    }
    EXPECT_THAT(dumps(), IsEmpty());
}

TEST_F(BitmapDump, given_bits_are_needed_and_enough_of_them) {
    const SURFOBJ& page = surface(kModeRelief);
    std::vector<std::uint8_t> tooFew(7999);
    EXPECT_EQ(dumpBitmap3(nullptr, tooFew), 1);
    EXPECT_EQ(dumpBitmap3(bitmapOf(page), {}), 1);
    EXPECT_EQ(dumpBitmap3(bitmapOf(page), tooFew), 1);
    EXPECT_THAT(morvilLog(), ElementsAre("!!! dumpBitmap3, Error1", "!!! dumpBitmap3, Error1", "!!! dumpBitmap3, Error2"));
    EXPECT_THAT(dumps(), IsEmpty());
}

TEST_F(BitmapDump, a_full_disk_leaves_no_file) {
    const HBITMAP bitmap = bitmapOf(surface(kModeRelief));
    for (int n = 1;; ++n) {
        clearLogs();
        int failed = 0;
        {
            FailingCalls faults(n, Fault::Transient, "write");
            dumpBitmap(bitmap, TEXT("C:\\a.bmp"));
            failed = faults.fired();
        }
        if (failed == 0) break;
        EXPECT_THAT(dumps(), IsEmpty()) << n;
        if (n <= 4) {
            EXPECT_THAT(morvilLog(), Contains(StartsWith("!!! dumpBitmap, C:\\a.bmp not written, Error="))) << n;
        }
    }
    EXPECT_THAT(dumps(), ElementsAre("a.bmp"));
    EXPECT_EQ(dumpBitmap(bitmap, TEXT("C:\\nowhere\\a.bmp")), 1);
    EXPECT_EQ(morvilLog().back(), "!!! dumpBitmap, C:\\nowhere\\a.bmp not opened, Error=3");
}

TEST_F(BitmapDump, is_a_bitmap_file) {
    static const struct {
        WORD mode;
        WORD bits;
        std::uint32_t offset;
        std::size_t pixels;
    } cases[] = {{kModeStamp, 1, 1078, 1280}, {kModeRelief, 8, 1078, 8000}, {kModeTest4, 24, 54, 24000}};
    for (const auto& entry : cases) {
        const HBITMAP bitmap = bitmapOf(surface(entry.mode));
        contexts.surfacePalette.assign(std::size_t{1} << std::min<int>(entry.bits, 8), RGBQUAD{10, 20, 30, 0});
        if (entry.bits == 24) contexts.surfacePalette.clear();
        ASSERT_EQ(dumpBitmap(bitmap, TEXT("C:\\a.bmp")), 1);
        const std::string file = readBytes(TEXT("C:\\a.bmp"));
        ASSERT_EQ(file.size(), entry.offset + entry.pixels) << entry.bits;
        EXPECT_EQ(file.substr(0, 2), "BM");
        EXPECT_EQ(number(file, 2), file.size());
        EXPECT_EQ(number(file, 6), 0U);
        EXPECT_EQ(number(file, 10), entry.offset);
        EXPECT_EQ(number(file, 14), 40U);
        EXPECT_EQ(number(file, 18), 100U);
        EXPECT_EQ(number(file, 22), 80U);
        EXPECT_EQ(number(file, 28, 2), entry.bits);
        EXPECT_EQ(file.substr(entry.offset), bits());
        if (entry.bits < 24) {
            EXPECT_EQ(number(file, 54), 0x1E140AU) << entry.bits;
        }
        if (entry.bits == 1) {
            EXPECT_EQ(number(file, 62), 0U) << "entries beyond the palette are black";
        }
        EXPECT_THAT(morvilLog(), IsEmpty());
    }
}

TEST_F(BitmapDump, given_bits_are_written_as_they_lie) {
    const SURFOBJ& page = surface(kModeRelief);
    std::vector<std::uint8_t> given(8000 + 5, 0x5A);
    EXPECT_EQ(dumpBitmap3(bitmapOf(page), given), 1);
    EXPECT_EQ(readBytes(TEXT("C:\\drvBitBltSrc3_1000.bmp")).substr(1078), std::string(8000, '\x5A'));
}

TEST_F(BitmapDump, takes_the_first_free_number) {
    const HBITMAP bitmap = bitmapOf(surface(kModeRelief));
    writeBytes(TEXT("C:\\drvsendpage_1000.bmp"), "mine");
    dumpSurface(bitmap, TEXT("drvsendpage_"));
    dumpSurface(bitmap, TEXT("drvsendpage_"));
    dumpSurface(bitmap, TEXT("other_"));
    EXPECT_THAT(dumps(), UnorderedElementsAre("drvsendpage_1000.bmp", "drvsendpage_1001.bmp", "drvsendpage_1002.bmp", "other_1000.bmp"));
    EXPECT_EQ(readBytes(TEXT("C:\\drvsendpage_1000.bmp")), "mine");
}

TEST_F(BitmapDump, overwrites_the_last_when_all_numbers_are_taken) {
    const HBITMAP bitmap = bitmapOf(surface(kModeRelief));
    for (int n = 1000; n <= 11000; ++n) writeHostBytes(home.folder() / ("x_" + std::to_string(n) + ".bmp"), "");
    dumpSurface(bitmap, TEXT("x_"));
    EXPECT_EQ(readBytes(TEXT("C:\\x_11000.bmp")).size(), 9078U);
    EXPECT_EQ(readBytes(TEXT("C:\\x_10999.bmp")).size(), 0U);
    EXPECT_FALSE(exists(TEXT("C:\\x_11001.bmp")));
}

TEST_F(BitmapDump, follows_the_switch) {
    static const struct {
        DWORD dump;
        std::vector<std::string> files;
    } cases[] = {{0, {}},
                 {1,
                  {"drvsendpage_1000.bmp", "colorAdjustment_1000.bmp", "colorAdjustment_1001.bmp", "drvBitBltSrc_1000.bmp", "drvBitBltSrc3_1000.bmp",
                   "DrvStretchBlt_Src_1000.bmp", "DrvStretchBlt_Dst_1000.bmp"}}};
    configuration().processMode = kModeRelief;
    configuration().flags = MV_FL_IMAGEOP_COLORADJUSTMENT;
    startPage();
    RECTL area{0, 0, 10, 10};
    POINTL origin{0, 0};
    for (const auto& entry : cases) {
        pdev->configuration().dumpBitmaps = entry.dump;
        EXPECT_EQ(DrvSendPage(pso), TRUE);
        DrvBitBlt(pso, pso, nullptr, nullptr, nullptr, &area, &origin, nullptr, nullptr, nullptr, 0xCCCC);
        DrvStretchBlt(pso, pso, nullptr, nullptr, nullptr, nullptr, nullptr, &area, &area, nullptr, COLORONCOLOR);
        EXPECT_THAT(dumps(), testing::UnorderedElementsAreArray(entry.files));
    }
}

// The picture before the adjustment and the one behind it: the contexts of this test invert.
TEST_F(BitmapDump, shows_the_page_before_and_after_adjustment) {
    configuration().processMode = kModeRelief;
    configuration().flags = MV_FL_IMAGEOP_COLORADJUSTMENT;
    configuration().dumpBitmaps = 1;
    startPage();
    const std::string before = bits();
    EXPECT_EQ(DrvSendPage(pso), TRUE);
    EXPECT_EQ(readBytes(TEXT("C:\\colorAdjustment_1000.bmp")).substr(1078), before);
    EXPECT_EQ(readBytes(TEXT("C:\\colorAdjustment_1001.bmp")).substr(1078), bits());
    EXPECT_NE(before, bits());
}

}  // namespace
}  // namespace morvil::test
