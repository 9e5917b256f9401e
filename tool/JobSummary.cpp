#include "tool/JobSummary.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>

#include "platform/common/Text.h"

namespace morvil::tool {

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;

std::string colourText(const std::array<std::uint8_t, 3>& colour) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02X%02X%02X", colour[0], colour[1], colour[2]);
    return text.data();
}

void widen(std::optional<Extent>& extent, std::int32_t x, std::int32_t y) {
    if (!extent) {
        extent = Extent{x, y, x, y};
        return;
    }
    extent->left = std::min(extent->left, x);
    extent->right = std::max(extent->right, x);
    extent->top = std::min(extent->top, y);
    extent->bottom = std::max(extent->bottom, y);
}

// Set bits of a row's first `width` pixels.
std::uint64_t setBits(std::span<const std::uint8_t> row, std::uint32_t width) {
    std::uint64_t count = 0;
    const std::size_t whole = width / 8;
    for (std::size_t i = 0; i < whole; ++i) count += static_cast<std::uint64_t>(std::popcount(row[i]));
    if (width % 8 != 0) count += static_cast<std::uint64_t>(std::popcount(static_cast<std::uint8_t>(row[whole] >> (8 - width % 8))));
    return count;
}

std::uint64_t paintedInRow(std::span<const std::uint8_t> row, const BitmapFacts& bitmap) {
    if (bitmap.bitsPerPixel == 1) {
        const std::uint64_t ones = setBits(row, bitmap.width);
        return bitmap.palette[1] == kWhite ? bitmap.width - ones : ones;
    }
    std::uint64_t painted = 0;
    if (bitmap.bitsPerPixel == 8) {
        for (const std::uint8_t index : row.first(bitmap.width)) painted += bitmap.palette[index] != kWhite ? 1 : 0;
        return painted;
    }
    for (std::size_t x = 0; x < bitmap.width; ++x) painted += (row[3 * x] & row[3 * x + 1] & row[3 * x + 2]) != 0xFF ? 1 : 0;
    return painted;
}

}  // namespace

JobSummary summarize(const JobFile& job) {
    JobSummary summary;
    for (const Vector& vector : job.vectors) {
        ++summary.byColour[colourText(vector.colour)];
        if (vector.kind == VectorKind::Arc) {
            ++summary.arcs;
            continue;
        }
        ++(vector.kind == VectorKind::Polygon ? summary.polygons : summary.beziers);
        for (std::size_t i = 0; i + 1 < vector.coordinates.size(); i += 2) widen(summary.extent, vector.coordinates[i], vector.coordinates[i + 1]);
    }
    if (!job.bitmap) return summary;
    for (std::uint32_t row = 0; row < job.bitmap->height; ++row) {
        summary.paintedPixels += paintedInRow(job.bytes.subspan(job.bitmap->pixelPosition + static_cast<std::size_t>(row) * job.bitmap->stride, job.bitmap->stride), *job.bitmap);
    }
    return summary;
}

std::string utf8FromLatin1(std::string_view bytes) { return toUtf8(fromLatin1(bytes)); }

}  // namespace morvil::tool
