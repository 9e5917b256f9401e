#include "driver/page_storage.h"

#include <algorithm>
#include <limits>

#include "driver/State.h"
#include "driver/log/Log.h"

namespace morvil {

namespace {

void logPart(const WCHAR* format, const Band& band) {
    logMorvil(1, kInformation, format, band.position, band.height, band.pageHeight, band.rowBytes, kLogEnd);
}

void logBand(const Band& band) {
    logPart(TEXT("WriteBitmapPart, uiBandPosition=%d, pDst->sizlBitmap.cy=%d, jobHeight=%d, delta=%d"), band);
    if (!isLastBand(band)) {
        logMorvil(1, kInformation, TEXT("Band 0..n-1"), kLogEnd);
        return;
    }
    logPart(TEXT("WriteBitmapPart last band, uiBandPosition=%d, pDst->sizlBitmap.cy=%d, jobHeight=%d, delta=%d"), band);
    logMorvil(1, kInformation, TEXT("usHeight=%d, uiBandPosition=%d, Delta=%d"), band.pageHeight, band.position, band.rowBytes, kLogEnd);
}

void storeTestBand(CSpoolFile* writer, const SURFOBJ& surface, const PageBits& page) {
    const ConfigurationRecord& configuration = state().configuration;
    const Band band{state().uiBandPosition,
                    static_cast<std::uint32_t>(surface.sizlBitmap.cy),
                    configuration.size.pixelHeight,
                    page.rowBytes,
                    page.bytes,
                    (configuration.flags & MV_FL_IMAGEOP_FLIP_VERTICAL) != 0};
    logBand(band);
    const BandPlace place = placeBand(band);
    if (writer == nullptr || place.offset > std::numeric_limits<std::uint32_t>::max()) return;  // beyond any bitmap section
    writer->WriteBitmapBand(page.bits, static_cast<std::uint32_t>(place.bytes), static_cast<std::uint32_t>(place.offset));
}

}  // namespace

bool isLastBand(const Band& band) { return std::uint64_t{band.position} + band.height >= band.pageHeight; }

BandPlace placeBand(const Band& band) {
    const std::uint64_t rowBytes = band.rowBytes;
    if (!isLastBand(band)) {
        const std::uint32_t firstRow = band.flipVertical ? band.pageHeight - band.height - band.position : band.position;
        return {band.bytes, rowBytes * firstRow};
    }
    const std::uint32_t rows = band.pageHeight > band.position ? band.pageHeight - band.position : 0;
    return {std::min<std::uint64_t>(rows * rowBytes, band.bytes), band.flipVertical ? 0 : rowBytes * band.position};
}

void storePage(const SURFOBJ& surface, const PageBits& page) {
    logMorvil(1, kInformation, TEXT("DrvSendPage vor WriteBitmap"), kLogEnd);
    const ConfigurationRecord& configuration = state().configuration;
    CSpoolFile* const writer = surface.pvBits != nullptr ? state().spoolFile.get() : nullptr;  // null: nothing to store, or nowhere
    const bool banded = (configuration.flags & MV_FL_BITMAP_BANDING) != 0;
    const PageBits whole = surfaceBits(surface);
    if (banded && configuration.processMode == kModeTest3) {
        storeTestBand(writer, surface, page);
    } else if (writer != nullptr && banded) {
        writer->WriteBitmapBand(whole.bits, static_cast<std::uint32_t>(whole.bytes), 0);
    } else if (writer != nullptr) {
        writer->WriteBitmap(whole.bits, whole.bytes);
    }
    logMorvil(1, kInformation, TEXT("DrvSendPage WriteBitmap Success"), kLogEnd);
}

}  // namespace morvil
