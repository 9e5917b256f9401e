// Player.h - plays the records of one metafile onto a canvas: an emulated device context. One player lives for one play.
// Each record has a member function of its own; they stand in the files Player*.cpp by subject. A handler reads everything it
// needs from its record before it draws, so that a damaged record (DamagedRecord) leaves no half-drawn figure.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/Canvas.h"
#include "engine/Metafile.h"
#include "engine/metafile/Curves.h"
#include "engine/metafile/DeviceState.h"
#include "engine/metafile/Matrix.h"
#include "engine/metafile/Objects.h"
#include "engine/metafile/Record.h"

namespace morvil::engine {

class FontLibrary;

class Player {
  public:
    Player(const Metafile& metafile, const RECTL& target, Canvas& canvas, FontLibrary& fonts);
    // Until the end record, or until the canvas is no longer ok.
    void run();
    [[nodiscard]] const std::map<ULONG, ULONG>& skipped() const { return m_skipped; }
    [[nodiscard]] const std::optional<MetafileError>& damage() const { return m_damage; }

  private:
    using Handler = void (Player::*)(const Record&);
    struct HandlerTable;
    void play(const Record& record);
    void ignore(const Record&) {}

    // PlayerState.cpp
    void setWindowExtent(const Record& record);
    void setWindowOrigin(const Record& record);
    void setViewportExtent(const Record& record);
    void setViewportOrigin(const Record& record);
    void scaleWindowExtent(const Record& record);
    void scaleViewportExtent(const Record& record);
    void setMapMode(const Record& record);
    void setWorldTransform(const Record& record);
    void modifyWorldTransform(const Record& record);
    void setLayout(const Record& record);
    void setBackgroundMode(const Record& record);
    void setBackgroundColour(const Record& record);
    void setTextColour(const Record& record);
    void setTextAlign(const Record& record);
    void setTextJustification(const Record& record);
    void setPolyFillMode(const Record& record);
    void setRop2(const Record& record);
    void setStretchMode(const Record& record);
    void setArcDirection(const Record& record);
    void setMiterLimit(const Record& record);
    void setBrushOrigin(const Record& record);
    void saveState(const Record& record);
    void restoreState(const Record& record);

    // PlayerObjects.cpp
    void selectObject(const Record& record);
    void deleteObject(const Record& record);
    void createPen(const Record& record);
    void createExtendedPen(const Record& record);
    void createBrush(const Record& record);
    void createMonochromeBrush(const Record& record);
    void createPatternBrush(const Record& record);
    void createFont(const Record& record);
    void createPalette(const Record& record);
    void selectPalette(const Record& record);
    void setPaletteEntries(const Record& record);
    void resizePalette(const Record& record);
    void createColourSpace(const Record& record);
    void deleteColourSpace(const Record& record);

    // PlayerLines.cpp
    void moveTo(const Record& record);
    void lineTo(const Record& record);
    void polyline(const Record& record);
    void polygon(const Record& record);
    void polyBezier(const Record& record);
    void polylineTo(const Record& record);
    void polyBezierTo(const Record& record);
    void polyPolyline(const Record& record);
    void polyPolygon(const Record& record);
    void polyDraw(const Record& record);
    void setPixel(const Record& record);

    // PlayerShapes.cpp
    void rectangle(const Record& record);
    void roundRectangle(const Record& record);
    void ellipse(const Record& record);
    void arc(const Record& record);
    void arcTo(const Record& record);
    void chord(const Record& record);
    void pie(const Record& record);
    void angleArc(const Record& record);

    // PlayerPaths.cpp
    void beginPath(const Record& record);
    void endPath(const Record& record);
    void closeFigure(const Record& record);
    void abortPath(const Record& record);
    void fillPath(const Record& record);
    void strokePath(const Record& record);
    void strokeAndFillPath(const Record& record);
    void flattenPath(const Record& record);
    void widenPath(const Record& record);
    void selectClipPath(const Record& record);

    // PlayerRegions.cpp
    void intersectClipRectangle(const Record& record);
    void excludeClipRectangle(const Record& record);
    void offsetClip(const Record& record);
    void selectClipRegion(const Record& record);
    void setMetaRegion(const Record& record);
    void fillRegion(const Record& record);
    void frameRegion(const Record& record);
    void invertRegion(const Record& record);
    void paintRegion(const Record& record);

    // PlayerImages.cpp
    void bitBlt(const Record& record);
    void stretchBlt(const Record& record);
    void maskBlt(const Record& record);
    void parallelogramBlt(const Record& record);
    void setBitsToDevice(const Record& record);
    void stretchBits(const Record& record);
    void alphaBlend(const Record& record);
    void transparentBlt(const Record& record);

    // PlayerGradients.cpp
    void gradientFill(const Record& record);

    // PlayerText.cpp
    void textNarrow(const Record& record);
    void textWide(const Record& record);
    void polyTextNarrow(const Record& record);
    void polyTextWide(const Record& record);
    void smallText(const Record& record);

    // Shared by the handlers, in PlayerDrawing.cpp.
    [[nodiscard]] Matrix logicalToPage() const;
    [[nodiscard]] RECTL pageRectangle() const;
    [[nodiscard]] COLORREF colour(COLORREF colour) const { return resolveColour(colour, *m_state.palette); }
    [[nodiscard]] Brush realiseBrush(const BrushObject& brush) const;
    [[nodiscard]] Pen realisePen() const;
    // Hands the canvas the clip and the colours that hold now. To be called before each drawing call.
    void prepareCanvas();
    // Into the open path, or onto the canvas. `ellipse`: the figure is exactly one ellipse.
    void drawOutline(Path path);
    void drawFigure(Path path, bool ellipse = false);
    void strokeNow(const Path& path);
    void fillNow(const Path& path);
    void strokeAndFillNow(const Path& path);
    // The path to add to when lines continue from the current position; `separate` serves outside of a path bracket.
    Path& figureFromPosition(Path& separate);
    void finishLines(Path& separate);
    [[nodiscard]] bool inBracket() const { return m_bracket == Bracket::Open; }
    Path takePath();

    [[nodiscard]] Region regionOf(const Box& box, const Matrix& toPage) const;
    [[nodiscard]] Region readRegion(const Record& record, std::size_t offset, std::size_t length, const Matrix& toPage) const;
    void combineClip(Region region, ULONG mode);
    void paintRectangles(const Region& region, const Brush& brush, std::uint8_t rop3);

    // A picture's place on the page: its upper left corner and the way to the next ones, in page pixels.
    struct Place {
        Point origin;
        Point right;
        Point down;
    };
    struct Source {
        Point origin;
        Point extent;  // negative: mirrored
    };
    struct BlitRecord;
    [[nodiscard]] Place placeOf(Point origin, Point extent) const;
    [[nodiscard]] std::optional<Image> readImage(const Record& record, std::size_t places, std::size_t usage) const;
    void drawImage(const Image& image, Source source, Place place, ROP4 rop4, const Image* mask = nullptr, POINTL maskOrigin = {});
    void drawResampled(const Image& image, const RECTL& source, const Place& place, ROP4 rop4, const Image* mask, POINTL maskOrigin);
    void paintPlace(const Place& place, std::uint8_t rop3);
    void drawBlit(const BlitRecord& blit, const std::optional<Image>& image);
    // Pixels computed one by one, strip by strip: `computeRow` gets the centre of a row's first pixel and puts colours where there
    // are any; the others stay kNoColour, and the page there stays as it is.
    static constexpr COLORREF kNoColour = 0xFFFFFFFF;
    using ComputeRow = std::function<void(double x, double y, std::span<COLORREF> row)>;
    void drawComputed(const RECTL& area, std::uint8_t rop3, const ComputeRow& computeRow);

    struct TextString;
    struct TextFrame;
    void drawText(const TextString& text);
    [[nodiscard]] TextFrame frameText(bool upright) const;
    void textStrings(const Record& record, bool wide);

    enum class Bracket : std::uint8_t { None, Open, Finished };

    const Metafile& m_metafile;
    Canvas& m_canvas;
    FontLibrary& m_fonts;
    ReferenceDevice m_device;
    RECTL m_target;
    Matrix m_deviceToPage;
    ObjectTable m_objects;
    DeviceState m_state;
    struct Saved {
        DeviceState state;
        std::size_t rectangles = 0;  // of clips that the state before does not share
    };
    std::vector<Saved> m_saved;
    std::size_t m_savedRectangles = 0;

    // The path bracket. `m_startFigure`: the next line starts a figure at the current position.
    Bracket m_bracket = Bracket::None;
    Path m_path;
    bool m_startFigure = true;
    bool m_pathIsEllipse = false;

    // What the canvas was told last.
    struct Told {
        bool anything = false;
        std::shared_ptr<const Region> clip;
        std::shared_ptr<const Region> metaClip;
        COLORREF text = 0;
        COLORREF background = 0;
    };
    Told m_told;

    std::int64_t m_computedPixelsLeft;  // a file must not keep the machine busy for ever with pixels computed one by one
    std::map<ULONG, ULONG> m_skipped;
    std::optional<MetafileError> m_damage;
};

}  // namespace morvil::engine
