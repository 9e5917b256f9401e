// metafile_fuzz.cpp - feeds any bytes to the metafile reader and, where it takes them, plays them onto a canvas that draws nothing but
// touches what it is given.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "engine/Metafile.h"

namespace {

using namespace morvil::engine;

// Reads every byte of a picture as a canvas would, so that a picture with less than it promises is found.
void touch(const Image& image, const RECTL& source) {
    const bool inside = source.left >= 0 && source.top >= 0 && source.right <= image.width && source.bottom <= image.height;
    const bool ordered = source.left < source.right && source.top < source.bottom;
    const auto needed = static_cast<std::size_t>(image.rowBytes) * static_cast<std::size_t>(image.height);
    if (!inside || !ordered || image.bits.size() < needed) std::abort();
}

class NullCanvas : public Canvas {
  public:
    [[nodiscard]] SIZEL pageSize() const override { return {300, 200}; }
    [[nodiscard]] double dpi() const override { return 254.0; }
    [[nodiscard]] bool ok() const override { return true; }
    void setClip(std::optional<Region>) override {}
    void strokePath(const Path& path, const Pen&, const XFORM&, int) override { bounded(path); }
    void fillPath(const Path& path, const Brush&, FillMode, int) override { bounded(path); }
    void strokeAndFillPath(const Path& path, const Pen&, const XFORM&, const Brush&, FillMode, int) override { bounded(path); }
    void patBlt(const RECTL&, const Brush&, std::uint8_t) override {}
    void drawImage(const RECTL& target, const Image& source, const RECTL& sourceRect, int, ROP4, const Brush&, const Image* mask,
                   POINTL maskOrigin) override {
        touch(source, sourceRect);
        if (target.left == target.right || target.top == target.bottom) std::abort();
        if (mask == nullptr) return;
        const LONG width = sourceRect.right - sourceRect.left;
        const LONG height = sourceRect.bottom - sourceRect.top;
        touch(*mask, {maskOrigin.x, maskOrigin.y, maskOrigin.x + width, maskOrigin.y + height});
    }
    void setTextColours(COLORREF, COLORREF) override {}
    void textOut(const GlyphRun& run, COLORREF, const RECTL*, COLORREF) override {
        for (const PositionedGlyph& glyph : run.glyphs) {
            if (!glyph.bitmap) std::abort();
        }
    }

  private:
    static void bounded(const Path& path) {
        constexpr FIX kFarthest = 67108863 * kFixOne;
        for (const Subpath& figure : path.subpaths()) {
            for (const POINTFIX& point : figure.points) {
                if (point.x > kFarthest || point.x < -kFarthest || point.y > kFarthest || point.y < -kFarthest) std::abort();
            }
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MetafileError error;
    auto metafile = Metafile::parse({data, data + size}, error);
    if (!metafile) return 0;
    MetafilePage page(std::move(metafile), {0, 0, 299, 199});
    NullCanvas canvas;
    page.play(canvas);
    return 0;
}
