#include "raster/CxImageBMP.h"

#include <array>

namespace morvil {

namespace {

constexpr DWORD kFileHeaderBytes = 14;

void put32(std::uint8_t* out, DWORD value) {
    for (int i = 0; i < 4; ++i) out[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace

bool CxImageBMP::Encode(CxFile& file) const {
    const std::span<const std::uint8_t> information = m_image.GetDIB();
    const std::span<const std::uint8_t> rows = m_image.GetBits();
    if (information.empty()) return false;
    const auto rowsAt = static_cast<DWORD>(kFileHeaderBytes + information.size());
    std::array<std::uint8_t, kFileHeaderBytes> header{'B', 'M'};
    put32(header.data() + 2, rowsAt + static_cast<DWORD>(rows.size()));
    put32(header.data() + 10, rowsAt);
    return file.Write(header) && file.Write(information) && file.Write(rows);
}

bool CxImageBMP::Save(const WCHAR* path) const {
    CxIOFile file;
    if (!file.Open(path, OpenMode::Create)) return false;
    const bool written = Encode(file);
    return file.Close() && written;
}

}  // namespace morvil
