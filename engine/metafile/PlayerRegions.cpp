// PlayerRegions.cpp - clipping, and the drawing of regions. Clip regions come in pixels of the reference device, regions to draw
// in logical units.
#include <cmath>

#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

constexpr std::uint8_t kPatCopy = 0xF0;
constexpr std::uint8_t kInvert = 0x55;

enum RegionMode : ULONG { kAnd = 1, kOr, kXor, kDiff, kCopy };

Box boxOf(const RECTL& rectangle) {
    return {static_cast<double>(rectangle.left), static_cast<double>(rectangle.top), static_cast<double>(rectangle.right),
            static_cast<double>(rectangle.bottom)};
}

// Axis-aligned: edges at the nearest whole pixels, so that neighbours stay neighbours.
RECTL pixelsOf(const Box& box, const Matrix& toPage) {
    const Point a = toPage.apply({box.left, box.top});
    const Point b = toPage.apply({box.right, box.bottom});
    const Box ordered = Box{a.x, a.y, b.x, b.y}.ordered();
    return {toPixel(ordered.left), toPixel(ordered.top), toPixel(ordered.right), toPixel(ordered.bottom)};
}

}  // namespace

Region Player::regionOf(const Box& box, const Matrix& toPage) const {
    if (toPage.axisAligned()) {
        const RECTL pixels = pixelsOf(box, toPage);
        return pixels.left < pixels.right && pixels.top < pixels.bottom ? Region(pixels) : Region();
    }
    Path path;
    Outline outline(path, toPage);
    addRectangle(outline, box, false);
    return Region::fromPath(path, false, pageRectangle());
}

Region Player::readRegion(const Record& record, std::size_t offset, std::size_t length, const Matrix& toPage) const {
    constexpr std::size_t kHeader = 32;
    constexpr ULONG kRectangles = 1;
    const Record data(record.block(offset, length));
    if (data.u32(0) != kHeader || data.u32(4) != kRectangles) throw DamagedRecord("a region of unknown kind");
    const std::size_t count = data.u32(8);
    data.require(kHeader, count, 16, "rectangles");
    if (toPage.axisAligned()) {
        std::vector<RECTL> rectangles;
        rectangles.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const RECTL pixels = pixelsOf(boxOf(data.rect(kHeader + 16 * i)), toPage);
            if (pixels.left < pixels.right && pixels.top < pixels.bottom) rectangles.push_back(pixels);
        }
        return Region(std::span<const RECTL>(rectangles));
    }
    Path path;
    Outline outline(path, toPage);
    for (std::size_t i = 0; i < count; ++i) addRectangle(outline, boxOf(data.rect(kHeader + 16 * i)), false);
    return Region::fromPath(path, false, pageRectangle());
}

// Without a clip so far, all of the page is inside.
void Player::combineClip(Region region, ULONG mode) {
    Region result = m_state.clip ? *m_state.clip : Region(pageRectangle());
    switch (mode) {
        case kAnd:
            if (m_state.clip) {
                result.intersect(region);
            } else {
                result = std::move(region);
            }
            break;
        case kOr: result.unite(region); break;
        case kXor: result.exclusiveOr(region); break;
        case kDiff: result.subtract(region); break;
        case kCopy: result = std::move(region); break;
        default: throw DamagedRecord("there is no way " + std::to_string(mode) + " to combine regions");
    }
    m_state.clip = std::make_shared<const Region>(std::move(result));
}

void Player::intersectClipRectangle(const Record& record) { combineClip(regionOf(boxOf(record.rect(8)), logicalToPage()), kAnd); }

void Player::excludeClipRectangle(const Record& record) { combineClip(regionOf(boxOf(record.rect(8)), logicalToPage()), kDiff); }

void Player::offsetClip(const Record& record) {
    const Point shift = logicalToPage().applyToVector(record.point(8));
    if (!m_state.clip) return;
    constexpr LONG kFarthest = 1 << 26;
    const LONG dx = toPixel(shift.x);
    const LONG dy = toPixel(shift.y);
    Region moved = *m_state.clip;
    const RECTL bounds = moved.bounds();
    const auto leaves = [](std::int64_t edge, LONG by) { return std::abs(edge + by) > kFarthest; };
    const bool away = leaves(bounds.left, dx) || leaves(bounds.right, dx) || leaves(bounds.top, dy) || leaves(bounds.bottom, dy);
    if (away) throw DamagedRecord("the clip region would leave the range of coordinates");
    moved.translate(dx, dy);
    m_state.clip = std::make_shared<const Region>(std::move(moved));
}

void Player::selectClipRegion(const Record& record) {
    const std::size_t length = record.u32(8);
    const ULONG mode = record.u32(12);
    if (length == 0) {
        if (mode != kCopy) throw DamagedRecord("no region to combine with");
        m_state.clip = nullptr;
        return;
    }
    combineClip(readRegion(record, 16, length, m_deviceToPage), mode);
}

// The clip so far becomes a part that later clips cannot undo.
void Player::setMetaRegion(const Record&) {
    if (!m_state.clip) return;
    if (m_state.metaClip) {
        Region both = *m_state.metaClip;
        both.intersect(*m_state.clip);
        m_state.metaClip = std::make_shared<const Region>(std::move(both));
    } else {
        m_state.metaClip = m_state.clip;
    }
    m_state.clip = nullptr;
}

void Player::paintRectangles(const Region& region, const Brush& brush, std::uint8_t rop3) {
    if (brush.kind == BrushKind::Null && rop3 == kPatCopy) return;
    Region visible = region;
    visible.intersect(Region(pageRectangle()));
    if (visible.empty()) return;
    prepareCanvas();
    for (const RECTL& rectangle : visible.rectangles()) m_canvas.patBlt(rectangle, brush, rop3);
}

namespace {

std::shared_ptr<const BrushObject> brushOf(const ObjectPointer& object) {
    const auto* brush = std::get_if<std::shared_ptr<const BrushObject>>(&object);
    if (brush == nullptr) throw DamagedRecord("the handle is no brush");
    return *brush;
}

}  // namespace

void Player::fillRegion(const Record& record) {
    const auto brush = brushOf(m_objects.find(record.u32(28)));
    paintRectangles(readRegion(record, 32, record.u32(24), logicalToPage()), realiseBrush(*brush), kPatCopy);
}

// The frame is what the region loses when everything within the given distance of its outside goes.
void Player::frameRegion(const Record& record) {
    const auto brush = brushOf(m_objects.find(record.u32(28)));
    const Matrix matrix = logicalToPage();
    const Point stroke = record.point(32);
    const Region region = readRegion(record, 40, record.u32(24), matrix);
    if (region.empty()) return;
    const auto length = [](Point vector) { return std::max(LONG{1}, toPixel(std::hypot(vector.x, vector.y))); };
    const LONG width = length(matrix.applyToVector({stroke.x, 0.0}));
    const LONG height = length(matrix.applyToVector({0.0, stroke.y}));
    const RECTL bounds = region.bounds();
    Region outside(RECTL{bounds.left - 1, bounds.top - 1, bounds.right + 1, bounds.bottom + 1});
    outside.subtract(region);
    std::vector<RECTL> grown = outside.rectangles();
    for (RECTL& rectangle : grown) {
        rectangle = {rectangle.left - width, rectangle.top - height, rectangle.right + width, rectangle.bottom + height};
    }
    Region frame = region;
    frame.intersect(Region(std::span<const RECTL>(grown)));
    paintRectangles(frame, realiseBrush(*brush), kPatCopy);
}

void Player::invertRegion(const Record& record) {
    paintRectangles(readRegion(record, 28, record.u32(24), logicalToPage()), Brush(), kInvert);
}

void Player::paintRegion(const Record& record) {
    paintRectangles(readRegion(record, 28, record.u32(24), logicalToPage()), realiseBrush(*m_state.brush), kPatCopy);
}

}  // namespace morvil::engine
