// BitmapSection.cpp - creates the bitmap section in the job file and brings the page's pixels into it. The bytes of the image
// itself are the bitmap store's (raster/CBM.h).
#include <algorithm>
#include <vector>

#include "driver/log/Log.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "jobfile/VectorBackup.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr int kCreateSection = 1;  // mode bits of CreateBitmap
constexpr int kFillWhite = 2;
constexpr WORD kColourBitmap = 2;  // the process colour that makes Standard print an 8-bit colour bitmap

BitmapType typeOf(const ConfigurationRecord& config) {
    const BitmapType blackAndWhite = (config.flags & MV_FL_IMAGEOP_INVERT) != 0 ? kWhiteBlack : kBlackWhite;
    switch (config.processMode) {
        case kModeStandard: return config.processColour == kColourBitmap ? kProcessColours : blackAndWhite;
        case kModeStamp:
        case kModeTest4:
        case kModeTest5:
        case kModeTest6:
        case kModeTest7: return blackAndWhite;
        case kModeTest1:
        case kModeTest2:
        case kModeTest3: return kBlackWhite;
        case kModeColourStamp: return kMciColours;
        case kModeRelief:
        case kModeLayer: return kGreyRamp;
        default: return kProcessColours;
    }
}

}  // namespace

bool CSpoolFile::CreateBitmap(int modeBits) {
    if ((modeBits & (kCreateSection | kFillWhite)) == 0) return false;
    logMorvil(1, kInformation, TEXT("CSpoolFile::CreateBitmap"), kLogEnd);
    logMorvil(1, kInformation, TEXT("CreateBitmap"), kLogEnd);
    m->bitmap.colourTable().SetConfig(&m->config);
    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    if (!file.isOpen() || !file.seek(m->bitmapStart)) {
        m->isWhole = false;
        logMorvil(1, kError, TEXT("CreateBitmap Fehler"), kLogEnd);
        return false;
    }
    if (m->hasBitmapSection()) {
        {
            const LentStream lent(m->bitmap, file);
            const bool made = m->bitmap.CreateBitmap(typeOf(m->config), m->config.size.pixelWidth, m->config.size.pixelHeight);
            m->bitmapPixel = file.tell();
            const bool fill = made && (modeBits & kFillWhite) != 0;
            if (fill) m->bitmap.Fill(kWhite);
            m->bitmapEnd = file.tell();
            // A page that the section refuses, or whose pixel area could not be filled, makes no job.
            const bool filled = !fill || m->bitmapEnd == m->bitmapPixel + std::int64_t{m->bitmap.imageSize()};
            m->isWhole = made && filled && m->isWhole;
        }
        m->isWhole = !file.failed() && file.close() && m->isWhole;
        if (const auto behind = m->closeBitmapSection()) m->vectors.placeAt(*behind);
    } else {
        m->vectors.placeAt(m->bitmapStart);
    }
    logMorvil(1, kInformation, TEXT("CSpoolFile::CreateBitmap finished"), kLogEnd);
    return false;
}

std::optional<std::int64_t> CSpoolFile::Members::closeBitmapSection() {
    const std::string lines = toFileBytes(kBitmapClosing) + toFileBytes(kBitmapGroupClosing);
    FileStream file(jobFile.c_str(), OpenMode::Update);
    const bool placed = file.isOpen() && file.seek(bitmapEnd);
    const bool written = placed && file.write(lines) && file.close();
    isWhole = isWhole && written;
    if (!placed) return std::nullopt;
    return bitmapEnd + static_cast<std::int64_t>(lines.size());
}

bool CSpoolFile::WriteBitmap(const std::uint8_t* pageBits, std::size_t bytes) {
    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    if (!file.isOpen() || !m->hasBitmapSection()) {
        m->isWhole = false;
        return false;
    }
    if (pageBits == nullptr || bytes < m->bitmap.imageSize()) {
        logMorvil(1, kError, TEXT("WriteBitmap page of %u bytes, section of %u"), bytes, m->bitmap.imageSize(), kLogEnd);
        m->isWhole = false;
        return false;
    }
    const std::int64_t oldStart = m->vectors.start();
    const std::int64_t oldEnd = m->vectors.end();
    VectorBackup backup;
    const bool saved = backup.save(file, oldStart, m->backupFile);

    bool renewed = true;
    if (m->config.processMode == kModeColourStamp) {
        std::vector<std::uint8_t> colours;
        m->bitmap.GetUsedIndices8BPP(pageBits, colours);
        const bool closed = file.close();  // the colour group is written through a stream of its own
        WriteMciHeader(colours);
        renewed = file.open(m->jobFile.c_str(), OpenMode::Update) && m->renewImage(file);
        m->isWhole = m->isWhole && closed && renewed;
    }
    bool result = false;
    if (renewed && bytes >= m->bitmap.imageSize()) {
        const LentStream lent(m->bitmap, file);
        result = m->bitmap.WriteBitmap(pageBits);
    }
    m->bitmapEnd = m->bitmapPixel + static_cast<std::int64_t>(m->bitmap.imageSize());
    m->isWhole = !file.failed() && file.close() && m->isWhole && result;
    const std::optional<std::int64_t> behind = m->closeBitmapSection();
    if (!behind) logMorvil(1, kError, TEXT("WriteBitmap seek failed"), kLogEnd);

    const std::int64_t newStart = behind.value_or(oldStart);
    std::int64_t end = oldEnd;
    const bool restored = backup.restore(m->jobFile.c_str(), newStart, end);
    // Without a copy the group is still whole where the image did not grow into it.
    if (!restored && (saved || newStart != oldStart)) m->isWhole = false;
    m->vectors.movedTo(newStart, end);
    return result;
}

bool CSpoolFile::Members::renewImage(FileStream& file) {
    if (!file.seek(bitmapStart)) return false;
    const LentStream lent(bitmap, file);
    const bool made = bitmap.CreateBitmap(bitmap.colourTable().type(), config.size.pixelWidth, config.size.pixelHeight);
    bitmapPixel = bitmap.pixelPosition();
    bitmapEnd = bitmapPixel + std::int64_t{bitmap.imageSize()};
    return made;
}

bool CSpoolFile::WriteBitmapBand(const std::uint8_t* buffer, std::uint32_t size, std::uint32_t offset) {
    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    if (!file.isOpen()) {
        m->isWhole = false;
        return false;
    }
    logMorvil(1, kInformation, TEXT("WriteBitmapBand, mEndPosBM (1)=%d, pBuffer=%X, uiBuffSize=%d, uiOffset=%d"), m->bitmapEnd,
              low32(buffer), size, offset, kLogEnd);
    // A band never reaches beyond the section: what lies behind it are the groups that follow.
    const std::int64_t room = m->bitmapEnd - m->bitmapPixel - std::int64_t{offset};
    const auto fitting = static_cast<std::size_t>(std::clamp<std::int64_t>(size, 0, std::max<std::int64_t>(room, 0)));
    if (fitting < size) logMorvil(1, kError, TEXT("WriteBitmapBand, %u bytes at %u exceed the bitmap section"), size, offset, kLogEnd);
    const bool written = buffer != nullptr && file.seek(m->bitmapPixel + std::int64_t{offset}) && file.write({buffer, fitting});
    logMorvil(1, kInformation, TEXT("CBM::WriteBitmapBand, uiBuffSize=%d"), size, kLogEnd);
    const bool closed = file.close();
    m->isWhole = m->isWhole && written && closed;
    return written;
}

}  // namespace morvil
