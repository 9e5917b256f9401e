// MemoryDc.cpp - memory device contexts, DIB sections, stretching between them and reading bits back.
// A context holds a bitmap and its stretching settings, nothing else; brushes do not exist, so raster operations that ask for a
// pattern find a white one, as in a new context. DIB sections are made from DIB_RGB_COLORS, without run lengths and without a
// file mapping. GetDIBits reads DIB sections and the engine's own surfaces (whose handles are cast to HBITMAP) in their own
// depth, in 16, 24 or 32 bits, or in black and white; it makes no palettes of 16 or 256 colours.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>

#include "engine/EngineState.h"
#include "engine/Pixels.h"
#include "engine/pixels/Colours.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/MakeSurface.h"
#include "engine/pixels/Services.h"

using namespace morvil::engine;

namespace {

MemoryContext* contextOf(HDC handle) {
    const auto found = engineState().contexts.find(handle);
    return found == engineState().contexts.end() ? nullptr : &found->second;
}

EngineSurface* bitmapOf(HBITMAP handle) { return surfaceOf(reinterpret_cast<HSURF>(handle)); }

// What every context holds at first; a handle only, nothing can be drawn on it.
HBITMAP stockBitmap() {
    EngineState& state = engineState();
    if (state.stockBitmap == nullptr) state.stockBitmap = reinterpret_cast<HBITMAP>(newHandle());
    return state.stockBitmap;
}

template <typename Result>
Result failed(Result result, DWORD error) {
    SetLastError(error);
    return result;
}

COLORREF colourOf(const RGBQUAD& quad) { return RGB(quad.rgbRed, quad.rgbGreen, quad.rgbBlue); }
RGBQUAD quadOf(COLORREF colour) { return {GetBValue(colour), GetGValue(colour), GetRValue(colour), 0}; }

bool isDepth(WORD bits) { return formatOfBits(bits) != 0; }

// Pixels that a start and a signed extent of a GDI call name, in order. A negative extent runs to the left and includes the start.
struct Extent {
    LONG from;
    LONG to;
    bool reversed;
};
Extent extentOf(int start, int extent) {
    const std::int64_t end = static_cast<std::int64_t>(start) + extent;
    const auto limited = [](std::int64_t value) { return static_cast<LONG>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX)); };
    if (extent >= 0) return {start, limited(end), false};
    return {limited(end + 1), limited(static_cast<std::int64_t>(start) + 1), true};
}

// ---- GetDIBits --------------------------------------------------------------------------------------------------------

void describe(const EngineSurface& surface, BITMAPINFOHEADER& header) {
    const int bits = bitsOf(surface);
    header.biWidth = surface.sizlBitmap.cx;
    header.biHeight = surface.sizlBitmap.cy;  // read back from the bottom up, however the rows lie
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(bits);
    header.biCompression = BI_RGB;
    header.biSizeImage = static_cast<DWORD>(alignedRowBytes(surface.sizlBitmap.cx, bits) * surface.sizlBitmap.cy);
    header.biXPelsPerMeter = 0;
    header.biYPelsPerMeter = 0;
    header.biClrUsed = 0;
    header.biClrImportant = 0;
}

void fillColourTable(const EngineSurface& surface, BITMAPINFO& info) {
    const int bits = info.bmiHeader.biBitCount;
    if (bits > 8) return;
    const std::vector<COLORREF> entries = bitsOf(surface) == bits ? entriesOf(surface) : std::vector<COLORREF>{0x000000, 0xFFFFFF};
    RGBQUAD* const table = info.bmiColors;
    for (std::size_t i = 0; i < (std::size_t{1} << bits); ++i) table[i] = quadOf(i < entries.size() ? entries[i] : 0);
}

class RowReader {
  public:
    RowReader(const EngineSurface& surface, int bits)
        : m_surface(surface),
          m_bits(bits),
          m_layout(directLayoutOf(surface)),
          m_entries(entriesOf(surface)),
          m_target(std::array<ULONG, 3>{}),
          m_values(static_cast<std::size_t>(surface.sizlBitmap.cx)) {
        m_target = bits == 16 ? DirectLayout({0x7C00, 0x03E0, 0x001F}) : DirectLayout({0xFF0000, 0xFF00, 0xFF});
        m_verbatim = bitsOf(surface) == bits && (!m_layout || *m_layout == m_target);
    }

    void read(LONG y, std::span<std::uint8_t> out) {
        const LONG width = m_surface.sizlBitmap.cx;
        const auto bytes = static_cast<std::size_t>(packedRowBytes(width, m_bits));
        std::fill(out.begin() + static_cast<std::ptrdiff_t>(bytes), out.end(), std::uint8_t{0});
        if (m_verbatim) {
            std::copy_n(rowOf(m_surface, y), bytes, out.begin());
            return;
        }
        unpackPixels(rowOf(m_surface, y), bitsOf(m_surface), 0, width, m_values.data());
        constexpr std::array<COLORREF, 2> kBlackAndWhite{0x000000, 0xFFFFFF};
        for (ULONG& value : m_values) {
            const COLORREF colour = m_layout ? m_layout->colourOf(value) : m_entries[std::min<std::size_t>(value, m_entries.size() - 1)];
            value = m_bits == 1 ? nearestIndex(kBlackAndWhite, colour) : m_target.valueOf(colour);
        }
        packPixels(m_values.data(), m_bits, 0, width, out.data());
    }

  private:
    const EngineSurface& m_surface;
    int m_bits;
    std::optional<DirectLayout> m_layout;
    std::vector<COLORREF> m_entries;
    DirectLayout m_target;
    bool m_verbatim = false;
    std::vector<ULONG> m_values;
};

bool isReadable(const EngineSurface& surface, const BITMAPINFOHEADER& header) {
    if (header.biPlanes != 1 || header.biCompression != BI_RGB || !isDepth(header.biBitCount)) return false;
    const bool ownPaletteNeeded = header.biBitCount == 4 || header.biBitCount == 8;
    if (ownPaletteNeeded && bitsOf(surface) != header.biBitCount) return false;
    const std::int64_t height = std::abs(static_cast<std::int64_t>(header.biHeight));
    return header.biWidth == surface.sizlBitmap.cx && height == surface.sizlBitmap.cy;
}

}  // namespace

HDC CreateCompatibleDC(HDC like) {
    if (like != nullptr && contextOf(like) == nullptr) return failed<HDC>(nullptr, ERROR_INVALID_HANDLE);
    const auto handle = reinterpret_cast<HDC>(newHandle());
    engineState().contexts.emplace(handle, MemoryContext{});
    return handle;
}

BOOL DeleteDC(HDC dc) { return engineState().contexts.erase(dc) > 0 ? TRUE : failed(FALSE, ERROR_INVALID_HANDLE); }

HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section, DWORD /*offset*/) {
    if (bits != nullptr) *bits = nullptr;
    if (dc != nullptr && contextOf(dc) == nullptr) return failed<HBITMAP>(nullptr, ERROR_INVALID_HANDLE);
    if (info == nullptr || usage != DIB_RGB_COLORS || section != nullptr) return failed<HBITMAP>(nullptr, ERROR_INVALID_PARAMETER);
    const BITMAPINFOHEADER& header = info->bmiHeader;
    const bool masked = header.biCompression == BI_BITFIELDS && (header.biBitCount == 16 || header.biBitCount == 32);
    if (header.biSize != sizeof(BITMAPINFOHEADER) || header.biPlanes != 1 || !isDepth(header.biBitCount)) {
        return failed<HBITMAP>(nullptr, ERROR_INVALID_PARAMETER);
    }
    if ((header.biCompression != BI_RGB && !masked) || header.biHeight == INT32_MIN)
        return failed<HBITMAP>(nullptr, ERROR_INVALID_PARAMETER);
    const bool topDown = header.biHeight < 0;
    auto surface = makeSurface({.width = header.biWidth,
                                .height = topDown ? -header.biHeight : header.biHeight,
                                .rowBytes = 0,
                                .format = formatOfBits(header.biBitCount),
                                .flags = topDown ? BMF_TOPDOWN : 0U,
                                .bits = nullptr});
    if (surface == nullptr) return failed<HBITMAP>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    surface->dibSection = true;
    const RGBQUAD* const colours = info->bmiColors;
    if (header.biBitCount <= 8) {
        const DWORD most = 1U << header.biBitCount;
        const DWORD count = header.biClrUsed == 0 ? most : std::min(header.biClrUsed, most);
        auto palette = std::make_shared<Palette>();
        std::transform(colours, colours + count, std::back_inserter(palette->entries), colourOf);
        surface->palette = std::move(palette);
    } else if (masked) {
        for (std::size_t i = 0; i < 3; ++i) {
            // The masks stand in the colours' place, red first.
            surface->masks[i] = static_cast<ULONG>(colours[i].rgbBlue) | static_cast<ULONG>(colours[i].rgbGreen) << 8 |
                                static_cast<ULONG>(colours[i].rgbRed) << 16 | static_cast<ULONG>(colours[i].rgbReserved) << 24;
        }
    }
    if (bits != nullptr) *bits = surface->pvBits;
    return reinterpret_cast<HBITMAP>(keepSurface(std::move(surface)));
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    MemoryContext* const context = contextOf(dc);
    const auto bitmap = static_cast<HBITMAP>(object);
    const bool stock = bitmap == stockBitmap();
    if (context == nullptr || (!stock && bitmapOf(bitmap) == nullptr)) return failed<HGDIOBJ>(nullptr, ERROR_INVALID_HANDLE);
    // A bitmap is in one context at a time.
    for (const auto& [handle, other] : engineState().contexts) {
        if (!stock && other.selected == bitmap && handle != dc) return failed<HGDIOBJ>(nullptr, ERROR_INVALID_PARAMETER);
    }
    const HBITMAP previous = context->selected == nullptr ? stockBitmap() : context->selected;
    context->selected = stock ? nullptr : bitmap;
    return previous;
}

BOOL DeleteObject(HGDIOBJ object) {
    const auto bitmap = static_cast<HBITMAP>(object);
    const EngineSurface* const surface = bitmapOf(bitmap);
    if (surface == nullptr || !surface->dibSection) return failed(FALSE, ERROR_INVALID_HANDLE);
    for (const auto& [handle, context] : engineState().contexts) {
        if (context.selected == bitmap) return failed(FALSE, ERROR_INVALID_PARAMETER);
    }
    return services::deleteSurface(surface->hsurf);
}

int SetStretchBltMode(HDC dc, int mode) {
    MemoryContext* const context = contextOf(dc);
    if (context == nullptr) return failed(0, ERROR_INVALID_HANDLE);
    if (mode < BLACKONWHITE || mode > HALFTONE) return failed(0, ERROR_INVALID_PARAMETER);
    return std::exchange(context->stretchMode, mode);
}

BOOL SetColorAdjustment(HDC dc, const COLORADJUSTMENT* adjustment) {
    MemoryContext* const context = contextOf(dc);
    if (context == nullptr) return failed(FALSE, ERROR_INVALID_HANDLE);
    if (adjustment == nullptr) return failed(FALSE, ERROR_INVALID_PARAMETER);
    context->adjustment = *adjustment;
    return TRUE;
}

BOOL StretchBlt(HDC to, int x, int y, int width, int height, HDC from, int sourceX, int sourceY, int sourceWidth, int sourceHeight,
                DWORD rop) {
    const MemoryContext* const target = contextOf(to);
    const MemoryContext* const source = contextOf(from);
    if (target == nullptr || source == nullptr) return failed(FALSE, ERROR_INVALID_HANDLE);
    EngineSurface* const targetSurface = bitmapOf(target->selected);
    EngineSurface* const sourceSurface = bitmapOf(source->selected);
    if (targetSurface == nullptr || sourceSurface == nullptr) return failed(FALSE, ERROR_INVALID_HANDLE);
    if (width == 0 || height == 0 || sourceWidth == 0 || sourceHeight == 0) return TRUE;

    const Extent columns = extentOf(x, width);
    const Extent rows = extentOf(y, height);
    const Extent sourceColumns = extentOf(sourceX, sourceWidth);
    const Extent sourceRows = extentOf(sourceY, sourceHeight);
    RECTL area{columns.from, rows.from, columns.to, rows.to};
    if (columns.reversed != sourceColumns.reversed) std::swap(area.left, area.right);
    if (rows.reversed != sourceRows.reversed) std::swap(area.top, area.bottom);
    constexpr COLORREF kText = 0x000000;
    constexpr COLORREF kBackground = 0xFFFFFF;
    const EngineXlate translation = makeTranslation(*targetSurface, *sourceSurface, kText, kBackground);
    const EngineBrush white = realizeBrush(*targetSurface, Brush{.kind = BrushKind::Solid, .colour = 0xFFFFFF}, false);
    const ROP4 code = (rop >> 16) & 0xFFU;
    return stretchRop({.target = targetSurface,
                       .source = sourceSurface,
                       .mask = nullptr,
                       .clip = nullptr,
                       .translation = &translation,
                       .adjustment = &target->adjustment,
                       .targetRectangle = area,
                       .sourceRectangle = {sourceColumns.from, sourceRows.from, sourceColumns.to, sourceRows.to},
                       .maskOrigin = {},
                       .mode = static_cast<ULONG>(target->stretchMode),
                       .rop4 = code | code << 8,
                       .brush = &white,
                       .brushOrigin = nullptr})
               ? TRUE
               : FALSE;
}

int GetDIBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, LPVOID bits, BITMAPINFO* info, UINT usage) {
    const EngineSurface* const surface = bitmapOf(bitmap);
    if (contextOf(dc) == nullptr || surface == nullptr) return failed(0, ERROR_INVALID_HANDLE);
    if (info == nullptr || usage != DIB_RGB_COLORS) return failed(0, ERROR_INVALID_PARAMETER);
    BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biSize != sizeof(BITMAPINFOHEADER)) return failed(0, ERROR_INVALID_PARAMETER);
    if (bits == nullptr && header.biBitCount == 0) {
        describe(*surface, header);
        return surface->sizlBitmap.cy;
    }
    if (!isReadable(*surface, header)) return failed(0, ERROR_INVALID_PARAMETER);
    const std::int64_t rowBytes = alignedRowBytes(header.biWidth, header.biBitCount);
    const LONG height = surface->sizlBitmap.cy;
    header.biSizeImage = static_cast<DWORD>(rowBytes * height);
    fillColourTable(*surface, *info);
    if (bits == nullptr) return height;
    if (start >= static_cast<UINT>(height)) return failed(0, ERROR_INVALID_PARAMETER);
    const LONG first = static_cast<LONG>(start);
    const LONG count = static_cast<LONG>(std::min(lines, static_cast<UINT>(height - first)));
    RowReader reader(*surface, header.biBitCount);
    auto* out = static_cast<std::uint8_t*>(bits);
    for (LONG i = 0; i < count; ++i, out += rowBytes) {
        const LONG y = header.biHeight < 0 ? first + i : height - 1 - (first + i);
        reader.read(y, {out, static_cast<std::size_t>(rowBytes)});
    }
    return count;
}
