// RecordingCanvas.h - a canvas that draws nothing and keeps every call, and readable forms of what it was given.
#pragma once

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "engine/Canvas.h"

namespace morvil::test {

// "M 10,10 L 90,10 90,50 Z  M ..." in pixels.
inline std::string describe(const engine::Path& path) {
    std::ostringstream text;
    const auto put = [&text](POINTFIX point) { text << ' ' << point.x / 16.0 << ',' << point.y / 16.0; };
    for (const engine::Subpath& figure : path.subpaths()) {
        if (text.tellp() > 0) text << "  ";
        text << 'M';
        put(figure.points[0]);
        std::size_t next = 1;
        char last = 'M';
        for (const engine::SegmentKind kind : figure.segments) {
            const char letter = kind == engine::SegmentKind::Line ? 'L' : 'C';
            if (letter != last) text << ' ' << letter;
            last = letter;
            for (std::size_t count = letter == 'L' ? 1 : 3; count > 0; --count) put(figure.points[next++]);
        }
        if (figure.closed) text << " Z";
    }
    return text.str();
}

inline std::string describe(const RECTL& r) {
    std::ostringstream text;
    text << r.left << ',' << r.top << ' ' << r.right << ',' << r.bottom;
    return text.str();
}

inline std::string describe(const std::optional<engine::Region>& region) {
    if (!region) return "all";
    std::string text;
    for (const RECTL& rectangle : region->rectangles()) text += (text.empty() ? "" : " | ") + describe(rectangle);
    return text.empty() ? "nothing" : text;
}

struct CanvasCall {
    enum class Kind { Stroke, Fill, StrokeAndFill, PatBlt, Image, Text };
    Kind kind{};
    std::string clip;
    engine::Path path;
    engine::Pen pen;
    XFORM worldToDevice{};
    engine::Brush brush;
    engine::FillMode mode{};
    int rop2 = 0;
    RECTL target{};
    std::uint8_t rop3 = 0;
    engine::Image image;
    RECTL source{};
    int stretchMode = 0;
    ROP4 rop4 = 0;
    std::optional<engine::Image> mask;
    POINTL maskOrigin{};
    engine::GlyphRun run;
    COLORREF colour = 0;
    COLORREF background = 0;
    std::optional<RECTL> opaque;
    COLORREF textForeground = 0;
    COLORREF textBackground = 0;
};

class RecordingCanvas : public engine::Canvas {
  public:
    explicit RecordingCanvas(SIZEL size = {1000, 1000}) : m_size(size) {}

    std::vector<CanvasCall> calls;
    int callsUntilFailure = -1;  // -1: never

    [[nodiscard]] SIZEL pageSize() const override { return m_size; }
    [[nodiscard]] double dpi() const override { return 254.0; }
    [[nodiscard]] bool ok() const override { return callsUntilFailure < 0 || static_cast<int>(calls.size()) < callsUntilFailure; }
    void setClip(std::optional<engine::Region> clip) override { m_clip = std::move(clip); }
    void strokePath(const engine::Path& path, const engine::Pen& pen, const XFORM& worldToDevice, int rop2) override {
        CanvasCall& call = add(CanvasCall::Kind::Stroke);
        call.path = path;
        call.pen = pen;
        call.worldToDevice = worldToDevice;
        call.rop2 = rop2;
    }
    void fillPath(const engine::Path& path, const engine::Brush& brush, engine::FillMode mode, int rop2) override {
        CanvasCall& call = add(CanvasCall::Kind::Fill);
        call.path = path;
        call.brush = brush;
        call.mode = mode;
        call.rop2 = rop2;
    }
    void strokeAndFillPath(const engine::Path& path, const engine::Pen& pen, const XFORM& worldToDevice, const engine::Brush& brush,
                           engine::FillMode mode, int rop2) override {
        strokePath(path, pen, worldToDevice, rop2);
        calls.back().kind = CanvasCall::Kind::StrokeAndFill;
        calls.back().brush = brush;
        calls.back().mode = mode;
    }
    void patBlt(const RECTL& target, const engine::Brush& brush, std::uint8_t rop3) override {
        CanvasCall& call = add(CanvasCall::Kind::PatBlt);
        call.target = target;
        call.brush = brush;
        call.rop3 = rop3;
    }
    void drawImage(const RECTL& target, const engine::Image& source, const RECTL& sourceRect, int stretchMode, ROP4 rop4,
                   const engine::Brush& brush, const engine::Image* mask, POINTL maskOrigin) override {
        CanvasCall& call = add(CanvasCall::Kind::Image);
        call.target = target;
        call.image = source;
        call.source = sourceRect;
        call.stretchMode = stretchMode;
        call.rop4 = rop4;
        call.brush = brush;
        if (mask != nullptr) call.mask = *mask;
        call.maskOrigin = maskOrigin;
    }
    void setTextColours(COLORREF foreground, COLORREF background) override {
        m_foreground = foreground;
        m_background = background;
    }
    void textOut(const engine::GlyphRun& run, COLORREF colour, const RECTL* opaque, COLORREF background) override {
        CanvasCall& call = add(CanvasCall::Kind::Text);
        call.run = run;
        call.colour = colour;
        if (opaque != nullptr) call.opaque = *opaque;
        call.background = background;
    }

  private:
    CanvasCall& add(CanvasCall::Kind kind) {
        CanvasCall& call = calls.emplace_back();
        call.kind = kind;
        call.clip = describe(m_clip);
        call.textForeground = m_foreground;
        call.textBackground = m_background;
        return call;
    }

    SIZEL m_size;
    std::optional<engine::Region> m_clip;
    COLORREF m_foreground = 0;
    COLORREF m_background = 0;
};

}  // namespace morvil::test
