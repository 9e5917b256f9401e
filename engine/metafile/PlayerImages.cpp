// PlayerImages.cpp - pictures. Upright ones go to the canvas as they are; turned and sheared ones, and those mapped onto a
// parallelogram, are computed pixel by pixel.
#include <algorithm>
#include <cmath>

#include "engine/metafile/Dib.h"
#include "engine/metafile/Player.h"

namespace morvil::engine {

namespace {

constexpr std::uint8_t kKeepTarget = 0xAA;
constexpr std::uint8_t kSourceCopy = 0xCC;
constexpr ROP4 kCopyWhereMask = kKeepTarget << 8 | kSourceCopy;
constexpr std::int64_t kWidestTarget = std::int64_t{1} << 17;  // wider ones are cut to the page by computing them
constexpr std::int64_t kStripPixels = std::int64_t{1} << 21;

ROP4 both(std::uint8_t rop3) { return static_cast<ROP4>(rop3) << 8 | rop3; }
std::uint8_t ropOf(ULONG code) { return static_cast<std::uint8_t>(code >> 16); }
bool needsSource(std::uint8_t rop3) { return ((rop3 >> 2 ^ rop3) & 0x33) != 0; }

Point sum(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
Point scaledBy(Point vector, double factor) { return {vector.x * factor, vector.y * factor}; }

std::int64_t distance(LONG a, LONG b) { return std::abs(static_cast<std::int64_t>(a) - b); }

// The part [from, to) of a line of pixels that begins at `origin` and is `extent` long (negative: to the left), within `limit`.
struct Span {
    LONG from = 0;
    LONG to = 0;
};
Span spanWithin(double origin, double extent, LONG limit) {
    const double from = std::min(origin, origin + extent);
    const double to = std::max(origin, origin + extent);
    const auto bounded = [limit](double value) {
        return static_cast<LONG>(std::floor(std::clamp(value, 0.0, static_cast<double>(limit)) + 0.5));
    };
    return {bounded(from), bounded(to)};
}

}  // namespace

// The members that all blits with a source rectangle share.
struct Player::BlitRecord {
    Point origin;
    Point extent;
    std::uint8_t rop3;
    Source source;
    Place place;
};

Player::Place Player::placeOf(Point origin, Point extent) const {
    const Matrix matrix = logicalToPage();
    return {matrix.apply(origin), matrix.applyToVector({extent.x, 0.0}), matrix.applyToVector({0.0, extent.y})};
}

// `places`: offset and size of header and of bits. None when the record carries no picture.
std::optional<Image> Player::readImage(const Record& record, std::size_t places, std::size_t usage) const {
    const std::size_t headerSize = record.u32(places + 4);
    if (headerSize == 0) return std::nullopt;
    const auto info = record.block(record.u32(places), headerSize);
    const auto bits = record.block(record.u32(places + 8), record.u32(places + 12));
    return readDib(info, bits, record.u32(usage), *m_state.palette);
}

void Player::paintPlace(const Place& place, std::uint8_t rop3) {
    if (rop3 == kKeepTarget) return;
    const Matrix toPage{place.right.x, place.right.y, place.down.x, place.down.y, place.origin.x, place.origin.y};
    paintRectangles(regionOf({0.0, 0.0, 1.0, 1.0}, toPage), realiseBrush(*m_state.brush), rop3);
}

void Player::drawImage(const Image& image, Source source, Place place, ROP4 rop4, const Image* mask, POINTL maskOrigin) {
    if (source.extent.x == 0.0 || source.extent.y == 0.0) return;
    if ((rop4 & 0xFFFFU) == both(kKeepTarget)) return;
    // Of the source only what exists is drawn, at the place where it belongs. With a mask both must exist.
    Span x = spanWithin(source.origin.x, source.extent.x, image.width);
    Span y = spanWithin(source.origin.y, source.extent.y, image.height);
    const LONG left = toPixel(std::min(source.origin.x, source.origin.x + source.extent.x));
    const LONG top = toPixel(std::min(source.origin.y, source.origin.y + source.extent.y));
    if (mask != nullptr) {
        if (maskOrigin.x < 0 || maskOrigin.y < 0 || maskOrigin.x >= mask->width || maskOrigin.y >= mask->height) return;
        x.to = static_cast<LONG>(std::min<std::int64_t>(x.to, std::int64_t{left} + mask->width - maskOrigin.x));
        y.to = static_cast<LONG>(std::min<std::int64_t>(y.to, std::int64_t{top} + mask->height - maskOrigin.y));
    }
    if (x.from >= x.to || y.from >= y.to) return;
    const RECTL rectangle{x.from, y.from, x.to, y.to};
    const auto fraction = [](LONG at, double origin, double extent) { return (at - origin) / extent; };
    const double x0 = fraction(source.extent.x > 0 ? x.from : x.to, source.origin.x, source.extent.x);
    const double x1 = fraction(source.extent.x > 0 ? x.to : x.from, source.origin.x, source.extent.x);
    const double y0 = fraction(source.extent.y > 0 ? y.from : y.to, source.origin.y, source.extent.y);
    const double y1 = fraction(source.extent.y > 0 ? y.to : y.from, source.origin.y, source.extent.y);
    Place drawn{sum(place.origin, sum(scaledBy(place.right, x0), scaledBy(place.down, y0))), scaledBy(place.right, x1 - x0),
                scaledBy(place.down, y1 - y0)};
    // From here on the source runs to the right and down; a mirrored one turns its place round.
    if (source.extent.x < 0) drawn = {sum(drawn.origin, drawn.right), scaledBy(drawn.right, -1.0), drawn.down};
    if (source.extent.y < 0) drawn = {sum(drawn.origin, drawn.down), drawn.right, scaledBy(drawn.down, -1.0)};
    if (mask != nullptr) maskOrigin = {maskOrigin.x + x.from - left, maskOrigin.y + y.from - top};

    constexpr double kNegligible = 0.01;  // pixels
    const bool upright = std::fabs(drawn.right.y) < kNegligible && std::fabs(drawn.down.x) < kNegligible;
    const RECTL target{toPixel(drawn.origin.x), toPixel(drawn.origin.y), toPixel(drawn.origin.x + drawn.right.x),
                       toPixel(drawn.origin.y + drawn.down.y)};
    if (upright && distance(target.left, target.right) <= kWidestTarget && distance(target.top, target.bottom) <= kWidestTarget) {
        if (target.left == target.right || target.top == target.bottom) return;
        prepareCanvas();
        m_canvas.drawImage(target, image, rectangle, m_state.stretchMode, rop4, realiseBrush(*m_state.brush), mask, maskOrigin);
        return;
    }
    drawResampled(image, rectangle, drawn, rop4, mask, maskOrigin);
}

// Each page pixel takes the source pixel that lies under its centre.
void Player::drawResampled(const Image& image, const RECTL& source, const Place& place, ROP4 rop4, const Image* mask, POINTL maskOrigin) {
    const Matrix toPage{place.right.x, place.right.y, place.down.x, place.down.y, place.origin.x, place.origin.y};
    if (toPage.determinant() == 0.0) return;
    const Matrix toSource = toPage.inverse();
    const Point corners[] = {place.origin, sum(place.origin, place.right), sum(place.origin, place.down),
                             sum(place.origin, sum(place.right, place.down))};
    const auto byX = [](Point a, Point b) { return a.x < b.x; };
    const auto byY = [](Point a, Point b) { return a.y < b.y; };
    const auto [minX, maxX] = std::minmax_element(std::begin(corners), std::end(corners), byX);
    const auto [minY, maxY] = std::minmax_element(std::begin(corners), std::end(corners), byY);
    const RECTL area{toPixel(minX->x) - 1, toPixel(minY->y) - 1, toPixel(maxX->x) + 1, toPixel(maxY->y) + 1};
    const LONG width = source.right - source.left;
    const LONG height = source.bottom - source.top;

    // Where the mask is 1 the low byte of the code holds, elsewhere the high one: one pass each.
    for (const std::uint32_t wanted : {1U, 0U}) {
        const auto rop3 = static_cast<std::uint8_t>(wanted == 1 ? rop4 : rop4 >> 8);
        if (rop3 == kKeepTarget || (mask == nullptr && wanted == 0)) continue;
        drawComputed(area, rop3, [&](double x, double y, std::span<COLORREF> row) {
            Point at = toSource.apply({x, y});
            for (COLORREF& pixel : row) {
                if (at.x >= 0.0 && at.x < 1.0 && at.y >= 0.0 && at.y < 1.0) {
                    const LONG column = std::min(width - 1, static_cast<LONG>(at.x * width));
                    const LONG line = std::min(height - 1, static_cast<LONG>(at.y * height));
                    const bool drawn = mask == nullptr || pixelAt(*mask, maskOrigin.x + column, maskOrigin.y + line) == wanted;
                    if (drawn) pixel = colourOf(image, pixelAt(image, source.left + column, source.top + line));
                }
                at = {at.x + toSource.m11, at.y + toSource.m12};
            }
        });
    }
}

void Player::drawComputed(const RECTL& area, std::uint8_t rop3, const ComputeRow& computeRow) {
    const RECTL page = pageRectangle();
    const RECTL visible{std::max(area.left, page.left), std::max(area.top, page.top), std::min(area.right, page.right),
                        std::min(area.bottom, page.bottom)};
    if (visible.left >= visible.right || visible.top >= visible.bottom) return;
    const LONG width = visible.right - visible.left;
    m_computedPixelsLeft -= static_cast<std::int64_t>(width) * (visible.bottom - visible.top);
    if (m_computedPixelsLeft < 0) throw DamagedRecord("too many pixels to compute one by one");
    const LONG rows = static_cast<LONG>(std::max<std::int64_t>(1, kStripPixels / width));
    const Brush brush = realiseBrush(*m_state.brush);
    std::vector<COLORREF> row(static_cast<std::size_t>(width));
    prepareCanvas();
    for (LONG top = visible.top; top < visible.bottom; top += rows) {
        const LONG height = std::min(rows, visible.bottom - top);
        Image strip = makeColourImage(width, height);
        Image mask = makeMask(width, height);
        bool some = false;
        for (LONG y = 0; y < height; ++y) {
            std::ranges::fill(row, kNoColour);
            computeRow(visible.left + 0.5, top + y + 0.5, row);
            for (LONG x = 0; x < width; ++x) {
                const COLORREF pixel = row[static_cast<std::size_t>(x)];
                if (pixel == kNoColour) continue;
                setColour(strip, x, y, pixel);
                setMask(mask, x, y);
                some = true;
            }
        }
        if (!some) continue;
        const RECTL target{visible.left, top, visible.right, top + height};
        const ROP4 rop4 = static_cast<ROP4>(kKeepTarget) << 8 | rop3;
        m_canvas.drawImage(target, strip, {0, 0, width, height}, COLORONCOLOR, rop4, brush, &mask, {0, 0});
    }
}

namespace {

// Source coordinates go through a transform of their own.
Point throughSource(const Record& record, std::size_t xform, Point point) { return Matrix::from(record.xform(xform)).apply(point); }
Point vectorThroughSource(const Record& record, std::size_t xform, Point vector) {
    const Matrix matrix = Matrix::from(record.xform(xform));
    return {vector.x * matrix.m11, vector.y * matrix.m22};
}

}  // namespace

void Player::drawBlit(const BlitRecord& blit, const std::optional<Image>& image) {
    if (!needsSource(blit.rop3)) {
        paintPlace(blit.place, blit.rop3);
    } else if (image) {
        drawImage(*image, blit.source, blit.place, both(blit.rop3));
    } else {
        throw DamagedRecord("the raster operation needs a picture, but there is none");
    }
}

void Player::bitBlt(const Record& record) {
    BlitRecord blit{.origin = record.point(24), .extent = record.point(32), .rop3 = ropOf(record.u32(40)), .source = {}, .place = {}};
    blit.source = {throughSource(record, 52, record.point(44)), vectorThroughSource(record, 52, blit.extent)};
    blit.place = placeOf(blit.origin, blit.extent);
    drawBlit(blit, needsSource(blit.rop3) ? readImage(record, 84, 80) : std::nullopt);
}

void Player::stretchBlt(const Record& record) {
    BlitRecord blit{.origin = record.point(24), .extent = record.point(32), .rop3 = ropOf(record.u32(40)), .source = {}, .place = {}};
    blit.source = {throughSource(record, 52, record.point(44)), vectorThroughSource(record, 52, record.point(100))};
    blit.place = placeOf(blit.origin, blit.extent);
    drawBlit(blit, needsSource(blit.rop3) ? readImage(record, 84, 80) : std::nullopt);
}

void Player::maskBlt(const Record& record) {
    const ULONG code = record.u32(40);
    const std::uint8_t foreground = ropOf(code);
    const auto background = static_cast<std::uint8_t>(code >> 24);
    BlitRecord blit{.origin = record.point(24), .extent = record.point(32), .rop3 = foreground, .source = {}, .place = {}};
    blit.source = {throughSource(record, 52, record.point(44)), vectorThroughSource(record, 52, blit.extent)};
    blit.place = placeOf(blit.origin, blit.extent);
    const auto image = readImage(record, 84, 80);
    const auto mask = readImage(record, 112, 108);
    if (!mask || !image) {
        drawBlit(blit, image);
        return;
    }
    if (mask->bitsPerPixel != 1) throw DamagedRecord("the mask has more than one bit per pixel");
    drawImage(*image, blit.source, blit.place, static_cast<ROP4>(background) << 8 | foreground, &*mask, {record.i32(100), record.i32(104)});
}

// The three points are the upper left, upper right and lower left corner of the picture's place.
void Player::parallelogramBlt(const Record& record) {
    const Matrix matrix = logicalToPage();
    const Point origin = matrix.apply(record.point(24));
    const Point right = matrix.apply(record.point(32));
    const Point down = matrix.apply(record.point(40));
    const Place place{origin, {right.x - origin.x, right.y - origin.y}, {down.x - origin.x, down.y - origin.y}};
    const Source source{throughSource(record, 64, record.point(48)), vectorThroughSource(record, 64, record.point(56))};
    const auto image = readImage(record, 96, 92);
    const auto mask = readImage(record, 124, 120);
    if (!image) throw DamagedRecord("there is no picture");
    if (!mask) {
        drawImage(*image, source, place, both(kSourceCopy));
        return;
    }
    if (mask->bitsPerPixel != 1) throw DamagedRecord("the mask has more than one bit per pixel");
    drawImage(*image, source, place, kCopyWhereMask, &*mask, {record.i32(112), record.i32(116)});
}

// The bits hold only some rows of the bitmap; its source rectangle counts from the bitmap's first stored row. The picture has the
// size of its pixels on the reference device.
void Player::setBitsToDevice(const Record& record) {
    const Point at = record.point(24);
    const Point from = record.point(32);
    const Point size{static_cast<double>(record.u32(40)), static_cast<double>(record.u32(44))};
    const auto info = record.block(record.u32(48), record.u32(52));
    const auto bits = record.block(record.u32(56), record.u32(60));
    const auto rows = readDibHeight(info);
    const double firstRow = record.u32(68);
    const ULONG lines = record.u32(72);
    if (lines == 0 || lines > static_cast<ULONG>(rows.rows) || firstRow + lines > rows.rows)
        throw DamagedRecord("rows that the bitmap does not have");
    const Image image = readDib(info, bits, record.u32(64), *m_state.palette, static_cast<LONG>(lines));
    const Point origin = logicalToPage().apply(at);
    const Place place{origin, m_deviceToPage.applyToVector({size.x, 0.0}), m_deviceToPage.applyToVector({0.0, size.y})};
    // As rows from the top of what is there.
    const double top = image.topDown ? from.y - firstRow : firstRow + lines - from.y - size.y;
    drawImage(image, {{from.x, top}, size}, place, both(kSourceCopy));
}

// The source rectangle of a bottom-up bitmap counts from its lower left corner.
void Player::stretchBits(const Record& record) {
    const std::uint8_t rop3 = ropOf(record.u32(68));
    const Place place = placeOf(record.point(24), record.point(72));
    if (!needsSource(rop3)) {
        paintPlace(place, rop3);
        return;
    }
    const auto image = readImage(record, 48, 64);
    if (!image) throw DamagedRecord("there is no picture");
    Source source{record.point(32), record.point(40)};
    if (!image->topDown) source.origin.y = image->height - source.origin.y - source.extent.y;
    drawImage(*image, source, place, both(rop3));
}

// What is transparent all over keeps the page as it is; everything else is mixed with white, since the page cannot be read back.
void Player::alphaBlend(const Record& record) {
    constexpr std::uint8_t kPerPixel = 1;
    constexpr ULONG kOpaque = 255;
    const ULONG constantAlpha = record.u8(42);
    const bool perPixel = (record.u8(43) & kPerPixel) != 0;
    const Place place = placeOf(record.point(24), record.point(32));
    const Source source{throughSource(record, 52, record.point(44)), vectorThroughSource(record, 52, record.point(100))};
    const auto image = readImage(record, 84, 80);
    if (!image) throw DamagedRecord("there is no picture");
    if (constantAlpha == 0) return;
    if (perPixel && image->bitsPerPixel != 32) throw DamagedRecord("a picture of less than 32 bits per pixel has no transparency");
    if (constantAlpha == kOpaque && !perPixel) {
        drawImage(*image, source, place, both(kSourceCopy));
        return;
    }
    if (static_cast<std::int64_t>(image->width) * image->height > kLargestDecodedImage) throw DamagedRecord("too large a picture to blend");
    Image mixed = makeColourImage(image->width, image->height);
    Image mask = makeMask(image->width, image->height);
    for (LONG y = 0; y < image->height; ++y) {
        for (LONG x = 0; x < image->width; ++x) {
            const std::uint32_t pixel = pixelAt(*image, x, y);
            const ULONG pixelAlpha = perPixel ? pixel >> 24 : kOpaque;
            if (pixelAlpha == 0) continue;
            const COLORREF colour = colourOf(*image, pixel);
            // Colours with their own transparency are stored already multiplied with it.
            const auto mix = [&](ULONG value) {
                const ULONG own = (value * constantAlpha + 127) / kOpaque;
                const ULONG alpha = (pixelAlpha * constantAlpha + 127) / kOpaque;
                return std::min(kOpaque, own + (kOpaque - alpha));
            };
            setColour(mixed, x, y, RGB(mix(GetRValue(colour)), mix(GetGValue(colour)), mix(GetBValue(colour))));
            setMask(mask, x, y);
        }
    }
    const POINTL maskOrigin{toPixel(std::min(source.origin.x, source.origin.x + source.extent.x)),
                            toPixel(std::min(source.origin.y, source.origin.y + source.extent.y))};
    drawImage(mixed, source, place, kCopyWhereMask, &mask, maskOrigin);
}

void Player::transparentBlt(const Record& record) {
    const COLORREF key = colour(record.u32(40));
    const Place place = placeOf(record.point(24), record.point(32));
    const Source source{throughSource(record, 52, record.point(44)), vectorThroughSource(record, 52, record.point(100))};
    const auto image = readImage(record, 84, 80);
    if (!image) throw DamagedRecord("there is no picture");
    Image mask = makeMask(image->width, image->height);
    for (LONG y = 0; y < image->height; ++y) {
        for (LONG x = 0; x < image->width; ++x) {
            if (colourOf(*image, pixelAt(*image, x, y)) != key) setMask(mask, x, y);
        }
    }
    const POINTL maskOrigin{toPixel(std::min(source.origin.x, source.origin.x + source.extent.x)),
                            toPixel(std::min(source.origin.y, source.origin.y + source.extent.y))};
    drawImage(*image, source, place, kCopyWhereMask, &mask, maskOrigin);
}

}  // namespace morvil::engine
