// MemoryContext.h - owners for the length of a scope: a memory device context, a bitmap section, a bitmap's place in a context,
// a locked surface. Each can be empty when the system refused; releasing goes in the reverse order of taking.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "raster/BitmapInfo.h"

namespace morvil {

class MemoryContext {
  public:
    MemoryContext() : m_dc(CreateCompatibleDC(nullptr)) {}
    ~MemoryContext() {
        if (m_dc != nullptr) DeleteDC(m_dc);
    }
    MemoryContext(const MemoryContext&) = delete;
    MemoryContext& operator=(const MemoryContext&) = delete;

    [[nodiscard]] HDC get() const { return m_dc; }

  private:
    HDC m_dc;
};

// A device-independent bitmap whose bits the process reaches directly.
class BitmapSection {
  public:
    BitmapSection(const MemoryContext& context, BitmapInfoBlock& info)
        : m_bitmap(CreateDIBSection(context.get(), infoOf(&info), DIB_RGB_COLORS, &m_bits, nullptr, 0)),
          m_bytes(m_bitmap == nullptr || m_bits == nullptr ? 0 : info.header.biSizeImage) {}
    ~BitmapSection() {
        if (m_bitmap != nullptr) DeleteObject(m_bitmap);
    }
    BitmapSection(const BitmapSection&) = delete;
    BitmapSection& operator=(const BitmapSection&) = delete;

    [[nodiscard]] HBITMAP get() const { return m_bitmap; }
    [[nodiscard]] std::span<std::uint8_t> bits() const { return {static_cast<std::uint8_t*>(m_bits), m_bytes}; }

  private:
    void* m_bits = nullptr;
    HBITMAP m_bitmap;
    std::size_t m_bytes;
};

// Puts a bitmap into a context and the previous one back.
class Selection {
  public:
    Selection(const MemoryContext& context, const BitmapSection& section)
        : m_dc(context.get()), m_previous(section.get() == nullptr ? nullptr : SelectObject(m_dc, section.get())) {}
    ~Selection() {
        if (m_previous != nullptr) SelectObject(m_dc, m_previous);
    }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;

    explicit operator bool() const { return m_previous != nullptr; }

  private:
    HDC m_dc;
    HGDIOBJ m_previous;
};

class LockedSurface {
  public:
    explicit LockedSurface(const SURFOBJ& surface) : m_surface(EngLockSurface(surface.hsurf)) {}
    ~LockedSurface() {
        if (m_surface != nullptr) EngUnlockSurface(m_surface);
    }
    LockedSurface(const LockedSurface&) = delete;
    LockedSurface& operator=(const LockedSurface&) = delete;

    explicit operator bool() const { return m_surface != nullptr; }
    [[nodiscard]] SURFOBJ& get() const { return *m_surface; }
    // Empty for a surface without bits of its own.
    [[nodiscard]] std::span<std::uint8_t> bits() const {
        return {static_cast<std::uint8_t*>(m_surface->pvBits), m_surface->pvBits == nullptr ? 0 : std::size_t{m_surface->cjBits}};
    }

  private:
    SURFOBJ* m_surface;
};

}  // namespace morvil
