#include "raster/ImageOperations.h"

#include <algorithm>
#include <cstring>

#include "driver/log/Log.h"
#include "platform/common/LocalBlock.h"
#include "raster/BitmapInfo.h"
#include "raster/MemoryContext.h"

namespace morvil {

namespace {

void copyBits(std::span<std::uint8_t> to, std::span<const std::uint8_t> from) {
    const std::size_t bytes = std::min(to.size(), from.size());
    if (bytes > 0) std::memcpy(to.data(), from.data(), bytes);
}

// The pixels of rows as GetDIBits gives them, without what pads a row: systems leave different things there, and the page's own
// padding goes into the job.
void copyPixels(std::span<std::uint8_t> to, std::span<const std::uint8_t> from, const BITMAPINFOHEADER& header) {
    const std::size_t rowBits = static_cast<std::size_t>(header.biWidth) * header.biBitCount;
    const std::size_t stride = (rowBits + 31) / 32 * 4;
    const std::size_t whole = rowBits / 8;
    const auto lastBits = static_cast<std::uint8_t>(0xFF00U >> (rowBits % 8));  // of the byte that holds pixels and padding
    const std::size_t bytes = std::min(to.size(), from.size());
    for (std::size_t row = 0; row + stride <= bytes; row += stride) {
        std::memcpy(&to[row], &from[row], whole);
        if (lastBits == 0) continue;
        std::uint8_t& last = to[row + whole];
        last = static_cast<std::uint8_t>((last & ~lastBits) | (from[row + whole] & lastBits));
    }
}

// The texts of an operation's log, which differ between the two. The last three are null where it tells no progress.
struct Texts {
    const WCHAR* contexts;
    const WCHAR* sourceMade;
    const WCHAR* sourceFilled;
    const WCHAR* destinationMade;
    const WCHAR* destinationFilled;
    const WCHAR* notSelected;
};
constexpr Texts kAdjustmentTexts{
    TEXT("doColorAdjustment, hMemDstDC=%X, hMemSrcDC=%X"), TEXT("doColorAdjustment 110\n"), TEXT("doColorAdjustment 120\n"),
    TEXT("doColorAdjustment 130\n"),                       TEXT("doColorAdjustment 140\n"), TEXT("!!! doColorAdjustment Error SelectObject\n")};
constexpr Texts kFlipTexts{nullptr, nullptr, nullptr, nullptr, nullptr, TEXT("!!! doFlipHorizontal Error SelectObject\n")};

void tell(const WCHAR* text) {
    if (text != nullptr) logMorvil(1, kInformation, text, kLogEnd);
}

// The surface's bits twice: a source and a destination, each in a context of its own.
class BitmapPair {
  public:
    // Members are made in their order: sections before they are selected, contexts before the sections.
    BitmapPair(const SURFOBJ& surface, std::span<const std::uint8_t> bits, BitmapInfoBlock& info, const Texts& texts)
        : m_described(describe(surface, info, texts)),
          m_source(m_sourceContext, info),
          m_sourceSelection(m_sourceContext, filled(m_source, bits, texts.sourceMade, texts.sourceFilled)),
          m_destination(m_destinationContext, info),
          m_destinationSelection(m_destinationContext, filled(m_destination, bits, texts.destinationMade, texts.destinationFilled)) {
        if (!*this) tell(texts.notSelected);
    }

    explicit operator bool() const { return m_described && m_sourceSelection && m_destinationSelection; }
    [[nodiscard]] HDC source() const { return m_sourceContext.get(); }
    [[nodiscard]] HDC destination() const { return m_destinationContext.get(); }
    [[nodiscard]] const BitmapSection& result() const { return m_destination; }

  private:
    bool describe(const SURFOBJ& surface, BitmapInfoBlock& info, const Texts& texts) const {
        if (texts.contexts != nullptr) {
            logMorvil(1, kInformation, texts.contexts, low32(destination()), low32(source()), kLogEnd);
            tell(TEXT("doColorAdjustment 100\n"));
        }
        return getBitmapInfo(source(), bitmapOf(surface), &info) != 0 && getColorTable(bitmapOf(surface), &info) != 0;
    }
    static const BitmapSection& filled(const BitmapSection& section, std::span<const std::uint8_t> bits, const WCHAR* made, const WCHAR* done) {
        tell(made);
        copyBits(section.bits(), bits);
        tell(done);
        return section;
    }

    MemoryContext m_destinationContext;
    MemoryContext m_sourceContext;
    bool m_described;
    BitmapSection m_source;
    Selection m_sourceSelection;
    BitmapSection m_destination;
    Selection m_destinationSelection;
};

void adjust(const LockedSurface& locked, const SURFOBJ& surface, BitmapInfoBlock& info, const COLORADJUSTMENT& adjustment) {
    const BitmapPair pair(surface, locked.bits(), info, kAdjustmentTexts);
    if (!pair) return;
    const SIZEL size = locked.get().sizlBitmap;
    SetStretchBltMode(pair.destination(), HALFTONE);
    if (SetColorAdjustment(pair.destination(), &adjustment) == FALSE) logMorvil(1, kError, TEXT("doColorAdjustment Error SetColorAdjustment"), kLogEnd);
    if (StretchBlt(pair.destination(), 0, 0, size.cx, size.cy, pair.source(), 0, 0, size.cx, size.cy, SRCCOPY) == FALSE) {
        logMorvil(1, kError, TEXT("doColorAdjustment Error StretchBlt"), kLogEnd);
        return;
    }
    tell(TEXT("doColorAdjustment 150\n"));
    copyBits(locked.bits(), pair.result().bits());
    tell(TEXT("doColorAdjustment 160\n"));
}

bool mirror(const LockedSurface& locked, const SURFOBJ& surface, BitmapInfoBlock& info) {
    const BitmapPair pair(surface, locked.bits(), info, kFlipTexts);
    if (!pair) return false;
    const SIZEL size = locked.get().sizlBitmap;
    SetStretchBltMode(pair.destination(), COLORONCOLOR);
    if (StretchBlt(pair.destination(), 0, 0, size.cx, size.cy, pair.source(), size.cx - 1, 0, -size.cx, size.cy, SRCCOPY) == FALSE) {
        logMorvil(1, kError, TEXT("doFlipHorizontal Error StretchBlt"), kLogEnd);
        return false;
    }
    const std::uint32_t bytes = getBuffer(pair.result().get(), nullptr);
    const LocalBlock<std::uint8_t> mirrored(bytes);
    if (bytes != 0 && !mirrored) logMorvil(1, kError, TEXT("doFlipHorizontal, no memory for %u bytes"), bytes, kLogEnd);
    if (mirrored.span().empty() || getBuffer(pair.result().get(), mirrored.get()) == 0) return false;
    copyPixels(locked.bits(), mirrored.span(), info.header);
    return true;
}

}  // namespace

int doColorAdjustment(const SURFOBJ& surface, const COLORADJUSTMENT& adjustment) {
    const LocalBlock<BitmapInfoBlock> info(1);
    tell(TEXT("doColorAdjustment\n"));
    if (!info) logMorvil(1, kError, TEXT("doColorAdjustment, no memory for the bitmap's header"), kLogEnd);
    const LockedSurface locked(surface);
    if (!locked) {
        logMorvil(1, kError, TEXT("FilleSurface Fehler bei EngLockSurface"), kLogEnd);
        return 0;
    }
    if (info && !locked.bits().empty()) adjust(locked, surface, *info.get(), adjustment);
    tell(TEXT("doColorAdjustment finished\n"));
    return 0;
}

int doFlipHorizontal(const SURFOBJ& surface) {
    const LocalBlock<BitmapInfoBlock> info(1);
    tell(TEXT("doFlipHorizontal\n"));
    if (!info) logMorvil(1, kError, TEXT("doFlipHorizontal, no memory for the bitmap's header"), kLogEnd);
    const LockedSurface locked(surface);
    if (!locked) {
        logMorvil(1, kError, TEXT("FilleSurface Fehler bei EngLockSurface"), kLogEnd);
        return 0;
    }
    const bool done = info && !locked.bits().empty() && mirror(locked, surface, *info.get());
    tell(TEXT("doFlipHorizontal finished\n"));
    return done ? 1 : 0;
}

}  // namespace morvil
