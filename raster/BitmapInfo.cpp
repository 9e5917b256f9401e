#include "raster/BitmapInfo.h"

#include <cstddef>
#include <cstring>

#include "driver/log/Log.h"
#include "platform/common/LocalBlock.h"
#include "raster/MemoryContext.h"

namespace morvil {

namespace {

// The header and the first colour, which is as far as a description without a palette may reach.
constexpr std::size_t kDescriptionBytes = 44;

bool describe(HDC dc, HBITMAP bitmap, BitmapInfoBlock& info) {
    info.header.biSize = sizeof(info.header);
    return GetDIBits(dc, bitmap, 0, 0, nullptr, infoOf(&info), DIB_RGB_COLORS) != 0;
}

UINT rowsOf(const BitmapInfoBlock& info) { return static_cast<UINT>(info.header.biHeight < 0 ? -info.header.biHeight : info.header.biHeight); }

// Reading any row makes the system fill the palette.
bool readOneRow(HDC dc, HBITMAP bitmap, BitmapInfoBlock& info) {
    const UINT rows = rowsOf(info);
    if (rows == 0) return false;
    const LocalBlock<std::uint8_t> row(info.header.biSizeImage / rows);
    return !row.span().empty() && GetDIBits(dc, bitmap, 0, 1, row.get(), infoOf(&info), DIB_RGB_COLORS) != 0;
}

void logMissingPalette(const BITMAPINFOHEADER& header) {
    logMorvil(1, kError, TEXT("getColorTable 2, Error=%s"), format(TEXT("%d"), GetLastError()).c_str(), kLogEnd);
    logMorvil(1, kError, TEXT("Size=%d, biSizeImage=%d, Width=%d, Height=%d, biBitCount=%d, Compression=%d, Planes=%d"), header.biSize,
              header.biSizeImage, header.biWidth, header.biHeight, header.biBitCount, header.biCompression, header.biPlanes, kLogEnd);
}

}  // namespace

int getBitmapInfo(HDC dc, HBITMAP bitmap, BitmapInfoBlock* info) {
    if (bitmap == nullptr || info == nullptr) return 0;
    std::memset(info, 0, kDescriptionBytes);
    if (describe(dc, bitmap, *info)) return 1;
    logMorvil(1, kError, TEXT("getBitmapInfo, Error 1"), kLogEnd);
    return 0;
}

int getColorTable(HBITMAP bitmap, BitmapInfoBlock* info) {
    if (bitmap == nullptr || info == nullptr) return 0;
    *info = {};
    const MemoryContext context;
    if (!describe(context.get(), bitmap, *info)) {
        logMorvil(1, kError, TEXT("getColorTable, Error 2, LastError=%d"), GetLastError(), kLogEnd);
        return 0;
    }
    info->palette[0] = {0x00, 0x00, 0x00, 0};
    info->palette[1] = {0xFF, 0xFF, 0xFF, 0};
    if (readOneRow(context.get(), bitmap, *info)) return 1;
    logMissingPalette(info->header);
    return info->header.biBitCount == 1 || info->header.biBitCount == 24 ? 1 : 0;
}

std::uint32_t getBuffer(HBITMAP bitmap, void* buffer) {
    if (bitmap == nullptr) return 0;
    const MemoryContext context;
    BitmapInfoBlock info{};
    if (!describe(context.get(), bitmap, info)) {
        logMorvil(1, kError, TEXT("getBuffer Error1=%d"), GetLastError(), kLogEnd);
        return 0;
    }
    if (buffer == nullptr) return info.header.biSizeImage;
    const std::uint32_t bytes = info.header.biSizeImage;
    if (GetDIBits(context.get(), bitmap, 0, rowsOf(info), buffer, infoOf(&info), DIB_RGB_COLORS) == 0) {
        logMorvil(1, kError, TEXT("getBuffer Error2=%d"), GetLastError(), kLogEnd);
        return 0;
    }
    return bytes;
}

}  // namespace morvil
