// BitmapInfo.h - what a bitmap of the graphics system looks like and holds: its header, its palette, its bits, read with
// GetDIBits. For the halftoner, the image operations and the dumps. Bits come bottom row first, rows padded to 4 bytes.
#pragma once

#include <cstdint>

#include "platform/platform.h"

namespace morvil {

// A bitmap's header with room for the largest palette, as the graphics system fills it. Zero-filled before use.
struct BitmapInfoBlock {
    BITMAPINFOHEADER header;
    RGBQUAD palette[256];
};
static_assert(sizeof(BitmapInfoBlock) == 1064);

inline BITMAPINFO* infoOf(BitmapInfoBlock* block) { return reinterpret_cast<BITMAPINFO*>(block); }

// A surface's handle as the memory device contexts take it.
inline HBITMAP bitmapOf(const SURFOBJ& surface) { return reinterpret_cast<HBITMAP>(surface.hsurf); }

// Fills the header. 1 on success; 0 when an argument is null, or after logging that the bitmap cannot be described.
int getBitmapInfo(HDC dc, HBITMAP bitmap, BitmapInfoBlock* info);

// Fills header and palette. 1 on success, and with black and white preset when a bitmap of 1 or 24 bits does not give a
// palette; 0 when an argument is null, or after logging what failed.
int getColorTable(HBITMAP bitmap, BitmapInfoBlock* info);

// The size of the bits in bytes. With a buffer, which must hold that many, also copies them there. 0 after logging a failure.
std::uint32_t getBuffer(HBITMAP bitmap, void* buffer);

}  // namespace morvil
