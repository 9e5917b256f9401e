// Tracing.cpp - the tracing mode: keeps the page as three true-colour pictures in the spool folder (whole, only what is red,
// without what is red), and makes red polygons of the outlines that the tracer library finds in the second.
#include <algorithm>
#include <cstring>
#include <vector>

#include "driver/log/Log.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "jobfile/TracerLibrary.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr std::uint32_t kRed = 0x0000FF;  // 0x00BBGGRR
constexpr std::uint32_t kBlockBytes = 1U << 20;
constexpr std::uint32_t kPixelBytes = 3;  // blue, green, red

WString utcStamp() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    return format(TEXT("%02d%02d%02d"), now.wHour, now.wMinute, now.wSecond);
}

void keepRed(std::span<std::uint8_t> row) {
    for (std::size_t at = 0; at < row.size(); at += kPixelBytes) {
        if (row[at + 2] != 0xFF) std::memset(&row[at], 0xFF, kPixelBytes);
    }
}

// The page as a picture; the store keeps the picture's file open. False when it could not be written.
bool writePage(CBM& picture, const WString& path, const ConfigurationRecord& config, const std::uint8_t* pageBits, std::uint32_t width,
               std::uint32_t height) {
    if (!picture.Open(path.c_str()) || !picture.CreateBitmap(kTrueColour, width, height)) return false;
    return picture.Fill(picture.colourTable().getWhiteIndex(&config)) && picture.WriteBitmap(pageBits);
}

// The page with every pixel white whose red is not full.
bool writeExtract(const CBM& page, const WString& path, const std::uint8_t* pageBits) {
    CBM picture;
    if (!picture.Open(path.c_str()) || !picture.CreateBitmap(kTrueColour, page.width(), page.height())) return false;
    const std::size_t stride = page.stride();
    const std::uint32_t blockRows = std::clamp(kBlockBytes / page.stride(), 1U, page.height());
    std::vector<std::uint8_t> block(blockRows * stride);
    for (std::uint32_t first = 0; first < page.height();) {
        const std::uint32_t rows = std::min(blockRows, page.height() - first);
        const std::span<std::uint8_t> stored = std::span(block).first(rows * stride);
        std::memcpy(stored.data(), pageBits + first * stride, stored.size());
        for (std::uint32_t i = 0; i < rows; ++i) keepRed(stored.subspan(i * stride, std::size_t{page.width()} * kPixelBytes));
        if (!picture.WriteRows(stored, first)) return false;
        first += rows;
    }
    return true;
}

bool fits(std::size_t bytes, std::uint32_t width, std::uint32_t height) {
    const std::uint64_t stride = (std::uint64_t{width} * kPixelBytes + 3) / 4 * 4;
    return width != 0 && height != 0 && stride * height <= bytes;
}

}  // namespace

bool CSpoolFile::TraceBitmap(const std::uint8_t* pageBits, std::size_t bytes, std::uint32_t width, std::uint32_t height,
                             std::uint32_t yOffset) {
    if (pageBits == nullptr || !fits(bytes, width, height)) {
        logMorvil(1, kError, TEXT("TraceBitmap page of %u bytes is no picture of %d x %d"), bytes, width, height, kLogEnd);
        return false;
    }
    const WString folder = m->spoolFolder.empty() ? format(TEXT("%s\\"), m->folders.spoolFolder()) : m->spoolFolder;
    const WString stamp = utcStamp();
    const WString extract = format(kTracerExtractPath, folder, stamp);
    CBM page;
    bool written = writePage(page, format(kTracerPagePath, folder, stamp), m->config, pageBits, width, height);
    const bool extracted = written && writeExtract(page, extract, pageBits);
    written = extracted && page.CopyWhitened24BPP(format(kTracerRestPath, folder, stamp).c_str());
    if (!written) logMorvil(1, kError, TEXT("TraceBitmap, the pictures cannot be written to %s"), folder, kLogEnd);

    TracerLibrary library(m->folders.driverProgramFolder());
    if (!library.isUsable() || !extracted) return false;
    const std::optional<std::int32_t> polygons = library.trace(extract.c_str());
    for (std::int32_t index = 0; index < polygons.value_or(0); ++index) {
        logMorvil(1, kInformation, TEXT("Get polygon"), kLogEnd);
        const auto outline = library.outline(index);
        if (!outline || outline->count == 0) continue;
        for (std::int32_t& y : outline->ys.span()) y = static_cast<std::int32_t>(static_cast<std::uint32_t>(y) + yOffset);
        WritePolygon(outline->xs.get(), outline->ys.get(), outline->count, kRed, false);
    }
    return polygons.has_value();
}

}  // namespace morvil
