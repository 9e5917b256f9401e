// ShrinkToBoundingBox.cpp - cuts a job to the box around what was drawn, with the configured margins: copies the pixels of the
// box out, writes the file anew under its name and puts pixels and polygons back. Until the pixels and the vectors are safe
// nothing is written; whatever cannot be read before that leaves the job as it is.
#include <algorithm>

#include "config/CPrinterConfig.h"
#include "driver/log/Log.h"
#include "jobfile/BackupPolygons.h"
#include "jobfile/CSpoolFile.h"
#include "jobfile/JobFileFormat.h"
#include "jobfile/SpoolFileMembers.h"
#include "jobfile/VectorBackup.h"
#include "platform/common/LocalBlock.h"
#include "raster/BitmapHeader.h"

namespace morvil {

namespace {

// Gives a value back what it was when this object goes.
template <typename T>
class Kept {
  public:
    explicit Kept(T& value) : m_value(value), m_before(value) {}
    ~Kept() { m_value = m_before; }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;

  private:
    T& m_value;
    T m_before;
};

// Kept free on each side of the box, in pixels.
struct Margins {
    std::uint32_t left;
    std::uint32_t top;
    std::uint32_t right;
    std::uint32_t bottom;
};

Margins readMargins() {
    const RECT offset = CPrinterConfig().getBoundingBoxOffset();
    const auto pixels = [](LONG value) { return static_cast<std::uint32_t>(std::max<LONG>(value, 0)); };
    return {pixels(offset.left), pixels(offset.top), pixels(offset.right), pixels(offset.bottom)};
}

BoundingBox jobBox(const BoundingBox& bitmap, const BoundingBox& vectors, bool hasBitmap) {
    if (!hasBitmap) return vectors;
    if (vectors.isEmpty()) return bitmap;
    return {.left = std::min(bitmap.left, vectors.left),
            .top = std::max(bitmap.top, vectors.top),
            .right = std::max(bitmap.right, vectors.right),
            .bottom = std::min(bitmap.bottom, vectors.bottom)};
}

// Positions wrap as 32-bit numbers do.
std::int32_t plus(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
std::int32_t minus(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
std::int32_t asSigned(std::uint32_t value) { return static_cast<std::int32_t>(value); }

// Where the bitmap's box begins within the job's.
std::int32_t offsetWithin(std::int32_t bitmap, std::int32_t job) { return job > bitmap ? bitmap : minus(bitmap, job); }

// Kept in 16 bits, as all sizes of jobs are.
WORD newExtent(std::uint32_t before, std::uint32_t behind, std::int32_t from, std::int32_t to) {
    return static_cast<WORD>(before + behind + static_cast<std::uint32_t>(minus(to, from)));
}

FLOAT millimetres(WORD pixels, WORD dpi) { return static_cast<FLOAT>(pixels) / static_cast<FLOAT>(dpi) * 25.4F; }

void logBox(const WCHAR* text, const BoundingBox& box) { logMorvil(1, kError, text, box.left, box.top, box.right, box.bottom, kLogEnd); }

// The pixels of a box of the bitmap section, as the store copies them.
class Cutting {
  public:
    // False when there is no memory for it.
    bool reserve(const CBM& store, const BoundingBox& box) {
        if (box.isEmpty()) return true;
        m_box = box;
        m_width = static_cast<std::uint32_t>(box.right - box.left);
        m_rows = static_cast<std::uint32_t>(box.top - box.bottom);
        const std::uint32_t rowBytes = store.bitsPerPixel() == 1 ? CBM::partBytes1BPP(m_width, column()) : m_width;
        m_pixels = LocalBlock<std::uint8_t>(std::size_t{rowBytes} * m_rows);
        return static_cast<bool>(m_pixels);
    }
    bool readFrom(CBM& store) {
        if (m_rows == 0) return true;
        if (store.bitsPerPixel() == 1) return store.ReadBitmapPart1BPP(m_pixels.get(), m_firstBit, m_width, m_rows, column(), row());
        return store.ReadBitmapPart8BPP(m_pixels.get(), m_firstBit, m_width, m_rows, column(), row());
    }
    // A place outside of the image takes nothing, which is no failure.
    bool writeTo(CBM& store, std::uint32_t column, std::uint32_t row) const {
        if (m_rows == 0 || column >= store.width() || row >= store.height()) return true;
        if (store.bitsPerPixel() == 1) return store.WriteBitmapPart1BPP(m_pixels.get(), m_firstBit, m_width, m_rows, column, row);
        return store.WriteBitmapPart8BPP(m_pixels.get(), m_firstBit, m_width, m_rows, column, row);
    }
    [[nodiscard]] std::span<const std::uint8_t> pixels() const { return m_pixels.span(); }

  private:
    [[nodiscard]] std::uint32_t column() const { return static_cast<std::uint32_t>(m_box.left); }
    [[nodiscard]] std::uint32_t row() const { return static_cast<std::uint32_t>(m_box.bottom); }

    BoundingBox m_box{};
    std::uint32_t m_width = 0;
    std::uint32_t m_rows = 0;
    std::uint32_t m_firstBit = 0;
    LocalBlock<std::uint8_t> m_pixels;
};

}  // namespace

// What the step measures in the file as it was drawn.
struct CSpoolFile::ShrinkPlan {
    Margins margins;
    BoundingBox bitmap;
    BoundingBox vectors;
    BoundingBox job;
    std::int32_t offsetX;  // of the bitmap's box within the job's
    std::int32_t offsetY;
    WORD width;  // of the new job
    WORD height;
    Cutting cutting;
};

void CSpoolFile::doShrinkToBoundigbox() {
    logMorvil(1, kInformation, TEXT("CSpoolFile::doShrinkToBoundigbox"), kLogEnd);
    ShrinkPlan plan{};
    plan.margins = readMargins();
    FileStream file;
    if (m->state != JobState::Unfinished || !file.open(m->jobFile.c_str(), OpenMode::Update)) return;
    VectorBackup vectors;
    if (vectors.save(file, m->vectors.start(), m->backupFile) && measure(file, vectors, plan)) {
        file.close();
        const Kept size(m->config.size);  // the next page has its own size again
        rewrite(vectors, plan);
    }
    vectors.remove();
    file.close();
    logMorvil(1, kInformation, TEXT("CSpoolFile::doShrinkToBoundigbox finished"), kLogEnd);
}

// Boxes and pixels. False when the job shall stay as it is.
bool CSpoolFile::measure(FileStream& file, const VectorBackup& vectors, ShrinkPlan& plan) {
    // Somebody cut the file: there is no whole job any more, and nothing to be made of it.
    if (file.size() < m->vectors.end()) {
        logMorvil(1, kError, TEXT("doShrinkToBoundigbox, %s has been cut"), m->jobFile, kLogEnd);
        m->isWhole = false;
        return false;
    }
    const LentStream lent(m->bitmap, file);
    ContentBox content{};
    const bool isRead = !m->hasBitmapSection() || m->bitmap.GetBoundingBox(content);
    const auto box = getVectorBoundingBox(vectors.path().c_str(), m->config.size.pixelWidth, m->config.size.pixelHeight);
    if (!isRead || !box) {
        logMorvil(1, kError, TEXT("doShrinkToBoundigbox, %s cannot be measured"), m->jobFile, kLogEnd);
        return false;
    }
    plan.bitmap = {.left = asSigned(content.left),
                   .top = asSigned(content.endRow),
                   .right = asSigned(content.right),
                   .bottom = asSigned(content.firstRow)};
    plan.vectors = *box;
    plan.job = jobBox(plan.bitmap, plan.vectors, m->hasBitmapSection());
    plan.offsetX = offsetWithin(plan.bitmap.left, plan.job.left);
    plan.offsetY = offsetWithin(plan.bitmap.bottom, plan.job.bottom);
    logBox(TEXT("doShrinkToBoundigbox Job.left=%d, Job.top=%d, Job.right=%d, Job.bottom=%d"), plan.job);
    logBox(TEXT("doShrinkToBoundigbox Bitmap.left=%d, Bitmap.top=%d, Bitmap.right=%d, Bitmap.bottom=%d"), plan.bitmap);
    logBox(TEXT("doShrinkToBoundigbox Vectors.left=%d, Vectors.top=%d, Vectors.right=%d, Vectors.bottom=%d"), plan.vectors);
    logMorvil(1, kError, TEXT("doShrinkToBoundigbox BitmapOffset.x=%d, BitmapOffset.y=%d"), plan.offsetX, plan.offsetY, kLogEnd);
    logMorvil(1, kError, TEXT("doShrinkToBoundigbox VectorOffset.x=%d, VectorOffset.y=%d"), plan.job.left, plan.job.bottom, kLogEnd);
    plan.width = newExtent(plan.margins.left, plan.margins.right, plan.job.left, plan.job.right);
    plan.height = newExtent(plan.margins.top, plan.margins.bottom, plan.job.bottom, plan.job.top);
    if (plan.job.isEmpty()) return false;
    if (m->hasBitmapSection() && !measureBitmap(plan.width, plan.height, m->bitmap.bitsPerPixel())) {
        logMorvil(1, kError, TEXT("doShrinkToBoundigbox, %d x %d pixels are too many"), plan.width, plan.height, kLogEnd);
        return false;
    }
    if (!plan.cutting.reserve(m->bitmap, plan.bitmap)) return false;
    if (plan.cutting.readFrom(m->bitmap)) return true;
    logMorvil(1, kError, TEXT("doShrinkToBoundigbox, the pixels of %s cannot be read"), m->jobFile, kLogEnd);
    return false;
}

// The file anew. What fails from here on leaves a file that is not whole.
void CSpoolFile::rewrite(const VectorBackup& vectors, const ShrinkPlan& plan) {
    SizeTemplate& size = m->config.size;
    size.pixelWidth = plan.width;
    size.pixelHeight = plan.height;
    size.width = millimetres(size.pixelWidth, m->config.resolution);
    size.height = millimetres(size.pixelHeight, m->config.resolution);
    m->announceHeader();
    m->isWhole = m->writeHeaderFile() && m->isWhole;
    if (!m->isWhole) return;
    if (m->hasBitmapSection()) rewriteBitmap(plan);

    AddOffstToVectors(vectors, minus(asSigned(plan.margins.left), plan.job.left), minus(asSigned(plan.margins.top), plan.job.bottom));
    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    const bool cut = file.isOpen() && file.seek(m->vectors.end()) && file.truncateHere() && file.close();
    m->isWhole = m->isWhole && cut;
}

void CSpoolFile::rewriteBitmap(const ShrinkPlan& plan) {
    if (m->config.processMode == kModeColourStamp) {
        std::vector<std::uint8_t> colours;
        m->bitmap.GetUsedIndices8BPP(plan.cutting.pixels(), colours);
        debugPrint(TEXT("CSpoolFile::doShrinkToBoundigbox, colors detected=%d\n"), colours.size());
        WriteMciHeader(colours);
    }
    FileStream file(m->jobFile.c_str(), OpenMode::Update);
    m->bitmap.colourTable().SetConfig(&m->config);
    const bool made = file.isOpen() && m->renewImage(file);
    bool pasted = false;
    if (made) {
        const LentStream lent(m->bitmap, file);
        const std::uint32_t column = static_cast<std::uint32_t>(plan.offsetX) + plan.margins.left;
        const std::uint32_t row = static_cast<std::uint32_t>(plan.offsetY) + plan.margins.top;
        pasted = m->bitmap.Fill(kWhite) && file.size() == m->bitmapEnd && plan.cutting.writeTo(m->bitmap, column, row);
    }
    m->isWhole = m->isWhole && pasted && !file.failed() && file.close();
    file.close();
    const std::optional<std::int64_t> behind = m->closeBitmapSection();
    if (behind)
        m->vectors.placeAt(*behind);
    else
        logMorvil(1, kError, TEXT("WriteBitmap seek failed"), kLogEnd);
}

void CSpoolFile::AddOffstToVectors(const VectorBackup& vectors, std::int32_t dx, std::int32_t dy) {
    logMorvil(1, kInformation, TEXT("CSpoolFile::AddOffstToVectors"), kLogEnd);
    WriteVectorSection();
    constexpr DWORD kMirrorFlags = MV_FL_IMAGEOP_FLIP_VERTICAL | MV_FL_IMAGEOP_FLIP_HORIZONTAL;
    const Kept flags(m->config.flags);
    m->config.flags &= ~kMirrorFlags;  // the points have been mirrored when they were drawn
    // A point that would leave the page takes the coordinate of its predecessor.
    const auto move = [](std::vector<std::int32_t>& coordinates, std::int32_t distance) {
        std::int32_t before = 0;
        for (std::int32_t& coordinate : coordinates) {
            const std::int32_t moved = plus(coordinate, distance);
            coordinate = moved < 0 ? before : moved;
            before = coordinate;
        }
    };
    BackupLines lines(vectors.path().c_str());
    std::string line;
    PolygonLine polygon;
    while (lines.next(line)) {
        if (!readPolygon(line, polygon)) continue;
        move(polygon.xs, dx);
        move(polygon.ys, dy);
        WritePolygon(polygon.xs.data(), polygon.ys.data(), static_cast<std::uint32_t>(polygon.xs.size()), polygon.colour, false);
    }
    m->isWhole = m->isWhole && lines.isOpen() && !lines.failed();
    logMorvil(1, kInformation, TEXT("CBM::AddOffstToVectors finished"), kLogEnd);
}

}  // namespace morvil
