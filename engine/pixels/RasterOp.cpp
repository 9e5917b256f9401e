// RasterOp.cpp - ternary codes on bytes, pattern rows and clipping to rectangles.
#include "engine/pixels/RasterOp.h"

#include <algorithm>
#include <cstring>

#include "engine/pixels/Formats.h"

namespace morvil::engine {
namespace {

constexpr std::uint8_t kRopNothing = 0xAA;

// A ternary code as a function on words: for each pattern and source bit, what becomes of target bits 0 and 1.
class BitFunction {
  public:
    explicit BitFunction(std::uint8_t rop) {
        for (unsigned k = 0; k < 8; ++k) m_results[k] = ((rop >> k) & 1U) != 0 ? ~std::uint64_t{0} : 0;
    }
    [[nodiscard]] std::uint64_t operator()(std::uint64_t p, std::uint64_t s, std::uint64_t d) const {
        const std::uint64_t s0 = choose(s, choose(d, m_results[0], m_results[1]), choose(d, m_results[2], m_results[3]));
        const std::uint64_t s1 = choose(s, choose(d, m_results[4], m_results[5]), choose(d, m_results[6], m_results[7]));
        return choose(p, s0, s1);
    }

  private:
    static std::uint64_t choose(std::uint64_t bits, std::uint64_t zero, std::uint64_t one) { return zero ^ (bits & (zero ^ one)); }
    std::array<std::uint64_t, 8> m_results{};
};

std::uint64_t load(const std::uint8_t* from, std::size_t bytes) {
    std::uint64_t word = 0;
    if (from != nullptr) std::memcpy(&word, from, bytes);
    return word;
}

LONG positiveRemainder(std::int64_t value, LONG divisor) {
    const std::int64_t remainder = value % divisor;
    return static_cast<LONG>(remainder < 0 ? remainder + divisor : remainder);
}

const std::uint8_t* advanced(const std::uint8_t* pointer, std::size_t bytes) { return pointer == nullptr ? nullptr : pointer + bytes; }

}  // namespace

std::uint8_t ropOfMix(int rop2) {
    // Each code says of a pen bit and a target bit what two bits of the mix number say: R2_ numbers are one more than the
    // function's own number, with the pen as the higher bit.
    constexpr int kCopyPen = 13;
    if (rop2 < 1 || rop2 > 16) rop2 = kCopyPen;
    const unsigned function = static_cast<unsigned>(rop2 - 1);
    const unsigned penZero = function & 3U;  // result for target 0 and 1 where the pen is 0
    const unsigned penOne = (function >> 2) & 3U;
    return static_cast<std::uint8_t>((penZero * 5U) | ((penOne * 5U) << 4));  // the source bit does not matter
}

RowPainter::RowPainter(EngineSurface& target, const EngineBrush* brush, const POINTL* brushOrigin, RasterCodes codes, const RECTL& extent)
    : m_target(target),
      m_brush(brush),
      m_codes(codes),
      m_extent(extent),
      m_bits(bitsOf(target)),
      m_usesPattern(brush != nullptr && (ropNeedsPattern(codes.foreground) || ropNeedsPattern(codes.background))),
      m_firstByte(byteOfPixel(extent.left, m_bits)) {
    if (!m_usesPattern) return;
    m_origin = brushOrigin == nullptr ? brush->origin : *brushOrigin;
    m_solid = brush->pattern.empty() || brush->patternWidth <= 0 || brush->patternHeight <= 0;
    m_hasHoles = !m_solid && !brush->opaque.empty();
    // Tall pictures are packed row by row as they come, so that memory stays at one row.
    constexpr LONG kMostKeptRows = 16;
    const bool keepRows = !m_solid && brush->patternHeight <= kMostKeptRows;
    m_rows.resize(keepRows ? static_cast<std::size_t>(brush->patternHeight) : 1);
}

const RowPainter::PatternRow* RowPainter::patternRow(LONG y) {
    if (!m_usesPattern) return nullptr;
    const LONG patternY = m_solid ? 0 : positiveRemainder(static_cast<std::int64_t>(y) - m_origin.y, m_brush->patternHeight);
    const bool kept = m_solid || m_rows.size() == static_cast<std::size_t>(m_brush->patternHeight);
    PatternRow& row = m_rows[kept ? static_cast<std::size_t>(patternY) : 0];
    if (!row.ready || !kept) fillPatternRow(row, patternY);
    return &row;
}

void RowPainter::fillPatternRow(PatternRow& row, LONG patternY) {
    const LONG width = m_extent.right - m_extent.left;
    const auto bytes = static_cast<std::size_t>(packedRowBytes(width, m_bits)) + 1;  // one more for a row that begins inside a byte
    row.bits.assign(bytes, 0);
    row.ready = true;
    if (m_solid && m_bits == 8) {
        std::fill(row.bits.begin(), row.bits.end(), static_cast<std::uint8_t>(m_brush->iSolidColor));
        return;
    }
    std::vector<ULONG> values(static_cast<std::size_t>(width), m_brush->iSolidColor);
    if (!m_solid) {
        const std::size_t start = static_cast<std::size_t>(patternY) * static_cast<std::size_t>(m_brush->patternWidth);
        LONG column = positiveRemainder(static_cast<std::int64_t>(m_extent.left) - m_origin.x, m_brush->patternWidth);
        const LONG firstColumn = column;
        const auto spread = [&](const auto& from, auto convert) {
            column = firstColumn;
            for (ULONG& value : values) {
                value = convert(from[start + static_cast<std::size_t>(column)]);
                if (++column == m_brush->patternWidth) column = 0;
            }
        };
        if (m_hasHoles) {
            spread(m_brush->opaque, [](std::uint8_t opaque) { return opaque != 0 ? 0xFFFFFFFFU : 0U; });
            row.opaque.assign(bytes, 0);
            packPixels(values.data(), m_bits, m_extent.left, width, row.opaque.data());
        }
        spread(m_brush->pattern, [](ULONG value) { return value; });
    }
    packPixels(values.data(), m_bits, m_extent.left, width, row.bits.data());
}

void RowPainter::paintMiddle(std::uint8_t* target, const Operands& operands, std::size_t bytes) const {
    const bool plain = operands.mask == nullptr && operands.opaque == nullptr;
    if (plain) {
        switch (m_codes.foreground) {
            case 0x00: std::memset(target, 0x00, bytes); return;
            case 0xFF: std::memset(target, 0xFF, bytes); return;
            case kRopNothing: return;
            case 0xF0:
                if (operands.pattern != nullptr) std::memcpy(target, operands.pattern, bytes);
                return;
            case 0xCC:
                if (operands.source != nullptr) std::memmove(target, operands.source, bytes);
                return;
            default: break;
        }
    }
    const BitFunction foreground(m_codes.foreground);
    const BitFunction background(m_codes.background);
    for (std::size_t at = 0; at < bytes; at += sizeof(std::uint64_t)) {
        const std::size_t part = std::min(sizeof(std::uint64_t), bytes - at);
        const std::uint64_t d = load(target + at, part);
        const std::uint64_t p = load(advanced(operands.pattern, at), part);
        const std::uint64_t s = load(advanced(operands.source, at), part);
        std::uint64_t result = foreground(p, s, d);
        if (operands.mask != nullptr) {
            const std::uint64_t m = load(operands.mask + at, part);
            result = (result & m) | (background(p, s, d) & ~m);
        }
        if (operands.opaque != nullptr) {
            const std::uint64_t o = load(operands.opaque + at, part);
            result = (result & o) | (d & ~o);
        }
        std::memcpy(target + at, &result, part);
    }
}

void RowPainter::paintPart(std::uint8_t* target, const Operands& operands, std::size_t at, std::uint8_t bits) const {
    const Operands shifted{advanced(operands.pattern, at), advanced(operands.source, at), advanced(operands.mask, at),
                           advanced(operands.opaque, at)};
    std::uint8_t changed = target[at];
    paintMiddle(&changed, shifted, 1);
    target[at] = static_cast<std::uint8_t>((changed & bits) | (target[at] & ~bits));
}

void RowPainter::paint(LONG y, LONG x0, LONG x1, const std::uint8_t* source, const std::uint8_t* mask) {
    if (x0 >= x1) return;
    const std::int64_t firstBit = static_cast<std::int64_t>(x0) * m_bits;
    const std::int64_t endBit = static_cast<std::int64_t>(x1) * m_bits;
    const auto firstByte = static_cast<std::size_t>(firstBit / 8);
    const std::size_t bytes = static_cast<std::size_t>((endBit + 7) / 8) - firstByte;
    const PatternRow* pattern = patternRow(y);
    const std::size_t intoPattern = firstByte - m_firstByte;
    const Operands operands{pattern == nullptr ? nullptr : pattern->bits.data() + intoPattern, source, mask,
                            pattern == nullptr || !m_hasHoles ? nullptr : pattern->opaque.data() + intoPattern};
    std::uint8_t* const target = rowOf(m_target, y) + firstByte;

    const auto head = static_cast<std::uint8_t>(0xFF >> (firstBit % 8));
    const int tailBits = static_cast<int>(endBit % 8);
    const auto tail = static_cast<std::uint8_t>(tailBits == 0 ? 0xFF : 0xFF << (8 - tailBits));
    if (bytes == 1) {
        paintPart(target, operands, 0, head & tail);
        return;
    }
    const std::size_t begin = head == 0xFF ? 0 : 1;
    const std::size_t end = tail == 0xFF ? bytes : bytes - 1;
    if (begin == 1) paintPart(target, operands, 0, head);
    const Operands middle{advanced(operands.pattern, begin), advanced(operands.source, begin), advanced(operands.mask, begin),
                          advanced(operands.opaque, begin)};
    paintMiddle(target + begin, middle, end - begin);
    if (end < bytes) paintPart(target, operands, end, tail);
}

void RowPainter::paintRectangle(const RECTL& area) {
    for (LONG y = area.top; y < area.bottom; ++y) paint(y, area.left, area.right, nullptr, nullptr);
}

ClipRows::ClipRows(const CLIPOBJ* clip, const RECTL& area) {
    if (isEmpty(area)) return;
    if (clip == nullptr || clip->iDComplexity == DC_TRIVIAL) {
        m_rectangles.push_back(area);
    } else if (clip->iDComplexity == DC_RECT) {
        const RECTL part = intersection(clip->rclBounds, area);
        if (!isEmpty(part)) m_rectangles.push_back(part);
    } else {
        Region region = static_cast<const EngineClip*>(clip)->region;
        region.intersect(Region(area));
        m_rectangles = region.rectangles();
    }
    if (m_rectangles.empty()) return;
    m_bounds = m_rectangles.front();
    for (const RECTL& r : m_rectangles) {
        m_bounds = {std::min(m_bounds.left, r.left), std::min(m_bounds.top, r.top), std::max(m_bounds.right, r.right),
                    std::max(m_bounds.bottom, r.bottom)};
    }
}

std::size_t ClipRows::firstReaching(LONG y) const {
    // Rectangles of one row of a region share top and bottom, so bottoms never decrease.
    const auto first = std::partition_point(m_rectangles.begin(), m_rectangles.end(), [y](const RECTL& r) { return r.bottom <= y; });
    return static_cast<std::size_t>(first - m_rectangles.begin());
}

}  // namespace morvil::engine
