#include "raster/BitmapDump.h"

#include <algorithm>
#include <cstring>

#include "driver/log/Log.h"
#include "platform/common/FileStream.h"
#include "platform/common/LocalBlock.h"
#include "raster/BitmapInfo.h"
#include "raster/MemoryContext.h"

namespace morvil {

namespace {

constexpr int kFirstNumber = 1000;
constexpr int kLastNumber = 11000;

WString freePath(const WCHAR* prefix) {
    WString path;
    for (int number = kFirstNumber; number <= kLastNumber; ++number) {
        path = format(TEXT("C:\\%s%d.bmp"), prefix, number);
        if (!fileExists(path.c_str())) break;
    }
    return path;
}

std::uint64_t rowBytesOf(const BITMAPINFOHEADER& header) {
    return (static_cast<std::uint64_t>(std::max<LONG>(header.biWidth, 0)) * header.biBitCount + 31) / 32 * 4;
}

std::uint64_t pixelBytesOf(const BITMAPINFOHEADER& header) {
    const std::int64_t rows = header.biHeight;
    return rowBytesOf(header) * static_cast<std::uint64_t>(rows < 0 ? -rows : rows);
}

std::span<const std::uint8_t> bytesOf(const void* data, std::size_t size) { return {static_cast<const std::uint8_t*>(data), size}; }

// Below 24 bits the palette always has 256 entries, whatever the header says.
bool writeFile(FileStream& file, const BitmapInfoBlock& info, std::span<const std::uint8_t> pixels) {
    const bool hasPalette = info.header.biBitCount < 24;
    const DWORD offset = info.header.biSize + DWORD{sizeof(BITMAPFILEHEADER)} + (hasPalette ? DWORD{sizeof(info.palette)} : 0U);
    const BITMAPFILEHEADER header{.bfType = 0x4D42,  // "BM"
                                  .bfSize = static_cast<DWORD>(offset + pixels.size()),
                                  .bfReserved1 = 0,
                                  .bfReserved2 = 0,
                                  .bfOffBits = offset};
    return file.write(bytesOf(&header, sizeof(header))) && file.write(bytesOf(&info.header, info.header.biSize)) &&
           (!hasPalette || file.write(bytesOf(info.palette, sizeof(info.palette)))) && file.write(pixels);
}

void save(const WCHAR* path, const BitmapInfoBlock& info, std::span<const std::uint8_t> pixels) {
    FileStream file(path, OpenMode::Create);
    if (!file.isOpen()) {
        logMorvil(1, kError, TEXT("dumpBitmap, %s not opened, Error=%d"), path, GetLastError(), kLogEnd);
        return;
    }
    const bool written = writeFile(file, info, pixels);
    const DWORD error = GetLastError();
    if (file.close() && written) return;
    logMorvil(1, kError, TEXT("dumpBitmap, %s not written, Error=%d"), path, error, kLogEnd);
    DeleteFileW(path);
}

bool describe(const MemoryContext& context, HBITMAP bitmap, BitmapInfoBlock& info) {
    return getBitmapInfo(context.get(), bitmap, &info) != 0 && getColorTable(bitmap, &info) != 0;
}

void logError(const WCHAR* text) { logMorvil(1, kError, text, kLogEnd); }

}  // namespace

int dumpBitmap(HBITMAP bitmap, const WCHAR* path) {
    const MemoryContext context;
    if (context.get() == nullptr || bitmap == nullptr || path == nullptr) {
        logError(TEXT("dumpBitmap, Error 1"));
        return 1;
    }
    BitmapInfoBlock info{};
    if (!describe(context, bitmap, info)) {
        logError(TEXT("dumpBitmap, Error 2"));
        return 1;
    }
    const LocalBlock<std::uint8_t> bits(getBuffer(bitmap, nullptr));
    const std::uint64_t wanted = pixelBytesOf(info.header);
    if (bits.span().empty() || bits.span().size() < wanted || getBuffer(bitmap, bits.get()) == 0) {
        logError(TEXT("dumpBitmap, Error 3"));
        return 1;
    }
    save(path, info, bits.span().first(static_cast<std::size_t>(wanted)));
    return 1;
}

int dumpBitmap3(HBITMAP bitmap, std::span<const std::uint8_t> bits) {
    const MemoryContext context;
    if (context.get() == nullptr || bitmap == nullptr || bits.empty()) {
        logError(TEXT("dumpBitmap3, Error1"));
        return 1;
    }
    BitmapInfoBlock info{};
    if (!describe(context, bitmap, info) || pixelBytesOf(info.header) > bits.size()) {
        logError(TEXT("dumpBitmap3, Error2"));
        return 1;
    }
    save(freePath(TEXT("drvBitBltSrc3_")).c_str(), info, bits.first(static_cast<std::size_t>(pixelBytesOf(info.header))));
    return 1;
}

void dumpSurface(HBITMAP bitmap, const WCHAR* prefix) { dumpBitmap(bitmap, freePath(prefix).c_str()); }

}  // namespace morvil
