// images.cpp - bitmaps on the driver's surface: plain copies, blits with raster operations, stretching.
#include <algorithm>

#include "engine/Pixels.h"
#include "engine/canvas/DriverCanvas.h"

namespace morvil::engine {

namespace {

constexpr ROP4 kCopy = 0xCCCC;        // source copy
constexpr ROP4 kMaskedCopy = 0xCCAA;  // source copy where the mask is 1, target unchanged elsewhere (as stretching takes it)
constexpr ROP4 kMaskedCopyRop = 0xAACC;

COLORADJUSTMENT neutralAdjustment() {
    return {.caSize = sizeof(COLORADJUSTMENT),
            .caFlags = 0,
            .caIlluminantIndex = 0,
            .caRedGamma = 10000,
            .caGreenGamma = 10000,
            .caBlueGamma = 10000,
            .caReferenceBlack = 0,
            .caReferenceWhite = 10000,
            .caContrast = 0,
            .caBrightness = 0,
            .caColorfulness = 0,
            .caRedGreenTint = 0};
}

RECTL wellOrdered(const RECTL& r) { return {std::min(r.left, r.right), std::min(r.top, r.bottom), std::max(r.left, r.right), std::max(r.top, r.bottom)}; }

RECTL intersection(const RECTL& a, const RECTL& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

bool isEmpty(const RECTL& r) { return r.left >= r.right || r.top >= r.bottom; }

}  // namespace

// The engine clips to a single rectangle beforehand, so the clip object is trivial or complex and the target never empty.
void DriverCanvas::blit(const RECTL& target, EngineSurface* source, EngineXlate* translation, POINTL sourceOrigin, EngineSurface* mask,
                        POINTL maskOrigin, EngineBrush& brush, ROP4 rop4) {
    RECTL rectangle = intersection(wellOrdered(target), clip().bounds());
    if (isEmpty(rectangle)) return;
    sourceOrigin = {sourceOrigin.x + rectangle.left - target.left, sourceOrigin.y + rectangle.top - target.top};
    maskOrigin = {maskOrigin.x + rectangle.left - target.left, maskOrigin.y + rectangle.top - target.top};
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), rectangle);
    const bool offered = hooked(HOOK_BITBLT) && m_target.driver->bitBlt != nullptr;
    const auto call = offered ? m_target.driver->bitBlt : &EngBitBlt;
    outcomeOf(call(m_target.surface, source, mask, &clipObject, translation, &rectangle, source != nullptr ? &sourceOrigin : nullptr,
                   mask != nullptr ? &maskOrigin : nullptr, &brush, &brush.origin, rop4),
              "DrvBitBlt");
}

void DriverCanvas::copy(const RECTL& target, EngineSurface& source, EngineXlate& translation, POINTL sourceOrigin) {
    RECTL rectangle = intersection(target, clip().bounds());
    if (isEmpty(rectangle)) return;
    sourceOrigin = {sourceOrigin.x + rectangle.left - target.left, sourceOrigin.y + rectangle.top - target.top};
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), rectangle);
    const bool offered = hooked(HOOK_COPYBITS) && m_target.driver->copyBits != nullptr;
    const auto call = offered ? m_target.driver->copyBits : &EngCopyBits;
    outcomeOf(call(m_target.surface, &source, &clipObject, &translation, &rectangle, &sourceOrigin), "DrvCopyBits");
}

void DriverCanvas::stretch(const RECTL& target, EngineSurface& source, EngineXlate& translation, const RECTL& sourceRect, EngineSurface* mask,
                           POINTL maskOrigin, int mode, const Brush& brush) {
    RECTL to = target;
    RECTL from = sourceRect;
    if (isEmpty(intersection(wellOrdered(to), clip().bounds()))) return;
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), wellOrdered(to));
    COLORADJUSTMENT adjustment = neutralAdjustment();
    POINTL origin = inBand(brush).origin;
    const bool offered = hooked(HOOK_STRETCHBLT) && m_target.driver->stretchBlt != nullptr;
    const auto call = offered ? m_target.driver->stretchBlt : &EngStretchBlt;
    outcomeOf(call(m_target.surface, &source, mask, &clipObject, &translation, &adjustment, &origin, &to, &from, mask != nullptr ? &maskOrigin : nullptr,
                   static_cast<ULONG>(mode)),
              "DrvStretchBlt");
}

// Stretching with another raster operation is a call that the driver does not hook: the source is stretched into a picture of
// the target's own kind, which is then combined with it.
void DriverCanvas::stretchWithRop(const RECTL& target, EngineSurface& source, EngineXlate& translation, const RECTL& sourceRect, EngineSurface* mask,
                                  POINTL maskOrigin, int mode, EngineBrush& brush, ROP4 rop4) {
    const RECTL ordered = wellOrdered(target);
    const RECTL visible = intersection(ordered, clip().bounds());
    if (isEmpty(visible)) return;
    const SIZEL size{visible.right - visible.left, visible.bottom - visible.top};
    const HBITMAP handle = EngCreateBitmap(size, 0, m_target.surface->iBitmapFormat, BMF_TOPDOWN, nullptr);
    EngineSurface* const picture = surfaceOf(reinterpret_cast<HSURF>(handle));
    if (picture == nullptr) return;
    picture->palette = m_target.surface->palette;
    RECTL to{target.left - visible.left, target.top - visible.top, target.right - visible.left, target.bottom - visible.top};
    RECTL from = sourceRect;
    COLORADJUSTMENT adjustment = neutralAdjustment();
    POINTL origin{};
    EngStretchBlt(picture, &source, nullptr, nullptr, &translation, &adjustment, &origin, &to, &from, nullptr, static_cast<ULONG>(mode));
    EngineClip clipObject = makeClip(clip(), surfaceBounds(), visible);
    RECTL rectangle = visible;
    POINTL pictureOrigin{};
    POINTL shiftedMask{maskOrigin.x + visible.left - ordered.left, maskOrigin.y + visible.top - ordered.top};
    EngBitBlt(m_target.surface, picture, mask, &clipObject, nullptr, &rectangle, &pictureOrigin, mask != nullptr ? &shiftedMask : nullptr, &brush, &brush.origin, rop4);
    EngDeleteSurface(picture->hsurf);
}

void DriverCanvas::drawImage(const RECTL& target, const Image& source, const RECTL& sourceRect, int stretchMode, ROP4 rop4, const Brush& brush,
                             const Image* mask, POINTL maskOrigin) {
    const RECTL to = inBand(target);
    if (!ok() || isEmpty(sourceRect) || to.left == to.right || to.top == to.bottom) return;
    if (isEmpty(intersection(wellOrdered(to), clip().bounds()))) return;  // a picture outside the band costs nothing
    const std::unique_ptr<EngineSurface> bits = makeSource(source);
    const std::unique_ptr<EngineSurface> maskBits = mask != nullptr ? makeSource(*mask) : nullptr;
    if (bits == nullptr || (mask != nullptr && maskBits == nullptr)) return;
    EngineXlate translation = makeTranslation(*m_target.surface, *bits, m_foreground, m_background);
    const bool sameSize = to.right - to.left == sourceRect.right - sourceRect.left && to.bottom - to.top == sourceRect.bottom - sourceRect.top;
    const bool plain = rop4 == kCopy && mask == nullptr;
    const bool maskedCopy = (rop4 == kMaskedCopy || rop4 == kMaskedCopyRop) && mask != nullptr;
    const POINTL sourceOrigin{sourceRect.left, sourceRect.top};
    if (sameSize && plain) {
        copy(to, *bits, translation, sourceOrigin);
    } else if (sameSize) {
        EngineBrush realized = realizeFill(brush);
        blit(to, bits.get(), &translation, sourceOrigin, maskBits.get(), maskOrigin, realized, rop4);
    } else if (plain || maskedCopy) {
        stretch(to, *bits, translation, sourceRect, maskBits.get(), maskOrigin, stretchMode, brush);
    } else {
        EngineBrush realized = realizeFill(brush);
        stretchWithRop(to, *bits, translation, sourceRect, maskBits.get(), maskOrigin, stretchMode, realized, rop4);
    }
    if (ok()) count(&PageReport::images);
}

}  // namespace morvil::engine
