#include "raster/CxImageBMP.h"

#include <array>

namespace morvil {

namespace {

constexpr DWORD kFileHeaderBytes = 14;

void put32(std::uint8_t* out, DWORD value) {
    for (int i = 0; i < 4; ++i) out[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace

// Header, palette and rows of an image are one block already.
bool CxImageBMP::Encode(CxFile& file) const {
    const std::span<const std::uint8_t> block = m_image.GetDIB();
    if (block.empty()) return false;
    const auto blockBytes = static_cast<DWORD>(block.size());
    const auto pixelBytes = static_cast<DWORD>(m_image.GetBits().size());
    std::array<std::uint8_t, kFileHeaderBytes> header{'B', 'M'};
    put32(header.data() + 2, kFileHeaderBytes + blockBytes);
    put32(header.data() + 10, kFileHeaderBytes + blockBytes - pixelBytes);
    return file.Write(header) && file.Write(block);
}

bool CxImageBMP::Save(const WCHAR* path) const {
    CxIOFile file;
    if (!file.Open(path, OpenMode::Create)) return false;
    const bool written = Encode(file);
    return file.Close() && written;
}

}  // namespace morvil
